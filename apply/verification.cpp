#include "apply/verification.h"

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

// The first check that does not let the document go on decides.
template <typename... Checks>
Verdict firstOf(const Checks&... checks) {
    Verdict verdict = Verdict::goOn;
    const auto run = [&verdict](const auto& check) {
        if (verdict == Verdict::goOn) verdict = check();
    };
    (run(checks), ...);
    return verdict;
}

// A fault under a rule is reported with the rule's own code.
Verdict requireRule(char* field, const char* rule, const char* path, const char* tag) {
    const int32_t code = validate_ZepData(trim(field), rule);
    if (code == 0) return Verdict::goOn;
    reportFault(code, path, tag);
    return Verdict::fault;
}

Verdict requireText(char* field, const char* path, const char* tag) {
    return require(!isEmpty(trim(field)), path, tag);
}

Verdict requireFlag(int32_t value, const char* path, const char* tag) {
    return require(is_in_range(value, 0, 1) == 1, path, tag);
}

bool isWepKey(const char* key) {
    return is_Valid_WepKey(key, 5) == 1 || is_Valid_WepKey(key, 13) == 1;
}

// ---- uplink ----

Verdict checkLogin(ZepUpLink& upLink) {
    return firstOf(
        [&] { return requireRule(upLink.LoginUserName, upLink.LoginUserNameRule, upLink.path, "LoginUserName"); },
        [&] { return requireRule(upLink.LoginPassword, upLink.LoginPasswordRule, upLink.path, "LoginPassword"); });
}

Verdict checkDns(ZepUpLink& upLink) {
    if (!isEmpty(trim(upLink.DNS))) return require(is_Valid_IP(upLink.DNS) == 1, upLink.path, "DNS");
    copyText(upLink.DNS, "8.8.8.8");
    return Verdict::goOn;
}

Verdict checkStaticAddress(ZepUpLink& upLink) {
    return firstOf([&] { return require(is_Valid_IP(trim(upLink.IP)) == 1, upLink.path, "IP"); },
                   [&] { return require(is_Valid_Netmask(trim(upLink.NetMask)) == 1, upLink.path, "NetMask"); },
                   [&] { return require(is_Valid_IP(trim(upLink.Gateway)) == 1, upLink.path, "Gateway"); },
                   [&] { return checkDns(upLink); });
}

Verdict checkConnection(ZepUpLink& upLink) {
    if (upLink.connTypeIdx < 0) return fail(upLink.path, "ConnType");
    if (usesLogin(upLink)) return checkLogin(upLink);
    return upLink.connTypeIdx == kStatic ? checkStaticAddress(upLink) : Verdict::goOn;
}

Verdict checkIsp(ZepIsp& isp) {
    return firstOf([&] { return requireText(isp.CountryName, isp.path, "CountryName"); },
                   [&] { return requireText(isp.IspName, isp.path, "IspName"); });
}

Verdict checkSiteKey(ZepExtenderSite& site, const char* rule) {
    const char* key = trim(site.EncryptionKey);
    if (!isEmpty(key) && is_Valid_WpaPskKey(key) == 0 && !isWepKey(key)) return fail(site.path, "EncryptionKey");
    return requireRule(site.EncryptionKey, rule, site.path, "EncryptionKey");
}

Verdict checkExtenderSite(ZepExtenderSite& site) {
    if (requireFlag(site.Survey, site.path, "Survey") == Verdict::fault) return Verdict::fault;
    if (site.Survey == 1) return Verdict::accepted; // a survey applies nothing, so nothing else matters
    if (requireText(site.ConnRefSiteBSSID, site.path, "ConnRefSiteBSSID") == Verdict::fault) return Verdict::fault;
    if (site.wirelessTypeIdx < 0) return fail(site.path, "WirelessType");
    const ZepWireless& band = zepXmlData.device.wireless[site.wirelessTypeIdx];
    return firstOf([&] { return requireRule(site.WirelessName, band.WirelessNameRule, site.path, "WirelessName"); },
                   [&] { return checkSiteKey(site, band.EncryptionKeyRule); });
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
    return firstOf([&] { return checkMtu(upLink); },
                   [&] { return require(is_in_range(dsl.VPI, 0, 8) == 1, dsl.path, "VPI"); },
                   [&] { return require(is_in_range(dsl.VCI, 32, 32767) == 1, dsl.path, "VCI"); },
                   [&] { return require(dsl.encapModeIdx >= 0, dsl.path, "EncryptionMode"); });
}

Verdict checkHardware(ZepUpLink& upLink) {
    const int32_t kind = upLink.hardwareTypeIdx;
    if (kind == kAdsl || kind == kVdsl) return checkIsp(upLink.dsl);
    if (kind == kWwanApn) return checkIsp(upLink.apn);
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
    return firstOf([&] { return checkHardwareType(upLink); }, [&] { return checkConnection(upLink); },
                   [&] { return checkHardware(upLink); });
}

Verdict checkDevice(ZepDevice& device) {
    if (isApCloning()) return Verdict::goOn;
    // A device section that is left alone leaves the radios and the safety section alone too.
    if (device.Configurable == 0) return Verdict::accepted;
    return firstOf([&] { return requireRule(device.DeviceName, device.DeviceNameRule, device.path, "DeviceName"); },
                   [&] { return requireRule(device.DevicePwd, device.DevicePwdRule, device.path, "DevicePwd"); },
                   [&] { return checkUpLink(device.upLink); });
}

// ---- radios ----

bool typeFitsMode(const ZepWireless& radio) {
    const int32_t type = radio.encrypTypeIdx;
    if (type == kAuto) return true;
    switch (radio.encrypModeIdx) {
        case kWpa:
        case kWpaWpa2:
        case kWpa2:
            return type == kTkip || type == kAes;
        case kWep:
            return type == kOpen || type == kShared;
        default:
            return type == kNoType;
    }
}

bool keyFitsMode(const ZepWireless& radio) {
    switch (radio.encrypModeIdx) {
        case kWpa:
        case kWpaWpa2:
        case kWpa2:
            return is_Valid_WpaPskKey(radio.EncryptionKey) == 1;
        case kWep:
            return isWepKey(radio.EncryptionKey);
        default:
            return true;
    }
}

Verdict checkSwitches(ZepWireless& radio) {
    return firstOf([&] { return require(is_in_range(radio.WlEnbl, 0, 3) == 1, radio.path, "WlEnbl"); },
                   [&] { return require(is_in_range(radio.WlSchedule, 0, 2) == 1, radio.path, "WlSchedule"); });
}

Verdict checkEncryption(ZepWireless& radio) {
    trim(radio.EncryptionKey);
    return firstOf(
        [&] { return require(radio.encrypModeIdx >= 0, radio.path, "EncryptionMode"); },
        [&] { return require(isFirstGeneration() || typeFitsMode(radio), radio.path, "EncryptionType"); },
        [&] { return require(keyFitsMode(radio), radio.path, "EncryptionKey"); },
        [&] { return requireRule(radio.EncryptionKey, radio.EncryptionKeyRule, radio.path, "EncryptionKey"); });
}

// The other router's channel may be one that this radio does not have: a cloned radio then chooses its own.
Verdict checkChannel(ZepWireless& radio) {
    if (isChannelInList(trim(radio.Channel), radio.ChannelList)) return Verdict::goOn;
    if (!isApCloning()) return fail(radio.path, "Channel");
    copyText(radio.Channel, "0");
    return Verdict::goOn;
}

Verdict checkRule(ZepAcRule& rule) {
    if (requireFlag(rule.Active, rule.path, "Active") == Verdict::fault) return Verdict::fault;
    if (!isEmpty(trim(rule.MAC))) return Verdict::goOn;
    eventLine(kLogInfo, "Invalid Mac=%s\n", rule.MAC);
    return fail(rule.path, "MAC");
}

Verdict checkAccessControl(ZepAccessControl& access) {
    // The message names the radio's enable tag and not WlAcEnbl: that message is the interface.
    if (is_in_range(access.WlAcEnbl, 0, 2) == 0) return fail(access.path, "WlEnbl");
    if (access.WlAcEnbl != 1) return Verdict::goOn;
    Verdict verdict = requireFlag(access.WlAcMode, access.path, "WlAcMode");
    for (int32_t index = 0; verdict == Verdict::goOn && index < rulesInUse(access); index++)
        verdict = checkRule(access.acRule[index]);
    return verdict;
}

Verdict checkLaterRadioValues(ZepWireless& radio) {
    if (isFirstGeneration()) return Verdict::goOn;
    return firstOf([&] { return checkChannel(radio); }, [&] { return checkAccessControl(radio.accessControl); });
}

Verdict checkRadio(ZepWireless& radio) {
    return firstOf([&] { return checkSwitches(radio); },
                   [&] {
                       return isFirstGeneration() ? Verdict::goOn
                                                  : requireText(radio.WirelessBSSID, radio.path, "WirelessBSSID");
                   },
                   [&] { return requireRule(radio.WirelessName, radio.WirelessNameRule, radio.path, "WirelessName"); },
                   [&] { return checkEncryption(radio); }, [&] { return checkLaterRadioValues(radio); });
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

Verdict checkSafety(const ZepSafetyWdn& safety) {
    if (zepXmlData.safetyWdnFeature == 0 || isApCloning()) return Verdict::goOn;
    return firstOf([&] { return requireFlag(safety.SafetyWdnEnbl, safety.path, "SafetyWdnEnbl"); },
                   [&] { return requireFlag(safety.UrlDetectEnbl, safety.path, "UrlDetectEnbl"); },
                   [&] { return requireFlag(safety.SafetyNotifyEnbl, safety.path, "SafetyNotifyEnbl"); },
                   [&] { return requireFlag(safety.ToolRecommendEnbl, safety.path, "ToolRecommendEnbl"); });
}

} // namespace

int32_t Verify_ZepXml() {
    traceEntry("Verify_ZepXml");
    const Verdict verdict =
        firstOf([] { return checkDevice(zepXmlData.device); }, [] { return checkRadios(zepXmlData.device); },
                [] { return checkSafety(zepXmlData.device.safetyWdn); });
    if (verdict == Verdict::goOn) {
        traceLine("Verify_ZepXml", "done, ret=1\n");
    }
    return verdict == Verdict::fault ? 0 : 1;
}

} // namespace pendra
