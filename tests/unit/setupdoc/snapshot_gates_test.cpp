// The snapshot before a document: versions, features, gates, rules and directories.
#include "setup_document.h"
#include "setupdoc/snapshot.h"

using namespace pendra;
using namespace pendra::test;

namespace {

class SnapshotGates : public DeviceTest {
  protected:
    SnapshotGates() { loadRouter(device()); }

    // Takes the snapshot with a node that holds a text, or is absent for a null text.
    static void takeWith(const std::string& path, const char* text) {
        if (text == nullptr)
            device().tree.erase(path);
        else
            device().tree[path] = text;
        restore_XmlZepStatus(kGatesOnly);
    }
};

// ---- Version ----

TEST_F(SnapshotGates, Version_IsMajorTimes100PlusMinor) {
    struct Row {
        const char* major;
        const char* minor;
        int32_t storedMajor, storedMinor, version;
    };
    for (const Row& row : {Row{"1", "0", 1, 0, 100}, Row{"1", "1", 1, 1, 101}, Row{"2", "15", 2, 15, 215},
                           Row{"0", "100", 0, 100, 100}, Row{nullptr, "0", 1, 0, 100}, Row{nullptr, nullptr, 1, 1, 101},
                           Row{"-3", "-1", 1, 1, 101}, Row{"3", nullptr, 3, 1, 301}}) {
        SCOPED_TRACE(std::to_string(row.version));
        takeWith("/bramble/specversion/major", row.major);
        takeWith("/bramble/specversion/minor", row.minor);
        EXPECT_EQ(row.storedMajor, zepXmlData.specVersion.major);
        EXPECT_EQ(row.storedMinor, zepXmlData.specVersion.minor);
        EXPECT_EQ(row.version, zepXmlData.specVersion.version);
    }
}

TEST_F(SnapshotGates, HostileVersion_CrashesNothing) {
    takeWith("/bramble/specversion/major", "2147483647");
    takeWith("/bramble/specversion/minor", "2147483647");
    EXPECT_EQ(2147483647, zepXmlData.specVersion.major);
}

// ---- Features ----

TEST_F(SnapshotGates, CloningFeature_IsKeptWhenItIs0To2) {
    const std::vector<std::pair<const char*, int>> rows = {{"0", 0},  {"1", 1},   {"2", 2},    {"3", 0},
                                                           {"-1", 0}, {"257", 0}, {nullptr, 0}};
    for (const auto& [node, feature] : rows) {
        zepXmlData.apCloningFeature = 2;
        takeWith("/bramble/apcloning", node);
        EXPECT_EQ(feature, zepXmlData.apCloningFeature) << (node == nullptr ? "absent" : node);
    }
}

TEST_F(SnapshotGates, RoamingAndSafetyFeatures_NeedExactlyOne) {
    const std::vector<std::pair<const char*, int>> rows = {{"1", 1},  {"0", 0},  {"2", 0},  {"", 0},   {"01", 0},
                                                           {" 1", 0}, {"1 ", 0}, {"11", 0}, {"on", 0}, {nullptr, 0}};
    for (const auto& [node, feature] : rows) {
        SCOPED_TRACE(node == nullptr ? "absent" : node);
        zepXmlData.easyRoamingFeature = zepXmlData.safetyWdnFeature = 7;
        takeWith("/bramble/easyroaming", node);
        takeWith("/bramble/safetywdn", node);
        EXPECT_EQ(feature, zepXmlData.easyRoamingFeature);
        EXPECT_EQ(feature, zepXmlData.safetyWdnFeature);
    }
}

TEST_F(SnapshotGates, FirstGeneration_HasNeitherCloningNorRoaming) {
    zepXmlData.apCloningFeature = zepXmlData.easyRoamingFeature = 1;
    device().tree["/bramble/apcloning"] = "2";
    takeWith("/bramble/specversion/minor", "0");
    EXPECT_EQ(0, zepXmlData.apCloningFeature);
    EXPECT_EQ(0, zepXmlData.easyRoamingFeature);
    EXPECT_EQ(1, zepXmlData.safetyWdnFeature);
    EXPECT_EQ(1, zepXmlData.fwUpgradeFeature);
}

// ---- Gates that are open unless the node is "0" ----

TEST_F(SnapshotGates, NotZeroGates_AreClosedByExactlyZero) {
    const std::vector<std::pair<const char*, int>> rows = {{"0", 0},  {"1", 1},  {"", 1},   {"2", 1},
                                                           {"00", 1}, {" 0", 1}, {"no", 1}, {nullptr, 1}};
    for (const auto& [node, open] : rows) {
        SCOPED_TRACE(node == nullptr ? "absent" : node);
        takeWith("/bramble/fwupgrade", node);
        EXPECT_EQ(open, zepXmlData.fwUpgradeFeature);
        takeWith("/bramble/configurable", node);
        EXPECT_EQ(open, zepXmlData.device.Configurable);
        takeWith("/lan/wireless2.4:1/configurable", node);
        EXPECT_EQ(open, zepXmlData.device.wireless[0].Configurable);
        takeWith("/lan/wireless5:1/configurable", node);
        EXPECT_EQ(open, zepXmlData.device.wireless[1].Configurable);
    }
}

TEST_F(SnapshotGates, UpLink_IsOpenedByExactlyOne) {
    const std::vector<std::pair<const char*, int>> rows = {{"1", 1}, {"0", 0},  {"", 0},
                                                           {"2", 0}, {"1 ", 0}, {nullptr, 0}};
    for (const auto& [node, open] : rows) {
        takeWith("/uplink/configurable", node);
        EXPECT_EQ(open, zepXmlData.device.upLink.Configurable) << (node == nullptr ? "absent" : node);
    }
}

// ---- Radios ----

TEST_F(SnapshotGates, RadioExists_WhenItsEnableIs0Or1Or3) {
    const std::vector<std::pair<const char*, int>> rows = {{"0", 1}, {"1", 1}, {"3", 1},  {"2", 0},
                                                           {"4", 0}, {"9", 0}, {"-1", 0}, {nullptr, 0}};
    for (const auto& [node, exists] : rows) {
        SCOPED_TRACE(node == nullptr ? "absent" : node);
        takeWith("/lan/wireless2.4:1/wlenbl", node);
        EXPECT_EQ(exists, zepXmlData.wlan24Feature);
        EXPECT_EQ(exists, zepXmlData.device.wireless[0].Configurable);
        EXPECT_EQ(1, zepXmlData.wlan5Feature);
        takeWith("/lan/wireless2.4:1/wlenbl", "1");
        takeWith("/lan/wireless5:1/wlenbl", node);
        EXPECT_EQ(exists, zepXmlData.wlan5Feature);
        EXPECT_EQ(exists, zepXmlData.device.wireless[1].Configurable);
        EXPECT_EQ(1, zepXmlData.wlan24Feature);
        takeWith("/lan/wireless5:1/wlenbl", "1");
    }
}

TEST_F(SnapshotGates, RadioThatIsThere_GivesItsChannelsTrimmedAndItsRules) {
    device().tree["/lan/wireless5:1/channellist"] = " \t36,40 ,44\t ";
    restore_XmlZepStatus(kGatesOnly);
    const ZepWireless* radios = zepXmlData.device.wireless;
    EXPECT_STREQ("0,1,2,3,4,5,6,7,8,9,10,11", radios[0].ChannelList);
    EXPECT_STREQ("36,40 ,44", radios[1].ChannelList);
    EXPECT_STREQ("0,32,1", radios[0].WirelessNameRule);
    EXPECT_STREQ("0,64,0", radios[1].EncryptionKeyRule);
    EXPECT_STREQ("Device/Wireless2.4", radios[0].path);
    EXPECT_STREQ("Device/Wireless5", radios[1].path);
}

TEST_F(SnapshotGates, RadioThatIsAbsent_KeepsItsChannelsAndRules) {
    ZepWireless& radio = zepXmlData.device.wireless[1];
    std::strcpy(radio.ChannelList, "old");
    std::strcpy(radio.WirelessNameRule, "old");
    std::strcpy(radio.EncryptionKeyRule, "old");
    takeWith("/lan/wireless5:1/wlenbl", "2");
    EXPECT_STREQ("old", radio.ChannelList);
    EXPECT_STREQ("old", radio.WirelessNameRule);
    EXPECT_STREQ("old", radio.EncryptionKeyRule);
    EXPECT_STREQ("Device/Wireless5", radio.path); // set all the same
}

// ---- Texts ----

TEST_F(SnapshotGates, Texts_AreReadAsTheyStand) {
    device().tree["/bramble/tempdirecory"] = " /tmp/x ";
    device().tree["/bramble/scriptdirecory"] = "/userfs/$lanip";
    device().tree["/sys/devicetype"] = "&lt;router";
    device().tree["/uplink/hardwaresupport"] = "adsl, vdsl";
    restore_XmlZepStatus(kGatesOnly);
    EXPECT_STREQ(" /tmp/x ", zepXmlData.tmpPath);
    EXPECT_STREQ("/userfs/$lanip", zepXmlData.scriptPath);
    EXPECT_STREQ("&lt;router", zepXmlData.device.DeviceType);
    EXPECT_STREQ("adsl, vdsl", zepXmlData.device.upLink.HardwareSupport);
    EXPECT_STREQ("Device", zepXmlData.device.path);
    EXPECT_STREQ("Device/Uplink", zepXmlData.device.upLink.path);
}

TEST_F(SnapshotGates, AbsentTexts_ReadAsEmpty) {
    restore_XmlZepStatus(kGatesOnly);
    device().tree.clear();
    restore_XmlZepStatus(kGatesOnly);
    EXPECT_STREQ("", zepXmlData.tmpPath);
    EXPECT_STREQ("", zepXmlData.scriptPath);
    EXPECT_STREQ("", zepXmlData.device.DeviceType);
    EXPECT_STREQ("", zepXmlData.device.DeviceNameRule);
    EXPECT_STREQ("", zepXmlData.device.upLink.HardwareType);
    EXPECT_EQ(-1, zepXmlData.device.upLink.hardwareTypeIdx);
}

TEST_F(SnapshotGates, HardwareType_IsMapped) {
    struct Row {
        const char* node;
        const char* stored;
        int32_t index;
    };
    for (const Row& row : {Row{"ethernet", "Ethernet", 0}, Row{"ADSL", "ADSL", 1}, Row{"vdsl", "VDSL", 2},
                           Row{"WWAN802.11", "WWan802.11", 3}, Row{"wwanapn", "WWanAPN", 4}, Row{"dsl", "DSL", 5},
                           Row{"LTE", "LTE", -1}, Row{" ADSL", " ADSL", -1}, Row{"", "", -1}}) {
        SCOPED_TRACE(row.node);
        takeWith("/uplink/hardwaretype", row.node);
        EXPECT_STREQ(row.stored, zepXmlData.device.upLink.HardwareType);
        EXPECT_EQ(row.index, zepXmlData.device.upLink.hardwareTypeIdx);
    }
}

// ---- Rules ----

struct RuleRow {
    const char* path;
    const char* field;
};

std::vector<RuleRow> ruleRows() {
    const ZepDevice& device = zepXmlData.device;
    return {
        {"/lan/wireless2.4:1/wirelessname_validate", device.wireless[0].WirelessNameRule},
        {"/lan/wireless2.4:1/encryptionkey_validate", device.wireless[0].EncryptionKeyRule},
        {"/lan/wireless5:1/wirelessname_validate", device.wireless[1].WirelessNameRule},
        {"/lan/wireless5:1/encryptionkey_validate", device.wireless[1].EncryptionKeyRule},
        {"/sys/friendlyname_validate", device.DeviceNameRule},
        {"/sys/user:1/password_validate", device.DevicePwdRule},
        {"/uplink/loginusername_validate", device.upLink.LoginUserNameRule},
        {"/uplink/loginpassword_validate", device.upLink.LoginPasswordRule},
    };
}

TEST_F(SnapshotGates, EachRule_IsCutTo127CharactersAndThenDecoded) {
    const std::string fill(123, 'r');
    const std::vector<std::pair<std::string, std::string>> texts = {
        {"0,32,1,0,a-z,&lt;,&#38;", "0,32,1,0,a-z,<,&"},
        {"", ""},
        {" 0,1 ", " 0,1 "},
        {fill + "&lt;", fill + "<"},      // 127 characters
        {fill + "&lt;x", fill + "<"},     // the last one is cut first
        {fill + "rr&lt;", fill + "rr&l"}, // the entity is cut before it is decoded
        {fill + std::string(900, 'r'), fill + "rrrr"},
    };
    for (const RuleRow& row : ruleRows())
        for (const auto& [node, rule] : texts) {
            SCOPED_TRACE(std::string(row.path) + " " + node);
            takeWith(row.path, node.c_str());
            EXPECT_EQ(rule, row.field);
        }
}

// ---- What is touched ----

TEST_F(SnapshotGates, Nodes_AreReadInThisOrderAndNoneIsWritten) {
    restore_XmlZepStatus(kGatesOnly);
    std::vector<std::string> expected = {"/bramble/specversion/major", "/bramble/specversion/minor",
                                         "/bramble/apcloning",         "/bramble/easyroaming",
                                         "/bramble/fwupgrade",         "/bramble/safetywdn"};
    for (const std::string base : {"/lan/wireless2.4:1", "/lan/wireless5:1"})
        for (const char* leaf :
             {"/wlenbl", "/configurable", "/channellist", "/wirelessname_validate", "/encryptionkey_validate"})
            expected.push_back(base + leaf);
    for (const char* path :
         {"/bramble/tempdirecory", "/bramble/scriptdirecory", "/bramble/configurable", "/sys/devicetype",
          "/sys/friendlyname_validate", "/sys/user:1/password_validate", "/uplink/configurable", "/uplink/hardwaretype",
          "/uplink/hardwaresupport", "/uplink/loginusername_validate", "/uplink/loginpassword_validate"})
        expected.emplace_back(path);
    EXPECT_EQ(expected, device().reads);
    EXPECT_EQ(Events{}, device().events);
}

template <typename Field>
std::pair<const void*, size_t> whole(const Field& field) {
    return {&field, sizeof field};
}

TEST_F(SnapshotGates, EveryOtherField_IsLeftAsItWas) {
    std::memset(&zepXmlData, 0x55, sizeof zepXmlData);
    restore_XmlZepStatus(kGatesOnly);
    const ZepDevice& read = zepXmlData.device;
    std::vector<std::pair<const void*, size_t>> touched = {whole(zepXmlData.specVersion.major),
                                                           whole(zepXmlData.specVersion.minor),
                                                           whole(zepXmlData.specVersion.version),
                                                           whole(zepXmlData.apCloningFeature),
                                                           whole(zepXmlData.easyRoamingFeature),
                                                           whole(zepXmlData.fwUpgradeFeature),
                                                           whole(zepXmlData.safetyWdnFeature),
                                                           whole(zepXmlData.wlan24Feature),
                                                           whole(zepXmlData.wlan5Feature),
                                                           whole(zepXmlData.tmpPath),
                                                           whole(zepXmlData.scriptPath),
                                                           whole(read.path),
                                                           whole(read.Configurable),
                                                           whole(read.DeviceType),
                                                           whole(read.upLink.path),
                                                           whole(read.upLink.Configurable),
                                                           whole(read.upLink.HardwareType),
                                                           whole(read.upLink.hardwareTypeIdx),
                                                           whole(read.upLink.HardwareSupport),
                                                           whole(read.wireless[0].path),
                                                           whole(read.wireless[0].Configurable),
                                                           whole(read.wireless[0].ChannelList),
                                                           whole(read.wireless[1].path),
                                                           whole(read.wireless[1].Configurable),
                                                           whole(read.wireless[1].ChannelList)};
    for (const RuleRow& row : ruleRows())
        touched.emplace_back(row.field, 128);
    for (const auto& [field, size] : touched)
        std::memset(reinterpret_cast<char*>(&zepXmlData) + offsetInRecord(field), 0x55, size);
    ZepXmlData expected;
    std::memset(&expected, 0x55, sizeof expected);
    EXPECT_TRUE(sameOutside(expected, zepXmlData, 0, 0));
}

TEST_F(SnapshotGates, NodesOf1023Bytes_AreCutToTheirFields) {
    std::memset(&zepXmlData, 0, sizeof zepXmlData);
    for (auto& [path, value] : device().tree)
        if (path.find("wlenbl") == std::string::npos) value = std::string(1023, 'x');
    restore_XmlZepStatus(kGatesOnly);
    const ZepDevice& read = zepXmlData.device;
    EXPECT_EQ(std::string(127, 'x'), zepXmlData.tmpPath);
    EXPECT_EQ(std::string(127, 'x'), zepXmlData.scriptPath);
    EXPECT_EQ(std::string(127, 'x'), read.DeviceType);
    EXPECT_EQ(std::string(127, 'x'), read.upLink.HardwareSupport);
    EXPECT_EQ(std::string(31, 'x'), read.upLink.HardwareType);
    EXPECT_EQ(std::string(127, 'x'), read.wireless[1].ChannelList);
    EXPECT_EQ(std::string(127, 'x'), read.wireless[1].EncryptionKeyRule);
}

TEST_F(SnapshotGates, Entry_IsTracedAtLevel7) {
    daemon_log_level = 6;
    restore_XmlZepStatus(kGatesOnly);
    EXPECT_EQ("", logText());
    daemon_log_level = 7;
    restore_XmlZepStatus(kGatesOnly);
    EXPECT_EQ("1000: 1000:restore_XmlZepStatus]\n", logText());
}

} // namespace
