#include "host/connections.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>

namespace pendra::host {
namespace {

constexpr size_t kMebibyte = size_t{1} << 20;

/** The two ends of a connection. */
class Ends {
  public:
    Ends() { EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends_.data()), 0); }
    Ends(const Ends&) = delete;
    Ends& operator=(const Ends&) = delete;
    ~Ends() {
        close(host());
        close(client());
    }
    [[nodiscard]] int host() const { return ends_[0]; }
    [[nodiscard]] int client() const { return ends_[1]; }
    /** Nothing that the client sends is read any more. */
    [[nodiscard]] bool isDismissed() const { return send(client(), "x", 1, MSG_NOSIGNAL) < 0; }
    /** The client has been told that nothing more will come. */
    [[nodiscard]] bool isCutOff() const {
        char byte = 0;
        return recv(client(), &byte, 1, 0) == 0;
    }

  private:
    std::array<int, 2> ends_ = {-1, -1};
};

class YieldingConnections : public testing::Test {
  protected:
    Peer& arrive(const Ends& pair, const char* address) { return connections.arrive(pair.host(), address); }
    void pass(int seconds) {
        for (int second = 0; second < seconds; ++second) {
            connections.tick();
        }
    }

    Connections connections{3};
    std::array<Ends, 6> ends;
};

TEST_F(YieldingConnections, AsManyAsMayStay_Stay) {
    for (size_t number = 0; number < 3; ++number) {
        arrive(ends[number], "192.0.2.1");
    }
    EXPECT_FALSE(ends[0].isDismissed());
}

TEST_F(YieldingConnections, OneMore_LongestIdleYields) {
    for (size_t number = 0; number < 4; ++number) {
        arrive(ends[number], "192.0.2.1");
    }
    EXPECT_TRUE(ends[0].isDismissed());
    EXPECT_FALSE(ends[1].isDismissed());
    arrive(ends[4], "192.0.2.1");
    EXPECT_TRUE(ends[1].isDismissed());
    EXPECT_FALSE(ends[2].isDismissed());
}

TEST_F(YieldingConnections, AnsweredOne_IsTheLastToYield) {
    Peer& first = arrive(ends[0], "192.0.2.1");
    arrive(ends[1], "192.0.2.1");
    arrive(ends[2], "192.0.2.1");
    connections.answered(first);
    arrive(ends[3], "192.0.2.1");
    EXPECT_FALSE(ends[0].isDismissed());
    EXPECT_TRUE(ends[1].isDismissed());
}

TEST_F(YieldingConnections, AddressWithTheMost_YieldsThoughAnotherIsIdleForLonger) {
    arrive(ends[0], "192.0.2.1");
    arrive(ends[1], "192.0.2.2");
    arrive(ends[2], "192.0.2.2");
    arrive(ends[3], "192.0.2.3");
    EXPECT_FALSE(ends[0].isDismissed());
    EXPECT_TRUE(ends[1].isDismissed());
}

TEST_F(YieldingConnections, OneThatLeft_MakesRoom) {
    arrive(ends[0], "192.0.2.1");
    connections.leave(arrive(ends[1], "192.0.2.1"));
    arrive(ends[2], "192.0.2.1");
    arrive(ends[3], "192.0.2.1");
    EXPECT_FALSE(ends[0].isDismissed());
}

TEST_F(YieldingConnections, OneThatLeftAfterItsDismissal_MakesRoomOnce) {
    Peer& first = arrive(ends[0], "192.0.2.1");
    for (size_t number = 1; number < 4; ++number) {
        arrive(ends[number], "192.0.2.1");
    }
    connections.leave(first);
    EXPECT_FALSE(ends[1].isDismissed());
    arrive(ends[4], "192.0.2.1");
    EXPECT_TRUE(ends[1].isDismissed());
    EXPECT_FALSE(ends[2].isDismissed());
}

TEST_F(YieldingConnections, DismissedOne_IsStillServedWhatHasComeIn) {
    arrive(ends[0], "192.0.2.1");
    ASSERT_EQ(send(ends[0].client(), "GET", 3, 0), 3);
    for (size_t number = 1; number < 4; ++number) {
        arrive(ends[number], "192.0.2.1");
    }
    char text[8] = "";
    EXPECT_EQ(recv(ends[0].host(), text, sizeof text, 0), 3);
    EXPECT_EQ(recv(ends[0].host(), text, sizeof text, 0), 0); // then it is at its end
    EXPECT_EQ(send(ends[0].host(), "200", 3, MSG_NOSIGNAL), 3);
    EXPECT_EQ(recv(ends[0].client(), text, sizeof text, 0), 3);
}

TEST_F(YieldingConnections, OneThatDoesNotTakeItsAnswer_IsCutOffAtOnce) {
    Request request;
    request.answered = true;
    arrive(ends[0], "192.0.2.1").request = &request;
    for (size_t number = 1; number < 4; ++number) {
        arrive(ends[number], "192.0.2.1");
    }
    EXPECT_TRUE(ends[0].isCutOff());
}

TEST_F(YieldingConnections, RequestOfAMinute_IsDismissedAndThenCutOff) {
    arrive(ends[0], "192.0.2.1");
    pass(59);
    EXPECT_FALSE(ends[0].isDismissed());
    pass(1);
    EXPECT_TRUE(ends[0].isDismissed());
    EXPECT_FALSE(ends[0].isCutOff());
    pass(2);
    EXPECT_TRUE(ends[0].isCutOff());
}

TEST_F(YieldingConnections, OneThatHungUp_IsDismissedInTheNextSecond) {
    arrive(ends[0], "192.0.2.1");
    arrive(ends[1], "192.0.2.1");
    ASSERT_EQ(send(ends[0].client(), "GET", 3, 0), 3);
    ASSERT_EQ(shutdown(ends[0].client(), SHUT_WR), 0);
    pass(1);
    arrive(ends[2], "192.0.2.1");
    arrive(ends[3], "192.0.2.1"); // there is room
    EXPECT_FALSE(ends[1].isDismissed());
    char text[8] = "";
    EXPECT_EQ(recv(ends[0].host(), text, sizeof text, 0), 3); // which is still to be served
    EXPECT_EQ(send(ends[0].host(), "200", 3, MSG_NOSIGNAL), 3);
}

TEST_F(YieldingConnections, Answer_GivesAnotherMinute) {
    Peer& peer = arrive(ends[0], "192.0.2.1");
    pass(59);
    connections.answered(peer);
    pass(59);
    EXPECT_FALSE(ends[0].isDismissed());
    pass(1);
    EXPECT_TRUE(ends[0].isDismissed());
}

TEST_F(YieldingConnections, BodiesOfFourMebibytes_AreHeld) {
    EXPECT_EQ(connections.holdBody(arrive(ends[0], "192.0.2.1"), 2 * kMebibyte), nullptr);
    EXPECT_EQ(connections.holdBody(arrive(ends[1], "192.0.2.1"), 2 * kMebibyte), nullptr);
}

TEST_F(YieldingConnections, BodiesBeyondFourMebibytes_TheHeaviestGivesItsUp) {
    arrive(ends[0], "192.0.2.1");
    Peer& heavy = arrive(ends[1], "192.0.2.1");
    Peer& light = arrive(ends[2], "192.0.2.1");
    EXPECT_EQ(connections.holdBody(heavy, 4 * kMebibyte), nullptr);
    EXPECT_EQ(connections.holdBody(light, 1), &heavy);
    EXPECT_EQ(connections.holdBody(heavy, 0), nullptr);
    EXPECT_EQ(connections.holdBody(light, 4 * kMebibyte), nullptr);
}

TEST_F(YieldingConnections, AnsweredAndLeftOnes_HoldNothing) {
    Peer& answered = arrive(ends[0], "192.0.2.1");
    Peer& left = arrive(ends[1], "192.0.2.1");
    EXPECT_EQ(connections.holdBody(answered, 2 * kMebibyte), nullptr);
    EXPECT_EQ(connections.holdBody(left, 2 * kMebibyte), nullptr);
    connections.answered(answered);
    connections.leave(left);
    EXPECT_EQ(connections.holdBody(arrive(ends[2], "192.0.2.1"), 4 * kMebibyte), nullptr);
}

} // namespace
} // namespace pendra::host
