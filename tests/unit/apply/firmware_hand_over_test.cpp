// Handing a downloaded image to the platform.
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstring>

#include "support/fake_device.h"

namespace pendra::test {
namespace {

// Taken before any test changes it.
const itimerval timerAtLoad = fwupdtimer;

void expectThreeSecondsOnce(const itimerval& timer) {
    EXPECT_EQ(3, timer.it_value.tv_sec);
    EXPECT_EQ(0, timer.it_value.tv_usec);
    EXPECT_EQ(0, timer.it_interval.tv_sec);
    EXPECT_EQ(0, timer.it_interval.tv_usec);
}

class FirmwareHandOver : public DeviceTest {
  protected:
    FirmwareHandOver() {
        device().tree["/bramble/scriptdirecory"] = "/scripts";
        device().tree["/bramble/tempdirecory"] = directory();
        device().tree["/fwupgradeinfo/fwupgradefn"] = "image.bin";
    }

    void writeImage() const { writeFile(image(), "firmware"); }
    std::string image() const { return path("image.bin"); }

    // Runs the ids and returns what the library wrote to the error stream.
    static std::string run(uint32_t ids, int32_t result) {
        device().forget();
        testing::internal::CaptureStderr();
        EXPECT_EQ(result, exe_ExternalCall(ids));
        return testing::internal::GetCapturedStderr();
    }

    const Events handOver = {"tcapi_set System_Entry upgrade_fw 1", "setitimer 0 3.000000 every 0.000000",
                             "signal " + std::to_string(SIGALRM)};
    const std::string statError = std::string("stat: ") + std::strerror(ENOENT) + "\n";
};

TEST_F(FirmwareHandOver, Image_IsAnnouncedAndTheTimerArmed) {
    writeImage();
    EXPECT_EQ("", run(128, 0));
    EXPECT_EQ(handOver, device().events);
    EXPECT_EQ(alarm_handler_fwupd, device().alarmHandler);
    EXPECT_EQ("firmware", readFile(image()));
}

TEST_F(FirmwareHandOver, Timer_IsLoadedAsOneShotOfThreeSeconds) {
    expectThreeSecondsOnce(timerAtLoad);
}

TEST_F(FirmwareHandOver, Timer_IsSetAgainBeforeEachArming) {
    writeImage();
    for (int run = 0; run < 2; run++) {
        fwupdtimer = {{9, 8}, {7, 6}};
        device().forget();
        EXPECT_EQ(0, exe_ExternalCall(128));
        EXPECT_EQ(handOver, device().events);
        expectThreeSecondsOnce(fwupdtimer);
    }
}

TEST_F(FirmwareHandOver, StationIds_AreNotLookedAt) {
    writeImage();
    device().stations["ra0"] = {{{2, 0, 0, 0, 0, 1}, {-50, 0, 0}}};
    device().stations["rai0"] = {};
    device().tree["/runtime/easyroaming/deauthsta/ifname"] = "ra0";
    device().tree["/runtime/easyroaming/deauthsta/mac"] = "m";
    run(128 | 256 | 512, 0);
    EXPECT_EQ(handOver, device().events);
    EXPECT_TRUE(device().ioctls.empty());
    EXPECT_TRUE(device().has("/runtime/easyroaming/deauthsta/mac"));
}

TEST_F(FirmwareHandOver, FailedHandOver_DoesNotLookAtStationIdsEither) {
    device().tree["/runtime/easyroaming/deauthsta/ifname"] = "ra0";
    device().tree["/runtime/easyroaming/deauthsta/mac"] = "m";
    run(128 | 256 | 512, -1);
    EXPECT_EQ(Events{"run rm " + image()}, device().events);
    EXPECT_TRUE(device().ioctls.empty());
}

TEST_F(FirmwareHandOver, LowerIds_RunBeforeIt) {
    writeImage();
    run(1 | 16 | 32 | 128, 0);
    Events events = {"run /scripts/uplink.sh", "run /scripts/wan_resync.sh", "run /scripts/device_resync.sh"};
    events.insert(events.end(), handOver.begin(), handOver.end());
    EXPECT_EQ(events, device().events);
}

TEST_F(FirmwareHandOver, MissingImage_IsReportedAndRemoved) {
    EXPECT_EQ(statError, run(128, -1));
    EXPECT_EQ(Events{"run rm " + image()}, device().events);
    EXPECT_EQ(nullptr, device().alarmHandler);
}

TEST_F(FirmwareHandOver, RefusedImage_IsRemoved) {
    for (const int refusal : {-1, 1}) {
        writeImage();
        device().tcapiSetResult = refusal;
        device().runShell = true;
        EXPECT_EQ("", run(128, -1));
        EXPECT_EQ((Events{"tcapi_set System_Entry upgrade_fw 1", "run rm " + image()}), device().events);
        EXPECT_EQ("", readFile(image()));
        EXPECT_EQ(nullptr, device().alarmHandler);
    }
}

// Without a file name the path is the directory itself, and a directory is no image.
TEST_F(FirmwareHandOver, UnsetFileName_IsRefusedAndTheDirectoryStays) {
    device().tree.erase("/fwupgradeinfo/fwupgradefn");
    device().runShell = true;
    run(128, -1);
    EXPECT_EQ(Events{"run rm " + directory() + "/"}, device().events);
    EXPECT_EQ(0, access(directory().c_str(), F_OK));
}

TEST_F(FirmwareHandOver, AbsentDirectory_IsTheRoot) {
    device().tree.erase("/bramble/tempdirecory");
    device().tree["/fwupgradeinfo/fwupgradefn"] = "no-such-image";
    EXPECT_EQ(statError, run(128, -1));
    EXPECT_EQ(Events{"run rm /no-such-image"}, device().events);
}

// 255 characters of the command are run.
TEST_F(FirmwareHandOver, RemoveCommand_IsCutAt255Characters) {
    for (const size_t length :
         {size_t{126}, size_t{127}, size_t{128}, size_t{250}, size_t{251}, size_t{252}, size_t{253}, size_t{1023}}) {
        SCOPED_TRACE(length);
        const std::string name(length, 'i');
        device().tree["/bramble/tempdirecory"] = "";
        device().tree["/fwupgradeinfo/fwupgradefn"] = name;
        run(128, -1);
        EXPECT_EQ(Events{("run " + ("rm /" + name).substr(0, 255))}, device().events);
    }
}

TEST_F(FirmwareHandOver, ImageInALongDirectory_IsFound) {
    const std::string longDirectory = directory() + "/" + std::string(150, 'd');
    ASSERT_EQ(0, mkdir(longDirectory.c_str(), 0700));
    writeFile(longDirectory + "/image.bin", "firmware");
    device().tree["/bramble/tempdirecory"] = longDirectory;
    EXPECT_EQ("", run(128, 0));
    EXPECT_EQ(handOver, device().events);
}

// ---- log ----

TEST_F(FirmwareHandOver, HandOver_IsLoggedAtLevel6) {
    daemon_log_level = 6;
    writeImage();
    run(128, 0);
    EXPECT_EQ("1000: [exe_ExternalCall,FwUpgrade]\n", logText());
}

TEST_F(FirmwareHandOver, FailedHandOver_IsLoggedWithItsCommandAtLevel6) {
    daemon_log_level = 6;
    run(128, -1);
    EXPECT_EQ("1000: [exe_ExternalCall,FwUpgrade]\n1000: command: rm " + image() + "\n", logText());
}

TEST_F(FirmwareHandOver, Level5_LeavesNoTrace) {
    run(128, -1);
    writeImage();
    run(128, 0);
    alarm_handler_fwupd(SIGALRM);
    device().tcapiCommitResult = 1;
    alarm_handler_fwupd(SIGALRM);
    EXPECT_EQ("", logText());
}

// ---- three seconds later ----

TEST_F(FirmwareHandOver, Alarm_CommitsTheImage) {
    daemon_log_level = 6;
    writeImage();
    run(128, 0);
    ASSERT_NE(nullptr, device().alarmHandler);
    device().forget();
    device().alarmHandler(SIGALRM);
    EXPECT_EQ(Events{"tcapi_commit System_Entry"}, device().events);
    EXPECT_EQ(
        "1000: [exe_ExternalCall,FwUpgrade]\n"
        "1000: WARNING:\nIt will take some minutes writing flash.\nDon't reboot modem within 5 minutes.\n"
        "The modem will reboot itself after finishing writing flash.\r\n",
        logText());
}

TEST_F(FirmwareHandOver, RefusedCommit_IsLogged) {
    daemon_log_level = 6;
    for (const int refusal : {1, -1}) {
        device().tcapiCommitResult = refusal;
        alarm_handler_fwupd(SIGALRM);
    }
    EXPECT_EQ((Events{"tcapi_commit System_Entry", "tcapi_commit System_Entry"}), device().events);
    EXPECT_EQ("1000: The firmware is illegal!!\r\n1000: The firmware is illegal!!\r\n", logText());
}

} // namespace
} // namespace pendra::test
