/**
 * @file
 * Documents of other kinds: access-point cloning, a site survey, the first client generation.
 */
#include "running_device.h"

namespace pendra::test {
namespace {

class CloningDocument : public RunningDevice {};

// The 5 GHz radio has no channel 165, so it gets the automatic one. Device, uplink and web safety stay as they are.
const std::string kCloned = changeLines({
    {"/bramble/easyroaminginfo", "-70 3 10 5", "-60 2 8 5"},
    {"/lan/wireless2.4:1/accesscontrol/wlacenbl", "1", "0"},
    {"/lan/wireless2.4:1/channel", "6", "1"},
    {"/lan/wireless2.4:1/encryptionkey", "hedgerow-2400", "view-over-the-valley"},
    {"/lan/wireless2.4:1/wirelessname", "Bramble", "Hilltop"},
    {"/lan/wireless5:1/channel", "36", "0"},
    {"/lan/wireless5:1/encryptionkey", "hedgerow-5000", "view-over-the-valley"},
    {"/lan/wireless5:1/wirelessname", "Bramble 5G", "Hilltop 5G"},
    {"/sys/factorydefault", "1", "0"},
});

TEST_F(CloningDocument, PostedForCloning_TakesOverTheRadiosOnly) {
    start();
    const std::string before = files.dump();
    expectResult(setUp(example("apcloning.xml"), "?apcloning=1"), 0, "", 45);
    awaitScripts();
    EXPECT_EQ(files.changesSince(before), kCloned);
    EXPECT_EQ(files.scriptsRun(), (std::vector<std::string>{"wlan_resync.sh", "wlan5g_resync.sh", "device_resync.sh"}));
}

TEST_F(CloningDocument, PostedByZepctl_TakesOverTheRadiosOnly) {
    start();
    const std::string before = files.dump();
    EXPECT_EQ(zepctl({"setup", "--apcloning", "--no-wait", "-"}, example("apcloning.xml")).status, 0);
    awaitScripts();
    EXPECT_EQ(files.changesSince(before), kCloned);
}

TEST_F(CloningDocument, NothingDiffers_RunsTheDeviceScriptAllTheSame) {
    start();
    expectResult(setUp(example("apcloning.xml"), "?apcloning=1"), 0, "", 45);
    awaitScripts();
    restart();
    const std::string journal = files.journal();
    const DeviceFiles::Snapshot before = files.snapshot();
    expectResult(setUp(example("apcloning.xml"), "?apcloning=1"), 0, "", 0);
    awaitScripts();
    EXPECT_EQ(files.changedFiles(before), (std::vector<std::string>{"device/journal.txt", "t/zepset_result.xml"}));
    EXPECT_EQ(files.journal().substr(journal.size()).find("device_resync.sh: setting up the device\n"), 0u);
}

TEST_F(CloningDocument, PostedAsASetupDocument_LacksTheDeviceName) {
    start();
    const std::string before = files.dump();
    // There is no leaf Configurable of Device itself: the first one found is the radio's, and it is 1.
    expectResult(setUp(example("apcloning.xml")), 2, "Device/DeviceName", 0);
    EXPECT_EQ(files.changesSince(before), "");
}

TEST_F(CloningDocument, NoEasyRoaming_IsTolerated) {
    start();
    expectResult(setUp(withoutElement(example("apcloning.xml"), "EasyRoaming"), "?apcloning=1"), 0, "", 45);
    EXPECT_EQ(files.get("/lan/wireless2.4:1/wirelessname"), "Hilltop");
}

TEST_F(CloningDocument, RadioThatTheClientMayNotSwitch_EndsTheRadiosWithoutAFault) {
    files.set("/lan/wireless2.4:1/wlenbl", "3");
    start();
    const std::string before = files.dump();
    expectResult(setUp(example("apcloning.xml"), "?apcloning=1"), 0, "", 5);
    EXPECT_EQ(files.changesSince(before), changeLines({{"/bramble/easyroaminginfo", "-70 3 10 5", "-60 2 8 5"},
                                                       {"/sys/factorydefault", "1", "0"}}));
}

class SiteSurvey : public RunningDevice {};

TEST_F(SiteSurvey, Requested_SetsTheRequestAndNothingElse) {
    files.set("/runtime/apcloninginfo/extendersite/wirelesstype", "5");
    files.set("/runtime/apcloninginfo/extendersite/channel", "40");
    start({.logLevel = 6});
    const std::string before = files.dump();
    expectResult(setUp(example("survey.xml")), 0, "", 3);
    awaitScripts();
    EXPECT_EQ(files.changesSince(before),
              changeLines({{"/runtime/apcloninginfo/extendersite/channel", "40", nullptr},
                           {"/runtime/apcloninginfo/extendersite/wirelesstype", "5", nullptr},
                           {"/uplink/extendersite/survey", "0", "1"}}));
    EXPECT_EQ(files.journal(), "");
    EXPECT_NE(readFile(files.logFile()).find("[exe_ExternalCall,WlanSiteSurvey]\n"), std::string::npos);
}

TEST_F(SiteSurvey, RequestedAgainWhileOneIsOpen_WritesNothing) {
    files.set("/uplink/extendersite/survey", "1");
    start();
    const DeviceFiles::Snapshot before = files.snapshot();
    expectResult(setUp(example("survey.xml")), 0, "", 0);
    awaitScripts();
    EXPECT_EQ(files.changedFiles(before), std::vector<std::string>{"t/zepset_result.xml"});
}

TEST_F(SiteSurvey, FaultyRadioInTheDocument_IsNotLookedAt) {
    start();
    const std::string faulty = withElement(example("survey.xml"), "SafetyWdn/SafetyWdnEnbl", "7");
    expectResult(setUp(faulty), 0, "", 3);
    EXPECT_EQ(files.get("/safetywdn/safetywdnenbl"), "1");
}

class FirstGeneration : public RunningDevice {
  protected:
    FirstGeneration() : RunningDevice("router-1.0.tree") { start(); }
};

TEST_F(FirstGeneration, ItsDocument_IsApplied) {
    const std::string before = files.dump();
    EXPECT_NE(get("/zep/hello").body.find("\"spec\":\"1.0\""), std::string::npos);
    expectResult(setUp(example("setup-1.0.xml")), 0, "", 45);
    awaitScripts();
    // The kind of the line, the MTU, the channel and the access control are never written.
    EXPECT_EQ(files.changesSince(before),
              changeLines({{"/lan/wireless2.4:1/encryptionkey", "hedgerow-1000", "cider-and-perry"},
                           {"/lan/wireless2.4:1/wirelessname", "Bramble DSL", "Cellar"},
                           {"/sys/factorydefault", "1", "0"},
                           {"/sys/friendlyname", "Bramble DSL", "Cellar Modem"},
                           {"/uplink/dsl/encapsulationmode", "LLC", "VcMux"},
                           {"/uplink/dsl/vci", "32", "48"},
                           {"/uplink/dsl/vpi", "1", "8"},
                           {"/uplink/loginpassword", "line-secret", "new-line-secret"},
                           {"/uplink/loginusername", "user@example.net", "user0816@line.example"}}));
    EXPECT_EQ(files.scriptsRun(),
              (std::vector<std::string>{"uplink.sh", "wan_resync.sh", "wlan_resync.sh", "device_resync.sh"}));
}

TEST_F(FirstGeneration, OtherEncryptionTypeInTheTree_BecomesAuto) {
    files.set("/lan/wireless2.4:1/encryptiontype", "AES");
    expectResult(setUp(example("setup-1.0.xml")), 0, "", 45);
    EXPECT_EQ(files.get("/lan/wireless2.4:1/encryptiontype"), "AUTO");
}

TEST_F(FirstGeneration, LineValuesOutOfRange_AreResult3) {
    const std::string before = files.dump();
    const std::string path = "Device/UpLinkConnection/DSL/";
    const auto expectInvalid = [&](const char* element, const char* value, const char* tag) {
        const std::string document = withElement(example("setup-1.0.xml"), element, value);
        expectResult(setUp(document), 3, path + tag, 0);
    };
    expectInvalid("MTU", "0", "MTU");
    expectInvalid("MTU", "1493", "MTU");
    expectInvalid("DSL/VPI", "9", "VPI");
    expectInvalid("DSL/VCI", "31", "VCI");
    expectInvalid("DSL/EncapsulationMode", "PPP", "EncryptionMode"); // names another tag, so meant
    EXPECT_EQ(files.changesSince(before), "");
}

TEST_F(FirstGeneration, DocumentOfTheSecondGeneration_IsResult1) {
    const std::string before = files.dump();
    expectResult(setUp(example("setup.xml")), 1, "", 0);
    EXPECT_NE(readFile(files.logFile()).find("Wrong Spec Version! Device=1.0, XML=1.1\n"), std::string::npos);
    EXPECT_EQ(files.changesSince(before), "");
}

} // namespace
} // namespace pendra::test
