#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/sysinfo.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>

#include "platform/device.h"
#include "platform/kernel/shell.h"
#include "platform/kernel/uptime.h"
#include "scratch.h"

namespace {

using namespace pendra::device;
using namespace pendra::test;

/** Looks at the stand-ins from a shared library. */
class LibraryStandIns : public testing::Test {
  protected:
    void SetUp() override {
        probe = dlopen(PENDRA_PROBE, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(probe, nullptr) << dlerror();
        std::string error;
        ASSERT_TRUE(openDevice({scratch.file("tree"), directory}, error)) << error;
    }
    void TearDown() override {
        closeDevice();
        if (probe) dlclose(probe);
    }
    template <typename Function, typename... Arguments>
    auto call(const char* name, Arguments... arguments) {
        return reinterpret_cast<Function*>(dlsym(probe, name))(arguments...);
    }
    long uptime() { return call<long()>("probe_uptime"); }
    bool write(const std::string& path, const char* mode, const char* text) {
        return call<bool(const char*, const char*, const char*)>("probe_write", path.c_str(), mode, text);
    }
    std::string read(const std::string& path) {
        char text[1024];
        const bool opened = call<bool(const char*, char*, int)>("probe_read", path.c_str(), text, int{sizeof text});
        return opened ? text : "(absent)";
    }
    int stations(const char* interface, unsigned char* table) {
        return call<int(const char*, unsigned char*)>("probe_stations", interface, table);
    }
    int shell(const std::string& command) {
        const int status = call<int(const char*)>("probe_shell", command.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    Scratch scratch;
    std::string directory = scratch.file("device");
    void* probe = nullptr;
};

long machineUptime() {
    return std::atol(content("/proc/uptime").c_str());
}

TEST_F(LibraryStandIns, UptimeWithoutASetting_IsTheMachines) {
    EXPECT_NEAR(static_cast<double>(uptime()), static_cast<double>(machineUptime()), 2);
}

TEST_F(LibraryStandIns, UptimeSetting_MovesOrStopsTheClock) {
    store(directory + "/uptime", "+5000\n");
    EXPECT_NEAR(static_cast<double>(uptime()), static_cast<double>(machineUptime() + 5000), 2);
    store(directory + "/uptime", "1234");
    EXPECT_EQ(uptime(), 1234);
    closeDevice();
    EXPECT_NEAR(static_cast<double>(uptime()), static_cast<double>(machineUptime()), 2);
}

TEST(DeviceUptime, Setting_IsAnOffsetOrANumberOrNothing) {
    EXPECT_EQ(deviceUptime(100, ""), 100);
    EXPECT_EQ(deviceUptime(100, "+7"), 107);
    EXPECT_EQ(deviceUptime(100, "7\n"), 7);
    EXPECT_EQ(deviceUptime(100, "0"), 0);
    EXPECT_EQ(deviceUptime(100, "4294967296"), 4294967296);
    for (const char* other : {"+", "-7", "seven", "7 8", "99999999999999999999", "++7"})
        EXPECT_EQ(deviceUptime(100, other), 100) << other;
}

TEST_F(LibraryStandIns, DebugConsole_KeepsWhatEveryOpenWrote) {
    ASSERT_TRUE(write("/proc/tc3162/dbg_msg", "w", "one\n"));
    ASSERT_TRUE(write("/proc/tc3162/dbg_msg", "w", "two\n"));
    EXPECT_EQ(content(directory + "/dbg_msg"), "one\ntwo\n");
}

TEST_F(LibraryStandIns, DebugConsoleGrownLarge_StartsOver) {
    store(directory + "/dbg_msg", std::string((1 << 20) + 1, 'd'));
    ASSERT_TRUE(write("/proc/tc3162/dbg_msg", "w", "one\n"));
    EXPECT_EQ(content(directory + "/dbg_msg"), "one\n");
}

TEST_F(LibraryStandIns, PartitionTable_LooksLikeAKernels) {
    EXPECT_EQ(read("/proc/mtd"),
              "dev:    size   erasesize  name\n"
              "mtd0: 00030000 00010000 \"Bootloader\"\n"
              "mtd1: 00010000 00010000 \"Config\"\n"
              "mtd2: 00010000 00010000 \"Factory\"\n"
              "mtd3: 00fb0000 00010000 \"Firmware\"\n");
}

TEST_F(LibraryStandIns, KernelFiles_AreTheDevicesOwn) {
    EXPECT_TRUE(read("/proc/version").starts_with("Linux version "));
    store(directory + "/version", "Linux version 9\n");
    EXPECT_EQ(read("/proc/version"), "Linux version 9\n");
    std::filesystem::remove(directory + "/mtd");
    EXPECT_EQ(read("/proc/mtd"), "(absent)");
}

TEST_F(LibraryStandIns, DeviceOpenedAgain_KeepsItsKernelFiles) {
    store(directory + "/version", "Linux version 9\n");
    std::string error;
    ASSERT_TRUE(openDevice({scratch.file("tree"), directory}, error)) << error;
    EXPECT_EQ(read("/proc/version"), "Linux version 9\n");
}

TEST_F(LibraryStandIns, OtherFiles_AreTheMachines) {
    ASSERT_TRUE(write(scratch.file("plain"), "w", "one"));
    ASSERT_TRUE(write(scratch.file("plain"), "w", "two"));
    EXPECT_EQ(read(scratch.file("plain")), "two");
    EXPECT_EQ(read(scratch.file("none")), "(absent)");
    EXPECT_NE(read("/proc/self/status"), "(absent)");
}

TEST_F(LibraryStandIns, StationTables_HoldTheStationsOfTheirRadio) {
    store(directory + "/stations.txt",
          "# stations\n"
          "ra0 02:11:22:33:44:5F -61 -58 0\n"
          "rai0 02:aa:bb:cc:dd:ee -48 0 -50  # near\n"
          "ra0 02:11:22:33:44:60 -128 127 0\n");
    unsigned char table[1284] = {};
    ASSERT_EQ(stations("ra0", table), 0);
    const unsigned char first[] = {0, 2, 0x11, 0x22, 0x33, 0x44, 0x5f, 1, 0, 0, 0xc3, 0xc6, 0};
    const unsigned char second[] = {0, 2, 0x11, 0x22, 0x33, 0x44, 0x60, 2, 0, 0, 0x80, 0x7f, 0};
    EXPECT_EQ(*reinterpret_cast<unsigned*>(table), 2u);
    EXPECT_EQ(memcmp(table + 4, first, sizeof first), 0);
    EXPECT_EQ(memcmp(table + 4 + 24, second, sizeof second), 0);

    memset(table, 0, sizeof table);
    ASSERT_EQ(stations("rai0", table), 0);
    const unsigned char only[] = {0, 2, 0xaa, 0xbb, 0xcc, 0xdd, 0xee, 1, 0, 0, 0xd0, 0, 0xce};
    EXPECT_EQ(*reinterpret_cast<unsigned*>(table), 1u);
    EXPECT_EQ(memcmp(table + 4, only, sizeof only), 0);
}

TEST_F(LibraryStandIns, NoStationFile_MeansNoStations) {
    unsigned char table[1284] = {9, 9, 9, 9, 9};
    ASSERT_EQ(stations("ra0", table), 0);
    EXPECT_EQ(*reinterpret_cast<unsigned*>(table), 0u);
    EXPECT_EQ(table[4], 9);
}

TEST_F(LibraryStandIns, RadioThatIsDown_RefusesTheRequest) {
    store(directory + "/stations.txt", "rai0 02:aa:bb:cc:dd:ee -48 0 -50\nra0 down\n");
    unsigned char table[1284] = {};
    EXPECT_EQ(stations("ra0", table), ENETDOWN);
    EXPECT_EQ(stations("rai0", table), 0);
}

TEST_F(LibraryStandIns, InterfaceThatIsNoRadio_RefusesTheRequest) {
    unsigned char table[1284] = {};
    EXPECT_EQ(stations("eth0", table), ENODEV);
}

TEST_F(LibraryStandIns, MistakeInTheStationFile_ShowsOnTheConsole) {
    store(directory + "/stations.txt", "ra0 02:11:22:33:44 -61 -58 0\n");
    unsigned char table[1284] = {};
    EXPECT_EQ(stations("ra0", table), 0);
    EXPECT_EQ(content(directory + "/dbg_msg"), "stations.txt, line 1: not a station: ra0 02:11:22:33:44 -61 -58 0\n");
}

TEST_F(LibraryStandIns, OtherRequestsOfDrivers_GoToTheKernel) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ASSERT_EQ(::write(ends[1], "abc", 3), 3);
    EXPECT_EQ(call<int(int)>("probe_waiting", ends[0]), 3);
    close(ends[0]);
    close(ends[1]);
}

TEST_F(LibraryStandIns, WirelessTool_IsTheDevicesOwn) {
    EXPECT_NE(shell("/userfs/bin/iwpriv ra0 set DisConnectSta=02:11:22:33:44:55 2>/dev/null"), 0) << "not there yet";
    const std::string tool = directory + "/bin/iwpriv";
    store(tool, "#!/bin/sh\necho \"$@\" >\"$PENDRA_DEVICE/called\"\nexit 7\n");
    ASSERT_EQ(chmod(tool.c_str(), 0700), 0);
    EXPECT_EQ(shell("/userfs/bin/iwpriv ra0 set DisConnectSta=02:11:22:33:44:55"), 7);
    EXPECT_EQ(content(directory + "/called"), "ra0 set DisConnectSta=02:11:22:33:44:55\n");
}

TEST_F(LibraryStandIns, Command_HearsTheSignalsThatTheHostBlocks) {
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGALRM);
    sigaddset(&blocked, SIGTERM);
    sigprocmask(SIG_BLOCK, &blocked, &before);
    EXPECT_EQ(shell("grep SigBlk /proc/self/status >" + scratch.file("out")), 0);
    sigprocmask(SIG_SETMASK, &before, nullptr);
    EXPECT_EQ(content(scratch.file("out")), "SigBlk:\t0000000000000000\n");
}

TEST_F(LibraryStandIns, CommandThatASignalEnds_GivesItsWaitStatus) {
    const int status = call<int(const char*)>("probe_shell", "kill -TERM $$");
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << status;
}

TEST_F(LibraryStandIns, OtherCommands_RunAsTheyStand) {
    EXPECT_EQ(shell("exit 5"), 5);
    EXPECT_EQ(shell("echo /userfs/bin/iwpriv >" + scratch.file("out")), 0);
    EXPECT_EQ(content(scratch.file("out")), "/userfs/bin/iwpriv\n");
    EXPECT_EQ(shell("/userfs/bin/iwprivate 2>/dev/null"), 127);
    EXPECT_NE(call<int(const char*)>("probe_shell", static_cast<const char*>(nullptr)), 0) << "there is a shell";
}

TEST(ShellQuoting, AnyText_IsOneWordOfTheShell) {
    const Scratch scratch;
    for (const std::string text : {"", "plain", "a b", "it's", "$HOME `x` \"q\" \\ ; & |", "*"})
        EXPECT_EQ(run(scratch, "printf '<%s>' " + shellQuoted(text)).output, "<" + text + ">");
}

} // namespace
