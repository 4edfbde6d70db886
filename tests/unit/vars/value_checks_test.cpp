// The checks that several variables share: flags, locked settings, numbers, validation rules and enumerations.
#include <cctype>

#include "variables.h"

using pendra::test::Answer;
using pendra::test::DeviceTest;
using pendra::test::fill;
using pendra::test::getVariable;
using pendra::test::Radio;
using pendra::test::radios;
using pendra::test::recordBytes;
using pendra::test::setVariable;
using pendra::test::upLink;
using pendra::test::validate;

namespace {

struct Number {
    std::string name;
    int32_t& field;
};

using Numbers = std::vector<Number>;

void makeConfigurable() {
    upLink().Configurable = 1;
    for (const Radio& radio : radios())
        radio.record.Configurable = 1;
}

class ZeroOrOneFlag : public DeviceTest {
  protected:
    ZeroOrOneFlag() { makeConfigurable(); }

    static Numbers flags() {
        ZepSafetyWdn& safety = zepXmlData.device.safetyWdn;
        Numbers all = {{"zep_Upl_Ets_Survey", upLink().extenderSite.Survey},
                       {"zep_Wdn_SafetyWdnEnbl", safety.SafetyWdnEnbl},
                       {"zep_Wdn_UrlDetectEnbl", safety.UrlDetectEnbl},
                       {"zep_Wdn_SafetyNotifyEnbl", safety.SafetyNotifyEnbl},
                       {"zep_Wdn_ToolRecommendEnbl", safety.ToolRecommendEnbl}};
        for (const Radio& radio : radios())
            all.push_back({radio.name + "Acl_WlAcMode", radio.record.accessControl.WlAcMode});
        return all;
    }
};

TEST_F(ZeroOrOneFlag, TextThatReadsAsZeroOrOne_IsStored) {
    const std::pair<const char*, int32_t> cases[] = {{"0", 0},   {"1", 1},   {"", 0},    {"abc", 0}, {"1x", 1},
                                                     {"+1", 1},  {" 1", 1},  {"01", 1},  {"-0", 0},  {"0x1", 0},
                                                     {"1.9", 1}, {"\t1", 1}, {"true", 0}};
    for (const Number& flag : flags())
        for (const auto& [value, stored] : cases) {
            SCOPED_TRACE(flag.name + "=" + value);
            flag.field = 9;
            EXPECT_EQ(0, validate(flag.name, value));
            EXPECT_EQ(9, flag.field);
            EXPECT_EQ(0, setVariable(flag.name, value));
            EXPECT_EQ(stored, flag.field);
        }
}

TEST_F(ZeroOrOneFlag, AnyOtherNumber_IsRefused) {
    for (const Number& flag : flags())
        for (const char* value :
             {"2", "-1", "10", "11", "4294967296", "4294967297", "99999999999999999999", "-99999999999"}) {
            SCOPED_TRACE(flag.name + "=" + value);
            EXPECT_EQ(2, setVariable(flag.name, value));
            EXPECT_EQ(2, validate(flag.name, value));
            EXPECT_EQ(0, flag.field);
        }
}

class LockedSetting : public DeviceTest {
  protected:
    LockedSetting() { makeConfigurable(); }

    static Numbers settings() {
        Numbers all = {{"zep_RouterEnbl", zepXmlData.device.RouterEnbl}};
        for (const Radio& radio : radios()) {
            all.push_back({radio.name + "WlEnbl", radio.record.WlEnbl});
            all.push_back({radio.name + "WlSchedule", radio.record.WlSchedule});
            all.push_back({radio.name + "Acl_WlAcEnbl", radio.record.accessControl.WlAcEnbl});
        }
        return all;
    }
};

TEST_F(LockedSetting, StoredBelow2_TakesAnyNumber) {
    const std::pair<const char*, int32_t> cases[] = {{"0", 0},
                                                     {"1", 1},
                                                     {"2", 2},
                                                     {"3", 3},
                                                     {"7", 7},
                                                     {"-5", -5},
                                                     {"", 0},
                                                     {"abc", 0},
                                                     {"8x", 8},
                                                     {"99999999999", INT32_MAX},
                                                     {"-99999999999", INT32_MIN},
                                                     {"2147483647", INT32_MAX},
                                                     {"2147483648", INT32_MAX}};
    for (const Number& setting : settings())
        for (const int32_t stored : {0, 1, -1, INT32_MIN})
            for (const auto& [value, wanted] : cases) {
                SCOPED_TRACE(setting.name + "=" + value);
                setting.field = stored;
                EXPECT_EQ(0, validate(setting.name, value));
                EXPECT_EQ(stored, setting.field);
                EXPECT_EQ(0, setVariable(setting.name, value));
                EXPECT_EQ(wanted, setting.field);
            }
}

TEST_F(LockedSetting, Stored2OrMore_TakesNothingElse) {
    for (const Number& setting : settings())
        for (const int32_t stored : {2, 3, 7, INT32_MAX}) {
            setting.field = stored;
            for (const char* value : {"0", "1", "6", "", "-1", "abc"}) {
                SCOPED_TRACE(setting.name + "=" + value);
                EXPECT_EQ(2, setVariable(setting.name, value));
                EXPECT_EQ(2, validate(setting.name, value));
                EXPECT_EQ(stored, setting.field);
            }
        }
}

TEST_F(LockedSetting, TheStoredNumberItself_IsTaken) {
    for (const Number& setting : settings())
        for (const int32_t stored : {2, 7, INT32_MAX}) {
            setting.field = stored;
            EXPECT_EQ(0, setVariable(setting.name, std::to_string(stored))) << setting.name;
            EXPECT_EQ(0, validate(setting.name, std::to_string(stored))) << setting.name;
            EXPECT_EQ(stored, setting.field);
        }
}

TEST_F(LockedSetting, RouterModeSetTo7_IsFixedFromThenOn) {
    zepXmlData.device.RouterEnbl = 1;
    EXPECT_EQ(0, setVariable("zep_RouterEnbl", "7"));
    EXPECT_EQ(7, zepXmlData.device.RouterEnbl);
    EXPECT_EQ(2, setVariable("zep_RouterEnbl", "1"));
    EXPECT_EQ(0, setVariable("zep_RouterEnbl", "7"));
    EXPECT_EQ(7, zepXmlData.device.RouterEnbl);
}

class NumberVariable : public DeviceTest {
  protected:
    NumberVariable() { makeConfigurable(); }
};

TEST_F(NumberVariable, Get_PrintsItInDecimal) {
    Numbers all = {{"zep_RouterEnbl", zepXmlData.device.RouterEnbl},
                   {"zep_Upl_Configurable", upLink().Configurable},
                   {"zep_Ver_major", zepXmlData.specVersion.major},
                   {"zep_Wdn_UrlDetectEnbl", zepXmlData.device.safetyWdn.UrlDetectEnbl}};
    for (const Radio& radio : radios())
        all.push_back({radio.name + "Acl_AcRuleNo", radio.record.accessControl.acRuleCount});
    for (const Number& number : all)
        for (const int32_t value : {0, 1, -1, 42, INT32_MAX, INT32_MIN}) {
            number.field = value;
            EXPECT_EQ((Answer{0, std::to_string(value)}), getVariable(number.name)) << number.name;
        }
}

TEST_F(NumberVariable, LongText_IsReadWithinItsBytes) {
    EXPECT_EQ(0, setVariable("zep_RouterEnbl", "1" + std::string(4095, 'x')));
    EXPECT_EQ(1, zepXmlData.device.RouterEnbl);
    EXPECT_EQ(0, setVariable("zep_RouterEnbl", std::string(4096, '9')));
    EXPECT_EQ(INT32_MAX, zepXmlData.device.RouterEnbl);
}

// ---- validation rules ----

struct Ruled {
    std::string name;
    char (&field)[128];
    char (&rule)[128];
};

class RuledText : public DeviceTest {
  protected:
    RuledText() { makeConfigurable(); }

    static std::vector<Ruled> texts() {
        ZepDevice& device = zepXmlData.device;
        std::vector<Ruled> all = {
            {"zep_DeviceName", device.DeviceName, device.DeviceNameRule},
            {"zep_DevicePwd", device.DevicePwd, device.DevicePwdRule},
            {"zep_Upl_LoginUserName", upLink().LoginUserName, upLink().LoginUserNameRule},
            {"zep_Upl_LoginPassword", upLink().LoginPassword, upLink().LoginPasswordRule},
        };
        for (const Radio& radio : radios()) {
            all.push_back({radio.name + "WirelessName", radio.record.WirelessName, radio.record.WirelessNameRule});
            all.push_back({radio.name + "EncryptionKey", radio.record.EncryptionKey, radio.record.EncryptionKeyRule});
        }
        return all;
    }
};

TEST_F(RuledText, Refusal_GivesTheRulesOwnCode) {
    const std::tuple<const char*, std::string, int32_t> cases[] = {
        {"0,4,2", "x", 10},
        {"0,4,2", "12345", 10},
        {"0,4,2", "", 10},
        {"0,4,2", "a\tb", 11},
        {"0,8,2", "\xc3\xbc", 11},
        {"1,100,1", "0", 21},
        {"1,100,1", "100.5", 20},
        {"1,100,1", "abc", 21},
        {"0,9,1,0,0,<,>", "a<b", 11},
        {"0,9,1,0,1,a-z", "aBc", 11},
        {"", "", 10},
    };
    for (const Ruled& text : texts())
        for (const auto& [rule, value, code] : cases) {
            SCOPED_TRACE(text.name + " " + rule + " " + value);
            fill(text.rule, rule);
            fill(text.field, "kept");
            EXPECT_EQ(code, setVariable(text.name, value));
            EXPECT_EQ(code, validate(text.name, value));
            EXPECT_STREQ("kept", text.field);
        }
}

TEST_F(RuledText, ValueThatPasses_IsStoredAsItStands) {
    const std::pair<const char*, const char*> cases[] = {
        {"0,4,2", "ab"},   {"0,8,0", ""}, {"0,9,1", " a b "},  {"1,100,1", "7 x"},
        {"2", "\x01\xff"}, {"", "x"},     {"0,9,1,1", "a\tb"}, {"0,9,1,0,1,a-z", "abc"}};
    for (const Ruled& text : texts())
        for (const auto& [rule, value] : cases) {
            SCOPED_TRACE(text.name + " " + rule);
            fill(text.rule, rule);
            fill(text.field, "before");
            EXPECT_EQ(0, setVariable(text.name, value));
            EXPECT_STREQ(value, text.field);
        }
}

TEST_F(RuledText, EachVariable_HasItsOwnRule) {
    for (const Ruled& text : texts())
        fill(text.rule, "0,9,1");
    for (const Ruled& text : texts()) {
        fill(text.rule, "0,2,1");
        for (const Ruled& other : texts())
            EXPECT_EQ(other.name == text.name ? 10 : 0, validate(other.name, "abc")) << other.name;
        fill(text.rule, "0,9,1");
    }
}

// The rule speaks first; what it lets pass must still fit.
TEST_F(RuledText, OverlongValue_IsRefusedAfterTheRule) {
    for (const Ruled& text : texts()) {
        fill(text.field, "kept");
        for (const size_t length : {128U, 129U, 4096U}) {
            SCOPED_TRACE(text.name + " " + std::to_string(length));
            const std::string value(length, 'x');
            for (const auto& [rule, code] :
                 {std::pair("0,12,2", 10), std::pair("0,200,1,0,1,0-9", 11), std::pair("1,0,1", 21),
                  std::pair("0,9999,0", 2), std::pair("2", 2), std::pair("", 2)}) {
                fill(text.rule, rule);
                EXPECT_EQ(code, setVariable(text.name, value)) << rule;
                EXPECT_EQ(code, validate(text.name, value)) << rule;
            }
        }
        EXPECT_STREQ("kept", text.field);
    }
}

TEST_F(RuledText, RuleText_IsReadableUnderTheNameAndValidate) {
    for (const Ruled& text : texts()) {
        const std::string longest(127, '0');
        for (const std::string rule : {"", "0,32,1", longest.c_str()}) {
            fill(text.rule, rule);
            EXPECT_EQ((Answer{0, rule}), getVariable(text.name + "_Validate")) << text.name;
        }
    }
}

// ---- enumerations ----

struct Enumeration {
    std::string name;
    std::string traceName;
    std::vector<std::string> rows;
    char (&field)[32];
    int32_t& index;
};

class EnumeratedText : public DeviceTest {
  protected:
    EnumeratedText() { makeConfigurable(); }

    static std::vector<Enumeration> enumerations() {
        ZepUpLink& uplink = upLink();
        std::vector<Enumeration> all = {
            {"zep_Upl_HardwareType",
             "HardwareType",
             {"Ethernet", "ADSL", "VDSL", "WWan802.11", "WWanAPN", "DSL"},
             uplink.HardwareType,
             uplink.hardwareTypeIdx},
            {"zep_Upl_ConnType", "ConnType", {"DHCP", "Static", "PPPoE", "PPPoA"}, uplink.ConnType, uplink.connTypeIdx},
            {"zep_Upl_Ets_WirelessType",
             "WirelessType",
             {"2.4", "5"},
             uplink.extenderSite.WirelessType,
             uplink.extenderSite.wirelessTypeIdx},
        };
        for (const Radio& radio : radios()) {
            all.push_back({radio.name + "EncryptionMode",
                           "EncrypMode",
                           {"None", "WEP", "WPA", "WPAWPA2", "WPA2"},
                           radio.record.EncryptionMode,
                           radio.record.encrypModeIdx});
            all.push_back({radio.name + "EncryptionType",
                           "EncrypType",
                           {"AUTO", "OPEN", "SHARED", "TKIP", "AES", ""},
                           radio.record.EncryptionType,
                           radio.record.encrypTypeIdx});
        }
        return all;
    }
};

std::string changed(std::string text, int (*change)(int)) {
    for (char& character : text)
        character = static_cast<char>(change(static_cast<unsigned char>(character)));
    return text;
}

TEST_F(EnumeratedText, EveryRow_IsStoredWithItsIndex) {
    for (const Enumeration& variable : enumerations())
        for (size_t row = 0; row < variable.rows.size(); row++) {
            SCOPED_TRACE(variable.name + "=" + variable.rows[row]);
            variable.index = -7;
            EXPECT_EQ(0, setVariable(variable.name, variable.rows[row]));
            EXPECT_EQ(variable.rows[row], variable.field);
            EXPECT_EQ(static_cast<int32_t>(row), variable.index);
            EXPECT_EQ((Answer{0, variable.rows[row]}), getVariable(variable.name));
        }
}

TEST_F(EnumeratedText, RowInAnotherCase_IsStoredInTheTablesSpelling) {
    for (const Enumeration& variable : enumerations())
        for (size_t row = 0; row < variable.rows.size(); row++)
            for (const auto change :
                 {static_cast<int (*)(int)>(std::toupper), static_cast<int (*)(int)>(std::tolower)}) {
                EXPECT_EQ(0, setVariable(variable.name, changed(variable.rows[row], change)));
                EXPECT_EQ(variable.rows[row], variable.field);
                EXPECT_EQ(static_cast<int32_t>(row), variable.index);
            }
}

TEST_F(EnumeratedText, ValidateAlone_Gives2ForARowAnd10ForAnythingElse) {
    for (const Enumeration& variable : enumerations()) {
        const std::string before = recordBytes();
        for (const std::string& row : variable.rows)
            EXPECT_EQ(2, validate(variable.name, row)) << variable.name << row;
        for (const char* other : {"WPA3", "PPP", "none such", " ", "_", "DHCP ", " DHCP", "2", "6", "0"})
            EXPECT_EQ(10, validate(variable.name, other)) << variable.name << other;
        EXPECT_EQ(before, recordBytes());
    }
}

TEST_F(EnumeratedText, EmptyText_IsARowOfTheEncryptionTypesOnly) {
    for (const Enumeration& variable : enumerations()) {
        const bool isRow = variable.traceName == "EncrypType";
        EXPECT_EQ(isRow ? 2 : 10, validate(variable.name, "")) << variable.name;
        EXPECT_EQ(isRow ? 0 : 10, setVariable(variable.name, "")) << variable.name;
        EXPECT_EQ(isRow ? 5 : 0, variable.index) << variable.name;
    }
}

TEST_F(EnumeratedText, EveryCheck_IsTracedWithItsIndex) {
    daemon_log_level = 7;
    for (const Enumeration& variable : enumerations()) {
        setVariable(variable.name, variable.rows[1]);
        validate(variable.name, variable.rows[0]);
        setVariable(variable.name, "none such");
        getVariable(variable.name);
    }
    std::vector<std::string> expected;
    for (const Enumeration& variable : enumerations()) {
        const std::string start = "Zep " + variable.traceName + "='";
        expected.push_back(start + variable.rows[1] + "' -> 1");
        expected.push_back(start + variable.rows[0] + "' -> 0");
        expected.push_back(start + "none such' -> -1");
    }
    EXPECT_EQ(expected, logLines());
}

TEST_F(EnumeratedText, CheckBelowTheThreshold_LeavesNoTrace) {
    daemon_log_level = 6;
    for (const Enumeration& variable : enumerations())
        setVariable(variable.name, variable.rows[0]);
    EXPECT_EQ("", logText());
}

} // namespace
