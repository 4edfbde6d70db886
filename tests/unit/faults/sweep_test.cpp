// Each call that leaves the library fails: the first, the second, and so on, until the failure is no longer reached.
#include <dirent.h>

#include <algorithm>
#include <cstring>

#include "fault_points.h"
#include "promises.h"
#include "roads.h"

namespace pendra::test {
namespace {

constexpr long kForEver = 1000000;

// A run after this many undisturbed ones does exactly what one does that never saw a fault: a commit repeats the work
// of the run before it once.
constexpr int kSettling = 3;

size_t openDescriptors() {
    DIR* const directory = opendir("/proc/self/fd");
    size_t count = 0;
    while (readdir(directory) != nullptr)
        count++;
    closedir(directory);
    return count;
}

bool isRead(const Call& call) {
    return call.symbol.rfind("xget_", 0) == 0;
}

// What a library without transactions around it does not make up for: it is written when something changes, or counts
// the elements that there are. A host that opens a transaction around the call puts everything back.
bool isLeftToTransactions(const Call& call) {
    return call.detail == "/sys/factorydefault" ||
           (call.symbol == "xdel" && call.detail.find("/acrule:") != std::string::npos);
}

// The events without those that no failure can keep from happening.
Events stoppable(Events events) {
    std::erase_if(events, [](const std::string& event) { return event.rfind("alarm ", 0) == 0; });
    return events;
}

class FaultSweep : public DeviceTest, public ::testing::WithParamInterface<Road>, public Walker {
  protected:
    void renew() { startRoad(GetParam(), directory()); }

    Outcome walk(const FaultPlan& plan = {}) {
        device().forget();
        faults().start(plan);
        Outcome outcome;
        outcome.answer = GetParam().walk(directory());
        faults().stop();
        outcome.events = device().events;
        outcome.tree = device().tree;
        outcome.record.assign(reinterpret_cast<const char*>(&zepXmlData), sizeof zepXmlData);
        outcome.said = faults().said();
        return outcome;
    }

    void learn() {
        renew();
        undisturbed_ = walk();
        ASSERT_EQ(GetParam().answer, undisturbed_.answer);
        settled_ = settle();
    }

    Outcome walkWithout(const std::string& node, long& reads) override {
        renew();
        device().tree.erase(node);
        if (!node.empty() && node.back() == '#') device().tree[node] = "-1";
        const Outcome outcome = walk();
        reads = std::count_if(faults().calls().begin(), faults().calls().end(),
                              [&](const Call& call) { return isRead(call) && call.detail == node; });
        return outcome;
    }

    // The call that failed, counted among its like.
    Hit firstHit() const {
        const auto& calls = faults().calls();
        const size_t at = faults().struck().front();
        const auto isLike = [&](const Call& call) {
            return call.symbol == calls[at].symbol && call.detail == calls[at].detail;
        };
        const auto end = calls.begin() + static_cast<std::ptrdiff_t>(at) + 1;
        return {calls[at], std::count_if(calls.begin(), end, isLike), directory()};
    }

    Outcome settle() {
        Outcome outcome;
        for (int times = 0; times < kSettling; times++)
            outcome = walk();
        return outcome;
    }

    // Nothing has been kept, and the library goes on as if there had been no fault: it does what it does that never saw
    // one or, after a read that failed, what a new one does on the device as it is now. There, a read that failed was
    // an absent node, and another run than that of the others may stand behind the library.
    void expectRecovery(const Outcome& got) {
        EXPECT_EQ("", faults().unreturned());
        const auto& calls = faults().calls();
        const auto& struck = faults().struck();
        const bool otherDevice = std::any_of(struck.begin(), struck.end(), [&](size_t index) {
            return isRead(calls[index]) || isLeftToTransactions(calls[index]);
        });
        const Outcome outcome = settle();
        EXPECT_EQ("", faults().unreturned());
        if (!otherDevice) return expectSame(settled_, outcome);
        const Outcome& fresh = freshOn(got.tree);
        EXPECT_EQ(withoutCommit(fresh.answer), withoutCommit(outcome.answer));
        EXPECT_EQ(fresh.tree, outcome.tree);
    }
    // What a new library does on a device with such a tree. Many faults leave the same one.
    const Outcome& freshOn(const Tree& tree) {
        const auto known = fresh_.find(tree);
        if (known != fresh_.end()) return known->second;
        renew();
        device().tree = tree;
        return fresh_[tree] = settle();
    }
    static std::string withoutCommit(const std::string& answer) { return answer.substr(0, answer.find(" commit=")); }

    // Walks with ever later faults. Each time, the visitor sees the outcome.
    template <typename Visitor>
    void sweep(const std::string& symbol, long width, Visitor visit) {
        for (long first = 1;; first++) {
            renew();
            const Outcome outcome = walk({symbol, first, first + width - 1});
            if (faults().struck().empty()) return;
            const Hit hit = firstHit();
            SCOPED_TRACE("failing: " + hit.call.symbol + " " + hit.call.detail + ", number " +
                         std::to_string(hit.number) + ", of all " + std::to_string(faults().struck().front() + 1));
            visit(hit, outcome);
            if (HasFailure()) return;
        }
    }

    Outcome undisturbed_;
    Outcome settled_;
    std::map<Tree, Outcome> fresh_;
};

TEST_P(FaultSweep, OneCallFails_GivesWhatIsPromisedAndLeavesNoTrace) {
    const size_t descriptors = openDescriptors();
    learn();
    if (HasFatalFailure()) return;
    for (const std::string& symbol : faultSymbols())
        sweep(symbol, 1, [&](const Hit& hit, const Outcome& got) {
            expectRecovery(got);
            expectPromise(GetParam(), hit, undisturbed_, got, *this);
        });
    EXPECT_EQ(descriptors, openDescriptors());
}

TEST_P(FaultSweep, CallsOfOneKindFailFromOneOn_LeaveNoTrace) {
    learn();
    if (HasFatalFailure()) return;
    for (const std::string& symbol : faultSymbols())
        sweep(symbol, kForEver, [&](const Hit&, const Outcome& got) { expectRecovery(got); });
}

// What was done before stays done, and nothing is done after.
TEST_P(FaultSweep, AllCallsFailFromOneOn_EndTheWork) {
    learn();
    if (HasFatalFailure()) return;
    sweep("", kForEver, [&](const Hit&, const Outcome& got) {
        const Events done = stoppable(got.events);
        Events expected = stoppable(undisturbed_.events);
        ASSERT_LE(done.size(), expected.size());
        expected.resize(done.size());
        EXPECT_EQ(expected, done);
        expectRecovery(got);
    });
}

INSTANTIATE_TEST_SUITE_P(Roads, FaultSweep, ::testing::ValuesIn(roads()),
                         [](const auto& road) { return std::string(road.param.name); });

} // namespace
} // namespace pendra::test
