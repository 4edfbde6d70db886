#include <gtest/gtest.h>

#include "host/forms.h"

namespace pendra::host {
namespace {

std::string split(const std::string& text, char separator = '&') {
    const auto pairs = splitForm(text, separator);
    return pairs ? joinForm(*pairs, '|') : "(no form)";
}

TEST(SplitForm, Pairs_EndAtTheSeparatorAndAtLineEnds) {
    EXPECT_EQ(split("a=1&b=2"), "a=1|b=2");
    EXPECT_EQ(split("  a = 1 & b=2\n"), "a=1|b=2");
    EXPECT_EQ(split("a=1\r\nb=2&&c="), "a=1|b=2|c=");
    EXPECT_EQ(split("a=1&2\nb=x=y\n", '\n'), "a=1&2|b=x=y");
    EXPECT_EQ(split(""), "");
}

TEST(SplitForm, PartThatIsNoPair_MakesNoForm) {
    for (const char* text : {"a", "=5&b=2", "a=1&b", " = 1"}) {
        EXPECT_EQ(split(text), "(no form)") << text;
    }
}

TEST(DecodeValue, EscapesAndPlus_AreDecodedUncut) {
    EXPECT_EQ(decodeValue("x%2Fy+z"), "x/y z");
    EXPECT_EQ(decodeValue("a%00b"), "a");
    EXPECT_EQ(decodeValue(""), "");
    EXPECT_EQ(decodeValue(std::string(5000, 'x')), std::string(5000, 'x'));
}

TEST(EncodeValue, EveryByte_SurvivesTheForm) {
    std::string text;
    for (int byte = 1; byte < 256; ++byte) {
        text += static_cast<char>(byte);
    }
    const auto pairs = splitForm("a=" + encodeValue(text) + "&b=2", '&');
    ASSERT_TRUE(pairs);
    ASSERT_EQ(pairs->size(), 2U);
    EXPECT_EQ(decodeValue(pairs->front().value), text);
}

} // namespace
} // namespace pendra::host
