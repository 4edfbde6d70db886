#include <gtest/gtest.h>

#include <filesystem>

#include "platform/tree/tree.h"
#include "scratch.h"

namespace {

using namespace pendra::test;

/** The scripts of the device, run as the library runs them. */
class DeviceScripts : public testing::Test {
  protected:
    void SetUp() override {
        std::filesystem::create_directory(device);
        ASSERT_EQ(xtree("load " PENDRA_DEVICE_SOURCES "/router.tree").status, 0);
    }
    Ran xtree(const std::string& arguments) { return run(scratch, PENDRA_XTREE " -f " + tree + " " + arguments); }
    void set(const std::string& path, const std::string& text) {
        ASSERT_EQ(xtree("set " + path + " '" + text + "'").status, 0);
    }
    Ran script(const std::string& command) {
        return run(scratch, "PENDRA_TREE=" + tree + " PENDRA_DEVICE=" + device +
                                " PENDRA_XTREE=" PENDRA_XTREE " " PENDRA_DEVICE_SOURCES "/" + command);
    }
    /** What a script adds to the journal. */
    std::string notesOf(const std::string& name) {
        std::filesystem::remove(device + "/journal.txt");
        const std::string before = xtree("dump").output;
        const Ran ran = script(name);
        EXPECT_EQ(ran.status, 0);
        EXPECT_EQ(ran.output + ran.errors, "");
        EXPECT_EQ(xtree("dump").output, before) << "a script changed the tree";
        return content(device + "/journal.txt");
    }
    Scratch scratch;
    std::string tree = scratch.file("tree");
    std::string device = scratch.file("device");
};

TEST_F(DeviceScripts, Uplink_StartsTheLineOfItsKind) {
    EXPECT_EQ(notesOf("uplink.sh"), "uplink.sh: starting the uplink over Ethernet\n");
    set("/uplink/hardwaretype", "ADSL");
    EXPECT_EQ(notesOf("uplink.sh"),
              "uplink.sh: starting the uplink over ADSL\nuplink.sh: dsl/countryname=\"Germany\"\n"
              "uplink.sh: dsl/ispname=\"Example Net\"\n");
    set("/uplink/hardwaretype", "WWanAPN");
    EXPECT_NE(notesOf("uplink.sh").find("uplink.sh: apn/ispname=\"Example Mobile\"\n"), std::string::npos);
}

TEST_F(DeviceScripts, ExtenderUplink_ShowsNoKey) {
    set("/uplink/hardwaretype", "WWan802.11");
    set("/uplink/extendersite/wirelessname", "Neighbour");
    EXPECT_NE(notesOf("uplink.sh").find("uplink.sh: extendersite/encryptionkey is not set\n"), std::string::npos);
    set("/uplink/extendersite/encryptionkey", "very secret");
    const std::string notes = notesOf("uplink.sh");
    EXPECT_NE(notes.find("uplink.sh: extendersite/wirelessname=\"Neighbour\"\n"), std::string::npos);
    EXPECT_NE(notes.find("uplink.sh: extendersite/encryptionkey=********\n"), std::string::npos);
    EXPECT_EQ(notes.find("secret"), std::string::npos);
}

TEST_F(DeviceScripts, Wan_ConnectsAsConfigured) {
    EXPECT_EQ(notesOf("wan_resync.sh"), "wan_resync.sh: connecting with DHCP\n");
    set("/uplink/conntype", "Static");
    EXPECT_EQ(notesOf("wan_resync.sh"),
              "wan_resync.sh: connecting with Static\nwan_resync.sh: ip=\"198.51.100.20\"\n"
              "wan_resync.sh: netmask=\"255.255.255.0\"\nwan_resync.sh: gateway=\"198.51.100.1\"\n"
              "wan_resync.sh: dns=\"198.51.100.53\"\n");
    set("/uplink/conntype", "PPPoE");
    set("/uplink/loginusername", "me@example.net");
    set("/uplink/loginpassword", "very secret");
    EXPECT_EQ(notesOf("wan_resync.sh"),
              "wan_resync.sh: connecting with PPPoE\nwan_resync.sh: loginusername=\"me@example.net\"\n"
              "wan_resync.sh: loginpassword=********\n");
}

TEST_F(DeviceScripts, Radio_IsSetUpWithItsRules) {
    EXPECT_EQ(notesOf("wlan_resync.sh"),
              "wlan_resync.sh: setting up ra0\n"
              "wlan_resync.sh: wirelessname=\"Bramble\"\n"
              "wlan_resync.sh: encryptionmode=\"WPA2\"\n"
              "wlan_resync.sh: encryptiontype=\"AES\"\n"
              "wlan_resync.sh: channel=\"6\"\n"
              "wlan_resync.sh: wlschedule=\"0\"\n"
              "wlan_resync.sh: encryptionkey=********\n"
              "wlan_resync.sh: wlacmode=\"0\"\n"
              "wlan_resync.sh: acrule:1/active=\"1\"\n"
              "wlan_resync.sh: acrule:1/mac=\"02:a1:b2:c3:d4:e5\"\n"
              "wlan_resync.sh: acrule:2/active=\"0\"\n"
              "wlan_resync.sh: acrule:2/mac=\"02:a1:b2:c3:d4:e6\"\n");
    EXPECT_TRUE(notesOf("wlan5g_resync.sh")
                    .starts_with("wlan5g_resync.sh: setting up rai0\n"
                                 "wlan5g_resync.sh: wirelessname=\"Bramble 5G\"\n"));
    EXPECT_TRUE(notesOf("wlan5g_resync.sh").ends_with("wlan5g_resync.sh: access control off\n"));
}

TEST_F(DeviceScripts, RadioSwitchedOff_IsTakenDown) {
    set("/lan/wireless5:1/wlenbl", "0");
    EXPECT_EQ(notesOf("wlan5g_resync.sh"), "wlan5g_resync.sh: taking rai0 down\n");
}

TEST_F(DeviceScripts, Device_ShowsItsNameAndNoPassword) {
    EXPECT_EQ(notesOf("device_resync.sh"),
              "device_resync.sh: setting up the device\n"
              "device_resync.sh: friendlyname=\"Bramble Router\"\n"
              "device_resync.sh: routerenbl=\"1\"\n"
              "device_resync.sh: user:1/password=********\n"
              "device_resync.sh: easyroaminginfo=\"-70 3 10 5\"\n");
}

TEST_F(DeviceScripts, TextThatLooksLikeShell_IsOnlyNoted) {
    set("/sys/friendlyname", "$(touch " + scratch.file("broken") + ") `id` \"\\");
    EXPECT_NE(
        notesOf("device_resync.sh").find("friendlyname=\"$(touch " + scratch.file("broken") + ") `id` \\\"\\\\\"\n"),
        std::string::npos);
    EXPECT_FALSE(exists(scratch.file("broken")));
}

TEST_F(DeviceScripts, UnusableTree_FailsWithAMessage) {
    std::filesystem::remove(tree);
    const Ran ran = script("uplink.sh");
    EXPECT_EQ(ran.status, 1);
    EXPECT_NE(ran.errors.find("uplink.sh: the tree cannot be read\n"), std::string::npos) << ran.errors;
    EXPECT_FALSE(exists(device + "/journal.txt"));
}

TEST_F(DeviceScripts, WirelessTool_TakesTheStationOff) {
    store(device + "/stations.txt", content(PENDRA_DEVICE_SOURCES "/stations.txt"));
    EXPECT_EQ(script("iwpriv ra0 set DisConnectSta=02:A1:B2:c3:d4:e5").status, 0);
    EXPECT_EQ(content(device + "/stations.txt").find("02:a1:b2:c3:d4:e5"), std::string::npos);
    EXPECT_NE(content(device + "/stations.txt").find("02:a1:b2:c3:d4:e6"), std::string::npos);
    EXPECT_EQ(script("iwpriv rai0 set DisConnectSta=02:a1:b2:c3:d4:e6").status, 1);
    EXPECT_NE(content(device + "/stations.txt").find("02:a1:b2:c3:d4:e6"), std::string::npos);
    EXPECT_EQ(script("iwpriv ra0 get").status, 2);
    EXPECT_EQ(content(device + "/journal.txt"),
              "iwpriv: disconnected 02:A1:B2:c3:d4:e5 from ra0\niwpriv: rai0 has no station 02:a1:b2:c3:d4:e6\n");
}

TEST(DeviceTrees, Listings_LoadAndReadBack) {
    const Scratch scratch;
    for (const std::string name : {"router", "router-1.0"}) {
        const std::string environment = "PENDRA_TREE=" + scratch.file(name) + " LISTING=" PENDRA_DEVICE_SOURCES "/";
        const Ran ran =
            run(scratch,
                environment + name + ".tree sh -c '" PENDRA_XTREE " load $LISTING && " PENDRA_XTREE " diff $LISTING'");
        EXPECT_EQ(ran.status, 0);
        EXPECT_EQ(ran.output + ran.errors, "");
    }
}

TEST(DeviceTrees, Generations_AreTheOnesTheyClaim) {
    const Scratch scratch;
    const auto get = [&](const std::string& name, const std::string& path) {
        const std::string tool = PENDRA_XTREE " -f " + scratch.file(name);
        EXPECT_EQ(run(scratch, tool + " load " PENDRA_DEVICE_SOURCES "/" + name + ".tree").status, 0);
        return run(scratch, tool + " get '" + path + "'").output;
    };
    EXPECT_EQ(get("router", "/bramble/specversion/minor"), "1\n");
    EXPECT_EQ(get("router", "/lan/wireless5:1/wlenbl"), "1\n");
    EXPECT_EQ(get("router", "/lan/wireless2.4:1/accesscontrol/acrule#"), "2\n");
    EXPECT_EQ(get("router", "/safetywdn/safetywdnenbl"), "1\n");
    EXPECT_EQ(get("router-1.0", "/bramble/specversion/minor"), "0\n");
    EXPECT_EQ(get("router-1.0", "/lan/wireless5:1/wlenbl"), "") << "it has one radio";
}

} // namespace
