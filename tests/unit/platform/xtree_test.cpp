#include <gtest/gtest.h>

#include "platform/tree/tree.h"
#include "scratch.h"

namespace {

using namespace pendra::test;
using pendra::tree::Outcome;
using pendra::tree::Tree;

/** The tool itself, on a tree of its own. */
class RealXtree : public testing::Test {
  protected:
    Ran xtree(const std::string& arguments) {
        return run(scratch, "PENDRA_TREE=" + file() + " " PENDRA_XTREE " " + arguments);
    }
    Ran load(std::string_view listing, const std::string& options = "") {
        store(scratch.file("listing"), listing);
        return xtree("load " + options + scratch.file("listing"));
    }
    [[nodiscard]] std::string file() const { return scratch.file("tree"); }
    void expect(const Ran& ran, int status, const std::string& output, const std::string& errors) {
        EXPECT_EQ(ran.status, status);
        EXPECT_EQ(ran.output, output);
        EXPECT_EQ(ran.errors, errors);
    }
    Scratch scratch;
};

TEST_F(RealXtree, SetThenGet_GivesTheText) {
    expect(xtree("set /sys/friendlyname 'Kitchen north'"), 0, "", "");
    expect(xtree("get /sys/friendlyname"), 0, "Kitchen north\n", "");
}

TEST_F(RealXtree, FileOption_WinsOverTheEnvironment) {
    expect(xtree("-f " + scratch.file("other") + " set /a 1"), 0, "", "");
    EXPECT_FALSE(exists(file()));
    expect(xtree("get /a -f " + scratch.file("other")), 0, "1\n", "");
}

TEST_F(RealXtree, EscapedGet_StaysOnOneLine) {
    expect(xtree("set /a \"$(printf 'x\\ny\"')\""), 0, "", "");
    expect(xtree("get /a"), 0, "x\ny\"\n", "");
    expect(xtree("get --escaped /a"), 0, "x\\ny\\\"\n", "");
}

TEST_F(RealXtree, EmptyAndNegativeTexts_AreStored) {
    expect(xtree("set /a ''"), 0, "", "");
    expect(xtree("get /a"), 0, "\n", "");
    expect(xtree("set /a -5"), 0, "", "");
    expect(xtree("get /a"), 0, "-5\n", "");
    expect(xtree("set /a -- -x"), 0, "", "");
    expect(xtree("get /a"), 0, "-x\n", "");
}

TEST_F(RealXtree, AbsentNode_GivesStatusOne) {
    expect(xtree("set /a 1"), 0, "", "");
    for (const char* command : {"get", "del", "list", "dump"})
        expect(xtree(std::string(command) + " /no/node"), 1, "", "xtree: no node /no/node\n");
    expect(xtree("get '/list#'"), 1, "", "xtree: no node /list#\n");
}

TEST_F(RealXtree, Count_IsRead) {
    EXPECT_EQ(load("/l:1/a = \"\"\n/l:2/a = \"\"\n").status, 0);
    expect(xtree("get '/l#'"), 0, "2\n", "");
}

TEST_F(RealXtree, Del_TakesTheSubtree) {
    EXPECT_EQ(load("/a = \"1\"\n/a/b = \"2\"\n/ab = \"3\"\n").status, 0);
    expect(xtree("del /a"), 0, "", "");
    expect(xtree("dump"), 0, "/ab = \"3\"\n", "");
}

TEST_F(RealXtree, List_NamesEachChildOnce) {
    EXPECT_EQ(
        load("/a = \"\"\n/a/b = \"\"\n/a/b/c = \"\"\n/a/l:1/x = \"\"\n/a/l:1/y = \"\"\n/z/q\\x20r = \"\"\n").status, 0);
    expect(xtree("list"), 0, "a\nz\n", "");
    expect(xtree("list /a"), 0, "b\nl:1\n", "");
    expect(xtree("list /a/b/c"), 0, "", "");
    expect(xtree("list /z"), 0, "q\\x20r\n", "");
}

TEST_F(RealXtree, DumpOfASubtree_HoldsTheNodeAndWhatIsBelow) {
    EXPECT_EQ(load("/a = \"1\"\n/a/b = \"2\"\n/ab = \"3\"\n").status, 0);
    expect(xtree("dump /a"), 0, "/a = \"1\"\n/a/b = \"2\"\n", "");
}

TEST_F(RealXtree, DumpAndLoad_KeepEveryByte) {
    std::string text;
    for (int byte = 0; byte < 256; ++byte)
        text += static_cast<char>(byte);
    {
        Tree tree;
        std::string error;
        ASSERT_TRUE(tree.open(file(), Tree::Access::write, error)) << error;
        ASSERT_EQ(tree.set("/bytes", text), Outcome::done);
        ASSERT_EQ(tree.set("/p\x01\xff =\"\\", "x"), Outcome::done);
    }
    const std::string dump = xtree("dump").output;
    EXPECT_EQ(dump.find_first_of('\0'), dump.npos);
    store(scratch.file("dump"), dump);
    const std::string copy = " -f " + scratch.file("copy") + " ";
    expect(xtree(copy + "load " + scratch.file("dump")), 0, "", "");
    expect(xtree(copy + "dump"), 0, dump, "");
    Tree tree;
    std::string error;
    ASSERT_TRUE(tree.open(scratch.file("copy"), Tree::Access::read, error)) << error;
    EXPECT_EQ(textOf(tree, "/bytes"), text);
}

TEST_F(RealXtree, LoadFromStandardInput_IsStored) {
    expect(xtree("load - <<'end'\n/a = \"1\"  # note\nend\n"), 0, "", "");
    expect(xtree("get /a"), 0, "1\n", "");
}

TEST_F(RealXtree, Load_KeepsOtherNodesUnlessReplacing) {
    EXPECT_EQ(load("/old = \"1\"\n").status, 0);
    EXPECT_EQ(load("/new = \"2\"\n").status, 0);
    expect(xtree("dump"), 0, "/new = \"2\"\n/old = \"1\"\n", "");
    EXPECT_EQ(load("/only = \"3\"\n", "--replace ").status, 0);
    expect(xtree("dump"), 0, "/only = \"3\"\n", "");
}

TEST_F(RealXtree, LoadWithABadLine_ChangesNothingAndNamesIt) {
    EXPECT_EQ(load("/a = \"1\"\n").status, 0);
    const std::string listing = scratch.file("listing");
    expect(load("/a = \"2\"\n/b = oops\n"), 3, "", "xtree: " + listing + ", line 2: expected /path = \"text\"\n");
    expect(load("/a = \"2\"\n# c\n/runtime/easyroaming/deauthsta/mac = \"x\"\n", "--replace "), 3, "",
           "xtree: " + listing +
               ", line 3: /runtime/easyroaming/deauthsta/mac takes a MAC address as six pairs of hex digits with "
               "colons between\n");
    expect(xtree("dump"), 0, "/a = \"1\"\n", "");
}

TEST_F(RealXtree, LargeLoad_FindsRoom) {
    std::string listing;
    for (int n = 1; n <= 20000; ++n)
        listing += "/n:" + std::to_string(n) + " = \"" + std::string(1000, 'x') + "\"\n";
    expect(load(listing), 0, "", "");
    expect(xtree("get '/n#'"), 0, "20000\n", "");
}

TEST_F(RealXtree, RefusedText_GivesStatusThreeAndTheRule) {
    expect(xtree("set /bramble/scriptdirecory '/tmp; reboot'"), 3, "",
           "xtree: /bramble/scriptdirecory takes an absolute directory of at most 127 letters, digits and "
           "_.-+,:@%=/\n");
    expect(xtree("set no/slash x"), 3, "", "xtree: no/slash is not a node's path\n");
    expect(xtree("set '/l#' 3"), 3, "", "xtree: /l# is counted by the tree and cannot be set\n");
    expect(xtree("dump"), 0, "", "");
}

TEST_F(RealXtree, Diff_ComparesAListingWithTheTree) {
    EXPECT_EQ(load("/a = \"1\"\n/b = \"2\"\n").status, 0);
    store(scratch.file("before"), xtree("dump").output);
    expect(xtree("diff " + scratch.file("before")), 0, "", "");
    EXPECT_EQ(xtree("set /a changed").status, 0);
    EXPECT_EQ(xtree("del /b").status, 0);
    EXPECT_EQ(xtree("set /c new").status, 0);
    expect(xtree("diff " + scratch.file("before")), 1,
           "- /a = \"1\"\n+ /a = \"changed\"\n- /b = \"2\"\n+ /c = \"new\"\n", "");
}

TEST_F(RealXtree, DiffOfTwoListings_NeedsNoTree) {
    store(scratch.file("one"), "/a = \"1\"\n");
    store(scratch.file("two"), "/a = \"2\"\n");
    const std::string tool = "env -u PENDRA_TREE " PENDRA_XTREE " diff ";
    expect(run(scratch, tool + scratch.file("one") + " " + scratch.file("two")), 1, "- /a = \"1\"\n+ /a = \"2\"\n", "");
    expect(run(scratch, tool + scratch.file("one") + " " + scratch.file("one")), 0, "", "");
}

TEST_F(RealXtree, WrongUsage_GivesStatusTwo) {
    for (const char* arguments : {"", "frob", "get", "set /a", "set /a 1 2", "--bad get /a", "diff"}) {
        const Ran ran = xtree(arguments);
        EXPECT_EQ(ran.status, 2) << arguments;
        EXPECT_NE(ran.errors, "") << arguments;
        EXPECT_EQ(ran.output, "") << arguments;
    }
    expect(xtree("load " + scratch.file("nowhere")), 2, "", "xtree: cannot read " + scratch.file("nowhere") + "\n");
    expect(run(scratch, "env -u PENDRA_TREE " PENDRA_XTREE " get /a"), 2, "",
           "xtree: no tree named: use -f FILE or PENDRA_TREE\n");
    EXPECT_FALSE(exists(file()));
}

TEST_F(RealXtree, UnusableTree_GivesStatusFour) {
    expect(xtree("get /a"), 4, "", "xtree: cannot open the tree " + file() + ": No such file or directory\n");
    EXPECT_EQ(xtree("del /a").status, 4);
    EXPECT_FALSE(exists(file()));
    store(file(), "no tree");
    EXPECT_EQ(xtree("get /a").status, 4);
    EXPECT_EQ(content(file()), "no tree");
    EXPECT_EQ(xtree("-f " + scratch.path() + "/no/dir set /a 1").status, 4);
}

TEST_F(RealXtree, OutputThatCannotBeWritten_GivesStatusFour) {
    EXPECT_EQ(xtree("set /a 1").status, 0);
    expect(xtree("dump >/dev/full"), 4, "", "xtree: cannot write the output\n");
}

TEST_F(RealXtree, Help_TellsCommandsAndStatuses) {
    const Ran ran = xtree("--help");
    EXPECT_EQ(ran.status, 0);
    EXPECT_EQ(ran.errors, "");
    for (const char* word : {"get", "set", "del", "list", "dump", "load", "diff", "PENDRA_TREE", "Exit status:"})
        EXPECT_NE(ran.output.find(word), std::string::npos) << word;
}

} // namespace
