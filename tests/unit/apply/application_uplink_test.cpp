// The uplink and the site survey.
#include "record.h"

namespace pendra::test {
namespace {

class UpLinkApplication : public ApplicationTest {};

TEST_F(UpLinkApplication, ClosedUplink_IsNotWritten) {
    recordUpLink().Configurable = 0;
    setHardware(kAdsl);
    setConnection(kStatic);
    setText(recordUpLink().IP, "10.0.0.2");
    setText(recordUpLink().dsl.IspName, "Net");
    expectNothing();
}

TEST_F(UpLinkApplication, ClosedUplink_LeavesTheLaterSectionsApplied) {
    recordUpLink().Configurable = 0;
    setText(recordDevice().EasyRoaming, "other");
    recordDevice().safetyWdn.UrlDetectEnbl = 1;
    expectWrites({"set /bramble/easyroaminginfo=other", "set /safetywdn/urldetectenbl=1"}, "device safety");
}

TEST_F(UpLinkApplication, Dhcp_WritesKindsOnly) {
    device().tree["/uplink/hardwaretype"] = "ADSL";
    device().tree["/uplink/conntype"] = "PPPoE";
    setText(recordUpLink().IP, "10.0.0.2");
    setText(recordUpLink().LoginUserName, "user");
    expectWrites({"set /uplink/hardwaretype=Ethernet", "set /uplink/conntype=DHCP"}, "uplink");
}

TEST_F(UpLinkApplication, Login_IsWrittenForBothKinds) {
    const char* const names[] = {"PPPoE", "PPPoA"};
    for (const ConnectionKind kind : {kPppoe, kPppoa}) {
        setConnection(kind);
        const std::string name = names[kind - kPppoe];
        setText(recordUpLink().LoginUserName, "user-" + name);
        setText(recordUpLink().LoginPassword, "word-" + name);
        setText(recordUpLink().IP, "10.0.0.2");
        expectWrites({"set /uplink/conntype=" + name, "set /uplink/loginusername=user-" + name,
                      "set /uplink/loginpassword=word-" + name},
                     "uplink");
    }
}

TEST_F(UpLinkApplication, StaticAddresses_AreWrittenInOrder) {
    setConnection(kStatic);
    setText(recordUpLink().IP, "10.0.0.2");
    setText(recordUpLink().NetMask, "255.0.0.0");
    setText(recordUpLink().Gateway, "10.0.0.1");
    setText(recordUpLink().DNS, "8.8.8.8");
    setText(recordUpLink().LoginUserName, "user");
    expectWrites({"set /uplink/conntype=Static", "set /uplink/ip=10.0.0.2", "set /uplink/netmask=255.0.0.0",
                  "set /uplink/gateway=10.0.0.1", "set /uplink/dns=8.8.8.8"},
                 "uplink");
    setText(recordUpLink().Gateway, "10.0.0.254");
    expectWrites({"set /uplink/gateway=10.0.0.254"}, "uplink");
}

TEST_F(UpLinkApplication, Provider_IsWrittenByHardware) {
    const struct {
        HardwareKind kind;
        const char* name;
        ZepIsp& isp;
        const char* node;
    } rows[] = {{kAdsl, "ADSL", recordUpLink().dsl, "/uplink/dsl"},
                {kVdsl, "VDSL", recordUpLink().dsl, "/uplink/dsl"},
                {kWwanApn, "WWanAPN", recordUpLink().apn, "/uplink/apn"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        setHardware(row.kind);
        setText(row.isp.CountryName, std::string("Country ") + row.name);
        setText(row.isp.IspName, std::string("Isp ") + row.name);
        expectWrites({std::string("set /uplink/hardwaretype=") + row.name,
                      std::string("set ") + row.node + "/countryname=Country " + row.name,
                      std::string("set ") + row.node + "/ispname=Isp " + row.name},
                     "uplink");
        expectNothing();
    }
}

TEST_F(UpLinkApplication, Site_IsWrittenForWirelessUplinks) {
    setHardware(kWwan80211);
    useSite();
    expectWrites({"set /uplink/hardwaretype=WWan802.11", "set /uplink/extendersite/connrefsitebssid=02:aa:bb:cc:dd:ee",
                  "set /uplink/extendersite/wirelesstype=5", "set /uplink/extendersite/wirelessname=Upstairs",
                  "set /uplink/extendersite/encryptionkey=passphrase"},
                 "uplink");
}

TEST_F(UpLinkApplication, LaterVersionsDslLine_WritesTheKindOnly) {
    setHardware(kDsl);
    recordUpLink().MTU = 1400;
    recordUpLink().dsl.VPI = 1;
    recordUpLink().dsl.VCI = 33;
    setText(recordUpLink().dsl.EncapsulationMode, "VcMux");
    setText(recordUpLink().dsl.IspName, "Net");
    expectWrites({"set /uplink/hardwaretype=DSL"}, "uplink");
}

// Decisions look at the indexes; what is written are the texts.
TEST_F(UpLinkApplication, IndexesDecide_TextsAreWritten) {
    setText(recordUpLink().HardwareType, "adsl?");
    recordUpLink().hardwareTypeIdx = kWwanApn;
    setText(recordUpLink().ConnType, "dhcp?");
    recordUpLink().connTypeIdx = kPppoe;
    setText(recordUpLink().LoginUserName, "user");
    setText(recordUpLink().apn.IspName, "Net");
    expectWrites({"set /uplink/hardwaretype=adsl?", "set /uplink/conntype=dhcp?", "set /uplink/loginusername=user",
                  "set /uplink/apn/ispname=Net"},
                 "uplink");
}

class FirstGenerationUpLink : public UpLinkApplication {
  protected:
    FirstGenerationUpLink() {
        useVersion10();
        device().tree["/lan/wireless2.4:1/encryptiontype"] = "AUTO";
        device().tree["/lan/wireless5:1/encryptiontype"] = "AUTO";
    }
};

TEST_F(FirstGenerationUpLink, HardwareType_IsNotWritten) {
    device().tree["/uplink/hardwaretype"] = "VDSL";
    expectNothing();
}

TEST_F(FirstGenerationUpLink, DslLine_IsWrittenWithoutItsMtu) {
    setHardware(kDsl);
    expectWrites({"set /uplink/dsl/vpi=8", "set /uplink/dsl/vci=35", "set /uplink/dsl/encapsulationmode=LLC"},
                 "uplink");
    recordUpLink().MTU = 100;
    expectNothing();
}

TEST_F(FirstGenerationUpLink, AbsentVpi_CountsAsZero) {
    setHardware(kDsl);
    recordUpLink().dsl.VPI = 0;
    expectWrites({"set /uplink/dsl/vci=35", "set /uplink/dsl/encapsulationmode=LLC"}, "uplink");
}

TEST_F(FirstGenerationUpLink, Provider_IsWritten) {
    setHardware(kAdsl);
    setText(recordUpLink().dsl.CountryName, "Utopia");
    expectWrites({"set /uplink/dsl/countryname=Utopia"}, "uplink");
}

TEST_F(FirstGenerationUpLink, Site_IsWrittenForEthernetExtenders) {
    useSite();
    const Events site = {"set /uplink/extendersite/connrefsitebssid=02:aa:bb:cc:dd:ee",
                         "set /uplink/extendersite/wirelesstype=5", "set /uplink/extendersite/wirelessname=Upstairs",
                         "set /uplink/extendersite/encryptionkey=passphrase"};
    const auto tree = device().tree;
    for (const int32_t enable : {0, 2, 4}) {
        recordDevice().ExtenderEnbl = enable;
        expectNothing();
    }
    for (const int32_t enable : {1, 3}) {
        device().tree = tree;
        recordDevice().ExtenderEnbl = enable;
        expectWrites(site, "uplink");
    }
}

TEST_F(UpLinkApplication, LaterVersionsEthernet_IsNoExtender) {
    useSite();
    recordDevice().ExtenderEnbl = 1;
    expectNothing();
}

// ---- site survey ----

class SiteSurvey : public ApplicationTest {
  protected:
    SiteSurvey() {
        setHardware(kWwan80211);
        recordUpLink().extenderSite.Survey = 1;
    }

    void expectSurvey(const Events& events) {
        device().forget();
        EXPECT_EQ(1, Apply_ZepXmlToDevice());
        EXPECT_EQ(events, device().events);
        EXPECT_EQ("survey", raisedFlags());
    }
};

TEST_F(SiteSurvey, Request_IsNotedAndAppliesNothingElse) {
    setText(recordDevice().DeviceName, "New");
    setText(recordDevice().EasyRoaming, "other");
    setText(recordRadio(kBand24).WirelessName, "New");
    recordDevice().safetyWdn.SafetyWdnEnbl = 1;
    recordDevice().RouterEnbl = 2;
    expectSurvey({"set /uplink/extendersite/survey=1"});
    EXPECT_EQ("1", device().node("/sys/factorydefault"));
}

TEST_F(SiteSurvey, Request_IsLoggedAtLevel6) {
    daemon_log_level = 6;
    expectSurvey({"set /uplink/extendersite/survey=1"});
    EXPECT_EQ("1000: done,ret=1,Restart:wlan2.4=0,wlan5=0,uplink=0,survey=1,roaming=0\n", logText());
}

TEST_F(SiteSurvey, OtherStoredValues_AreNoRequest) {
    for (const char* stored : {"0", "2", "-1", "x"}) {
        device().tree["/uplink/extendersite/survey"] = stored;
        expectSurvey({"set /uplink/extendersite/survey=1"});
    }
    device().tree.erase("/uplink/extendersite/survey");
    expectSurvey({"set /uplink/extendersite/survey=1"});
}

TEST_F(SiteSurvey, RepeatedRequest_WritesNothingAtAll) {
    daemon_log_level = 6;
    device().tree["/uplink/extendersite/survey"] = "1";
    device().tree["/runtime/apcloninginfo/extendersite/wirelesstype"] = "5";
    setText(recordDevice().DeviceName, "New");
    expectNothing();
    EXPECT_EQ("1000: done,ret=1,Restart:wlan2.4=0,wlan5=0,uplink=0,survey=0,roaming=0\n", logText());
}

TEST_F(SiteSurvey, ClonedSite_IsForgotten) {
    device().tree["/runtime/apcloninginfo/extendersite/wirelesstype"] = "2.4";
    device().tree["/runtime/apcloninginfo/extendersite/wirelessname"] = "Upstairs";
    expectSurvey({"set /uplink/extendersite/survey=1", "del /runtime/apcloninginfo/extendersite"});
    EXPECT_FALSE(device().has("/runtime/apcloninginfo/extendersite/wirelessname"));
}

TEST_F(SiteSurvey, ClonedSiteWithoutType_Stays) {
    device().tree["/runtime/apcloninginfo/extendersite/wirelesstype"] = "";
    device().tree["/runtime/apcloninginfo/extendersite/wirelessname"] = "Upstairs";
    expectSurvey({"set /uplink/extendersite/survey=1"});
    EXPECT_TRUE(device().has("/runtime/apcloninginfo/extendersite/wirelessname"));
}

TEST_F(SiteSurvey, ClosedUplink_DoesNotStopIt) {
    recordUpLink().Configurable = 0;
    expectSurvey({"set /uplink/extendersite/survey=1"});
}

TEST_F(SiteSurvey, AnyNumberButZero_IsARequest) {
    recordUpLink().extenderSite.Survey = -1;
    expectSurvey({"set /uplink/extendersite/survey=1"});
}

TEST_F(SiteSurvey, Cloning_DoesNotLookAtIt) {
    zepXmlData.apCloningOnly = 1;
    setText(recordDevice().EasyRoaming, "other");
    zepXmlData.wlan24Feature = zepXmlData.wlan5Feature = 0;
    expectWrites({"set /bramble/easyroaminginfo=other"}, "device");
}

TEST_F(SiteSurvey, EthernetExtender_IsAnAffairOfVersion10) {
    const struct {
        int32_t version;
        HardwareKind kind;
        int32_t extenderEnable;
        bool surveys;
    } rows[] = {{100, kEthernet, 0, false}, {100, kEthernet, 1, true},  {100, kEthernet, 2, false},
                {100, kEthernet, 3, true},  {101, kEthernet, 1, false}, {101, kEthernet, 3, false},
                {100, kAdsl, 1, false},     {100, kWwan80211, 0, true}, {101, kWwan80211, 0, true},
                {100, kDsl, 1, false},      {101, kWwanApn, 0, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.version) + " " + std::to_string(row.kind) + " " +
                     std::to_string(row.extenderEnable));
        device().tree["/uplink/extendersite/survey"] = "0";
        zepXmlData.specVersion.version = row.version;
        setHardware(row.kind);
        recordDevice().ExtenderEnbl = row.extenderEnable;
        device().forget();
        EXPECT_EQ(1, Apply_ZepXmlToDevice());
        EXPECT_EQ(row.surveys, device().wrote("/uplink/extendersite/survey"));
        EXPECT_EQ(row.surveys ? 1 : 0, recordDevice().wlanSurveyRestart);
    }
}

} // namespace
} // namespace pendra::test
