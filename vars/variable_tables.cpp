#include "vars/variable_tables.h"

namespace pendra {
namespace {

#define FIELD(Section, field) \
    static_cast<uint16_t>(offsetof(Section, field)), static_cast<uint16_t>(sizeof(Section::field))
#define OFFSET(Section, field) static_cast<uint16_t>(offsetof(Section, field))

constexpr Variable kDeviceRows[] = {
    {"EasyRoaming", Kind::text, Check::roaming, FIELD(ZepDevice, EasyRoaming), 0, nullptr, "/bramble/easyroaminginfo"},
    {"DeviceName", Kind::text, Check::rule, FIELD(ZepDevice, DeviceName), OFFSET(ZepDevice, DeviceNameRule), nullptr,
     "/sys/friendlyname"},
    {"RouterEnbl", Kind::number, Check::locked, FIELD(ZepDevice, RouterEnbl), 0, nullptr, "/sys/RouterEnbl"},
    {"DevicePwd", Kind::text, Check::rule, FIELD(ZepDevice, DevicePwd), OFFSET(ZepDevice, DevicePwdRule), nullptr,
     "/sys/user:1/password"},
    // Paths of these keep the capitals of the names: the platform has nodes under both spellings.
    {"FactoryDefault", Kind::liveNumber, Check::readOnly, 0, 0, 0, nullptr, "/sys/FactoryDefault", nullptr, 1},
    {"DeviceModel", Kind::liveText, Check::readOnly, 0, 0, 0, nullptr, "/sys/modelnumber"},
    {"DeviceType", Kind::liveText, Check::readOnly, 0, 0, 0, nullptr, "/sys/DeviceType"},
    {"WirelessConcurrent", Kind::liveText, Check::readOnly, 0, 0, 0, nullptr, "/lan/WirelessConcurrent"},
};

constexpr Variable kDeviceRuleRows[] = {
    {"DeviceName_Validate", Kind::text, Check::readOnly, FIELD(ZepDevice, DeviceNameRule), 0, nullptr,
     "/sys/friendlyname_validate"},
    {"DevicePwd_Validate", Kind::text, Check::readOnly, FIELD(ZepDevice, DevicePwdRule), 0, nullptr,
     "/sys/user:1/password_validate"},
};

// The answer of these is the value itself, for a path answer too.
constexpr Variable kConstantRows[] = {
    {"BRName", Kind::text, Check::readOnly, 0, 0, 0, nullptr, "bramble"},
    {"BRTitle", Kind::text, Check::readOnly, 0, 0, 0, nullptr, "Bramble"},
    {"BRPath", Kind::text, Check::readOnly, 0, 0, 0, nullptr, "/bramble"},
    {"AuthKeyName", Kind::text, Check::readOnly, 0, 0, 0, nullptr, "DKey"}, // the query key of the client's access key
    {"LanIP", Kind::liveText, Check::readOnly, 0, 0, 0, nullptr, "/runtime/bramble/lanip"},
};

constexpr Variable kVersionRows[] = {
    {"major", Kind::number, Check::readOnly, FIELD(ZepSpecVersion, major)},
    {"minor", Kind::number, Check::readOnly, FIELD(ZepSpecVersion, minor)},
};

constexpr Variable kUpLinkRows[] = {
    {"HardwareType", Kind::name, Check::name, FIELD(ZepUpLink, HardwareType), OFFSET(ZepUpLink, hardwareTypeIdx),
     HardwareTypeArray},
    {"ConnType", Kind::name, Check::name, FIELD(ZepUpLink, ConnType), OFFSET(ZepUpLink, connTypeIdx), ConnTypeArray},
    {"LoginUserName", Kind::text, Check::rule, FIELD(ZepUpLink, LoginUserName), OFFSET(ZepUpLink, LoginUserNameRule)},
    {"LoginPassword", Kind::text, Check::rule, FIELD(ZepUpLink, LoginPassword), OFFSET(ZepUpLink, LoginPasswordRule)},
    {"IP", Kind::text, Check::address, FIELD(ZepUpLink, IP)},
    {"NetMask", Kind::text, Check::netmask, FIELD(ZepUpLink, NetMask)},
    {"Gateway", Kind::text, Check::address, FIELD(ZepUpLink, Gateway)},
    {"DNS", Kind::text, Check::address, FIELD(ZepUpLink, DNS)},
    {"Configurable", Kind::number, Check::readOnly, FIELD(ZepUpLink, Configurable)},
    {"HardwareSupport", Kind::text, Check::readOnly, FIELD(ZepUpLink, HardwareSupport)},
    {"LoginUserName_Validate", Kind::text, Check::readOnly, FIELD(ZepUpLink, LoginUserNameRule)},
    {"LoginPassword_Validate", Kind::text, Check::readOnly, FIELD(ZepUpLink, LoginPasswordRule)},
};

constexpr Variable kExtenderRows[] = {
    {"Survey", Kind::number, Check::zeroOrOne, FIELD(ZepExtenderSite, Survey)},
    {"ConnRefSiteBSSID", Kind::text, Check::none, FIELD(ZepExtenderSite, ConnRefSiteBSSID)},
    {"WirelessType", Kind::name, Check::name, FIELD(ZepExtenderSite, WirelessType),
     OFFSET(ZepExtenderSite, wirelessTypeIdx), WirelessTypeArray},
    {"WirelessName", Kind::text, Check::none, FIELD(ZepExtenderSite, WirelessName)},
    {"EncryptionKey", Kind::text, Check::none, FIELD(ZepExtenderSite, EncryptionKey)},
    // The node is spelt so, unlike the path answer; both are part of the interface.
    {"ConnStatus", Kind::liveText, Check::readOnly, 0, 0, 0, nullptr, nullptr, "/uplink/sxtendersite/connstatus"},
};

constexpr Variable kIspRows[] = {
    {"CountryName", Kind::text, Check::none, FIELD(ZepIsp, CountryName)},
    {"IspName", Kind::text, Check::none, FIELD(ZepIsp, IspName)},
};

constexpr Variable kWirelessRows[] = {
    {"WlEnbl", Kind::number, Check::locked, FIELD(ZepWireless, WlEnbl)},
    {"WlSchedule", Kind::number, Check::locked, FIELD(ZepWireless, WlSchedule)},
    {"WirelessName", Kind::text, Check::rule, FIELD(ZepWireless, WirelessName), OFFSET(ZepWireless, WirelessNameRule)},
    {"EncryptionMode", Kind::name, Check::name, FIELD(ZepWireless, EncryptionMode), OFFSET(ZepWireless, encrypModeIdx),
     WlanEncrypModeArray},
    {"EncryptionType", Kind::name, Check::name, FIELD(ZepWireless, EncryptionType), OFFSET(ZepWireless, encrypTypeIdx),
     WlanEncrypTypeArray},
    {"EncryptionKey", Kind::text, Check::rule, FIELD(ZepWireless, EncryptionKey),
     OFFSET(ZepWireless, EncryptionKeyRule)},
    {"Channel", Kind::text, Check::channel, FIELD(ZepWireless, Channel), OFFSET(ZepWireless, ChannelList)},
    {"WirelessBSSID", Kind::text, Check::readOnly, FIELD(ZepWireless, WirelessBSSID)},
    {"Country", Kind::text, Check::readOnly, FIELD(ZepWireless, Country)},
    {"ChannelList", Kind::text, Check::readOnly, FIELD(ZepWireless, ChannelList)},
    {"ChannelUsing", Kind::liveText, Check::readOnly},
    {"WirelessName_Validate", Kind::text, Check::readOnly, FIELD(ZepWireless, WirelessNameRule)},
    {"EncryptionKey_Validate", Kind::text, Check::readOnly, FIELD(ZepWireless, EncryptionKeyRule)},
};

constexpr Variable kAccessRows[] = {
    {"WlAcEnbl", Kind::number, Check::locked, FIELD(ZepAccessControl, WlAcEnbl)},
    {"WlAcMode", Kind::number, Check::zeroOrOne, FIELD(ZepAccessControl, WlAcMode)},
    // Any count is taken: the list behind it is bounded where it is walked.
    {"AcRuleNo", Kind::number, Check::none, FIELD(ZepAccessControl, acRuleCount), 0, nullptr, "acrule#"},
};

constexpr Variable kAcRuleRows[] = {
    {"Active", Kind::number, Check::zeroOrOne, FIELD(ZepAcRule, Active)},
    {"MAC", Kind::text, Check::none, FIELD(ZepAcRule, MAC)},
};

constexpr Variable kSafetyRows[] = {
    {"SafetyWdnEnbl", Kind::number, Check::zeroOrOne, FIELD(ZepSafetyWdn, SafetyWdnEnbl)},
    {"UrlDetectEnbl", Kind::number, Check::zeroOrOne, FIELD(ZepSafetyWdn, UrlDetectEnbl)},
    {"SafetyNotifyEnbl", Kind::number, Check::zeroOrOne, FIELD(ZepSafetyWdn, SafetyNotifyEnbl)},
    {"ToolRecommendEnbl", Kind::number, Check::zeroOrOne, FIELD(ZepSafetyWdn, ToolRecommendEnbl)},
};

constexpr Variable kFirmwareRows[] = {
    {"Vendor", Kind::liveText, Check::readOnly},
    {"DeviceMAC", Kind::liveText, Check::readOnly},
    {"HwVersion", Kind::liveText, Check::readOnly},
    {"RegionCode", Kind::liveText, Check::readOnly},
    {"CurrFwVersion", Kind::liveText, Check::readOnly},
    {"CurrFwFileName", Kind::liveText, Check::readOnly},
    {"AccessKey", Kind::liveText, Check::readOnly},
    {"ModelName", Kind::liveText, Check::readOnly, 0, 0, 0, nullptr, nullptr, "/sys/modelnumber"},
    {"FwUpgradeURL", Kind::expandedText, Check::readOnly},
};

constexpr Variable kSurveyRows[] = {
    {"SiteNo", Kind::liveNumber, Check::readOnly, 0, 0, 0, nullptr, "/wirelesssitesurvey/site#"},
};

constexpr Variable kSurveySiteRows[] = {
    {"WirelessType", Kind::liveText, Check::readOnly},     {"BSSID", Kind::liveText, Check::readOnly},
    {"WirelessName", Kind::liveText, Check::readOnly},     {"EncryptionMode", Kind::liveText, Check::readOnly},
    {"WirelessStrength", Kind::liveText, Check::readOnly},
};

} // namespace

const VariableTable kDeviceVariables = kDeviceRows;
const VariableTable kDeviceRules = kDeviceRuleRows;
const VariableTable kConstantVariables = kConstantRows;
const VariableTable kVersionVariables = kVersionRows;
const VariableTable kUpLinkVariables = kUpLinkRows;
const VariableTable kExtenderVariables = kExtenderRows;
const VariableTable kIspVariables = kIspRows;
const VariableTable kWirelessVariables = kWirelessRows;
const VariableTable kAccessVariables = kAccessRows;
const VariableTable kAcRuleVariables = kAcRuleRows;
const VariableTable kSafetyVariables = kSafetyRows;
const VariableTable kFirmwareVariables = kFirmwareRows;
const VariableTable kSurveyVariables = kSurveyRows;
const VariableTable kSurveySiteVariables = kSurveySiteRows;

} // namespace pendra
