// The log lines that recur all over the library.
#include "common/trace.h"

#include "support/fake_device.h"

using pendra::test::device;
using pendra::test::DeviceTest;

namespace {

using Calls = std::vector<std::string>;

class Trace : public DeviceTest {
  protected:
    Trace() { device().uptime = 1234; }
};

TEST_F(Trace, EntryOfAFunction_IsOneLineOfTwoCalls) {
    daemon_log_level = 7;
    pendra::traceEntry("clientAuthListAdd");
    EXPECT_EQ("1234: 1234:clientAuthListAdd]\n", logText());
    EXPECT_EQ((Calls{"DL> 1234:clientAuthListAdd]", "\n"}), device().consoleCalls);
}

TEST_F(Trace, PrefixOfAFunction_AwaitsTheRestOfItsLine) {
    daemon_log_level = 7;
    pendra::tracePrefix("printList");
    PENDRA_LOG(pendra::kLogTrace, "The Auth list is:\n");
    EXPECT_EQ("1234: 1234:printList]The Auth list is:\n", logText());
}

TEST_F(Trace, EntryBelowTheThreshold_WritesNothing) {
    daemon_log_level = 6;
    pendra::traceEntry("clientAuthListAdd");
    pendra::tracePrefix("printList");
    EXPECT_EQ("", logText());
    EXPECT_TRUE(device().consoleCalls.empty());
}

TEST_F(Trace, Event_IsTheUptimeAndItsText) {
    pendra::eventPrefix(pendra::kLogEvent);
    PENDRA_LOG(pendra::kLogEvent, "key accepted\n");
    EXPECT_EQ("1234: 1234:key accepted\n", logText());
    EXPECT_EQ((Calls{"DL> 1234:", "key accepted\n"}), device().consoleCalls);
}

TEST_F(Trace, EventBelowTheThreshold_WritesNothing) {
    daemon_log_level = 4;
    pendra::eventPrefix(pendra::kLogEvent);
    EXPECT_EQ("", logText());
}

TEST_F(Trace, ArgumentsOfALine_AreEvaluatedOnlyWhenItPasses) {
    int evaluations = 0;
    PENDRA_LOG(pendra::kLogInfo, "%d\n", ++evaluations);
    EXPECT_EQ(0, evaluations);
    PENDRA_LOG(pendra::kLogEvent, "%d\n", ++evaluations);
    EXPECT_EQ(1, evaluations);
    EXPECT_EQ("1234: 1\n", logText());
}

} // namespace
