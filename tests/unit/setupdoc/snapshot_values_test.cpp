// The snapshot for the variable interface: the current values of every section.
#include "setup_document.h"
#include "setupdoc/snapshot.h"

using namespace pendra;
using namespace pendra::test;

namespace {

struct TextNode {
    std::string path;
    const char* field;
    size_t capacity;
    const int32_t* index = nullptr; // of a text of a name table
};

struct NumberNode {
    std::string path;
    const int32_t* field;
    int32_t whenAbsent;
};

class SnapshotValues : public DeviceTest {
  protected:
    SnapshotValues() { loadRouter(device()); }

    static void take() { restore_XmlZepStatus(kFull); }
    static std::string baseOf(int radio) { return std::string("/lan/wireless") + (radio == 0 ? "2.4" : "5") + ":1"; }
    static void storeRules(int radio, int count) {
        for (int number = 1; number <= count; number++) {
            const std::string rule = baseOf(radio) + "/accesscontrol/acrule:" + std::to_string(number);
            device().tree[rule + "/active"] = "1";
            device().tree[rule + "/mac"] = "00:00:00:00:00:" + std::to_string(number);
        }
    }

    static std::vector<TextNode> textNodes();
    static std::vector<NumberNode> numberNodes();
};

template <size_t Capacity>
TextNode node(const std::string& path, const char (&field)[Capacity], const int32_t* index = nullptr) {
    return {path, field, Capacity, index};
}

std::vector<TextNode> SnapshotValues::textNodes() {
    const ZepDevice& read = zepXmlData.device;
    const ZepUpLink& upLink = read.upLink;
    std::vector<TextNode> rows = {
        node("/bramble/tempdirecory", zepXmlData.tmpPath),
        node("/bramble/scriptdirecory", zepXmlData.scriptPath),
        node("/sys/devicetype", read.DeviceType),
        node("/sys/friendlyname", read.DeviceName),
        node("/sys/user:1/password", read.DevicePwd),
        node("/bramble/easyroaminginfo", read.EasyRoaming),
        node("/uplink/hardwaretype", upLink.HardwareType, &upLink.hardwareTypeIdx),
        node("/uplink/hardwaresupport", upLink.HardwareSupport),
        node("/uplink/conntype", upLink.ConnType, &upLink.connTypeIdx),
        node("/uplink/loginusername", upLink.LoginUserName),
        node("/uplink/loginpassword", upLink.LoginPassword),
        node("/uplink/ip", upLink.IP),
        node("/uplink/netmask", upLink.NetMask),
        node("/uplink/gateway", upLink.Gateway),
        node("/uplink/dns", upLink.DNS),
        node("/uplink/dsl/countryname", upLink.dsl.CountryName),
        node("/uplink/dsl/ispname", upLink.dsl.IspName),
        node("/uplink/apn/countryname", upLink.apn.CountryName),
        node("/uplink/apn/ispname", upLink.apn.IspName),
        node("/uplink/extendersite/connrefsitebssid", upLink.extenderSite.ConnRefSiteBSSID),
        node("/uplink/extendersite/wirelesstype", upLink.extenderSite.WirelessType,
             &upLink.extenderSite.wirelessTypeIdx),
        node("/uplink/extendersite/wirelessname", upLink.extenderSite.WirelessName),
        node("/uplink/extendersite/encryptionkey", upLink.extenderSite.EncryptionKey),
    };
    for (int index = 0; index < 2; index++) {
        const ZepWireless& radio = read.wireless[index];
        const std::string base = baseOf(index);
        const std::vector<TextNode> radioRows = {
            node(base + "/channellist", radio.ChannelList),
            node(base + "/wirelessbssid", radio.WirelessBSSID),
            node(base + "/wirelessname", radio.WirelessName),
            node(base + "/encryptionmode", radio.EncryptionMode, &radio.encrypModeIdx),
            node(base + "/encryptiontype", radio.EncryptionType, &radio.encrypTypeIdx),
            node(base + "/encryptionkey", radio.EncryptionKey),
            node(base + "/channel", radio.Channel),
            node(base + "/country", radio.Country),
        };
        rows.insert(rows.end(), radioRows.begin(), radioRows.end());
    }
    return rows;
}

std::vector<NumberNode> SnapshotValues::numberNodes() {
    std::vector<NumberNode> rows = {{"/sys/routerenbl", &zepXmlData.device.RouterEnbl, 2}};
    for (int index = 0; index < 2; index++) {
        const ZepWireless& radio = zepXmlData.device.wireless[index];
        rows.push_back({baseOf(index) + "/wlenbl", &radio.WlEnbl, 2});
        rows.push_back({baseOf(index) + "/wlschedule", &radio.WlSchedule, 2});
        rows.push_back({baseOf(index) + "/accesscontrol/wlacenbl", &radio.accessControl.WlAcEnbl, 2});
        rows.push_back({baseOf(index) + "/accesscontrol/wlacmode", &radio.accessControl.WlAcMode, 0});
    }
    return rows;
}

// ---- Texts ----

TEST_F(SnapshotValues, EachText_IsReadAndCutToItsField) {
    for (const TextNode& row : textNodes()) {
        device().tree[row.path] = "z";
        take();
        const ZepXmlData shortest = zepXmlData;
        for (const size_t length : {row.capacity - 2, row.capacity - 1, row.capacity, size_t{1023}}) {
            SCOPED_TRACE(row.path + " of " + std::to_string(length));
            device().tree[row.path] = std::string(length, 'z');
            take();
            EXPECT_EQ(std::string(std::min(length, row.capacity - 1), 'z'), row.field);
            EXPECT_TRUE(sameOutside(shortest, zepXmlData, offsetInRecord(row.field), row.capacity));
        }
    }
}

TEST_F(SnapshotValues, EachAbsentText_ReadsAsEmpty) {
    for (const TextNode& row : textNodes()) {
        SCOPED_TRACE(row.path);
        device().tree[row.path] = "value";
        take();
        EXPECT_STREQ("value", row.field);
        device().tree.erase(row.path);
        take();
        EXPECT_STREQ("", row.field);
        if (row.index == nullptr) continue;
        const bool hasEmptyRow = row.path.find("encryptiontype") != std::string::npos;
        EXPECT_EQ(hasEmptyRow ? 5 : -1, *row.index);
    }
}

TEST_F(SnapshotValues, NamesOfTables_AreMappedAndSpeltByTheTable) {
    auto& tree = device().tree;
    tree["/uplink/conntype"] = "pppoe";
    tree["/uplink/extendersite/wirelesstype"] = "5";
    tree["/lan/wireless2.4:1/encryptionmode"] = "wpawpa2";
    tree["/lan/wireless5:1/encryptiontype"] = "tkip";
    tree["/lan/wireless5:1/encryptionmode"] = "WPA3";
    take();
    const ZepDevice& read = zepXmlData.device;
    EXPECT_STREQ("PPPoE", read.upLink.ConnType);
    EXPECT_EQ(2, read.upLink.connTypeIdx);
    EXPECT_EQ(1, read.upLink.extenderSite.wirelessTypeIdx);
    EXPECT_STREQ("WPAWPA2", read.wireless[0].EncryptionMode);
    EXPECT_EQ(3, read.wireless[0].encrypModeIdx);
    EXPECT_STREQ("TKIP", read.wireless[1].EncryptionType);
    EXPECT_EQ(3, read.wireless[1].encrypTypeIdx);
    EXPECT_STREQ("WPA3", read.wireless[1].EncryptionMode);
    EXPECT_EQ(-1, read.wireless[1].encrypModeIdx);
}

// ---- Numbers ----

TEST_F(SnapshotValues, EachNumber_HasAValueForAnAbsentNode) {
    storeRules(0, 1);
    storeRules(1, 1);
    device().tree["/lan/wireless2.4:1/configurable/acrule#"] = "1";
    device().tree["/lan/wireless5:1/configurable/acrule#"] = "1";
    for (const NumberNode& row : numberNodes()) {
        SCOPED_TRACE(row.path);
        for (const int value : {0, 1, 2, 3, 77}) {
            device().tree[row.path] = std::to_string(value);
            take();
            EXPECT_EQ(value, *row.field);
        }
        device().tree[row.path] = "-5";
        take();
        EXPECT_EQ(row.whenAbsent, *row.field);
        device().tree.erase(row.path);
        take();
        EXPECT_EQ(row.whenAbsent, *row.field);
    }
}

TEST_F(SnapshotValues, SurveyAndSafety_AreOnForExactlyOne) {
    const ZepSafetyWdn& safety = zepXmlData.device.safetyWdn;
    const std::vector<std::pair<const char*, const int32_t*>> rows = {
        {"/uplink/extendersite/survey", &zepXmlData.device.upLink.extenderSite.Survey},
        {"/safetywdn/safetywdnenbl", &safety.SafetyWdnEnbl},
        {"/safetywdn/urldetectenbl", &safety.UrlDetectEnbl},
        {"/safetywdn/safetynotifyenbl", &safety.SafetyNotifyEnbl},
        {"/safetywdn/toolrecommendenbl", &safety.ToolRecommendEnbl},
    };
    for (const auto& [path, field] : rows)
        for (const char* text : {"1", "0", "2", "", "01", " 1"}) {
            SCOPED_TRACE(std::string(path) + "=" + text);
            device().tree[path] = text;
            take();
            EXPECT_EQ(std::string(text) == "1" ? 1 : 0, *field);
        }
}

// ---- Paths ----

TEST_F(SnapshotValues, Paths_NameTheSections) {
    take();
    const ZepDevice& read = zepXmlData.device;
    EXPECT_STREQ("Device", read.path);
    EXPECT_STREQ("Device/Uplink", read.upLink.path);
    EXPECT_STREQ("Device/Uplink/DSL", read.upLink.dsl.path);
    EXPECT_STREQ("Device/Uplink/APN", read.upLink.apn.path);
    EXPECT_STREQ("Device/Uplink/ExtenderSite", read.upLink.extenderSite.path);
    EXPECT_STREQ("Device/Wireless2.4", read.wireless[0].path);
    EXPECT_STREQ("Device/Wireless2.4/AccessControl", read.wireless[0].accessControl.path);
    EXPECT_STREQ("Device/Wireless5", read.wireless[1].path);
    EXPECT_STREQ("Device/Wireless5/AccessControl", read.wireless[1].accessControl.path);
    EXPECT_STREQ("Device/SafetyWdn", read.safetyWdn.path);
}

// ---- Radios ----

TEST_F(SnapshotValues, AbsentRadio_GivesItsValuesAllTheSame) {
    device().tree["/lan/wireless5:1/wlenbl"] = "2";
    take();
    const ZepWireless& radio = zepXmlData.device.wireless[1];
    EXPECT_EQ(0, zepXmlData.wlan5Feature);
    EXPECT_EQ(0, radio.Configurable);
    EXPECT_EQ(2, radio.WlEnbl);
    EXPECT_STREQ("Home5", radio.WirelessName);
    EXPECT_STREQ("0,36,40,44,48", radio.ChannelList);
    EXPECT_STREQ("0,32,1", radio.WirelessNameRule);
}

TEST_F(SnapshotValues, RuleCount_IsLookedForUnderTheConfigurableNode) {
    storeRules(0, 2);
    device().tree["/lan/wireless2.4:1/accesscontrol/wlacmode"] = "1";
    device().tree["/lan/wireless2.4:1/configurable/acrule#"] = "2";
    take();
    const ZepAccessControl& access = zepXmlData.device.wireless[0].accessControl;
    EXPECT_EQ(2, access.acRuleCount);
    EXPECT_EQ(1, access.WlAcMode);
    for (int index = 0; index < 2; index++) {
        EXPECT_EQ(1, access.acRule[index].Active);
        EXPECT_EQ("00:00:00:00:00:" + std::to_string(index + 1), access.acRule[index].MAC);
        EXPECT_STREQ("Device/Wireless2.4/AccessControl/AcRule", access.acRule[index].path);
    }
    EXPECT_STREQ("", access.acRule[2].path);
}

// No device has a list under that node.
TEST_F(SnapshotValues, WithoutThatCount_NoRuleIsRestoredAndTheModeIsZero) {
    storeRules(0, 3);
    device().tree["/lan/wireless2.4:1/accesscontrol/wlacenbl"] = "1";
    device().tree["/lan/wireless2.4:1/accesscontrol/wlacmode"] = "1";
    take();
    const ZepAccessControl& access = zepXmlData.device.wireless[0].accessControl;
    EXPECT_EQ(-1, access.acRuleCount);
    EXPECT_EQ(1, access.WlAcEnbl);
    EXPECT_EQ(0, access.WlAcMode);
    EXPECT_STREQ("", access.acRule[0].MAC);
    EXPECT_STREQ("", access.acRule[0].path);
}

TEST_F(SnapshotValues, RuleCountOfZero_KeepsTheMode) {
    device().tree["/lan/wireless5:1/accesscontrol/wlacmode"] = "1";
    device().tree["/lan/wireless5:1/configurable/acrule#"] = "0";
    take();
    EXPECT_EQ(0, zepXmlData.device.wireless[1].accessControl.acRuleCount);
    EXPECT_EQ(1, zepXmlData.device.wireless[1].accessControl.WlAcMode);
}

TEST_F(SnapshotValues, RuleLeaves_HaveValuesForAbsentNodes) {
    device().tree["/lan/wireless5:1/configurable/acrule#"] = "2";
    device().tree["/lan/wireless5:1/accesscontrol/acrule:2/active"] = "-4";
    device().tree["/lan/wireless5:1/accesscontrol/acrule:2/mac"] = std::string(1023, 'm');
    ZepAcRule* rules = zepXmlData.device.wireless[1].accessControl.acRule;
    rules[0].Active = rules[1].Active = 9;
    std::strcpy(rules[0].MAC, "old");
    take();
    EXPECT_EQ(0, rules[0].Active);
    EXPECT_STREQ("", rules[0].MAC);
    EXPECT_EQ(0, rules[1].Active);
    EXPECT_EQ(std::string(17, 'm'), text(rules[1].MAC));
    EXPECT_STREQ("Device/Wireless5/AccessControl/AcRule", rules[1].path);
}

TEST_F(SnapshotValues, RuleCountAbove40_EndsAtTheLastRecord) {
    storeRules(0, 60);
    for (const char* count : {"40", "41", "60", "2147483647"}) {
        SCOPED_TRACE(count);
        device().tree["/lan/wireless2.4:1/configurable/acrule#"] = count;
        device().forget();
        take();
        const ZepAccessControl& access = zepXmlData.device.wireless[0].accessControl;
        EXPECT_STREQ("00:00:00:00:00:40", access.acRule[39].MAC);
        EXPECT_STREQ("Device/Wireless2.4/AccessControl", access.path); // right behind the rules
        const auto& reads = device().reads;
        EXPECT_EQ(1, std::count(reads.begin(), reads.end(), "/lan/wireless2.4:1/accesscontrol/acrule:40/mac"));
        EXPECT_EQ(0, std::count(reads.begin(), reads.end(), "/lan/wireless2.4:1/accesscontrol/acrule:41/mac"));
    }
}

// ---- What is touched ----

std::vector<std::string> radioReads(const std::string& base) {
    std::vector<std::string> paths;
    for (const char* leaf :
         {"/wlenbl", "/configurable", "/channellist", "/wirelessname_validate", "/encryptionkey_validate", "/wlenbl",
          "/wlschedule", "/wirelessbssid", "/wirelessname", "/encryptionmode", "/encryptiontype", "/encryptionkey",
          "/channel", "/country", "/accesscontrol/wlacenbl", "/accesscontrol/wlacmode", "/configurable/acrule#"})
        paths.push_back(base + leaf);
    return paths;
}

TEST_F(SnapshotValues, Nodes_AreReadInThisOrderAndNoneIsWritten) {
    take();
    std::vector<std::string> expected = {"/bramble/specversion/major", "/bramble/specversion/minor",
                                         "/bramble/apcloning",         "/bramble/easyroaming",
                                         "/bramble/fwupgrade",         "/bramble/safetywdn"};
    for (const std::string& path : radioReads("/lan/wireless2.4:1"))
        expected.push_back(path);
    for (const std::string& path : radioReads("/lan/wireless5:1"))
        expected.push_back(path);
    for (const char* path : {"/bramble/tempdirecory",
                             "/bramble/scriptdirecory",
                             "/bramble/configurable",
                             "/sys/devicetype",
                             "/sys/friendlyname",
                             "/sys/user:1/password",
                             "/sys/routerenbl",
                             "/bramble/easyroaminginfo",
                             "/sys/friendlyname_validate",
                             "/sys/user:1/password_validate",
                             "/uplink/configurable",
                             "/uplink/hardwaretype",
                             "/uplink/hardwaresupport",
                             "/uplink/loginusername_validate",
                             "/uplink/loginpassword_validate",
                             "/uplink/conntype",
                             "/uplink/loginusername",
                             "/uplink/loginpassword",
                             "/uplink/ip",
                             "/uplink/netmask",
                             "/uplink/gateway",
                             "/uplink/dns",
                             "/uplink/dsl/countryname",
                             "/uplink/dsl/ispname",
                             "/uplink/apn/countryname",
                             "/uplink/apn/ispname",
                             "/uplink/extendersite/survey",
                             "/uplink/extendersite/connrefsitebssid",
                             "/uplink/extendersite/wirelesstype",
                             "/uplink/extendersite/wirelessname",
                             "/uplink/extendersite/encryptionkey",
                             "/safetywdn/safetywdnenbl",
                             "/safetywdn/urldetectenbl",
                             "/safetywdn/safetynotifyenbl",
                             "/safetywdn/toolrecommendenbl"})
        expected.emplace_back(path);
    EXPECT_EQ(expected, device().reads);
    EXPECT_EQ(Events{}, device().events);
}

TEST_F(SnapshotValues, RestartFlagsAndResults_AreLeftAsTheyWere) {
    std::memset(&zepXmlData, 0x55, sizeof zepXmlData);
    take();
    constexpr int32_t kOld = 0x55555555;
    const ZepDevice& read = zepXmlData.device;
    for (const int32_t field :
         {zepXmlData.exeflag, zepXmlData.pre_exeflag, zepXmlData.exeWaitSec, zepXmlData.setResult, read.ExtenderEnbl,
          read.roamingRestart, read.wlanSurveyRestart, read.upLink.MTU, read.upLink.restart, read.upLink.dsl.VPI,
          read.upLink.dsl.VCI, read.upLink.dsl.encapModeIdx, read.wireless[0].restart, read.wireless[1].restart,
          read.safetyWdn.restart})
        EXPECT_EQ(kOld, field);
    for (const char byte : {static_cast<char>(zepXmlData.saveflag), static_cast<char>(zepXmlData.apCloningOnly),
                            zepXmlData.setMsg[0], static_cast<char>(read.deviceChanged), read.upLink.reserved[0],
                            read.upLink.dsl.EncapsulationMode[0], read.wireless[0].accessControl.acRule[0].MAC[0]})
        EXPECT_EQ(0x55, byte);
}

TEST_F(SnapshotValues, Entry_IsTracedAtLevel7) {
    daemon_log_level = 7;
    take();
    EXPECT_EQ("1000: 1000:restore_XmlZepStatus]\n", logText());
}

} // namespace
