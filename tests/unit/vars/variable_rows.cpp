#include "variable_rows.h"

#include <cstring>

namespace pendra::test {
namespace {

constexpr int32_t kInvalid = 2;
constexpr int32_t kWrongLength = 10;
constexpr int32_t kNotInTable = 10;
constexpr const char* kTooShort = "x"; // for the rules of prepareRecord()

using Stored = std::vector<StoredRow>;
using ReadOnly = std::vector<ReadOnlyRow>;

template <size_t Capacity>
StoredRow text(const std::string& name, const std::string& path, char (&field)[Capacity], const std::string& good) {
    StoredRow row{name, path};
    row.text = field;
    row.capacity = Capacity;
    row.good = good;
    return row;
}

template <size_t Capacity>
StoredRow checked(const std::string& name, const std::string& path, char (&field)[Capacity], const std::string& good,
                  const std::string& bad) {
    StoredRow row = text(name, path, field, good);
    row.bad = bad;
    row.badCode = kInvalid;
    return row;
}

template <size_t Capacity>
StoredRow ruled(const std::string& name, const std::string& path, char (&field)[Capacity], char* rule) {
    StoredRow row = text(name, path, field, "good text");
    row.bad = kTooShort;
    row.badCode = kWrongLength;
    row.rule = rule;
    return row;
}

template <size_t Capacity>
StoredRow enumerated(const std::string& name, const std::string& path, char (&field)[Capacity], int32_t& index,
                     const std::string& good, int32_t goodIndex) {
    StoredRow row = text(name, path, field, good);
    row.number = &index;
    row.goodNumber = goodIndex;
    row.bad = "none such";
    row.badCode = kNotInTable;
    return row;
}

StoredRow number(const std::string& name, const std::string& path, int32_t& field, int32_t good) {
    StoredRow row{name, path};
    row.number = &field;
    row.good = std::to_string(good);
    row.goodNumber = good;
    return row;
}

StoredRow flag(const std::string& name, const std::string& path, int32_t& field) {
    StoredRow row = number(name, path, field, 1);
    row.bad = "2";
    row.badCode = kInvalid;
    return row;
}

Stored deviceRows() {
    ZepDevice& device = zepXmlData.device;
    return {
        checked("EasyRoaming", "/bramble/easyroaminginfo", device.EasyRoaming, "-70 3 10 5", "70 3 10 5"),
        ruled("DeviceName", "/sys/friendlyname", device.DeviceName, device.DeviceNameRule),
        number("RouterEnbl", "/sys/RouterEnbl", device.RouterEnbl, 7),
        ruled("DevicePwd", "/sys/user:1/password", device.DevicePwd, device.DevicePwdRule),
    };
}

Stored upLinkRows() {
    ZepUpLink& section = upLink();
    ZepExtenderSite& site = section.extenderSite;
    return {
        enumerated("Upl_HardwareType", "/uplink/HardwareType", section.HardwareType, section.hardwareTypeIdx, "VDSL",
                   2),
        enumerated("Upl_ConnType", "/uplink/ConnType", section.ConnType, section.connTypeIdx, "PPPoE", 2),
        ruled("Upl_LoginUserName", "/uplink/LoginUserName", section.LoginUserName, section.LoginUserNameRule),
        ruled("Upl_LoginPassword", "/uplink/LoginPassword", section.LoginPassword, section.LoginPasswordRule),
        checked("Upl_IP", "/uplink/IP", section.IP, "192.168.1.7", "192.168.1.300"),
        checked("Upl_NetMask", "/uplink/NetMask", section.NetMask, "255.255.0.0", "255.0.255.0"),
        checked("Upl_Gateway", "/uplink/Gateway", section.Gateway, "192.168.1.1", "192.168.1.0"),
        checked("Upl_DNS", "/uplink/DNS", section.DNS, "9.9.9.9", "127.0.0.1"),
        flag("Upl_Ets_Survey", "/uplink/extendersite/Survey", site.Survey),
        text("Upl_Ets_ConnRefSiteBSSID", "/uplink/extendersite/ConnRefSiteBSSID", site.ConnRefSiteBSSID, "00:11"),
        enumerated("Upl_Ets_WirelessType", "/uplink/extendersite/WirelessType", site.WirelessType, site.wirelessTypeIdx,
                   "5", 1),
        text("Upl_Ets_WirelessName", "/uplink/extendersite/WirelessName", site.WirelessName, "Upstairs"),
        text("Upl_Ets_EncryptionKey", "/uplink/extendersite/EncryptionKey", site.EncryptionKey, "any key"),
        text("Upl_Dsl_CountryName", "/uplink/dsl/CountryName", section.dsl.CountryName, "Germany"),
        text("Upl_Dsl_IspName", "/uplink/dsl/IspName", section.dsl.IspName, "Provider"),
        text("Upl_Apn_CountryName", "/uplink/asp/CountryName", section.apn.CountryName, "France"),
        text("Upl_Apn_IspName", "/uplink/asp/IspName", section.apn.IspName, "Mobile"),
    };
}

Stored radioRows(const Radio& radio) {
    const std::string prefix = radio.name.substr(4);
    const std::string base = radio.base + "/";
    ZepWireless& record = radio.record;
    ZepAccessControl& access = record.accessControl;
    return {
        number(prefix + "WlEnbl", base + "WlEnbl", record.WlEnbl, 7),
        number(prefix + "WlSchedule", base + "WlSchedule", record.WlSchedule, 7),
        ruled(prefix + "WirelessName", base + "WirelessName", record.WirelessName, record.WirelessNameRule),
        enumerated(prefix + "EncryptionMode", base + "EncryptionMode", record.EncryptionMode, record.encrypModeIdx,
                   "WPA2", 4),
        enumerated(prefix + "EncryptionType", base + "EncryptionType", record.EncryptionType, record.encrypTypeIdx,
                   "TKIP", 3),
        ruled(prefix + "EncryptionKey", base + "EncryptionKey", record.EncryptionKey, record.EncryptionKeyRule),
        checked(prefix + "Channel", base + "Channel", record.Channel, "100", "12"),
        number(prefix + "Acl_WlAcEnbl", base + "accesscontrol/WlAcEnbl", access.WlAcEnbl, 7),
        flag(prefix + "Acl_WlAcMode", base + "accesscontrol/WlAcMode", access.WlAcMode),
        number(prefix + "Acl_AcRuleNo", base + "accesscontrol/acrule#", access.acRuleCount, -12),
        text(prefix + "Acl_R00_MAC", "/acrule:1/MAC", access.acRule[0].MAC, "not a MAC"),
        text(prefix + "Acl_R01_MAC", "/acrule:2/MAC", access.acRule[1].MAC, "00:11:22"),
    };
}

Stored safetyRows() {
    ZepSafetyWdn& safety = zepXmlData.device.safetyWdn;
    return {
        flag("Wdn_SafetyWdnEnbl", "/safetywdn/SafetyWdnEnbl", safety.SafetyWdnEnbl),
        flag("Wdn_UrlDetectEnbl", "/safetywdn/UrlDetectEnbl", safety.UrlDetectEnbl),
        flag("Wdn_SafetyNotifyEnbl", "/safetywdn/SafetyNotifyEnbl", safety.SafetyNotifyEnbl),
        flag("Wdn_ToolRecommendEnbl", "/safetywdn/ToolRecommendEnbl", safety.ToolRecommendEnbl),
    };
}

template <typename Row>
void append(std::vector<Row>& all, std::vector<Row> rows, int32_t* gate = nullptr) {
    for (Row& row : rows) {
        row.gate = gate;
        all.push_back(row);
    }
}

Stored allStored() {
    Stored all;
    append(all, deviceRows());
    append(all, upLinkRows(), &upLink().Configurable);
    for (const Radio& radio : radios())
        append(all, radioRows(radio), &radio.record.Configurable);
    append(all, safetyRows());
    return all;
}

// ---- read-only ----

ReadOnlyRow fromText(const std::string& name, const std::string& path, char* field, const std::string& value) {
    return {name, path, value, field, nullptr, "", nullptr};
}

ReadOnlyRow fromNumber(const std::string& name, const std::string& path, int32_t& field, const std::string& value) {
    return {name, path, value, nullptr, &field, "", nullptr};
}

ReadOnlyRow live(const std::string& name, const std::string& path, const std::string& value, const std::string& node) {
    return {name, path, value, nullptr, nullptr, node, nullptr};
}

ReadOnlyRow live(const std::string& name, const std::string& path, const std::string& value) {
    return live(name, path, value, path);
}

ReadOnly deviceReadOnly() {
    ZepDevice& device = zepXmlData.device;
    ZepSpecVersion& version = zepXmlData.specVersion;
    return {
        live("FactoryDefault", "/sys/FactoryDefault", "0"),
        live("DeviceModel", "/sys/modelnumber", "PX-100"),
        live("DeviceType", "/sys/DeviceType", "Router"),
        live("WirelessConcurrent", "/lan/WirelessConcurrent", "yes"),
        fromText("DeviceName_Validate", "/sys/friendlyname_validate", device.DeviceNameRule, "0,20,3"),
        fromText("DevicePwd_Validate", "/sys/user:1/password_validate", device.DevicePwdRule, "0,21,3"),
        fromNumber("Ver_major", "/specversion/major", version.major, "1"),
        fromNumber("Ver_minor", "/specversion/minor", version.minor, "12"),
    };
}

ReadOnly upLinkReadOnly() {
    ZepUpLink& section = upLink();
    return {
        fromNumber("Upl_Configurable", "/uplink/Configurable", section.Configurable, "1"),
        fromText("Upl_HardwareSupport", "/uplink/HardwareSupport", section.HardwareSupport, "Ethernet,VDSL"),
        fromText("Upl_LoginUserName_Validate", "/uplink/LoginUserName_Validate", section.LoginUserNameRule, "0,22,3"),
        fromText("Upl_LoginPassword_Validate", "/uplink/LoginPassword_Validate", section.LoginPasswordRule, "0,23,3"),
        live("Upl_Ets_ConnStatus", "/uplink/extendersite/ConnStatus", "connected", "/uplink/sxtendersite/connstatus"),
    };
}

ReadOnly radioReadOnly(const Radio& radio) {
    const std::string prefix = radio.name.substr(4);
    const std::string base = radio.base + "/";
    ZepWireless& record = radio.record;
    return {
        fromText(prefix + "WirelessBSSID", base + "WirelessBSSID", record.WirelessBSSID, "00:11:22:33:44:55"),
        fromText(prefix + "Country", base + "Country", record.Country, "DE"),
        fromText(prefix + "ChannelList", base + "ChannelList", record.ChannelList, "1,2,3"),
        live(prefix + "ChannelUsing", base + "ChannelUsing", "6"),
        fromText(prefix + "WirelessName_Validate", base + "WirelessName_Validate", record.WirelessNameRule, "0,24,3"),
        fromText(prefix + "EncryptionKey_Validate", base + "EncryptionKey_Validate", record.EncryptionKeyRule,
                 "0,25,3"),
    };
}

ReadOnly informationRows() {
    const std::string firmware = "/fwupgradeinfo/";
    const std::string site = "/wirelesssitesurvey/site:2/";
    ReadOnly rows = {
        live("Ext_Fwu_ModelName", firmware + "ModelName", "PX-100", "/sys/modelnumber"),
        live("Ext_Fwu_FwUpgradeURL", firmware + "FwUpgradeURL", "http://fw.example/list"),
        live("Ext_Ssv_SiteNo", "/wirelesssitesurvey/site#", "1"),
    };
    for (const char* leaf :
         {"Vendor", "DeviceMAC", "HwVersion", "RegionCode", "CurrFwVersion", "CurrFwFileName", "AccessKey"})
        rows.push_back(live(std::string("Ext_Fwu_") + leaf, firmware + leaf, std::string("the ") + leaf));
    for (const char* leaf : {"WirelessType", "BSSID", "WirelessName", "EncryptionMode", "WirelessStrength"})
        rows.push_back(live(std::string("Ext_Ssv_S00_") + leaf, site + leaf, std::string("a ") + leaf));
    return rows;
}

ReadOnly allReadOnly() {
    ReadOnly all;
    append(all, deviceReadOnly());
    append(all, upLinkReadOnly(), &upLink().Configurable);
    for (const Radio& radio : radios())
        append(all, radioReadOnly(radio), &radio.record.Configurable);
    append(all, informationRows());
    return all;
}

} // namespace

const std::vector<StoredRow>& storedRows() {
    static const Stored rows = allStored();
    return rows;
}

const std::vector<ReadOnlyRow>& readOnlyRows() {
    static const ReadOnly rows = allReadOnly();
    return rows;
}

void prepareRecord() {
    for (const StoredRow& row : storedRows()) {
        if (row.gate != nullptr) *row.gate = 1;
        if (row.rule != nullptr) std::strcpy(row.rule, "0,12,2");
    }
    for (const Radio& radio : radios()) {
        fill(radio.record.ChannelList, "1,6,11,100");
        radio.record.accessControl.acRuleCount = 2;
    }
    device().tree["/wirelesssitesurvey/site#"] = "1";
}

void provide(const ReadOnlyRow& row) {
    if (row.text != nullptr) std::memcpy(row.text, row.value.c_str(), row.value.size() + 1);
    if (row.number != nullptr) *row.number = std::stoi(row.value);
    if (!row.node.empty()) device().tree[row.node] = row.value;
}

} // namespace pendra::test
