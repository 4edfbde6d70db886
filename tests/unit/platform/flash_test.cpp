#include "platform/vendor/flash.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>

#include "pendra/platform.h"
#include "platform/device.h"
#include "platform/vendor/upgrade.h"
#include "scratch.h"
#include "tests/unit/fwupgrade/image.h"

namespace {

using pendra::device::lastUpgrade;
using pendra::device::UpgradeState;
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
    const std::string image = makeImage(imageData(200000) + std::string("\0end", 4));
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
    store(scratch.file("upld.bin"), makeImage("u"));
    EXPECT_EQ(announceAndCommit(), 0);
    EXPECT_EQ(content(firmware()), makeImage("u"));
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
        store(scratch.file("next.bin"), makeImage(imageData(size)).substr(0, size));
        EXPECT_NE(announceAndCommit(), 0) << size;
        EXPECT_EQ(lastUpgrade().reason, scratch.file("next.bin") + " is no image of 64 to 16449536 bytes");
    }
    ASSERT_EQ(xset_str("missing.bin", "/fwupgradeinfo/fwupgradefn"), 0);
    EXPECT_NE(announceAndCommit(), 0);
    EXPECT_EQ(content(firmware()), "the firmware before");
    EXPECT_NE(journal().find("flash: refused firmware: cannot read " + scratch.file("missing.bin")), std::string::npos);
}

TEST_F(DeviceFlash, ImagesOfTheSmallestAndLargestSize_AreWritten) {
    for (const std::size_t size : {std::size_t{64}, std::size_t{0xfb0000}}) {
        const std::string bounded = makeImage(imageData(size - kImageHeaderSize));
        store(scratch.file("next.bin"), bounded);
        EXPECT_EQ(announceAndCommit(), 0) << size;
        EXPECT_TRUE(content(firmware()) == bounded) << size;
    }
}

struct Damage {
    const char* name;
    std::size_t byte;
    const char* reason; // the image's path goes between its two halves
    const char* rest;
};

class DamagedImage : public DeviceFlash, public testing::WithParamInterface<Damage> {};

TEST_P(DamagedImage, IsRefusedWithTheReasonAndLeavesTheFirmware) {
    std::string damaged = image;
    damaged[GetParam().byte] = static_cast<char>(damaged[GetParam().byte] ^ 0x10);
    store(scratch.file("next.bin"), damaged);
    EXPECT_NE(announceAndCommit(), 0);
    const std::string reason = GetParam().reason + scratch.file("next.bin") + GetParam().rest;
    EXPECT_EQ(lastUpgrade().state, UpgradeState::refused);
    EXPECT_EQ(lastUpgrade().reason, reason);
    EXPECT_EQ(journal(), "flash: refused firmware: " + reason + "\n");
    EXPECT_EQ(content(firmware()), "the firmware before");
    EXPECT_FALSE(exists(firmware() + ".new"));
}

INSTANTIATE_TEST_SUITE_P(Places, DamagedImage,
                         testing::Values(Damage{"Magic", 0, "Bad Magic Number: \"", "\" is no valid image"},
                                         Damage{"HeaderCrc", 5, "*** Warning: \"", "\" has bad header checksum!"},
                                         Damage{"Name", 40, "*** Warning: \"", "\" has bad header checksum!"},
                                         Damage{"FirstData", 64, "*** Warning: \"", "\" has corrupted data!"},
                                         Damage{"LastData", 200067, "*** Warning: \"", "\" has corrupted data!"}),
                         [](const auto& each) { return std::string(each.param.name); });

TEST_F(DeviceFlash, CutImage_IsRefused) {
    store(scratch.file("next.bin"), image.substr(0, image.size() - 1));
    EXPECT_NE(announceAndCommit(), 0);
    EXPECT_EQ(lastUpgrade().reason, "*** Warning: \"" + scratch.file("next.bin") + "\" has corrupted data!");
    EXPECT_EQ(content(firmware()), "the firmware before");
}

TEST_F(DeviceFlash, CopyThatIsNotWhole_DoesNotReplaceTheFirmware) {
    store(scratch.file("next.bin"), image.substr(0, image.size() - 1));
    std::string error;
    EXPECT_FALSE(pendra::device::writeFlash(scratch.file("next.bin"), firmware(), error));
    EXPECT_EQ(error, "*** Warning: \"" + firmware() + ".new\" has corrupted data!");
    EXPECT_EQ(content(firmware()), "the firmware before");
    EXPECT_FALSE(exists(firmware() + ".new"));
}

TEST_F(DeviceFlash, LastUpgrade_TellsHowFarItIs) {
    ASSERT_EQ(tcapi_set("System_Entry", "upgrade_fw", "1"), 0);
    EXPECT_EQ(lastUpgrade().state, UpgradeState::announced);
    EXPECT_EQ(tcapi_commit("System_Entry"), 0);
    EXPECT_EQ(lastUpgrade().state, UpgradeState::written);
    EXPECT_EQ(lastUpgrade().reason, "");
    ASSERT_EQ(tcapi_set("System_Entry", "upgrade_fw", "0"), 0);
    EXPECT_EQ(lastUpgrade().state, UpgradeState::none);
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
    const std::string large = makeImage(imageData(8 << 20));
    store(scratch.file("next.bin"), large);
    int before = 0;
    for (unsigned delay = 0; delay < 40; ++delay) {
        store(firmware(), "the firmware before");
        const Signpost started;
        Child writer([&] {
            started.raise();
            return announceAndCommit();
        });
        started.await();
        ::usleep(delay * delay * 60);
        writer.kill();
        const std::string now = content(firmware());
        ASSERT_TRUE(now == "the firmware before" || now == large) << now.size();
        before += now == large ? 0 : 1;
    }
    EXPECT_GT(before, 0) << "no kill came in time";
    EXPECT_EQ(announceAndCommit(), 0);
    EXPECT_TRUE(content(firmware()) == large);
}

} // namespace
