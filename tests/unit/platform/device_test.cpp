#include "platform/device.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

#include "pendra/platform.h"
#include "scratch.h"

namespace {

using namespace pendra::device;
using namespace pendra::test;

class OpenedDevice : public testing::Test {
  protected:
    void SetUp() override {
        std::string error;
        ASSERT_TRUE(openDevice(options, error)) << error;
    }
    void TearDown() override { closeDevice(); }
    /** A node as another process sees it. */
    [[nodiscard]] std::string outside(const std::string& path) const {
        return run(scratch, PENDRA_XTREE " -f " + options.treeFile + " get " + path).output;
    }
    Scratch scratch;
    DeviceOptions options{scratch.file("tree"), scratch.file("device")};
};

TEST_F(OpenedDevice, CommittedRequest_IsSeenByOthersAtOnceAndNotBefore) {
    std::string error;
    ASSERT_EQ(xset_str("1", "/a"), 0);
    ASSERT_TRUE(beginRequest(error)) << error;
    ASSERT_EQ(xset_str("2", "/a"), 0);
    EXPECT_EQ(xget_int("/a"), 2);
    EXPECT_EQ(outside("/a"), "1\n");
    ASSERT_TRUE(commitRequest(error)) << error;
    EXPECT_EQ(outside("/a"), "2\n");
}

TEST_F(OpenedDevice, AbandonedRequest_LeavesNothing) {
    std::string error;
    ASSERT_TRUE(beginRequest(error)) << error;
    ASSERT_EQ(xset_str("1", "/a"), 0);
    abandonRequest();
    EXPECT_LT(xget_int("/a"), 0);
    abandonRequest();
    EXPECT_TRUE(beginRequest(error)) << error;
}

TEST_F(OpenedDevice, ClosedInsideARequest_LeavesNothingOfIt) {
    std::string error;
    ASSERT_TRUE(beginRequest(error)) << error;
    ASSERT_EQ(xset_str("1", "/a"), 0);
    closeDevice();
    ASSERT_TRUE(openDevice(options, error)) << error;
    EXPECT_LT(xget_int("/a"), 0);
}

TEST_F(OpenedDevice, SecondRequest_HasToWaitForTheEndOfTheFirst) {
    std::string error;
    ASSERT_TRUE(beginRequest(error)) << error;
    ASSERT_EQ(xset_str("1", "/a"), 0);
    EXPECT_FALSE(beginRequest(error));
    EXPECT_EQ(error, "a request is open already");
    ASSERT_TRUE(commitRequest(error)) << error;
    EXPECT_EQ(xget_int("/a"), 1);
    EXPECT_FALSE(commitRequest(error));
}

TEST_F(OpenedDevice, ReadOutsideARequest_SeesWhatAnotherProcessStored) {
    ASSERT_EQ(xset_str("1", "/a"), 0);
    ASSERT_EQ(run(scratch, PENDRA_XTREE " -f " + options.treeFile + " set /a 2").status, 0);
    EXPECT_EQ(xget_int("/a"), 2);
}

TEST_F(OpenedDevice, Environment_NamesTreeAndDirectoryToScripts) {
    ASSERT_EQ(xset_str("seen", "/a"), 0);
    EXPECT_EQ(run(scratch, PENDRA_XTREE " get /a").output, "seen\n");
    EXPECT_EQ(run(scratch, "echo $PENDRA_DEVICE").output, options.deviceDirectory + "\n");
}

TEST_F(OpenedDevice, Children_InheritNoOpenFile) {
    const Ran ran = run(scratch, "ls -l /proc/self/fd");
    EXPECT_EQ(ran.output.find(options.treeFile), ran.output.npos) << ran.output;
}

TEST(Device, TreeInUse_IsRefusedNamingTheProcess) {
    const Scratch scratch;
    const DeviceOptions options{scratch.file("tree"), scratch.file("device")};
    const Signpost opened;
    Child owner([&] {
        std::string error;
        if (!openDevice(options, error)) return 1;
        opened.raise();
        ::pause();
        return 0;
    });
    opened.await();
    std::string error;
    EXPECT_FALSE(openDevice(options, error));
    EXPECT_EQ(error, "the tree " + options.treeFile + " is in use by process " + std::to_string(owner.id()));
    EXPECT_LT(xset_str("x", "/a"), 0);

    owner.kill();
    EXPECT_TRUE(openDevice(options, error)) << error;
    closeDevice();
    EXPECT_TRUE(openDevice(options, error)) << error;
    closeDevice();
}

TEST(Device, MissingDirectoryOfTheTree_IsTold) {
    const Scratch scratch;
    std::string error;
    EXPECT_FALSE(openDevice({scratch.file("no/tree"), scratch.file("device")}, error));
    EXPECT_EQ(error, "cannot lock the tree with " + scratch.file("no/tree.owner") + ": No such file or directory");
}

TEST(Device, DirectoryThatCannotBeMade_IsTold) {
    const Scratch scratch;
    store(scratch.file("file"), "x");
    std::string error;
    EXPECT_FALSE(openDevice({scratch.file("tree"), scratch.file("file/device")}, error));
    EXPECT_TRUE(error.starts_with("cannot create the device directory " + scratch.file("file/device") + ": ")) << error;
}

TEST(Device, FileThatIsNoTree_IsToldAndKept) {
    const Scratch scratch;
    store(scratch.file("tree"), "precious");
    std::string error;
    EXPECT_FALSE(openDevice({scratch.file("tree"), scratch.file("device")}, error));
    EXPECT_TRUE(error.starts_with("cannot open the tree " + scratch.file("tree"))) << error;
    EXPECT_EQ(content(scratch.file("tree")), "precious");
}

TEST(Device, RequestWithoutADevice_IsRefused) {
    std::string error;
    EXPECT_FALSE(beginRequest(error));
    EXPECT_EQ(error, "the tree is not open");
    EXPECT_FALSE(commitRequest(error));
    abandonRequest();
    closeDevice();
}

TEST(Device, RequestOnAFullDisk_StoresNothingAndTellsWhy) {
    const Scratch scratch;
    const DeviceOptions options{scratch.file("tree"), scratch.file("device")};
    Child host([&] {
        std::string error;
        if (!openDevice(options, error) || xset_str("1", "/kept") != 0 || !beginRequest(error)) return 1;
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit{};
        getrlimit(RLIMIT_FSIZE, &limit);
        limit.rlim_cur = 64 << 10;
        setrlimit(RLIMIT_FSIZE, &limit);
        const std::string text(1000, 't');
        for (int n = 0; n < 500; ++n)
            static_cast<void>(xset_str(text.c_str(), ("/n:" + std::to_string(n)).c_str()));
        if (commitRequest(error) || error.empty()) return 2;
        if (xget_int("/kept") != 1 || xget_int("/n#") >= 0) return 3;
        return beginRequest(error) ? 0 : 4;
    });
    EXPECT_EQ(host.wait(), 0);
}

} // namespace
