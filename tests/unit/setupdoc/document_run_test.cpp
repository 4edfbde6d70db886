// Whole runs of a setup document: what is accepted, and what the client is told.
#include "setup_document.h"

using namespace pendra::test;

namespace {

using Lines = std::vector<std::string>;

Lines resultCommands(int code, const std::string& message, int wait) {
    const std::string file = "/tmp/pendra/zepset_result.xml";
    return {"echo '<?xml version=\"1.0\" ?>' > " + file,
            "echo '<root>' >> " + file,
            "echo ' <ZepSetResult>" + std::to_string(code) + "</ZepSetResult>' >> " + file,
            "echo ' <ZepSetMsg>" + message + "</ZepSetMsg>' >> " + file,
            "echo ' <ZepGetWaitSec>" + std::to_string(wait) + "</ZepGetWaitSec>' >> " + file,
            "echo '</root>' >> " + file};
}

class DocumentRun : public DeviceTest {
  protected:
    DocumentRun() { loadRouter(device()); }

    static int32_t runText(const std::string& text) {
        device().forget();
        Buffer buffer(text);
        return do_ZepXml_Parser(buffer.text());
    }
    static int32_t run(const Element& deviceElement, int major = 1, int minor = 1) {
        return runText(documentText(deviceElement, major, minor));
    }
    static int32_t runCloning(const Element& deviceElement) {
        device().forget();
        Buffer buffer(documentText(deviceElement));
        return do_ZepXml_Parser_for_ApCloning(buffer.text());
    }

    // The run is refused with this result and nothing is written into the tree.
    static void expectRefused(const std::string& text, int code, const std::string& message) {
        EXPECT_EQ(0, runText(text));
        EXPECT_EQ(resultCommands(code, message, 0), device().commands());
        EXPECT_EQ(Events{}, device().treeWrites());
    }
};

// ---- Success ----

TEST_F(DocumentRun, DocumentThatChangesNothing_WritesNothingAndTellsNoWait) {
    EXPECT_EQ(1, run(deviceElement()));
    EXPECT_EQ(resultCommands(0, "", 0), device().commands());
    EXPECT_EQ(6u, device().events.size());
    EXPECT_EQ(0, zepXmlData.exeflag);
    EXPECT_EQ(0, zepXmlData.saveflag);
}

TEST_F(DocumentRun, Changes_AreWrittenBeforeTheResultTellsTheWait) {
    Element changed = deviceElement().set("DeviceName", "Attic").set(radioElement("5").set("Channel", "36"));
    EXPECT_EQ(1, run(changed.set(upLinkElement().set("HardwareType", "ADSL").add(ispElement("DSL")))));
    Events expected = {"set /sys/friendlyname=Attic",         "set /uplink/hardwaretype=ADSL",
                       "set /uplink/dsl/countryname=Germany", "set /uplink/dsl/ispname=Provider",
                       "set /lan/wireless5:1/channel=36",     "set /sys/factorydefault=0"};
    for (const std::string& command : resultCommands(0, "", 45))
        expected.push_back("run " + command);
    EXPECT_EQ(expected, device().events);
    EXPECT_EQ(1 | 8 | 16 | 32, zepXmlData.exeflag);
    EXPECT_EQ(45, zepXmlData.exeWaitSec);
}

TEST_F(DocumentRun, SameDocumentTwice_WritesOnlyOnce) {
    const Element changed = deviceElement().set("DeviceName", "Attic");
    EXPECT_EQ(1, run(changed));
    EXPECT_TRUE(device().wrote("/sys/friendlyname"));
    EXPECT_EQ(1, run(changed));
    EXPECT_EQ(Events{}, device().treeWrites());
    EXPECT_EQ(resultCommands(0, "", 0), device().commands());
}

TEST_F(DocumentRun, FirstGenerationDocument_IsApplied) {
    loadRouter(device(), 0);
    device().tree["/bramble/specversion/minor"] = "0";
    EXPECT_EQ(1, run(firstGenerationDevice().set("DevicePwd", "other"), 1, 0));
    EXPECT_EQ("other", device().node("/sys/user:1/password"));
    EXPECT_EQ(resultCommands(0, "", 45), device().commands()); // the radios become "AUTO"
}

TEST_F(DocumentRun, Success_WritesTheResultFile) {
    device().runShell = true;
    device().tree["/bramble/tempdirecory"] = directory();
    EXPECT_EQ(1, run(deviceElement().set("DeviceName", "Attic")));
    EXPECT_EQ(
        "<?xml version=\"1.0\" ?>\n<root>\n <ZepSetResult>0</ZepSetResult>\n <ZepSetMsg></ZepSetMsg>\n"
        " <ZepGetWaitSec>5</ZepGetWaitSec>\n</root>\n",
        readFile(path("zepset_result.xml")));
}

TEST_F(DocumentRun, DeviceThatIsClosed_SucceedsWithoutBeingParsed) {
    device().tree["/bramble/configurable"] = "0";
    EXPECT_EQ(1, runText("<root>" + versionElement(1, 1).text() + "</root>"));
    EXPECT_EQ(resultCommands(0, "", 0), device().commands());
    EXPECT_EQ(Events{}, device().treeWrites());
}

TEST_F(DocumentRun, DocumentThatClosesTheDevice_ChangesNothing) {
    EXPECT_EQ(1, run(Element("Device", {{"Configurable", "0"}, {"DeviceName", "Attic"}})));
    EXPECT_EQ(Events{}, device().treeWrites());
    EXPECT_EQ(resultCommands(0, "", 0), device().commands());
}

TEST_F(DocumentRun, DocumentThatClosesASection_LeavesThatSectionAlone) {
    Element closedRadio = radioElement("5").set("WirelessName", "New").putFirst("Configurable", "0");
    Element closedUpLink = upLinkElement().set("HardwareType", "Bogus").putFirst("Configurable", "0");
    const Element document =
        deviceElement().putFirst("Configurable", "1").set(closedUpLink).set(closedRadio).set("DeviceName", "Attic");
    EXPECT_EQ(1, run(document));
    EXPECT_EQ((Events{"set /sys/friendlyname=Attic", "set /sys/factorydefault=0"}), device().treeWrites());
}

// ---- Versions ----

TEST_F(DocumentRun, OtherVersion_IsRefusedAndLogged) {
    device().tree["/bramble/specversion/minor"] = "0";
    daemon_log_level = 4;
    expectRefused(documentText(deviceElement(), 1, 1), 1, "");
    EXPECT_EQ("1000: Wrong Spec Version! Device=1.0, XML=1.1\n", logText());
    daemon_log_level = 3;
    expectRefused(documentText(deviceElement(), 2, 17), 1, "");
    EXPECT_EQ("1000: Wrong Spec Version! Device=1.0, XML=1.1\n", logText());
}

TEST_F(DocumentRun, SameCombinedVersion_IsAccepted) {
    EXPECT_EQ(1, run(deviceElement(), 0, 101));
    EXPECT_EQ(1, run(deviceElement(), 2, -99));
    EXPECT_EQ(0, run(deviceElement(), 1, 100));
}

TEST_F(DocumentRun, RefusedVersion_LeavesTheSectionsUnparsed) {
    std::strcpy(zepXmlData.device.DeviceName, "Old");
    EXPECT_EQ(0, run(deviceElement().set("DeviceName", "Attic"), 1, 2));
    EXPECT_STREQ("Old", zepXmlData.device.DeviceName);
    EXPECT_STREQ("specVersion", zepXmlData.specVersion.path);
    EXPECT_EQ(101, zepXmlData.specVersion.version); // the device's own
}

TEST_F(DocumentRun, MissingVersionParts_AreReported) {
    const std::string body = deviceElement().text();
    expectRefused("<root>" + body + "</root>", 2, "specVersion");
    EXPECT_STREQ("", zepXmlData.specVersion.path);
    expectRefused("<root>" + versionElement(1, 1).without("major").text() + body + "</root>", 2, "specVersion/major");
    expectRefused("<root>" + versionElement(1, 1).without("minor").text() + body + "</root>", 2, "specVersion/minor");
}

// ---- Missing elements ----

TEST_F(DocumentRun, MissingLeafOrBlock_IsResult2WithItsPath) {
    const Element whole = deviceElement();
    const std::vector<std::pair<Element, std::string>> rows = {
        {whole.without("DeviceName"), "Device/DeviceName"},
        {whole.without("UpLinkConnection"), "UpLinkConnection"},
        {whole.without("Wireless5"), "Wireless5"},
        {whole.without("SafetyWdn"), "SafetyWdn"},
        {Element(whole).set(upLinkElement().set("ConnType", "pppoe").add("LoginUserName", "u")),
         "Device/UpLinkConnection/LoginPassword"},
        {Element(whole).set(upLinkElement().set("HardwareType", "ADSL")), "DSL"},
        {Element(whole).set(upLinkElement().set("HardwareType", "ADSL").add(ispElement("DSL").without("IspName"))),
         "Device/UpLinkConnection/DSL/IspName"},
        {Element(whole).set(radioElement("2.4").without("AccessControl")), "AccessControl"},
        {Element(whole).set(radioElement("2.4").set("AccessControl", "<WlAcEnbl>1</WlAcEnbl>")),
         "Device/Wireless2.4/AccessControl/WlAcMode"},
    };
    for (const auto& [document, message] : rows) {
        SCOPED_TRACE(message);
        expectRefused(documentText(document), 2, message);
    }
    expectRefused("<root>" + versionElement(1, 1).text() + "</root>", 2, "Device");
}

TEST_F(DocumentRun, SelfClosingDevice_MissesItsFirstLeaf) {
    expectRefused("<root>" + versionElement(1, 1).text() + "<Device/></root>", 2, "Device/DeviceName");
}

// ---- Faults of values ----

TEST_F(DocumentRun, InvalidValue_IsReportedByVerification) {
    expectRefused(documentText(deviceElement().set(upLinkElement().set("ConnType", "bogus"))), 3,
                  "Device/UpLinkConnection/ConnType");
    expectRefused(documentText(deviceElement().set("DeviceName", std::string(33, 'n'))), 10, "Device/DeviceName");
    Element noCountry = upLinkElement().set("HardwareType", "ADSL").add(ispElement("DSL").set("CountryName", ""));
    expectRefused(documentText(deviceElement().set(noCountry)), 3, "Device/UpLinkConnection/DSL/CountryName");
}

TEST_F(DocumentRun, RefusedValue_IsReportedByApplication) {
    device().tree["/sys/routerenbl"] = "2";
    EXPECT_EQ(0, run(deviceElement().set("RouterEnbl", "0")));
    EXPECT_EQ(resultCommands(3, "Device/RouterEnbl", 0), device().commands());
}

TEST_F(DocumentRun, FailedRun_KeepsTheSyncIdsOfTheLastOne) {
    zepXmlData.exeflag = 5;
    zepXmlData.exeWaitSec = 40;
    run(deviceElement().set("DeviceName", std::string(33, 'n')));
    EXPECT_EQ(5, zepXmlData.exeflag);
    EXPECT_EQ(40, zepXmlData.exeWaitSec);
}

// ---- What a run keeps ----

TEST_F(DocumentRun, ValuesThatNobodyGives_StayInTheRecord) {
    std::strcpy(zepXmlData.device.upLink.LoginUserName, "old");
    std::strcpy(zepXmlData.device.upLink.IP, "10.9.8.7");
    zepXmlData.device.upLink.MTU = 1234;
    EXPECT_EQ(1, run(deviceElement()));
    EXPECT_STREQ("old", zepXmlData.device.upLink.LoginUserName);
    EXPECT_STREQ("10.9.8.7", zepXmlData.device.upLink.IP);
    EXPECT_EQ(1234, zepXmlData.device.upLink.MTU);
}

// ---- Access-point cloning ----

TEST_F(DocumentRun, EntryPoints_SetTheCloningMode) {
    zepXmlData.apCloningOnly = 1;
    run(deviceElement());
    EXPECT_EQ(0, zepXmlData.apCloningOnly);
    runCloning(deviceElement());
    EXPECT_EQ(1, zepXmlData.apCloningOnly);
    Buffer again(documentText(deviceElement()));
    do_ZepXml_Parser_(again.text()); // the mode of the last entry point
    EXPECT_EQ(1, zepXmlData.apCloningOnly);
    zepXmlData.apCloningOnly = 0;
    Buffer plain(documentText(deviceElement()));
    do_ZepXml_Parser_(plain.text());
    EXPECT_EQ(0, zepXmlData.apCloningOnly);
}

TEST_F(DocumentRun, CloningDocument_ChangesRadiosAndRoamingOnly) {
    Element cloning("Device", {{"DeviceName", "Attic"}, {"EasyRoaming", "-70 1"}});
    cloning.add(radioElement("2.4").set("WirelessName", "Cloned")).add(radioElement("5")).add(safetyElement());
    EXPECT_EQ(1, runCloning(cloning.set(safetyElement().set("SafetyWdnEnbl", "1"))));
    EXPECT_EQ((Events{"set /bramble/easyroaminginfo=-70 1", "set /lan/wireless2.4:1/wirelessname=Cloned",
                      "set /sys/factorydefault=0"}),
              device().treeWrites());
    EXPECT_EQ(resultCommands(0, "", 25), device().commands());
}

// ---- Hostile documents ----

TEST_F(DocumentRun, NullDocument_GivesZeroAndLeavesNoTrace) {
    daemon_log_level = 7;
    EXPECT_EQ(0, do_ZepXml_Parser(nullptr));
    EXPECT_EQ(0, do_ZepXml_Parser_for_ApCloning(nullptr));
    EXPECT_EQ(0, do_ZepXml_Parser_(nullptr));
    EXPECT_EQ("", logText());
    EXPECT_EQ(Events{}, device().events);
    EXPECT_EQ(Lines{}, device().reads);
}

TEST_F(DocumentRun, MebibyteInOneLeaf_IsCutAndJudged) {
    expectRefused(documentText(deviceElement().set("DeviceName", std::string(1 << 20, 'n'))), 10, "Device/DeviceName");
    EXPECT_EQ(std::string(127, 'n'), text(zepXmlData.device.DeviceName));
}

TEST_F(DocumentRun, MebibyteBehindTheRoot_IsNotSeen) {
    EXPECT_EQ(1, runText(documentText(deviceElement()) + std::string(1 << 20, '<')));
}

TEST_F(DocumentRun, MebibyteOfJunk_HasNoRoot) {
    EXPECT_EQ(0, runText(std::string(1 << 20, '<')));
    EXPECT_EQ(Lines{}, device().commands());
}

TEST_F(DocumentRun, EveryPrefixOfADocument_IsTakenOrRefused) {
    const std::string whole = documentText(deviceElement().set("DeviceName", "Attic"));
    const size_t end = whole.find("</root>") + 7;
    for (size_t length = 0; length <= whole.size(); length++) {
        const int32_t result = runText(whole.substr(0, length));
        ASSERT_EQ(length >= end ? 1 : 0, result) << length;
    }
}

TEST_F(DocumentRun, NodesOf1023Bytes_CrashNothing) {
    for (auto& [path, value] : device().tree)
        if (path.find("wlenbl") == std::string::npos && path.find("specversion") == std::string::npos)
            value = std::string(1023, '1');
    run(deviceElement());
    EXPECT_EQ(std::string(127, '1'), text(zepXmlData.tmpPath));
    for (const std::string& command : device().commands())
        EXPECT_GE(127u, command.size());
}

} // namespace
