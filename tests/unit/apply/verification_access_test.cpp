// Access control of the radios.
#include "record.h"

namespace pendra::test {
namespace {

const std::string kAccess = "Device/Wireless5/AccessControl/";

class AccessVerification : public VerificationTest {
  protected:
    AccessVerification() {
        access.WlAcEnbl = 1;
        fillRules(access, 3);
    }
    ZepAccessControl& access = recordRadio(kBand5).accessControl;
};

TEST_F(AccessVerification, ValidRules_AreAccepted) {
    expectAccepted();
}

// The message names the radio's enable tag.
TEST_F(AccessVerification, Switch_IsReportedAsWlEnbl) {
    for (const int32_t value : {-1, 3}) {
        access.WlAcEnbl = value;
        expectFault(3, kAccess + "WlEnbl");
    }
}

TEST_F(AccessVerification, Off_HasNeitherModeNorRulesChecked) {
    access.WlAcMode = 9;
    access.acRule[0].Active = 9;
    setText(access.acRule[1].MAC, "");
    for (const int32_t value : {0, 2}) {
        access.WlAcEnbl = value;
        expectAccepted();
    }
}

TEST_F(AccessVerification, Mode_IsZeroOrOne) {
    for (const int32_t value : {-1, 2}) {
        access.WlAcMode = value;
        expectFault(3, kAccess + "WlAcMode");
    }
    access.WlAcMode = 1;
    expectAccepted();
}

TEST_F(AccessVerification, RuleSwitch_IsZeroOrOne) {
    for (const int32_t value : {-1, 2}) {
        access.acRule[2].Active = value;
        expectFault(3, kAccess + "AcRule/Active");
    }
    access.acRule[2].Active = 0;
    expectAccepted();
}

TEST_F(AccessVerification, EmptyMac_FailsWithoutALineBelowLevel6) {
    setText(access.acRule[1].MAC, "");
    expectFault(3, kAccess + "AcRule/MAC");
    EXPECT_EQ("1000: Zep SetResult=3, SetMsg='Device/Wireless5/AccessControl/AcRule/MAC', GetWaitSec=0\n", logText());
}

TEST_F(AccessVerification, EmptyMac_IsLoggedAtLevel6) {
    daemon_log_level = 6;
    setText(access.acRule[1].MAC, " \t");
    EXPECT_EQ(0, Verify_ZepXml());
    EXPECT_EQ(resultDocument(3, kAccess + "AcRule/MAC", 0), device().events);
    EXPECT_EQ(
        "1000: 1000:Invalid Mac=\n"
        "1000: Zep SetResult=3, SetMsg='Device/Wireless5/AccessControl/AcRule/MAC', GetWaitSec=0\n",
        logText());
}

TEST_F(AccessVerification, Macs_AreTrimmedInPlace) {
    setText(access.acRule[0].MAC, " 02:00:00:00 ");
    expectAccepted();
    EXPECT_STREQ("02:00:00:00", access.acRule[0].MAC);
}

// What a MAC looks like is not checked.
TEST_F(AccessVerification, AnyMacText_IsAccepted) {
    setText(access.acRule[0].MAC, "x");
    setText(access.acRule[1].MAC, "17-characters-xyz");
    expectAccepted();
}

TEST_F(AccessVerification, Rules_AreCheckedInOrder) {
    setText(access.acRule[0].MAC, "");
    access.acRule[1].Active = 2;
    expectFault(3, kAccess + "AcRule/MAC");
    setText(access.acRule[0].MAC, "m");
    expectFault(3, kAccess + "AcRule/Active");
}

TEST_F(AccessVerification, RulesBehindTheCount_AreNotChecked) {
    fillRules(access, 4);
    access.acRule[3].Active = 9;
    access.acRuleCount = 3;
    expectAccepted();
    access.acRuleCount = 4;
    expectFault(3, kAccess + "AcRule/Active");
}

TEST_F(AccessVerification, CountAbove40_NeverReachesPastTheRules) {
    fillRules(access, 40);
    for (const int32_t count : {40, 41, 1000, INT32_MAX}) {
        access.acRuleCount = count;
        expectAccepted();
    }
    access.acRule[39].Active = 2;
    expectFault(3, kAccess + "AcRule/Active");
}

TEST_F(AccessVerification, NegativeCount_HasNoRules) {
    access.acRule[0].Active = 9;
    for (const int32_t count : {0, -1, INT32_MIN}) {
        access.acRuleCount = count;
        expectAccepted();
    }
}

TEST_F(AccessVerification, Cloning_ChecksItToo) {
    zepXmlData.apCloningOnly = 1;
    access.WlAcMode = 2;
    expectFault(3, kAccess + "WlAcMode");
}

} // namespace
} // namespace pendra::test
