#include "apply/verification.h"

#include <cstddef>

#include "apply/channel_list.h"
#include "common/bounded_text.h"
#include "common/trace.h"
#include "setupdoc/record_access.h"
#include "setupdoc/result_document.h"

namespace pendra {
namespace {

enum class Verdict {
    goOn,     // no fault so far
    accepted, // the document is accepted at once, whatever else it holds
    fault     // reported in the result document
};

Verdict fail(const char* path, const char* tag) {
    reportInvalidValue(path, tag);
    return Verdict::fault;
}

Verdict require(bool valid, const char* path, const char* tag) {
    return valid ? Verdict::goOn : fail(path, tag);
}

enum class Test : uint8_t {
    rule,    // the validation rule of the record's field at `other`
    text,    // not empty
    address, // an IP address
    netmask,
    range, // a number from 0 to `limit`
};

// What one field of a section must be.
struct Check {
    const char* tag;
    uint16_t offset;
    Test test;
    uint8_t limit = 0;
    uint16_t other = 0;
};

#define RULE(Section, field) \
    { #field, offsetof(Section, field), Test::rule, 0, offsetof(Section, field##Rule) }
#define TEXT(Section, field) \
    { #field, offsetof(Section, field), Test::text }
#define RANGE(Section, field, limit) \
    { #field, offsetof(Section, field), Test::range, limit }

// A fault under a rule is reported with the rule's own code.
Verdict requireRule(char* field, const char* rule, const char* path, const char* tag) {
    const int32_t code = validate_ZepData(trim(field), rule);
    if (code == 0) return Verdict::goOn;
    reportFault(code, path, tag);
    return Verdict::fault;
}

bool passes(const Check& check, char* field) {
    switch (check.test) {
        case Test::text:
            return !isEmpty(trim(field));
        case Test::address:
            return is_Valid_IP(trim(field)) == 1;
        case Test::netmask:
            return is_Valid_Netmask(trim(field)) == 1;
        default:
            return is_in_range(*reinterpret_cast<const int32_t*>(field), 0, check.limit) == 1;
    }
}

// In the order of the table; the first field that fails decides.
Verdict checkRows(char* section, const char* path, const Check* check, size_t count) {
    Verdict verdict = Verdict::goOn;
    for (; verdict == Verdict::goOn && count > 0; check++, count--) {
        char* field = section + check->offset;
        verdict = check->test == Test::rule ? requireRule(field, section + check->other, path, check->tag)
                                            : require(passes(*check, field), path, check->tag);
    }
    return verdict;
}

template <typename Section, size_t Count>
Verdict checkFields(Section& section, const Check (&checks)[Count]) {
    return checkRows(reinterpret_cast<char*>(&section), section.path, checks, Count);
}

bool isWepKey(const char* key) {
    return is_Valid_WepKey(key, 5) == 1 || is_Valid_WepKey(key, 13) == 1;
}

// ---- uplink ----

constexpr Check kLoginChecks[] = {
    RULE(ZepUpLink, LoginUserName),
    RULE(ZepUpLink, LoginPassword),
};

constexpr Check kStaticChecks[] = {
    {"IP", offsetof(ZepUpLink, IP), Test::address},
    {"NetMask", offsetof(ZepUpLink, NetMask), Test::netmask},
    {"Gateway", offsetof(ZepUpLink, Gateway), Test::address},
};

constexpr Check kDnsCheck[] = {{"DNS", offsetof(ZepUpLink, DNS), Test::address}};

constexpr Check kIspChecks[] = {
    TEXT(ZepIsp, CountryName),
    TEXT(ZepIsp, IspName),
};

constexpr Check kSurveyCheck[] = {RANGE(ZepExtenderSite, Survey, 1)};

constexpr Check kSiteChecks[] = {TEXT(ZepExtenderSite, ConnRefSiteBSSID)};

Verdict checkStaticAddress(ZepUpLink& upLink) {
    const Verdict verdict = checkFields(upLink, kStaticChecks);
    if (verdict != Verdict::goOn) return verdict;
    if (!isEmpty(trim(upLink.DNS))) return checkFields(upLink, kDnsCheck);
    copyText(upLink.DNS, "8.8.8.8");
    return Verdict::goOn;
}

Verdict checkConnection(ZepUpLink& upLink) {
    if (upLink.connTypeIdx < 0) return fail(upLink.path, "ConnType");
    if (usesLogin(upLink)) return checkFields(upLink, kLoginChecks);
    return upLink.connTypeIdx == kStatic ? checkStaticAddress(upLink) : Verdict::goOn;
}

Verdict checkSiteKey(ZepExtenderSite& site, const char* rule) {
    const char* key = trim(site.EncryptionKey);
    if (!isEmpty(key) && is_Valid_WpaPskKey(key) == 0 && !isWepKey(key)) return fail(site.path, "EncryptionKey");
    return requireRule(site.EncryptionKey, rule, site.path, "EncryptionKey");
}

Verdict checkExtenderSite(ZepExtenderSite& site) {
    if (checkFields(site, kSurveyCheck) == Verdict::fault) return Verdict::fault;
    if (site.Survey == 1) return Verdict::accepted; // a survey applies nothing, so nothing else matters
    if (checkFields(site, kSiteChecks) == Verdict::fault) return Verdict::fault;
    if (site.wirelessTypeIdx < 0) return fail(site.path, "WirelessType");
    const ZepWireless& band = zepXmlData.device.wireless[site.wirelessTypeIdx];
    if (requireRule(site.WirelessName, band.WirelessNameRule, site.path, "WirelessName") == Verdict::fault)
        return Verdict::fault;
    return checkSiteKey(site, band.EncryptionKeyRule);
}

// Both upper limits look at the hardware and not at the connection type. In this branch the hardware is always "DSL",
// so that only the second can apply and 1492 is the limit for every connection. That range is the interface.
Verdict checkMtu(const ZepUpLink& upLink) {
    const bool tooLarge = (upLink.MTU >= 1501 && upLink.hardwareTypeIdx == kEthernet) ||
                          (upLink.MTU >= 1493 && upLink.hardwareTypeIdx == kDsl);
    return require(upLink.MTU > 0 && !tooLarge, upLink.dsl.path, "MTU");
}

// A wrong encapsulation is reported under the encryption's tag: that message is the interface.
Verdict checkDslLine(const ZepUpLink& upLink) {
    const ZepIsp& dsl = upLink.dsl;
    Verdict verdict = checkMtu(upLink);
    if (verdict == Verdict::goOn) verdict = require(is_in_range(dsl.VPI, 0, 8) == 1, dsl.path, "VPI");
    if (verdict == Verdict::goOn) verdict = require(is_in_range(dsl.VCI, 32, 32767) == 1, dsl.path, "VCI");
    if (verdict == Verdict::goOn) verdict = require(dsl.encapModeIdx >= 0, dsl.path, "EncryptionMode");
    return verdict;
}

Verdict checkHardware(ZepUpLink& upLink) {
    const int32_t kind = upLink.hardwareTypeIdx;
    if (kind == kAdsl || kind == kVdsl) return checkFields(upLink.dsl, kIspChecks);
    if (kind == kWwanApn) return checkFields(upLink.apn, kIspChecks);
    if (usesExtenderSite()) return checkExtenderSite(upLink.extenderSite);
    if (kind == kDsl && isFirstGeneration()) return checkDslLine(upLink);
    return Verdict::goOn;
}

Verdict checkHardwareType(ZepUpLink& upLink) {
    if (upLink.hardwareTypeIdx < 0) return fail(upLink.path, "HardwareType");
    const bool supported = isFirstGeneration() || strstri(upLink.HardwareSupport, trim(upLink.HardwareType)) != nullptr;
    return require(supported, upLink.path, "HardwareType");
}

Verdict checkUpLink(ZepUpLink& upLink) {
    if (upLink.Configurable == 0) return Verdict::goOn;
    Verdict verdict = checkHardwareType(upLink);
    if (verdict == Verdict::goOn) verdict = checkConnection(upLink);
    if (verdict == Verdict::goOn) verdict = checkHardware(upLink);
    return verdict;
}

constexpr Check kDeviceChecks[] = {
    RULE(ZepDevice, DeviceName),
    RULE(ZepDevice, DevicePwd),
};

Verdict checkDevice(ZepDevice& device) {
    if (isApCloning()) return Verdict::goOn;
    // A device section that is left alone leaves the radios and the safety section alone too.
    if (device.Configurable == 0) return Verdict::accepted;
    const Verdict verdict = checkFields(device, kDeviceChecks);
    return verdict == Verdict::goOn ? checkUpLink(device.upLink) : verdict;
}

// ---- radios ----

bool usesWpa(int32_t mode) {
    return is_in_range(mode, kWpa, kWpa2) == 1; // with both at once between them
}

bool typeFitsMode(const ZepWireless& radio) {
    const int32_t type = radio.encrypTypeIdx;
    if (type == kAuto) return true;
    if (usesWpa(radio.encrypModeIdx)) return type == kTkip || type == kAes;
    if (radio.encrypModeIdx == kWep) return type == kOpen || type == kShared;
    return type == kNoType;
}

bool keyFitsMode(int32_t mode, const char* key) {
    if (usesWpa(mode)) return is_Valid_WpaPskKey(key) == 1;
    return mode != kWep || isWepKey(key);
}

Verdict checkEncryption(ZepWireless& radio) {
    const char* const key = trim(radio.EncryptionKey);
    if (radio.encrypModeIdx < 0) return fail(radio.path, "EncryptionMode");
    if (!isFirstGeneration() && !typeFitsMode(radio)) return fail(radio.path, "EncryptionType");
    if (!keyFitsMode(radio.encrypModeIdx, key)) return fail(radio.path, "EncryptionKey");
    return requireRule(radio.EncryptionKey, radio.EncryptionKeyRule, radio.path, "EncryptionKey");
}

// The other router's channel may be one that this radio does not have: a cloned radio then chooses its own.
Verdict checkChannel(ZepWireless& radio) {
    if (isChannelInList(trim(radio.Channel), radio.ChannelList)) return Verdict::goOn;
    if (!isApCloning()) return fail(radio.path, "Channel");
    copyText(radio.Channel, "0");
    return Verdict::goOn;
}

constexpr Check kRuleCheck[] = {RANGE(ZepAcRule, Active, 1)};

Verdict checkRule(ZepAcRule& rule) {
    if (checkFields(rule, kRuleCheck) == Verdict::fault) return Verdict::fault;
    if (!isEmpty(trim(rule.MAC))) return Verdict::goOn;
    eventLine(kLogInfo, "Invalid Mac=%s\n", rule.MAC);
    return fail(rule.path, "MAC");
}

constexpr Check kAccessModeCheck[] = {RANGE(ZepAccessControl, WlAcMode, 1)};

Verdict checkAccessControl(ZepAccessControl& access) {
    // The message names the radio's enable tag and not WlAcEnbl: that message is the interface.
    if (is_in_range(access.WlAcEnbl, 0, 2) == 0) return fail(access.path, "WlEnbl");
    if (access.WlAcEnbl != 1) return Verdict::goOn;
    Verdict verdict = checkFields(access, kAccessModeCheck);
    for (int32_t index = 0; verdict == Verdict::goOn && index < rulesInUse(access); index++)
        verdict = checkRule(access.acRule[index]);
    return verdict;
}

constexpr Check kSwitchChecks[] = {
    RANGE(ZepWireless, WlEnbl, 3),
    RANGE(ZepWireless, WlSchedule, 2),
};

constexpr Check kBssidCheck[] = {TEXT(ZepWireless, WirelessBSSID)};

constexpr Check kNetworkCheck[] = {RULE(ZepWireless, WirelessName)};

Verdict checkRadio(ZepWireless& radio) {
    const bool later = !isFirstGeneration();
    Verdict verdict = checkFields(radio, kSwitchChecks);
    if (verdict == Verdict::goOn && later) verdict = checkFields(radio, kBssidCheck);
    if (verdict == Verdict::goOn) verdict = checkFields(radio, kNetworkCheck);
    if (verdict == Verdict::goOn) verdict = checkEncryption(radio);
    if (verdict == Verdict::goOn && later) verdict = checkChannel(radio);
    if (verdict == Verdict::goOn && later) verdict = checkAccessControl(radio.accessControl);
    return verdict;
}

Verdict checkRadios(ZepDevice& device) {
    Verdict verdict = Verdict::goOn;
    for (int index = 0; verdict == Verdict::goOn && index < kRadios; index++) {
        ZepWireless& radio = device.wireless[index];
        if (hasRadio(index) && radio.Configurable != 0) verdict = checkRadio(radio);
    }
    return verdict;
}

// ---- safety ----

constexpr Check kSafetyChecks[] = {
    RANGE(ZepSafetyWdn, SafetyWdnEnbl, 1),
    RANGE(ZepSafetyWdn, UrlDetectEnbl, 1),
    RANGE(ZepSafetyWdn, SafetyNotifyEnbl, 1),
    RANGE(ZepSafetyWdn, ToolRecommendEnbl, 1),
};

Verdict checkSafety(ZepSafetyWdn& safety) {
    if (zepXmlData.safetyWdnFeature == 0 || isApCloning()) return Verdict::goOn;
    return checkFields(safety, kSafetyChecks);
}

} // namespace

int32_t Verify_ZepXml() {
    traceEntry("Verify_ZepXml");
    ZepDevice& device = zepXmlData.device;
    Verdict verdict = checkDevice(device);
    if (verdict == Verdict::goOn) verdict = checkRadios(device);
    if (verdict == Verdict::goOn) verdict = checkSafety(device.safetyWdn);
    if (verdict == Verdict::goOn) {
        traceLine("Verify_ZepXml", "done, ret=1\n");
    }
    return verdict == Verdict::fault ? 0 : 1;
}

} // namespace pendra
