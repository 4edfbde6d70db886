#include "parser_test.h"

using namespace pendra;
using namespace pendra::test;

namespace {

constexpr const char* kPath = "Device/UpLinkConnection";

class UpLinkParser : public ParserTest {
  protected:
    ZepUpLink& upLink = zepXmlData.device.upLink;

    static int32_t parse(const Element& element) { return parseText(element.text()); }
    static int32_t parseText(const std::string& text) {
        Buffer buffer(text);
        return do_ZepUpLink_Parser("Device", buffer.text(), buffer.length(), &zepXmlData.device.upLink,
                                   "UpLinkConnection");
    }

    // An uplink of these types with every leaf and child that any type needs.
    static Element complete(const std::string& hardware, const std::string& connection) {
        Element element("UpLinkConnection", {{"HardwareType", hardware}, {"ConnType", connection}, {"MTU", "1400"}});
        element.add("LoginUserName", "user").add("LoginPassword", "pass");
        element.add("IP", "10.0.0.2").add("NetMask", "255.255.255.0").add("Gateway", "10.0.0.1").add("DNS", "9.9.9.9");
        return element.add(ispElement("DSL")).add(ispElement("APN")).add(extenderElement());
    }
};

// ---- Gates ----

TEST_F(UpLinkParser, ClosedByTheDevice_IsNotLookedAt) {
    upLink.Configurable = 0;
    daemon_log_level = 7;
    const ZepXmlData before = zepXmlData;
    EXPECT_EQ(1, parse(complete("ADSL", "PPPoE")));
    EXPECT_EQ(1, parseText(""));
    EXPECT_TRUE(sameOutside(before, zepXmlData, 0, 0));
    EXPECT_EQ(LostKeys{}, lostKeys());
    EXPECT_EQ("", logText());
}

TEST_F(UpLinkParser, MissingElement_IsReportedByItsNameAlone) {
    const ZepXmlData before = zepXmlData;
    EXPECT_EQ(0, parseText("<Other></Other>"));
    EXPECT_EQ((LostKeys{{"(null)", "UpLinkConnection"}}), lostKeys());
    EXPECT_TRUE(sameOutside(before, zepXmlData, 0, 0));
}

TEST_F(UpLinkParser, ClosedByTheDocument_KeepsWhatTheDeviceHas) {
    for (const char* zero : {"0", " 0 ", "000", "no", ""}) {
        SCOPED_TRACE(zero);
        upLink = {};
        upLink.Configurable = 1;
        EXPECT_EQ(1, parse(complete("ADSL", "PPPoE").putFirst("Configurable", zero)));
        EXPECT_STREQ(kPath, upLink.path);
        EXPECT_EQ(0, upLink.Configurable); // so that verification and application leave it alone too
        EXPECT_STREQ("", upLink.HardwareType);
        EXPECT_STREQ("", upLink.LoginUserName);
        EXPECT_STREQ("", upLink.dsl.path);
    }
    EXPECT_EQ(LostKeys{}, lostKeys());
}

TEST_F(UpLinkParser, SelfClosingConfigurable_CountsAsZero) {
    EXPECT_EQ(1, parseText("<UpLinkConnection><Configurable/></UpLinkConnection>"));
    EXPECT_EQ(LostKeys{}, lostKeys());
}

TEST_F(UpLinkParser, OpenInTheDocument_IsRead) {
    EXPECT_EQ(1, parse(upLinkElement().putFirst("Configurable", "1")));
    EXPECT_STREQ("Ethernet", upLink.HardwareType);
    EXPECT_EQ(1, upLink.Configurable);
}

TEST_F(UpLinkParser, WithoutConfigurable_IsReadAndNothingIsReported) {
    EXPECT_EQ(1, parse(upLinkElement()));
    EXPECT_STREQ("Ethernet", upLink.HardwareType);
    EXPECT_STREQ(kPath, upLink.path);
    EXPECT_EQ(LostKeys{}, lostKeys());
}

// ---- Hardware types ----

struct HardwareRow {
    const char* text;
    const char* stored;
    int32_t index;
    const char* child; // the element that this type needs, null for none
};

constexpr HardwareRow kHardwareRows[] = {
    {"Ethernet", "Ethernet", 0, nullptr},
    {"ADSL", "ADSL", 1, "DSL"},
    {"VDSL", "VDSL", 2, "DSL"},
    {"WWan802.11", "WWan802.11", 3, "ExtenderSite"},
    {"WWanAPN", "WWanAPN", 4, "APN"},
    {"DSL", "DSL", 5, "DSL"},
    {"wwanapn", "WWanAPN", 4, "APN"},
    {" ADSL ", "ADSL", 1, "DSL"},
    {"\t vdsl\t", "VDSL", 2, "DSL"},
    {"ADSL\n", "ADSL\n", -1, nullptr}, // line ends are no blanks
    {"LTE", "LTE", -1, nullptr},
    {" lte ", "lte", -1, nullptr},
    {"", "", -1, nullptr},
};

TEST_F(UpLinkParser, EachHardwareType_IsMappedAndNeedsItsChildOnly) {
    for (const HardwareRow& row : kHardwareRows) {
        SCOPED_TRACE(row.text);
        forgetLostKeys();
        upLink.hardwareTypeIdx = 77;
        const Element whole = complete(row.text, "DHCP");
        EXPECT_EQ(1, parse(whole));
        EXPECT_STREQ(row.stored, upLink.HardwareType);
        EXPECT_EQ(row.index, upLink.hardwareTypeIdx);
        EXPECT_EQ(row.child == nullptr ? 1 : 0, parse(whole.without("DSL").without("APN").without("ExtenderSite")));
        EXPECT_EQ(row.child == nullptr ? LostKeys{} : (LostKeys{{"(null)", row.child}}), lostKeys());
    }
}

TEST_F(UpLinkParser, EachHardwareType_FillsTheSectionOfItsChildOnly) {
    for (const HardwareRow& row : kHardwareRows) {
        SCOPED_TRACE(row.text);
        upLink = {};
        upLink.Configurable = 1;
        EXPECT_EQ(1, parse(complete(row.text, "DHCP")));
        const std::string child = row.child == nullptr ? "" : row.child;
        EXPECT_EQ(child == "DSL" ? "Device/UpLinkConnection/DSL" : "", text(upLink.dsl.path));
        EXPECT_EQ(child == "APN" ? "Device/UpLinkConnection/APN" : "", text(upLink.apn.path));
        EXPECT_EQ(child == "ExtenderSite" ? "Device/UpLinkConnection/ExtenderSite" : "",
                  text(upLink.extenderSite.path));
        EXPECT_EQ(child == "DSL" ? "Provider" : "", text(upLink.dsl.IspName));
        EXPECT_EQ(child == "APN" ? "Provider" : "", text(upLink.apn.IspName));
        EXPECT_EQ(child == "ExtenderSite" ? "Upstairs" : "", text(upLink.extenderSite.WirelessName));
    }
}

TEST_F(UpLinkParser, FailingChild_FailsTheUpLink) {
    EXPECT_EQ(0, parse(complete("VDSL", "DHCP").set(ispElement("DSL").without("IspName"))));
    EXPECT_EQ((LostKeys{{"Device/UpLinkConnection/DSL", "IspName"}}), lostKeys());
    EXPECT_STREQ("Germany", upLink.dsl.CountryName);
}

// ---- Connection types ----

struct ConnectionRow {
    const char* text;
    const char* stored;
    int32_t index;
    std::vector<const char*> leaves;
};

const std::vector<ConnectionRow>& connectionRows() {
    static const std::vector<const char*> login = {"LoginUserName", "LoginPassword"};
    static const std::vector<ConnectionRow> rows = {
        {"DHCP", "DHCP", 0, {}},      {"Static", "Static", 1, {"IP", "NetMask", "Gateway", "DNS"}},
        {"PPPoE", "PPPoE", 2, login}, {"PPPoA", "PPPoA", 3, login},
        {"pppoe", "PPPoE", 2, login}, {" STATIC\t", "Static", 1, {"IP", "NetMask", "Gateway", "DNS"}},
        {"bridge", "bridge", -1, {}}, {"", "", -1, {}},
    };
    return rows;
}

TEST_F(UpLinkParser, EachConnectionType_IsMappedAndNeedsItsLeaves) {
    for (const ConnectionRow& row : connectionRows()) {
        SCOPED_TRACE(row.text);
        expectRequiredLeaves(complete("Ethernet", row.text), row.leaves, kPath, parse);
        EXPECT_STREQ(row.stored, upLink.ConnType);
        EXPECT_EQ(row.index, upLink.connTypeIdx);
    }
}

TEST_F(UpLinkParser, EachConnectionType_FillsItsLeavesOnly) {
    for (const ConnectionRow& row : connectionRows()) {
        SCOPED_TRACE(row.text);
        upLink = {};
        upLink.Configurable = 1;
        EXPECT_EQ(1, parse(complete("Ethernet", row.text)));
        const bool login = row.leaves.size() == 2;
        const bool addresses = row.leaves.size() == 4;
        EXPECT_EQ(login ? "user" : "", text(upLink.LoginUserName));
        EXPECT_EQ(login ? "pass" : "", text(upLink.LoginPassword));
        EXPECT_EQ(addresses ? "10.0.0.2" : "", text(upLink.IP));
        EXPECT_EQ(addresses ? "255.255.255.0" : "", text(upLink.NetMask));
        EXPECT_EQ(addresses ? "10.0.0.1" : "", text(upLink.Gateway));
        EXPECT_EQ(addresses ? "9.9.9.9" : "", text(upLink.DNS));
    }
}

TEST_F(UpLinkParser, MissingPassword_LeavesTheUserNameStored) {
    EXPECT_EQ(0, parse(complete("Ethernet", "pppoe").drop("LoginPassword")));
    EXPECT_EQ((LostKeys{{kPath, "LoginPassword"}}), lostKeys());
    EXPECT_STREQ("user", upLink.LoginUserName);
    EXPECT_STREQ("PPPoE", upLink.ConnType);
}

TEST_F(UpLinkParser, TypesOfBothKinds_AreRequired) {
    expectRequiredLeaves(complete("ADSL", "PPPoE"), {"HardwareType", "ConnType"}, kPath, parse);
}

TEST_F(UpLinkParser, FirstGeneration_NeedsTheMtu) {
    setVersion(100);
    expectRequiredLeaves(complete("Ethernet", "PPPoE"), {"HardwareType", "ConnType", "MTU", "LoginUserName"}, kPath,
                         parse);
    EXPECT_EQ(1400, upLink.MTU);
}

TEST_F(UpLinkParser, LaterGenerations_DoNotReadTheMtu) {
    for (const int32_t version : {0, 99, 101, 200}) {
        setVersion(version);
        EXPECT_EQ(1, parse(complete("Ethernet", "DHCP")));
        EXPECT_EQ(1, parse(complete("Ethernet", "DHCP").drop("MTU")));
        EXPECT_EQ(0, upLink.MTU);
    }
}

// ---- Texts ----

TEST_F(UpLinkParser, Texts_AreCutToTheirCapacities) {
    expectCapacities(complete("Ethernet", "PPPoE"),
                     {{"LoginUserName", 128, upLink.LoginUserName}, {"LoginPassword", 128, upLink.LoginPassword}},
                     parse);
    expectCapacities(complete("Ethernet", "Static"),
                     {{"IP", 16, upLink.IP},
                      {"NetMask", 16, upLink.NetMask},
                      {"Gateway", 16, upLink.Gateway},
                      {"DNS", 16, upLink.DNS}},
                     parse);
    expectCapacities(complete("z", "z"), {{"HardwareType", 32, upLink.HardwareType}, {"ConnType", 32, upLink.ConnType}},
                     parse);
}

TEST_F(UpLinkParser, StaleBytesBehindADecodedValue_AreKept) {
    std::strcpy(upLink.LoginUserName, "xxxxxxxxxx");
    EXPECT_EQ(1, parse(complete("Ethernet", "PPPoE").set("LoginUserName", "a&amp;b")));
    EXPECT_STREQ("a&bxxxx", upLink.LoginUserName);
}

TEST_F(UpLinkParser, BlanksOfLogins_AreKept) {
    EXPECT_EQ(1, parse(complete("Ethernet", "PPPoE").set("LoginUserName", " u ").set("LoginPassword", "\tp\t")));
    EXPECT_STREQ(" u ", upLink.LoginUserName);
    EXPECT_STREQ("\tp\t", upLink.LoginPassword);
}

TEST_F(UpLinkParser, LongParentPath_CutsTheBlockPathAt127Characters) {
    const std::string parent(120, 'p');
    Buffer buffer(upLinkElement().text());
    EXPECT_EQ(1, do_ZepUpLink_Parser(parent.c_str(), buffer.text(), -1, &upLink, "UpLinkConnection"));
    EXPECT_EQ(parent + "/UpLink", text(upLink.path));
    EXPECT_EQ(0, upLink.restart); // right behind the path
}

// ---- Traces ----

TEST_F(UpLinkParser, Level7_ShowsParserParentPathAndMappings) {
    daemon_log_level = 7;
    EXPECT_EQ(1, parse(complete(" adsl ", "pppoa")));
    EXPECT_EQ((std::vector<std::string>{
                  "1000:do_ZepUpLink_Parser]Device",
                  "1000:prepareXmlBlockData]",
                  "Zep HardwareType='ADSL' -> 1",
                  "Zep ConnType='PPPoA' -> 3",
                  "1000:do_ZepISP_Parser]Device/UpLinkConnection",
                  "1000:prepareXmlBlockData]",
              }),
              logLines());
}

TEST_F(UpLinkParser, UnknownTypes_AreLoggedAsSent) {
    daemon_log_level = 7;
    EXPECT_EQ(1, parse(complete("LTE", " bridge ")));
    const std::vector<std::string> lines = logLines();
    ASSERT_EQ(4u, lines.size());
    EXPECT_EQ("Zep HardwareType='LTE' -> -1", lines[2]);
    EXPECT_EQ("Zep ConnType='bridge' -> -1", lines[3]);
}

TEST_F(UpLinkParser, Level6_LogsNothing) {
    daemon_log_level = 6;
    EXPECT_EQ(1, parse(complete("ADSL", "PPPoE")));
    EXPECT_EQ(0, parse(complete("ADSL", "PPPoE").drop("ConnType")));
    EXPECT_EQ("", logText());
}

} // namespace
