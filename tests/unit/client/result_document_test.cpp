#include "client/result_document.h"

#include <gtest/gtest.h>

#include "client/failure.h"

namespace pendra::client {
namespace {

std::string document(const std::string& code, const std::string& message, const std::string& seconds) {
    return "<?xml version=\"1.0\" ?>\n<root>\n <ZepSetResult>" + code + "</ZepSetResult>\n <ZepSetMsg>" + message +
           "</ZepSetMsg>\n <ZepGetWaitSec>" + seconds + "</ZepGetWaitSec>\n</root>\n";
}

TEST(ParseResult, ResultDocument_IsRead) {
    const auto applied = parseResult(document("0", "", "65"));
    ASSERT_TRUE(applied.has_value());
    EXPECT_TRUE(applied->applied());
    EXPECT_EQ(applied->message, "");
    EXPECT_EQ(applied->waitSeconds, 65);

    const auto faulty = parseResult(document("3", "Device/Wireless5/Channel", "0"));
    ASSERT_TRUE(faulty.has_value());
    EXPECT_FALSE(faulty->applied());
    EXPECT_EQ(faulty->code, 3);
    EXPECT_EQ(faulty->message, "Device/Wireless5/Channel");
}

TEST(ParseResult, AnythingElse_IsNone) {
    for (const std::string& text :
         {std::string(), std::string("<html/>"), document("", "", "0"), document("x", "", "0"), document("0", "", ""),
          document("0", "", "5s"), document(" 0", "", "5"), document("99999999999", "", "0"),
          std::string("<ZepSetResult>0</ZepSetResult><ZepGetWaitSec>0</ZepGetWaitSec>"),
          std::string("<ZepSetResult>0<ZepSetMsg></ZepSetMsg><ZepGetWaitSec>0</ZepGetWaitSec>")}) {
        EXPECT_FALSE(parseResult(text).has_value()) << text;
    }
}

TEST(ParseResult, WaitThatNobodyWouldAnnounce_IsNone) {
    EXPECT_TRUE(parseResult(document("0", "", "3600")).has_value());
    EXPECT_FALSE(parseResult(document("0", "", "3601")).has_value());
    EXPECT_FALSE(parseResult(document("0", "", "-1")).has_value());
}

TEST(ResultInWords, EveryCode_HasItsWords) {
    const auto words = [](int code) {
        return resultInWords({.code = code, .message = "Device/DeviceName", .waitSeconds = 0});
    };
    EXPECT_EQ(words(0), "The device has applied the settings.");
    EXPECT_EQ(words(1), "The document's version differs from the one the device speaks.");
    EXPECT_EQ(words(2), "The document lacks an element: Device/DeviceName");
    EXPECT_EQ(words(3), "A value is not valid: Device/DeviceName");
    EXPECT_EQ(words(10), "A value has the wrong length: Device/DeviceName");
    EXPECT_EQ(words(11), "A value holds a forbidden character: Device/DeviceName");
    EXPECT_EQ(words(20), "A value is too large: Device/DeviceName");
    EXPECT_EQ(words(21), "A value is too small: Device/DeviceName");
    EXPECT_EQ(words(77), "The device reports result 77: Device/DeviceName");
}

TEST(Printable, ControlCharacters_AreReplaced) {
    EXPECT_EQ(printable("a\x1b[2Jb\n\x7f"), "a?[2Jb??");
    EXPECT_EQ(printable("Caf\xc3\xa9"), "Caf\xc3\xa9");
    EXPECT_EQ(printable("a\xc2\x9b"
                        "2J\xc2\x80\xc2\x9f"),
              "a?2J??");
    EXPECT_EQ(printable("5\xc2\xa0\xc2\xb0\xc2"), "5\xc2\xa0\xc2\xb0\xc2");
    EXPECT_EQ(resultInWords({.code = 3, .message = "a\rb", .waitSeconds = 0}), "A value is not valid: a?b");
}

TEST(ExitCodes, Values_AreThoseOfTheHelp) {
    EXPECT_EQ(kDone, 0);
    EXPECT_EQ(kRefused, 1);
    EXPECT_EQ(kUsage, 2);
    EXPECT_EQ(kNotAdmitted, 3);
    EXPECT_EQ(kUnreachable, 4);
    EXPECT_EQ(kUnexpected, 5);
    EXPECT_EQ(kUnreadable, 6);
    EXPECT_EQ(Failure(kRefused, "line").code(), kRefused);
    EXPECT_STREQ(Failure(kRefused, "line").what(), "line");
}

} // namespace
} // namespace pendra::client
