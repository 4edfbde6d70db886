#include "client/firmware_status.h"

#include <gtest/gtest.h>

namespace pendra::client {
namespace {

std::string document(const std::string& elements) {
    return "<?xml version=\"1.0\" ?><root>" + elements + "</root>\n";
}

TEST(FirmwareStatus, StatusAndTime_AreRead) {
    const auto status = parseFirmwareStatus(document("<time>180</time>\n<fwsize>4.00 M</fwsize>\n<result>5</result>"));
    ASSERT_TRUE(status);
    EXPECT_EQ(status->result, kFwStarted);
    EXPECT_EQ(status->waitSeconds, 180);
}

TEST(FirmwareStatus, NegativeStatusWithoutATime_IsRead) {
    const auto status = parseFirmwareStatus(document("<result>-5</result>"));
    ASSERT_TRUE(status);
    EXPECT_EQ(status->result, kFwListNotFetched);
    EXPECT_EQ(status->waitSeconds, 0);
}

TEST(FirmwareStatus, OtherTexts_AreNone) {
    for (const char* elements : {"", "<result></result>", "<result>x</result>", "<result>1", "<time>180</time>"}) {
        EXPECT_FALSE(parseFirmwareStatus(document(elements))) << elements;
    }
}

TEST(FirmwareStatus, TimeOutOfReason_IsNotWaitedFor) {
    EXPECT_FALSE(parseFirmwareStatus(document("<time>-1</time><result>5</result>")));
    EXPECT_FALSE(parseFirmwareStatus(document("<time>3601</time><result>5</result>")));
    EXPECT_TRUE(parseFirmwareStatus(document("<time>3600</time><result>5</result>")));
}

} // namespace
} // namespace pendra::client
