#include "host/words.h"

#include <gtest/gtest.h>

namespace pendra::host {
namespace {

struct RuleRow {
    const char* rule;
    const char* words;
};

class RuleInWords : public testing::TestWithParam<RuleRow> {};

TEST_P(RuleInWords, Rule_IsToldToAPerson) {
    EXPECT_EQ(ruleInWords(GetParam().rule), GetParam().words);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, RuleInWords,
    testing::Values(RuleRow{"0,32,1", "1 to 32 characters, no accents"},
                    RuleRow{"0,64,0", "up to 64 characters, no accents"},
                    RuleRow{"0,8,8", "exactly 8 characters, no accents"}, RuleRow{"0,32,1,1", "1 to 32 characters"},
                    RuleRow{"0,63,8,0,1,0-9,A-Z,a-z", "8 to 63 characters, no accents; only these: 0-9 A-Z a-z"},
                    RuleRow{"0,32,1,0,0,<,>,\\,", "1 to 32 characters, no accents; none of these: < > ,"},
                    RuleRow{"0,32,1,0,0, ", "1 to 32 characters, no accents; none of these: blank"},
                    RuleRow{"1,13,1", "a number from 1 to 13"}, RuleRow{"1,13", "a number up to 13"},
                    RuleRow{"1", "a number"}, RuleRow{"2,1,1", ""}, RuleRow{"4294967297,1,1", ""}, RuleRow{"", ""}));

TEST(RefusalOfNothing, NoVariable_IsSaid) {
    EXPECT_EQ(refusalInWords(nullptr, 2, ""), "There is no such setting.");
    EXPECT_EQ(refusalInWords(nullptr, 0, ""), "");
}

struct RefusalRow {
    const char* name;
    int32_t code;
    const char* words;
};

class RefusalInWords : public testing::TestWithParam<RefusalRow> {};

TEST_P(RefusalInWords, Code_IsToldWithoutItsNumber) {
    const RefusalRow& row = GetParam();
    const VariableInfo* variable = findVariable(row.name);
    ASSERT_NE(variable, nullptr);
    EXPECT_EQ(refusalInWords(variable, row.code, "0,32,1"), row.words);
}

INSTANTIATE_TEST_SUITE_P(
    Codes, RefusalInWords,
    testing::Values(RefusalRow{"zep_DeviceName", 1, "This part of the device cannot be changed."},
                    RefusalRow{"zep_DeviceName", 2, "This is too long."},
                    RefusalRow{"zep_DeviceName", 10, "This must be 1 to 32 characters, no accents."},
                    RefusalRow{"zep_DeviceName", 11,
                               "A character is not allowed here: 1 to 32 characters, no accents."},
                    RefusalRow{"zep_RouterEnbl", 2, "The device has fixed this setting."},
                    RefusalRow{"zep_Wdn_SafetyWdnEnbl", 2, "This must be 0 (off) or 1 (on)."},
                    RefusalRow{"zep_Upl_NetMask", 2, "This must be a netmask like 255.255.255.0."},
                    RefusalRow{"zep_FactoryDefault", 2, "This can be read but not set."},
                    RefusalRow{"zep_Upl_Dsl_IspName", 3, "This uplink needs the name of the provider."},
                    RefusalRow{"zep_Wl2_Acl_R00_MAC", 3, "This is missing or not valid."}));

} // namespace
} // namespace pendra::host
