#include "parser_test.h"

using namespace pendra;
using namespace pendra::test;

namespace {

constexpr const char* kPath = "Device/Wireless2.4";

class WirelessParser : public ParserTest {
  protected:
    ZepWireless& radio = zepXmlData.device.wireless[0];

    static int32_t parse(const Element& element) {
        const int index = element.tag() == "Wireless5" ? 1 : 0;
        return parseText(element.text(), index, element.tag().c_str());
    }
    static int32_t parseText(const std::string& text, int index, const char* element) {
        Buffer buffer(text);
        return do_ZepWireless_Parser("Device", buffer.text(), buffer.length(), &zepXmlData.device.wireless[index],
                                     element);
    }
};

// ---- Gates ----

TEST_F(WirelessParser, ClosedByTheDevice_OnlySetsTheAccessControlPath) {
    for (int index = 0; index < 2; index++) {
        ZepWireless& closed = zepXmlData.device.wireless[index];
        closed.Configurable = 0;
        std::strcpy(closed.path, index == 0 ? "Device/Wireless2.4" : "Device/Wireless5");
        daemon_log_level = 7;
        const ZepXmlData before = zepXmlData;
        EXPECT_EQ(1, parse(radioElement(index == 0 ? "2.4" : "5")));
        EXPECT_EQ(text(closed.path) + "/AccessControl", closed.accessControl.path);
        EXPECT_TRUE(sameOutside(before, zepXmlData, offsetInRecord(closed.accessControl.path), 128));
    }
    EXPECT_EQ(1, parseText("", 0, "Wireless2.4")); // the element need not be there
    EXPECT_EQ(LostKeys{}, lostKeys());
    EXPECT_EQ("", logText());
}

TEST_F(WirelessParser, AccessControlPathOfAClosedRadio_IsCutAt127Characters) {
    radio.Configurable = 0;
    const std::string path(120, 'p');
    std::strcpy(radio.path, path.c_str());
    EXPECT_EQ(1, parseText("", 0, "Wireless2.4"));
    EXPECT_EQ(path + "/Access", text(radio.accessControl.path));
    EXPECT_EQ(0, radio.accessControl.acRuleCount); // right behind the path
}

TEST_F(WirelessParser, ClosedByTheDocument_KeepsWhatTheDeviceHas) {
    EXPECT_EQ(1, parse(radioElement("2.4").putFirst("Configurable", "0")));
    EXPECT_STREQ(kPath, radio.path);
    EXPECT_EQ(0, radio.Configurable);
    EXPECT_STREQ("", radio.WirelessName);
    EXPECT_STREQ("", radio.accessControl.path); // the device's own gate alone sets it
    EXPECT_EQ(LostKeys{}, lostKeys());
}

TEST_F(WirelessParser, OpenInTheDocument_IsRead) {
    EXPECT_EQ(1, parse(radioElement("2.4").putFirst("Configurable", "1")));
    EXPECT_STREQ("Home2.4", radio.WirelessName);
}

TEST_F(WirelessParser, MissingElement_IsReportedByItsNameAlone) {
    EXPECT_EQ(0, parseText(radioElement("5").text(), 0, "Wireless2.4"));
    EXPECT_EQ((LostKeys{{"(null)", "Wireless2.4"}}), lostKeys());
    EXPECT_STREQ("", radio.path);
}

// ---- Leaves ----

TEST_F(WirelessParser, LaterGenerations_NeedEveryLeafAndAccessControl) {
    const std::vector<const char*> leaves = {"WlEnbl",         "WlSchedule",    "WirelessBSSID",  "WirelessName",
                                             "EncryptionMode", "EncryptionKey", "EncryptionType", "Channel"};
    expectRequiredLeaves(radioElement("2.4"), leaves, kPath, parse);
    expectRequiredLeaves(radioElement("5"), leaves, "Device/Wireless5", parse);
    expectRequiredBlocks(radioElement("2.4"), {"AccessControl"}, parse);
}

TEST_F(WirelessParser, FirstGeneration_NeedsFewer) {
    setVersion(100);
    expectRequiredLeaves(firstGenerationRadio("2.4"),
                         {"WlEnbl", "WlSchedule", "WirelessName", "EncryptionMode", "EncryptionKey"}, kPath, parse);
}

TEST_F(WirelessParser, FirstGeneration_DoesNotReadTheLaterLeaves) {
    setVersion(100);
    radio.encrypTypeIdx = 77;
    EXPECT_EQ(1, parse(radioElement("2.4").set(accessElement().set("WlAcEnbl", "1"))));
    EXPECT_STREQ("", radio.WirelessBSSID);
    EXPECT_STREQ("", radio.EncryptionType);
    EXPECT_EQ(77, radio.encrypTypeIdx);
    EXPECT_STREQ("", radio.Channel);
    EXPECT_EQ(0, radio.accessControl.WlAcEnbl);
    EXPECT_STREQ("", radio.accessControl.path);
}

TEST_F(WirelessParser, Leaves_AreStored) {
    EXPECT_EQ(1, parse(radioElement("5").set("WlEnbl", "3").set("WlSchedule", "2").set("Channel", " 36 ")));
    const ZepWireless& second = zepXmlData.device.wireless[1];
    EXPECT_EQ(3, second.WlEnbl);
    EXPECT_EQ(2, second.WlSchedule);
    EXPECT_STREQ("00:11:22:33:44:05", second.WirelessBSSID);
    EXPECT_STREQ("Home5", second.WirelessName);
    EXPECT_STREQ("WPA2", second.EncryptionMode);
    EXPECT_STREQ("AES", second.EncryptionType);
    EXPECT_STREQ("0ldSecret5", second.EncryptionKey);
    EXPECT_STREQ(" 36 ", second.Channel); // trimmed by nobody here
    EXPECT_STREQ("Device/Wireless5", second.path);
    EXPECT_STREQ("Device/Wireless5/AccessControl", second.accessControl.path);
    EXPECT_STREQ("", radio.WirelessName);
}

TEST_F(WirelessParser, MissingLeaf_LeavesWhatWasReadBefore) {
    EXPECT_EQ(0, parse(radioElement("2.4").drop("EncryptionKey")));
    EXPECT_STREQ("Home2.4", radio.WirelessName);
    EXPECT_EQ(4, radio.encrypModeIdx);
    EXPECT_STREQ("", radio.EncryptionType);
    EXPECT_STREQ("", radio.Channel);
}

struct NameRow {
    const char* text;
    const char* stored;
    int32_t index;
};

TEST_F(WirelessParser, EncryptionMode_IsTrimmedAndMapped) {
    for (const NameRow& row : {NameRow{"None", "None", 0}, NameRow{"wep", "WEP", 1}, NameRow{" WPA ", "WPA", 2},
                               NameRow{"wpaWPA2", "WPAWPA2", 3}, NameRow{"\twpa2", "WPA2", 4},
                               NameRow{"WPA3", "WPA3", -1}, NameRow{"", "", -1}}) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(1, parse(radioElement("2.4").set("EncryptionMode", row.text)));
        EXPECT_STREQ(row.stored, radio.EncryptionMode);
        EXPECT_EQ(row.index, radio.encrypModeIdx);
    }
}

TEST_F(WirelessParser, EncryptionType_IsTrimmedAndMapped) {
    for (const NameRow& row : {NameRow{"auto", "AUTO", 0}, NameRow{" OPEN", "OPEN", 1}, NameRow{"Shared ", "SHARED", 2},
                               NameRow{"tkip", "TKIP", 3}, NameRow{"AES", "AES", 4}, NameRow{"", "", 5},
                               NameRow{"_", "_", -1}, NameRow{"CCMP", "CCMP", -1}}) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(1, parse(radioElement("2.4").set("EncryptionType", row.text)));
        EXPECT_STREQ(row.stored, radio.EncryptionType);
        EXPECT_EQ(row.index, radio.encrypTypeIdx);
    }
}

TEST_F(WirelessParser, SelfClosingEncryptionType_IsTheEmptyRow) {
    std::string document = radioElement("2.4").text();
    const std::string leaf = "<EncryptionType>AES</EncryptionType>";
    document.replace(document.find(leaf), leaf.size(), "<EncryptionType />");
    EXPECT_EQ(1, parseText(document, 0, "Wireless2.4"));
    EXPECT_EQ(5, radio.encrypTypeIdx);
}

// The key is read with 32 bytes although its field holds 128.
TEST_F(WirelessParser, Texts_AreCutToTheirCapacities) {
    expectCapacities(radioElement("2.4"),
                     {{"WirelessBSSID", 18, radio.WirelessBSSID},
                      {"WirelessName", 128, radio.WirelessName},
                      {"EncryptionMode", 32, radio.EncryptionMode},
                      {"EncryptionKey", 32, radio.EncryptionKey},
                      {"EncryptionType", 32, radio.EncryptionType},
                      {"Channel", 32, radio.Channel}},
                     parse);
}

TEST_F(WirelessParser, KeyOf63Characters_KeepsItsFirst31) {
    const std::string key = std::string(31, 'k') + std::string(32, 'x');
    EXPECT_EQ(1, parse(radioElement("2.4").set("EncryptionKey", key)));
    EXPECT_EQ(std::string(31, 'k'), text(radio.EncryptionKey));
}

TEST_F(WirelessParser, Level7_ShowsParserAndMappings) {
    daemon_log_level = 6;
    parse(radioElement("2.4"));
    EXPECT_EQ("", logText());
    daemon_log_level = 7;
    parse(radioElement("2.4").set("EncryptionMode", " none ").set("EncryptionType", "open"));
    EXPECT_EQ((std::vector<std::string>{
                  "1000:do_ZepWireless_Parser]Device",
                  "1000:prepareXmlBlockData]",
                  "Zep EncryptionMode='None' -> 0",
                  "Zep EncryptionType='OPEN' -> 1",
                  "1000:do_ZepAccessCtl_Parser]Device/Wireless2.4",
                  "1000:prepareXmlBlockData]",
                  "WlAcRuleNo=0",
              }),
              logLines());
}

} // namespace
