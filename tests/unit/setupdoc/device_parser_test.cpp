#include "parser_test.h"

using namespace pendra;
using namespace pendra::test;

namespace {

class DeviceParser : public ParserTest {
  protected:
    ZepDevice& device = zepXmlData.device;

    static int32_t parse(const Element& element) { return parseText(element.text()); }
    static int32_t parseText(const std::string& text) {
        Buffer buffer(text);
        return do_ZepDevice_Parser("", buffer.text(), buffer.length(), &zepXmlData.device, "Device");
    }
    static Element firstGeneration() {
        setVersion(100);
        return firstGenerationDevice();
    }
    static void setCloning() { zepXmlData.apCloningOnly = 1; }
};

// ---- Gates ----

TEST_F(DeviceParser, ClosedByTheDevice_IsNotLookedAt) {
    device.Configurable = 0;
    daemon_log_level = 7;
    for (const bool cloning : {false, true}) {
        zepXmlData.apCloningOnly = cloning ? 1 : 0;
        const ZepXmlData before = zepXmlData;
        EXPECT_EQ(1, parse(deviceElement()));
        EXPECT_EQ(1, parseText(""));
        EXPECT_TRUE(sameOutside(before, zepXmlData, 0, 0));
    }
    EXPECT_EQ(LostKeys{}, lostKeys());
    EXPECT_EQ("", logText());
}

TEST_F(DeviceParser, MissingElement_IsReportedByItsNameAlone) {
    EXPECT_EQ(0, parseText("<Other></Other>"));
    EXPECT_EQ((LostKeys{{"(null)", "Device"}}), lostKeys());
    EXPECT_STREQ("", device.path);
}

TEST_F(DeviceParser, ClosedByTheDocument_SkipsEverything) {
    EXPECT_EQ(1, parse(deviceElement().putFirst("Configurable", "0")));
    EXPECT_EQ(0, device.Configurable);
    EXPECT_STREQ("Device", device.path);
    EXPECT_STREQ("", device.DeviceName);
    EXPECT_STREQ("", device.EasyRoaming);
    EXPECT_STREQ("", device.upLink.path);
    EXPECT_STREQ("", device.wireless[0].path);
    EXPECT_STREQ("", device.wireless[1].path);
    EXPECT_STREQ("", device.safetyWdn.path);
    EXPECT_EQ(LostKeys{}, lostKeys());
}

TEST_F(DeviceParser, EmptyDeviceThatIsClosed_Succeeds) {
    EXPECT_EQ(1, parse(Element("Device", {{"Configurable", "0"}})));
}

TEST_F(DeviceParser, OpenInTheDocument_IsRead) {
    EXPECT_EQ(1, parse(deviceElement().putFirst("Configurable", "1")));
    EXPECT_STREQ("Router", device.DeviceName);
}

// The search ignores nesting: without a leaf of its own, the device takes that of a section.
TEST_F(DeviceParser, ConfigurableOfASection_ClosesADeviceWithoutItsOwn) {
    EXPECT_EQ(1, parse(deviceElement().set(upLinkElement().putFirst("Configurable", "0"))));
    EXPECT_EQ(0, device.Configurable);
    EXPECT_EQ(1, device.upLink.Configurable);
    EXPECT_STREQ("", device.DeviceName);
    EXPECT_STREQ("", device.wireless[0].WirelessName);
}

TEST_F(DeviceParser, ConfigurableOfASection_ClosesOnlyItselfBesideTheDevicesOwn) {
    Element closedUpLink = upLinkElement().putFirst("Configurable", "0");
    EXPECT_EQ(1, parse(deviceElement().set(closedUpLink).putFirst("Configurable", "1")));
    EXPECT_EQ(1, device.Configurable);
    EXPECT_EQ(0, device.upLink.Configurable);
    EXPECT_STREQ("Router", device.DeviceName);
    EXPECT_STREQ("", device.upLink.HardwareType);
    EXPECT_STREQ("Home5", device.wireless[1].WirelessName);
}

TEST_F(DeviceParser, SectionClosedByTheDevice_NeedNotBeThere) {
    device.upLink.Configurable = device.wireless[0].Configurable = 0;
    EXPECT_EQ(1, parse(deviceElement().drop("UpLinkConnection").drop("Wireless2.4")));
    EXPECT_STREQ("Home5", device.wireless[1].WirelessName);
}

// ---- Leaves and sections ----

TEST_F(DeviceParser, LaterGenerations_NeedTheseLeavesAndSections) {
    expectRequiredLeaves(deviceElement(), {"DeviceName", "DevicePwd", "RouterEnbl", "EasyRoaming"}, "Device", parse);
    expectRequiredBlocks(deviceElement(), {"UpLinkConnection", "Wireless2.4", "Wireless5", "SafetyWdn"}, parse);
}

TEST_F(DeviceParser, FirstGeneration_NeedsTheseLeavesAndSections) {
    expectRequiredLeaves(firstGeneration(), {"DeviceName", "DevicePwd", "RouterEnbl", "ExtenderEnbl"}, "Device", parse);
    expectRequiredBlocks(firstGeneration(), {"UpLinkConnection", "Wireless2.4", "Wireless5", "SafetyWdn"}, parse);
}

TEST_F(DeviceParser, Leaves_AreStored) {
    EXPECT_EQ(1, parse(deviceElement().set("DeviceName", " My &amp; Box").set("RouterEnbl", "3")));
    EXPECT_STREQ(" My & Box", device.DeviceName);
    EXPECT_STREQ("secret", device.DevicePwd);
    EXPECT_EQ(3, device.RouterEnbl);
    EXPECT_STREQ("-75 2 10 3", device.EasyRoaming);
    EXPECT_STREQ("Device", device.path);
    EXPECT_STREQ("Device/UpLinkConnection", device.upLink.path);
    EXPECT_STREQ("Ethernet", device.upLink.HardwareType);
    EXPECT_STREQ("Device/Wireless2.4", device.wireless[0].path);
    EXPECT_STREQ("Home2.4", device.wireless[0].WirelessName);
    EXPECT_STREQ("Device/Wireless5", device.wireless[1].path);
    EXPECT_STREQ("Home5", device.wireless[1].WirelessName);
    EXPECT_STREQ("Device/SafetyWdn", device.safetyWdn.path);
}

TEST_F(DeviceParser, Texts_AreCutToTheirCapacities) {
    expectCapacities(deviceElement(),
                     {{"DeviceName", 128, device.DeviceName},
                      {"DevicePwd", 128, device.DevicePwd},
                      {"EasyRoaming", 128, device.EasyRoaming}},
                     parse);
}

TEST_F(DeviceParser, LongParentPath_CutsTheDevicePathAt31Characters) {
    const std::string parent(28, 'p');
    Buffer buffer(deviceElement().text());
    EXPECT_EQ(1, do_ZepDevice_Parser(parent.c_str(), buffer.text(), -1, &device, "Device"));
    EXPECT_EQ(parent + "/De", text(device.path));
    EXPECT_EQ(0, device.deviceChanged); // right behind the path
    EXPECT_EQ(parent + "/De/SafetyWdn", device.safetyWdn.path);
}

TEST_F(DeviceParser, MissInASection_StopsTheParser) {
    EXPECT_EQ(0, parse(deviceElement().set(radioElement("2.4").without("Channel"))));
    EXPECT_EQ((LostKeys{{"Device/Wireless2.4", "Channel"}}), lostKeys());
    EXPECT_STREQ("Router", device.DeviceName);
    EXPECT_STREQ("-75 2 10 3", device.EasyRoaming);
    EXPECT_STREQ("", device.wireless[1].path);
    EXPECT_STREQ("", device.safetyWdn.path);
}

TEST_F(DeviceParser, MissInTheUpLink_StopsTheParserBeforeRoaming) {
    EXPECT_EQ(0, parse(deviceElement().set(upLinkElement().without("ConnType"))));
    EXPECT_EQ((LostKeys{{"Device/UpLinkConnection", "ConnType"}}), lostKeys());
    EXPECT_STREQ("Router", device.DeviceName);
    EXPECT_STREQ("", device.EasyRoaming);
}

TEST_F(DeviceParser, EmptyBlock_TakesItsLeavesFromWhatFollows) {
    Element emptyUpLink("UpLinkConnection", {});
    EXPECT_EQ(1, parseText(deviceElement().set(emptyUpLink).text() + upLinkElement().set("ConnType", "Bogus").text()));
    EXPECT_STREQ("Bogus", device.upLink.ConnType);
}

// ---- Features ----

TEST_F(DeviceParser, FeatureThatIsOff_IsNotLookedAtEvenIfPresent) {
    zepXmlData.easyRoamingFeature = zepXmlData.safetyWdnFeature = 0;
    zepXmlData.wlan24Feature = zepXmlData.wlan5Feature = 0;
    EXPECT_EQ(1, parse(deviceElement().set("SafetyWdn", "").set("Wireless5", "").set("Wireless2.4", "")));
    EXPECT_STREQ("", device.EasyRoaming);
    EXPECT_STREQ("", device.wireless[0].path);
    EXPECT_STREQ("", device.wireless[1].path);
    EXPECT_STREQ("", device.safetyWdn.path);
    EXPECT_EQ(LostKeys{}, lostKeys());
}

TEST_F(DeviceParser, EachFeatureThatIsOff_MakesItsPartOptional) {
    struct Row {
        int8_t* feature;
        const char* tag;
    };
    for (const Row& row :
         {Row{&zepXmlData.easyRoamingFeature, "EasyRoaming"}, Row{&zepXmlData.wlan24Feature, "Wireless2.4"},
          Row{&zepXmlData.wlan5Feature, "Wireless5"}, Row{&zepXmlData.safetyWdnFeature, "SafetyWdn"}}) {
        SCOPED_TRACE(row.tag);
        *row.feature = 0;
        EXPECT_EQ(1, parse(deviceElement().drop(row.tag)));
        *row.feature = 1;
        EXPECT_EQ(0, parse(deviceElement().drop(row.tag)));
    }
}

TEST_F(DeviceParser, EveryGenerationButTheFirst_ReadsRoamingAndNoExtender) {
    for (const int32_t version : {0, 99, 101, 200}) {
        setVersion(version);
        device.EasyRoaming[0] = '\0';
        EXPECT_EQ(1, parse(deviceElement().set("ExtenderEnbl", "1")));
        EXPECT_STREQ("-75 2 10 3", device.EasyRoaming);
        EXPECT_EQ(0, device.ExtenderEnbl);
    }
}

TEST_F(DeviceParser, FirstGeneration_DoesNotReadRoaming) {
    EXPECT_EQ(1, parse(firstGeneration().add("EasyRoaming", "text")));
    EXPECT_STREQ("", device.EasyRoaming);
}

// ---- First-generation extenders ----

TEST_F(DeviceParser, FirstGenerationExtenderOnEthernet_NeedsItsSite) {
    for (const char* enabled : {"1", "3"}) {
        SCOPED_TRACE(enabled);
        const Element extender = firstGeneration().set("ExtenderEnbl", enabled).add(extenderElement());
        expectRequiredBlocks(extender, {"ExtenderSite"}, parse);
        EXPECT_STREQ("Device/ExtenderSite", device.upLink.extenderSite.path);
        EXPECT_STREQ("Upstairs", device.upLink.extenderSite.WirelessName);
        forgetLostKeys();
        EXPECT_EQ(0, parse(Element(extender).set(extenderElement().without("Survey"))));
        EXPECT_EQ((LostKeys{{"Device/ExtenderSite", "Survey"}}), lostKeys());
    }
}

TEST_F(DeviceParser, FirstGenerationWithoutExtender_DoesNotReadASite) {
    for (const char* enabled : {"0", "2", "4", "-1"}) {
        SCOPED_TRACE(enabled);
        EXPECT_EQ(1, parse(firstGeneration().set("ExtenderEnbl", enabled).add(extenderElement())));
        EXPECT_EQ(std::atoi(enabled), device.ExtenderEnbl);
        EXPECT_STREQ("", device.upLink.extenderSite.path);
    }
}

TEST_F(DeviceParser, FirstGenerationExtenderOnOtherHardware_DoesNotReadTheDevicesSite) {
    for (const char* hardware : {"ADSL", "VDSL", "WWanAPN", "LTE"}) {
        SCOPED_TRACE(hardware);
        Element upLink = upLinkElement().set("HardwareType", hardware).add("MTU", "1492");
        upLink.add(Element("DSL", {})).add(Element("APN", {}));
        EXPECT_EQ(1, parse(firstGeneration().set(upLink).set("ExtenderEnbl", "1").add(extenderElement())));
        EXPECT_STREQ("", device.upLink.extenderSite.path);
    }
}

// ---- Access-point cloning ----

TEST_F(DeviceParser, Cloning_SkipsDeviceAndUpLink) {
    setCloning();
    EXPECT_EQ(1, parse(deviceElement()));
    EXPECT_STREQ("", device.DeviceName);
    EXPECT_STREQ("", device.DevicePwd);
    EXPECT_EQ(0, device.RouterEnbl);
    EXPECT_STREQ("", device.upLink.path);
    EXPECT_STREQ("-75 2 10 3", device.EasyRoaming);
    EXPECT_STREQ("Home2.4", device.wireless[0].WirelessName);
    EXPECT_STREQ("Home5", device.wireless[1].WirelessName);
    EXPECT_STREQ("Device/SafetyWdn", device.safetyWdn.path);
}

TEST_F(DeviceParser, CloningWithoutSkippedParts_Succeeds) {
    setCloning();
    Element cloning("Device", {});
    cloning.add(radioElement("2.4")).add(radioElement("5")).add(safetyElement());
    std::strcpy(device.EasyRoaming, "old");
    EXPECT_EQ(1, parse(cloning));
    EXPECT_EQ(LostKeys{}, lostKeys());
    EXPECT_STREQ("", device.EasyRoaming); // a missing text leaves the field empty
    expectRequiredBlocks(cloning, {"Wireless2.4", "Wireless5", "SafetyWdn"}, parse);
}

TEST_F(DeviceParser, CloningOfTheFirstGeneration_SkipsTheExtender) {
    setVersion(100);
    setCloning();
    std::strcpy(device.EasyRoaming, "old");
    EXPECT_EQ(1, parse(firstGeneration().set("ExtenderEnbl", "1").drop("DeviceName")));
    EXPECT_EQ(0, device.ExtenderEnbl);
    EXPECT_STREQ("old", device.EasyRoaming);
    EXPECT_EQ(LostKeys{}, lostKeys());
}

TEST_F(DeviceParser, ConfigurableOfACloningDocument_IsNotLookedAt) {
    setCloning();
    EXPECT_EQ(1, parse(deviceElement().putFirst("Configurable", "0")));
    EXPECT_EQ(1, device.Configurable);
    EXPECT_STREQ("Home2.4", device.wireless[0].WirelessName);
}

TEST_F(DeviceParser, CloningWithoutDevice_IsReported) {
    setCloning();
    EXPECT_EQ(0, parseText("<Other/>"));
    EXPECT_EQ((LostKeys{{"(null)", "Device"}}), lostKeys());
}

// ---- Traces ----

TEST_F(DeviceParser, Level7_ShowsEachParserInOrder) {
    daemon_log_level = 7;
    zepXmlData.wlan24Feature = 0;
    EXPECT_EQ(1, parse(deviceElement()));
    EXPECT_EQ((std::vector<std::string>{
                  "1000:do_ZepDevice_Parser]",
                  "1000:prepareXmlBlockData]",
                  "Zep RouterEnbl=1",
                  "1000:do_ZepUpLink_Parser]Device",
                  "1000:prepareXmlBlockData]",
                  "Zep HardwareType='Ethernet' -> 0",
                  "Zep ConnType='DHCP' -> 0",
                  "1000:do_ZepWireless_Parser]Device",
                  "1000:prepareXmlBlockData]",
                  "Zep EncryptionMode='WPA2' -> 4",
                  "Zep EncryptionType='AES' -> 4",
                  "1000:do_ZepAccessCtl_Parser]Device/Wireless5",
                  "1000:prepareXmlBlockData]",
                  "WlAcRuleNo=0",
                  "1000:do_ZepSafetyWdn_Parser]Device",
                  "1000:prepareXmlBlockData]",
              }),
              logLines());
}

TEST_F(DeviceParser, Level7_ShowsTheExtenderOfTheFirstGeneration) {
    daemon_log_level = 7;
    zepXmlData.wlan24Feature = zepXmlData.wlan5Feature = zepXmlData.safetyWdnFeature = 0;
    EXPECT_EQ(1, parse(firstGeneration().set("ExtenderEnbl", "3").add(extenderElement())));
    const std::vector<std::string> lines = logLines();
    ASSERT_EQ(11u, lines.size());
    EXPECT_EQ("Zep ExtenderEnbl=3", lines[7]);
    EXPECT_EQ("1000:do_ZepExtender_Parser]Device", lines[8]);
    EXPECT_EQ("1000:prepareXmlBlockData]", lines[9]);
    EXPECT_EQ("Zep WirelessType='5' -> 1", lines[10]);
}

TEST_F(DeviceParser, Level6_LogsNothing) {
    daemon_log_level = 6;
    EXPECT_EQ(1, parse(deviceElement()));
    EXPECT_EQ("", logText());
}

TEST_F(DeviceParser, NullParentPath_IsTakenAsNone) {
    daemon_log_level = 7;
    Buffer buffer(deviceElement().text());
    EXPECT_EQ(1, do_ZepDevice_Parser(nullptr, buffer.text(), -1, &device, "Device"));
    EXPECT_STREQ("Device", device.path);
    EXPECT_EQ("1000:do_ZepDevice_Parser]", logLines().front());
}

} // namespace
