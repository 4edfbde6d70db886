// A device whose disk is full. The disk is one of its own, so small that the test fills it; where the tests may not
// mount one, a limit on the size of files stands in.
#include <fcntl.h>
#include <sys/mount.h>
#include <unistd.h>

#include <filesystem>

#include "running_device.h"

namespace pendra::test {
namespace {

namespace fs = std::filesystem;

/** A file system of 1 MiB over an empty directory. */
class SmallDisk {
  public:
    explicit SmallDisk(const std::string& directory) : directory_(directory) {
        fs::create_directories(directory);
        mounted_ = ::mount("none", directory.c_str(), "tmpfs", 0, "size=1m") == 0;
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    ~SmallDisk() {
        if (mounted_) ::umount2(directory_.c_str(), MNT_DETACH);
    }

    [[nodiscard]] bool isMounted() const { return mounted_; }
    [[nodiscard]] std::string file(const std::string& name) const { return directory_ + "/" + name; }

    /** Leaves no byte free but those. */
    void fill(size_t left) const {
        const int ballast = ::open(file("ballast").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        const std::string page(4096, '.');
        while (::write(ballast, page.data(), page.size()) > 0) {
        }
        ::close(ballast);
        fs::resize_file(file("ballast"), fs::file_size(file("ballast")) - left);
    }
    void empty() const { fs::remove(file("ballast")); }

  private:
    std::string directory_;
    bool mounted_ = false;
};

class FullDisk : public RunningDevice {
  protected:
    FullDisk() : disk_(files.tree() + "-disk") {}
    ~FullDisk() override { host.reset(); } // the disk goes only when nobody is on it

    /** Moves a file or directory of the device to the disk. */
    void moveToDisk(const std::string& path) const {
        const std::string target = disk_.file(fs::path(path).filename());
        fs::copy(path, target, fs::copy_options::recursive);
        fs::remove_all(path);
        fs::create_symlink(target, path);
    }

    /** From now on there is no room, or so much. */
    [[nodiscard]] HostOptions fill(size_t left, size_t limit) const {
        if (!disk_.isMounted()) return {.largestFile = limit};
        disk_.fill(left);
        return {};
    }
    [[nodiscard]] std::string reason() const {
        return disk_.isMounted() ? "No space left on device" : "File too large";
    }

    SmallDisk disk_;
};

TEST_F(FullDisk, PostedDocument_GivesAClearResultAndLosesNothing) {
    moveToDisk(files.tree());
    moveToDisk(files.tmp());
    start();
    const std::string before = files.dump();
    ASSERT_EQ(host->stop(), 0);
    start(fill(0, 8192));

    const HttpReply reply = setUp(example("setup.xml"));
    EXPECT_EQ(reply.status, 507);
    EXPECT_EQ(reply.body, "The device could not store the settings: " + reason() + "\n");
    EXPECT_EQ(get("/zep/result").status, 404); // nothing tells of a run that left nothing
    awaitScripts();
    EXPECT_EQ(files.journal(), "");
    EXPECT_EQ(files.changesSince(before), "");

    // The same host, once there is room.
    if (disk_.isMounted()) {
        disk_.empty();
    } else {
        restart();
    }
    expectResult(setUp(example("setup.xml")), 0, "", 65);
    EXPECT_EQ(files.get("/sys/friendlyname"), "Living Room");
    EXPECT_EQ(host->stop(), 0);
}

TEST_F(FullDisk, DocumentAfterDocument_NeverEndsTheHost) {
    moveToDisk(files.tree());
    moveToDisk(files.tmp());
    start(); // what it stores by itself is in the tree then
    const std::string before = files.dump();
    ASSERT_EQ(host->stop(), 0);
    start(fill(0, 8192));
    for (int number = 1; number <= 5; number++)
        EXPECT_EQ(setUp(nameDocument("Attic " + std::to_string(number))).status, 507);
    EXPECT_EQ(get("/zep/hello").status, 200);
    EXPECT_EQ(files.changesSince(before), "");
    EXPECT_EQ(host->stop(), 0);
}

TEST_F(FullDisk, ResultDocumentWithoutRoom_IsAnsweredAllTheSame) {
    if (disk_.isMounted()) moveToDisk(files.tmp());
    start(fill(0, 1));
    if (!disk_.isMounted()) return; // the limit would hold for the tree as well
    const HttpReply reply = setUp(nameDocument("Attic"));
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.body, resultDocument(0, "", 5));
    EXPECT_EQ(get("/zep/result").body, resultDocument(0, "", 5));
    EXPECT_EQ(files.get("/sys/friendlyname"), "Attic");
    EXPECT_EQ(host->stop(), 0);
}

// The owner's mark takes one page; the tree's lock would take two more.
TEST_F(FullDisk, Start_SaysWhyItCannot) {
    const std::string tree = files.tree();
    ASSERT_EQ(files.xtree({"get", "/sys/friendlyname"}).status, 0);
    fs::remove(tree + "-lock");
    const std::string onDisk = disk_.file("device.mdb");
    fs::copy_file(tree, onDisk);
    Launch launch = hostLaunch(files, fill(4096, 4096));
    for (std::string& word : launch.command)
        if (word == tree) word = onDisk;
    const Ended ended = run(launch, std::chrono::seconds(20));
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.errors, "pendrad: cannot open the tree " + onDisk + ": " + reason() + "\n");
}

} // namespace
} // namespace pendra::test
