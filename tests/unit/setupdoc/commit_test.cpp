#include "setup_document.h"

using namespace pendra::test;

namespace {

using Lines = std::vector<std::string>;

const Lines kWanScripts = {"/userfs/bramble/uplink.sh", "/userfs/bramble/wan_resync.sh"};
const Lines kWanAnd24Scripts = {"/userfs/bramble/uplink.sh", "/userfs/bramble/wan_resync.sh",
                                "/userfs/bramble/wlan_resync.sh"};

class Commit : public DeviceTest {
  protected:
    Commit() { loadRouter(device()); }

    // The commands that a commit runs.
    static Lines commit() {
        device().forget();
        EXPECT_NE(0, do_ZepXml_Commit());
        return device().commands();
    }
    static void expectNothingToCommit() {
        device().forget();
        EXPECT_EQ(0, do_ZepXml_Commit());
        EXPECT_EQ(Events{}, device().events);
    }
    static int32_t run(const Element& document) {
        Buffer buffer(documentText(document));
        return do_ZepXml_Parser(buffer.text());
    }
};

TEST_F(Commit, RightAfterLoading_DoesNothing) {
    expectNothingToCommit();
    EXPECT_EQ("", logText());
}

TEST_F(Commit, EachSyncId_RunsItsScripts) {
    const std::vector<std::pair<int32_t, Lines>> rows = {
        {1, kWanScripts},
        {4, {"/userfs/bramble/wlan_resync.sh"}},
        {8, {"/userfs/bramble/wlan5g_resync.sh"}},
        {16, {"/userfs/bramble/device_resync.sh"}},
        {32, {}},
        {64, {}},
        {5, kWanAnd24Scripts},
        {63,
         {"/userfs/bramble/uplink.sh", "/userfs/bramble/wan_resync.sh", "/userfs/bramble/wlan_resync.sh",
          "/userfs/bramble/wlan5g_resync.sh", "/userfs/bramble/device_resync.sh"}},
    };
    for (const auto& [set, scripts] : rows) {
        SCOPED_TRACE(set);
        zepXmlData.exeflag = set;
        EXPECT_EQ(scripts, commit());
        EXPECT_EQ(set, zepXmlData.exeflag);
    }
}

TEST_F(Commit, Twice_RunsTheActionsTwice) {
    zepXmlData.exeflag = 5;
    EXPECT_EQ(kWanAnd24Scripts, commit());
    EXPECT_EQ(kWanAnd24Scripts, commit());
    EXPECT_EQ(5, zepXmlData.exeflag);
}

TEST_F(Commit, AfterARunThatChangesNothing_RepeatsThePreviousActionsOnce) {
    ASSERT_EQ(1, run(deviceElement()));
    zepXmlData.exeflag = 5;
    commit();
    commit();
    ASSERT_EQ(1, run(deviceElement()));
    EXPECT_EQ(0, zepXmlData.exeflag);
    EXPECT_EQ(5, zepXmlData.pre_exeflag);
    EXPECT_EQ(kWanAnd24Scripts, commit());
    EXPECT_EQ(0, zepXmlData.pre_exeflag);
    expectNothingToCommit();
}

TEST_F(Commit, OfARun_StartsWhatTheDocumentChanged) {
    ASSERT_EQ(1, run(deviceElement().set(radioElement("2.4").set("WirelessName", "New"))));
    EXPECT_EQ(4 | 32, zepXmlData.exeflag);
    EXPECT_EQ(Lines{"/userfs/bramble/wlan_resync.sh"}, commit());
}

TEST_F(Commit, WithItsOwnSet_LeavesThePreviousOneAlone) {
    zepXmlData.exeflag = 16;
    zepXmlData.pre_exeflag = 1;
    EXPECT_EQ(Lines{"/userfs/bramble/device_resync.sh"}, commit());
    EXPECT_EQ(1, zepXmlData.pre_exeflag);
}

TEST_F(Commit, FailingDispatcher_IsOnlyLogged) {
    device().tree["/bramble/tempdirecory"] = path("missing");
    device().tree["/fwupgradeinfo/fwupgradefn"] = "image";
    zepXmlData.exeflag = 128;
    daemon_log_level = 4;
    EXPECT_EQ(Lines{"rm " + path("missing/image")}, commit());
    EXPECT_EQ("1000: exe_ExternalCall was fail!", logText()); // no line end
    daemon_log_level = 3;
    commit();
    EXPECT_EQ("1000: exe_ExternalCall was fail!", logText());
}

// ---- Traces ----

TEST_F(Commit, Level7_ShowsTheSet) {
    daemon_log_level = 7;
    zepXmlData.exeflag = 16;
    commit();
    EXPECT_EQ((Lines{"1000:do_ZepXml_Commit]", "1000:do_ZepXml_Commit]exeflag=16", "[exe_ExternalCall,DeviceResync]",
                     "1000:do_ZepXml_Commit]done"}),
              logLines());
}

TEST_F(Commit, Level7_ShowsThePreviousSetWithoutAPrefix) {
    daemon_log_level = 7;
    zepXmlData.pre_exeflag = 5;
    commit();
    EXPECT_EQ((Lines{"1000:do_ZepXml_Commit]", "Use pre_exeflag, pre_exeflag=5, exeflag=0",
                     "[exe_ExternalCall,WanResync][exe_ExternalCall,WlanResync]", "1000:do_ZepXml_Commit]done"}),
              logLines());
}

TEST_F(Commit, Level7_ShowsAnEmptySet) {
    daemon_log_level = 7;
    expectNothingToCommit();
    EXPECT_EQ("1000: 1000:do_ZepXml_Commit]\n1000: 1000:do_ZepXml_Commit]exeflag=0\n", logText());
}

TEST_F(Commit, Level5_ShowsNothing) {
    zepXmlData.exeflag = 5;
    commit();
    EXPECT_EQ("", logText());
}

// ---- Access-point cloning ----

TEST_F(Commit, CloningFlag_AddsDeviceResyncAndSave) {
    daemon_log_level = 6;
    EXPECT_NE(0, do_ZepXml_Commit_for_ApCloning(1));
    EXPECT_EQ(Lines{"/userfs/bramble/device_resync.sh"}, device().commands());
    EXPECT_EQ((Lines{"[exe_ExternalCall,DeviceResync]", "[exe_ExternalCall,CfgSaveToFlash]"}), logLines());
    EXPECT_EQ(48, zepXmlData.exeflag);
}

TEST_F(Commit, AnyCloningFlagButZero_Counts) {
    for (const int32_t flag : {2, -1, 256}) {
        zepXmlData.exeflag = 1;
        EXPECT_NE(0, do_ZepXml_Commit_for_ApCloning(flag));
        EXPECT_EQ(49, zepXmlData.exeflag);
    }
}

TEST_F(Commit, CloningFlagOfZero_AddsNothing) {
    EXPECT_EQ(0, do_ZepXml_Commit_for_ApCloning(0));
    EXPECT_EQ(Events{}, device().events);
    zepXmlData.exeflag = 1;
    EXPECT_NE(0, do_ZepXml_Commit_for_ApCloning(0));
    EXPECT_EQ(kWanScripts, device().commands());
    EXPECT_EQ(1, zepXmlData.exeflag);
}

TEST_F(Commit, CloningFlag_GoesBeforeThePreviousSet) {
    zepXmlData.pre_exeflag = 1;
    EXPECT_NE(0, do_ZepXml_Commit_for_ApCloning(1));
    EXPECT_EQ(Lines{"/userfs/bramble/device_resync.sh"}, device().commands());
    EXPECT_EQ(1, zepXmlData.pre_exeflag);
}

} // namespace
