#include "setupdoc/section_parsers.h"

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

// Cuts out an element's block and stores its path in the section, whose field may be shorter than a block path.
template <size_t Capacity>
Block cutOut(const char* parentPath, char* start, int32_t length, const char* element, char (&path)[Capacity]) {
    char blockPath[128];
    Block block;
    block.start = prepareXmlBlockData(parentPath, start, length, element, blockPath, &block.length);
    if (block) copyText(path, blockPath);
    block.path = path;
    return block;
}

void traceParser(const char* parser, const char* parentPath) {
    traceLine(parser, "%s\n", parentPath == nullptr ? "" : parentPath);
}

// The client asks to leave the section as it is. The answer is kept in the section, so that verification and
// application leave it alone too.
bool isClosedByDocument(const Block& block, int32_t& configurable) {
    return GetXmlKeyIntValue_(block.start, block.length, "Configurable", &configurable) == 1 && configurable == 0;
}

bool readInt(const Block& block, const char* tag, int32_t& field) {
    return GetXmlKeyIntValue(block.start, block.length, block.path, tag, &field) == 1;
}

bool readCut(const Block& block, const char* tag, char* field, int32_t capacity) {
    return GetXmlKeyStrValue(block.start, block.length, block.path, tag, field, capacity) == 1;
}

template <size_t Capacity>
bool readText(const Block& block, const char* tag, char (&field)[Capacity]) {
    return readCut(block, tag, field, Capacity);
}

// A text of a name table: the record keeps the table's spelling and the row, -1 for a text that is in no row.
template <size_t Capacity>
bool readName(const Block& block, const char* tag, char (&field)[Capacity], const char* const* table, int32_t& row) {
    if (!readText(block, tag, field)) return false;
    row = SearchKeyArray(trim(field), table);
    logPrintf(kLogTrace, "Zep %s='%s' -> %d\n", tag, field, row);
    return true;
}

bool readConnection(const Block& block, ZepUpLink& upLink) {
    if (usesLogin(upLink))
        return readText(block, "LoginUserName", upLink.LoginUserName) &&
               readText(block, "LoginPassword", upLink.LoginPassword);
    if (upLink.connTypeIdx == kStatic)
        return readText(block, "IP", upLink.IP) && readText(block, "NetMask", upLink.NetMask) &&
               readText(block, "Gateway", upLink.Gateway) && readText(block, "DNS", upLink.DNS);
    return true;
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
    if (!readInt(block, "ExtenderEnbl", device.ExtenderEnbl)) return false;
    logPrintf(kLogTrace, "Zep ExtenderEnbl=%d\n", device.ExtenderEnbl);
    return !isEthernetExtender() || do_ZepExtender_Parser(block.path, block.start, block.length,
                                                          &device.upLink.extenderSite, "ExtenderSite") == 1;
}

bool parseDeviceAndUpLink(const Block& block, ZepDevice& device) {
    if (!readText(block, "DeviceName", device.DeviceName)) return false;
    if (!readText(block, "DevicePwd", device.DevicePwd)) return false;
    if (!readInt(block, "RouterEnbl", device.RouterEnbl)) return false;
    logPrintf(kLogTrace, "Zep RouterEnbl=%d\n", device.RouterEnbl);
    if (do_ZepUpLink_Parser(block.path, block.start, block.length, &device.upLink, "UpLinkConnection") == 0)
        return false;
    return parseExtenderOfDevice(block, device);
}

// An access-point cloning document need not have it; the field is then left empty.
bool readRoaming(const Block& block, ZepDevice& device) {
    if (isFirstGeneration() || zepXmlData.easyRoamingFeature == 0) return true;
    if (!isApCloning()) return readText(block, "EasyRoaming", device.EasyRoaming);
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

// Only clients of later versions know these.
bool readLaterRadioLeaves(const Block& block, ZepWireless& radio) {
    return readName(block, "EncryptionType", radio.EncryptionType, WlanEncrypTypeArray, radio.encrypTypeIdx) &&
           readText(block, "Channel", radio.Channel) &&
           do_ZepAccessCtl_Parser(block.path, block.start, block.length, &radio.accessControl, "AccessControl") == 1;
}

bool readRadio(const Block& block, ZepWireless& radio) {
    constexpr int32_t kKeyCapacity = 32; // shorter than its field: posted keys have always been cut here
    return readInt(block, "WlEnbl", radio.WlEnbl) && readInt(block, "WlSchedule", radio.WlSchedule) &&
           (isFirstGeneration() || readText(block, "WirelessBSSID", radio.WirelessBSSID)) &&
           readText(block, "WirelessName", radio.WirelessName) &&
           readName(block, "EncryptionMode", radio.EncryptionMode, WlanEncrypModeArray, radio.encrypModeIdx) &&
           readCut(block, "EncryptionKey", radio.EncryptionKey, kKeyCapacity) &&
           (isFirstGeneration() || readLaterRadioLeaves(block, radio));
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
    traceParser("do_ZepDevice_Parser", parentPath);
    const Block block = cutOut(parentPath, start, length, element, device->path);
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
    traceParser("do_ZepUpLink_Parser", parentPath);
    const Block block = cutOut(parentPath, start, length, element, upLink->path);
    if (!block) return 0;
    if (isClosedByDocument(block, upLink->Configurable)) return 1;
    if (!readName(block, "HardwareType", upLink->HardwareType, HardwareTypeArray, upLink->hardwareTypeIdx)) return 0;
    if (!readName(block, "ConnType", upLink->ConnType, ConnTypeArray, upLink->connTypeIdx)) return 0;
    if (isFirstGeneration() && !readInt(block, "MTU", upLink->MTU)) return 0;
    if (!readConnection(block, *upLink)) return 0;
    return parseHardware(block, *upLink);
}

int32_t do_ZepISP_Parser(const char* parentPath, char* start, int32_t length, ZepIsp* isp, const char* element) {
    traceParser("do_ZepISP_Parser", parentPath);
    const Block block = cutOut(parentPath, start, length, element, isp->path);
    if (!block) return 0;
    if (!isFirstGeneration())
        return readText(block, "CountryName", isp->CountryName) && readText(block, "IspName", isp->IspName) ? 1 : 0;
    if (zepXmlData.device.upLink.hardwareTypeIdx != kDsl) return 1;
    return readInt(block, "VPI", isp->VPI) && readInt(block, "VCI", isp->VCI) &&
                   readName(block, "EncapsulationMode", isp->EncapsulationMode, ADslEncapModeArray, isp->encapModeIdx)
               ? 1
               : 0;
}

int32_t do_ZepExtender_Parser(const char* parentPath, char* start, int32_t length, ZepExtenderSite* site,
                              const char* element) {
    constexpr int32_t kCapacity = 18; // shorter than the fields: posted texts have always been cut here
    traceParser("do_ZepExtender_Parser", parentPath);
    const Block block = cutOut(parentPath, start, length, element, site->path);
    if (!block) return 0;
    return readInt(block, "Survey", site->Survey) && readText(block, "ConnRefSiteBSSID", site->ConnRefSiteBSSID) &&
                   readName(block, "WirelessType", site->WirelessType, WirelessTypeArray, site->wirelessTypeIdx) &&
                   readCut(block, "WirelessName", site->WirelessName, kCapacity) &&
                   readCut(block, "EncryptionKey", site->EncryptionKey, kCapacity)
               ? 1
               : 0;
}

int32_t do_ZepWireless_Parser(const char* parentPath, char* start, int32_t length, ZepWireless* radio,
                              const char* element) {
    if (radio->Configurable == 0) {
        formatText(radio->accessControl.path, "%s/%s", radio->path, "AccessControl");
        return 1;
    }
    traceParser("do_ZepWireless_Parser", parentPath);
    const Block block = cutOut(parentPath, start, length, element, radio->path);
    if (!block) return 0;
    if (isClosedByDocument(block, radio->Configurable)) return 1;
    return readRadio(block, *radio) ? 1 : 0;
}

int32_t do_ZepAccessCtl_Parser(const char* parentPath, char* start, int32_t length, ZepAccessControl* access,
                               const char* element) {
    traceParser("do_ZepAccessCtl_Parser", parentPath);
    const Block block = cutOut(parentPath, start, length, element, access->path);
    if (!block || !readInt(block, "WlAcEnbl", access->WlAcEnbl)) return 0;
    if (access->WlAcEnbl != 1) return storeRuleCount(*access, 0);
    return readInt(block, "WlAcMode", access->WlAcMode) ? parseRules(block, *access) : 0;
}

int32_t do_ZepAcRule_Parser(const char* parentPath, char* start, int32_t length, ZepAcRule* rule, const char* element) {
    traceParser("do_ZepAcRule_Parser", parentPath);
    const Block block = cutOut(parentPath, start, length, element, rule->path);
    if (!block) return 0;
    return readInt(block, "Active", rule->Active) && readText(block, "MAC", rule->MAC) ? 1 : 0;
}

int32_t do_ZepSafetyWdn_Parser(const char* parentPath, char* start, int32_t length, ZepSafetyWdn* safety,
                               const char* element) {
    traceParser("do_ZepSafetyWdn_Parser", parentPath);
    const Block block = cutOut(parentPath, start, length, element, safety->path);
    if (!block) return 0;
    return readInt(block, "SafetyWdnEnbl", safety->SafetyWdnEnbl) &&
                   readInt(block, "UrlDetectEnbl", safety->UrlDetectEnbl) &&
                   readInt(block, "SafetyNotifyEnbl", safety->SafetyNotifyEnbl) &&
                   readInt(block, "ToolRecommendEnbl", safety->ToolRecommendEnbl)
               ? 1
               : 0;
}

} // namespace pendra
