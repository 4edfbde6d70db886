#include "apply/application.h"

#include <strings.h>

#include <algorithm>
#include <cstddef>

#include "apply/site_survey.h"
#include "common/bounded_text.h"
#include "common/trace.h"
#include "common/tree_access.h"
#include "pendra/apply.h"
#include "setupdoc/record_access.h"
#include "setupdoc/result_document.h"

namespace pendra {
namespace {

constexpr const char* kCloningInfo = "/runtime/apcloninginfo/extendersite";

// A field of a section and the node that stores it.
struct Setting {
    const char* leaf; // behind the section's base
    uint16_t offset;
    bool number = false;
};

#define TEXT(Section, field, leaf) \
    { leaf, offsetof(Section, field) }
#define NUMBER(Section, field, leaf) \
    { leaf, offsetof(Section, field), true }

constexpr Setting kDeviceSettings[] = {
    TEXT(ZepDevice, DeviceName, "/sys/friendlyname"),
    TEXT(ZepDevice, DevicePwd, "/sys/user:1/password"),
};

constexpr Setting kRoamingSetting[] = {TEXT(ZepDevice, EasyRoaming, "/bramble/easyroaminginfo")};

constexpr Setting kHardwareSetting[] = {TEXT(ZepUpLink, HardwareType, "/uplink/hardwaretype")};

constexpr Setting kConnectionSetting[] = {TEXT(ZepUpLink, ConnType, "/uplink/conntype")};

constexpr Setting kLoginSettings[] = {
    TEXT(ZepUpLink, LoginUserName, "/uplink/loginusername"),
    TEXT(ZepUpLink, LoginPassword, "/uplink/loginpassword"),
};

constexpr Setting kStaticSettings[] = {
    TEXT(ZepUpLink, IP, "/uplink/ip"),
    TEXT(ZepUpLink, NetMask, "/uplink/netmask"),
    TEXT(ZepUpLink, Gateway, "/uplink/gateway"),
    TEXT(ZepUpLink, DNS, "/uplink/dns"),
};

constexpr Setting kIspSettings[] = {
    TEXT(ZepIsp, CountryName, "/countryname"),
    TEXT(ZepIsp, IspName, "/ispname"),
};

constexpr Setting kSiteSettings[] = {
    TEXT(ZepExtenderSite, ConnRefSiteBSSID, "/uplink/extendersite/connrefsitebssid"),
    TEXT(ZepExtenderSite, WirelessType, "/uplink/extendersite/wirelesstype"),
    TEXT(ZepExtenderSite, WirelessName, "/uplink/extendersite/wirelessname"),
    TEXT(ZepExtenderSite, EncryptionKey, "/uplink/extendersite/encryptionkey"),
};

// MTU is verified but never written: no node takes it.
constexpr Setting kDslLineSettings[] = {
    NUMBER(ZepIsp, VPI, "/uplink/dsl/vpi"),
    NUMBER(ZepIsp, VCI, "/uplink/dsl/vci"),
    TEXT(ZepIsp, EncapsulationMode, "/uplink/dsl/encapsulationmode"),
};

constexpr Setting kNetworkSettings[] = {
    TEXT(ZepWireless, WirelessName, "/wirelessname"),
    TEXT(ZepWireless, EncryptionMode, "/encryptionmode"),
};

constexpr Setting kTypeSetting[] = {TEXT(ZepWireless, EncryptionType, "/encryptiontype")};

constexpr Setting kKeySetting[] = {TEXT(ZepWireless, EncryptionKey, "/encryptionkey")};

constexpr Setting kChannelSetting[] = {TEXT(ZepWireless, Channel, "/channel")};

// What the extender's uplink takes over from the radio of a cloned site.
constexpr Setting kClonedSiteSettings[] = {
    TEXT(ZepWireless, WirelessName, "/wirelessname"),
    TEXT(ZepWireless, EncryptionKey, "/encryptionkey"),
};

constexpr Setting kRuleSettings[] = {
    NUMBER(ZepAcRule, Active, "/active"),
    TEXT(ZepAcRule, MAC, "/mac"),
};

constexpr Setting kSafetySettings[] = {
    NUMBER(ZepSafetyWdn, SafetyWdnEnbl, "/safetywdn/safetywdnenbl"),
    NUMBER(ZepSafetyWdn, UrlDetectEnbl, "/safetywdn/urldetectenbl"),
    NUMBER(ZepSafetyWdn, SafetyNotifyEnbl, "/safetywdn/safetynotifyenbl"),
    NUMBER(ZepSafetyWdn, ToolRecommendEnbl, "/safetywdn/toolrecommendenbl"),
};

// Writes the settings that differ from what is stored, in the order of the table; true when one did.
bool writeRows(const char* section, const char* base, const Setting* setting, size_t count) {
    int32_t changed = 0;
    for (; count > 0; setting++, count--) {
        const NodePath path("%s%s", base, setting->leaf);
        const char* field = section + setting->offset;
        changed |= setting->number ? IntCmpWithXStr(*reinterpret_cast<const int32_t*>(field), path, 0)
                                   : StrCmpWithXStr(field, path, 0);
    }
    return changed != 0;
}

template <typename Section, size_t Count>
bool write(const Section& section, const char* base, const Setting (&settings)[Count]) {
    return writeRows(reinterpret_cast<const char*>(&section), base, settings, Count);
}

template <typename Flag>
void raise(Flag& flag, bool changed) {
    if (changed) flag = 1;
}

// What a stored value fixes: 2 fixes every switch, 3 fixes some of them too.
enum class Fixed { byTwo, byTwoAndThree };

bool isFixed(int stored, Fixed fixed) {
    return stored == 2 || (stored == 3 && fixed == Fixed::byTwoAndThree);
}

enum class Switched { unchanged, changed, refused };

// A switch that the document may turn on or off unless the device has fixed it.
Switched writeSwitch(int32_t value, const char* path, Fixed fixed) {
    constexpr int32_t kOn = 1;
    const int stored = readNodeInt(path);
    if (stored == value) return Switched::unchanged;
    if (isFixed(stored, fixed)) return Switched::refused;
    int32_t overflow = 0;
    const int32_t changed = IntMaxCmpWithXStr(value, path, 0, kOn, &overflow);
    if (overflow != 0) return Switched::refused;
    return changed != 0 ? Switched::changed : Switched::unchanged;
}

bool refuse(const char* path, const char* tag) {
    reportInvalidValue(path, tag);
    return false;
}

void clearRestartFlags() {
    ZepDevice& device = zepXmlData.device;
    device.deviceChanged = 0;
    device.upLink.restart = 0;
    for (ZepWireless& radio : device.wireless)
        radio.restart = 0;
    device.safetyWdn.restart = 0;
    device.wlanSurveyRestart = 0;
    device.roamingRestart = 0;
    zepXmlData.saveflag = 0;
}

// ---- device and uplink ----

bool applyDevice(ZepDevice& device) {
    raise(device.deviceChanged, write(device, "", kDeviceSettings));
    const Switched router = writeSwitch(device.RouterEnbl, "/sys/routerenbl", Fixed::byTwoAndThree);
    raise(device.deviceChanged, router == Switched::changed);
    return router != Switched::refused || refuse(device.path, "RouterEnbl");
}

bool writeConnection(const ZepUpLink& upLink) {
    if (usesLogin(upLink)) return write(upLink, "", kLoginSettings);
    return upLink.connTypeIdx == kStatic && write(upLink, "", kStaticSettings);
}

bool writeHardware(const ZepUpLink& upLink) {
    const int32_t kind = upLink.hardwareTypeIdx;
    if (kind == kAdsl || kind == kVdsl) return write(upLink.dsl, "/uplink/dsl", kIspSettings);
    if (kind == kWwanApn) return write(upLink.apn, "/uplink/apn", kIspSettings);
    if (usesExtenderSite()) return write(upLink.extenderSite, "", kSiteSettings);
    return kind == kDsl && isFirstGeneration() && write(upLink.dsl, "", kDslLineSettings);
}

void applyUpLink(ZepUpLink& upLink) {
    if (upLink.Configurable == 0) return;
    if (!isFirstGeneration()) raise(upLink.restart, write(upLink, "", kHardwareSetting));
    raise(upLink.restart, write(upLink, "", kConnectionSetting));
    raise(upLink.restart, writeConnection(upLink));
    raise(upLink.restart, writeHardware(upLink));
}

void applyRoaming(ZepDevice& device) {
    if (isFirstGeneration() || zepXmlData.easyRoamingFeature == 0) return;
    raise(device.deviceChanged, write(device, "", kRoamingSetting));
}

// ---- radios ----

enum class Outcome { goOn, stopRadios, refused };

// A switch on a run that clones the other router's: a state that only a device may set becomes the plain one. Refused
// when the device has fixed its own, or when the state has no plain one and stays fixed.
Switched writeCloned(int32_t value, int32_t plainValue, const char* path, Fixed fixed) {
    const int stored = readNodeInt(path);
    if (stored == value) return Switched::unchanged;
    if (isFixed(stored, fixed) || isFixed(plainValue, Fixed::byTwo)) return Switched::refused;
    return IntCmpWithXStr(plainValue, path, 0) != 0 ? Switched::changed : Switched::unchanged;
}

Outcome applyEnable(ZepWireless& radio, const char* base) {
    const NodePath path("%s/wlenbl", base);
    const int32_t value = radio.WlEnbl;
    const Switched enable = isApCloning() ? writeCloned(value, value == 3 ? 1 : value, path, Fixed::byTwoAndThree)
                                          : writeSwitch(value, path, Fixed::byTwoAndThree);
    raise(radio.restart, enable == Switched::changed);
    if (enable != Switched::refused) return Outcome::goOn;
    if (isApCloning()) return Outcome::stopRadios;
    refuse(radio.path, "WlEnbl");
    return Outcome::refused;
}

bool applySchedule(ZepWireless& radio, const char* base) {
    const NodePath path("%s/wlschedule", base);
    const int32_t value = radio.WlSchedule;
    const Switched schedule = isApCloning() ? writeCloned(value, value == 2 ? 0 : value, path, Fixed::byTwo)
                                            : writeSwitch(value, path, Fixed::byTwo);
    raise(radio.restart, schedule == Switched::changed);
    return isApCloning() || schedule != Switched::refused || refuse(radio.path, "WlSchedule");
}

void applyNetwork(ZepWireless& radio, const char* base) {
    bool changed = write(radio, base, kNetworkSettings);
    if (!isFirstGeneration())
        changed |= write(radio, base, kTypeSetting);
    else
        changed |= StrCmpWithXStr("AUTO", NodePath("%s/encryptiontype", base), 0) != 0;
    changed |= write(radio, base, kKeySetting);
    raise(radio.restart, changed);
}

// Rules behind the document's last one go, from the highest number down; the count itself is computed by the tree. A
// count that could not be read (-1) clears the list, number 0 included.
void deleteSurplusRules(ZepWireless& radio, const char* accessBase, int oldCount) {
    const int32_t count = std::max<int32_t>(radio.accessControl.acRuleCount, -1);
    for (; oldCount > count; oldCount--) {
        xdel(NodePath("%s/acrule:%d", accessBase, oldCount));
        radio.restart = 1;
    }
}

void applyRules(ZepWireless& radio, const char* accessBase, int storedMode) {
    const ZepAccessControl& access = radio.accessControl;
    raise(radio.restart, access.WlAcMode != storedMode);
    xset_int(access.WlAcMode, NodePath("%s/wlacmode", accessBase)); // on every run, changed or not
    const int oldCount = readNodeInt(NodePath("%s/acrule#", accessBase));
    for (int32_t index = 0; index < rulesInUse(access); index++) {
        const NodePath rule("%s/acrule:%d", accessBase, index + 1);
        raise(radio.restart, write(access.acRule[index], rule, kRuleSettings));
    }
    deleteSurplusRules(radio, accessBase, oldCount);
}

// False when a change of the access-control switch is refused.
bool applyAccessControl(ZepWireless& radio, const char* base) {
    const ZepAccessControl& access = radio.accessControl;
    const NodePath accessBase("%s/accesscontrol", base);
    const NodePath enablePath("%s/accesscontrol/wlacenbl", base);
    const int storedEnable = readNodeInt(enablePath, 2);
    const int storedMode = readNodeInt(NodePath("%s/accesscontrol/wlacmode", base), 0);
    raise(radio.restart, write(radio, base, kChannelSetting));
    if (access.WlAcEnbl != storedEnable) {
        if (isFixed(storedEnable, Fixed::byTwo)) return isApCloning() || refuse(access.path, "WlAcEnbl");
        radio.restart = 1;
        xset_int(isApCloning() && access.WlAcEnbl == 2 ? 0 : access.WlAcEnbl, enablePath);
    }
    if (access.WlAcEnbl == 1) applyRules(radio, accessBase, storedMode);
    return true;
}

constexpr Setting kClonedSettings[] = {
    TEXT(ZepWireless, WirelessBSSID, "/wirelessbssid"),   TEXT(ZepWireless, WirelessName, "/wirelessname"),
    TEXT(ZepWireless, EncryptionMode, "/encryptionmode"), TEXT(ZepWireless, EncryptionType, "/encryptiontype"),
    TEXT(ZepWireless, EncryptionKey, "/encryptionkey"),   TEXT(ZepWireless, Channel, "/channel"),
};

// Written whatever is stored.
void publishClone(const ZepWireless& radio, const char* band) {
    xset_str(band, NodePath("%s/wirelesstype", kCloningInfo));
    for (const Setting& setting : kClonedSettings)
        xset_str(reinterpret_cast<const char*>(&radio) + setting.offset, NodePath("%s%s", kCloningInfo, setting.leaf));
}

// A cloned extender connects to the site that it was cloned from.
void applyClonedSite(const ZepWireless& radio, int index) {
    ZepUpLink& upLink = zepXmlData.device.upLink;
    if (!isApCloning() || upLink.hardwareTypeIdx != kWwan80211) return;
    const char* band = WirelessTypeArray[index];
    char connected[128];
    readNode(connected, "/uplink/extendersite/connrefsitebssid");
    int32_t changed = 0;
    if (strcasecmp(connected, radio.WirelessBSSID) != 0)
        changed |= StrCmpWithXStr(radio.WirelessBSSID, "/uplink/extendersite/failoverbssid", 0);
    changed |= StrCmpWithXStr(band, "/uplink/extendersite/wirelesstype", 0);
    upLink.extenderSite.wirelessTypeIdx = index;
    raise(upLink.restart, changed != 0);
    raise(upLink.restart, write(radio, "/uplink/extendersite", kClonedSiteSettings));
    publishClone(radio, band);
}

Outcome applyRadio(ZepWireless& radio, int index) {
    const NodePath base("/lan/wireless%s:1", WirelessTypeArray[index]);
    const Outcome enable = applyEnable(radio, base);
    if (enable != Outcome::goOn) return enable;
    if (!applySchedule(radio, base)) return Outcome::refused;
    applyNetwork(radio, base);
    if (!isFirstGeneration() && !applyAccessControl(radio, base)) return Outcome::refused;
    applyClonedSite(radio, index);
    return Outcome::goOn;
}

bool applyRadios(ZepDevice& device) {
    Outcome outcome = Outcome::goOn;
    for (int index = 0; outcome == Outcome::goOn && index < kRadios; index++) {
        ZepWireless& radio = device.wireless[index];
        if (hasRadio(index) && radio.Configurable != 0) outcome = applyRadio(radio, index);
    }
    return outcome != Outcome::refused;
}

// ---- the rest ----

void applySafety(ZepSafetyWdn& safety) {
    if (zepXmlData.safetyWdnFeature == 0 || isApCloning()) return;
    raise(safety.restart, write(safety, "", kSafetySettings));
}

void settleSaveFlag(const ZepDevice& device) {
    const bool changed = device.deviceChanged != 0 || device.upLink.restart != 0 || device.wireless[0].restart != 0 ||
                         device.wireless[1].restart != 0 || device.roamingRestart != 0 || device.safetyWdn.restart != 0;
    raise(zepXmlData.saveflag, changed);
    if (zepXmlData.saveflag != 0) xset_int(0, "/sys/factorydefault"); // no longer in its factory state
}

bool applySections(ZepDevice& device) {
    if (!isApCloning()) {
        if (!applyDevice(device)) return false;
        applyUpLink(device.upLink);
    }
    applyRoaming(device);
    if (!applyRadios(device)) return false;
    applySafety(device.safetyWdn);
    settleSaveFlag(device);
    return true;
}

bool asksForSurvey(const ZepDevice& device) {
    return !isApCloning() && device.upLink.extenderSite.Survey != 0 && usesExtenderSite();
}

} // namespace

bool requestSiteSurvey() {
    if (readNodeInt("/uplink/extendersite/survey") == 1) return false;
    xset_int(1, "/uplink/extendersite/survey");
    char cloned[128];
    readNode(cloned, NodePath("%s/wirelesstype", kCloningInfo));
    if (!isEmpty(cloned)) xdel(kCloningInfo);
    return true;
}

int32_t Apply_ZepXmlToDevice() {
    traceEntry("Apply_ZepXmlToDevice");
    clearRestartFlags();
    ZepDevice& device = zepXmlData.device;
    if (device.Configurable == 0) return 1;
    if (asksForSurvey(device)) {
        raise(device.wlanSurveyRestart, requestSiteSurvey()); // and nothing else is applied
    } else if (!applySections(device)) {
        return 0;
    }
    logPrintf(kLogInfo, "done,ret=1,Restart:wlan2.4=%d,wlan5=%d,uplink=%d,survey=%d,roaming=%d\n",
              device.wireless[0].restart, device.wireless[1].restart, device.upLink.restart, device.wlanSurveyRestart,
              device.roamingRestart);
    return 1;
}

} // namespace pendra
