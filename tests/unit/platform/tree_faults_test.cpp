// Every write and sync of the tree's file fails or is cut: the first, the second, and so on. The tree then holds the
// old values or the new ones, all of them, and takes the next write.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "file_faults.h"
#include "pendra/platform.h"
#include "platform/device.h"
#include "platform/tree/tree.h"
#include "scratch.h"

namespace {

using namespace pendra::test;
using pendra::tree::Outcome;
using pendra::tree::Tree;

constexpr long kForEver = 1000000;
constexpr int kNodes = 60;

/** Something to do with an open tree. @return whether it was reported as done. */
struct Work {
    const char* name;
    bool (*run)(Tree& tree, std::string& error);
};

bool isDone(const Tree& tree, Outcome outcome, std::string& error) {
    if (outcome != Outcome::done) error = tree.reason();
    return outcome == Outcome::done;
}

bool setOne(Tree& tree, std::string& error) {
    return isDone(tree, tree.set("/node:7", "new"), error);
}

bool removeOne(Tree& tree, std::string& error) {
    const Outcome outcome = tree.remove("/node:9");
    return outcome == Outcome::absent || isDone(tree, outcome, error);
}

bool clearAll(Tree& tree, std::string& error) {
    return isDone(tree, tree.clear(), error);
}

/** Changes, deletes and adds, so that the file grows and pages become free. */
bool changeMuch(Tree& tree, std::string& error) {
    if (!tree.begin(error)) return false;
    for (int number = 1; number <= kNodes; ++number) {
        const std::string path = "/node:" + std::to_string(number);
        static_cast<void>(number % 3 == 0 ? tree.remove(path) : tree.set(path, std::string(300, 'n')));
        static_cast<void>(tree.set("/added" + path, std::string(500, 'a')));
    }
    return tree.commit(error);
}

void PrintTo(const Work& work, std::ostream* output) {
    *output << work.name;
}

constexpr Work kWorks[] = {
    {"SetOne", setOne}, {"RemoveOne", removeOne}, {"ClearAll", clearAll}, {"ChangeMuch", changeMuch}};

class TreeFaults : public testing::TestWithParam<std::tuple<Work, Fault>> {
  protected:
    TreeFaults() {
        std::string error;
        Tree tree;
        EXPECT_TRUE(tree.open(original(), Tree::Access::write, error) && tree.begin(error)) << error;
        for (int number = 1; number <= kNodes; ++number)
            EXPECT_EQ(tree.set("/node:" + std::to_string(number), std::string(200, 'o')), Outcome::done);
        EXPECT_TRUE(tree.commit(error)) << error;
        old_ = dumpOf(tree);
        tree.close();
        renew();
        EXPECT_TRUE(tree.open(file(), Tree::Access::write, error) && work().run(tree, error)) << error;
        new_ = dumpOf(tree);
        EXPECT_NE(old_, new_);
    }

    static const Work& work() { return std::get<Work>(GetParam()); }
    static Fault fault() { return std::get<Fault>(GetParam()); }
    [[nodiscard]] std::string original() const { return scratch.file("original"); }
    [[nodiscard]] std::string file() const { return scratch.file("tree"); }

    void renew() const {
        std::filesystem::remove(file());
        std::filesystem::remove(file() + "-lock");
        std::filesystem::copy_file(original(), file());
    }

    [[nodiscard]] std::string reopened() const {
        Tree tree;
        std::string error;
        return tree.open(file(), Tree::Access::read, error) ? dumpOf(tree) : error;
    }

    void expectOldOrNew(const std::string& found) const {
        EXPECT_TRUE(found == old_ || found == new_) << found.substr(0, 300);
    }

    void expectNextWrite(Tree& tree) const {
        EXPECT_EQ(tree.set("/next", "1"), Outcome::done) << tree.reason();
        EXPECT_EQ(textOf(tree, "/next"), "1");
        EXPECT_EQ(tree.remove("/next"), Outcome::done) << tree.reason();
        std::string error;
        EXPECT_TRUE(work().run(tree, error)) << error;
        tree.close();
        EXPECT_TRUE(reopened() == new_) << reopened().substr(0, 300);
    }

    /** One run with faults. @return false when it went to its end before them. */
    bool survives(long first, long last) {
        renew();
        Tree tree;
        std::string error;
        EXPECT_TRUE(tree.open(file(), Tree::Access::write, error)) << error;
        failCalls(fault(), first, last);
        const bool done = work().run(tree, error);
        const long calls = stopFailing();
        const std::string seen = dumpOf(tree);
        EXPECT_EQ(done, error.empty());
        expectOldOrNew(seen);
        if (done) {
            EXPECT_EQ(seen, new_);
        }
        expectNextWrite(tree);
        return calls >= first;
    }

    Scratch scratch;
    std::string old_;
    std::string new_;
};

TEST_P(TreeFaults, OneCallFails_LeavesTheOldOrTheNewTreeThatTakesTheNextWrite) {
    long first = 1;
    for (bool reached = true; reached && !HasFailure(); ++first) {
        SCOPED_TRACE("call " + std::to_string(first));
        reached = survives(first, first);
    }
    EXPECT_GE(first, 4); // pages, their sync and the head page at least
}

TEST_P(TreeFaults, AllCallsFromOneOnFail_LeaveTheOldOrTheNewTreeThatTakesTheNextWrite) {
    for (long first = 1; !HasFailure(); ++first) {
        SCOPED_TRACE("from call " + std::to_string(first) + " on");
        if (!survives(first, kForEver)) return;
    }
}

std::string nameOf(const testing::TestParamInfo<std::tuple<Work, Fault>>& row) {
    return std::string(std::get<Work>(row.param).name) + "_" + testing::PrintToString(std::get<Fault>(row.param));
}

INSTANTIATE_TEST_SUITE_P(Works, TreeFaults,
                         testing::Combine(testing::ValuesIn(kWorks),
                                          testing::Values(Fault::inputOutput, Fault::noSpace, Fault::cut,
                                                          Fault::shortened, Fault::unreported)),
                         nameOf);

class TreeCuts : public TreeFaults {};

TEST_P(TreeCuts, ProcessEndsInsideACall_LeavesTheOldOrTheNewTreeThatTakesTheNextWrite) {
    int status = kKilledStatus;
    for (long call = 1; status == kKilledStatus && !HasFailure(); ++call) {
        SCOPED_TRACE("call " + std::to_string(call));
        renew();
        Child child([&] {
            Tree tree;
            std::string error;
            if (!tree.open(file(), Tree::Access::write, error)) return 1;
            failCalls(Fault::killed, call, call);
            return work().run(tree, error) ? 0 : 2;
        });
        status = child.wait();
        expectOldOrNew(reopened());
        Tree tree;
        std::string error;
        ASSERT_TRUE(tree.open(file(), Tree::Access::write, error)) << error;
        expectNextWrite(tree);
    }
    EXPECT_EQ(status, 0);
}

INSTANTIATE_TEST_SUITE_P(Works, TreeCuts, testing::Combine(testing::ValuesIn(kWorks), testing::Values(Fault::killed)),
                         nameOf);

/** A tree that is only now made. */
class TreeCreation : public testing::TestWithParam<Fault> {
  protected:
    [[nodiscard]] std::string file() const { return scratch.file("tree"); }
    [[nodiscard]] bool create(std::string& error) const {
        Tree tree;
        return tree.open(file(), Tree::Access::write, error);
    }
    void expectUsable() const {
        Tree tree;
        std::string error;
        ASSERT_TRUE(tree.open(file(), Tree::Access::write, error)) << error;
        EXPECT_EQ(tree.set("/a", "1"), Outcome::done) << tree.reason();
        EXPECT_EQ(dumpOf(tree), "/a = \"1\"\n");
    }
    Scratch scratch;
};

TEST_P(TreeCreation, OneCallFails_LeavesNothingInTheWayOfTheNextTry) {
    long calls = 0;
    for (long call = 1; call == 1 || calls >= call - 1; ++call) {
        SCOPED_TRACE("call " + std::to_string(call));
        for (const auto& entry : std::filesystem::directory_iterator(scratch.path()))
            std::filesystem::remove(entry);
        std::string error;
        failCalls(GetParam(), call, call);
        const bool created = create(error);
        calls = stopFailing();
        EXPECT_EQ(created, error.empty());
        expectUsable();
        if (HasFailure()) return;
    }
}

INSTANTIATE_TEST_SUITE_P(Faults, TreeCreation,
                         testing::Values(Fault::inputOutput, Fault::noSpace, Fault::cut, Fault::shortened,
                                         Fault::unreported),
                         [](const auto& row) { return testing::PrintToString(row.param); });

TEST(TreeCreationCut, ProcessEndsInsideACall_LeavesNothingInTheWayOfTheNextTry) {
    int status = kKilledStatus;
    for (long call = 1; status == kKilledStatus; ++call) {
        SCOPED_TRACE("call " + std::to_string(call));
        const Scratch scratch;
        const std::string file = scratch.file("tree");
        Child child([&] {
            Tree tree;
            std::string error;
            failCalls(Fault::killed, call, call);
            return tree.open(file, Tree::Access::write, error) ? 0 : 2;
        });
        status = child.wait();
        Tree tree;
        std::string error;
        ASSERT_TRUE(tree.open(file, Tree::Access::write, error)) << error;
        EXPECT_EQ(tree.set("/a", "1"), Outcome::done) << tree.reason();
    }
    EXPECT_EQ(status, 0);
}

/** The tree as the library and its host see it. */
class DeviceTreeFaults : public testing::Test {
  protected:
    DeviceTreeFaults() {
        std::string error;
        EXPECT_TRUE(pendra::device::openDevice(
            {.treeFile = scratch.file("tree"), .deviceDirectory = scratch.file("device")}, error))
            << error;
    }
    ~DeviceTreeFaults() override { pendra::device::closeDevice(); }
    [[nodiscard]] static std::string node(const char* path) {
        char text[XNODE_TEXT_MAX];
        xget_str(text, "%s", path);
        return text;
    }
    Scratch scratch;
};

TEST_F(DeviceTreeFaults, WriteThatCannotBeStored_IsTold) {
    ASSERT_EQ(xset_str("old", "/a"), 0);
    failCalls(Fault::noSpace, 1, kForEver);
    EXPECT_LT(xset_str("new", "/a"), 0);
    EXPECT_LT(xset_int(7, "/b"), 0);
    EXPECT_LT(xdel("/a"), 0);
    stopFailing();
    EXPECT_EQ(node("/a"), "old");
    EXPECT_LT(xget_int("/b"), 0);
    EXPECT_EQ(xset_str("new", "/a"), 0);
    EXPECT_EQ(node("/a"), "new");
}

TEST_F(DeviceTreeFaults, RequestThatCannotBeStored_IsToldAtItsEndAndLeavesNothing) {
    ASSERT_EQ(xset_str("old", "/a"), 0);
    for (long call = 1; call <= 3; ++call) {
        SCOPED_TRACE("call " + std::to_string(call));
        std::string error;
        ASSERT_TRUE(pendra::device::beginRequest(error)) << error;
        EXPECT_EQ(xset_str("new", "/a"), 0);
        EXPECT_EQ(xset_str("new", "/b"), 0);
        failCalls(Fault::noSpace, call, kForEver);
        EXPECT_FALSE(pendra::device::commitRequest(error));
        EXPECT_GE(stopFailing(), call);
        EXPECT_EQ(error, "No space left on device");
        EXPECT_EQ(node("/a"), "old");
        EXPECT_EQ(node("/b"), "");
    }
    std::string error;
    ASSERT_TRUE(pendra::device::beginRequest(error)) << error;
    EXPECT_EQ(xset_str("new", "/a"), 0);
    EXPECT_TRUE(pendra::device::commitRequest(error)) << error;
    EXPECT_EQ(node("/a"), "new");
}

} // namespace
