/**
 * @file
 * A host that is killed in the middle of a setup run: the tree is the one before or the one after it.
 */
#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <random>
#include <thread>

#include "running_device.h"

namespace pendra::test {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kKills = 300;
constexpr int kMostKills = 900;
constexpr int kEachOutcome = 20;

unsigned chooseSeed() {
    const char* given = std::getenv("PENDRA_KILL_SEED");
    return given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : std::random_device{}();
}

class KilledHost : public RunningDevice {
  protected:
    /** Brings the tree back; the file, its locks and what a killed host left in them stay the same. */
    void restoreTree() const {
        const Ended loaded = files.xtree({"load", "--replace", "-"}, before_);
        ASSERT_EQ(loaded.status, 0) << loaded.errors;
    }
    /** Logs in on a connection of its own, which costs less than a program. */
    void admit() const {
        Connection connection(host->port());
        connection.send(httpPost("/zep/login", "PendraKey=" + accessKey(500, "127.0.0.1", "bramble-1234")));
        ASSERT_NE(connection.readUntil("}\n").find(" 200 OK\r\n"), std::string::npos);
    }
    void learnBothTrees();
    /** @return how long the answer took. */
    std::chrono::microseconds runUndisturbed() const;
    void killAfter(std::chrono::microseconds delay);

    std::string before_;
    std::string after_;
    const std::string request_ = httpPost("/zep/setup", example("setup.xml"));
    int foundBefore_ = 0;
    int foundAfter_ = 0;
};

std::chrono::microseconds KilledHost::runUndisturbed() const {
    admit();
    Connection connection(host->port());
    const auto begin = Clock::now();
    connection.send(request_);
    EXPECT_NE(connection.readUntil("</root>\n").find(resultDocument(0, "", 65)), std::string::npos);
    return std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begin);
}

void KilledHost::learnBothTrees() {
    files.setUptime("10000"); // slot 500
    start();
    before_ = files.dump();
    runUndisturbed();
    after_ = files.dump();
    ASSERT_NE(before_, after_);
    ASSERT_EQ(host->stop(), 0);
}

void KilledHost::killAfter(std::chrono::microseconds delay) {
    restoreTree();
    start();
    admit();
    Connection connection(host->port());
    const auto moment = Clock::now() + delay;
    connection.send(request_);
    std::this_thread::sleep_until(moment);
    host->signal(SIGKILL);
    ASSERT_EQ(host->wait(), 128 + SIGKILL);
    const bool answered = connection.readAll().find("<ZepSetResult>0") != std::string::npos;

    const std::string found = files.dump();
    ASSERT_TRUE(found == before_ || found == after_) << files.changesSince(before_);
    // What a client was told has happened.
    ASSERT_TRUE(!answered || found == after_);
    ++(found == before_ ? foundBefore_ : foundAfter_);
}

TEST_F(KilledHost, AtRandomMomentsOfARun_LeavesTheTreeBeforeOrAfterIt) {
    const unsigned seed = chooseSeed();
    RecordProperty("seed", std::to_string(seed));
    std::cout << "seed " << seed << " (PENDRA_KILL_SEED repeats it)" << std::endl;
    std::mt19937 generator(seed);
    learnBothTrees();
    if (HasFatalFailure()) return;

    // The span of the moments: until some time behind the answer, when the scripts run. It follows the machine's load.
    restoreTree();
    start();
    auto span = 2 * runUndisturbed();
    ASSERT_EQ(host->stop(), 0);
    int kills = 0;
    while (kills < kKills || (std::min(foundBefore_, foundAfter_) < kEachOutcome && kills < kMostKills)) {
        std::uniform_int_distribution<long> moments(0, span.count());
        killAfter(std::chrono::microseconds(moments(generator)));
        if (HasFatalFailure()) return;
        ++kills;
        if (kills % 20 != 0) continue;
        if (foundBefore_ > 3 * foundAfter_) span = span * 5 / 4;
        if (foundAfter_ > 3 * foundBefore_) span = span * 4 / 5;
    }
    std::cout << kills << " kills: " << foundBefore_ << " before, " << foundAfter_ << " after" << std::endl;
    EXPECT_GE(foundBefore_, kEachOutcome);
    EXPECT_GE(foundAfter_, kEachOutcome);

    // The device goes on as if nothing had happened.
    restoreTree();
    start();
    runUndisturbed();
    EXPECT_EQ(files.dump(), after_);
}

} // namespace
} // namespace pendra::test
