// The echo on the debug console, and the two console printers.
#include <cstring>

#include "support/fake_device.h"

using pendra::test::device;
using pendra::test::DeviceTest;

namespace {

using Calls = std::vector<std::string>;

std::string repeat(char character, size_t count) {
    return std::string(count, character);
}

class LogConsole : public DeviceTest {
  protected:
    // What the console shows of a text that continues a line.
    static std::string continued(const std::string& text) {
        logPrintf(5, "begin");
        device().forget();
        logPrintf(5, "%s", text.c_str());
        return device().console;
    }
};

TEST_F(LogConsole, MessageThatStartsALine_HasTheHeaderBeforeIt) {
    logPrintf(5, "text\n");
    std::strcpy(daemon_log_header, "zep");
    logPrintf(5, "more\n");
    EXPECT_EQ((Calls{"DL> text\n", "zep> more\n"}), device().consoleCalls);
}

TEST_F(LogConsole, EveryLevel_LooksTheSame) {
    daemon_log_level = 7;
    for (int32_t level = 0; level <= 7; level++) {
        SCOPED_TRACE(level);
        device().forget();
        logPrintf(level, "text\n");
        EXPECT_EQ(Calls{"DL> text\n"}, device().consoleCalls);
    }
}

TEST_F(LogConsole, PercentInAMessageThatStartsALine_StaysAsItIs) {
    logPrintf(5, "%s\n", "100%% %s %d");
    EXPECT_EQ("DL> 100%% %s %d\n", device().console);
}

TEST_F(LogConsole, PercentInAContinuation_IsInterpretedAgainWithoutArguments) {
    struct Case {
        const char* text;
        const char* shown;
    };
    const Case cases[] = {
        {"plain\n", "plain\n"},
        {"100%%\n", "100%\n"},
        {"%s", "%s"},
        {"%d and %ld\n", "%d and %ld\n"},
        {"%n%n", "%n%n"},
        {"%", "%"},
        {"end %", "end %"},
        {"%%%", "%%"},
        {"%%%%", "%%"},
        {"%%s", "%s"},
        {"%%%s", "%%s"},
        {"%5.3f|%-8x|%*d", "%5.3f|%-8x|%*d"},
        {"%hhd%%%c", "%hhd%%c"},
        {"% %", "% %"},
        {"%s%%\n", "%s%\n"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.text);
        pendra::test::resetLibrary();
        daemon_log_file_size_k = 0;
        EXPECT_EQ(row.shown, continued(row.text));
    }
}

TEST_F(LogConsole, MessageWithItsPrefix_IsCutAt255) {
    for (const size_t length : {250U, 251U, 252U, 5119U}) {
        SCOPED_TRACE(length);
        device().forget();
        logPrintf(5, "%s", repeat('m', length).c_str());
        EXPECT_EQ("DL> " + repeat('m', std::min<size_t>(length, 251)), device().console);
        logPrintf(5, "\n");
    }
}

TEST_F(LogConsole, Continuation_IsCutAt255) {
    for (const size_t length : {254U, 255U, 256U, 5119U}) {
        SCOPED_TRACE(length);
        EXPECT_EQ(repeat('m', std::min<size_t>(length, 255)), continued(repeat('m', length)));
    }
}

TEST_F(LogConsole, ContinuationOfDoubledPercents_IsCutAt255AsShown) {
    EXPECT_EQ(repeat('%', 254), continued(repeat('%', 508)));
    EXPECT_EQ(repeat('%', 255), continued(repeat('%', 510)));
    EXPECT_EQ(repeat('%', 255), continued(repeat('%', 512)));
    EXPECT_EQ(repeat('m', 254) + "%", continued(repeat('m', 254) + "%%x"));
}

TEST_F(LogConsole, MessageCutOnTheConsole_IsWholeInTheFile) {
    logPrintf(5, "%s\n", repeat('m', 1000).c_str());
    EXPECT_EQ("1000: " + repeat('m', 1000) + "\n", logText());
}

// The line-start flag follows the message, not what the console showed of it.
TEST_F(LogConsole, MessageWhoseNewlineIsCutOff_StillEndsItsLine) {
    logPrintf(5, "%s\n", repeat('m', 300).c_str());
    device().forget();
    logPrintf(5, "next\n");
    EXPECT_EQ("DL> next\n", device().console);
}

TEST_F(LogConsole, MissingConsole_IsReportedForEachMessageAndTheFileIsWritten) {
    device().consoleMissing = true;
    testing::internal::CaptureStdout();
    logPrintf(5, "a ");
    logPrintf(0, "line\n");
    EXPECT_EQ("open /proc/tc3162/dbg_msg fail\nopen /proc/tc3162/dbg_msg fail\n",
              testing::internal::GetCapturedStdout());
    EXPECT_EQ("1000: a line\n", logText());
}

TEST_F(LogConsole, MessageBelowTheThresholdWithoutConsole_ReportsNothing) {
    device().consoleMissing = true;
    testing::internal::CaptureStdout();
    logPrintf(6, "hidden\n");
    EXPECT_EQ("", testing::internal::GetCapturedStdout());
}

using Printer = int32_t (*)(const char* format, ...);

class ConsolePrinter : public DeviceTest, public testing::WithParamInterface<Printer> {};

INSTANTIATE_TEST_SUITE_P(Both, ConsolePrinter, testing::Values(&msgPrintf, &dbgPrintf));

TEST_P(ConsolePrinter, Text_IsFormattedAndWrittenWithoutNewline) {
    GetParam()("%s=%d", "value", 5);
    EXPECT_EQ(Calls{"value=5"}, device().consoleCalls);
}

TEST_P(ConsolePrinter, EachCall_OpensTheConsoleAnew) {
    GetParam()("%s", "one\n");
    GetParam()("%s", "two");
    EXPECT_EQ((Calls{"one\n", "two"}), device().consoleCalls);
}

TEST_P(ConsolePrinter, LongText_IsCutAt255) {
    for (const size_t length : {254U, 255U, 256U, 5000U}) {
        SCOPED_TRACE(length);
        device().forget();
        GetParam()("%s", repeat('t', length).c_str());
        EXPECT_EQ(repeat('t', std::min<size_t>(length, 255)), device().console);
    }
}

TEST_P(ConsolePrinter, MissingConsole_IsReportedOnStandardOutput) {
    device().consoleMissing = true;
    testing::internal::CaptureStdout();
    GetParam()("%s", "text");
    EXPECT_EQ("open /proc/tc3162/dbg_msg fail\n", testing::internal::GetCapturedStdout());
    EXPECT_EQ("", device().console);
}

TEST_P(ConsolePrinter, AnyThreshold_LetsTheTextPassAndTheLogAlone) {
    daemon_log_level = -1;
    GetParam()("%s", "text");
    EXPECT_EQ("text", device().console);
    EXPECT_EQ("", logText());
}

TEST_P(ConsolePrinter, NullFormat_WritesNothing) {
    GetParam()(nullptr);
    EXPECT_TRUE(device().consoleCalls.empty());
}

} // namespace
