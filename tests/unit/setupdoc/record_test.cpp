#include <cstddef>

#include "setup_document.h"

using pendra::test::DeviceTest;

namespace {

using Rows = std::vector<std::string>;

bool allZero(const ZepXmlData& record) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(&record);
    return std::all_of(bytes, bytes + sizeof record, [](unsigned char byte) { return byte == 0; });
}

// Taken before main(): what the library holds when it is loaded.
const bool kZeroWhenLoaded = allZero(zepXmlData);
const bool kNoHookWhenLoaded = XmlErrMsg_LostKey == nullptr;

TEST(Record, WhenLoaded_IsZeroAndHasNoHook) {
    EXPECT_TRUE(kZeroWhenLoaded);
    EXPECT_TRUE(kNoHookWhenLoaded);
}

// ---- Enumeration tables ----

struct Table {
    const char* name;
    const char* const* table;
    Rows rows;
};

const std::vector<Table>& tables() {
    static const std::vector<Table> all = {
        {"ADslEncapModeArray", ADslEncapModeArray, {"LLC", "VcMux"}},
        {"WirelessTypeArray", WirelessTypeArray, {"2.4", "5"}},
        {"HardwareTypeArray", HardwareTypeArray, {"Ethernet", "ADSL", "VDSL", "WWan802.11", "WWanAPN", "DSL"}},
        {"ConnTypeArray", ConnTypeArray, {"DHCP", "Static", "PPPoE", "PPPoA"}},
        {"WlanEncrypModeArray", WlanEncrypModeArray, {"None", "WEP", "WPA", "WPAWPA2", "WPA2"}},
        {"WlanEncrypTypeArray", WlanEncrypTypeArray, {"AUTO", "OPEN", "SHARED", "TKIP", "AES", ""}},
        {"DeviceTypeArray", DeviceTypeArray, {"AP", "Router", "Extender", "Repeater", "Hotspot"}},
    };
    return all;
}

std::string changeCase(std::string text, int (*change)(int)) {
    for (char& character : text)
        character = static_cast<char>(change(static_cast<unsigned char>(character)));
    return text;
}

int32_t search(std::string& text, const char* const* table) {
    char copy[128];
    snprintf(copy, sizeof copy, "%s", text.c_str());
    const int32_t row = SearchKeyArray(copy, table);
    text = copy;
    return row;
}

class EnumerationTables : public DeviceTest {};

TEST_F(EnumerationTables, Rows_AreInOrderAndClosedByTheSentinel) {
    for (const Table& table : tables()) {
        SCOPED_TRACE(table.name);
        for (size_t row = 0; row < table.rows.size(); row++)
            EXPECT_EQ(table.rows[row], table.table[row]);
        EXPECT_EQ(0, std::memcmp("\0_", table.table[table.rows.size()], 3));
    }
}

TEST_F(EnumerationTables, EachRowInAnyCase_IsFoundAndSpeltByTheTable) {
    for (const Table& table : tables())
        for (size_t row = 0; row < table.rows.size(); row++)
            for (int (*change)(int) : {static_cast<int (*)(int)>(toupper), static_cast<int (*)(int)>(tolower)}) {
                std::string text = changeCase(table.rows[row], change);
                SCOPED_TRACE(table.name + (" " + text));
                EXPECT_EQ(static_cast<int32_t>(row), search(text, table.table));
                EXPECT_EQ(table.rows[row], text);
            }
}

TEST_F(EnumerationTables, TextInNoRow_HasNoIndex) {
    for (const Table& table : tables())
        for (const char* foreign : {"LTE", "_", " ", "WPA3", "Ethernet ", " Ethernet"}) {
            std::string text = foreign;
            SCOPED_TRACE(std::string(table.name) + " '" + text + "'");
            EXPECT_EQ(-1, search(text, table.table));
            EXPECT_EQ(foreign, text);
        }
}

TEST_F(EnumerationTables, EmptyText_IsARowOfTheEncryptionTypesOnly) {
    for (const Table& table : tables()) {
        SCOPED_TRACE(table.name);
        std::string text;
        EXPECT_EQ(table.table == WlanEncrypTypeArray ? 5 : -1, search(text, table.table));
    }
}

// The real empty row must be told from the sentinel by its second byte, which has to be readable.
TEST_F(EnumerationTables, EmptyRow_IsALiteralOfTwoReadableBytes) {
    EXPECT_EQ(0, std::memcmp("\0", WlanEncrypTypeArray[5], 2));
}

// ---- The record's fields ----

struct Field {
    const char* name;
    size_t offset;
    size_t size;
};

#define FIELD(Section, field) \
    { #Section "." #field, offsetof(Section, field), sizeof(Section::field) }

constexpr size_t kInt = 4;
constexpr size_t kFlag = 1;

// Fields stand in this order and have these capacities; padding only aligns an int.
void expectLayout(const std::vector<std::pair<Field, size_t>>& fields, size_t sectionSize) {
    size_t end = 0;
    for (const auto& [field, size] : fields) {
        SCOPED_TRACE(field.name);
        EXPECT_EQ(size, field.size);
        EXPECT_GE(field.offset, end);
        EXPECT_LT(field.offset - end, kInt);
        end = field.offset + field.size;
    }
    EXPECT_LT(sectionSize - end, kInt);
}

TEST(RecordLayout, SpecVersion_HasItsFieldsInOrder) {
    expectLayout({{FIELD(ZepSpecVersion, major), kInt},
                  {FIELD(ZepSpecVersion, minor), kInt},
                  {FIELD(ZepSpecVersion, path), 32},
                  {FIELD(ZepSpecVersion, version), kInt}},
                 sizeof(ZepSpecVersion));
}

TEST(RecordLayout, Device_HasItsFieldsInOrder) {
    expectLayout({{FIELD(ZepDevice, Configurable), kInt},
                  {FIELD(ZepDevice, DeviceName), 128},
                  {FIELD(ZepDevice, DevicePwd), 128},
                  {FIELD(ZepDevice, DeviceType), 128},
                  {FIELD(ZepDevice, RouterEnbl), kInt},
                  {FIELD(ZepDevice, ExtenderEnbl), kInt},
                  {FIELD(ZepDevice, EasyRoaming), 128},
                  {FIELD(ZepDevice, upLink), sizeof(ZepUpLink)},
                  {FIELD(ZepDevice, wireless), 2 * sizeof(ZepWireless)},
                  {FIELD(ZepDevice, safetyWdn), sizeof(ZepSafetyWdn)},
                  {FIELD(ZepDevice, path), 32},
                  {FIELD(ZepDevice, deviceChanged), kFlag},
                  {FIELD(ZepDevice, roamingRestart), kInt},
                  {FIELD(ZepDevice, wlanSurveyRestart), kInt},
                  {FIELD(ZepDevice, DeviceNameRule), 128},
                  {FIELD(ZepDevice, DevicePwdRule), 128}},
                 sizeof(ZepDevice));
}

TEST(RecordLayout, UpLink_HasItsFieldsInOrder) {
    expectLayout({{FIELD(ZepUpLink, Configurable), kInt},
                  {FIELD(ZepUpLink, HardwareSupport), 128},
                  {FIELD(ZepUpLink, HardwareType), 32},
                  {FIELD(ZepUpLink, ConnType), 32},
                  {FIELD(ZepUpLink, reserved), 96},
                  {FIELD(ZepUpLink, MTU), kInt},
                  {FIELD(ZepUpLink, LoginUserName), 128},
                  {FIELD(ZepUpLink, LoginPassword), 128},
                  {FIELD(ZepUpLink, IP), 16},
                  {FIELD(ZepUpLink, NetMask), 16},
                  {FIELD(ZepUpLink, Gateway), 16},
                  {FIELD(ZepUpLink, DNS), 16},
                  {FIELD(ZepUpLink, dsl), sizeof(ZepIsp)},
                  {FIELD(ZepUpLink, apn), sizeof(ZepIsp)},
                  {FIELD(ZepUpLink, extenderSite), sizeof(ZepExtenderSite)},
                  {FIELD(ZepUpLink, path), 128},
                  {FIELD(ZepUpLink, restart), kInt},
                  {FIELD(ZepUpLink, connTypeIdx), kInt},
                  {FIELD(ZepUpLink, hardwareTypeIdx), kInt},
                  {FIELD(ZepUpLink, LoginUserNameRule), 128},
                  {FIELD(ZepUpLink, LoginPasswordRule), 128}},
                 sizeof(ZepUpLink));
}

TEST(RecordLayout, IspAndExtenderSite_HaveTheirFieldsInOrder) {
    expectLayout({{FIELD(ZepIsp, CountryName), 128},
                  {FIELD(ZepIsp, IspName), 128},
                  {FIELD(ZepIsp, VPI), kInt},
                  {FIELD(ZepIsp, VCI), kInt},
                  {FIELD(ZepIsp, EncapsulationMode), 128},
                  {FIELD(ZepIsp, path), 128},
                  {FIELD(ZepIsp, encapModeIdx), kInt}},
                 sizeof(ZepIsp));
    expectLayout({{FIELD(ZepExtenderSite, Survey), kInt},
                  {FIELD(ZepExtenderSite, ConnRefSiteBSSID), 18},
                  {FIELD(ZepExtenderSite, WirelessType), 32},
                  {FIELD(ZepExtenderSite, WirelessName), 128},
                  {FIELD(ZepExtenderSite, EncryptionKey), 128},
                  {FIELD(ZepExtenderSite, path), 128},
                  {FIELD(ZepExtenderSite, wirelessTypeIdx), kInt}},
                 sizeof(ZepExtenderSite));
}

TEST(RecordLayout, Wireless_HasItsFieldsInOrder) {
    expectLayout({{FIELD(ZepWireless, Configurable), kInt},
                  {FIELD(ZepWireless, WlEnbl), kInt},
                  {FIELD(ZepWireless, WlSchedule), kInt},
                  {FIELD(ZepWireless, WirelessBSSID), 18},
                  {FIELD(ZepWireless, WirelessName), 128},
                  {FIELD(ZepWireless, EncryptionMode), 32},
                  {FIELD(ZepWireless, EncryptionType), 32},
                  {FIELD(ZepWireless, EncryptionKey), 128},
                  {FIELD(ZepWireless, Country), 32},
                  {FIELD(ZepWireless, ChannelList), 128},
                  {FIELD(ZepWireless, Channel), 32},
                  {FIELD(ZepWireless, accessControl), sizeof(ZepAccessControl)},
                  {FIELD(ZepWireless, path), 128},
                  {FIELD(ZepWireless, restart), kInt},
                  {FIELD(ZepWireless, encrypModeIdx), kInt},
                  {FIELD(ZepWireless, encrypTypeIdx), kInt},
                  {FIELD(ZepWireless, WirelessNameRule), 128},
                  {FIELD(ZepWireless, EncryptionKeyRule), 128}},
                 sizeof(ZepWireless));
}

TEST(RecordLayout, AccessControlAndSafety_HaveTheirFieldsInOrder) {
    expectLayout({{FIELD(ZepAcRule, Active), kInt}, {FIELD(ZepAcRule, MAC), 18}, {FIELD(ZepAcRule, path), 128}},
                 sizeof(ZepAcRule));
    expectLayout({{FIELD(ZepAccessControl, WlAcEnbl), kInt},
                  {FIELD(ZepAccessControl, WlAcMode), kInt},
                  {FIELD(ZepAccessControl, acRule), 40 * sizeof(ZepAcRule)},
                  {FIELD(ZepAccessControl, path), 128},
                  {FIELD(ZepAccessControl, acRuleCount), kInt}},
                 sizeof(ZepAccessControl));
    expectLayout({{FIELD(ZepSafetyWdn, SafetyWdnEnbl), kInt},
                  {FIELD(ZepSafetyWdn, UrlDetectEnbl), kInt},
                  {FIELD(ZepSafetyWdn, SafetyNotifyEnbl), kInt},
                  {FIELD(ZepSafetyWdn, ToolRecommendEnbl), kInt},
                  {FIELD(ZepSafetyWdn, path), 128},
                  {FIELD(ZepSafetyWdn, restart), kInt}},
                 sizeof(ZepSafetyWdn));
}

TEST(RecordLayout, WholeRecord_HasItsFieldsInOrder) {
    expectLayout({{FIELD(ZepXmlData, specVersion), sizeof(ZepSpecVersion)},
                  {FIELD(ZepXmlData, device), sizeof(ZepDevice)},
                  {FIELD(ZepXmlData, saveflag), kFlag},
                  {FIELD(ZepXmlData, exeflag), kInt},
                  {FIELD(ZepXmlData, pre_exeflag), kInt},
                  {FIELD(ZepXmlData, exeWaitSec), kInt},
                  {FIELD(ZepXmlData, setResult), kInt},
                  {FIELD(ZepXmlData, setMsg), 128},
                  {FIELD(ZepXmlData, apCloningOnly), kFlag},
                  {FIELD(ZepXmlData, apCloningFeature), kFlag},
                  {FIELD(ZepXmlData, fwUpgradeFeature), kFlag},
                  {FIELD(ZepXmlData, easyRoamingFeature), kFlag},
                  {FIELD(ZepXmlData, safetyWdnFeature), kFlag},
                  {FIELD(ZepXmlData, wlan24Feature), kFlag},
                  {FIELD(ZepXmlData, wlan5Feature), kFlag},
                  {FIELD(ZepXmlData, tmpPath), 128},
                  {FIELD(ZepXmlData, scriptPath), 128}},
                 sizeof(ZepXmlData));
}

} // namespace
