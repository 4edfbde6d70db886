#include "setupdoc/record_dump.h"

#include "common/trace.h"
#include "setupdoc/record_access.h"

// Passwords and keys stand in the dump in clear: support reads level-6 logs to see what a client really sent.

#define LINE(...) logPrintf(kLogInfo, __VA_ARGS__)

namespace pendra {
namespace {

void dumpHead(const ZepXmlData& data) {
    LINE("----ZEPXML_BGN----\n");
    LINE("%s\n", data.specVersion.path);
    LINE(" +- Ver=%d.%d\n", data.specVersion.major, data.specVersion.minor);
    LINE("%s\n", data.device.path);
    LINE(" +- Configurable=%d\n", data.device.Configurable);
}

void dumpIsp(const ZepIsp& isp) {
    LINE("     +- %s\n", isp.path);
    LINE("         +- CountryName=%s\n", isp.CountryName);
    LINE("         +- IspName=%s\n", isp.IspName);
}

void dumpDsl(const ZepIsp& dsl) {
    if (!isFirstGeneration()) {
        dumpIsp(dsl);
        return;
    }
    LINE("     +- %s\n", dsl.path);
    LINE("         +- VPI/VCI=%d/%d\n", dsl.VPI, dsl.VCI);
    LINE("         +- EncapMode='%s',%d\n", dsl.EncapsulationMode, dsl.encapModeIdx);
}

void dumpExtenderSite(const ZepExtenderSite& site) {
    LINE("     +- %s\n", site.path);
    LINE("         +- Survey=%d\n", site.Survey);
    LINE("         +- ConnRefSiteBSSID=%s\n", site.ConnRefSiteBSSID);
    LINE("         +- WirelessType='%s',%d\n", site.WirelessType, site.wirelessTypeIdx);
    LINE("         +- WirelessName=%s\n", site.WirelessName);
    LINE("         +- EncryptionKey=%s\n", site.EncryptionKey);
}

// One chain: a first-generation device that may extend shows its extender site whatever else it has.
void dumpHardware(const ZepDevice& device) {
    const ZepUpLink& upLink = device.upLink;
    const int32_t kind = upLink.hardwareTypeIdx;
    if (kind == kAdsl || kind == kVdsl || kind == kDsl)
        dumpDsl(upLink.dsl);
    else if (kind == kWwan80211 || (isFirstGeneration() && device.ExtenderEnbl != 2))
        dumpExtenderSite(upLink.extenderSite);
    else if (kind == kWwanApn)
        dumpIsp(upLink.apn);
}

void dumpUpLink(const ZepDevice& device) {
    const ZepUpLink& upLink = device.upLink;
    LINE(" +- %s\n", upLink.path);
    LINE("     +- Configurable=%d\n", upLink.Configurable);
    LINE("     +- HardwareType='%s',%d\n", upLink.HardwareType, upLink.hardwareTypeIdx);
    LINE("     +- LoginUserName='%s'\n", upLink.LoginUserName);
    LINE("     +- LoginPassword='%s'\n", upLink.LoginPassword);
    LINE("     +- IP,NetMask='%s,%s'\n", upLink.IP, upLink.NetMask);
    LINE("     +- Gateway='%s'\n", upLink.Gateway);
    LINE("     +- DNS='%s'\n", upLink.DNS);
    LINE("     +- restart='%d'\n", upLink.restart);
    dumpHardware(device);
}

void dumpRoaming(const ZepDevice& device) {
    if (!isFirstGeneration() && zepXmlData.easyRoamingFeature != 0) LINE(" +- EasyRoaming=%s\n", device.EasyRoaming);
}

void dumpDevice(const ZepDevice& device) {
    LINE(" +- DeviceName='%s'\n", device.DeviceName);
    LINE(" +- DevicePwd='%s'\n", device.DevicePwd);
    LINE(" +- DeviceType='%s'\n", device.DeviceType);
    LINE(" +- RouterEnbl=%d\n", device.RouterEnbl);
    if (isFirstGeneration()) LINE(" +- ExtenderEnbl=%d\n", device.ExtenderEnbl);
    dumpRoaming(device);
    LINE(" +- wlanSurveyRestart=%d\n", device.wlanSurveyRestart);
    dumpUpLink(device);
}

void dumpAccessControl(const ZepAccessControl& access) {
    LINE("     +- %s\n", access.path);
    LINE("         +- WlAcEnbl=%d\n", access.WlAcEnbl);
    if (access.WlAcEnbl != 1) return;
    LINE("         +- WlAcMode=%d\n", access.WlAcMode);
    for (int32_t index = 0; index < rulesInUse(access); index++) {
        const ZepAcRule& rule = access.acRule[index];
        LINE("         +- %s:%d\n", rule.path, index + 1);
        LINE("             +- Active,MAC=%d,%s\n", rule.Active, rule.MAC);
    }
}

void dumpRadio(const ZepWireless& radio) {
    LINE(" +- %s\n", radio.path);
    LINE("     +- Configurable=%d\n", radio.Configurable);
    LINE("     +- WlEnbl,WlSchedule=%d,%d\n", radio.WlEnbl, radio.WlSchedule);
    LINE("     +- WirelessBSSID='%s'\n", radio.WirelessBSSID);
    LINE("     +- WirelessName='%s'\n", radio.WirelessName);
    LINE("     +- EncryptionMode,Type='%s,%s'\n", radio.EncryptionMode, radio.EncryptionType);
    LINE("     +- EncryptionKey='%s'\n", radio.EncryptionKey);
    if (isFirstGeneration()) return;
    LINE("     +- Channel='%s'\n", radio.Channel);
    LINE("     +- restart=%d\n", radio.restart);
    dumpAccessControl(radio.accessControl);
}

void dumpSafety(const ZepSafetyWdn& safety) {
    LINE(" +- %s\n", safety.path);
    LINE("     +- SafetyWdnEnbl=%d\n", safety.SafetyWdnEnbl);
    LINE("     +- UrlDetectEnbl=%d\n", safety.UrlDetectEnbl);
    LINE("     +- SafetyNotifyEnbl=%d\n", safety.SafetyNotifyEnbl);
    LINE("     +- ToolRecommendEnbl=%d\n", safety.ToolRecommendEnbl);
    LINE("     +- restart=%d\n", safety.restart);
}

void dumpSwitches(const ZepXmlData& data) {
    LINE("+- apCloningOnly=%d\n", data.apCloningOnly);
    LINE("+- apCloningFeature=%d\n", data.apCloningFeature);
    LINE("+- fwUpgradeFeature=%d\n", data.fwUpgradeFeature);
    LINE("+- easyRoamingFeature=%d\n", data.easyRoamingFeature);
    LINE("+- safetyWdnFeature=%d\n", data.safetyWdnFeature);
    LINE("+- wlan24Feature=%d\n", data.wlan24Feature);
    LINE("+- wlan5Feature=%d\n", data.wlan5Feature);
    LINE("+- tmpPath=%s\n", data.tmpPath);
    LINE("+- scriptPath=%s\n", data.scriptPath);
    LINE("+- saveflag=%d\n", data.saveflag);
    LINE("----ZEPXML_END----\n");
}

} // namespace

void dumpRecord() {
    if (!logs(kLogInfo)) return;
    const ZepXmlData& data = zepXmlData;
    dumpHead(data);
    if (isApCloning())
        dumpRoaming(data.device);
    else
        dumpDevice(data.device);
    for (int radio = 0; radio < kRadios; radio++)
        if (hasRadio(radio)) dumpRadio(data.device.wireless[radio]);
    if (data.safetyWdnFeature != 0) dumpSafety(data.device.safetyWdn);
    dumpSwitches(data);
}

} // namespace pendra
