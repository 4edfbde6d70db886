// The elements below the uplink: the internet provider and the site of an extender.
#include "parser_test.h"

using namespace pendra;
using namespace pendra::test;

namespace {

// ---- Internet provider ----

class IspParser : public ParserTest {
  protected:
    ZepIsp& dsl = zepXmlData.device.upLink.dsl;

    static void setHardware(int32_t index) { zepXmlData.device.upLink.hardwareTypeIdx = index; }
    static int32_t parse(const Element& element) {
        Buffer buffer(element.text());
        ZepIsp& isp = element.tag() == "APN" ? zepXmlData.device.upLink.apn : zepXmlData.device.upLink.dsl;
        return do_ZepISP_Parser("Device/UpLinkConnection", buffer.text(), buffer.length(), &isp, element.tag().c_str());
    }
};

TEST_F(IspParser, LaterGenerations_NeedCountryAndProvider) {
    for (const int32_t hardware : {1, 2, 4, 5}) {
        SCOPED_TRACE(hardware);
        setHardware(hardware);
        expectRequiredLeaves(ispElement("DSL"), {"CountryName", "IspName"}, "Device/UpLinkConnection/DSL", parse);
        expectRequiredLeaves(ispElement("APN"), {"CountryName", "IspName"}, "Device/UpLinkConnection/APN", parse);
    }
    EXPECT_STREQ("Germany", dsl.CountryName);
    EXPECT_STREQ("Provider", dsl.IspName);
    EXPECT_STREQ("Provider", zepXmlData.device.upLink.apn.IspName);
}

TEST_F(IspParser, LaterGenerations_DoNotReadTheLine) {
    setHardware(5);
    dsl.encapModeIdx = 77;
    EXPECT_EQ(1, parse(dslLineElement().add("CountryName", "c").add("IspName", "i")));
    EXPECT_EQ(0, dsl.VPI);
    EXPECT_EQ(0, dsl.VCI);
    EXPECT_STREQ("", dsl.EncapsulationMode);
    EXPECT_EQ(77, dsl.encapModeIdx);
}

TEST_F(IspParser, FirstGenerationDsl_NeedsTheLine) {
    setVersion(100);
    setHardware(5);
    expectRequiredLeaves(dslLineElement(), {"VPI", "VCI", "EncapsulationMode"}, "Device/UpLinkConnection/DSL", parse);
    EXPECT_EQ(8, dsl.VPI);
    EXPECT_EQ(35, dsl.VCI);
    EXPECT_STREQ("LLC", dsl.EncapsulationMode);
    EXPECT_EQ(0, dsl.encapModeIdx);
    EXPECT_STREQ("", dsl.CountryName);
}

TEST_F(IspParser, FirstGenerationOfOtherHardware_NeedsNoLeaves) {
    setVersion(100);
    for (const int32_t hardware : {-1, 0, 1, 2, 3, 4, 6}) {
        SCOPED_TRACE(hardware);
        setHardware(hardware);
        EXPECT_EQ(1, parse(Element("DSL", {})));
        EXPECT_EQ(1, parse(dslLineElement().add("CountryName", "c").add("IspName", "i")));
        EXPECT_EQ(0, dsl.VPI);
        EXPECT_STREQ("", dsl.CountryName);
    }
    EXPECT_STREQ("Device/UpLinkConnection/DSL", dsl.path);
    EXPECT_EQ(LostKeys{}, lostKeys());
}

TEST_F(IspParser, EncapsulationMode_IsTrimmedAndMapped) {
    setVersion(100);
    setHardware(5);
    struct Row {
        const char* text;
        const char* stored;
        int32_t index;
    };
    for (const Row& row : {Row{"LLC", "LLC", 0}, Row{" vcmux\t", "VcMux", 1}, Row{"PPP", "PPP", -1}, Row{"", "", -1}}) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(1, parse(dslLineElement().set("EncapsulationMode", row.text)));
        EXPECT_STREQ(row.stored, dsl.EncapsulationMode);
        EXPECT_EQ(row.index, dsl.encapModeIdx);
    }
}

TEST_F(IspParser, MissingElement_IsReportedByItsNameAlone) {
    Buffer empty("<Other/>");
    EXPECT_EQ(0, do_ZepISP_Parser("Device/UpLinkConnection", empty.text(), -1, &dsl, "DSL"));
    EXPECT_EQ((LostKeys{{"(null)", "DSL"}}), lostKeys());
    EXPECT_STREQ("", dsl.path);
}

TEST_F(IspParser, Texts_AreCutToTheirCapacities) {
    expectCapacities(ispElement("DSL"), {{"CountryName", 128, dsl.CountryName}, {"IspName", 128, dsl.IspName}}, parse);
    setVersion(100);
    setHardware(5);
    expectCapacities(dslLineElement(), {{"EncapsulationMode", 128, dsl.EncapsulationMode}}, parse);
}

TEST_F(IspParser, Level7_ShowsParserAndMapping) {
    setVersion(100);
    setHardware(5);
    daemon_log_level = 6;
    parse(dslLineElement());
    EXPECT_EQ("", logText());
    daemon_log_level = 7;
    parse(dslLineElement().set("EncapsulationMode", "vcMUX"));
    EXPECT_EQ((std::vector<std::string>{"1000:do_ZepISP_Parser]Device/UpLinkConnection", "1000:prepareXmlBlockData]",
                                        "Zep EncapsulationMode='VcMux' -> 1"}),
              logLines());
}

// ---- Site of an extender ----

class ExtenderParser : public ParserTest {
  protected:
    ZepExtenderSite& site = zepXmlData.device.upLink.extenderSite;

    static int32_t parse(const Element& element) {
        Buffer buffer(element.text());
        return do_ZepExtender_Parser("Device/UpLinkConnection", buffer.text(), buffer.length(),
                                     &zepXmlData.device.upLink.extenderSite, "ExtenderSite");
    }
};

TEST_F(ExtenderParser, AllFiveLeaves_AreRequiredInEveryGeneration) {
    for (const int32_t version : {100, 101}) {
        setVersion(version);
        expectRequiredLeaves(extenderElement(),
                             {"Survey", "ConnRefSiteBSSID", "WirelessType", "WirelessName", "EncryptionKey"},
                             "Device/UpLinkConnection/ExtenderSite", parse);
    }
}

TEST_F(ExtenderParser, Leaves_AreStored) {
    EXPECT_EQ(1, parse(extenderElement().set("Survey", "1")));
    EXPECT_EQ(1, site.Survey);
    EXPECT_STREQ("00:aa:bb:cc:dd:ee", site.ConnRefSiteBSSID);
    EXPECT_STREQ("5", site.WirelessType);
    EXPECT_EQ(1, site.wirelessTypeIdx);
    EXPECT_STREQ("Upstairs", site.WirelessName);
    EXPECT_STREQ("12345678", site.EncryptionKey);
    EXPECT_STREQ("Device/UpLinkConnection/ExtenderSite", site.path);
}

TEST_F(ExtenderParser, WirelessType_IsTrimmedAndMapped) {
    struct Row {
        const char* text;
        const char* stored;
        int32_t index;
    };
    for (const Row& row : {Row{" 2.4 ", "2.4", 0}, Row{"5", "5", 1}, Row{"6", "6", -1}, Row{"", "", -1}}) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(1, parse(extenderElement().set("WirelessType", row.text)));
        EXPECT_STREQ(row.stored, site.WirelessType);
        EXPECT_EQ(row.index, site.wirelessTypeIdx);
    }
}

// Name and key are read with 18 bytes although their fields hold 128.
TEST_F(ExtenderParser, Texts_AreCutToTheirCapacities) {
    expectCapacities(extenderElement(),
                     {{"ConnRefSiteBSSID", 18, site.ConnRefSiteBSSID},
                      {"WirelessType", 32, site.WirelessType},
                      {"WirelessName", 18, site.WirelessName},
                      {"EncryptionKey", 18, site.EncryptionKey}},
                     parse);
}

TEST_F(ExtenderParser, NameOf20Characters_KeepsItsFirst17) {
    EXPECT_EQ(1, parse(extenderElement().set("WirelessName", "abcdefghijklmnopqrst")));
    EXPECT_STREQ("abcdefghijklmnopq", site.WirelessName);
}

TEST_F(ExtenderParser, MissingLeaf_LeavesWhatWasReadBefore) {
    EXPECT_EQ(0, parse(extenderElement().set("Survey", "1").drop("WirelessName")));
    EXPECT_EQ(1, site.Survey);
    EXPECT_STREQ("5", site.WirelessType);
    EXPECT_STREQ("", site.EncryptionKey);
}

TEST_F(ExtenderParser, MissingElement_IsReportedByItsNameAlone) {
    EXPECT_EQ(0, parse(Element("Other", {})));
    EXPECT_EQ((LostKeys{{"(null)", "ExtenderSite"}}), lostKeys());
}

TEST_F(ExtenderParser, Level7_ShowsParserAndMapping) {
    daemon_log_level = 6;
    parse(extenderElement());
    EXPECT_EQ("", logText());
    daemon_log_level = 7;
    parse(extenderElement());
    EXPECT_EQ((std::vector<std::string>{"1000:do_ZepExtender_Parser]Device/UpLinkConnection",
                                        "1000:prepareXmlBlockData]", "Zep WirelessType='5' -> 1"}),
              logLines());
}

} // namespace
