#include "apply/application.h"

#include <strings.h>

#include <algorithm>

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

template <typename Flag>
void raise(Flag& flag, int32_t changed) {
    if (changed != 0) flag = 1;
}

template <typename Flag>
void writeText(const char* value, const char* path, Flag& flag) {
    raise(flag, StrCmpWithXStr(value, path, 0));
}

template <typename Flag>
void writeNumber(int32_t value, const char* path, Flag& flag) {
    raise(flag, IntCmpWithXStr(value, path, 0));
}

// What a stored value fixes: 2 fixes every switch, 3 fixes some of them too.
enum class Fixed { byTwo, byTwoAndThree };

bool isFixed(int stored, Fixed fixed) {
    return stored == 2 || (stored == 3 && fixed == Fixed::byTwoAndThree);
}

// A switch that the document may turn on or off unless the device has fixed it. False when the change is refused.
template <typename Flag>
bool writeSwitch(int32_t value, const char* path, Fixed fixed, Flag& flag) {
    constexpr int32_t kOn = 1;
    const int stored = readNodeInt(path);
    if (stored == value) return true;
    if (isFixed(stored, fixed)) return false;
    int32_t overflow = 0;
    raise(flag, IntMaxCmpWithXStr(value, path, 0, kOn, &overflow));
    return overflow == 0;
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
    writeText(device.DeviceName, "/sys/friendlyname", device.deviceChanged);
    writeText(device.DevicePwd, "/sys/user:1/password", device.deviceChanged);
    return writeSwitch(device.RouterEnbl, "/sys/routerenbl", Fixed::byTwoAndThree, device.deviceChanged) ||
           refuse(device.path, "RouterEnbl");
}

void applyConnection(ZepUpLink& upLink) {
    if (usesLogin(upLink)) {
        writeText(upLink.LoginUserName, "/uplink/loginusername", upLink.restart);
        writeText(upLink.LoginPassword, "/uplink/loginpassword", upLink.restart);
    } else if (upLink.connTypeIdx == kStatic) {
        writeText(upLink.IP, "/uplink/ip", upLink.restart);
        writeText(upLink.NetMask, "/uplink/netmask", upLink.restart);
        writeText(upLink.Gateway, "/uplink/gateway", upLink.restart);
        writeText(upLink.DNS, "/uplink/dns", upLink.restart);
    }
}

void applyExtenderSite(const ZepExtenderSite& site, int32_t& restart) {
    writeText(site.ConnRefSiteBSSID, "/uplink/extendersite/connrefsitebssid", restart);
    writeText(site.WirelessType, "/uplink/extendersite/wirelesstype", restart);
    writeText(site.WirelessName, "/uplink/extendersite/wirelessname", restart);
    writeText(site.EncryptionKey, "/uplink/extendersite/encryptionkey", restart);
}

// MTU is verified but never written: no node takes it.
void applyDslLine(const ZepIsp& dsl, int32_t& restart) {
    writeNumber(dsl.VPI, "/uplink/dsl/vpi", restart);
    writeNumber(dsl.VCI, "/uplink/dsl/vci", restart);
    writeText(dsl.EncapsulationMode, "/uplink/dsl/encapsulationmode", restart);
}

void applyHardware(ZepUpLink& upLink) {
    const int32_t kind = upLink.hardwareTypeIdx;
    if (kind == kAdsl || kind == kVdsl) {
        writeText(upLink.dsl.CountryName, "/uplink/dsl/countryname", upLink.restart);
        writeText(upLink.dsl.IspName, "/uplink/dsl/ispname", upLink.restart);
    } else if (kind == kWwanApn) {
        writeText(upLink.apn.CountryName, "/uplink/apn/countryname", upLink.restart);
        writeText(upLink.apn.IspName, "/uplink/apn/ispname", upLink.restart);
    } else if (usesExtenderSite()) {
        applyExtenderSite(upLink.extenderSite, upLink.restart);
    } else if (kind == kDsl && isFirstGeneration()) {
        applyDslLine(upLink.dsl, upLink.restart);
    }
}

void applyUpLink(ZepUpLink& upLink) {
    if (upLink.Configurable == 0) return;
    if (!isFirstGeneration()) writeText(upLink.HardwareType, "/uplink/hardwaretype", upLink.restart);
    writeText(upLink.ConnType, "/uplink/conntype", upLink.restart);
    applyConnection(upLink);
    applyHardware(upLink);
}

void applyRoaming(ZepDevice& device) {
    if (isFirstGeneration() || zepXmlData.easyRoamingFeature == 0) return;
    writeText(device.EasyRoaming, "/bramble/easyroaminginfo", device.deviceChanged);
}

// ---- radios ----

enum class Outcome { goOn, stopRadios, refused };

Outcome applyEnable(ZepWireless& radio, const char* base) {
    const NodePath path("%s/wlenbl", base);
    if (!isApCloning()) {
        if (writeSwitch(radio.WlEnbl, path, Fixed::byTwoAndThree, radio.restart)) return Outcome::goOn;
        refuse(radio.path, "WlEnbl");
        return Outcome::refused;
    }
    const int stored = readNodeInt(path);
    if (stored == radio.WlEnbl) return Outcome::goOn;
    if (isFixed(stored, Fixed::byTwoAndThree) || radio.WlEnbl == 2) return Outcome::stopRadios;
    writeNumber(radio.WlEnbl == 3 ? 1 : radio.WlEnbl, path, radio.restart);
    return Outcome::goOn;
}

bool applySchedule(ZepWireless& radio, const char* base) {
    const NodePath path("%s/wlschedule", base);
    if (!isApCloning())
        return writeSwitch(radio.WlSchedule, path, Fixed::byTwo, radio.restart) || refuse(radio.path, "WlSchedule");
    const int stored = readNodeInt(path);
    if (stored == radio.WlSchedule || isFixed(stored, Fixed::byTwo)) return true;
    writeNumber(radio.WlSchedule == 2 ? 0 : radio.WlSchedule, path, radio.restart);
    return true;
}

void applyNetwork(ZepWireless& radio, const char* base) {
    const char* type = isFirstGeneration() ? "AUTO" : radio.EncryptionType;
    writeText(radio.WirelessName, NodePath("%s/wirelessname", base), radio.restart);
    writeText(radio.EncryptionMode, NodePath("%s/encryptionmode", base), radio.restart);
    writeText(type, NodePath("%s/encryptiontype", base), radio.restart);
    writeText(radio.EncryptionKey, NodePath("%s/encryptionkey", base), radio.restart);
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
    raise(radio.restart, access.WlAcMode != storedMode ? 1 : 0);
    xset_int(access.WlAcMode, NodePath("%s/wlacmode", accessBase)); // on every run, changed or not
    const int oldCount = readNodeInt(NodePath("%s/acrule#", accessBase));
    for (int32_t index = 0; index < rulesInUse(access); index++) {
        const ZepAcRule& rule = access.acRule[index];
        writeNumber(rule.Active, NodePath("%s/acrule:%d/active", accessBase, index + 1), radio.restart);
        writeText(rule.MAC, NodePath("%s/acrule:%d/mac", accessBase, index + 1), radio.restart);
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
    writeText(radio.Channel, NodePath("%s/channel", base), radio.restart);
    if (access.WlAcEnbl != storedEnable) {
        if (isFixed(storedEnable, Fixed::byTwo)) return isApCloning() || refuse(access.path, "WlAcEnbl");
        radio.restart = 1;
        xset_int(isApCloning() && access.WlAcEnbl == 2 ? 0 : access.WlAcEnbl, enablePath);
    }
    if (access.WlAcEnbl == 1) applyRules(radio, accessBase, storedMode);
    return true;
}

void publishClone(const ZepWireless& radio, const char* band) {
    const struct {
        const char* leaf;
        const char* value;
    } rows[] = {
        {"wirelesstype", band},
        {"wirelessbssid", radio.WirelessBSSID},
        {"wirelessname", radio.WirelessName},
        {"encryptionmode", radio.EncryptionMode},
        {"encryptiontype", radio.EncryptionType},
        {"encryptionkey", radio.EncryptionKey},
        {"channel", radio.Channel},
    };
    for (const auto& row : rows)
        xset_str(row.value, NodePath("%s/%s", kCloningInfo, row.leaf));
}

// A cloned extender connects to the site that it was cloned from.
void applyClonedSite(const ZepWireless& radio, int index) {
    ZepUpLink& upLink = zepXmlData.device.upLink;
    if (!isApCloning() || upLink.hardwareTypeIdx != kWwan80211) return;
    const char* band = WirelessTypeArray[index];
    char connected[128];
    readNode(connected, "/uplink/extendersite/connrefsitebssid");
    if (strcasecmp(connected, radio.WirelessBSSID) != 0)
        writeText(radio.WirelessBSSID, "/uplink/extendersite/failoverbssid", upLink.restart);
    writeText(band, "/uplink/extendersite/wirelesstype", upLink.restart);
    upLink.extenderSite.wirelessTypeIdx = index;
    writeText(radio.WirelessName, "/uplink/extendersite/wirelessname", upLink.restart);
    writeText(radio.EncryptionKey, "/uplink/extendersite/encryptionkey", upLink.restart);
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
    writeNumber(safety.SafetyWdnEnbl, "/safetywdn/safetywdnenbl", safety.restart);
    writeNumber(safety.UrlDetectEnbl, "/safetywdn/urldetectenbl", safety.restart);
    writeNumber(safety.SafetyNotifyEnbl, "/safetywdn/safetynotifyenbl", safety.restart);
    writeNumber(safety.ToolRecommendEnbl, "/safetywdn/toolrecommendenbl", safety.restart);
}

void settleSaveFlag(const ZepDevice& device) {
    const bool changed = device.deviceChanged != 0 || device.upLink.restart != 0 || device.wireless[0].restart != 0 ||
                         device.wireless[1].restart != 0 || device.roamingRestart != 0 || device.safetyWdn.restart != 0;
    raise(zepXmlData.saveflag, changed ? 1 : 0);
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
        raise(device.wlanSurveyRestart, requestSiteSurvey() ? 1 : 0); // and nothing else is applied
    } else if (!applySections(device)) {
        return 0;
    }
    logPrintf(kLogInfo, "done,ret=1,Restart:wlan2.4=%d,wlan5=%d,uplink=%d,survey=%d,roaming=%d\n",
              device.wireless[0].restart, device.wireless[1].restart, device.upLink.restart, device.wlanSurveyRestart,
              device.roamingRestart);
    return 1;
}

} // namespace pendra
