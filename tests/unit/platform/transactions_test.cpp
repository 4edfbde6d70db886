#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <random>
#include <set>

#include "platform/tree/tree.h"
#include "scratch.h"

namespace {

using namespace pendra::test;
using pendra::tree::MapSize;
using pendra::tree::Outcome;
using pendra::tree::Tree;

constexpr MapSize smallMap{.first = 64 << 10, .room = 16 << 10};

class TreeTransactions : public testing::Test {
  protected:
    [[nodiscard]] std::string file() const { return scratch.file("tree"); }
    bool open(Tree& tree, Tree::Access access = Tree::Access::write, MapSize size = {}) const {
        std::string error;
        return tree.open(file(), access, error, size);
    }
    Scratch scratch;
};

/** Stores one number in two nodes, as one transaction. */
bool storePair(Tree& tree, int number) {
    std::string error;
    const std::string text = std::to_string(number);
    return tree.begin(error) && tree.set("/pair/a", text) == Outcome::done &&
           tree.set("/pair/z", text) == Outcome::done && tree.commit(error);
}

/** The two nodes of one snapshot. */
std::pair<std::string, std::string> readPair(Tree& tree) {
    std::pair<std::string, std::string> pair;
    static_cast<void>(tree.walk("/pair", [&](std::string_view path, std::string_view text) {
        (path == "/pair/a" ? pair.first : pair.second) = text;
    }));
    return pair;
}

TEST_F(TreeTransactions, Version_GrowsWithEachCommitOfAnyProcess) {
    Tree tree;
    EXPECT_EQ(tree.version(), 0u); // not open
    ASSERT_TRUE(open(tree));
    ASSERT_EQ(tree.set("/a", "1"), Outcome::done);
    const size_t own = tree.version();
    EXPECT_GT(own, 0u);
    EXPECT_EQ(textOf(tree, "/a"), "1");
    EXPECT_EQ(tree.set("no path", "1"), Outcome::refused);
    EXPECT_EQ(tree.version(), own);
    ASSERT_EQ(run(scratch, PENDRA_XTREE " -f " + file() + " set /a 2").status, 0);
    const size_t others = tree.version();
    EXPECT_GT(others, own);
    ASSERT_EQ(tree.remove("/a"), Outcome::done);
    EXPECT_GT(tree.version(), others);
}

TEST_F(TreeTransactions, Version_OfAnOpenTransaction_SaysNothing) {
    Tree tree;
    ASSERT_TRUE(open(tree));
    ASSERT_EQ(tree.set("/a", "1"), Outcome::done);
    const size_t before = tree.version();
    std::string error;
    ASSERT_TRUE(tree.begin(error)) << error;
    EXPECT_EQ(tree.version(), 0u);
    ASSERT_EQ(tree.set("/a", "2"), Outcome::done);
    EXPECT_EQ(tree.version(), 0u);
    tree.abandon();
    EXPECT_EQ(tree.version(), before);
}

TEST_F(TreeTransactions, OpenTransaction_IsSeenInsideOnly) {
    Tree tree;
    ASSERT_TRUE(open(tree));
    ASSERT_EQ(tree.set("/a", "old"), Outcome::done);
    std::string error;
    ASSERT_TRUE(tree.begin(error)) << error;
    ASSERT_EQ(tree.set("/a", "new"), Outcome::done);
    ASSERT_EQ(tree.set("/l:1", "x"), Outcome::done);
    EXPECT_EQ(textOf(tree, "/a"), "new");
    EXPECT_EQ(textOf(tree, "/l#"), "1");
    EXPECT_EQ(run(scratch, PENDRA_XTREE " -f " + file() + " dump").output, "/a = \"old\"\n");
    ASSERT_TRUE(tree.commit(error)) << error;
    EXPECT_EQ(run(scratch, PENDRA_XTREE " -f " + file() + " get /a").output, "new\n");
}

TEST_F(TreeTransactions, Abandoned_LeavesTheTreeAsItWas) {
    Tree tree;
    ASSERT_TRUE(open(tree));
    ASSERT_EQ(tree.set("/a", "old"), Outcome::done);
    std::string error;
    ASSERT_TRUE(tree.begin(error)) << error;
    ASSERT_EQ(tree.set("/a", "new"), Outcome::done);
    ASSERT_EQ(tree.set("/b", "new"), Outcome::done);
    tree.abandon();
    EXPECT_EQ(dumpOf(tree), "/a = \"old\"\n");
    EXPECT_TRUE(storePair(tree, 1));
}

TEST_F(TreeTransactions, RefusedWrite_DoesNotSpoilTheRest) {
    Tree tree;
    ASSERT_TRUE(open(tree));
    std::string error;
    ASSERT_TRUE(tree.begin(error)) << error;
    EXPECT_EQ(tree.set("/bramble/tempdirecory", "/tmp; reboot"), Outcome::refused);
    ASSERT_EQ(tree.set("/a", "1"), Outcome::done);
    ASSERT_TRUE(tree.commit(error)) << error;
    EXPECT_EQ(dumpOf(tree), "/a = \"1\"\n");
}

TEST_F(TreeTransactions, CommitWithoutBegin_Fails) {
    Tree tree;
    ASSERT_TRUE(open(tree));
    std::string error;
    EXPECT_FALSE(tree.commit(error));
    EXPECT_EQ(error, "no transaction is open");
}

TEST_F(TreeTransactions, FullMap_SpoilsTheTransactionAndTheNextOneFindsMoreRoom) {
    Tree tree;
    ASSERT_TRUE(open(tree, Tree::Access::write, smallMap));
    ASSERT_EQ(tree.set("/kept", "1"), Outcome::done);
    const auto storeMuch = [&](std::string& error) {
        EXPECT_TRUE(tree.begin(error)) << error;
        bool stored = true;
        for (int n = 1; n <= 400; ++n)
            stored = tree.set("/much:" + std::to_string(n), std::string(1000, 'm')) == Outcome::done && stored;
        const bool committed = tree.commit(error);
        EXPECT_EQ(stored, committed);
        return committed;
    };
    std::string error;
    ASSERT_FALSE(storeMuch(error));
    EXPECT_EQ(error, "the tree has no room left");
    EXPECT_EQ(dumpOf(tree), "/kept = \"1\"\n");

    int tries = 1;
    while (tries < 10 && !storeMuch(error))
        ++tries;
    EXPECT_LT(tries, 10);
    EXPECT_EQ(textOf(tree, "/much#"), "400");
    EXPECT_EQ(textOf(tree, "/kept"), "1");
}

TEST_F(TreeTransactions, AnnouncedBytes_FindRoomAtOnce) {
    Tree tree;
    ASSERT_TRUE(open(tree, Tree::Access::write, smallMap));
    std::string error;
    ASSERT_TRUE(tree.begin(error, 400 * 1024)) << error;
    for (int n = 1; n <= 400; ++n)
        ASSERT_EQ(tree.set("/much:" + std::to_string(n), std::string(1000, 'm')), Outcome::done) << tree.reason();
    ASSERT_TRUE(tree.commit(error)) << error;
    EXPECT_EQ(textOf(tree, "/much#"), "400");
}

TEST_F(TreeTransactions, ManySmallOnes_GrowTheMapAsNeeded) {
    Tree tree;
    ASSERT_TRUE(open(tree, Tree::Access::write, smallMap));
    for (int n = 1; n <= 300; ++n)
        ASSERT_EQ(tree.set("/much:" + std::to_string(n), std::string(1000, 'm')), Outcome::done) << tree.reason();
    EXPECT_EQ(textOf(tree, "/much#"), "300");
}

TEST_F(TreeTransactions, MapGrownByAnotherProcess_IsFollowed) {
    {
        Tree tree;
        ASSERT_TRUE(open(tree, Tree::Access::write, smallMap));
    }
    const Signpost reading;
    const Signpost grown;
    Child reader([&] {
        Tree tree;
        if (!open(tree, Tree::Access::change, smallMap)) return 1;
        reading.raise();
        grown.await();
        if (textOf(tree, "/much#") != "400") return 2;
        return tree.set("/reader", "wrote") == Outcome::done ? 0 : 3;
    });
    reading.await();
    Tree tree;
    ASSERT_TRUE(open(tree));
    std::string error;
    ASSERT_TRUE(tree.begin(error)) << error;
    for (int n = 1; n <= 400; ++n)
        ASSERT_EQ(tree.set("/much:" + std::to_string(n), std::string(1000, 'm')), Outcome::done);
    ASSERT_TRUE(tree.commit(error)) << error;
    grown.raise();
    EXPECT_EQ(reader.wait(), 0);
    EXPECT_EQ(textOf(tree, "/reader"), "wrote");
}

TEST_F(TreeTransactions, FullDisk_FailsTheCommitAndKeepsWhatWasStored) {
    Child child([&] {
        Tree tree;
        if (!open(tree) || tree.set("/kept", "1") != Outcome::done) return 1;
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit{};
        getrlimit(RLIMIT_FSIZE, &limit);
        limit.rlim_cur = 100 << 10;
        setrlimit(RLIMIT_FSIZE, &limit);
        std::string error;
        if (!tree.begin(error)) return 2;
        for (int n = 1; n <= 1000; ++n)
            static_cast<void>(tree.set("/much:" + std::to_string(n), std::string(1000, 'm')));
        if (tree.commit(error) || error.empty()) return 3;
        if (dumpOf(tree) != "/kept = \"1\"\n") return 4;
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_FSIZE, &limit);
        return storePair(tree, 1) ? 0 : 5;
    });
    EXPECT_EQ(child.wait(), 0);
    Tree tree;
    ASSERT_TRUE(open(tree));
    EXPECT_EQ(dumpOf(tree), "/kept = \"1\"\n/pair/a = \"1\"\n/pair/z = \"1\"\n");
}

TEST_F(TreeTransactions, ProcessKilledInsideOne_LeavesTheTreeAsItWasAndWritable) {
    const Signpost written;
    Child writer([&] {
        Tree tree;
        std::string error;
        if (!open(tree) || !storePair(tree, 1) || !tree.begin(error)) return 1;
        if (tree.set("/pair/a", "2") != Outcome::done) return 1;
        written.raise();
        ::pause();
        return 0;
    });
    written.await();
    writer.kill();
    Tree tree;
    ASSERT_TRUE(open(tree));
    EXPECT_EQ(readPair(tree), std::pair(std::string("1"), std::string("1")));
    EXPECT_TRUE(storePair(tree, 3));
}

/** How long a transaction takes on this machine, in microseconds. */
int durationOfOne(Tree& tree) {
    constexpr int runs = 10;
    const auto start = std::chrono::steady_clock::now();
    for (int number = 1; number <= runs; ++number)
        EXPECT_TRUE(storePair(tree, number));
    const auto passed = std::chrono::steady_clock::now() - start;
    return static_cast<int>(std::chrono::duration_cast<std::chrono::microseconds>(passed).count()) / runs + 1;
}

TEST_F(TreeTransactions, ProcessKilledAtAnyMoment_NeverLeavesHalfOfOne) {
    Tree before;
    ASSERT_TRUE(open(before));
    std::mt19937 random(20);
    std::uniform_int_distribution<int> microseconds(0, 4 * durationOfOne(before));
    int number = std::atoi(readPair(before).first.c_str());
    before.close();

    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(40);
    int killsAfterProgress = 0;
    for (int kills = 0; kills < 60 || killsAfterProgress < 25; ++kills) {
        ASSERT_LT(std::chrono::steady_clock::now(), deadline);
        const Signpost ready;
        Child writer([&] {
            Tree tree;
            if (!open(tree)) return 1;
            ready.raise();
            for (int next = number + 1;; ++next)
                if (!storePair(tree, next)) return 1;
        });
        ready.await();
        ::usleep(static_cast<useconds_t>(microseconds(random)));
        EXPECT_TRUE(writer.isRunning());
        writer.kill();

        Tree tree;
        ASSERT_TRUE(open(tree, Tree::Access::read));
        const auto [first, second] = readPair(tree);
        EXPECT_EQ(first, second);
        const int stored = std::atoi(first.c_str());
        EXPECT_GE(stored, number);
        if (stored > number) ++killsAfterProgress;
        number = stored;
    }
}

/** Reads pairs until it has seen that many different ones. @return 0 when no pair was torn. */
int readWhileWritten(const std::string& file, std::size_t enough) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    Tree tree;
    std::string error;
    if (!tree.open(file, Tree::Access::read, error)) return 1;
    std::set<std::string> seen;
    while (seen.size() < enough) {
        const auto [first, second] = readPair(tree);
        if (first != second) return 2;
        seen.insert(first);
        if (std::chrono::steady_clock::now() > deadline) return 3;
    }
    return 0;
}

TEST_F(TreeTransactions, TwoReadersWhileOneWrites_SeeWholeOnesOnly) {
    {
        Tree tree;
        ASSERT_TRUE(open(tree));
        ASSERT_TRUE(storePair(tree, 0));
    }
    Child first([&] { return readWhileWritten(file(), 50); });
    Child second([&] { return readWhileWritten(file(), 50); });
    Tree tree;
    ASSERT_TRUE(open(tree));
    for (int number = 1; first.isRunning() || second.isRunning(); ++number)
        ASSERT_TRUE(storePair(tree, number));
    EXPECT_EQ(first.wait(), 0);
    EXPECT_EQ(second.wait(), 0);
}

TEST_F(TreeTransactions, SecondWriter_WaitsForTheFirst) {
    Tree tree;
    {
        ASSERT_TRUE(open(tree));
        ASSERT_TRUE(storePair(tree, 0));
        tree.close();
    }
    const Signpost begun;
    const Signpost goOn;
    Child firstWriter([&] {
        Tree own;
        std::string error;
        if (!open(own) || !own.begin(error)) return 1;
        begun.raise();
        goOn.await();
        return own.set("/order", "first") == Outcome::done && own.commit(error) ? 0 : 2;
    });
    begun.await();
    Child secondWriter([&] {
        Tree own;
        return open(own) && own.set("/order", "second") == Outcome::done ? 0 : 1;
    });
    ::usleep(50'000);
    EXPECT_TRUE(secondWriter.isRunning());
    goOn.raise();
    EXPECT_EQ(firstWriter.wait(), 0);
    EXPECT_EQ(secondWriter.wait(), 0);
    ASSERT_TRUE(open(tree));
    EXPECT_EQ(textOf(tree, "/order"), "second");
}

} // namespace
