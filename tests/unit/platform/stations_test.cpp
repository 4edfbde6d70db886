#include "platform/kernel/stations.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using pendra::device::buildStationTable;
using pendra::device::findRadio;
using pendra::device::StationTable;

StationTable tableOf(const char* interface, std::string_view stations) {
    return buildStationTable(*findRadio(interface), stations);
}

std::uint32_t countIn(const StationTable& table) {
    std::uint32_t count = 0;
    std::memcpy(&count, table.bytes.data(), sizeof count);
    return count;
}

TEST(Radios, Names_AreTheTwoOfTheDrivers) {
    ASSERT_NE(findRadio("ra0"), nullptr);
    EXPECT_EQ(findRadio("ra0")->entrySize, 24u);
    ASSERT_NE(findRadio("rai0"), nullptr);
    EXPECT_EQ(findRadio("rai0")->entrySize, 40u);
    for (const char* name : {"", "ra", "ra1", "RA0", "eth0"})
        EXPECT_EQ(findRadio(name), nullptr) << name;
}

TEST(StationTable, FullTable_FillsTheDriversBuffersExactly) {
    std::string many;
    for (int n = 0; n < 40; ++n)
        many += "ra0 02:00:00:00:00:01 -1 -2 -3\nrai0 02:00:00:00:00:02 -1 -2 -3\n";
    EXPECT_EQ(tableOf("ra0", many).bytes.size(), 772u);
    EXPECT_EQ(tableOf("rai0", many).bytes.size(), 1284u);
    EXPECT_EQ(countIn(tableOf("ra0", many)), 32u);
}

TEST(StationTable, CommentsAndBlankLines_AreNoStations) {
    const StationTable table = tableOf("ra0", "\n  # ra0 02:00:00:00:00:01 0 0 0\n\t\nra0 02:00:00:00:00:01 0 0 0#x\n");
    EXPECT_EQ(countIn(table), 1u);
    EXPECT_TRUE(table.mistakes.empty());
}

TEST(StationTable, LineThatIsNoStation_IsLeftOutAndTold) {
    for (const std::string line :
         {"ra0", "ra1 02:00:00:00:00:01 0 0 0", "ra0 02:00:00:00:00 0 0 0", "ra0 02-00-00-00-00-01 0 0 0",
          "ra0 02:00:00:00:00:0g 0 0 0", "ra0 02:00:00:00:00:01 0 0", "ra0 02:00:00:00:00:01 0 0 0 0",
          "ra0 02:00:00:00:00:01 -129 0 0", "ra0 02:00:00:00:00:01 0 128 0", "ra0 02:00:00:00:00:01 a b c", "ra0 up"}) {
        const StationTable table = tableOf("ra0", "ra0 02:00:00:00:00:01 0 0 0\n" + line + "\n");
        EXPECT_EQ(countIn(table), 1u) << line;
        ASSERT_EQ(table.mistakes.size(), 1u) << line;
        EXPECT_EQ(table.mistakes[0], "stations.txt, line 2: not a station: " + line);
    }
}

TEST(StationTable, Down_HoldsForItsOwnRadio) {
    EXPECT_TRUE(tableOf("ra0", "ra0 down\n").isDown);
    EXPECT_FALSE(tableOf("rai0", "ra0 down\n").isDown);
    EXPECT_TRUE(tableOf("rai0", "ra0 02:00:00:00:00:01 0 0 0\nrai0 down\n").isDown);
}

} // namespace
