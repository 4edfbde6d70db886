#include "setupdoc/section_parsers.h"

#include <cstddef>
#include <cstring>

#include "common/bounded_text.h"
#include "common/trace.h"
#include "setupdoc/record_access.h"

namespace pendra {
namespace {

// An element's content, and the path under which a missing leaf of it is reported.
struct Block {
    char* start = nullptr;
    int32_t length = 0;
    const char* path = nullptr;

    explicit operator bool() const { return start != nullptr; }
};

// Traces the parser, cuts out its element's block and stores the path in the section, whose field may be shorter than a
// block path.
Block openBlock(const char* parser, const char* parentPath, char* start, int32_t length, const char* element,
                TextField path) {
    traceLine(parser, "%s\n", parentPath == nullptr ? "" : parentPath);
    char blockPath[128];
    Block block;
    block.start = prepareXmlBlockData(parentPath, start, length, element, blockPath, &block.length);
    if (block) copyText(path, blockPath);
    block.path = path.text;
    return block;
}

// The client asks to leave the section as it is. The answer is kept in the section, so that verification and
// application leave it alone too.
bool isClosedByDocument(const Block& block, int32_t& configurable) {
    return GetXmlKeyIntValue_(block.start, block.length, "Configurable", &configurable) == 1 && configurable == 0;
}

bool readInt(const Block& block, const char* tag, int32_t& field) {
    return GetXmlKeyIntValue(block.start, block.length, block.path, tag, &field) == 1;
}

enum class Kind : uint8_t {
    text,
    name, // a text of a name table, with its row beside it
    number,
    tracedNumber,
};

// Which generation of clients sends the leaf.
enum class Sent : uint8_t { always, byFirst, byLater };

// One leaf of an element and the field of the section that it fills.
struct Leaf {
    const char* tag;
    uint16_t offset;
    uint16_t capacity;
    Kind kind;
    Sent sent = Sent::always;
    uint16_t rowOffset = 0;
    const char* const* table = nullptr;
};

#define NUMBER(Section, field) \
    { #field, offsetof(Section, field), sizeof(Section::field), Kind::number }
#define TRACED_NUMBER(Section, field) \
    { #field, offsetof(Section, field), sizeof(Section::field), Kind::tracedNumber }
#define TEXT(Section, field) \
    { #field, offsetof(Section, field), sizeof(Section::field), Kind::text }
#define NAME(Section, field, rowField, table, sent) \
    { #field, offsetof(Section, field), sizeof(Section::field), Kind::name, sent, offsetof(Section, rowField), table }
// A text that has always been cut shorter than its field.
#define CUT_TEXT(Section, field, capacity) \
    { #field, offsetof(Section, field), capacity, Kind::text }

constexpr Leaf kDeviceLeaves[] = {
    TEXT(ZepDevice, DeviceName),
    TEXT(ZepDevice, DevicePwd),
    TRACED_NUMBER(ZepDevice, RouterEnbl),
};

constexpr Leaf kExtenderEnblLeaf[] = {TRACED_NUMBER(ZepDevice, ExtenderEnbl)};

constexpr Leaf kRoamingLeaf[] = {TEXT(ZepDevice, EasyRoaming)};

constexpr Leaf kUpLinkLeaves[] = {
    NAME(ZepUpLink, HardwareType, hardwareTypeIdx, HardwareTypeArray, Sent::always),
    NAME(ZepUpLink, ConnType, connTypeIdx, ConnTypeArray, Sent::always),
    {"MTU", offsetof(ZepUpLink, MTU), sizeof(ZepUpLink::MTU), Kind::number, Sent::byFirst},
};

constexpr Leaf kLoginLeaves[] = {
    TEXT(ZepUpLink, LoginUserName),
    TEXT(ZepUpLink, LoginPassword),
};

constexpr Leaf kStaticLeaves[] = {
    TEXT(ZepUpLink, IP),
    TEXT(ZepUpLink, NetMask),
    TEXT(ZepUpLink, Gateway),
    TEXT(ZepUpLink, DNS),
};

constexpr Leaf kIspLeaves[] = {
    TEXT(ZepIsp, CountryName),
    TEXT(ZepIsp, IspName),
};

constexpr Leaf kDslLineLeaves[] = {
    NUMBER(ZepIsp, VPI),
    NUMBER(ZepIsp, VCI),
    NAME(ZepIsp, EncapsulationMode, encapModeIdx, ADslEncapModeArray, Sent::always),
};

constexpr Leaf kExtenderLeaves[] = {
    NUMBER(ZepExtenderSite, Survey),
    TEXT(ZepExtenderSite, ConnRefSiteBSSID),
    NAME(ZepExtenderSite, WirelessType, wirelessTypeIdx, WirelessTypeArray, Sent::always),
    CUT_TEXT(ZepExtenderSite, WirelessName, 18),
    CUT_TEXT(ZepExtenderSite, EncryptionKey, 18),
};

constexpr Leaf kRadioLeaves[] = {
    NUMBER(ZepWireless, WlEnbl),
    NUMBER(ZepWireless, WlSchedule),
    {"WirelessBSSID", offsetof(ZepWireless, WirelessBSSID), sizeof(ZepWireless::WirelessBSSID), Kind::text,
     Sent::byLater},
    TEXT(ZepWireless, WirelessName),
    NAME(ZepWireless, EncryptionMode, encrypModeIdx, WlanEncrypModeArray, Sent::always),
    CUT_TEXT(ZepWireless, EncryptionKey, 32),
    NAME(ZepWireless, EncryptionType, encrypTypeIdx, WlanEncrypTypeArray, Sent::byLater),
    {"Channel", offsetof(ZepWireless, Channel), sizeof(ZepWireless::Channel), Kind::text, Sent::byLater},
};

constexpr Leaf kRuleLeaves[] = {
    NUMBER(ZepAcRule, Active),
    TEXT(ZepAcRule, MAC),
};

constexpr Leaf kSafetyLeaves[] = {
    NUMBER(ZepSafetyWdn, SafetyWdnEnbl),
    NUMBER(ZepSafetyWdn, UrlDetectEnbl),
    NUMBER(ZepSafetyWdn, SafetyNotifyEnbl),
    NUMBER(ZepSafetyWdn, ToolRecommendEnbl),
};

bool isSent(const Leaf& leaf) {
    return leaf.sent == Sent::always || (leaf.sent == Sent::byFirst) == isFirstGeneration();
}

// The record keeps a name table's spelling and the row, -1 for a text that is in no row.
void settleName(const Leaf& leaf, char* section) {
    char* text = section + leaf.offset;
    const int32_t row = SearchKeyArray(trim(text), leaf.table);
    std::memcpy(section + leaf.rowOffset, &row, sizeof row);
    logPrintf(kLogTrace, "Zep %s='%s' -> %d\n", leaf.tag, text, row);
}

// NOLINTNEXTLINE(readability-non-const-parameter): the number behind it is written
bool readNumber(const Block& block, const Leaf& leaf, char* section) {
    auto& field = *reinterpret_cast<int32_t*>(section + leaf.offset);
    if (!readInt(block, leaf.tag, field)) return false;
    if (leaf.kind == Kind::tracedNumber) logPrintf(kLogTrace, "Zep %s=%d\n", leaf.tag, field);
    return true;
}

bool readLeaf(const Block& block, const Leaf& leaf, char* section) {
    if (leaf.kind == Kind::number || leaf.kind == Kind::tracedNumber) return readNumber(block, leaf, section);
    char* text = section + leaf.offset;
    if (GetXmlKeyStrValue(block.start, block.length, block.path, leaf.tag, text, leaf.capacity) == 0) return false;
    if (leaf.kind == Kind::name) settleName(leaf, section);
    return true;
}

// In the order of the table, up to the first required leaf that is missing.
bool readRows(const Block& block, char* section, const Leaf* leaf, size_t count) {
    for (; count > 0; leaf++, count--)
        if (isSent(*leaf) && !readLeaf(block, *leaf, section)) return false;
    return true;
}

template <typename Section, size_t Count>
bool readLeaves(const Block& block, Section& section, const Leaf (&leaves)[Count]) {
    return readRows(block, reinterpret_cast<char*>(&section), leaves, Count);
}

bool readConnection(const Block& block, ZepUpLink& upLink) {
    if (usesLogin(upLink)) return readLeaves(block, upLink, kLoginLeaves);
    return upLink.connTypeIdx != kStatic || readLeaves(block, upLink, kStaticLeaves);
}

int32_t parseHardware(const Block& block, ZepUpLink& upLink) {
    switch (upLink.hardwareTypeIdx) {
        case kWwan80211:
            return do_ZepExtender_Parser(block.path, block.start, block.length, &upLink.extenderSite, "ExtenderSite");
        case kAdsl:
        case kVdsl:
        case kDsl:
            return do_ZepISP_Parser(block.path, block.start, block.length, &upLink.dsl, "DSL");
        case kWwanApn:
            return do_ZepISP_Parser(block.path, block.start, block.length, &upLink.apn, "APN");
        default:
            return 1;
    }
}

bool parseExtenderOfDevice(const Block& block, ZepDevice& device) {
    if (!isFirstGeneration()) return true;
    if (!readLeaves(block, device, kExtenderEnblLeaf)) return false;
    return !isEthernetExtender() || do_ZepExtender_Parser(block.path, block.start, block.length,
                                                          &device.upLink.extenderSite, "ExtenderSite") == 1;
}

bool parseDeviceAndUpLink(const Block& block, ZepDevice& device) {
    if (!readLeaves(block, device, kDeviceLeaves)) return false;
    if (do_ZepUpLink_Parser(block.path, block.start, block.length, &device.upLink, "UpLinkConnection") == 0)
        return false;
    return parseExtenderOfDevice(block, device);
}

// An access-point cloning document need not have it; the field is then left empty.
bool readRoaming(const Block& block, ZepDevice& device) {
    if (isFirstGeneration() || zepXmlData.easyRoamingFeature == 0) return true;
    if (!isApCloning()) return readLeaves(block, device, kRoamingLeaf);
    GetXmlKeyStrValue_(block.start, block.length, "EasyRoaming", device.EasyRoaming, sizeof device.EasyRoaming);
    return true;
}

bool parseRadios(const Block& block, ZepDevice& device) {
    for (int radio = 0; radio < kRadios; radio++) {
        if (!hasRadio(radio)) continue;
        char element[32];
        formatText(element, "Wireless%s", WirelessTypeArray[radio]);
        if (do_ZepWireless_Parser(block.path, block.start, block.length, &device.wireless[radio], element) == 0)
            return false;
    }
    return true;
}

bool parseSafety(const Block& block, ZepDevice& device) {
    return zepXmlData.safetyWdnFeature == 0 ||
           do_ZepSafetyWdn_Parser(block.path, block.start, block.length, &device.safetyWdn, "SafetyWdn") == 1;
}

int32_t storeRuleCount(ZepAccessControl& access, int32_t count) {
    access.acRuleCount = count;
    logPrintf(kLogTrace, "WlAcRuleNo=%d\n", count);
    return 1;
}

// A 41st rule is ignored. The search for the next rule goes on right behind the opening tag of the last one.
int32_t parseRules(const Block& block, ZepAccessControl& access) {
    constexpr int32_t kOpeningTagLength = 8; // "<AcRule>"
    const char* const end = block.start + block.length;
    char* next = block.start;
    int32_t remaining = block.length;
    int32_t count = 0;
    while (count < ZEP_AC_RULE_MAX) {
        char* rule = SearchXmlKeyHeader(next, remaining, "AcRule");
        if (rule == nullptr) break;
        const auto ruleLength = static_cast<int32_t>(end - rule);
        if (do_ZepAcRule_Parser(block.path, rule, ruleLength, &access.acRule[count], "AcRule") == 0) return 0;
        next = rule + kOpeningTagLength;
        remaining = ruleLength - kOpeningTagLength;
        count++;
    }
    return storeRuleCount(access, count);
}

} // namespace

int32_t do_ZepDevice_Parser(const char* parentPath, char* start, int32_t length, ZepDevice* device,
                            const char* element) {
    if (device->Configurable == 0) return 1;
    const Block block = openBlock("do_ZepDevice_Parser", parentPath, start, length, element, device->path);
    if (!block) return 0;
    if (!isApCloning()) {
        if (isClosedByDocument(block, device->Configurable)) return 1;
        if (!parseDeviceAndUpLink(block, *device)) return 0;
    }
    return readRoaming(block, *device) && parseRadios(block, *device) && parseSafety(block, *device) ? 1 : 0;
}

int32_t do_ZepUpLink_Parser(const char* parentPath, char* start, int32_t length, ZepUpLink* upLink,
                            const char* element) {
    if (upLink->Configurable == 0) return 1;
    const Block block = openBlock("do_ZepUpLink_Parser", parentPath, start, length, element, upLink->path);
    if (!block) return 0;
    if (isClosedByDocument(block, upLink->Configurable)) return 1;
    if (!readLeaves(block, *upLink, kUpLinkLeaves) || !readConnection(block, *upLink)) return 0;
    return parseHardware(block, *upLink);
}

int32_t do_ZepISP_Parser(const char* parentPath, char* start, int32_t length, ZepIsp* isp, const char* element) {
    const Block block = openBlock("do_ZepISP_Parser", parentPath, start, length, element, isp->path);
    if (!block) return 0;
    if (!isFirstGeneration()) return readLeaves(block, *isp, kIspLeaves) ? 1 : 0;
    if (zepXmlData.device.upLink.hardwareTypeIdx != kDsl) return 1;
    return readLeaves(block, *isp, kDslLineLeaves) ? 1 : 0;
}

int32_t do_ZepExtender_Parser(const char* parentPath, char* start, int32_t length, ZepExtenderSite* site,
                              const char* element) {
    const Block block = openBlock("do_ZepExtender_Parser", parentPath, start, length, element, site->path);
    return block && readLeaves(block, *site, kExtenderLeaves) ? 1 : 0;
}

int32_t do_ZepWireless_Parser(const char* parentPath, char* start, int32_t length, ZepWireless* radio,
                              const char* element) {
    ZepAccessControl& access = radio->accessControl;
    if (radio->Configurable == 0) {
        formatText(access.path, "%s/%s", radio->path, "AccessControl");
        return 1;
    }
    const Block block = openBlock("do_ZepWireless_Parser", parentPath, start, length, element, radio->path);
    if (!block) return 0;
    if (isClosedByDocument(block, radio->Configurable)) return 1;
    if (!readLeaves(block, *radio, kRadioLeaves)) return 0;
    if (isFirstGeneration()) return 1;
    return do_ZepAccessCtl_Parser(block.path, block.start, block.length, &access, "AccessControl");
}

int32_t do_ZepAccessCtl_Parser(const char* parentPath, char* start, int32_t length, ZepAccessControl* access,
                               const char* element) {
    const Block block = openBlock("do_ZepAccessCtl_Parser", parentPath, start, length, element, access->path);
    if (!block || !readInt(block, "WlAcEnbl", access->WlAcEnbl)) return 0;
    if (access->WlAcEnbl != 1) return storeRuleCount(*access, 0);
    return readInt(block, "WlAcMode", access->WlAcMode) ? parseRules(block, *access) : 0;
}

int32_t do_ZepAcRule_Parser(const char* parentPath, char* start, int32_t length, ZepAcRule* rule, const char* element) {
    const Block block = openBlock("do_ZepAcRule_Parser", parentPath, start, length, element, rule->path);
    return block && readLeaves(block, *rule, kRuleLeaves) ? 1 : 0;
}

int32_t do_ZepSafetyWdn_Parser(const char* parentPath, char* start, int32_t length, ZepSafetyWdn* safety,
                               const char* element) {
    const Block block = openBlock("do_ZepSafetyWdn_Parser", parentPath, start, length, element, safety->path);
    return block && readLeaves(block, *safety, kSafetyLeaves) ? 1 : 0;
}

} // namespace pendra
