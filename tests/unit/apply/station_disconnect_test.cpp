// Disconnecting one station.
#include "support/fake_device.h"

namespace pendra::test {
namespace {

constexpr const char* kInterface = "/runtime/easyroaming/deauthsta/ifname";
constexpr const char* kMac = "/runtime/easyroaming/deauthsta/mac";

class StationDisconnect : public DeviceTest {
  protected:
    static void request(const std::string& interfaceName, const std::string& mac) {
        device().tree[kInterface] = interfaceName;
        device().tree[kMac] = mac;
        device().forget();
        do_deauthsta();
    }

    static void expectDone(const std::string& interfaceName, const std::string& mac) {
        const Events events = {"run /userfs/bin/iwpriv " + interfaceName + " set DisConnectSta=" + mac,
                               "del /runtime/easyroaming/deauthsta"};
        EXPECT_EQ(events, device().events);
        EXPECT_FALSE(device().has(kInterface));
        EXPECT_FALSE(device().has(kMac));
    }
};

TEST_F(StationDisconnect, Request_IsCarriedOutAndRemoved) {
    request("ra0", "aa:bb:cc:DD:EE:FF");
    expectDone("ra0", "aa:bb:cc:DD:EE:FF");
    EXPECT_EQ("1000: 1000:Disconnect WLAN station: interface=ra0, mac=aa:bb:cc:DD:EE:FF!\n", logText());
}

TEST_F(StationDisconnect, FailingCommand_RemovesTheRequestToo) {
    device().shellStatus = -1;
    request("rai0", "m");
    expectDone("rai0", "m");
}

TEST_F(StationDisconnect, Line_IsWrittenFromLevel5) {
    daemon_log_level = 4;
    request("ra0", "m");
    expectDone("ra0", "m");
    EXPECT_EQ("", logText());
    daemon_log_level = 7;
    request("ra0", "m");
    EXPECT_EQ("1000: 1000:Disconnect WLAN station: interface=ra0, mac=m!\n", logText());
}

TEST_F(StationDisconnect, EmptyPart_LeavesTheRequestInTheTree) {
    const struct {
        const char* interfaceName;
        const char* mac;
    } rows[] = {{"ra0", ""}, {"", "aa:bb:cc:DD:EE:FF"}, {"", ""}};
    for (const auto& row : rows) {
        request(row.interfaceName, row.mac);
        EXPECT_EQ(Events{}, device().events);
        EXPECT_TRUE(device().has(kInterface));
        EXPECT_TRUE(device().has(kMac));
    }
    EXPECT_EQ("", logText());
}

TEST_F(StationDisconnect, WithoutRequest_NothingHappens) {
    do_deauthsta();
    EXPECT_EQ(Events{}, device().events);
    EXPECT_EQ("", logText());
}

// 31 characters of each text count; both fit into the command.
TEST_F(StationDisconnect, Texts_AreCutAt31Characters) {
    for (const size_t length : {size_t{30}, size_t{31}, size_t{32}, size_t{1023}}) {
        SCOPED_TRACE(length);
        request(std::string(length, 'i'), std::string(length, 'm'));
        const size_t kept = length < 31 ? length : 31;
        expectDone(std::string(kept, 'i'), std::string(kept, 'm'));
    }
}

TEST_F(StationDisconnect, PercentSigns_AreNoFormat) {
    request("%s%n", "%d");
    expectDone("%s%n", "%d");
    EXPECT_EQ("1000: 1000:Disconnect WLAN station: interface=%s%n, mac=%d!\n", logText());
}

} // namespace
} // namespace pendra::test
