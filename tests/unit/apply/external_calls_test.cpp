// Running sync ids: scripts and log lines.
#include <sys/stat.h>

#include "support/fake_device.h"

namespace pendra::test {
namespace {

class ExternalCalls : public DeviceTest {
  protected:
    ExternalCalls() { device().tree["/bramble/scriptdirecory"] = "/scripts"; }

    void expectRun(uint32_t ids, const Events& events) {
        device().forget();
        EXPECT_EQ(0, exe_ExternalCall(ids));
        EXPECT_EQ(events, device().events);
    }
};

TEST_F(ExternalCalls, EachId_RunsItsScripts) {
    const struct {
        uint32_t id;
        Events events;
    } rows[] = {
        {0, {}},
        {1, {"run /scripts/uplink.sh", "run /scripts/wan_resync.sh"}},
        {2, {}},
        {4, {"run /scripts/wlan_resync.sh"}},
        {8, {"run /scripts/wlan5g_resync.sh"}},
        {16, {"run /scripts/device_resync.sh"}},
        {32, {}},
        {64, {}},
        {96, {}},
        {1024, {}},
        {0x80000000u, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.id);
        expectRun(row.id, row.events);
    }
}

TEST_F(ExternalCalls, AllResyncs_RunInOrder) {
    expectRun(1 | 2 | 4 | 8 | 16 | 32 | 64,
              {"run /scripts/uplink.sh", "run /scripts/wan_resync.sh", "run /scripts/wlan_resync.sh",
               "run /scripts/wlan5g_resync.sh", "run /scripts/device_resync.sh"});
}

TEST_F(ExternalCalls, FailingScripts_AreNotLookedAt) {
    device().shellStatus = -1;
    expectRun(5, {"run /scripts/uplink.sh", "run /scripts/wan_resync.sh", "run /scripts/wlan_resync.sh"});
}

TEST_F(ExternalCalls, MissingScripts_AreSurvived) {
    device().tree["/bramble/scriptdirecory"] = directory();
    device().runShell = true;
    testing::internal::CaptureStderr();
    EXPECT_EQ(0, exe_ExternalCall(1 | 4 | 8 | 16));
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(5u, device().commands().size());
}

// The shell really finds the script.
TEST_F(ExternalCalls, Script_IsRunByTheShell) {
    const std::string script = path("device_resync.sh");
    writeFile(script, "#!/bin/sh\necho done > " + path("made") + "\n");
    ASSERT_EQ(0, chmod(script.c_str(), 0700));
    device().tree["/bramble/scriptdirecory"] = directory();
    device().runShell = true;
    expectRun(16, {"run " + script});
    EXPECT_EQ("done\n", readFile(path("made")));
}

// ---- the directory ----

TEST_F(ExternalCalls, Directory_IsReadAtEachCall) {
    expectRun(16, {"run /scripts/device_resync.sh"});
    device().tree["/bramble/scriptdirecory"] = "/other";
    expectRun(16, {"run /other/device_resync.sh"});
}

TEST_F(ExternalCalls, DirectoryOfTheRecord_IsNotUsed) {
    snprintf(zepXmlData.scriptPath, sizeof zepXmlData.scriptPath, "/record");
    expectRun(16, {"run /scripts/device_resync.sh"});
}

TEST_F(ExternalCalls, AbsentDirectory_IsEmpty) {
    device().tree.clear();
    expectRun(16, {"run /device_resync.sh"});
}

TEST_F(ExternalCalls, PercentSignsOfTheDirectory_AreNoFormat) {
    device().tree["/bramble/scriptdirecory"] = "/%s%n%d";
    expectRun(16, {"run /%s%n%d/device_resync.sh"});
}

// 255 characters of a command are run.
TEST_F(ExternalCalls, Command_IsCutAt255Characters) {
    const std::string script = "/device_resync.sh";
    for (const size_t length : {size_t{126}, size_t{127}, size_t{128}, 255 - script.size(), 256 - script.size(),
                                size_t{254}, size_t{255}, size_t{256}, size_t{1023}}) {
        SCOPED_TRACE(length);
        const std::string directoryText(length, 'd');
        device().tree["/bramble/scriptdirecory"] = directoryText;
        expectRun(16, {"run " + (directoryText + script).substr(0, 255)});
    }
}

// ---- log ----

TEST_F(ExternalCalls, Lines_AppearAtLevel6) {
    daemon_log_level = 6;
    const struct {
        uint32_t id;
        const char* line;
    } rows[] = {{4, "[exe_ExternalCall,WlanResync]"},      {8, "[exe_ExternalCall,Wlan5gResync]"},
                {16, "[exe_ExternalCall,DeviceResync]"},   {32, "[exe_ExternalCall,CfgSaveToFlash]"},
                {64, "[exe_ExternalCall,WlanSiteSurvey]"}, {256, "[exe_ExternalCall,UpdateStaRssi]"},
                {512, "[exe_ExternalCall,DeauthSta]"}};
    device().stations["ra0"] = {};
    device().stations["rai0"] = {};
    std::string text;
    for (const auto& row : rows) {
        exe_ExternalCall(row.id);
        text += std::string("1000: ") + row.line + "\n";
        EXPECT_EQ(text, logText());
    }
}

// The line of id 1 has no end: what follows continues it.
TEST_F(ExternalCalls, WanResyncLine_HasNoEnd) {
    daemon_log_level = 6;
    exe_ExternalCall(1);
    EXPECT_EQ("1000: [exe_ExternalCall,WanResync]", logText());
    exe_ExternalCall(4);
    EXPECT_EQ("1000: [exe_ExternalCall,WanResync][exe_ExternalCall,WlanResync]\n", logText());
}

TEST_F(ExternalCalls, AllLines_StandInTheOrderOfTheIds) {
    daemon_log_level = 6;
    device().stations["ra0"] = {};
    device().stations["rai0"] = {};
    EXPECT_EQ(0, exe_ExternalCall(1 | 4 | 8 | 16 | 32 | 64 | 256 | 512));
    EXPECT_EQ(
        "1000: [exe_ExternalCall,WanResync][exe_ExternalCall,WlanResync]\n"
        "1000: [exe_ExternalCall,Wlan5gResync]\n"
        "1000: [exe_ExternalCall,DeviceResync]\n"
        "1000: [exe_ExternalCall,CfgSaveToFlash]\n"
        "1000: [exe_ExternalCall,WlanSiteSurvey]\n"
        "1000: [exe_ExternalCall,UpdateStaRssi]\n"
        "1000: [exe_ExternalCall,DeauthSta]\n",
        logText());
}

TEST_F(ExternalCalls, UnknownIds_LeaveNoTrace) {
    daemon_log_level = 7;
    expectRun(2 | 1024, {});
    EXPECT_EQ("", logText());
}

TEST_F(ExternalCalls, Level5_LeavesNoTrace) {
    device().stations["ra0"] = {};
    device().stations["rai0"] = {};
    EXPECT_EQ(0, exe_ExternalCall(1 | 4 | 8 | 16 | 32 | 64 | 256 | 512));
    EXPECT_EQ("", logText());
}

// Each line is written before its script runs.
TEST_F(ExternalCalls, Line_IsWrittenBeforeTheScript) {
    daemon_log_level = 6;
    device().tree["/bramble/scriptdirecory"] = "cp " + logFile() + " " + path("copy") + " #";
    device().runShell = true;
    exe_ExternalCall(16);
    EXPECT_EQ("1000: [exe_ExternalCall,DeviceResync]\n", readFile(path("copy")));
}

// ---- stations ----

TEST_F(ExternalCalls, StationIds_RunTheirServices) {
    device().stations["ra0"] = {{{2, 0, 0, 0, 0, 1}, {-50, 0, 0}}};
    device().stations["rai0"] = {};
    device().tree["/runtime/easyroaming/deauthsta/ifname"] = "ra0";
    device().tree["/runtime/easyroaming/deauthsta/mac"] = "m";
    expectRun(512, {"run /userfs/bin/iwpriv ra0 set DisConnectSta=m", "del /runtime/easyroaming/deauthsta"});
    expectRun(256, {"set /runtime/easyroaming/connstainfo/sta:1/mac=02:00:00:00:00:01",
                    "set /runtime/easyroaming/connstainfo/sta:1/ifname=ra0",
                    "set /runtime/easyroaming/connstainfo/sta:1/rssi=-50"});
}

TEST_F(ExternalCalls, BothStationIds_UpdateFirst) {
    device().stations["ra0"] = {};
    device().stations["rai0"] = {};
    device().tree["/runtime/easyroaming/connstainfo/sta:1/mac"] = "old";
    device().tree["/runtime/easyroaming/deauthsta/ifname"] = "rai0";
    device().tree["/runtime/easyroaming/deauthsta/mac"] = "m";
    expectRun(256 | 512 | 16,
              {"run /scripts/device_resync.sh", "del /runtime/easyroaming/connstainfo",
               "run /userfs/bin/iwpriv rai0 set DisConnectSta=m", "del /runtime/easyroaming/deauthsta"});
}

TEST_F(ExternalCalls, FailingDrivers_AreNoFailure) {
    device().socketFails = true;
    expectRun(256, {});
}

} // namespace
} // namespace pendra::test
