/**
 * @file
 * The host under load: what it costs others, and that nothing is left of it. The figures are printed.
 *
 * PENDRA_LOAD_REQUESTS says how many requests of all kinds are sent.
 */
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "burdens.h"
#include "measures.h"
#include "requests.h"
#include "running_device.h"
#include "traffic.h"

namespace pendra::load {
namespace {

// Generous: the machine may have other things to do. Nobody is to wait for somebody else's time-out, which is 15 s.
constexpr double kLongestWaitMs = 2'000;
constexpr double kUsualWaitMs = 200;

// What the allocator and the tree's pages may vary by.
constexpr long kSpareKiB = 256;

constexpr size_t kCrowd = 1000;
constexpr size_t kAddresses = 5;

size_t requestsWanted() {
    const char* text = std::getenv("PENDRA_LOAD_REQUESTS");
    return text == nullptr ? 5'000 : std::strtoul(text, nullptr, 10);
}

void tell(const char* what, const std::string& figures) {
    std::printf("load: %s: %s\n", what, figures.c_str());
    std::fflush(stdout);
}

std::string textOf(const Footprint& footprint) {
    return std::to_string(footprint.residentKiB) + " KiB resident, " + std::to_string(footprint.heapKiB) +
           " KiB of them heap, " + std::to_string(footprint.descriptors) + " descriptors";
}

/** The text of each node of a listing. */
Nodes nodesOf(const std::string& listing) {
    Nodes nodes;
    std::istringstream lines(listing);
    for (std::string line; std::getline(lines, line);) {
        const size_t mark = line.find(" = \"");
        if (mark != std::string::npos) nodes[line.substr(0, mark)] = line.substr(mark + 4, line.size() - mark - 5);
    }
    return nodes;
}

/** @return what is not as it is expected, a line each. */
std::vector<std::string> differences(const Nodes& nodes, const Nodes& expected) {
    std::vector<std::string> lines;
    const auto add = [&](const Nodes& from, const Nodes& other, const char* what) {
        for (const auto& [path, text] : from) {
            const auto found = other.find(path);
            if (found == other.end() || found->second != text) lines.push_back(what + path + " = " + text);
        }
    };
    add(nodes, expected, "found ");
    add(expected, nodes, "expected ");
    return lines;
}

// An instrumented host keeps freed memory back, to find its use; it looks for leaks by itself.
void expectNoMore(long kibibytes, long bound) {
    if (PENDRA_INSTRUMENTED != 0) return;
    EXPECT_LE(kibibytes, bound);
}

class HostUnderLoad : public test::RunningDevice {
  protected:
    void SetUp() override {
        rlimit limit{};
        ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
        limit.rlim_cur = std::max<rlim_t>(limit.rlim_cur, 4 * kCrowd);
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
    }

    [[nodiscard]] Footprint footprint() const { return footprintOf(host->id()); }

    /** Returns when the host has closed what its clients have closed. */
    void awaitDescriptors(size_t count) const {
        for (int look = 0; look < 200 && footprint().descriptors > count; ++look) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }

    void expectShortWaits(const char* what, WorkingClient& client) const {
        const Waits& waits = client.stop();
        tell(what, waits.text());
        EXPECT_EQ(client.failures(), 0u);
        EXPECT_GT(waits.count(), 0u);
        EXPECT_LT(waits.at(0.5), kUsualWaitMs);
        EXPECT_LT(waits.at(1), kLongestWaitMs);
    }

    /** Sends a working client's requests for a while. */
    void expectServed(const char* what, std::chrono::milliseconds duration) const {
        WorkingClient client(host->port());
        std::this_thread::sleep_for(duration);
        expectShortWaits(what, client);
    }

    void sendAll(size_t requests, const char* what) {
        const Tally tally = sendTraffic(host->port(), "bramble-1234", requests, model);
        char line[120];
        std::snprintf(line, sizeof line, "%zu requests of %zu kinds in %.1f s, %.0f a second, %zu changes",
                      tally.requests, requestKinds(), tally.seconds,
                      static_cast<double>(tally.requests) / tally.seconds, model.changes);
        tell(what, line);
        EXPECT_GE(tally.requests, requests);
        EXPECT_EQ(tally.faults, std::vector<std::string>{});
    }

    /** Brings about what requests of all kinds expect: a last result, a status document, the list of stations. */
    void prepare() {
        Caller caller(host->port(), 9, "bramble-1234", model);
        caller.login();
        caller.make(changeAllByDocument(caller.random()));
        caller.expect(httpRequest("POST", "/zep/fw?act=0"), 200);
        caller.expect(httpRequest("GET", "/zep/stations"), 200);
        ASSERT_EQ(caller.faults(), std::vector<std::string>{});
    }

    Model model;
};

TEST_F(HostUnderLoad, RequestsOfAllKinds_LeaveItAsItWasButForTheChanges) {
    start();
    const size_t descriptors = footprint().descriptors;
    prepare();
    Nodes expected = nodesOf(files.dump());
    expectServed("alone", std::chrono::milliseconds(300));
    sendAll(1'000, "first");
    awaitDescriptors(descriptors);
    const Footprint before = footprint();
    const auto treeBefore = std::filesystem::file_size(files.tree());
    tell("then", textOf(before) + ", tree " + std::to_string(treeBefore >> 10) + " KiB");

    const size_t changes = model.changes;
    WorkingClient client(host->port());
    sendAll(requestsWanted() - 1'000, "load");
    expectShortWaits("another client meanwhile", client);
    awaitDescriptors(descriptors);
    const Footprint after = footprint();
    const auto treeAfter = std::filesystem::file_size(files.tree());
    tell("then", textOf(after) + ", tree " + std::to_string(treeAfter >> 10) + " KiB");

    EXPECT_GT(model.changes, changes);
    EXPECT_EQ(before.descriptors, descriptors);
    EXPECT_EQ(after.descriptors, descriptors);
    expectNoMore(after.heapKiB, before.heapKiB + kSpareKiB);
    expectNoMore(after.residentKiB, before.residentKiB + 2 * kSpareKiB);
    EXPECT_LE(treeAfter, treeBefore + (kSpareKiB << 10));
    EXPECT_EQ(host->complaints(), "");
    for (const auto& [path, text] : model.nodes) {
        expected[path] = text;
    }
    EXPECT_EQ(differences(nodesOf(files.dump()), expected), std::vector<std::string>{});
    EXPECT_EQ(host->stop(), 0);
    EXPECT_EQ(differences(nodesOf(files.dump()), expected), std::vector<std::string>{});
}

TEST_F(HostUnderLoad, ThousandIdleConnections_YieldToAWorkingClient) {
    start();
    const Footprint before = footprint();
    {
        WorkingClient client(host->port());
        const std::vector<Wire> crowd = idleCrowd(host->port(), kCrowd, kAddresses);
        std::this_thread::sleep_for(std::chrono::seconds(1));
        expectShortWaits("beside 1000 idle connections", client);
        tell("then", textOf(footprint()));
        EXPECT_LE(footprint().descriptors, before.descriptors + 128 + 64);
    }
    awaitDescriptors(before.descriptors);
    EXPECT_EQ(footprint().descriptors, before.descriptors);
}

TEST_F(HostUnderLoad, ThousandIdleConnections_AreCheapWhenTheyMayStay) {
    start({.connections = 2 * kCrowd});
    const Footprint before = footprint();
    {
        WorkingClient client(host->port());
        const std::vector<Wire> crowd = idleCrowd(host->port(), kCrowd, kAddresses);
        std::this_thread::sleep_for(std::chrono::seconds(1));
        expectShortWaits("beside 1000 idle connections that stay", client);
        const Footprint meanwhile = footprint();
        tell("then", textOf(meanwhile));
        EXPECT_GE(meanwhile.descriptors, before.descriptors + kCrowd);
        expectNoMore(meanwhile.residentKiB, before.residentKiB + 2 * static_cast<long>(kCrowd));
    }
    awaitDescriptors(before.descriptors);
    EXPECT_EQ(footprint().descriptors, before.descriptors);
}

// More of them than connections may stay, each with a byte a second: none is ever idle for the web server.
TEST_F(HostUnderLoad, SlowClients_KeepNobodyWaiting) {
    start();
    const std::string body(60, 'x');
    const Drip headers(host->port(), 100, "GET /zep/hello HTTP/1.1\r\nHost: device\r\n", "X-Slow: " + body);
    const Drip bodies(host->port(), 100, "POST /zep/login HTTP/1.1\r\nHost: device\r\nContent-Length: 60\r\n\r\n",
                      body);
    expectServed("beside 200 slow clients", std::chrono::milliseconds(2'500));
    EXPECT_GE(headers.sent(), 2u);
    EXPECT_GE(bodies.sent(), 2u);
}

TEST_F(HostUnderLoad, Scripts_DelayOthersForAsLongAsTheyRunAndNoLonger) {
    test::writeFile(files.scripts() + "/device_resync.sh", "#!/bin/sh\nsleep 1\n");
    start();
    Caller caller(host->port(), 1, "bramble-1234", model);
    caller.login();
    WorkingClient client(host->port());
    caller.make(changeNameByDocument(caller.random()));
    std::this_thread::sleep_for(std::chrono::milliseconds(1'500));
    const Waits& waits = client.stop();
    tell("beside a script of 1 s", waits.text());
    EXPECT_EQ(client.failures(), 0u);
    EXPECT_GT(waits.at(1), 800.0);
    EXPECT_LT(waits.at(1), 1'000.0 + kLongestWaitMs);
    EXPECT_LT(waits.at(0.5), kUsualWaitMs);
}

TEST_F(HostUnderLoad, TerminatedInTheMiddleOfRequests_EndsWithinASecond) {
    start();
    std::vector<Wire> halves = idleCrowd(host->port(), 60, kAddresses);
    for (Wire& wire : halves) {
        wire.send("POST /zep/login HTTP/1.1\r\nHost: device\r\nContent-Length: 60\r\n\r\nPendra");
    }
    expectServed("beside 60 half requests", std::chrono::milliseconds(100));
    const auto begin = Clock::now();
    EXPECT_EQ(host->stop(), 0);
    const Milliseconds took = Clock::now() - begin;
    tell("end", std::to_string(took.count()) + " ms");
    EXPECT_LT(took.count(), 1'000.0);
}

TEST_F(HostUnderLoad, StartedAndStopped200Times_LeavesNothing) {
    const auto namesIn = [](const std::string& directory) {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(directory)) {
            names.push_back(entry.path());
        }
        std::sort(names.begin(), names.end());
        return names;
    };
    start();
    ASSERT_EQ(host->stop(), 0);
    const std::string root = std::filesystem::path(files.tree()).parent_path();
    const auto before = files.snapshot();
    const std::vector<std::string> names = namesIn(root);
    const std::vector<std::string> shared = namesIn("/dev/shm");
    for (int count = 0; count < 200; ++count) {
        start();
        EXPECT_EQ(Wire(host->port(), "127.0.0.1").exchange(httpRequest("GET", "/zep/hello")).status, 200);
        ASSERT_EQ(host->stop(), 0);
    }
    EXPECT_EQ(files.changedFiles(before), std::vector<std::string>{});
    EXPECT_EQ(namesIn(root), names);
    EXPECT_EQ(namesIn("/dev/shm"), shared);
}

} // namespace
} // namespace pendra::load
