// The variables of the device itself, its rules and the constants that pages need.
#include "variables.h"

using pendra::test::Answer;
using pendra::test::call;
using pendra::test::device;
using pendra::test::DeviceTest;
using pendra::test::Events;
using pendra::test::fill;
using pendra::test::getVariable;
using pendra::test::pathOf;
using pendra::test::setVariable;
using pendra::test::validate;

namespace {

class EasyRoaming : public DeviceTest {
  protected:
    EasyRoaming() { fill(zepXmlData.device.EasyRoaming, "before"); }
};

TEST_F(EasyRoaming, FourNumbersInTheirRanges_AreStoredAsGiven) {
    const char* cases[] = {"-70 3 10 5",     "-1 0 1 1",        "  -70   3\t10\n5 ",
                           "-70 3 10 5 6",   "-70 3 10 5xyz",   "-70+3+10+5",
                           "-070 03 010 05", "-70 3 10 5 text", "-99999999999 0 1 99999999999"};
    for (const char* value : cases) {
        EXPECT_EQ(0, validate("zep_EasyRoaming", value)) << value;
        EXPECT_EQ(0, setVariable("zep_EasyRoaming", value)) << value;
        EXPECT_STREQ(value, zepXmlData.device.EasyRoaming);
    }
}

TEST_F(EasyRoaming, NumberOutOfItsRange_IsRefused) {
    const char* cases[] = {"70 3 10 5",   "0 3 10 5",   "-70 -1 10 5", "-70 3 0 5",
                           "-70 3 -10 5", "-70 3 10 0", "-70 3 10 -5"};
    for (const char* value : cases) {
        EXPECT_EQ(2, setVariable("zep_EasyRoaming", value)) << value;
        EXPECT_EQ(2, validate("zep_EasyRoaming", value)) << value;
    }
    EXPECT_STREQ("before", zepXmlData.device.EasyRoaming);
}

TEST_F(EasyRoaming, FewerThanFourNumbers_AreRefused) {
    const char* cases[] = {"",  " ",          "-70",        "-70 3",       "-70 3 10",   "-70 3 10 ",   "-70 3 10 x",
                           "x", "-70,3,10,5", "-70 x 10 5", "- 70 3 10 5", "-70 3 10 -", "-70.5 3 10 5"};
    for (const char* value : cases) {
        EXPECT_EQ(2, setVariable("zep_EasyRoaming", value)) << value;
        EXPECT_EQ(2, validate("zep_EasyRoaming", value)) << value;
    }
    EXPECT_STREQ("before", zepXmlData.device.EasyRoaming);
}

class DeviceVariables : public DeviceTest {};

TEST_F(DeviceVariables, FactoryDefault_IsReadFromTheTree) {
    const std::pair<const char*, const char*> cases[] = {{"0", "0"},  {"1", "1"},  {"5", "5"},
                                                         {"-1", "1"}, {"-9", "1"}, {"", "0"}};
    for (const auto& [node, value] : cases) {
        device().tree["/sys/FactoryDefault"] = node;
        EXPECT_EQ((Answer{0, value}), getVariable("zep_FactoryDefault")) << node;
    }
    device().tree.clear();
    device().tree["/sys/factorydefault"] = "0"; // another node: the name's capitals are kept
    EXPECT_EQ((Answer{0, "1"}), getVariable("zep_FactoryDefault"));
    EXPECT_EQ(2, setVariable("zep_FactoryDefault", "1"));
}

TEST_F(DeviceVariables, LiveTexts_AreReadUnderTheNamesCapitals) {
    device().tree = {{"/sys/devicetype", "low"}, {"/lan/wirelessconcurrent", "low"}};
    EXPECT_EQ((Answer{0, ""}), getVariable("zep_DeviceType"));
    EXPECT_EQ((Answer{0, ""}), getVariable("zep_WirelessConcurrent"));
    EXPECT_EQ((std::vector<std::string>{"/sys/DeviceType", "/lan/WirelessConcurrent"}), device().reads);
}

TEST_F(DeviceVariables, RecordsTexts_AreNotReadFromTheTree) {
    device().tree["/sys/friendlyname"] = "tree";
    fill(zepXmlData.device.DeviceName, "record");
    EXPECT_EQ((Answer{0, "record"}), getVariable("zep_DeviceName"));
    EXPECT_TRUE(device().reads.empty());
}

TEST_F(DeviceVariables, RuleTexts_AreReadOnlyInGetMode) {
    fill(zepXmlData.device.DeviceNameRule, "0,32,1");
    fill(zepXmlData.device.DevicePwdRule, "0,16,4");
    EXPECT_EQ((Answer{0, "0,32,1"}), getVariable("zep_DeviceName_Validate"));
    EXPECT_EQ((Answer{0, "0,16,4"}), getVariable("zep_DevicePwd_Validate"));
    EXPECT_EQ((Answer{0, "/sys/friendlyname_validate"}), pathOf("zep_DeviceName_Validate"));
    EXPECT_EQ((Answer{0, "/sys/user:1/password_validate"}), pathOf("zep_DevicePwd_Validate"));
    for (const uint32_t flags : {ZEPVAR_SET, ZEPVAR_VALIDATE, ZEPVAR_PATH, 0U}) {
        EXPECT_EQ(2, call("zep_DeviceName_Validate", "0,1,1", flags).code);
        EXPECT_EQ(2, call("zep_DevicePwd_Validate", "0,1,1", flags).code);
    }
    EXPECT_STREQ("0,32,1", zepXmlData.device.DeviceNameRule);
}

TEST_F(DeviceVariables, OtherNamesAndValidate_AreUnknown) {
    for (const char* name : {"zep_EasyRoaming_Validate", "zep_RouterEnbl_Validate", "zep_DeviceModel_Validate",
                             "zep_Upl_Validate", "zep_Wl2_Validate", "zep_Var_Validate", "zep_Ver_Validate",
                             "zep_DeviceName_validate", "zep_Ext_Validate", "zep_Wdn_Validate"})
        EXPECT_EQ((Answer{2, ""}), getVariable(name)) << name;
}

class ConstantVariables : public DeviceTest {
  protected:
    ConstantVariables() { device().tree["/runtime/bramble/lanip"] = "192.168.7.1"; }
};

constexpr std::pair<const char*, const char*> kConstants[] = {{"zep_Var_BRName", "bramble"},
                                                              {"zep_Var_BRTitle", "Bramble"},
                                                              {"zep_Var_BRPath", "/bramble"},
                                                              {"zep_Var_AuthKeyName", "DKey"},
                                                              {"zep_Var_LanIP", "192.168.7.1"}};

TEST_F(ConstantVariables, GetAndPath_GiveTheSame) {
    for (const auto& [name, value] : kConstants) {
        EXPECT_EQ((Answer{0, value}), getVariable(name));
        EXPECT_EQ((Answer{0, value}), pathOf(name));
    }
}

TEST_F(ConstantVariables, ModesWithoutGet_AreRefused) {
    for (const auto& [name, value] : kConstants)
        for (const uint32_t flags : {0U, ZEPVAR_SET, ZEPVAR_VALIDATE, ZEPVAR_PATH, ZEPVAR_SET | ZEPVAR_PATH})
            EXPECT_EQ((Answer{2, "x"}), call(name, "x", flags)) << name;
    EXPECT_EQ(Events{}, device().events);
}

TEST_F(ConstantVariables, OtherNames_AreUnknown) {
    for (const char* name : {"zep_Var", "zep_Var_", "zep_Var_BRName_X", "zep_Var_brname", "zep_Var_Foo",
                             "zep_Var_BRNam", "zep_Var_LanIP_X"})
        EXPECT_EQ((Answer{2, ""}), getVariable(name)) << name;
}

TEST_F(ConstantVariables, LanAddress_IsReadFromTheTreeAndCut) {
    device().tree["/runtime/bramble/lanip"] = std::string(1023, 'a');
    EXPECT_EQ((Answer{0, std::string(127, 'a')}), getVariable("zep_Var_LanIP"));
    device().tree.clear();
    EXPECT_EQ((Answer{0, ""}), getVariable("zep_Var_LanIP"));
}

} // namespace
