// The flat-file platform of the example: its file, what happens to it when the disk fails, and its limits.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <set>
#include <thread>

#include "disk.h"
#include "flat_tree_platform.h"
#include "pendra/platform.h"
#include "support/scratch.h"
#include "unit/fwupgrade/image.h"

namespace pendra::test {
namespace {

using Calls = std::vector<std::string>;

const char* const kListing =
    "# a small tree\n"
    "/sys/friendlyname=Kitchen\n"
    "\n"
    "/list/sta:1/mac=a\n"
    "/list/sta:2/mac=b\n"
    "/last=x\n";

std::string textOf(const std::string& path) {
    char text[XNODE_TEXT_MAX] = "left over";
    const int result = xget_str(text, "%s", path.c_str());
    return result == 0 ? text : "(absent)" + std::string(text);
}

class FlatTree : public testing::Test {
  protected:
    FlatTree() { open(kListing); }
    ~FlatTree() override {
        disk() = {};
        flatTreeOpen("/nowhere/tree"); // closes it
    }
    void open(const std::string& listing) {
        store(tree(), listing);
        ASSERT_EQ(flatTreeOpen(tree().c_str()), 0) << flatTreeProblem();
    }
    void watchDisk(int failingCall = 0) { disk() = {.calls = {}, .isWatched = true, .failingCall = failingCall}; }
    std::string tree() const { return directory_.file("tree"); }
    std::string file(const std::string& name) const { return directory_.file(name); }
    std::set<std::string> fileNames() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(directory_.path()))
            names.insert(entry.path().filename());
        return names;
    }
    std::string directoryName() const { return std::filesystem::path(directory_.path()).filename(); }

  private:
    Scratch directory_;
};

TEST_F(FlatTree, ChangedNode_KeepsItsPlaceAndEveryOtherLine) {
    EXPECT_EQ(xset_str("Living Room = 1", "/sys/friendlyname"), 0);
    EXPECT_EQ(content(tree()),
              "# a small tree\n/sys/friendlyname=Living Room = 1\n\n/list/sta:1/mac=a\n"
              "/list/sta:2/mac=b\n/last=x\n");
}

TEST_F(FlatTree, NewNode_StandsBehindTheLastLine) {
    EXPECT_EQ(xset_int(-7, "/new"), 0);
    EXPECT_EQ(content(tree()), std::string(kListing) + "/new=-7\n");
}

TEST_F(FlatTree, DeletedNode_TakesTheLinesBelowIt) {
    EXPECT_EQ(xdel("/list/sta:1"), 0);
    EXPECT_EQ(content(tree()), "# a small tree\n/sys/friendlyname=Kitchen\n\n/list/sta:2/mac=b\n/last=x\n");
    EXPECT_EQ(xdel("/list"), 0);
    EXPECT_EQ(content(tree()), "# a small tree\n/sys/friendlyname=Kitchen\n\n/last=x\n");
}

TEST_F(FlatTree, PathOfNoNode_DeletesNothing) {
    for (const char* path : {"", "/", "/list/", "list", "/lis", "/list/sta", "/last=x", "# a small tree"})
        EXPECT_LT(xdel(path), 0) << path;
    EXPECT_EQ(content(tree()), kListing);
}

TEST_F(FlatTree, Comment_IsNoNode) {
    open("# /a=1\n#/b=2\n/c=3\n");
    EXPECT_EQ(textOf("# /a"), "(absent)");
    EXPECT_EQ(textOf("/b"), "(absent)");
    EXPECT_EQ(textOf("/c"), "3");
}

TEST_F(FlatTree, LastLineWithoutItsEnd_IsReadAndEnded) {
    open("/a=1\n/b=2");
    EXPECT_EQ(textOf("/b"), "2");
    EXPECT_EQ(xset_str("3", "/c"), 0);
    EXPECT_EQ(content(tree()), "/a=1\n/b=2\n/c=3\n");
}

TEST_F(FlatTree, EmptyFile_IsAnEmptyTree) {
    open("");
    EXPECT_EQ(textOf("/a"), "(absent)");
    EXPECT_EQ(xset_str("1", "/a"), 0);
    EXPECT_EQ(content(tree()), "/a=1\n");
}

TEST_F(FlatTree, PathGivenTwice_ReadsAndWritesTheFirst) {
    open("/a=1\n/a=2\n");
    EXPECT_EQ(textOf("/a"), "1");
    EXPECT_EQ(xset_str("3", "/a"), 0);
    EXPECT_EQ(content(tree()), "/a=3\n/a=2\n");
    EXPECT_EQ(xdel("/a"), 0);
    EXPECT_EQ(content(tree()), "");
}

TEST_F(FlatTree, WrittenFile_IsForItsOwnerAlone) {
    ASSERT_EQ(::chmod(tree().c_str(), 0644), 0);
    ASSERT_EQ(xset_str("1", "/a"), 0);
    struct stat status {};
    ASSERT_EQ(::stat(tree().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

// --- Files that are no tree ---

class BadTree : public FlatTree, public testing::WithParamInterface<std::pair<const char*, std::string>> {};

TEST_P(BadTree, Open_NamesTheLineAndLeavesEverythingAbsent) {
    const std::string listing = std::string(kListing) + GetParam().second + "\n/behind=1\n";
    store(tree(), listing);
    EXPECT_EQ(flatTreeOpen(tree().c_str()), -1);
    EXPECT_EQ(flatTreeProblem(), tree() + ", line 7: no path=value that the tree takes");
    EXPECT_EQ(textOf("/sys/friendlyname"), "(absent)");
    EXPECT_EQ(xget_int("/list/sta#"), -1);
    EXPECT_LT(xset_str("1", "/a"), 0);
    EXPECT_LT(xdel("/last"), 0);
    EXPECT_NE(tcapi_set("System_Entry", "upgrade_fw", "1"), 0);
    EXPECT_EQ(content(tree()), listing);
    EXPECT_EQ(fileNames(), std::set<std::string>{"tree"});
}

const std::string kLongText(XNODE_TEXT_MAX, 't');
const std::string kLongPath = "/" + std::string(255, 'p');

INSTANTIATE_TEST_SUITE_P(
    Lines, BadTree,
    testing::Values(std::pair{"NoEquals", std::string("/a")}, std::pair{"NoPath", std::string("=1")},
                    std::pair{"NoSlash", std::string("a=1")}, std::pair{"RootAlone", std::string("/=1")},
                    std::pair{"SlashAtTheEnd", std::string("/a/=1")}, std::pair{"Count", std::string("/a#=1")},
                    std::pair{"Blank", std::string(" /a=1")}, std::pair{"CarriageReturn", std::string("/a=1\r")},
                    std::pair{"NulByte", std::string("/a=1\0", 5)}, std::pair{"NulInThePath", std::string("/a\0=1", 5)},
                    std::pair{"LongText", "/a=" + kLongText}, std::pair{"LongPath", kLongPath + "=1"},
                    std::pair{"LongLine", "/a=" + std::string(40000, 'x')},
                    std::pair{"Shell", std::string("/bramble/tempdirecory=/tmp; reboot")}),
    [](const auto& row) { return std::string(row.param.first); });

TEST_F(FlatTree, MissingFile_IsNamedAndNotCreated) {
    const std::string missing = file("missing");
    EXPECT_EQ(flatTreeOpen(missing.c_str()), -1);
    EXPECT_EQ(flatTreeProblem(), "cannot open " + missing + ": No such file or directory");
    EXPECT_EQ(textOf("/sys/friendlyname"), "(absent)");
    EXPECT_LT(xset_str("1", "/a"), 0);
    EXPECT_STREQ(flatTreeProblem(), "the tree is not open");
    EXPECT_EQ(fileNames(), std::set<std::string>{"tree"});
}

TEST_F(FlatTree, Directory_IsNoTree) {
    EXPECT_EQ(flatTreeOpen(std::filesystem::path(tree()).parent_path().c_str()), -1);
}

TEST_F(FlatTree, NameThatIsTooLong_IsRefused) {
    EXPECT_EQ(flatTreeOpen(("/" + std::string(600, 'x')).c_str()), -1);
    EXPECT_STREQ(flatTreeProblem(), "the name of the tree's file is too long");
}

TEST_F(FlatTree, UnreadableFile_IsNoTree) {
    watchDisk(2); // the first read, behind the open
    EXPECT_EQ(flatTreeOpen(tree().c_str()), -1);
    EXPECT_EQ(flatTreeProblem(), "cannot read " + tree() + ": Input/output error");
    EXPECT_EQ(textOf("/last"), "(absent)");
    EXPECT_EQ(disk().calls, (Calls{"open tree", "read tree", "close tree"}));
}

// --- Limits ---

constexpr size_t kTreeSize = 65536; // of which one byte stays free

// Lines of 1,000 bytes and one for the rest.
std::string listingOf(size_t size) {
    std::string listing;
    while (size - listing.size() > 2000)
        listing += "#" + std::string(998, '-') + "\n";
    return listing + "#" + std::string(size - listing.size() - 2, '-') + "\n";
}

TEST_F(FlatTree, LongestFile_IsReadAndAByteMoreIsNot) {
    open(listingOf(kTreeSize - 1));
    store(tree(), listingOf(kTreeSize));
    EXPECT_EQ(flatTreeOpen(tree().c_str()), -1);
    EXPECT_STREQ(flatTreeProblem(), "the tree's file is too long");
    std::string unended = listingOf(kTreeSize);
    unended.pop_back(); // which the missing line end makes too long again
    store(tree(), unended);
    EXPECT_EQ(flatTreeOpen(tree().c_str()), -1);
}

TEST_F(FlatTree, FullTree_RefusesWhatDoesNotFitAndKeepsTheRest) {
    const std::string listing = "/a=1\n" + listingOf(kTreeSize - 1 - 5 - 5);
    open(listing);
    EXPECT_LT(xset_str("23456", "/b"), 0);
    EXPECT_STREQ(flatTreeProblem(), "the tree is full");
    EXPECT_LT(xset_str("1234567", "/a"), 0);
    EXPECT_EQ(textOf("/a"), "1");
    EXPECT_EQ(content(tree()), listing);
    EXPECT_EQ(xset_str("2", "/b"), 0);
    EXPECT_EQ(content(tree()), listing + "/b=2\n");
    EXPECT_EQ(flatTreeOpen(tree().c_str()), 0);
}

TEST_F(FlatTree, TextOrPathThatIsTooLong_IsRefused) {
    const std::string longest(XNODE_TEXT_MAX - 1, 't');
    EXPECT_EQ(xset_str(longest.c_str(), "/last"), 0);
    EXPECT_LT(xset_str(kLongText.c_str(), "/last"), 0);
    EXPECT_EQ(textOf("/last"), longest);
    EXPECT_EQ(xset_str("1", kLongPath.substr(0, 255).c_str()), 0);
    EXPECT_EQ(textOf(kLongPath.substr(0, 255)), "1");
    EXPECT_LT(xset_str("1", kLongPath.c_str()), 0);
    EXPECT_EQ(textOf(kLongPath), "(absent)");
    EXPECT_LT(xget_int("%s", kLongPath.c_str()), 0);
}

TEST_F(FlatTree, PathThatIsNone_IsRefused) {
    for (const char* path : {"", "a", "/", "/a/", "/a#", "/a=b", "/a\n/b"})
        EXPECT_LT(xset_str("1", path), 0) << path;
    EXPECT_EQ(content(tree()), kListing);
}

TEST_F(FlatTree, TextAsNumber_ReadsItsLeadingDecimal) {
    const std::pair<const char*, int> rows[] = {
        {" 7", 7}, {"+8", 8},  {"12abc", 12}, {"99999999999", 2147483647}, {"-99999999999999999999", -2147483647 - 1},
        {"", -1},  {"abc", -1}};
    for (const auto& [text, number] : rows) {
        ASSERT_EQ(xset_str(text, "/n"), 0);
        EXPECT_EQ(xget_int("/n"), number) << text;
    }
}

// --- The disk ---

TEST_F(FlatTree, Write_IsOnTheDiskBeforeItTakesTheTreesPlace) {
    watchDisk();
    EXPECT_EQ(xset_str("Hall", "/sys/friendlyname"), 0);
    EXPECT_EQ(disk().calls,
              (Calls{"open tree.new", "write tree.new", "fsync tree.new", "close tree.new", "rename tree.new tree",
                     "open " + directoryName(), "fsync " + directoryName(), "close " + directoryName()}));
}

TEST_F(FlatTree, TextThatIsThereAlready_LeavesTheDiskAlone) {
    watchDisk();
    EXPECT_EQ(xset_str("Kitchen", "/sys/friendlyname"), 0);
    EXPECT_EQ(disk().calls, Calls{});
}

TEST_F(FlatTree, Reading_LeavesTheDiskAlone) {
    watchDisk();
    EXPECT_EQ(textOf("/sys/friendlyname"), "Kitchen");
    EXPECT_EQ(xget_int("/list/sta#"), 2);
    EXPECT_EQ(disk().calls, Calls{});
}

class FailingDisk : public FlatTree, public testing::WithParamInterface<int> {};

TEST_P(FailingDisk, WriteThatFails_LeavesTheOldTree) {
    watchDisk(GetParam());
    EXPECT_LT(xset_str("Hall", "/sys/friendlyname"), 0);
    EXPECT_TRUE(std::string(flatTreeProblem()).starts_with("cannot ")) << flatTreeProblem();
    disk() = {};
    EXPECT_EQ(textOf("/sys/friendlyname"), "Kitchen");
    EXPECT_EQ(content(tree()), kListing);
    EXPECT_EQ(fileNames(), std::set<std::string>{"tree"});
    EXPECT_EQ(xset_str("Hall", "/sys/friendlyname"), 0); // and the next one succeeds
    EXPECT_EQ(textOf("/sys/friendlyname"), "Hall");
}

TEST_P(FailingDisk, CommitThatFails_LeavesTheTreeAsBeforeTheTransaction) {
    flatTreeBegin();
    ASSERT_EQ(xset_str("Hall", "/sys/friendlyname"), 0);
    ASSERT_EQ(xdel("/list"), 0);
    watchDisk(GetParam());
    EXPECT_EQ(flatTreeCommit(), -1);
    disk() = {};
    EXPECT_EQ(textOf("/sys/friendlyname"), "Kitchen");
    EXPECT_EQ(xget_int("/list/sta#"), 2);
    EXPECT_EQ(content(tree()), kListing);
    EXPECT_EQ(fileNames(), std::set<std::string>{"tree"});
}

// Opening, writing, syncing and closing the new file, and renaming it.
INSTANTIATE_TEST_SUITE_P(Calls, FailingDisk, testing::Values(1, 2, 3, 4, 5));

// The new tree is in its place by then, but may be gone after a power cut.
class FailingDirectory : public FlatTree, public testing::WithParamInterface<int> {};

TEST_P(FailingDirectory, Write_IsReportedAndMemoryIsAsTheFile) {
    watchDisk(GetParam());
    EXPECT_LT(xset_str("Hall", "/sys/friendlyname"), 0);
    disk() = {};
    EXPECT_EQ(textOf("/sys/friendlyname"), "Hall");
    EXPECT_NE(content(tree()).find("/sys/friendlyname=Hall\n"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Calls, FailingDirectory, testing::Values(6, 7));

// --- Transactions ---

TEST_F(FlatTree, Transaction_IsOneWrite) {
    flatTreeBegin();
    watchDisk();
    EXPECT_EQ(xset_str("Hall", "/sys/friendlyname"), 0);
    EXPECT_EQ(xset_int(1, "/new"), 0);
    EXPECT_EQ(xdel("/list/sta:2"), 0);
    EXPECT_EQ(textOf("/sys/friendlyname"), "Hall"); // it reads its own writes
    EXPECT_EQ(disk().calls, Calls{});
    EXPECT_EQ(flatTreeCommit(), 0);
    EXPECT_EQ(disk().calls.size(), 8u);
    EXPECT_EQ(content(tree()), "# a small tree\n/sys/friendlyname=Hall\n\n/list/sta:1/mac=a\n/last=x\n/new=1\n");
}

TEST_F(FlatTree, TransactionWithoutAChange_LeavesTheDiskAlone) {
    watchDisk();
    flatTreeBegin();
    EXPECT_EQ(xset_str("Hall", "/sys/friendlyname"), 0);
    EXPECT_EQ(xset_str("Kitchen", "/sys/friendlyname"), 0);
    EXPECT_EQ(flatTreeCommit(), 0);
    EXPECT_EQ(disk().calls, Calls{});
}

TEST_F(FlatTree, TransactionThatLostAWrite_IsNotStored) {
    open("/a=1\n" + listingOf(kTreeSize - 30));
    const std::string before = content(tree());
    flatTreeBegin();
    EXPECT_EQ(xset_str("2", "/a"), 0);
    EXPECT_LT(xset_str(kLongText.substr(1).c_str(), "/b"), 0);
    EXPECT_EQ(xset_str("3", "/a"), 0);
    EXPECT_EQ(flatTreeCommit(), -1);
    EXPECT_EQ(textOf("/a"), "1");
    EXPECT_EQ(content(tree()), before);
    EXPECT_EQ(xset_str("4", "/a"), 0);
}

TEST_F(FlatTree, TransactionWithARefusedText_StoresTheRest) {
    flatTreeBegin();
    EXPECT_EQ(xset_str("Hall", "/sys/friendlyname"), 0);
    EXPECT_LT(xset_str("x; reboot", "/runtime/easyroaming/deauthsta/mac"), 0);
    EXPECT_EQ(flatTreeCommit(), 0);
    EXPECT_EQ(textOf("/sys/friendlyname"), "Hall");
}

// --- A process that is killed ---

// Counts on in two nodes, both in one transaction.
int countForEver() {
    for (int number = xget_int("/first") + 1;; number++) {
        flatTreeBegin();
        xset_int(number, "/first");
        xset_int(number, "/second");
        flatTreeCommit();
    }
}

TEST_F(FlatTree, KilledWriter_LeavesAWholeTree) {
    std::mt19937 random(1);
    // On a slow disk most are killed before they have stored anything.
    for (int round = 0; round < 40 || (xget_int("/first") < 5 && round < 1000); round++) {
        Child writer(countForEver);
        std::this_thread::sleep_for(std::chrono::microseconds(1000 + random() % 20000));
        writer.kill();
        ASSERT_EQ(flatTreeOpen(tree().c_str()), 0) << flatTreeProblem();
        ASSERT_EQ(textOf("/first"), textOf("/second"));
        ASSERT_EQ(textOf("/last"), "x");
    }
    EXPECT_GE(xget_int("/first"), 5);
}

TEST_F(FlatTree, FileThatAKilledWriterLeft_IsNotRead) {
    store(tree() + ".new", "/sys/friendlyname=Half of a t");
    ASSERT_EQ(flatTreeOpen(tree().c_str()), 0);
    EXPECT_EQ(textOf("/sys/friendlyname"), "Kitchen");
    EXPECT_EQ(xset_str("1", "/last"), 0);
    EXPECT_EQ(fileNames(), std::set<std::string>{"tree"});
}

// --- The vendor's API ---

class FlatTreeFirmware : public FlatTree {
  protected:
    FlatTreeFirmware() {
        const std::string directory = std::filesystem::path(tree()).parent_path();
        EXPECT_EQ(xset_str(directory.c_str(), "/bramble/tempdirecory"), 0);
        EXPECT_EQ(xset_str("upld.bin", "/fwupgradeinfo/fwupgradefn"), 0);
        store(flash(), "the old firmware");
        store(file("upld.bin"), image_);
    }
    std::string flash() const { return tree() + ".flash"; }
    const std::string& image() const { return image_; }

  private:
    std::string image_ = makeImage(std::string(10000, 'f'));
};

TEST_F(FlatTreeFirmware, AnnouncedImage_ReplacesTheFirmware) {
    EXPECT_EQ(tcapi_set("System_Entry", "upgrade_fw", "1"), 0);
    EXPECT_EQ(content(flash()), "the old firmware");
    watchDisk();
    EXPECT_EQ(tcapi_commit("System_Entry"), 0) << flatTreeProblem();
    EXPECT_EQ(content(flash()), image());
    EXPECT_EQ(disk().calls.back(), "close " + directoryName());
    EXPECT_EQ(fileNames(), (std::set<std::string>{"tree", "tree.flash", "upld.bin"}));
}

TEST_F(FlatTreeFirmware, ImageThatWasNotAnnounced_IsNotWritten) {
    EXPECT_NE(tcapi_commit("System_Entry"), 0);
    EXPECT_EQ(tcapi_set("System_Entry", "upgrade_fw", "1"), 0);
    EXPECT_EQ(tcapi_set("System_Entry", "upgrade_fw", "0"), 0);
    EXPECT_NE(tcapi_commit("System_Entry"), 0);
    EXPECT_NE(tcapi_set("Lan_Entry", "upgrade_fw", "1"), 0);
    EXPECT_NE(tcapi_set("System_Entry", "reboot", "1"), 0);
    EXPECT_NE(tcapi_commit("System_Entry"), 0);
    EXPECT_EQ(tcapi_set("System_Entry", "upgrade_fw", "1"), 0);
    EXPECT_NE(tcapi_commit("Lan_Entry"), 0);
    EXPECT_EQ(content(flash()), "the old firmware");
    EXPECT_EQ(tcapi_commit("System_Entry"), 0);
    EXPECT_NE(tcapi_commit("System_Entry"), 0); // each image is announced for itself
}

TEST_F(FlatTreeFirmware, DamagedImage_LeavesTheFirmware) {
    std::string damaged = image();
    damaged[5000] ^= 1;
    for (const std::string& bytes : {damaged, image().substr(0, 9000), std::string("short"), std::string()}) {
        store(file("upld.bin"), bytes);
        ASSERT_EQ(tcapi_set("System_Entry", "upgrade_fw", "1"), 0);
        EXPECT_NE(tcapi_commit("System_Entry"), 0) << bytes.size();
        EXPECT_EQ(content(flash()), "the old firmware");
        EXPECT_FALSE(exists(flash() + ".new"));
    }
}

TEST_F(FlatTreeFirmware, MissingImage_IsNamed) {
    ASSERT_TRUE(std::filesystem::remove(file("upld.bin")));
    ASSERT_EQ(tcapi_set("System_Entry", "upgrade_fw", "1"), 0);
    EXPECT_NE(tcapi_commit("System_Entry"), 0);
    EXPECT_EQ(flatTreeProblem(), "cannot open " + file("upld.bin") + ": No such file or directory");
    EXPECT_EQ(content(flash()), "the old firmware");
}

TEST_F(FlatTreeFirmware, FailingDisk_LeavesTheFirmware) {
    int failing = 1;
    for (;; failing++) {
        ASSERT_EQ(tcapi_set("System_Entry", "upgrade_fw", "1"), 0);
        watchDisk(failing);
        tcapi_commit("System_Entry");
        const std::string call = disk().calls.back();
        const bool isRenamed = static_cast<int>(disk().calls.size()) < failing;
        disk() = {};
        if (isRenamed || content(flash()) != "the old firmware") break;
        EXPECT_FALSE(exists(flash() + ".new")) << call;
    }
    EXPECT_EQ(content(flash()), image());
    EXPECT_GT(failing, 10); // opens, reads, writes, the sync, closes, the rename
}

} // namespace
} // namespace pendra::test
