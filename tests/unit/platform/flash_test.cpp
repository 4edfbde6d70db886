#include "platform/vendor/flash.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>

#include "pendra/platform.h"
#include "platform/device.h"
#include "scratch.h"

namespace {

using namespace pendra::test;

/** A device with an image of its next firmware in the temporary directory. */
class DeviceFlash : public testing::Test {
  protected:
    void SetUp() override {
        std::string error;
        ASSERT_TRUE(pendra::device::openDevice({scratch.file("tree"), scratch.file("device")}, error)) << error;
        ASSERT_EQ(xset_str(scratch.path().c_str(), "/bramble/tempdirecory"), 0);
        ASSERT_EQ(xset_str("next.bin", "/fwupgradeinfo/fwupgradefn"), 0);
        store(scratch.file("next.bin"), image);
        store(firmware(), "the firmware before");
    }
    void TearDown() override { pendra::device::closeDevice(); }
    [[nodiscard]] std::string firmware() const { return scratch.file("device/flash/firmware.bin"); }
    [[nodiscard]] std::string journal() const { return content(scratch.file("device/journal.txt")); }
    static int announceAndCommit() {
        EXPECT_EQ(tcapi_set("System_Entry", "upgrade_fw", "1"), 0);
        return tcapi_commit("System_Entry");
    }
    Scratch scratch;
    const std::string image = std::string(200000, 'i') + std::string("\0end", 4);
};

TEST_F(DeviceFlash, AnnouncedImage_IsWrittenAtTheCommit) {
    ASSERT_EQ(tcapi_set("System_Entry", "upgrade_fw", "1"), 0);
    EXPECT_EQ(content(firmware()), "the firmware before");
    EXPECT_EQ(tcapi_commit("System_Entry"), 0);
    EXPECT_EQ(content(firmware()), image);
    EXPECT_FALSE(exists(firmware() + ".new"));
    EXPECT_EQ(journal(), "flash: wrote firmware " + scratch.file("next.bin") + "\n");
}

TEST_F(DeviceFlash, FirstFirmware_MakesTheFlash) {
    ASSERT_EQ(run(scratch, "rm -r " + scratch.file("device/flash")).status, 0);
    EXPECT_EQ(announceAndCommit(), 0);
    EXPECT_EQ(content(firmware()), image);
}

TEST_F(DeviceFlash, UnnamedImage_HasTheDefaultName) {
    ASSERT_EQ(xset_str("", "/fwupgradeinfo/fwupgradefn"), 0);
    store(scratch.file("upld.bin"), std::string(64, 'u'));
    EXPECT_EQ(announceAndCommit(), 0);
    EXPECT_EQ(content(firmware()), std::string(64, 'u'));
}

TEST_F(DeviceFlash, CommitWithoutAnnouncement_IsRefused) {
    EXPECT_NE(tcapi_commit("System_Entry"), 0);
    EXPECT_EQ(announceAndCommit(), 0);
    EXPECT_NE(tcapi_commit("System_Entry"), 0) << "an announcement is for one commit";
    ASSERT_EQ(tcapi_set("System_Entry", "upgrade_fw", "1"), 0);
    ASSERT_EQ(tcapi_set("System_Entry", "upgrade_fw", "0"), 0);
    EXPECT_NE(tcapi_commit("System_Entry"), 0);
}

TEST_F(DeviceFlash, UnknownNodeOrAttribute_IsRefused) {
    EXPECT_NE(tcapi_set("Other_Entry", "upgrade_fw", "1"), 0);
    EXPECT_NE(tcapi_set("System_Entry", "reboot", "1"), 0);
    EXPECT_NE(tcapi_set(nullptr, "upgrade_fw", "1"), 0);
    EXPECT_NE(tcapi_set("System_Entry", nullptr, "1"), 0);
    EXPECT_NE(tcapi_set("System_Entry", "upgrade_fw", nullptr), 0);
    EXPECT_NE(tcapi_commit("Other_Entry"), 0);
    EXPECT_NE(tcapi_commit(nullptr), 0);
    EXPECT_EQ(content(firmware()), "the firmware before");
    EXPECT_EQ(journal(), "");
}

TEST_F(DeviceFlash, ImageThatIsMissingTooSmallOrTooLarge_LeavesTheFirmware) {
    for (const std::size_t size : {std::size_t{63}, std::size_t{0xfb0001}}) {
        store(scratch.file("next.bin"), std::string(size, 'x'));
        EXPECT_NE(announceAndCommit(), 0) << size;
    }
    ASSERT_EQ(xset_str("missing.bin", "/fwupgradeinfo/fwupgradefn"), 0);
    EXPECT_NE(announceAndCommit(), 0);
    EXPECT_EQ(content(firmware()), "the firmware before");
    EXPECT_NE(journal().find("flash: refused firmware: cannot read " + scratch.file("missing.bin")), std::string::npos);
}

TEST_F(DeviceFlash, ImagesOfTheSmallestAndLargestSize_AreWritten) {
    for (const std::size_t size : {std::size_t{64}, std::size_t{0xfb0000}}) {
        store(scratch.file("next.bin"), std::string(size, 'x'));
        EXPECT_EQ(announceAndCommit(), 0) << size;
        EXPECT_EQ(content(firmware()).size(), size);
    }
}

TEST_F(DeviceFlash, WriteThatFailsHalfway_LeavesTheFirmwareAndNoRest) {
    Child writer([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{100000, RLIM_INFINITY};
        setrlimit(RLIMIT_FSIZE, &limit);
        std::string error;
        const bool written = pendra::device::writeFlash(scratch.file("next.bin"), firmware(), error);
        return written || !error.starts_with("cannot write " + firmware() + ".new: ") ? 1 : 0;
    });
    EXPECT_EQ(writer.wait(), 0);
    EXPECT_EQ(content(firmware()), "the firmware before");
    EXPECT_FALSE(exists(firmware() + ".new"));
}

TEST_F(DeviceFlash, RestOfAKilledWrite_IsReplaced) {
    store(firmware() + ".new", std::string(500000, 'r'));
    EXPECT_EQ(announceAndCommit(), 0);
    EXPECT_EQ(content(firmware()), image);
}

TEST_F(DeviceFlash, ProcessKilledWhileWriting_LeavesOneOfBothFirmwares) {
    const std::string large(8 << 20, 'L');
    store(scratch.file("next.bin"), large);
    for (unsigned delay = 0; delay < 30; ++delay) {
        store(firmware(), "the firmware before");
        const Signpost started;
        Child writer([&] {
            started.raise();
            std::string error;
            return pendra::device::writeFlash(scratch.file("next.bin"), firmware(), error) ? 0 : 1;
        });
        started.await();
        ::usleep(delay * 400);
        writer.kill();
        const std::string now = content(firmware());
        ASSERT_TRUE(now == "the firmware before" || now == large) << now.size();
    }
}

} // namespace
