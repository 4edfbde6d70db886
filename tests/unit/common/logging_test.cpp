// What reaches the log file, and when.
#include <cstdio>
#include <cstring>

#include "common/log_state.h"
#include "support/fake_device.h"

using pendra::test::device;
using pendra::test::DeviceTest;
using pendra::test::readFile;

namespace {

// Taken before any test, and any fixture, changes them.
const int32_t levelAtLoad = daemon_log_level;
const int32_t fileSizeAtLoad = daemon_log_file_size_k;
const std::string headerAtLoad = daemon_log_header;
const std::string directoryAtLoad = daemon_log_path;
const pendra::LogState stateAtLoad = pendra::logState;

class Logging : public DeviceTest {};

std::string repeat(char character, size_t count) {
    return std::string(count, character);
}

TEST_F(Logging, DefaultSettings_AreThoseOfALoadedLibrary) {
    EXPECT_EQ(5, levelAtLoad);
    EXPECT_EQ(250, fileSizeAtLoad);
    EXPECT_EQ("", headerAtLoad);
    EXPECT_EQ("", directoryAtLoad);
    EXPECT_STREQ("", stateAtLoad.fileName);
    EXPECT_EQ(1, stateAtLoad.atLineStart);
    EXPECT_EQ(32U, sizeof daemon_log_header);
    EXPECT_EQ(64U, sizeof daemon_log_path);
}

TEST_F(Logging, MessageAtThreshold_IsWrittenWithStamp) {
    device().uptime = 1234;
    logPrintf(5, "client %s has %d of %ld\n", "10.0.0.1", 7, 8L);
    EXPECT_EQ("1234: client 10.0.0.1 has 7 of 8\n", logText());
    EXPECT_EQ("DL> client 10.0.0.1 has 7 of 8\n", device().console);
}

TEST_F(Logging, EveryLevelUnderEveryThreshold_PassesUpToTheThreshold) {
    for (int32_t threshold = -1; threshold <= 8; threshold++) {
        for (int32_t level = 0; level <= 7; level++) {
            SCOPED_TRACE(std::to_string(level) + " under " + std::to_string(threshold));
            std::remove(logFile().c_str());
            device().forget();
            daemon_log_level = threshold;
            logPrintf(level, "x\n");
            EXPECT_EQ(level <= threshold ? "1000: x\n" : "", logText());
            EXPECT_EQ(level <= threshold ? "DL> x\n" : "", device().console);
        }
    }
}

TEST_F(Logging, MessageBelowThreshold_LeavesNoTrace) {
    daemon_log_path[0] = '\0';
    logPrintf(6, "hidden\n");
    EXPECT_TRUE(device().consoleCalls.empty());
    EXPECT_TRUE(device().events.empty());
    EXPECT_TRUE(device().reads.empty());
    EXPECT_STREQ("", daemon_log_path);
    EXPECT_STREQ("", daemon_log_header);
}

TEST_F(Logging, MessageBelowThresholdInsideALine_KeepsTheLineGoing) {
    logPrintf(5, "one ");
    logPrintf(6, "hidden\n");
    logPrintf(5, "line\n");
    EXPECT_EQ("1000: one line\n", logText());
    EXPECT_EQ("DL> one line\n", device().console);
}

TEST_F(Logging, MessageBelowThresholdBetweenLines_KeepsTheLineStart) {
    logPrintf(5, "first\n");
    logPrintf(6, "hidden");
    logPrintf(5, "second\n");
    EXPECT_EQ("1000: first\n1000: second\n", logText());
}

TEST_F(Logging, TwoCallsForOneLine_GiveOneStampAndOnePrefix) {
    logPrintf(5, "a text without newline");
    logPrintf(5, "\n");
    EXPECT_EQ("1000: a text without newline\n", logText());
    EXPECT_EQ((std::vector<std::string>{"DL> a text without newline", "\n"}), device().consoleCalls);
}

TEST_F(Logging, NewlineInsideAMessage_DoesNotStartALine) {
    logPrintf(5, "one\ntwo");
    logPrintf(5, " three\n");
    EXPECT_EQ("1000: one\ntwo three\n", logText());
}

TEST_F(Logging, EachLine_CarriesTheUptimeOfItsStart) {
    device().uptime = 5;
    logPrintf(5, "first ");
    device().uptime = 6;
    logPrintf(5, "still first\n");
    device().uptime = 77;
    logPrintf(5, "second\n");
    EXPECT_EQ("5: first still first\n77: second\n", logText());
}

TEST_F(Logging, PercentInAMessage_ReachesTheFileAsItIs) {
    logPrintf(5, "%s\n", "100%% of %s");
    logPrintf(5, "%s", "a");
    logPrintf(5, "%s\n", "50%% %d");
    EXPECT_EQ("1000: 100%% of %s\n1000: a50%% %d\n", logText());
}

TEST_F(Logging, ChangedThreshold_HoldsFromTheNextMessage) {
    logPrintf(6, "hidden\n");
    daemon_log_level = 6;
    logPrintf(6, "shown\n");
    daemon_log_level = 4;
    logPrintf(5, "hidden again\n");
    EXPECT_EQ("1000: shown\n", logText());
}

TEST_F(Logging, FileSwitchedOff_WritesToTheConsoleOnly) {
    for (const int32_t limit : {0, -1, -2147483647}) {
        SCOPED_TRACE(limit);
        device().forget();
        daemon_log_file_size_k = limit;
        logPrintf(5, "seen\n");
        EXPECT_EQ("", logText());
        EXPECT_TRUE(device().events.empty());
        EXPECT_EQ("DL> seen\n", device().console);
    }
}

TEST_F(Logging, FileSwitchedOnLater_IsWrittenFromTheNextMessage) {
    daemon_log_file_size_k = 0;
    logPrintf(5, "console only\n");
    daemon_log_file_size_k = 1;
    logPrintf(5, "both\n");
    EXPECT_EQ("1000: both\n", logText());
}

TEST_F(Logging, FileThatCannotBeOpened_IsSkippedSilently) {
    std::snprintf(daemon_log_path, sizeof daemon_log_path, "%s", path("absent").c_str());
    testing::internal::CaptureStdout();
    logPrintf(5, "seen\n");
    EXPECT_EQ("", testing::internal::GetCapturedStdout());
    EXPECT_EQ("DL> seen\n", device().console);
    EXPECT_TRUE(device().events.empty());
}

TEST_F(Logging, FileRemovedBetweenMessages_IsCreatedAgain) {
    logPrintf(5, "first\n");
    std::remove(logFile().c_str());
    logPrintf(5, "second\n");
    EXPECT_EQ("1000: second\n", logText());
}

TEST_F(Logging, LongMessage_IsCutWithTheStampOnTop) {
    for (const size_t length : {5118U, 5119U, 5120U, 1048576U}) {
        SCOPED_TRACE(length);
        std::remove(logFile().c_str());
        logPrintf(5, "%s", repeat('m', length).c_str());
        const std::string message = repeat('m', std::min<size_t>(length, 5119));
        EXPECT_EQ("1000: " + message, logText());
        logPrintf(5, "\n");
    }
}

TEST_F(Logging, MessageCutBeforeItsNewline_IsContinued) {
    logPrintf(5, "%s\n", repeat('m', 5119).c_str());
    logPrintf(5, "next\n");
    EXPECT_EQ("1000: " + repeat('m', 5119) + "next\n", logText());
}

TEST_F(Logging, EmptyMessage_WritesNothingAndClearsTheLineStart) {
    logPrintf(5, "%s", "");
    EXPECT_EQ("", logText());
    EXPECT_TRUE(device().consoleCalls.empty());
    logPrintf(5, "continued\n");
    EXPECT_EQ("continued\n", logText());
    EXPECT_EQ("continued\n", device().console);
}

TEST_F(Logging, EmptyMessageAtTheLimit_DoesNotRotate) {
    daemon_log_file_size_k = 1;
    pendra::test::writeFile(logFile(), repeat('o', 2000));
    logPrintf(5, "%s", "");
    EXPECT_TRUE(device().events.empty());
}

TEST_F(Logging, NullFormat_WritesNothing) {
    logPrintf(0, static_cast<const char*>(nullptr));
    EXPECT_EQ("", logText());
    EXPECT_TRUE(device().consoleCalls.empty());
}

class LogFileName : public DeviceTest {
  protected:
    LogFileName() { daemon_log_path[0] = '\0'; }
};

TEST_F(LogFileName, PathAndHeaderGiven_AreUsed) {
    std::snprintf(daemon_log_path, sizeof daemon_log_path, "%s", directory().c_str());
    std::strcpy(daemon_log_header, "zep");
    logPrintf(5, "x\n");
    EXPECT_EQ("1000: x\n", readFile(path("zep_log.txt")));
    EXPECT_EQ("zep> x\n", device().console);
    EXPECT_TRUE(device().reads.empty());
}

TEST_F(LogFileName, NoPathGiven_IsTheNodesDirectory) {
    device().tree["/bramble/tempdirecory"] = directory();
    logPrintf(5, "x\n");
    EXPECT_EQ("1000: x\n", logText());
    EXPECT_EQ(directory(), daemon_log_path);
    EXPECT_STREQ("DL", daemon_log_header);
    EXPECT_EQ(std::vector<std::string>{"/bramble/tempdirecory"}, device().reads);
}

TEST_F(LogFileName, NoPathAndNoNode_IsTmpAndStored) {
    device().redirectedFiles["/tmp/DL_log.txt"] = path("redirected");
    logPrintf(5, "x\n");
    EXPECT_EQ("1000: x\n", readFile(path("redirected")));
    EXPECT_STREQ("/tmp", daemon_log_path);
    EXPECT_STREQ("DL", daemon_log_header);
}

TEST_F(LogFileName, NodeOfAnyLength_IsCutToThePath) {
    for (const size_t length : {62U, 63U, 64U, 1023U}) {
        SCOPED_TRACE(length);
        pendra::test::resetLibrary();
        device().tree["/bramble/tempdirecory"] = "/" + repeat('d', length - 1);
        logPrintf(5, "x\n");
        EXPECT_EQ("/" + repeat('d', std::min<size_t>(length, 63) - 1), daemon_log_path);
        EXPECT_STREQ("DL", daemon_log_header);
        EXPECT_EQ(5, daemon_log_level);
        EXPECT_EQ(250, daemon_log_file_size_k);
    }
}

TEST_F(LogFileName, LongestPathAndHeader_AreKeptWhole) {
    const std::string longPath = "/" + repeat('p', 62);
    const std::string longHeader = repeat('h', 31);
    std::strcpy(daemon_log_path, longPath.c_str());
    std::strcpy(daemon_log_header, longHeader.c_str());
    std::string name = longPath;
    name += "/" + longHeader + "_log.txt";
    device().redirectedFiles[name] = path("redirected");
    logPrintf(5, "x\n");
    EXPECT_EQ("1000: x\n", readFile(path("redirected")));
    EXPECT_EQ(longHeader + "> x\n", device().console);
}

TEST_F(LogFileName, SettingsChangedLater_LeaveItAsItIs) {
    device().tree["/bramble/tempdirecory"] = directory();
    logPrintf(5, "first\n");
    std::strcpy(daemon_log_path, "/nowhere");
    std::strcpy(daemon_log_header, "new");
    device().tree["/bramble/tempdirecory"] = "/elsewhere";
    logPrintf(5, "second\n");
    EXPECT_EQ("1000: first\n1000: second\n", logText());
    EXPECT_EQ("DL> first\nnew> second\n", device().console);
    EXPECT_EQ(std::vector<std::string>{"/bramble/tempdirecory"}, device().reads);
}

TEST_F(LogFileName, FirstMessageWithTheFileOff_FixesIt) {
    device().tree["/bramble/tempdirecory"] = directory();
    daemon_log_file_size_k = 0;
    logPrintf(5, "console only\n");
    EXPECT_EQ(directory(), daemon_log_path);
    std::strcpy(daemon_log_path, "/nowhere");
    daemon_log_file_size_k = 250;
    logPrintf(5, "both\n");
    EXPECT_EQ("1000: both\n", logText());
}

TEST_F(LogFileName, MessageBelowTheThreshold_DoesNotFixIt) {
    std::strcpy(daemon_log_path, "/nowhere");
    logPrintf(6, "hidden\n");
    std::snprintf(daemon_log_path, sizeof daemon_log_path, "%s", directory().c_str());
    logPrintf(5, "shown\n");
    EXPECT_EQ("1000: shown\n", logText());
}

} // namespace
