// The entry points around the variable engine.
#include "form.h"

using pendra::test::device;
using pendra::test::DeviceTest;
using pendra::test::Events;
using pendra::test::fill;
using pendra::test::FormTest;
using pendra::test::GuardedBuffer;
using pendra::test::loadRouter;
using pendra::test::recordBytes;
using pendra::test::resultDocument;
using pendra::test::upLink;

namespace {

using Lines = std::vector<std::string>;

class Preparation : public DeviceTest {};

TEST_F(Preparation, Record_IsFilledWithTheDevicesState) {
    loadRouter(device());
    init_ZepVar();
    EXPECT_STREQ("Router", zepXmlData.device.DeviceName);
    EXPECT_STREQ("secret", zepXmlData.device.DevicePwd);
    EXPECT_STREQ("DHCP", upLink().ConnType);
    EXPECT_STREQ("Home5", zepXmlData.device.wireless[1].WirelessName);
    EXPECT_STREQ("0,32,1", zepXmlData.device.DeviceNameRule);
    EXPECT_EQ(101, zepXmlData.specVersion.version);
    EXPECT_EQ(-1, zepXmlData.device.wireless[0].accessControl.acRuleCount);
    EXPECT_EQ(Events{}, device().events);
}

TEST_F(Preparation, EveryCall_ReadsTheTreeAgain) {
    loadRouter(device());
    init_ZepVar();
    device().tree["/sys/friendlyname"] = "Renamed";
    init_ZepVar();
    EXPECT_STREQ("Renamed", zepXmlData.device.DeviceName);
}

TEST_F(Preparation, FirstCallOnly_ClearsThePreviousRequests) {
    zepXmlData.pre_exeflag = 5;
    zepXmlData.exeflag = 20;
    init_ZepVar();
    EXPECT_EQ(0, zepXmlData.pre_exeflag);
    EXPECT_EQ(20, zepXmlData.exeflag);
    zepXmlData.pre_exeflag = 5;
    init_ZepVar();
    EXPECT_EQ(5, zepXmlData.pre_exeflag);
    EXPECT_EQ(20, zepXmlData.exeflag);
}

TEST_F(Preparation, Call_TracesTheSnapshotOnly) {
    daemon_log_level = 7;
    init_ZepVar();
    EXPECT_EQ(Lines{"1000:restore_XmlZepStatus]"}, logLines());
}

class DelayedCommit : public DeviceTest {
  protected:
    DelayedCommit() { device().tree["/bramble/scriptdirecory"] = "/userfs/bramble"; }
};

TEST_F(DelayedCommit, NothingToDo_Gives0) {
    EXPECT_EQ(0, do_ZepVar_Commit());
    EXPECT_EQ(Events{}, device().events);
}

TEST_F(DelayedCommit, Requests_AreRunLikeADocuments) {
    zepXmlData.exeflag = 4;
    EXPECT_NE(0, do_ZepVar_Commit());
    EXPECT_EQ(Events{"run /userfs/bramble/wlan_resync.sh"}, device().events);
}

TEST_F(DelayedCommit, Call_TracesTheCommitOnly) {
    daemon_log_level = 7;
    do_ZepVar_Commit();
    EXPECT_EQ((Lines{"1000:do_ZepXml_Commit]", "1000:do_ZepXml_Commit]exeflag=0"}), logLines());
}

class Setting : public DeviceTest {};

TEST_F(Setting, Value_IsStored) {
    char value[ZEPVAR_VALUE_SIZE] = "1";
    EXPECT_EQ(0, set_ZepVar("zep_Wdn_UrlDetectEnbl", value));
    EXPECT_EQ(1, zepXmlData.device.safetyWdn.UrlDetectEnbl);
    EXPECT_EQ(1, set_ZepVar("zep_Upl_IP", value));
    EXPECT_EQ(2, set_ZepVar("zep_Foo", value));
    EXPECT_EQ(2, set_ZepVar(nullptr, value));
    EXPECT_EQ(2, set_ZepVar("zep_DeviceName", nullptr));
}

TEST_F(Setting, Call_LeavesNoTrace) {
    daemon_log_level = 7;
    char value[ZEPVAR_VALUE_SIZE] = "1";
    set_ZepVar("zep_Wdn_UrlDetectEnbl", value);
    EXPECT_EQ("", logText());
}

class Getting : public DeviceTest {
  protected:
    Getting() { fill(zepXmlData.device.DeviceName, "Router"); }
};

TEST_F(Getting, ValueOrPath_IsGiven) {
    GuardedBuffer buffer(ZEPVAR_VALUE_SIZE, "stale");
    EXPECT_EQ(0, get_ZepVar("zep_DeviceName", buffer.data(), 0));
    EXPECT_EQ("Router", buffer.text());
    for (const int32_t wantPath : {1, 2, -1}) {
        EXPECT_EQ(0, get_ZepVar("zep_DeviceName", buffer.data(), wantPath));
        EXPECT_EQ("/sys/friendlyname", buffer.text());
    }
    EXPECT_EQ(2, get_ZepVar("zep_Foo", buffer.data(), 0));
    EXPECT_EQ("", buffer.text());
    EXPECT_TRUE(buffer.intact());
}

TEST_F(Getting, Call_IsTracedWithItsOutcome) {
    daemon_log_level = 7;
    char buffer[ZEPVAR_VALUE_SIZE] = "stale";
    get_ZepVar("zep_DeviceName", buffer, 0);
    get_ZepVar("zep_DeviceName", buffer, 1);
    get_ZepVar("zep_Foo", buffer, 0);
    EXPECT_EQ(
        (Lines{"1000:get_ZepVar]'zep_DeviceName'='Router', ret=0",
               "1000:get_ZepVar]'zep_DeviceName'='/sys/friendlyname', ret=0", "1000:get_ZepVar]'zep_Foo'='', ret=2"}),
        logLines());
}

TEST_F(Getting, CallBelowTheThreshold_LeavesNoTrace) {
    daemon_log_level = 6;
    char buffer[ZEPVAR_VALUE_SIZE] = "stale";
    get_ZepVar("zep_DeviceName", buffer, 0);
    getZepVar("zep_DeviceName");
    validate_ZepVar("zep_DeviceName", buffer);
    char pair[] = "no pair";
    validate_ZepVar2(pair);
    EXPECT_EQ("", logText());
}

TEST_F(Getting, Null_IsRefused) {
    daemon_log_level = 7;
    char buffer[ZEPVAR_VALUE_SIZE] = "kept";
    EXPECT_EQ(2, get_ZepVar(nullptr, buffer, 0));
    EXPECT_EQ(2, get_ZepVar("zep_DeviceName", nullptr, 0));
    EXPECT_EQ(2, get_ZepVar(nullptr, nullptr, 1));
    EXPECT_STREQ("kept", buffer);
    EXPECT_STREQ("**ERROR**", getZepVar(nullptr));
}

// A buffer that a refused call leaves as it was may hold no text at all.
TEST_F(Getting, BufferWithoutTerminator_IsTracedWithinItsBytes) {
    daemon_log_level = 7;
    std::vector<char> buffer(ZEPVAR_VALUE_SIZE, 'x');
    EXPECT_EQ(2, get_ZepVar("foo", buffer.data(), 0));
    EXPECT_EQ(2, validate_ZepVar("foo", buffer.data()));
    EXPECT_EQ(0U, logText().find("1000: 1000:get_ZepVar]'foo'='xxx"));
}

class TemplateText : public DeviceTest {
  protected:
    TemplateText() { fill(zepXmlData.device.DeviceName, "Router"); }
};

TEST_F(TemplateText, Value_IsGiven) {
    EXPECT_STREQ("Router", getZepVar("zep_DeviceName"));
    EXPECT_STREQ("bramble", getZepVar("zep_Var_BRName"));
    EXPECT_STREQ("Router", getZepVar("/Device/DeviceName"));
    fill(zepXmlData.device.DeviceName, "");
    EXPECT_STREQ("", getZepVar("zep_DeviceName"));
}

TEST_F(TemplateText, LongestValue_IsGivenWhole) {
    fill(zepXmlData.device.DeviceName, std::string(127, 'x'));
    EXPECT_EQ(std::string(127, 'x'), getZepVar("zep_DeviceName"));
}

TEST_F(TemplateText, WhatCannotBeRead_IsMarked) {
    for (const char* name :
         {"zep_Nothing", "", "foo", "/Other/x", "zep_Wl2_Acl_R00_MAC", "zep_Ext_Ssv_S00_BSSID", "zep_Act_Foo"})
        EXPECT_STREQ("**ERROR**", getZepVar(name)) << name;
}

TEST_F(TemplateText, EveryCall_UsesTheSameBuffer) {
    const char* first = getZepVar("zep_DeviceName");
    const char* second = getZepVar("zep_Nothing");
    EXPECT_EQ(first, second);
    EXPECT_STREQ("**ERROR**", first);
    EXPECT_STREQ("Router", getZepVar("zep_DeviceName"));
}

TEST_F(TemplateText, Call_IsTracedWithWhatThePageShows) {
    daemon_log_level = 7;
    getZepVar("zep_DeviceName");
    getZepVar("zep_Nothing");
    EXPECT_EQ(
        (Lines{"1000:getZepVar]'zep_DeviceName'='Router', ret=0", "1000:getZepVar]'zep_Nothing'='**ERROR**', ret=2"}),
        logLines());
}

class Validation : public FormTest {};

TEST_F(Validation, Value_IsCheckedAndNotStored) {
    const std::string before = recordBytes();
    const std::tuple<const char*, std::string, int32_t> cases[] = {
        {"zep_DeviceName", "New", 0},    {"zep_DeviceName", "", 10},       {"zep_DeviceName", "a\x7f", 11},
        {"zep_Upl_IP", "10.0.0.1", 0},   {"zep_Upl_IP", "10.0.0.0", 2},    {"zep_Upl_ConnType", "DHCP", 2},
        {"zep_Upl_ConnType", "PPP", 10}, {"zep_Upl_Configurable", "1", 2}, {"zep_Foo", "1", 2},
    };
    for (const auto& [name, value, code] : cases) {
        GuardedBuffer buffer(ZEPVAR_VALUE_SIZE, value);
        EXPECT_EQ(code, validate_ZepVar(name, buffer.data())) << name << value;
        std::string pair = std::string(name) + "=" + value;
        EXPECT_EQ(code, validate_ZepVar2(pair.data())) << pair;
    }
    EXPECT_EQ(before, recordBytes());
    EXPECT_EQ(Events{}, device().events);
}

TEST_F(Validation, Null_IsRefused) {
    char value[ZEPVAR_VALUE_SIZE] = "1";
    EXPECT_EQ(2, validate_ZepVar(nullptr, value));
    EXPECT_EQ(2, validate_ZepVar("zep_DeviceName", nullptr));
    EXPECT_EQ(2, validate_ZepVar(nullptr, nullptr));
}

TEST_F(Validation, Call_IsTracedBeforeAndAfter) {
    daemon_log_level = 7;
    char value[ZEPVAR_VALUE_SIZE] = "New";
    validate_ZepVar("zep_DeviceName", value);
    validate_ZepVar("zep_Foo", value);
    EXPECT_EQ((Lines{"1000:validate_ZepVar]'zep_DeviceName'='New'", "1000:validate_ZepVar]ret=0",
                     "1000:validate_ZepVar]'zep_Foo'='New'", "1000:validate_ZepVar]ret=2"}),
              logLines());
}

class PairValidation : public FormTest {
  protected:
    static int32_t validatePair(const std::string& pair) {
        std::vector<char> exact(pair.c_str(), pair.c_str() + pair.size() + 1);
        const int32_t code = validate_ZepVar2(exact.data());
        EXPECT_EQ(pair, std::string(exact.data()));
        return code;
    }
};

TEST_F(PairValidation, TextWithoutEqualsSign_IsMalformedAndTraced) {
    daemon_log_level = 7;
    EXPECT_EQ(3, validatePair("zep_DeviceName"));
    EXPECT_EQ(3, validatePair(""));
    EXPECT_EQ(3, validatePair(std::string(40, 'x')));
    EXPECT_EQ(3, validate_ZepVar2(nullptr));
    EXPECT_EQ((Lines{"1000:validate_ZepVar2]Invalid data='zep_DeviceName'", "1000:validate_ZepVar2]Invalid data=''",
                     "1000:validate_ZepVar2]Invalid data='" + std::string(40, 'x') + "'",
                     "1000:validate_ZepVar2]Invalid data=''"}),
              logLines());
}

TEST_F(PairValidation, NameOf32Characters_IsMalformedWithoutATrace) {
    daemon_log_level = 7;
    for (const size_t length : {32U, 33U, 128U, 4096U, 1U << 20})
        EXPECT_EQ(3, validatePair(std::string(length, 'x') + "=1")) << length;
    EXPECT_EQ("", logText());
}

TEST_F(PairValidation, NameOf31Characters_IsChecked) {
    EXPECT_EQ(0, validatePair("zep_Wl2" + std::string(11, 'x') + "_WirelessName=New"));
    EXPECT_EQ(10, validatePair("zep_Wl2" + std::string(11, 'x') + "_WirelessName="));
    EXPECT_EQ(2, validatePair(std::string(31, 'x') + "=New"));
    EXPECT_EQ(3, validatePair("zep_Wl2" + std::string(12, 'x') + "_WirelessName=New"));
}

TEST_F(PairValidation, NameAndValue_AreTakenAsTheyStand) {
    daemon_log_level = 7;
    EXPECT_EQ(2, validatePair("zep_DeviceName =New"));
    EXPECT_EQ(2, validatePair(" zep_DeviceName=New"));
    EXPECT_EQ(0, validatePair("zep_DeviceName= a%20b+c=d "));
    EXPECT_EQ(2, validatePair("=New"));
    const Lines lines = logLines();
    EXPECT_EQ("1000:validate_ZepVar]'zep_DeviceName'=' a%20b+c=d '", lines.at(4));
}

TEST_F(PairValidation, ValueOver127Characters_IsRefused) {
    fill(zepXmlData.device.DeviceNameRule, "0,9999,0");
    EXPECT_EQ(0, validatePair("zep_DeviceName=" + std::string(127, 'x')));
    for (const size_t length : {128U, 129U, 4096U, 1U << 20})
        EXPECT_EQ(2, validatePair("zep_DeviceName=" + std::string(length, 'x'))) << length;
}

// An action answers into the value buffer, and a pair may be shorter than that.
TEST_F(PairValidation, Action_IsPerformedWithinThePair) {
    fill(zepXmlData.device.wireless[1].WirelessBSSID, "");
    EXPECT_EQ(3, validatePair("zep_Act_VerifyAllZepVars="));
    EXPECT_EQ(resultDocument(3, "Device/Wireless5/WirelessBSSID", 0), device().events);
    EXPECT_EQ(2, validatePair("zep_Act_SetZepVars=zep_Foo=1"));
}

} // namespace
