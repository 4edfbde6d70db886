// The entry of the variable interface: names, modes and the way to a section.
#include "variables.h"

using pendra::test::Answer;
using pendra::test::call;
using pendra::test::device;
using pendra::test::DeviceTest;
using pendra::test::Events;
using pendra::test::fill;
using pendra::test::getVariable;
using pendra::test::pathOf;
using pendra::test::recordBytes;
using pendra::test::setVariable;
using pendra::test::upLink;
using pendra::test::validate;

namespace {

constexpr uint32_t kFlags[] = {ZEPVAR_GET, ZEPVAR_PATH, ZEPVAR_SET, ZEPVAR_VALIDATE};

// Every set of mode flags.
std::vector<uint32_t> allModes() {
    std::vector<uint32_t> modes;
    for (uint32_t choice = 0; choice < 16; choice++) {
        uint32_t flags = 0;
        for (uint32_t bit = 0; bit < 4; bit++)
            if ((choice & (1U << bit)) != 0) flags |= kFlags[bit];
        modes.push_back(flags);
    }
    return modes;
}

class VariableEntry : public DeviceTest {
  protected:
    VariableEntry() {
        ZepDevice& record = zepXmlData.device;
        fill(record.DeviceName, "Router");
        fill(record.DeviceNameRule, "0,12,2");
        for (ZepWireless& radio : record.wireless)
            radio.Configurable = 1;
        record.upLink.Configurable = 1;
    }
};

TEST_F(VariableEntry, Null_IsRefused) {
    char value[ZEPVAR_VALUE_SIZE] = "value";
    for (const uint32_t flags : allModes()) {
        EXPECT_EQ(2, setget_ZepVar(nullptr, value, flags));
        EXPECT_EQ(2, setget_ZepVar("zep_DeviceName", nullptr, flags));
        EXPECT_EQ(2, setget_ZepVar("zep_Act_SetZepVars", nullptr, flags));
        EXPECT_EQ(2, setget_ZepVar(nullptr, nullptr, flags));
    }
    EXPECT_STREQ("value", value);
}

TEST_F(VariableEntry, WhatIsNoName_IsRefusedWithTheBufferUntouched) {
    const char* names[] = {"",
                           "zep",
                           "foo_DeviceName",
                           "Zep_DeviceName",
                           "ZEP_DeviceName",
                           " zep_DeviceName",
                           "DeviceName",
                           "_zep",
                           "zepDeviceName",
                           "/",
                           "/Other/x",
                           "/Device",
                           "/Device/a/b",
                           "//Device/DeviceName"};
    const std::string before = recordBytes();
    for (const char* name : names)
        for (const uint32_t flags : allModes())
            EXPECT_EQ((Answer{2, "value"}), call(name, "value", flags)) << name << " " << flags;
    EXPECT_EQ(before, recordBytes());
}

TEST_F(VariableEntry, UnknownName_IsRefusedInEveryMode) {
    const char* names[] = {
        "zep_",
        "zep__",
        "zep_Foo",
        "zep_DeviceName_X",
        "zep_devicename",
        "zep_Foo_Validate",
        "zep_Validate",
        "zep_X_Validate",
        "zep_Var_Validate",
        "zep_VarBRName",
        "zep_Ver",
        "zep_Ver_",
        "zep_Ver_Major",
        "zep_Ver_major_X",
        "zep_Wl2",
        "zep_Wl2_",
        "zep_Wl2_Foo",
        "zep_Wl6_WlEnbl",
        "zep_wl2_WlEnbl",
        "zep_Upl",
        "zep_Upl_",
        "zep_Upl_Foo",
        "zep_Upl_Dsl",
        "zep_Upl_Dsl_",
        "zep_Upl_Dsl_X",
        "zep_Upl_Ets",
        "zep_Upl_Ets_X",
        "zep_Upl_Foo_Survey",
        "zep_Wdn",
        "zep_Wdn_",
        "zep_Wdn_Foo",
        "zep_Wdn_SafetyWdnEnbl_X",
        "zep_Ext",
        "zep_Ext_",
        "zep_Ext_Foo",
        "zep_Ext_Fwu",
        "zep_Ext_Fwu_X",
        "zep_Ext_Ssv",
        "zep_Wl2_Acl",
        "zep_Wl2_Acl_X",
        "zep_Wl2_Acl_WlAcEnbl_X",
        "zep_Wl2_X_WlEnbl",
        "zep_Wl2_WlEnbl_X",
        "zep_Wl2_WirelessName_Validate_X",
        "zep_Act",
        "zep_Upl_Dsl_IspName_X",
        "zep_Device_Name",
        "zep_Zzz_X",
    };
    const std::string before = recordBytes();
    for (const std::string name : names)
        for (const uint32_t flags : allModes()) {
            const bool keepsBuffer = (flags & ZEPVAR_GET) == 0;
            EXPECT_EQ((Answer{2, keepsBuffer ? "1" : ""}), call(name, "1", flags)) << name << " " << flags;
        }
    EXPECT_EQ(before, recordBytes());
    EXPECT_EQ(Events{}, device().events);
}

TEST_F(VariableEntry, UnknownAction_KeepsTheBufferInEveryMode) {
    for (const char* name : {"zep_Act_", "zep_Act_Foo", "zep_Act_SiteSurvey_X", "zep_Act_sitesurvey", "zep_Act_Foo_X"})
        for (const uint32_t flags : allModes())
            EXPECT_EQ((Answer{2, "value"}), call(name, "value", flags)) << name << " " << flags;
    EXPECT_EQ(Events{}, device().events);
}

TEST_F(VariableEntry, DocumentPath_IsTheSameAsItsName) {
    EXPECT_EQ((Answer{0, "Router"}), getVariable("/Device/DeviceName"));
    EXPECT_EQ((Answer{0, "/sys/friendlyname"}), pathOf("/Device/DeviceName"));
    EXPECT_EQ(0, setVariable("/Device/Wireless5/AccessControl/WlAcMode", "1"));
    EXPECT_EQ(1, zepXmlData.device.wireless[1].accessControl.WlAcMode);
    EXPECT_EQ(10, validate("/Device/DeviceName", "x"));
    EXPECT_EQ((Answer{0, "bramble"}), getVariable("/Device/Var_BRName"));
    EXPECT_EQ((Answer{0, "Router"}), getVariable("/Device/DeviceName \r\n")); // white space is cut on the way
}

TEST_F(VariableEntry, DocumentPath_IsTracedWithItsName) {
    daemon_log_level = 7;
    getVariable("/Device/DeviceName");
    EXPECT_EQ("1000: zepVar='zep_DeviceName'\n", logText());
}

TEST_F(VariableEntry, DocumentPathBelowTheThreshold_LeavesNoTrace) {
    daemon_log_level = 6;
    getVariable("/Device/DeviceName");
    EXPECT_EQ("", logText());
}

TEST_F(VariableEntry, Name_LeavesNoTrace) {
    daemon_log_level = 7;
    getVariable("zep_DeviceName");
    setVariable("zep_DeviceName", "New");
    validate("zep_DeviceName", "New");
    getVariable("zep_Foo");
    EXPECT_EQ("", logText());
}

TEST_F(VariableEntry, PathTooLongForAName_IsRefused) {
    EXPECT_EQ((Answer{2, "value"}), call("/Device/" + std::string(124, 'x'), "value", ZEPVAR_GET));
    EXPECT_EQ((Answer{2, "value"}), call("/Device/" + std::string(1U << 20, 'x'), "value", ZEPVAR_GET));
    EXPECT_EQ((Answer{2, ""}), call("/Device/" + std::string(123, 'x'), "value", ZEPVAR_GET)); // a name, but unknown
}

TEST_F(VariableEntry, SectionNames_AreRecognisedByThreeCharacters) {
    fill(zepXmlData.device.wireless[0].Country, "DE");
    fill(upLink().dsl.IspName, "Provider");
    zepXmlData.specVersion.major = 4;
    device().tree["/fwupgradeinfo/Vendor"] = "Vendor";
    const std::pair<const char*, const char*> cases[] = {
        {"zep_Wl24_Country", "DE"},
        {"zep_Wl2 any_Country", "DE"},
        {"zep_Uplink_Dslam_IspName", "Provider"},
        {"zep_Version_major", "4"},
        {"zep_Variable_BRName", "bramble"},
        {"zep_Extra_Fwupd_Vendor", "Vendor"},
        {"zep_Wl2_Access_WlAcEnbl", ""},
        {"zep_Wdnxyz_SafetyWdnEnbl", "0"},
        {"zep_Wl2_Aclx_WlAcEnbl", "0"},
        {"zep_Uplxxxxxxxxxx_Etsxx_Survey", "0"},
    };
    for (const auto& [name, value] : cases)
        EXPECT_EQ((Answer{*value == '\0' ? 2 : 0, value}), getVariable(name)) << name;
}

TEST_F(VariableEntry, LongNames_AreTakenApart) {
    fill(zepXmlData.device.wireless[0].Country, "DE");
    for (const size_t length : {31U, 32U, 127U, 128U, 4096U, 1U << 20}) {
        const std::string filler(length - std::string("zep_Wl2_Country").size(), 'x');
        EXPECT_EQ((Answer{0, "DE"}), getVariable("zep_Wl2" + filler + "_Country")) << length;
        EXPECT_EQ((Answer{2, ""}), getVariable("zep_Wl2_Country" + filler)) << length;
        EXPECT_EQ((Answer{2, ""}), getVariable("zep_" + filler)) << length;
    }
}

// Only the first nine underscores part a name; no variable has as many.
TEST_F(VariableEntry, ManyUnderscores_AreNoVariable) {
    for (const std::string start : {"zep_", "zep_Wl2_Acl_R00_MAC", "zep_Upl_Dsl", "zep_Ext_Ssv_S00_BSSID", "zep_Act"})
        for (const size_t count : {5U, 8U, 9U, 10U, 11U, 1000U})
            for (const uint32_t flags : {ZEPVAR_GET, ZEPVAR_SET, ZEPVAR_VALIDATE})
                EXPECT_EQ(2, call(start + std::string(count, '_'), "1", flags).code) << start << count;
}

// One byte put into a known name, at every place.
TEST_F(VariableEntry, EveryByteInAName_LeadsToNoOtherVariable) {
    const std::string name = "zep_Upl_IP";
    const std::string section = "zep_Upl"; // whose name may go on
    fill(upLink().IP, "10.0.0.1");
    const std::string before = recordBytes();
    for (size_t place = 0; place <= name.size(); place++)
        for (int byte = 1; byte < 256; byte++) {
            std::string other = name;
            other.insert(place, 1, static_cast<char>(byte));
            const bool isKnown = other.compare(0, section.size(), section) == 0 &&
                                 other.substr(other.find('_', section.size())) == "_IP";
            EXPECT_EQ(isKnown ? 0 : 2, getVariable(other).code) << place << " " << byte;
            EXPECT_EQ(isKnown ? 0 : 2, setVariable(other, "10.0.0.1")) << place << " " << byte;
        }
    EXPECT_EQ(before, recordBytes());
}

// ---- modes ----

TEST_F(VariableEntry, Get_EmptiesTheBufferFirst) {
    fill(zepXmlData.device.DeviceName, "");
    EXPECT_EQ((Answer{0, ""}), call("zep_DeviceName", "stale", ZEPVAR_GET));
    EXPECT_EQ((Answer{2, ""}), call("zep_Nothing", "stale", ZEPVAR_GET));
    EXPECT_EQ((Answer{2, "kept"}), call("zep_Nothing", "kept", ZEPVAR_SET));
}

TEST_F(VariableEntry, SetWithGet_SetsTheEmptiedText) {
    fill(upLink().dsl.IspName, "Provider");
    EXPECT_EQ((Answer{0, ""}), call("zep_Upl_Dsl_IspName", "New", ZEPVAR_SET | ZEPVAR_GET));
    EXPECT_STREQ("", upLink().dsl.IspName);
    EXPECT_EQ((Answer{10, ""}), call("zep_DeviceName", "New", ZEPVAR_SET | ZEPVAR_GET)); // too short for its rule
    EXPECT_STREQ("Router", zepXmlData.device.DeviceName);
    zepXmlData.device.safetyWdn.UrlDetectEnbl = 1;
    EXPECT_EQ((Answer{0, ""}), call("zep_Wdn_UrlDetectEnbl", "1", ZEPVAR_SET | ZEPVAR_GET));
    EXPECT_EQ(0, zepXmlData.device.safetyWdn.UrlDetectEnbl);
}

TEST_F(VariableEntry, SetWithGetOfAnEnumeration_SetsTheEmptyRow) {
    ZepWireless& radio = zepXmlData.device.wireless[0];
    EXPECT_EQ((Answer{0, ""}), call("zep_Wl2_EncryptionType", "AES", ZEPVAR_SET | ZEPVAR_GET));
    EXPECT_STREQ("", radio.EncryptionType);
    EXPECT_EQ(5, radio.encrypTypeIdx);
    EXPECT_EQ((Answer{10, ""}), call("zep_Wl2_EncryptionMode", "WPA2", ZEPVAR_SET | ZEPVAR_GET));
}

TEST_F(VariableEntry, ValidateWithGet_ChecksTheEmptiedBufferAndThenReads) {
    EXPECT_EQ((Answer{10, ""}), call("zep_DeviceName", "Good", ZEPVAR_VALIDATE | ZEPVAR_GET));
    fill(zepXmlData.device.DeviceNameRule, "0,12,0");
    EXPECT_EQ((Answer{0, "Router"}), call("zep_DeviceName", "Good", ZEPVAR_VALIDATE | ZEPVAR_GET));
    EXPECT_EQ((Answer{0, "/sys/friendlyname"}),
              call("zep_DeviceName", "Good", ZEPVAR_VALIDATE | ZEPVAR_GET | ZEPVAR_PATH));
    EXPECT_EQ((Answer{2, ""}), call("zep_Upl_IP", "10.0.0.1", ZEPVAR_VALIDATE | ZEPVAR_GET));
    EXPECT_EQ((Answer{10, ""}), call("zep_Upl_ConnType", "DHCP", ZEPVAR_VALIDATE | ZEPVAR_GET));
    fill(zepXmlData.device.wireless[0].EncryptionType, "AES");
    EXPECT_EQ((Answer{0, "AES"}), call("zep_Wl2_EncryptionType", "none such", ZEPVAR_VALIDATE | ZEPVAR_GET));
}

TEST_F(VariableEntry, SetWithValidate_Sets) {
    EXPECT_EQ(0, call("zep_DeviceName", "New", ZEPVAR_SET | ZEPVAR_VALIDATE).code);
    EXPECT_STREQ("New", zepXmlData.device.DeviceName);
}

TEST_F(VariableEntry, SectionThatIsNotConfigurable_RefusesASetOfWhateverName) {
    for (ZepWireless& radio : zepXmlData.device.wireless)
        radio.Configurable = 0;
    upLink().Configurable = 0;
    const char* ends[] = {"_",
                          "_Foo",
                          "_Foo_Bar",
                          "_Validate",
                          "_WirelessName_Validate",
                          "_LoginUserName_Validate",
                          "_Acl",
                          "_Acl_Foo",
                          "_Acl_R00_MAC",
                          "_Acl_R1_MAC",
                          "_Dsl_Foo",
                          "_Ets_Foo_Bar",
                          "_Configurable"};
    for (const std::string section : {"zep_Upl", "zep_Wl2", "zep_Wl5"})
        for (const char* end : ends) {
            EXPECT_EQ((Answer{1, "1"}), call(section + end, "1", ZEPVAR_SET)) << section << end;
            EXPECT_EQ(2, call(section + end, "nothing", ZEPVAR_VALIDATE).code) << section << end;
        }
    EXPECT_EQ(2, setVariable("zep_Upl", "1")); // one part: no section
    EXPECT_EQ(0, setVariable("zep_Wdn_UrlDetectEnbl", "1"));
    EXPECT_EQ(0, setVariable("zep_DeviceName", "New"));
}

// Only the uplink's and the radios' own switches count.
TEST_F(VariableEntry, OneRadioThatIsNotConfigurable_LeavesTheOther) {
    zepXmlData.device.wireless[0].Configurable = 0;
    zepXmlData.device.Configurable = 0;
    EXPECT_EQ(1, setVariable("zep_Wl2_WlEnbl", "1"));
    EXPECT_EQ(0, setVariable("zep_Wl5_WlEnbl", "1"));
    EXPECT_EQ(0, setVariable("zep_DeviceName", "New"));
}

// Names put together from all that names are made of, in every mode and with awkward values.
TEST_F(VariableEntry, AnyNameValueAndMode_GivesAKnownCodeAndKeepsToTheBuffer) {
    const char* parts[] = {"",    "Upl",    "Wl2",   "Wl5",      "Wdn",      "Ext",          "Ver",        "Dsl",
                           "Ets", "Acl",    "Ssv",   "Fwu",      "R00",      "R39",          "R99",        "S00",
                           "MAC", "Active", "BSSID", "AcRuleNo", "Validate", "WirelessName", "DeviceName", "%s%n"};
    const std::string values[] = {"", "1", "-1", std::string(127, '9'), std::string(127, '\xff'), "%s%n%s"};
    zepXmlData.device.wireless[0].accessControl.acRuleCount = 40;
    device().tree["/wirelesssitesurvey/site#"] = "2147483647";
    for (const std::string first : parts)
        for (const std::string second : parts)
            for (const std::string third : parts)
                for (const std::string end : {"", "_MAC", "_Active", "_Validate", "_BSSID", "_X_Y"}) {
                    const std::string name = "zep_" + first + "_" + second + "_" + third + end;
                    for (const uint32_t flags : {ZEPVAR_GET, ZEPVAR_SET, ZEPVAR_VALIDATE, ZEPVAR_GET | ZEPVAR_PATH}) {
                        const int32_t code = call(name, values[name.size() % std::size(values)], flags).code;
                        EXPECT_TRUE(code == 0 || code == 1 || code == 2 || code == 10 || code == 11) << name << code;
                    }
                }
    EXPECT_EQ(Events{}, device().events);
}

} // namespace
