#include "setupdoc/snapshot.h"

#include <cstddef>

#include "common/number.h"
#include "common/trace.h"
#include "common/tree_access.h"
#include "pendra/apply.h"
#include "setupdoc/record_access.h"

namespace pendra {
namespace {

enum class Kind : uint8_t {
    text,        // as it stands
    trimmedText, // without blanks at its ends
    rule,        // a validation rule: entities decoded
    name,        // a text of a name table, with its row beside it
    number,      // an integer, or whenAbsent
    isOne,       // 1 when the text is "1", else 0
    isNotZero,   // 0 when the text is "0", else 1
};

// One node of the tree and the field of a section that it fills.
struct NodeRow {
    Kind kind;
    const char* leaf; // behind the section's base
    uint16_t offset;  // of the field in its section
    uint16_t capacity;
    int32_t whenAbsent = 0;
    const char* const* table = nullptr;
    uint16_t rowOffset = 0; // of the field that holds the row of the table
};

#define TEXT(Section, field, leaf) \
    { Kind::text, leaf, offsetof(Section, field), sizeof(Section::field) }
#define TRIMMED(Section, field, leaf) \
    { Kind::trimmedText, leaf, offsetof(Section, field), sizeof(Section::field) }
#define RULE(Section, field, leaf) \
    { Kind::rule, leaf, offsetof(Section, field), sizeof(Section::field) }
#define NUMBER(Section, field, leaf, whenAbsent) \
    { Kind::number, leaf, offsetof(Section, field), sizeof(Section::field), whenAbsent }
#define IS_ONE(Section, field, leaf) \
    { Kind::isOne, leaf, offsetof(Section, field), sizeof(Section::field) }
#define IS_NOT_ZERO(Section, field, leaf) \
    { Kind::isNotZero, leaf, offsetof(Section, field), sizeof(Section::field) }
#define NAME(Section, field, leaf, table, rowField) \
    { Kind::name, leaf, offsetof(Section, field), sizeof(Section::field), 0, table, offsetof(Section, rowField) }

constexpr NodeRow kFeatureRows[] = {
    IS_NOT_ZERO(ZepXmlData, fwUpgradeFeature, "/bramble/fwupgrade"),
    IS_ONE(ZepXmlData, safetyWdnFeature, "/bramble/safetywdn"),
};

constexpr NodeRow kDirectoryRows[] = {
    TEXT(ZepXmlData, tmpPath, "/bramble/tempdirecory"), // both nodes are spelt so
    TEXT(ZepXmlData, scriptPath, "/bramble/scriptdirecory"),
};

constexpr NodeRow kRadioRuleRows[] = {
    TRIMMED(ZepWireless, ChannelList, "/channellist"),
    RULE(ZepWireless, WirelessNameRule, "/wirelessname_validate"),
    RULE(ZepWireless, EncryptionKeyRule, "/encryptionkey_validate"),
};

constexpr NodeRow kRadioValueRows[] = {
    NUMBER(ZepWireless, WlEnbl, "/wlenbl", 2),
    NUMBER(ZepWireless, WlSchedule, "/wlschedule", 2),
    TEXT(ZepWireless, WirelessBSSID, "/wirelessbssid"),
    TEXT(ZepWireless, WirelessName, "/wirelessname"),
    NAME(ZepWireless, EncryptionMode, "/encryptionmode", WlanEncrypModeArray, encrypModeIdx),
    NAME(ZepWireless, EncryptionType, "/encryptiontype", WlanEncrypTypeArray, encrypTypeIdx),
    TEXT(ZepWireless, EncryptionKey, "/encryptionkey"),
    TEXT(ZepWireless, Channel, "/channel"),
    TEXT(ZepWireless, Country, "/country"),
    NUMBER(ZepWireless, accessControl.WlAcEnbl, "/accesscontrol/wlacenbl", 2),
    NUMBER(ZepWireless, accessControl.WlAcMode, "/accesscontrol/wlacmode", 0),
};

constexpr NodeRow kRuleValueRows[] = {
    NUMBER(ZepAcRule, Active, "/active", 0),
    TEXT(ZepAcRule, MAC, "/mac"),
};

constexpr NodeRow kDeviceRows[] = {
    IS_NOT_ZERO(ZepDevice, Configurable, "/bramble/configurable"),
    TEXT(ZepDevice, DeviceType, "/sys/devicetype"),
};

constexpr NodeRow kDeviceValueRows[] = {
    TEXT(ZepDevice, DeviceName, "/sys/friendlyname"),
    TEXT(ZepDevice, DevicePwd, "/sys/user:1/password"),
    NUMBER(ZepDevice, RouterEnbl, "/sys/routerenbl", 2),
    TEXT(ZepDevice, EasyRoaming, "/bramble/easyroaminginfo"),
};

constexpr NodeRow kDeviceRuleRows[] = {
    RULE(ZepDevice, DeviceNameRule, "/sys/friendlyname_validate"),
    RULE(ZepDevice, DevicePwdRule, "/sys/user:1/password_validate"),
};

constexpr NodeRow kUpLinkRows[] = {
    IS_ONE(ZepUpLink, Configurable, "/configurable"),
    NAME(ZepUpLink, HardwareType, "/hardwaretype", HardwareTypeArray, hardwareTypeIdx),
    TEXT(ZepUpLink, HardwareSupport, "/hardwaresupport"),
    RULE(ZepUpLink, LoginUserNameRule, "/loginusername_validate"),
    RULE(ZepUpLink, LoginPasswordRule, "/loginpassword_validate"),
};

constexpr NodeRow kUpLinkValueRows[] = {
    NAME(ZepUpLink, ConnType, "/conntype", ConnTypeArray, connTypeIdx),
    TEXT(ZepUpLink, LoginUserName, "/loginusername"),
    TEXT(ZepUpLink, LoginPassword, "/loginpassword"),
    TEXT(ZepUpLink, IP, "/ip"),
    TEXT(ZepUpLink, NetMask, "/netmask"),
    TEXT(ZepUpLink, Gateway, "/gateway"),
    TEXT(ZepUpLink, DNS, "/dns"),
    TEXT(ZepUpLink, dsl.CountryName, "/dsl/countryname"),
    TEXT(ZepUpLink, dsl.IspName, "/dsl/ispname"),
    TEXT(ZepUpLink, apn.CountryName, "/apn/countryname"),
    TEXT(ZepUpLink, apn.IspName, "/apn/ispname"),
    IS_ONE(ZepUpLink, extenderSite.Survey, "/extendersite/survey"),
    TEXT(ZepUpLink, extenderSite.ConnRefSiteBSSID, "/extendersite/connrefsitebssid"),
    NAME(ZepUpLink, extenderSite.WirelessType, "/extendersite/wirelesstype", WirelessTypeArray,
         extenderSite.wirelessTypeIdx),
    TEXT(ZepUpLink, extenderSite.WirelessName, "/extendersite/wirelessname"),
    TEXT(ZepUpLink, extenderSite.EncryptionKey, "/extendersite/encryptionkey"),
};

constexpr NodeRow kSafetyRows[] = {
    IS_ONE(ZepSafetyWdn, SafetyWdnEnbl, "/safetywdn/safetywdnenbl"),
    IS_ONE(ZepSafetyWdn, UrlDetectEnbl, "/safetywdn/urldetectenbl"),
    IS_ONE(ZepSafetyWdn, SafetyNotifyEnbl, "/safetywdn/safetynotifyenbl"),
    IS_ONE(ZepSafetyWdn, ToolRecommendEnbl, "/safetywdn/toolrecommendenbl"),
};

bool nodeIs(const char* path, const char* text) {
    return StrCmpWithXStr(text, path, 1) == 0;
}

void storeNumber(char* field, size_t capacity, int32_t value) {
    if (capacity == sizeof(int8_t))
        *field = static_cast<char>(value);
    else
        std::memcpy(field, &value, sizeof value);
}

void readText(char* field, const NodeRow& row, const char* path) {
    readNodeBounded(field, row.capacity, path);
    if (row.kind == Kind::trimmedText) trim(field);
    if (row.kind == Kind::rule) strncpy_XmlDecode(field, field, static_cast<int32_t>(row.capacity)); // never longer
}

void readRow(char* section, const NodeRow& row, const char* path) {
    char* field = section + row.offset;
    switch (row.kind) {
        case Kind::number:
            return storeNumber(field, row.capacity, readNodeInt(path, row.whenAbsent));
        case Kind::isOne:
            return storeNumber(field, row.capacity, nodeIs(path, "1") ? 1 : 0);
        case Kind::isNotZero:
            return storeNumber(field, row.capacity, nodeIs(path, "0") ? 0 : 1);
        case Kind::name:
            readText(field, row, path);
            return storeNumber(section + row.rowOffset, sizeof(int32_t), SearchKeyArray(field, row.table));
        default:
            return readText(field, row, path);
    }
}

void readTable(char* section, const char* base, const NodeRow* row, size_t count) {
    for (; count > 0; row++, count--)
        readRow(section, *row, NodePath("%s%s", base, row->leaf));
}

template <typename Section, size_t Count>
void readRows(Section& section, const char* base, const NodeRow (&rows)[Count]) {
    readTable(reinterpret_cast<char*>(&section), base, rows, Count);
}

void readVersion(ZepSpecVersion& version) {
    version.major = readNodeInt("/bramble/specversion/major", 1);
    version.minor = readNodeInt("/bramble/specversion/minor", 1);
    version.version = clampToInt(int64_t{version.major} * 100 + version.minor);
}

// The first generation of clients knows neither cloning nor roaming.
void readFeatures(ZepXmlData& data) {
    data.apCloningFeature = 0;
    data.easyRoamingFeature = 0;
    if (!isFirstGeneration()) {
        const int cloning = readNodeInt("/bramble/apcloning");
        if (is_in_range(cloning, 0, 2) == 1) data.apCloningFeature = static_cast<int8_t>(cloning);
        data.easyRoamingFeature = nodeIs("/bramble/easyroaming", "1") ? 1 : 0;
    }
    readRows(data, "", kFeatureRows);
}

// A radio exists when it is off, on or fixed on (0, 1 or 3).
void readPresence(ZepWireless& radio, int8_t& feature, const char* base, const char* configurablePath) {
    const int enabled = readNodeInt(NodePath("%s/wlenbl", base));
    feature = enabled == 0 || enabled == 1 || enabled == 3 ? 1 : 0;
    radio.Configurable = feature != 0 && !nodeIs(configurablePath, "0") ? 1 : 0;
}

void readRules(ZepAccessControl& access, const char* base) {
    for (int32_t index = 0; index < rulesInUse(access); index++) {
        ZepAcRule& rule = access.acRule[index];
        joinPath(rule.path, access.path, "AcRule");
        readRows(rule, NodePath("%s/accesscontrol/acrule:%d", base, index + 1), kRuleValueRows);
    }
}

// The rule count is looked for under the radio's configurable node, on purpose, and not under its access control. A
// device that has no list there starts its variable interface with no rules and mode 0, whatever it stores.
void readRadioValues(ZepWireless& radio, const char* base, const char* configurablePath) {
    ZepAccessControl& access = radio.accessControl;
    joinPath(access.path, radio.path, "AccessControl");
    readRows(radio, base, kRadioValueRows);
    access.acRuleCount = readNodeInt(NodePath("%s/acrule#", configurablePath));
    if (access.acRuleCount < 0) access.WlAcMode = 0;
    readRules(access, base);
}

void readRadio(ZepXmlData& data, int index, bool full) {
    ZepWireless& radio = data.device.wireless[index];
    int8_t& feature = index == 0 ? data.wlan24Feature : data.wlan5Feature;
    const NodePath base("/lan/wireless%s:1", WirelessTypeArray[index]);
    const NodePath configurablePath("%s/configurable", static_cast<const char*>(base));
    formatText(radio.path, "%s/Wireless%s", data.device.path, WirelessTypeArray[index]);
    readPresence(radio, feature, base, configurablePath);
    if (feature != 0 || full) readRows(radio, base, kRadioRuleRows);
    if (full) readRadioValues(radio, base, configurablePath);
}

void readDevice(ZepDevice& device, bool full) {
    readRows(device, "", kDeviceRows);
    if (full) readRows(device, "", kDeviceValueRows);
    readRows(device, "", kDeviceRuleRows);
}

void readUpLink(ZepDevice& device, bool full) {
    ZepUpLink& upLink = device.upLink;
    joinPath(upLink.path, device.path, "Uplink");
    readRows(upLink, "/uplink", kUpLinkRows);
    if (!full) return;
    joinPath(upLink.dsl.path, upLink.path, "DSL");
    joinPath(upLink.apn.path, upLink.path, "APN");
    joinPath(upLink.extenderSite.path, upLink.path, "ExtenderSite");
    readRows(upLink, "/uplink", kUpLinkValueRows);
}

void readSafety(ZepDevice& device) {
    joinPath(device.safetyWdn.path, device.path, "SafetyWdn");
    readRows(device.safetyWdn, "", kSafetyRows);
}

} // namespace

void restore_XmlZepStatus(int32_t mode) {
    const bool full = mode != kGatesOnly;
    ZepXmlData& data = zepXmlData;
    traceEntry("restore_XmlZepStatus");
    readVersion(data.specVersion);
    readFeatures(data);
    copyText(data.device.path, "Device");
    for (int radio = 0; radio < kRadios; radio++)
        readRadio(data, radio, full);
    readRows(data, "", kDirectoryRows);
    readDevice(data.device, full);
    readUpLink(data.device, full);
    if (full) readSafety(data.device);
}

} // namespace pendra
