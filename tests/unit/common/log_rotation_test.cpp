// The size limit of the log file and its one old generation.
#include <sys/stat.h>

#include <cstdio>
#include <cstring>

#include "support/fake_device.h"

using pendra::test::device;
using pendra::test::DeviceTest;
using pendra::test::Events;
using pendra::test::readFile;
using pendra::test::writeFile;

namespace {

class LogRotation : public DeviceTest {
  protected:
    LogRotation() { daemon_log_file_size_k = 1; }

    Events rotationOf(const std::string& file) const {
        return {"run cp -f \"" + file + "\" \"" + file + ".old\"", "run rm -f \"" + file + "\""};
    }
    void fillLog(size_t size) const { writeFile(logFile(), std::string(size, 'o')); }
};

TEST_F(LogRotation, SizeAndMessageAroundTheLimit_RotateFromTheLimitOn) {
    struct Case {
        size_t size;
        size_t message;
        bool rotates;
    };
    const Case cases[] = {
        {1000, 23, false}, {1000, 24, true},  {1000, 25, true}, {0, 1023, false},   {0, 1024, true},
        {1023, 1, true},   {1022, 1, false},  {1024, 1, true},  {5000, 1, true},    {1, 5119, true},
        {1, 1, false},     {1000, 10, false}, {0, 5119, true},  {1000, 1000, true}, {512, 512, true},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(std::to_string(row.size) + " and " + std::to_string(row.message));
        device().forget();
        fillLog(row.size);
        logPrintf(5, "%s\n", std::string(row.message - 1, 'n').c_str());
        EXPECT_EQ(row.rotates ? rotationOf(logFile()) : Events{}, device().events);
    }
}

// The stamp is not part of the message's length.
TEST_F(LogRotation, StampThatCrossesTheLimit_DoesNotRotate) {
    device().uptime = 1234567890;
    fillLog(1013);
    logPrintf(5, "%s\n", std::string(9, 'n').c_str());
    EXPECT_TRUE(device().events.empty());
}

TEST_F(LogRotation, CutMessage_CountsWithItsCutLength) {
    daemon_log_file_size_k = 5;
    fillLog(0);
    logPrintf(5, "%s", std::string(6000, 'n').c_str());
    EXPECT_TRUE(device().events.empty());
}

TEST_F(LogRotation, FullFile_BecomesTheOldGeneration) {
    device().runShell = true;
    fillLog(1024);
    logPrintf(5, "new\n");
    EXPECT_EQ("1000: new\n", logText());
    EXPECT_EQ(std::string(1024, 'o'), readFile(logFile() + ".old"));
}

TEST_F(LogRotation, SecondRotation_OverwritesTheOldGeneration) {
    device().runShell = true;
    fillLog(1024);
    logPrintf(5, "%s\n", std::string(1015, 'n').c_str());
    logPrintf(5, "third generation\n");
    EXPECT_EQ("1000: third generation\n", logText());
    EXPECT_EQ("1000: " + std::string(1015, 'n') + "\n", readFile(logFile() + ".old"));
}

TEST_F(LogRotation, RotationInsideALine_WritesNoStamp) {
    device().runShell = true;
    logPrintf(5, "begin ");
    fillLog(1024);
    logPrintf(5, "end\n");
    EXPECT_EQ("end\n", logText());
}

TEST_F(LogRotation, MissingFile_NeverRotates) {
    logPrintf(5, "%s\n", std::string(3000, 'n').c_str());
    EXPECT_TRUE(device().events.empty());
    EXPECT_EQ("1000: " + std::string(3000, 'n') + "\n", logText());
}

TEST_F(LogRotation, FailingCommands_AreIgnored) {
    device().shellStatus = -1;
    fillLog(1024);
    logPrintf(5, "new\n");
    EXPECT_EQ(rotationOf(logFile()), device().events);
    EXPECT_EQ(std::string(1024, 'o') + "1000: new\n", logText());
}

TEST_F(LogRotation, MessageBelowTheThreshold_DoesNotRotate) {
    fillLog(5000);
    logPrintf(6, "hidden\n");
    EXPECT_TRUE(device().events.empty());
}

TEST_F(LogRotation, FileSwitchedOff_NeverRotates) {
    fillLog(5000);
    for (const int32_t limit : {0, -1}) {
        daemon_log_file_size_k = limit;
        logPrintf(5, "console\n");
    }
    EXPECT_TRUE(device().events.empty());
    EXPECT_EQ(std::string(5000, 'o'), logText());
}

TEST_F(LogRotation, ChangedLimit_HoldsFromTheNextMessage) {
    fillLog(2000);
    daemon_log_file_size_k = 2;
    logPrintf(5, "fits\n");
    EXPECT_TRUE(device().events.empty());
    daemon_log_file_size_k = 1;
    logPrintf(5, "no more\n");
    EXPECT_EQ(rotationOf(logFile()), device().events);
}

// 4194304 KiB are 2^32 bytes: a product of 32 bits would be 0.
TEST_F(LogRotation, LimitBeyond32Bits_IsNotReached) {
    fillLog(5000);
    for (const int32_t limit : {4194303, 4194304, 4194305, 2097152, 2147483647}) {
        SCOPED_TRACE(limit);
        daemon_log_file_size_k = limit;
        logPrintf(5, "fits\n");
        EXPECT_TRUE(device().events.empty());
    }
}

TEST_F(LogRotation, LongestFileName_StandsWholeInTheCommands) {
    const std::string name = directory() + "/" + std::string(62 - directory().size(), 'd');
    ASSERT_EQ(0, mkdir(name.c_str(), 0700));
    std::strcpy(daemon_log_path, name.c_str());
    std::strcpy(daemon_log_header, std::string(31, 'h').c_str());
    const std::string file = name + "/" + std::string(31, 'h') + "_log.txt";
    writeFile(file, std::string(1024, 'o'));
    logPrintf(5, "new\n");
    EXPECT_EQ(rotationOf(file), device().events);
}

} // namespace
