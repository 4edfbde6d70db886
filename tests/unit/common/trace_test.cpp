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

TEST_F(Trace, LineOfAFunction_FollowsItsPrefix) {
    daemon_log_level = 7;
    pendra::traceLine("printList", "The Auth list has %d:\n", 2);
    EXPECT_EQ("1234: 1234:printList]The Auth list has 2:\n", logText());
    EXPECT_EQ((Calls{"DL> 1234:printList]", "The Auth list has 2:\n"}), device().consoleCalls);
}

TEST_F(Trace, LinesBelowTheThreshold_WriteNothing) {
    daemon_log_level = 6;
    pendra::traceEntry("clientAuthListAdd");
    pendra::traceLine("printList", "The Auth list is:\n");
    EXPECT_EQ("", logText());
    EXPECT_TRUE(device().consoleCalls.empty());
}

TEST_F(Trace, Event_IsTheUptimeAndItsText) {
    pendra::eventLine(pendra::kLogEvent, "key of %s accepted\n", "10.0.0.2");
    EXPECT_EQ("1234: 1234:key of 10.0.0.2 accepted\n", logText());
    EXPECT_EQ((Calls{"DL> 1234:", "key of 10.0.0.2 accepted\n"}), device().consoleCalls);
}

TEST_F(Trace, EventBelowTheThreshold_WritesNothing) {
    daemon_log_level = 4;
    pendra::eventLine(pendra::kLogEvent, "key accepted\n");
    EXPECT_EQ("", logText());
    EXPECT_TRUE(device().consoleCalls.empty());
}

} // namespace
