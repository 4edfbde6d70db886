#include "bench/picks.h"

#include <cstdlib>
#include <cstring>

#include "pendra/common.h"

namespace pendra::bench {
namespace {

#define NUMBER(Section, field) \
    { #field, offsetof(Section, field), 0 }
#define TEXT(Section, field) \
    { #field, offsetof(Section, field), sizeof(Section::field) }
#define NAME(Section, field, rowField, table) \
    { #field, offsetof(Section, field), sizeof(Section::field), table, offsetof(Section, rowField) }

constexpr LeafPick kVersionLeaves[] = {NUMBER(ZepSpecVersion, major), NUMBER(ZepSpecVersion, minor)};

constexpr LeafPick kDeviceLeaves[] = {
    NUMBER(ZepDevice, Configurable), TEXT(ZepDevice, DeviceName),  TEXT(ZepDevice, DevicePwd),
    NUMBER(ZepDevice, RouterEnbl),   TEXT(ZepDevice, EasyRoaming),
};

constexpr LeafPick kUpLinkLeaves[] = {
    NUMBER(ZepUpLink, Configurable),
    NAME(ZepUpLink, HardwareType, hardwareTypeIdx, HardwareTypeArray),
    NAME(ZepUpLink, ConnType, connTypeIdx, ConnTypeArray),
    TEXT(ZepUpLink, LoginUserName),
    TEXT(ZepUpLink, LoginPassword),
};

constexpr LeafPick kIspLeaves[] = {TEXT(ZepIsp, CountryName), TEXT(ZepIsp, IspName)};

constexpr LeafPick kRadioLeaves[] = {
    NUMBER(ZepWireless, Configurable), NUMBER(ZepWireless, WlEnbl),
    NUMBER(ZepWireless, WlSchedule),   TEXT(ZepWireless, WirelessBSSID),
    TEXT(ZepWireless, WirelessName),   NAME(ZepWireless, EncryptionMode, encrypModeIdx, WlanEncrypModeArray),
    TEXT(ZepWireless, EncryptionKey),  NAME(ZepWireless, EncryptionType, encrypTypeIdx, WlanEncrypTypeArray),
    TEXT(ZepWireless, Channel),
};

constexpr LeafPick kAccessLeaves[] = {NUMBER(ZepAccessControl, WlAcEnbl), NUMBER(ZepAccessControl, WlAcMode)};

constexpr LeafPick kRuleLeaves[] = {NUMBER(ZepAcRule, Active), TEXT(ZepAcRule, MAC)};

constexpr LeafPick kSafetyLeaves[] = {
    NUMBER(ZepSafetyWdn, SafetyWdnEnbl),
    NUMBER(ZepSafetyWdn, UrlDetectEnbl),
    NUMBER(ZepSafetyWdn, SafetyNotifyEnbl),
    NUMBER(ZepSafetyWdn, ToolRecommendEnbl),
};

constexpr SectionPick kUpLinkSections[] = {{"DSL", offsetof(ZepUpLink, dsl), kIspLeaves}};

constexpr SectionPick kAccessSections[] = {{"AcRule", offsetof(ZepAccessControl, acRule), kRuleLeaves, {}, true}};

constexpr SectionPick kRadioSections[] = {
    {"AccessControl", offsetof(ZepWireless, accessControl), kAccessLeaves, kAccessSections}};

constexpr SectionPick kDeviceSections[] = {
    {"UpLinkConnection", offsetof(ZepDevice, upLink), kUpLinkLeaves, kUpLinkSections},
    {"Wireless2.4", offsetof(ZepDevice, wireless), kRadioLeaves, kRadioSections},
    {"Wireless5", offsetof(ZepDevice, wireless) + sizeof(ZepWireless), kRadioLeaves, kRadioSections},
    {"SafetyWdn", offsetof(ZepDevice, safetyWdn), kSafetyLeaves},
};

#undef NUMBER
#undef TEXT
#undef NAME

} // namespace

const SectionPick kDevicePick = {"Device", 0, kDeviceLeaves, kDeviceSections};
const SectionPick kVersionPick = {"specVersion", 0, kVersionLeaves};

void storeLeaf(const LeafPick& leaf, char* section, const char* text) {
    if (leaf.capacity == 0) {
        const int32_t number = std::atoi(text);
        std::memcpy(section + leaf.offset, &number, sizeof number);
        return;
    }
    char* field = section + leaf.offset;
    const std::size_t length = strnlen(text, leaf.capacity - 1);
    std::memcpy(field, text, length);
    field[length] = '\0';
    if (leaf.table == nullptr) return;
    const int32_t row = SearchKeyArray(trim(field), leaf.table);
    std::memcpy(section + leaf.rowOffset, &row, sizeof row);
}

char* openSection(const SectionPick& section, char* parent) {
    if (!section.isList) return parent + section.offset;
    auto& access = *reinterpret_cast<ZepAccessControl*>(parent);
    if (access.acRuleCount >= ZEP_AC_RULE_MAX) return nullptr;
    return reinterpret_cast<char*>(&access.acRule[access.acRuleCount++]);
}

} // namespace pendra::bench
