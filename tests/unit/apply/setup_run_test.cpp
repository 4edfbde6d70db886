// The whole road of a document: parsed, checked, applied, turned into work and reported.
#include "record.h"

namespace pendra::test {
namespace {

// Asks the device of loadRouter() for what it already has.
std::string radioElement(const std::string& band) {
    return "<Wireless" + band + "><WlEnbl>1</WlEnbl><WlSchedule>0</WlSchedule><WirelessBSSID>02:" + band +
           "</WirelessBSSID><WirelessName>Home" + band +
           "</WirelessName><EncryptionMode>WPA2</EncryptionMode><EncryptionKey>0ldSecret" + band +
           "</EncryptionKey><EncryptionType>AES</EncryptionType><Channel>0</Channel>"
           "<AccessControl><WlAcEnbl>0</WlAcEnbl></AccessControl></Wireless" +
           band + ">";
}

std::string setupDocument(int minor = 1) {
    return "<?xml version=\"1.0\"?><root><specVersion><major>1</major><minor>" + std::to_string(minor) +
           "</minor></specVersion><Device><Configurable>1</Configurable><DeviceName>Router</DeviceName>"
           "<DevicePwd>secret</DevicePwd><RouterEnbl>1</RouterEnbl><UpLinkConnection>"
           "<HardwareType>Ethernet</HardwareType><ConnType>DHCP</ConnType><MTU>1400</MTU></UpLinkConnection>"
           "<ExtenderEnbl>0</ExtenderEnbl><EasyRoaming>-75 2 10 3</EasyRoaming>" +
           radioElement("2.4") + radioElement("5") +
           "<SafetyWdn><SafetyWdnEnbl>0</SafetyWdnEnbl><UrlDetectEnbl>0</UrlDetectEnbl>"
           "<SafetyNotifyEnbl>0</SafetyNotifyEnbl><ToolRecommendEnbl>0</ToolRecommendEnbl></SafetyWdn>"
           "</Device></root>";
}

std::string changed(std::string text, const std::string& from, const std::string& to) {
    const size_t position = text.find(from);
    EXPECT_NE(std::string::npos, position) << from;
    return position == std::string::npos ? text : text.replace(position, from.size(), to);
}

const std::string kSiteElement =
    "<ExtenderSite><Survey>0</Survey><ConnRefSiteBSSID>02:aa:bb:cc:dd:ee</ConnRefSiteBSSID>"
    "<WirelessType>5</WirelessType><WirelessName>Upstairs</WirelessName><EncryptionKey>passphrase</EncryptionKey>"
    "</ExtenderSite>";

// The document with another kind of uplink, and the element that belongs to it.
std::string withHardware(const std::string& kind, const std::string& element, int minor = 1) {
    return changed(changed(setupDocument(minor), "<HardwareType>Ethernet<", "<HardwareType>" + kind + "<"),
                   "</UpLinkConnection>", element + "</UpLinkConnection>");
}

class SetupRun : public DeviceTest {
  protected:
    SetupRun() {
        loadRouter(device());
        device().tree["/bramble/tempdirecory"] = "/tmp";
    }

    static int32_t run(std::string document) {
        device().forget();
        return do_ZepXml_Parser(document.data());
    }
    static int32_t runCloning(std::string document) {
        device().forget();
        return do_ZepXml_Parser_for_ApCloning(document.data());
    }

    // The writes and the result document behind them.
    static void expectEvents(Events writes, int code, const std::string& message, int seconds) {
        for (const std::string& command : resultDocument(code, message, seconds))
            writes.push_back(command);
        EXPECT_EQ(writes, device().events);
    }

    void expectApplied(const std::string& document, Events changes, int32_t ids, int32_t seconds) {
        EXPECT_EQ(1, run(document));
        if (!changes.empty()) changes.emplace_back("set /sys/factorydefault=0");
        expectEvents(changes, 0, "", seconds);
        EXPECT_EQ(ids, zepXmlData.exeflag);
        EXPECT_EQ(seconds, zepXmlData.exeWaitSec);
    }

    static void expectFault(const std::string& document, int code, const std::string& message) {
        EXPECT_EQ(0, run(document));
        expectEvents({}, code, message, 0);
    }
};

TEST_F(SetupRun, NothingNew_WritesAndRestartsNothing) {
    expectApplied(setupDocument(), {}, 0, 0);
    EXPECT_EQ(0, zepXmlData.pre_exeflag);
}

TEST_F(SetupRun, OtherName_IsWrittenAndAnnounced) {
    expectApplied(changed(setupDocument(), ">Router<", "> My &amp; Router <"), {"set /sys/friendlyname=My & Router"},
                  48, 5);
}

TEST_F(SetupRun, UplinkAndRadios_Take60Seconds) {
    std::string document = changed(setupDocument(), "<ConnType>DHCP</ConnType>",
                                   "<ConnType> pppoe </ConnType><LoginUserName> user </LoginUserName>"
                                   "<LoginPassword>word</LoginPassword>");
    document = changed(changed(document, ">Home2.4<", ">Orchard<"), ">Home5<", ">Orchard 5<");
    expectApplied(document,
                  {"set /uplink/conntype=PPPoE", "set /uplink/loginusername=user", "set /uplink/loginpassword=word",
                   "set /lan/wireless2.4:1/wirelessname=Orchard", "set /lan/wireless5:1/wirelessname=Orchard 5"},
                  1 | 4 | 8 | 32, 60);
    device().forget();
    EXPECT_NE(0, do_ZepXml_Commit());
    EXPECT_EQ((Events{"run /userfs/bramble/uplink.sh", "run /userfs/bramble/wan_resync.sh",
                      "run /userfs/bramble/wlan_resync.sh", "run /userfs/bramble/wlan5g_resync.sh"}),
              device().events);
}

TEST_F(SetupRun, SameDocumentTwice_WritesNothingTheSecondTime) {
    const std::string document = changed(setupDocument(), ">Home5<", ">Orchard<");
    expectApplied(document, {"set /lan/wireless5:1/wirelessname=Orchard"}, 8 | 32, 20);
    expectApplied(document, {}, 0, 0);
    EXPECT_EQ(8 | 32, zepXmlData.pre_exeflag);
}

TEST_F(SetupRun, ResultDocument_IsReallyWritten) {
    device().tree["/bramble/tempdirecory"] = directory();
    device().runShell = true;
    EXPECT_EQ(1, run(changed(setupDocument(), ">Router<", ">Attic<")));
    EXPECT_EQ(
        "<?xml version=\"1.0\" ?>\n<root>\n <ZepSetResult>0</ZepSetResult>\n <ZepSetMsg></ZepSetMsg>\n"
        " <ZepGetWaitSec>5</ZepGetWaitSec>\n</root>\n",
        readFile(path("zepset_result.xml")));
    EXPECT_EQ(0, run(changed(setupDocument(), ">Router<", "><")));
    EXPECT_EQ(
        "<?xml version=\"1.0\" ?>\n<root>\n <ZepSetResult>10</ZepSetResult>\n"
        " <ZepSetMsg>Device/DeviceName</ZepSetMsg>\n <ZepGetWaitSec>0</ZepGetWaitSec>\n</root>\n",
        readFile(path("zepset_result.xml")));
}

// ---- faults ----

TEST_F(SetupRun, Faults_AreReportedByTheirPathInTheDocument) {
    const struct {
        std::string document;
        int code;
        const char* message;
    } rows[] = {
        {changed(setupDocument(), ">Router<", ">Rou\tter<"), 11, "Device/DeviceName"},
        {changed(setupDocument(), ">secret<", ">" + std::string(33, 's') + "<"), 10, "Device/DevicePwd"},
        {withHardware("LTE", ""), 3, "Device/UpLinkConnection/HardwareType"},
        {changed(setupDocument(), ">DHCP<", "><"), 3, "Device/UpLinkConnection/ConnType"},
        {withHardware("adsl", "<DSL><CountryName>A</CountryName><IspName> </IspName></DSL>"), 3,
         "Device/UpLinkConnection/DSL/IspName"},
        {withHardware("WWanAPN", "<APN><CountryName/><IspName>B</IspName></APN>"), 3,
         "Device/UpLinkConnection/APN/CountryName"},
        {withHardware("WWan802.11", changed(kSiteElement, ">5<", ">6<")), 3,
         "Device/UpLinkConnection/ExtenderSite/WirelessType"},
        {changed(setupDocument(), "<WirelessBSSID>02:5<", "<WirelessBSSID><"), 3, "Device/Wireless5/WirelessBSSID"},
        {changed(setupDocument(), "<Channel>0<", "<Channel>12<"), 3, "Device/Wireless2.4/Channel"},
        {changed(setupDocument(), "<WlAcEnbl>0<", "<WlAcEnbl>3<"), 3, "Device/Wireless2.4/AccessControl/WlEnbl"},
        {changed(setupDocument(), "<WlAcEnbl>0</WlAcEnbl>",
                 "<WlAcEnbl>1</WlAcEnbl><WlAcMode>0</WlAcMode><AcRule><Active>1</Active><MAC></MAC></AcRule>"),
         3, "Device/Wireless2.4/AccessControl/AcRule/MAC"},
        {changed(setupDocument(), "<UrlDetectEnbl>0<", "<UrlDetectEnbl>2<"), 3, "Device/SafetyWdn/UrlDetectEnbl"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.message);
        expectFault(row.document, row.code, row.message);
    }
}

TEST_F(SetupRun, MissingRule_TakesPrintableTexts) {
    device().tree.erase("/sys/friendlyname_validate");
    expectFault(changed(setupDocument(), ">Router<", "><"), 10, "Device/DeviceName");
    expectApplied(setupDocument(), {}, 0, 0);
}

TEST_F(SetupRun, FaultyDocument_LeavesThePendingWork) {
    expectApplied(changed(setupDocument(), ">Home5<", ">Orchard<"), {"set /lan/wireless5:1/wirelessname=Orchard"}, 40,
                  20);
    expectFault(setupDocument(2), 1, "");
    expectFault(changed(setupDocument(), "<Channel>0<", "<Channel>12<"), 3, "Device/Wireless2.4/Channel");
    EXPECT_EQ(40, zepXmlData.exeflag);
    EXPECT_EQ(0, zepXmlData.pre_exeflag);
    EXPECT_EQ(20, zepXmlData.exeWaitSec);
}

TEST_F(SetupRun, Refusal_KeepsWhatWasWrittenAndThePendingWork) {
    zepXmlData.exeflag = 4;
    zepXmlData.exeWaitSec = 20;
    expectApplied(setupDocument(), {}, 0, 0);
    EXPECT_EQ(4, zepXmlData.pre_exeflag);
    zepXmlData.exeflag = 8;
    zepXmlData.exeWaitSec = 7;
    device().tree["/lan/wireless2.4:1/wlenbl"] = "3";
    EXPECT_EQ(0, run(changed(setupDocument(), ">Router<", ">Attic<")));
    expectEvents({"set /sys/friendlyname=Attic"}, 3, "Device/Wireless2.4/WlEnbl", 0);
    EXPECT_EQ(8, zepXmlData.exeflag);
    EXPECT_EQ(4, zepXmlData.pre_exeflag);
    EXPECT_EQ(7, zepXmlData.exeWaitSec);
}

// ---- sections that are left alone ----

TEST_F(SetupRun, DeviceClosedByTheDocument_IsAcceptedUnread) {
    expectApplied(
        "<root><specVersion><major>1</major><minor>1</minor></specVersion>"
        "<Device><Configurable>0</Configurable></Device></root>",
        {}, 0, 0);
}

TEST_F(SetupRun, DeviceClosedByTheTree_IsAcceptedUnread) {
    device().tree["/bramble/configurable"] = "0";
    expectApplied(changed(setupDocument(), ">Router<", "><"), {}, 0, 0);
}

TEST_F(SetupRun, SectionsClosedByTheDocument_AreNeitherCheckedNorApplied) {
    std::string document =
        changed(setupDocument(), "<UpLinkConnection>", "<UpLinkConnection><Configurable>0</Configurable>");
    document = changed(document, ">DHCP<", ">nonsense<");
    document = changed(document, "<Wireless5>", "<Wireless5><Configurable>0</Configurable>");
    document = changed(changed(document, ">Home5<", "><"), ">Home2.4<", ">Orchard<");
    expectApplied(document, {"set /lan/wireless2.4:1/wirelessname=Orchard"}, 4 | 32, 20);
}

// ---- other roads ----

TEST_F(SetupRun, EmptyStaticDns_IsWrittenAsThePublicOne) {
    const std::string document = changed(setupDocument(), ">DHCP</ConnType>",
                                         ">static</ConnType><IP> 10.0.0.2</IP><NetMask>255.0.0.0</NetMask>"
                                         "<Gateway>10.0.0.1 </Gateway><DNS/>");
    expectApplied(document,
                  {"set /uplink/conntype=Static", "set /uplink/ip=10.0.0.2", "set /uplink/netmask=255.0.0.0",
                   "set /uplink/gateway=10.0.0.1", "set /uplink/dns=8.8.8.8"},
                  1 | 32, 20);
}

TEST_F(SetupRun, Survey_ExcludesEverythingElse) {
    std::string document = withHardware("WWan802.11", changed(kSiteElement, "<Survey>0<", "<Survey>1<"));
    document = changed(changed(document, ">Router<", ">Attic<"), "<Channel>0<", "<Channel>99<");
    EXPECT_EQ(1, run(document));
    expectEvents({"set /uplink/extendersite/survey=1"}, 0, "", 3);
    EXPECT_EQ(64, zepXmlData.exeflag);
    EXPECT_EQ(1, run(document));
    expectEvents({}, 0, "", 0);
    EXPECT_EQ(0, zepXmlData.exeflag);
}

// The record keeps what neither the document nor the refresh from the tree gives: with the uplink left alone, the
// survey of the document before is asked for again.
TEST_F(SetupRun, SurveyOfAnEarlierDocument_IsKept) {
    device().tree["/uplink/hardwaretype"] = "WWan802.11";
    const std::string survey = withHardware("WWan802.11", changed(kSiteElement, "<Survey>0<", "<Survey>1<"));
    EXPECT_EQ(1, run(survey));
    device().tree["/uplink/extendersite/survey"] = "0";
    EXPECT_EQ(1, run(changed(changed(survey, "<UpLinkConnection>", "<UpLinkConnection><Configurable>0</Configurable>"),
                             ">Router<", ">Attic<")));
    expectEvents({"set /uplink/extendersite/survey=1"}, 0, "", 3);
}

TEST_F(SetupRun, FortyOneRules_LeaveForty) {
    std::string rules = "<WlAcEnbl>1</WlAcEnbl><WlAcMode>0</WlAcMode>";
    Events writes = {"set /lan/wireless2.4:1/accesscontrol/wlacenbl=1",
                     "set /lan/wireless2.4:1/accesscontrol/wlacmode=0"};
    for (int number = 1; number <= 41; number++) {
        const std::string mac = "mac-" + std::to_string(number);
        rules += "<AcRule><Active>1</Active><MAC>" + mac + "</MAC></AcRule>";
        if (number > 40) continue;
        const std::string node = "set /lan/wireless2.4:1/accesscontrol/acrule:" + std::to_string(number);
        writes.push_back(node + "/active=1");
        writes.push_back(node + "/mac=" + mac);
    }
    expectApplied(changed(setupDocument(), "<WlAcEnbl>0</WlAcEnbl>", rules), writes, 4 | 32, 20);
}

TEST_F(SetupRun, CloningDocument_TakesOverTheRadios) {
    device().tree["/uplink/hardwaretype"] = "WWan802.11";
    std::string document = changed(setupDocument(), ">Router<", ">Attic<");
    document = changed(changed(document, ">Home2.4<", ">Orchard<"), "<Channel>0<", "<Channel>165<");
    device().tree["/lan/wireless5:1/wlenbl"] = "2";
    EXPECT_EQ(1, runCloning(document));
    const std::string info = "set /runtime/apcloninginfo/extendersite/";
    expectEvents({"set /lan/wireless2.4:1/wirelessname=Orchard", "set /uplink/extendersite/failoverbssid=02:2.4",
                  "set /uplink/extendersite/wirelesstype=2.4", "set /uplink/extendersite/wirelessname=Orchard",
                  "set /uplink/extendersite/encryptionkey=0ldSecret2.4", info + "wirelesstype=2.4",
                  info + "wirelessbssid=02:2.4", info + "wirelessname=Orchard", info + "encryptionmode=WPA2",
                  info + "encryptiontype=AES", info + "encryptionkey=0ldSecret2.4", info + "channel=0",
                  "set /sys/factorydefault=0"},
                 0, "", 40);
    EXPECT_EQ(1 | 4 | 32, zepXmlData.exeflag);
}

TEST_F(SetupRun, FirstGeneration_WritesAutoAndNoChannel) {
    device().tree["/bramble/specversion/minor"] = "0";
    device().tree["/lan/wireless5:1/encryptiontype"] = "AUTO";
    const std::string line = "<DSL><VPI>8</VPI><VCI>35</VCI><EncapsulationMode> llc </EncapsulationMode></DSL>";
    const std::string document = changed(withHardware("DSL", line, 0), "<Channel>0<", "<Channel>99<");
    expectApplied(document,
                  {"set /uplink/dsl/vpi=8", "set /uplink/dsl/vci=35", "set /uplink/dsl/encapsulationmode=LLC",
                   "set /lan/wireless2.4:1/encryptiontype=AUTO"},
                  1 | 4 | 32, 40);
    expectFault(changed(document, "<MTU>1400<", "<MTU>1493<"), 3, "Device/UpLinkConnection/DSL/MTU");
    expectFault(changed(document, "<VCI>35<", "<VCI>31<"), 3, "Device/UpLinkConnection/DSL/VCI");
    expectFault(changed(document, " llc ", "atm"), 3, "Device/UpLinkConnection/DSL/EncryptionMode");
}

TEST_F(SetupRun, FirstGenerationEthernetExtender_ConnectsToItsSite) {
    device().tree["/bramble/specversion/minor"] = "0";
    device().tree["/lan/wireless2.4:1/encryptiontype"] = device().tree["/lan/wireless5:1/encryptiontype"] = "AUTO";
    const std::string document =
        changed(setupDocument(0), "<ExtenderEnbl>0</ExtenderEnbl>", "<ExtenderEnbl>3</ExtenderEnbl>" + kSiteElement);
    expectApplied(
        document,
        {"set /uplink/extendersite/connrefsitebssid=02:aa:bb:cc:dd:ee", "set /uplink/extendersite/wirelesstype=5",
         "set /uplink/extendersite/wirelessname=Upstairs", "set /uplink/extendersite/encryptionkey=passphrase"},
        1 | 32, 20);
}

// ---- sizes ----

TEST_F(SetupRun, NameOfAMegabyte_IsTooLong) {
    expectFault(changed(setupDocument(), ">Router<", ">" + std::string(1 << 20, 'n') + "<"), 10, "Device/DeviceName");
}

TEST_F(SetupRun, NodesOf1023Bytes_AreSurvived) {
    for (auto& [node, text] : device().tree)
        if (node.find("specversion") == std::string::npos && node.find("wlenbl") == std::string::npos)
            text = std::string(1023, 'x');
    EXPECT_EQ(0, run(changed(setupDocument(), ">Router<", ">Attic<")));
    EXPECT_EQ(Events{}, device().treeWrites());
    daemon_log_level = 7;
    EXPECT_EQ(1, runCloning(setupDocument()));
    EXPECT_EQ("Home5", device().node("/lan/wireless5:1/wirelessname"));
}

} // namespace
} // namespace pendra::test
