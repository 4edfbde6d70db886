#include "platform/tree/tree.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "scratch.h"

namespace {

using namespace pendra::test;
using pendra::tree::Outcome;
using pendra::tree::Tree;

class OpenedTree : public testing::Test {
  protected:
    void SetUp() override {
        std::string error;
        ASSERT_TRUE(tree.open(scratch.file("tree"), Tree::Access::write, error)) << error;
    }
    void set(std::string_view path, std::string_view text = "x") {
        ASSERT_EQ(tree.set(path, text), Outcome::done) << tree.reason();
    }

    Scratch scratch;
    Tree tree;
};

TEST_F(OpenedTree, StoredNode_ReadsAsItWasStored) {
    set("/sys/friendlyname", "Kitchen");
    EXPECT_EQ(textOf(tree, "/sys/friendlyname"), "Kitchen");
}

TEST_F(OpenedTree, AbsentNode_IsAbsentAndEmpty) {
    std::string text = "left over";
    EXPECT_EQ(tree.get("/sys/friendlyname", text), Outcome::absent);
    EXPECT_EQ(text, "");
}

TEST_F(OpenedTree, EmptyText_IsStored) {
    set("/a", "");
    EXPECT_EQ(textOf(tree, "/a"), "");
}

TEST_F(OpenedTree, NamesThatDifferInCase_AreTwoNodes) {
    set("/sys/RouterEnbl", "1");
    set("/sys/routerenbl", "2");
    EXPECT_EQ(textOf(tree, "/sys/RouterEnbl"), "1");
    EXPECT_EQ(textOf(tree, "/sys/routerenbl"), "2");
}

TEST_F(OpenedTree, ParentOfANode_IsNoNodeItself) {
    set("/sys/user:1/password");
    EXPECT_EQ(textOf(tree, "/sys/user:1"), "(absent)");
}

TEST_F(OpenedTree, NodeWithNodesBelow_HasATextOfItsOwn) {
    set("/lan/wireless5:1/configurable", "1");
    set("/lan/wireless5:1/configurable/acrule:1/mac", "m");
    EXPECT_EQ(textOf(tree, "/lan/wireless5:1/configurable"), "1");
}

TEST_F(OpenedTree, LongestPathAndText_AreTaken) {
    const std::string path = "/" + std::string(254, 'p');
    const std::string text(1023, 't');
    set(path, text);
    EXPECT_EQ(textOf(tree, path), text);
}

TEST_F(OpenedTree, LongerPathOrText_IsRefused) {
    EXPECT_EQ(tree.set("/" + std::string(255, 'p'), "x"), Outcome::refused);
    EXPECT_EQ(tree.set("/a", std::string(1024, 't')), Outcome::refused);
    EXPECT_EQ(tree.reason(), "/a takes a text of at most 1023 bytes");
    EXPECT_EQ(dumpOf(tree), "");
}

TEST_F(OpenedTree, PathOutOfGrammar_IsRefused) {
    for (const std::string path : {"", "/", "a", "a/b", "/a/", "//a", "/a//b"}) {
        EXPECT_EQ(tree.set(path, "x"), Outcome::refused) << path;
        EXPECT_EQ(textOf(tree, path), "(absent)") << path;
        EXPECT_EQ(tree.remove(path), Outcome::absent) << path;
    }
    EXPECT_EQ(tree.set(std::string_view("/a\0b", 4), "x"), Outcome::refused);
    EXPECT_EQ(dumpOf(tree), "");
}

TEST_F(OpenedTree, CountPath_CannotBeSetOrRemoved) {
    set("/list:1");
    EXPECT_EQ(tree.set("/list#", "7"), Outcome::refused);
    EXPECT_EQ(tree.remove("/list#"), Outcome::absent);
    EXPECT_EQ(textOf(tree, "/list#"), "1");
}

TEST_F(OpenedTree, ListWithoutElements_HasNoCount) {
    set("/lan/wireless5:1/configurable", "1");
    EXPECT_EQ(textOf(tree, "/lan/wireless5:1/configurable/acrule#"), "(absent)");
}

TEST_F(OpenedTree, Element_CountsByItselfOrByWhatLiesBelow) {
    set("/l/sta:1", "");
    set("/l/sta:2/mac");
    set("/l/sta:2/rssi");
    set("/l/sta:3/deep/er");
    EXPECT_EQ(textOf(tree, "/l/sta#"), "3");
}

TEST_F(OpenedTree, ElementNumbersWithGaps_CountTheElementsThereAre) {
    for (const char* path : {"/l:2", "/l:7/a", "/l:40"})
        set(path);
    EXPECT_EQ(textOf(tree, "/l#"), "3");
}

TEST_F(OpenedTree, NamesBetweenAnElementAndItsNodes_AreNotCounted) {
    for (const char* path : {"/l:1", "/l:1.x", "/l:1-", "/l:1/a", "/l:1/b", "/l:10", "/l:10/a", "/l:2.y", "/l:2/a"})
        set(path);
    EXPECT_EQ(textOf(tree, "/l#"), "3");
}

TEST_F(OpenedTree, NamesThatAreNoNumbers_AreNotCounted) {
    for (const char* path : {"/l:0", "/l:01", "/l:", "/l:x/1", "/l:1x/a", "/lx:1", "/k/l:1", "/l"})
        set(path);
    EXPECT_EQ(textOf(tree, "/l#"), "(absent)");
}

TEST_F(OpenedTree, ManyElements_AreAllCounted) {
    std::string error;
    ASSERT_TRUE(tree.begin(error));
    for (int n = 1; n <= 1200; ++n)
        for (const char* leaf : {"/active", "/mac"})
            set("/list:" + std::to_string(n) + leaf);
    ASSERT_TRUE(tree.commit(error)) << error;
    EXPECT_EQ(textOf(tree, "/list#"), "1200");
}

TEST_F(OpenedTree, RemovedNode_TakesWhatLiesBelowAndNothingElse) {
    for (const char* path : {"/a", "/a/b", "/a/b/c", "/a.b", "/a0", "/ab", "/b"})
        set(path);
    EXPECT_EQ(tree.remove("/a"), Outcome::done);
    EXPECT_EQ(dumpOf(tree), "/a.b = \"x\"\n/a0 = \"x\"\n/ab = \"x\"\n/b = \"x\"\n");
}

TEST_F(OpenedTree, ParentWithoutText_RemovesWhatLiesBelow) {
    set("/runtime/easyroaming/deauthsta/mac", "02:00:00:00:00:01");
    EXPECT_EQ(tree.remove("/runtime/easyroaming/deauthsta"), Outcome::done);
    EXPECT_EQ(dumpOf(tree), "");
}

TEST_F(OpenedTree, RemovedElement_LeavesItsNeighbours) {
    for (const char* path : {"/l:1/a", "/l:10/a", "/l:2/a"})
        set(path);
    EXPECT_EQ(tree.remove("/l:1"), Outcome::done);
    EXPECT_EQ(dumpOf(tree), "/l:10/a = \"x\"\n/l:2/a = \"x\"\n");
    EXPECT_EQ(textOf(tree, "/l#"), "2");
}

TEST_F(OpenedTree, AbsentNode_RemovesNothing) {
    set("/a/b");
    EXPECT_EQ(tree.remove("/a/c"), Outcome::absent);
    EXPECT_EQ(tree.remove("/a/b"), Outcome::done);
    EXPECT_EQ(tree.remove("/a/b"), Outcome::absent);
}

TEST_F(OpenedTree, AnyByteInAText_SurvivesReopening) {
    std::string text;
    for (int byte = 0; byte < 256; ++byte)
        text += static_cast<char>(byte);
    set("/bytes", text);
    tree.close();
    std::string error;
    ASSERT_TRUE(tree.open(scratch.file("tree"), Tree::Access::read, error)) << error;
    EXPECT_EQ(textOf(tree, "/bytes"), text);
}

TEST_F(OpenedTree, TreeFile_IsForItsOwnerOnly) {
    struct stat status {};
    ASSERT_EQ(stat(scratch.file("tree").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST(Tree, FileAbsent_IsCreatedForWritingOnly) {
    const Scratch scratch;
    const std::string file = scratch.file("tree");
    Tree tree;
    std::string error;
    EXPECT_FALSE(tree.open(file, Tree::Access::read, error));
    EXPECT_EQ(error, "cannot open the tree " + file + ": No such file or directory");
    EXPECT_FALSE(tree.open(file, Tree::Access::change, error));
    EXPECT_FALSE(exists(file));
    EXPECT_TRUE(tree.open(file, Tree::Access::write, error)) << error;
    EXPECT_TRUE(exists(file));
}

TEST(Tree, FileThatIsNoTree_IsNotOpened) {
    const Scratch scratch;
    store(scratch.file("tree"), std::string(20000, 'g'));
    Tree tree;
    std::string error;
    EXPECT_FALSE(tree.open(scratch.file("tree"), Tree::Access::write, error));
    EXPECT_NE(error.find("cannot open the tree"), error.npos) << error;
    EXPECT_EQ(content(scratch.file("tree")), std::string(20000, 'g'));
}

TEST(Tree, NotOpened_AnswersNothingAndTellsWhy) {
    Tree tree;
    std::string text;
    std::string error;
    EXPECT_EQ(tree.get("/a", text), Outcome::failed);
    EXPECT_EQ(tree.reason(), "the tree is not open");
    EXPECT_EQ(tree.set("/a", "x"), Outcome::failed);
    EXPECT_EQ(tree.remove("/a"), Outcome::failed);
    EXPECT_FALSE(tree.begin(error));
    EXPECT_EQ(error, "the tree is not open");
    EXPECT_FALSE(tree.commit(error));
}

TEST(Tree, OpenedForReading_StoresNothing) {
    const Scratch scratch;
    std::string error;
    Tree tree;
    ASSERT_TRUE(tree.open(scratch.file("tree"), Tree::Access::write, error)) << error;
    ASSERT_TRUE(tree.open(scratch.file("tree"), Tree::Access::read, error)) << error;
    EXPECT_EQ(tree.set("/a", "x"), Outcome::failed);
    EXPECT_EQ(textOf(tree, "/a"), "(absent)");
}

} // namespace
