/**
 * @file
 * The road of one setup document, from the login to the scripts.
 */
#include <algorithm>

#include "running_device.h"

namespace pendra::test {
namespace {

const std::vector<std::string> kAllScripts = {"uplink.sh", "wan_resync.sh", "wlan_resync.sh", "wlan5g_resync.sh",
                                              "device_resync.sh"};

// The access rule 3 is new and not active: an absent number counts as 0, so only its address is written.
const std::string kChangesOfExample = changeLines({
    {"/bramble/easyroaminginfo", "-70 3 10 5", "-65 3 10 5"},
    {"/lan/wireless2.4:1/accesscontrol/acrule:2/active", "0", "1"},
    {"/lan/wireless2.4:1/accesscontrol/acrule:3/mac", nullptr, "02:a1:b2:c3:d4:f0"},
    {"/lan/wireless2.4:1/channel", "6", "11"},
    {"/lan/wireless2.4:1/encryptionkey", "hedgerow-2400", "apple-pear-plum"},
    {"/lan/wireless2.4:1/wirelessname", "Bramble", "Orchard"},
    {"/lan/wireless5:1/channel", "36", "44"},
    {"/lan/wireless5:1/encryptionkey", "hedgerow-5000", "cherry-and-quince"},
    {"/lan/wireless5:1/encryptionmode", "WPA2", "WPAWPA2"},
    {"/lan/wireless5:1/encryptiontype", "AES", "AUTO"},
    {"/lan/wireless5:1/wirelessname", "Bramble 5G", "Orchard 5G"},
    {"/lan/wireless5:1/wlschedule", "0", "1"},
    {"/safetywdn/safetynotifyenbl", "0", "1"},
    {"/sys/factorydefault", "1", "0"},
    {"/sys/friendlyname", "Bramble Router", "Living Room"},
    {"/uplink/conntype", "DHCP", "PPPoE"},
    {"/uplink/dsl/countryname", "Germany", "Austria"},
    {"/uplink/dsl/ispname", "Example Net", "Alpine Example"},
    {"/uplink/hardwaretype", "Ethernet", "ADSL"},
    {"/uplink/loginpassword", "", "Tea & biscuits"},
    {"/uplink/loginusername", "", "user0815@line.example"},
});

class SetupRoad : public RunningDevice {
  protected:
    /** The scripts saw the new tree: it had been stored before they ran. */
    void expectExampleInEffect(const std::string& before) const {
        awaitScripts();
        EXPECT_EQ(files.changesSince(before), kChangesOfExample);
        EXPECT_EQ(files.scriptsRun(), kAllScripts);
        for (const char* line : {"uplink.sh: starting the uplink over ADSL\n", "wan_resync.sh: connecting with PPPoE\n",
                                 "wlan_resync.sh: channel=\"11\"\n", "wlan5g_resync.sh: channel=\"44\"\n",
                                 "device_resync.sh: friendlyname=\"Living Room\"\n"}) {
            EXPECT_NE(files.journal().find(line), std::string::npos) << line;
        }
    }
};

TEST_F(SetupRoad, CurlWithPendraKey_AppliesTheDocumentAndRunsTheScripts) {
    start();
    const std::string before = files.dump();
    const HttpReply admitted = curl({"-d", "PendraKey=" + key(), url("/zep/login")});
    EXPECT_EQ(admitted.status, 200);
    EXPECT_NE(admitted.body.find("\"seconds\":300"), std::string::npos) << admitted.body;
    // Uplink 20, two radios 20 each, device 5.
    expectResult(post("/zep/setup", example("setup.xml")), 0, "", 65);
    expectExampleInEffect(before);
}

TEST_F(SetupRoad, CurlWithDKeyInTheQuery_AppliesTheDocumentAndRunsTheScripts) {
    start();
    const std::string before = files.dump();
    EXPECT_EQ(get("/zep/login?DKey=" + key().substr(0, 8)).status, 200);
    expectResult(post("/zep/setup", example("setup.xml")), 0, "", 65);
    expectExampleInEffect(before);
}

TEST_F(SetupRoad, ZepctlOnly_AppliesTheDocumentAndRunsTheScripts) {
    start();
    const std::string before = files.dump();
    EXPECT_EQ(zepctl({"hello"}).status, 0);
    EXPECT_EQ(zepctl({"login"}).status, 0);
    const Ended setup = zepctl({"setup", "--no-wait", "-"}, example("setup.xml"));
    EXPECT_EQ(setup.status, 0);
    EXPECT_EQ(setup.output, "The device has applied the settings.\n");
    EXPECT_EQ(setup.errors, "The device needs 65 seconds until its settings take effect.\n");
    const Ended result = zepctl({"result"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "The device has applied the settings.\n");
    EXPECT_EQ(readFile(files.resultFile()), resultDocument(0, "", 65));
    expectExampleInEffect(before);
}

TEST_F(SetupRoad, ZepctlWithAShortWait_WaitsTheAnnouncedSeconds) {
    start();
    const auto begin = std::chrono::steady_clock::now();
    const Ended setup = zepctl({"setup", "-"}, nameDocument("Attic"));
    const auto passed = std::chrono::steady_clock::now() - begin;
    EXPECT_EQ(setup.status, 0);
    EXPECT_EQ(setup.output, "The device has applied the settings.\n");
    EXPECT_EQ(setup.errors, "The device needs 5 seconds until its settings take effect.\n");
    EXPECT_GE(passed, std::chrono::seconds(5));
    EXPECT_LT(passed, std::chrono::seconds(15));
    EXPECT_EQ(files.get("/sys/friendlyname"), "Attic");
}

TEST_F(SetupRoad, OnlyTheNameDiffers_WritesItAloneAndRunsTheDeviceScriptAlone) {
    start();
    const std::string before = files.dump();
    expectResult(setUp(nameDocument("Attic")), 0, "", 5);
    awaitScripts();
    EXPECT_EQ(files.changesSince(before),
              changeLines({{"/sys/factorydefault", "1", "0"}, {"/sys/friendlyname", "Bramble Router", "Attic"}}));
    EXPECT_EQ(files.scriptsRun(), std::vector<std::string>{"device_resync.sh"});
}

TEST_F(SetupRoad, AppliedDocument_SurvivesTheHost) {
    start();
    const std::string before = files.dump();
    expectResult(setUp(example("setup.xml")), 0, "", 65);
    restart();
    EXPECT_EQ(files.changesSince(before), kChangesOfExample);
    login();
    EXPECT_EQ(get("/zep/result").body, resultDocument(0, "", 65));
}

TEST_F(SetupRoad, TextBehindTheRoot_IsNotSeen) {
    start();
    const std::string before = files.dump();
    const std::string document = withoutElement(example("setup.xml"), "SafetyWdn");
    const std::string behind =
        "<SafetyWdn><SafetyWdnEnbl>0</SafetyWdnEnbl><UrlDetectEnbl>0</UrlDetectEnbl>"
        "<SafetyNotifyEnbl>0</SafetyNotifyEnbl><ToolRecommendEnbl>0</ToolRecommendEnbl></SafetyWdn>";
    expectResult(setUp(document + behind), 2, "SafetyWdn", 0);
    EXPECT_EQ(files.changesSince(before), "");
}

TEST_F(SetupRoad, Stations_AreListedAndDisconnected) {
    start();
    login();
    // The mixed case is the drivers' own.
    EXPECT_EQ(get("/zep/stations").body,
              "{\"stations\":[{\"mac\":\"02:a1:b2:C3:D4:E5\",\"ifname\":\"ra0\",\"rssi\":-58},"
              "{\"mac\":\"02:a1:b2:C3:D4:E6\",\"ifname\":\"ra0\",\"rssi\":-55},"
              "{\"mac\":\"02:a1:b2:C3:d4:e7\",\"ifname\":\"rai0\",\"rssi\":-48}]}\n");
    EXPECT_EQ(files.get("/runtime/easyroaming/connstainfo/sta:3/rssi"), "-48");
    EXPECT_EQ(curl({"-d", "mac=02:a1:b2:c3:d4:e6&ifname=ra0", url("/zep/stations")}).status, 200);
    EXPECT_EQ(files.journal(), "iwpriv: disconnected 02:a1:b2:c3:d4:e6 from ra0\n");
    EXPECT_EQ(files.xtree({"dump", "/runtime/easyroaming/deauthsta"}).status, 1);
    const Ended listed = zepctl({"stations"});
    EXPECT_EQ(listed.status, 0);
    EXPECT_EQ(std::count(listed.output.begin(), listed.output.end(), '\n'), 3);
    EXPECT_EQ(zepctl({"stations", "--disconnect", "02:a1:b2:c3:d4:e5"}).status, 0);
    EXPECT_EQ(zepctl({"stations", "--disconnect", "02:a1:b2:c3:d4:e5"}).status, 1);
}

} // namespace
} // namespace pendra::test
