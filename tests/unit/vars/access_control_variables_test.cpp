// The variables of a radio's access control and of its rules.
#include "variables.h"

using pendra::test::Answer;
using pendra::test::call;
using pendra::test::DeviceTest;
using pendra::test::fill;
using pendra::test::getVariable;
using pendra::test::pathOf;
using pendra::test::Radio;
using pendra::test::radios;
using pendra::test::recordBytes;
using pendra::test::setVariable;
using pendra::test::validate;

namespace {

std::string ruleName(const Radio& radio, int index, const std::string& leaf) {
    const std::string digits = {static_cast<char>('0' + index / 10), static_cast<char>('0' + index % 10)};
    return radio.name + "Acl_R" + digits + "_" + leaf;
}

class AccessRules : public DeviceTest {
  protected:
    AccessRules() {
        for (const Radio& radio : radios()) {
            radio.record.Configurable = 1;
            radio.record.accessControl.acRuleCount = ZEP_AC_RULE_MAX;
        }
    }
};

TEST_F(AccessRules, EveryRule_IsReadAndSetUnderItsIndex) {
    for (const Radio& radio : radios())
        for (int index = 0; index < ZEP_AC_RULE_MAX; index++) {
            SCOPED_TRACE(ruleName(radio, index, "MAC"));
            ZepAcRule& rule = radio.record.accessControl.acRule[index];
            const std::string mac = "MAC " + std::to_string(index);
            EXPECT_EQ(0, setVariable(ruleName(radio, index, "MAC"), mac));
            EXPECT_EQ(mac, rule.MAC);
            EXPECT_EQ((Answer{0, mac}), getVariable(ruleName(radio, index, "MAC")));
            rule.Active = index - 3;
            EXPECT_EQ((Answer{0, std::to_string(index - 3)}), getVariable(ruleName(radio, index, "Active")));
        }
}

// Counted from 1, and without the node of the radio.
TEST_F(AccessRules, Path_IsThatOfTheElement) {
    for (const Radio& radio : radios())
        for (int index = 0; index < ZEP_AC_RULE_MAX; index++) {
            const std::string element = "/acrule:" + std::to_string(index + 1);
            EXPECT_EQ((Answer{0, element + "/MAC"}), pathOf(ruleName(radio, index, "MAC")));
            EXPECT_EQ((Answer{0, element + "/Active"}), pathOf(ruleName(radio, index, "Active")));
        }
}

TEST_F(AccessRules, IndexAtOrAboveTheCount_IsRefused) {
    for (const Radio& radio : radios())
        for (const int32_t count : {0, 1, 2, 39, 40, -1, INT32_MIN}) {
            radio.record.accessControl.acRuleCount = count;
            for (int index = 0; index < 100; index++) {
                const int32_t code = index < count ? 0 : 2;
                const std::string name = ruleName(radio, index, "MAC");
                EXPECT_EQ(code, getVariable(name).code) << name << " of " << count;
                EXPECT_EQ(code, pathOf(name).code) << name << " of " << count;
                EXPECT_EQ(code, setVariable(name, "x")) << name << " of " << count;
                EXPECT_EQ(code, validate(name, "x")) << name << " of " << count;
            }
        }
}

TEST_F(AccessRules, CountBeyondTheRecord_DoesNotReachPastIt) {
    for (const Radio& radio : radios())
        for (const char* count : {"41", "100", "99999999999"}) {
            EXPECT_EQ(0, setVariable(radio.name + "Acl_AcRuleNo", count));
            const std::string before = recordBytes();
            EXPECT_EQ(0, getVariable(ruleName(radio, 39, "MAC")).code);
            for (int index = ZEP_AC_RULE_MAX; index < 100; index++)
                for (const char* leaf : {"MAC", "Active"}) {
                    EXPECT_EQ((Answer{2, ""}), getVariable(ruleName(radio, index, leaf))) << index;
                    EXPECT_EQ(2, setVariable(ruleName(radio, index, leaf), "1")) << index;
                }
            EXPECT_EQ(before, recordBytes());
        }
}

TEST_F(AccessRules, OneRule_IsReadUnderIndexZero) {
    for (const Radio& radio : radios()) {
        ZepAccessControl& access = radio.record.accessControl;
        fill(access.acRule[0].MAC, "00:11:22:33:44:55");
        access.acRuleCount = 0;
        EXPECT_EQ((Answer{2, ""}), getVariable(radio.name + "Acl_R00_MAC"));
        access.acRuleCount = 1;
        EXPECT_EQ((Answer{0, "00:11:22:33:44:55"}), getVariable(radio.name + "Acl_R00_MAC"));
        EXPECT_EQ((Answer{0, "/acrule:1/MAC"}), pathOf(radio.name + "Acl_R00_MAC"));
        EXPECT_EQ((Answer{2, ""}), getVariable(radio.name + "Acl_R01_MAC"));
    }
}

TEST_F(AccessRules, IndexThatIsNotTwoDigits_IsRefused) {
    for (const Radio& radio : radios())
        for (const char* part : {"R1", "R", "R001", "R0", "R0a", "Ra0", "R-1", "R+1", "R 1", "r00", "S00", "X00",
                                 "R00x", "00", "R0/", "R:0"})
            for (const char* leaf : {"MAC", "Active"}) {
                const std::string name = radio.name + "Acl_" + part + "_" + leaf;
                EXPECT_EQ((Answer{2, ""}), getVariable(name)) << name;
                EXPECT_EQ(2, setVariable(name, "1")) << name;
            }
}

TEST_F(AccessRules, OtherLeavesAndParts_AreUnknown) {
    for (const Radio& radio : radios())
        for (const char* end : {"Acl_R00_Foo", "Acl_R00_", "Acl_R00", "Acl_R00_MAC_X", "Acl_R00_Active_X",
                                "Acl_R00_mac", "Acl_R00_path", "Acl_R00_MAC_Validate", "Foo_R00_MAC", "R00_MAC"}) {
            EXPECT_EQ((Answer{2, ""}), getVariable(radio.name + end)) << end;
            EXPECT_EQ(2, setVariable(radio.name + end, "1")) << end;
            EXPECT_EQ(2, validate(radio.name + end, "1")) << end;
        }
}

TEST_F(AccessRules, ActiveSet_GoesIntoTheRuleThatTheValueNames) {
    for (const Radio& radio : radios())
        for (const int index : {0, 1, 2, 39})
            for (const int32_t value : {0, 1}) {
                SCOPED_TRACE(ruleName(radio, index, "Active") + "=" + std::to_string(value));
                ZepAccessControl& access = radio.record.accessControl;
                for (ZepAcRule& rule : access.acRule)
                    rule.Active = 9;
                EXPECT_EQ(0, setVariable(ruleName(radio, index, "Active"), std::to_string(value)));
                for (int rule = 0; rule < ZEP_AC_RULE_MAX; rule++)
                    EXPECT_EQ(rule == value ? value : 9, access.acRule[rule].Active) << rule;
                EXPECT_EQ((Answer{0, std::to_string(access.acRule[index].Active)}),
                          getVariable(ruleName(radio, index, "Active")));
            }
}

// The named rule is held against the count, not the one that is written.
TEST_F(AccessRules, ActiveSetOfTheOnlyRule_WritesBehindIt) {
    for (const Radio& radio : radios()) {
        ZepAccessControl& access = radio.record.accessControl;
        access.acRuleCount = 1;
        EXPECT_EQ(0, setVariable(radio.name + "Acl_R00_Active", "1"));
        EXPECT_EQ(0, access.acRule[0].Active);
        EXPECT_EQ(1, access.acRule[1].Active);
        EXPECT_EQ(2, setVariable(radio.name + "Acl_R01_Active", "0"));
    }
}

TEST_F(AccessRules, ActiveOtherThanZeroOrOne_IsRefused) {
    for (const Radio& radio : radios()) {
        const std::string before = recordBytes();
        for (const char* value : {"2", "-1", "39", "99999999999", "4294967297"}) {
            EXPECT_EQ(2, setVariable(radio.name + "Acl_R05_Active", value)) << value;
            EXPECT_EQ(2, validate(radio.name + "Acl_R05_Active", value)) << value;
        }
        EXPECT_EQ(0, validate(radio.name + "Acl_R05_Active", "1"));
        EXPECT_EQ(0, validate(radio.name + "Acl_R05_Active", "0"));
        EXPECT_EQ(before, recordBytes());
    }
}

TEST_F(AccessRules, ActiveSetWithGet_SetsTheEmptiedTextWhichIsZero) {
    for (const Radio& radio : radios()) {
        ZepAccessControl& access = radio.record.accessControl;
        access.acRule[0].Active = 1;
        EXPECT_EQ((Answer{0, ""}), call(radio.name + "Acl_R05_Active", "1", ZEPVAR_SET | ZEPVAR_GET));
        EXPECT_EQ(0, access.acRule[0].Active);
        EXPECT_EQ(0, access.acRule[1].Active);
    }
}

TEST_F(AccessRules, RadioThatIsNotConfigurable_RefusesASet) {
    for (const Radio& radio : radios()) {
        radio.record.Configurable = 0;
        const std::string before = recordBytes();
        for (const char* end :
             {"Acl_R00_MAC", "Acl_R00_Active", "Acl_R99_MAC", "Acl_R1_MAC", "Acl_AcRuleNo", "Acl_WlAcEnbl"})
            EXPECT_EQ(1, setVariable(radio.name + end, "1")) << end;
        EXPECT_EQ(0, getVariable(radio.name + "Acl_R00_MAC").code);
        EXPECT_EQ(0, validate(radio.name + "Acl_R00_MAC", "x"));
        EXPECT_EQ(before, recordBytes());
    }
}

class AccessControlVariables : public AccessRules {};

TEST_F(AccessControlVariables, RuleCount_IsAnyInteger) {
    const std::pair<const char*, int32_t> cases[] = {{"0", 0},
                                                     {"40", 40},
                                                     {"41", 41},
                                                     {"-1", -1},
                                                     {"", 0},
                                                     {"abc", 0},
                                                     {"7x", 7},
                                                     {"99999999999", INT32_MAX},
                                                     {"-99999999999", INT32_MIN}};
    for (const Radio& radio : radios())
        for (const auto& [value, count] : cases) {
            EXPECT_EQ(0, validate(radio.name + "Acl_AcRuleNo", value));
            EXPECT_EQ(0, setVariable(radio.name + "Acl_AcRuleNo", value));
            EXPECT_EQ(count, radio.record.accessControl.acRuleCount);
            EXPECT_EQ((Answer{0, std::to_string(count)}), getVariable(radio.name + "Acl_AcRuleNo"));
        }
}

TEST_F(AccessControlVariables, Paths_StandUnderTheRadiosNode) {
    EXPECT_EQ((Answer{0, "/lan/wireless2.4:1/accesscontrol/WlAcEnbl"}), pathOf("zep_Wl2_Acl_WlAcEnbl"));
    EXPECT_EQ((Answer{0, "/lan/wireless5:1/accesscontrol/WlAcMode"}), pathOf("zep_Wl5_Acl_WlAcMode"));
    EXPECT_EQ((Answer{0, "/lan/wireless2.4:1/accesscontrol/acrule#"}), pathOf("zep_Wl2_Acl_AcRuleNo"));
    EXPECT_EQ((Answer{0, "/lan/wireless5:1/accesscontrol/acrule#"}), pathOf("zep_Wl5_Acl_AcRuleNo"));
}

TEST_F(AccessControlVariables, NamesOfTheRadio_AreUnknownHere) {
    for (const Radio& radio : radios())
        for (const char* end :
             {"Acl_WlEnbl", "Acl_Channel", "WlAcEnbl", "AcRuleNo", "Acl_AcRuleNo_X", "Acl_acrule#", "Foo_WlAcEnbl"})
            EXPECT_EQ((Answer{2, ""}), getVariable(radio.name + end)) << end;
}

} // namespace
