// The action variables.
#include <csignal>

#include "variables.h"

using pendra::test::Answer;
using pendra::test::call;
using pendra::test::device;
using pendra::test::DeviceTest;
using pendra::test::Events;
using pendra::test::fill;
using pendra::test::loadRouter;
using pendra::test::resultDocument;
using pendra::test::upLink;

namespace {

constexpr uint32_t kModes[] = {0,
                               ZEPVAR_GET,
                               ZEPVAR_SET,
                               ZEPVAR_VALIDATE,
                               ZEPVAR_PATH,
                               ZEPVAR_GET | ZEPVAR_PATH,
                               ZEPVAR_SET | ZEPVAR_GET,
                               ZEPVAR_GET | ZEPVAR_PATH | ZEPVAR_SET | ZEPVAR_VALIDATE};

Answer act(const std::string& action, const std::string& value = "stale", uint32_t flags = ZEPVAR_SET) {
    return call("zep_Act_" + action, value, flags);
}

class SiteSurvey : public DeviceTest {
  protected:
    SiteSurvey() {
        device().tree = {{"/uplink/extendersite/survey", "0"},
                         {"/runtime/apcloninginfo/extendersite/wirelesstype", "2.4"},
                         {"/runtime/apcloninginfo/extendersite/wirelessname", "Old"},
                         {"/bramble/scriptdirecory", "/userfs/bramble"}};
        upLink().hardwareTypeIdx = 3;
    }
};

TEST_F(SiteSurvey, Request_IsNotedAndForgetsTheLastCloning) {
    EXPECT_EQ((Answer{0, ""}), act("SiteSurvey"));
    EXPECT_EQ((Events{"set /uplink/extendersite/survey=1", "del /runtime/apcloninginfo/extendersite"}),
              device().events);
    EXPECT_FALSE(device().has("/runtime/apcloninginfo/extendersite/wirelessname"));
}

TEST_F(SiteSurvey, WithoutACloningResult_DeletesNothing) {
    device().tree["/runtime/apcloninginfo/extendersite/wirelesstype"] = "";
    EXPECT_EQ((Answer{0, ""}), act("SiteSurvey"));
    EXPECT_EQ((Events{"set /uplink/extendersite/survey=1"}), device().events);
    EXPECT_TRUE(device().has("/runtime/apcloninginfo/extendersite/wirelessname"));
}

TEST_F(SiteSurvey, WithoutANodeForIt_DeletesNothing) {
    device().tree.erase("/runtime/apcloninginfo/extendersite/wirelesstype");
    EXPECT_EQ((Answer{0, ""}), act("SiteSurvey"));
    EXPECT_EQ((Events{"set /uplink/extendersite/survey=1"}), device().events);
}

TEST_F(SiteSurvey, AnyStoredNumberButOne_IsANewRequest) {
    for (const char* stored : {"0", "2", "-1"}) {
        device().events.clear();
        device().tree["/uplink/extendersite/survey"] = stored;
        EXPECT_EQ((Answer{0, ""}), act("SiteSurvey"));
        EXPECT_EQ("set /uplink/extendersite/survey=1", device().events.at(0));
    }
    device().tree.erase("/uplink/extendersite/survey");
    act("SiteSurvey");
    EXPECT_EQ("1", device().node("/uplink/extendersite/survey"));
}

TEST_F(SiteSurvey, RequestThatStandsAlready_WritesNothingAndCallsAgain) {
    daemon_log_level = 6;
    device().tree["/uplink/extendersite/survey"] = "1";
    EXPECT_EQ((Answer{0, ""}), act("SiteSurvey"));
    EXPECT_EQ(Events{}, device().events);
    EXPECT_EQ(std::vector<std::string>{"[exe_ExternalCall,WlanSiteSurvey]"}, logLines());
}

TEST_F(SiteSurvey, OtherUplink_IsRefusedAndTriggersNothing) {
    daemon_log_level = 7;
    for (const int32_t hardware : {0, 1, 2, 4, 5, -1}) {
        upLink().hardwareTypeIdx = hardware;
        EXPECT_EQ((Answer{2, ""}), act("SiteSurvey")) << hardware;
    }
    EXPECT_EQ(Events{}, device().events);
    EXPECT_TRUE(device().reads.empty());
    EXPECT_EQ("", logText());
}

TEST_F(SiteSurvey, Request_IsTraced) {
    daemon_log_level = 7;
    act("SiteSurvey");
    EXPECT_EQ((std::vector<std::string>{"Trigger Site Survey ...", "[exe_ExternalCall,WlanSiteSurvey]"}), logLines());
}

TEST_F(SiteSurvey, RequestBelowTheThreshold_LeavesNoTrace) {
    daemon_log_level = 5;
    act("SiteSurvey");
    EXPECT_EQ("", logText());
}

TEST_F(SiteSurvey, EveryMode_PerformsIt) {
    for (const uint32_t flags : kModes) {
        device().tree["/uplink/extendersite/survey"] = "0";
        EXPECT_EQ((Answer{0, ""}), act("SiteSurvey", "stale", flags)) << flags;
        EXPECT_EQ("1", device().node("/uplink/extendersite/survey")) << flags;
    }
}

TEST_F(SiteSurvey, DocumentPath_PerformsItToo) {
    EXPECT_EQ((Answer{0, ""}), call("/Device/Act_SiteSurvey", "stale", ZEPVAR_GET));
    EXPECT_EQ("1", device().node("/uplink/extendersite/survey"));
}

// A device whose record has been filled.
class FilledDevice : public DeviceTest {
  protected:
    FilledDevice() {
        loadRouter(device());
        init_ZepVar();
        device().forget();
    }
};

class VerifyAction : public FilledDevice {};

TEST_F(VerifyAction, ValidRecord_WritesAnEmptyResult) {
    zepXmlData.exeWaitSec = 77;
    EXPECT_EQ((Answer{0, ""}), act("VerifyAllZepVars"));
    EXPECT_EQ(resultDocument(0, "", 0), device().events);
    EXPECT_EQ(0, zepXmlData.setResult);
    EXPECT_STREQ("", zepXmlData.setMsg);
}

TEST_F(VerifyAction, Fault_GivesItsCodeAndMessage) {
    fill(zepXmlData.device.wireless[1].WirelessBSSID, "");
    EXPECT_EQ((Answer{3, "Device/Wireless5/WirelessBSSID"}), act("VerifyAllZepVars"));
    EXPECT_EQ(resultDocument(3, "Device/Wireless5/WirelessBSSID", 0), device().events);
    fill(zepXmlData.device.DeviceName, "");
    EXPECT_EQ((Answer{10, "Device/DeviceName"}), act("VerifyAllZepVars"));
}

TEST_F(VerifyAction, UplinkFault_CarriesTheSnapshotsPath) {
    fill(upLink().ConnType, "Static");
    upLink().connTypeIdx = 1;
    EXPECT_EQ((Answer{3, "Device/Uplink/IP"}), act("VerifyAllZepVars"));
}

TEST_F(VerifyAction, EveryMode_PerformsIt) {
    for (const uint32_t flags : kModes) {
        device().forget();
        EXPECT_EQ((Answer{0, ""}), act("VerifyAllZepVars", "stale", flags)) << flags;
        EXPECT_EQ(resultDocument(0, "", 0), device().events) << flags;
    }
}

class ApplyAction : public FilledDevice {};

TEST_F(ApplyAction, Change_IsWrittenAndItsWaitComputedWithoutAResult) {
    fill(zepXmlData.device.DeviceName, "New");
    EXPECT_EQ((Answer{0, ""}), act("ApplyAllZepVars"));
    EXPECT_EQ((Events{"set /sys/friendlyname=New", "set /sys/factorydefault=0"}), device().events);
    EXPECT_EQ(48, zepXmlData.exeflag);
    EXPECT_EQ(5, zepXmlData.exeWaitSec);
}

TEST_F(ApplyAction, NoChange_WritesNothing) {
    EXPECT_EQ((Answer{0, ""}), act("ApplyAllZepVars"));
    EXPECT_EQ(Events{}, device().events);
    EXPECT_EQ(0, zepXmlData.exeflag);
    EXPECT_EQ(0, zepXmlData.exeWaitSec);
}

TEST_F(ApplyAction, Refusal_GivesItsCodeAndMessage) {
    device().tree["/sys/routerenbl"] = "2";
    zepXmlData.exeflag = 5;
    zepXmlData.exeWaitSec = 77;
    EXPECT_EQ((Answer{3, "Device/RouterEnbl"}), act("ApplyAllZepVars"));
    EXPECT_EQ(resultDocument(3, "Device/RouterEnbl", 0), device().events);
    EXPECT_EQ(5, zepXmlData.exeflag); // nothing is computed
    EXPECT_EQ(77, zepXmlData.exeWaitSec);
}

class CommitAction : public FilledDevice {};

TEST_F(CommitAction, Request_InstallsTheHandlerAndThenArmsTheAlarm) {
    for (const uint32_t flags : kModes) {
        device().forget();
        EXPECT_EQ((Answer{0, ""}), act("CommitZepVars", "stale", flags));
        EXPECT_EQ((Events{"signal " + std::to_string(SIGALRM), "alarm 2"}), device().events);
    }
}

TEST_F(CommitAction, Alarm_RunsTheCommit) {
    zepXmlData.exeflag = 16;
    act("CommitZepVars");
    EXPECT_TRUE(device().commands().empty());
    ASSERT_NE(nullptr, device().alarmHandler);
    device().alarmHandler(SIGALRM);
    EXPECT_EQ(std::vector<std::string>{"/userfs/bramble/device_resync.sh"}, device().commands());
}

TEST_F(CommitAction, AlarmWithNothingToCommit_RunsNothing) {
    act("CommitZepVars");
    ASSERT_NE(nullptr, device().alarmHandler);
    device().alarmHandler(SIGALRM);
    EXPECT_TRUE(device().commands().empty());
}

class SetAction : public FilledDevice {};

TEST_F(SetAction, PairsOfTheBuffer_AreSetAndVerifiedButNotApplied) {
    EXPECT_EQ((Answer{0, ""}), act("SetZepVars", "zep_DeviceName=New+Name&zep_Upl_Dsl_IspName=a%26b"));
    EXPECT_STREQ("New Name", zepXmlData.device.DeviceName);
    EXPECT_STREQ("a&b", upLink().dsl.IspName);
    EXPECT_EQ(resultDocument(0, "", 0), device().events);
}

TEST_F(SetAction, RefusedPair_GivesItsCodeAndName) {
    EXPECT_EQ((Answer{10, "zep_DeviceName"}), act("SetZepVars", "zep_DeviceName=&zep_Upl_Dsl_IspName=x"));
    EXPECT_EQ(resultDocument(10, "zep_DeviceName", 0), device().events);
    EXPECT_STREQ("", upLink().dsl.IspName);
}

TEST_F(SetAction, FailedVerification_GivesItsCodeAndMessage) {
    EXPECT_EQ((Answer{3, "Device/Uplink/IP"}), act("SetZepVars", "zep_Upl_ConnType=Static"));
    EXPECT_EQ(resultDocument(3, "Device/Uplink/IP", 0), device().events);
}

// The buffer carries the list in, so that no mode empties it.
TEST_F(SetAction, EveryMode_ReadsTheBuffer) {
    for (const uint32_t flags : kModes) {
        fill(zepXmlData.device.DeviceName, "Old");
        EXPECT_EQ((Answer{0, ""}), act("SetZepVars", "zep_DeviceName=New", flags)) << flags;
        EXPECT_STREQ("New", zepXmlData.device.DeviceName) << flags;
    }
}

TEST_F(SetAction, EmptyBuffer_OnlyVerifies) {
    EXPECT_EQ((Answer{0, ""}), act("SetZepVars", ""));
    EXPECT_EQ(resultDocument(0, "", 0), device().events);
}

TEST_F(SetAction, OtherSeparators_DoNotPartThePairs) {
    EXPECT_EQ((Answer{0, ""}), act("SetZepVars", "zep_Upl_Dsl_IspName=a;zep_Upl_Apn_IspName=b"));
    EXPECT_STREQ("a;zep_Upl_Apn_IspName=b", upLink().dsl.IspName);
    EXPECT_STREQ("", upLink().apn.IspName);
}

TEST_F(SetAction, ListOf127Characters_IsTakenWhole) {
    const std::string start = "zep_Upl_Dsl_IspName=";
    const std::string value(127 - start.size(), 'v');
    EXPECT_EQ((Answer{0, ""}), act("SetZepVars", start + value));
    EXPECT_EQ(value, upLink().dsl.IspName);
}

TEST_F(SetAction, ListWithoutTerminator_IsReadWithinItsBytes) {
    const std::string start = "zep_Upl_Dsl_IspName=";
    std::vector<char> list(ZEPVAR_VALUE_SIZE, 'v');
    std::copy(start.begin(), start.end(), list.begin());
    EXPECT_EQ(0, setget_ZepVar("zep_Act_SetZepVars", list.data(), ZEPVAR_SET));
    EXPECT_EQ(std::string(127 - start.size(), 'v'), upLink().dsl.IspName);
    EXPECT_EQ('\0', list[0]);
}

TEST_F(SetAction, ListInsideAList_IsTakenToo) {
    EXPECT_EQ((Answer{0, ""}), act("SetZepVars", "zep_Act_SetZepVars=zep_DeviceName%3DNew%26zep_Upl_Dsl_IspName%3Dx"));
    EXPECT_STREQ("New", zepXmlData.device.DeviceName);
    EXPECT_STREQ("x", upLink().dsl.IspName);
}

TEST_F(SetAction, ListsNestedAsDeepAsTheyFit_End) {
    std::string list;
    while (list.size() + 19 <= 127)
        list += "zep_Act_SetZepVars=";
    EXPECT_EQ((Answer{0, ""}), act("SetZepVars", list));
}

TEST_F(FilledDevice, VerifyApplyAndCommit_HaveTheEffectOfADocument) {
    EXPECT_EQ((Answer{0, ""}), act("SetZepVars", "zep_Wl2_WirelessName=Attic&zep_Wl5_WirelessName=Attic5"));
    EXPECT_EQ((Answer{0, ""}), act("VerifyAllZepVars"));
    EXPECT_TRUE(device().treeWrites().empty());
    EXPECT_EQ((Answer{0, ""}), act("ApplyAllZepVars"));
    EXPECT_EQ((Events{"set /lan/wireless2.4:1/wirelessname=Attic", "set /lan/wireless5:1/wirelessname=Attic5",
                      "set /sys/factorydefault=0"}),
              device().treeWrites());
    EXPECT_EQ(40, zepXmlData.exeWaitSec);
    act("CommitZepVars");
    device().forget();
    ASSERT_NE(nullptr, device().alarmHandler);
    device().alarmHandler(SIGALRM);
    EXPECT_EQ((std::vector<std::string>{"/userfs/bramble/wlan_resync.sh", "/userfs/bramble/wlan5g_resync.sh"}),
              device().commands());
}

} // namespace
