/**
 * @file
 * What the host bounds: the memory of all bodies together, and how long others wait while scripts run.
 */
#include <list>

#include "running_device.h"

namespace pendra::test {
namespace {

class HostLimits : public RunningDevice {
  protected:
    HostLimits() { start(); }
};

std::string loginHead(size_t length) {
    return "POST /zep/login HTTP/1.1\r\nHost: device\r\nContent-Length: " + std::to_string(length) + "\r\n\r\n";
}

// Anybody may send these: a login needs no admission.
TEST_F(HostLimits, MoreBodiesThanFit_TheLargestAreRefusedAndOthersAreServed) {
    constexpr size_t kLength = 1'000'000;
    const std::string start(900'000, 'x');
    std::list<Connection> connections;
    for (int count = 0; count < 8; ++count) {
        connections.emplace_back(host->port()).send(loginHead(kLength) + start);
    }
    login();
    expectResult(setUp(nameDocument("Attic")), 0, "", 5);
    int busy = 0;
    for (Connection& connection : connections) {
        connection.send(std::string(kLength - start.size(), 'x'));
        const std::string answer = connection.readUntil(".\n");
        if (answer.find("HTTP/1.1 503 ") == 0) {
            ++busy;
            EXPECT_NE(answer.find("\r\n\r\nThe device is busy; try again in a moment.\n"), std::string::npos);
        } else {
            EXPECT_EQ(answer.find("HTTP/1.1 401 "), 0u) << answer;
        }
    }
    EXPECT_GE(busy, 4); // four bodies of 900,000 bytes fit into 4 MiB
    EXPECT_LT(busy, 8);
}

TEST_F(HostLimits, RequestWhileAScriptRuns_WaitsForItsEndAndIsAnswered) {
    writeFile(files.scripts() + "/device_resync.sh", "#!/bin/sh\nsleep 1\n");
    expectResult(setUp(nameDocument("Attic")), 0, "", 5);
    ASSERT_EQ(setUp(nameDocument("Cellar")).status, 200);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(get("/zep/hello").status, 200);
    const auto waited = std::chrono::steady_clock::now() - begin;
    EXPECT_GT(waited, std::chrono::milliseconds(800));
    EXPECT_LT(waited, std::chrono::seconds(10));
}

} // namespace
} // namespace pendra::test
