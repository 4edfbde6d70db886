#include "setup_document.h"

using namespace pendra::test;

namespace {

class ChannelWatch : public DeviceTest {
  protected:
    // What a look at the channels gives; null for an absent node.
    static int32_t look(const char* configured, const char* inUse, const std::string& band = "2.4") {
        store("/lan/wireless" + band + ":1/channel", configured);
        store("/lan/wireless" + band + ":1/channelusing", inUse);
        return checkWlanChannelUsing();
    }
    static void store(const std::string& path, const char* text) {
        if (text == nullptr)
            device().tree.erase(path);
        else
            device().tree[path] = text;
    }
};

TEST_F(ChannelWatch, WithoutNodes_GivesZero) {
    EXPECT_EQ(0, checkWlanChannelUsing());
    EXPECT_EQ((std::vector<std::string>{"/lan/wireless2.4:1/channel", "/lan/wireless2.4:1/channelusing",
                                        "/lan/wireless5:1/channel", "/lan/wireless5:1/channelusing"}),
              device().reads);
    EXPECT_EQ(Events{}, device().events);
}

TEST_F(ChannelWatch, ConfiguredChannelInUse_GivesZero) {
    EXPECT_EQ(0, look("6", "6"));
    EXPECT_EQ(0, look("6", "6"));
}

TEST_F(ChannelWatch, ConfiguredChannel_StandsForTheOneInUse) {
    EXPECT_EQ(0, look("6", "11"));
    EXPECT_EQ(0, look("11", "6")); // a new configuration is no news
}

TEST_F(ChannelWatch, SwitchToAutomatic_IsAChangeWhenAnotherChannelIsInUse) {
    EXPECT_EQ(0, look("6", "6"));
    EXPECT_EQ(1, look("0", "11"));
    EXPECT_EQ(0, look("0", "11")); // remembered
    EXPECT_EQ(1, look("0", "6"));
}

TEST_F(ChannelWatch, SwitchToAutomaticOnTheSameChannel_IsNoChange) {
    EXPECT_EQ(0, look("6", "6"));
    EXPECT_EQ(0, look("0", "6"));
}

TEST_F(ChannelWatch, FirstLookAtAnAutomaticChannel_IsAChange) {
    EXPECT_EQ(1, look("0", "6"));
    EXPECT_EQ(0, look("0", "6"));
}

TEST_F(ChannelWatch, AutomaticChannelThatMoves_IsAChangeEachTime) {
    look("0", "1");
    EXPECT_EQ(1, look("0", "6"));
    EXPECT_EQ(1, look("0", "11"));
    EXPECT_EQ(0, look("0", "11"));
}

TEST_F(ChannelWatch, LowestChannel_CountsAsAnyOther) {
    EXPECT_EQ(0, look("1", "6")); // configured
    EXPECT_EQ(1, look("0", "6"));
    EXPECT_EQ(1, look("0", "1")); // in use
    EXPECT_EQ(0, look("1", "1"));
    EXPECT_EQ(0, look("0", "1"));
    EXPECT_EQ(0, look("6", "6"));
    EXPECT_EQ(0, look("1", "6")); // a new configuration
}

TEST_F(ChannelWatch, RadioWithoutChannels_IsLeftAlone) {
    look("0", "6");
    for (const auto& [configured, inUse] : std::vector<std::pair<const char*, const char*>>{
             {"-1", "11"}, {nullptr, "11"}, {"0", "0"}, {"0", "-1"}, {"0", nullptr}, {"11", "0"}, {"11", nullptr}}) {
        EXPECT_EQ(0, look(configured, inUse));
        EXPECT_EQ(0, look("0", "6")) << "6 must still be remembered";
    }
}

TEST_F(ChannelWatch, Radios_AreRememberedApart) {
    EXPECT_EQ(0, look("6", "6", "2.4"));
    EXPECT_EQ(1, look("0", "36", "5"));
    EXPECT_EQ(0, checkWlanChannelUsing());
    EXPECT_EQ(1, look("0", "40", "5"));
    EXPECT_EQ(1, look("0", "11", "2.4"));
    EXPECT_EQ(0, checkWlanChannelUsing());
}

TEST_F(ChannelWatch, ChangeOfTheFirstRadio_DoesNotHideTheSecond) {
    store("/lan/wireless5:1/channel", "0");
    store("/lan/wireless5:1/channelusing", "36");
    EXPECT_EQ(1, look("0", "6"));
    EXPECT_EQ(0, checkWlanChannelUsing()); // both are remembered
}

TEST_F(ChannelWatch, Level7_ShowsTheMove) {
    daemon_log_level = 7;
    look("6", "6");
    EXPECT_EQ("", logText());
    look("0", "11");
    look("0", "11");
    look("0", "36", "5");
    EXPECT_EQ(
        "1000: 1000:checkWlanChannelUsing]Wlan_2.4 Channel:0 ChannelUsing:6->11\n"
        "1000: 1000:checkWlanChannelUsing]Wlan_5 Channel:0 ChannelUsing:0->36\n",
        logText());
}

TEST_F(ChannelWatch, Level6_ShowsNothing) {
    daemon_log_level = 6;
    EXPECT_EQ(1, look("0", "11"));
    EXPECT_EQ("", logText());
}

} // namespace
