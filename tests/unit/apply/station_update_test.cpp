// Publishing the associated stations.
#include <unistd.h>

#include "support/fake_device.h"

namespace pendra::test {
namespace {

const std::string kList = "/runtime/easyroaming/connstainfo";

// The lowest free descriptor: the same before and after means that nothing stayed open.
int nextDescriptor() {
    const int descriptor = dup(STDIN_FILENO);
    close(descriptor);
    return descriptor;
}

class StationUpdate : public DeviceTest {
  protected:
    StationUpdate() {
        device().stations["ra0"] = {};
        device().stations["rai0"] = {};
    }

    static Station station(unsigned char last, signed char rssi = -50) { return {{2, 0, 0, 0, 0, last}, {rssi, 0, 0}}; }
    static Events published(int number, const std::string& mac, const std::string& interfaceName,
                            const std::string& rssi) {
        const std::string node = "set " + kList + "/sta:" + std::to_string(number);
        return {node + "/mac=" + mac, node + "/ifname=" + interfaceName, node + "/rssi=" + rssi};
    }
    static Events joined(std::initializer_list<Events> parts) {
        Events all;
        for (const Events& part : parts)
            all.insert(all.end(), part.begin(), part.end());
        return all;
    }
    static void expectUpdate(const Events& events) {
        device().forget();
        const int descriptor = nextDescriptor();
        do_updatestarssi();
        EXPECT_EQ(events, device().events);
        EXPECT_EQ(descriptor, nextDescriptor()) << "a socket stayed open";
    }

    const std::vector<std::string> bothAsked = {"ra0 8BFF", "rai0 8BFF"};
};

TEST_F(StationUpdate, NoStations_WriteNothing) {
    expectUpdate({});
    EXPECT_EQ(bothAsked, device().ioctls);
    EXPECT_EQ("", logText());
}

TEST_F(StationUpdate, OldList_IsDeleted) {
    device().tree[kList + "/sta:1/mac"] = "old";
    device().tree[kList + "/sta:2/mac"] = "old";
    expectUpdate({"del " + kList});
    EXPECT_FALSE(device().has(kList + "/sta:1/mac"));
}

TEST_F(StationUpdate, OldList_IsDeletedWhenItHoldsStationsOnly) {
    device().tree[kList + "/sta#"] = "0";
    expectUpdate({});
    device().tree[kList + "/sta#"] = "1";
    expectUpdate({"del " + kList});
    device().tree[kList + "/sta#"] = "-1";
    expectUpdate({});
}

TEST_F(StationUpdate, Stations_AreNumberedAcrossBothRadios) {
    device().tree[kList + "/sta:7/mac"] = "old";
    device().stations["ra0"] = {station(1, -51), station(2, -52)};
    device().stations["rai0"] = {station(3, -53)};
    expectUpdate(joined({{"del " + kList},
                         published(1, "02:00:00:00:00:01", "ra0", "-51"),
                         published(2, "02:00:00:00:00:02", "ra0", "-52"),
                         published(3, "02:00:00:00:00:03", "rai0", "-53")}));
    EXPECT_EQ(bothAsked, device().ioctls);
    EXPECT_EQ("", logText());
}

TEST_F(StationUpdate, SecondUpdate_StartsAtOneAgain) {
    device().stations["rai0"] = {station(3)};
    expectUpdate(published(1, "02:00:00:00:00:03", "rai0", "-50"));
    expectUpdate(joined({{"del " + kList}, published(1, "02:00:00:00:00:03", "rai0", "-50")}));
}

// The case of the digits differs between the radios.
TEST_F(StationUpdate, Mac_HasTheCaseOfItsRadio) {
    const Station letters = {{0xAB, 0xCD, 0xEF, 0xAB, 0xCD, 0xEF}, {-1, 0, 0}};
    const Station digits = {{0x00, 0x01, 0x0A, 0x0B, 0xF0, 0xFF}, {-1, 0, 0}};
    device().stations["ra0"] = {letters, digits};
    device().stations["rai0"] = {letters, digits};
    expectUpdate(
        joined({published(1, "ab:cd:ef:AB:CD:EF", "ra0", "-1"), published(2, "00:01:0a:0B:F0:FF", "ra0", "-1"),
                published(3, "ab:cd:ef:AB:cd:ef", "rai0", "-1"), published(4, "00:01:0a:0B:f0:ff", "rai0", "-1")}));
}

TEST_F(StationUpdate, Rssi_IsTheStrongestNonZeroAntenna) {
    const struct {
        signed char antennas[3];
        const char* rssi;
    } rows[] = {{{-70, 0, -55}, "-55"},    {{-55, -70, -60}, "-55"}, {{0, -80, 0}, "-80"},     {{0, 0, -90}, "-90"},
                {{-70, 0, 0}, "-70"},      {{-60, -50, -40}, "-40"}, {{-40, -50, -60}, "-40"}, {{-128, 0, 0}, "-128"},
                {{-128, -127, 0}, "-127"}, {{-70, 5, 0}, "5"},       {{5, -70, 0}, "5"},       {{127, -1, 126}, "127"},
                {{-1, -1, -1}, "-1"}};
    for (const char* interfaceName : {"ra0", "rai0"})
        for (const auto& row : rows) {
            SCOPED_TRACE(row.rssi);
            device().tree.clear();
            device().stations["ra0"] = device().stations["rai0"] = {};
            device().stations[interfaceName] = {
                {{2, 0, 0, 0, 0, 1}, {row.antennas[0], row.antennas[1], row.antennas[2]}}};
            expectUpdate(published(1, "02:00:00:00:00:01", interfaceName, row.rssi));
        }
    EXPECT_EQ("", logText());
}

TEST_F(StationUpdate, SilentStation_IsPublishedWithoutRssiAndLogged) {
    device().stations["ra0"] = {{{0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}, {0, 0, 0}}};
    device().stations["rai0"] = {{{0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}, {0, 0, 0}}, station(1)};
    expectUpdate(joined({published(1, "aa:bb:cc:DD:EE:FF", "ra0", ""), published(2, "aa:bb:cc:DD:ee:ff", "rai0", ""),
                         published(3, "02:00:00:00:00:01", "rai0", "-50")}));
    EXPECT_EQ(
        "1000: 1000:Get Station aa:bb:cc:DD:EE:FF RSSI failed!\n"
        "1000: 1000:Get Station aa:bb:cc:DD:ee:ff RSSI failed!\n",
        logText());
}

TEST_F(StationUpdate, FullTables_ArePublishedWhole) {
    Events events;
    for (const std::string interfaceName : {"ra0", "rai0"})
        for (int index = 0; index < 32; index++) {
            device().stations[interfaceName].push_back(station(static_cast<unsigned char>(index)));
            char mac[32];
            snprintf(mac, sizeof mac, interfaceName == "ra0" ? "02:00:00:00:00:%02X" : "02:00:00:00:00:%02x",
                     static_cast<unsigned>(index));
            const Events one = published(static_cast<int>(events.size() / 3) + 1, mac, interfaceName, "-50");
            events.insert(events.end(), one.begin(), one.end());
        }
    ASSERT_EQ(64u * 3u, events.size());
    expectUpdate(events);
}

// 32 stations at most, whatever the driver says; what it did not fill in reads as zero.
TEST_F(StationUpdate, LyingCount_IsHeldAt32) {
    for (const uint32_t count : {33u, 1000u, 0x80000000u, 0xFFFFFFFFu})
        for (const char* interfaceName : {"ra0", "rai0"}) {
            SCOPED_TRACE(count);
            device().tree.clear();
            device().stationCounts = {{interfaceName, count}};
            device().stations["ra0"] = device().stations["rai0"] = {};
            device().stations[interfaceName] = {station(1)};
            device().forget();
            do_updatestarssi();
            EXPECT_EQ("-50", device().node(kList + "/sta:1/rssi"));
            EXPECT_EQ("00:00:00:00:00:00", device().node(kList + "/sta:32/mac"));
            EXPECT_FALSE(device().has(kList + "/sta:33/mac"));
        }
}

// The buffer is zeroed before each request: nothing of one table shows up in the next.
TEST_F(StationUpdate, SecondTable_HoldsNothingOfTheFirst) {
    device().stations["ra0"] = {station(1), station(2)};
    device().stationCounts["rai0"] = 1;
    do_updatestarssi();
    EXPECT_EQ("00:00:00:00:00:00", device().node(kList + "/sta:3/mac"));
    EXPECT_EQ("", device().node(kList + "/sta:3/rssi"));
}

// ---- failures ----

TEST_F(StationUpdate, WithoutSocket_EndsBehindTheDeletion) {
    device().tree[kList + "/sta:1/mac"] = "old";
    device().socketFails = true;
    expectUpdate({"del " + kList});
    EXPECT_TRUE(device().ioctls.empty());
    EXPECT_EQ("1000: 1000:ioctl sock failed!\n", logText());
}

// Where standard input is closed, the socket may be descriptor 0.
TEST_F(StationUpdate, DescriptorZero_IsASocketToo) {
    const int standardInput = dup(STDIN_FILENO);
    close(STDIN_FILENO);
    do_updatestarssi();
    EXPECT_EQ(bothAsked, device().ioctls);
    EXPECT_EQ("", logText());
    EXPECT_NE(0, close(STDIN_FILENO)) << "the socket stayed open";
    dup2(standardInput, STDIN_FILENO);
    close(standardInput);
}

TEST_F(StationUpdate, FirstDriverMissing_SkipsTheSecond) {
    device().stations.erase("ra0");
    device().stations["rai0"] = {station(1)};
    expectUpdate({});
    EXPECT_EQ(std::vector<std::string>{"ra0 8BFF"}, device().ioctls);
    EXPECT_EQ("1000: 1000:ioctl -> RTPRIV_IOCTL_GET_MAC_TABLE_STRUCT failed!\n", logText());
}

TEST_F(StationUpdate, SecondDriverMissing_KeepsTheFirstStations) {
    device().stations["ra0"] = {station(1)};
    device().stations.erase("rai0");
    expectUpdate(published(1, "02:00:00:00:00:01", "ra0", "-50"));
    EXPECT_EQ(bothAsked, device().ioctls);
    EXPECT_EQ("1000: 1000:ioctl -> RTPRIV_IOCTL_GET_MAC_TABLE_STRUCT failed!\n", logText());
}

TEST_F(StationUpdate, Level4_LeavesNoTrace) {
    daemon_log_level = 4;
    device().stations["ra0"] = {station(1, 0)};
    device().stations.erase("rai0");
    do_updatestarssi();
    device().socketFails = true;
    do_updatestarssi();
    EXPECT_EQ("", logText());
}

TEST_F(StationUpdate, Level7_HasNoEntryTrace) {
    daemon_log_level = 7;
    expectUpdate({});
    EXPECT_EQ("", logText());
}

} // namespace
} // namespace pendra::test
