// Fixed text fields that know their own capacity.
#include "common/bounded_text.h"

#include <gtest/gtest.h>

#include <string>

#include "guarded_buffer.h"

using pendra::test::GuardedBuffer;

namespace {

TEST(BoundedText, Copy_IsCutToTheCapacity) {
    for (const size_t capacity : {1U, 2U, 16U, 128U}) {
        for (const size_t length : {size_t{0}, capacity - 1, capacity, capacity + 1, size_t{4000}}) {
            SCOPED_TRACE(std::to_string(length) + " into " + std::to_string(capacity));
            GuardedBuffer field(capacity);
            pendra::copyTextBounded(field.data(), capacity, std::string(length, 't').c_str());
            EXPECT_EQ(std::string(std::min(length, capacity - 1), 't'), field.text());
            EXPECT_TRUE(field.intact());
        }
    }
}

TEST(BoundedText, CopyOfNull_IsEmpty) {
    char field[8] = "old";
    pendra::copyText(field, nullptr);
    EXPECT_STREQ("", field);
}

TEST(BoundedText, CopyOntoItself_MovesTheText) {
    char field[8] = "  abc";
    pendra::copyText(field, field + 2);
    EXPECT_STREQ("abc", field);
}

TEST(BoundedText, Format_IsCutToTheField) {
    char field[8];
    pendra::formatText(field, "%d-%s", 12, "abc");
    EXPECT_STREQ("12-abc", field);
    pendra::formatText(field, "%s", "12345678");
    EXPECT_STREQ("1234567", field);
}

TEST(BoundedText, Append_IsCutToTheField) {
    char field[8] = "ab";
    pendra::appendText(field, "%s", "cd");
    EXPECT_STREQ("abcd", field);
    pendra::appendText(field, "%d", 123456);
    EXPECT_STREQ("abcd123", field);
    pendra::appendText(field, "%s", "more");
    EXPECT_STREQ("abcd123", field);
}

TEST(BoundedText, EmptyTexts_AreNullAndNoCharacters) {
    EXPECT_TRUE(pendra::isEmpty(nullptr));
    EXPECT_TRUE(pendra::isEmpty(""));
    EXPECT_FALSE(pendra::isEmpty(" "));
}

} // namespace
