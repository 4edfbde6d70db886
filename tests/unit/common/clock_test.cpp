// The uptime clock and the size of files.
#include "support/fake_device.h"

using pendra::test::device;
using pendra::test::DeviceTest;
using pendra::test::writeFile;

namespace {

class Clock : public DeviceTest {};

TEST_F(Clock, Seconds_AreTheSystemsUptime) {
    for (const long seconds : {0L, 1L, 19L, 86400L, 2147483647L}) {
        SCOPED_TRACE(seconds);
        device().uptime = seconds;
        EXPECT_EQ(static_cast<uint32_t>(seconds), sys_uptime_seconds());
    }
}

TEST_F(Clock, Text_IsTheUptimeInDecimal) {
    for (const long seconds : {0L, 7L, 1234L, 2147483647L}) {
        device().uptime = seconds;
        EXPECT_EQ(std::to_string(seconds), sys_uptime_sec_str());
    }
}

TEST_F(Clock, Text_StandsInOneBufferThatEveryCallOverwrites) {
    device().uptime = 41;
    const char* first = sys_uptime_sec_str();
    device().uptime = 100042;
    EXPECT_EQ(first, sys_uptime_sec_str());
    EXPECT_STREQ("100042", first);
}

class FileSize : public DeviceTest {};

TEST_F(FileSize, ExistingFile_IsItsBytes) {
    for (const size_t size : {0U, 1U, 1024U, 100000U}) {
        SCOPED_TRACE(size);
        writeFile(path("file"), std::string(size, 'x'));
        EXPECT_EQ(static_cast<int32_t>(size), getFileSize(path("file").c_str()));
    }
}

TEST_F(FileSize, NoFile_IsMinusOne) {
    EXPECT_EQ(-1, getFileSize(path("absent").c_str()));
    EXPECT_EQ(-1, getFileSize(""));
    EXPECT_EQ(-1, getFileSize(nullptr));
}

} // namespace
