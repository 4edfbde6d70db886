#include "setupdoc/record_dump.h"

#include <cstddef>

#include "common/trace.h"
#include "setupdoc/record_access.h"

// Passwords and keys stand in the dump in clear: support reads level-6 logs to see what a client really sent.

#define LINE(...) logPrintf(kLogInfo, __VA_ARGS__)

namespace pendra {
namespace {

enum class Value : uint8_t { number, byte, text };

// A line of the dump: a format and the fields of a section that it shows.
struct Line {
    const char* format;
    uint16_t offset;
    Value kind;
    Value secondKind = Value::number;
    uint16_t second = 0;
};

#define TEXT(Section, field, format) \
    { format, offsetof(Section, field), Value::text }
#define NUMBER(Section, field, format) \
    { format, offsetof(Section, field), Value::number }
#define BYTE(field, format) \
    { format, offsetof(ZepXmlData, field), Value::byte }
#define NUMBERS(Section, field, other, format) \
    { format, offsetof(Section, field), Value::number, Value::number, offsetof(Section, other) }
#define TEXTS(Section, field, other, format) \
    { format, offsetof(Section, field), Value::text, Value::text, offsetof(Section, other) }
#define NAME(Section, field, row, format) \
    { format, offsetof(Section, field), Value::text, Value::number, offsetof(Section, row) }

int32_t numberAt(const char* field, Value kind) {
    return kind == Value::byte ? *reinterpret_cast<const int8_t*>(field) : *reinterpret_cast<const int32_t*>(field);
}

void dumpLine(const char* section, const Line& line) {
    const char* const first = section + line.offset;
    const char* const second = section + line.second;
    if (line.kind != Value::text)
        LINE(line.format, numberAt(first, line.kind), numberAt(second, Value::number));
    else if (line.secondKind == Value::text)
        LINE(line.format, first, second);
    else
        LINE(line.format, first, numberAt(second, Value::number));
}

void dumpRows(const char* section, const Line* line, size_t count) {
    for (; count > 0; line++, count--)
        dumpLine(section, *line);
}

template <typename Section, size_t Count>
void dumpLines(const Section& section, const Line (&lines)[Count]) {
    dumpRows(reinterpret_cast<const char*>(&section), lines, Count);
}

constexpr Line kHead[] = {
    TEXT(ZepXmlData, specVersion.path, "%s\n"),
    NUMBERS(ZepXmlData, specVersion.major, specVersion.minor, " +- Ver=%d.%d\n"),
    TEXT(ZepXmlData, device.path, "%s\n"),
    NUMBER(ZepXmlData, device.Configurable, " +- Configurable=%d\n"),
};

constexpr Line kIsp[] = {
    TEXT(ZepIsp, path, "     +- %s\n"),
    TEXT(ZepIsp, CountryName, "         +- CountryName=%s\n"),
    TEXT(ZepIsp, IspName, "         +- IspName=%s\n"),
};

constexpr Line kDslLine[] = {
    TEXT(ZepIsp, path, "     +- %s\n"),
    NUMBERS(ZepIsp, VPI, VCI, "         +- VPI/VCI=%d/%d\n"),
    NAME(ZepIsp, EncapsulationMode, encapModeIdx, "         +- EncapMode='%s',%d\n"),
};

constexpr Line kExtenderSite[] = {
    TEXT(ZepExtenderSite, path, "     +- %s\n"),
    NUMBER(ZepExtenderSite, Survey, "         +- Survey=%d\n"),
    TEXT(ZepExtenderSite, ConnRefSiteBSSID, "         +- ConnRefSiteBSSID=%s\n"),
    NAME(ZepExtenderSite, WirelessType, wirelessTypeIdx, "         +- WirelessType='%s',%d\n"),
    TEXT(ZepExtenderSite, WirelessName, "         +- WirelessName=%s\n"),
    TEXT(ZepExtenderSite, EncryptionKey, "         +- EncryptionKey=%s\n"),
};

constexpr Line kUpLink[] = {
    TEXT(ZepUpLink, path, " +- %s\n"),
    NUMBER(ZepUpLink, Configurable, "     +- Configurable=%d\n"),
    NAME(ZepUpLink, HardwareType, hardwareTypeIdx, "     +- HardwareType='%s',%d\n"),
    TEXT(ZepUpLink, LoginUserName, "     +- LoginUserName='%s'\n"),
    TEXT(ZepUpLink, LoginPassword, "     +- LoginPassword='%s'\n"),
    TEXTS(ZepUpLink, IP, NetMask, "     +- IP,NetMask='%s,%s'\n"),
    TEXT(ZepUpLink, Gateway, "     +- Gateway='%s'\n"),
    TEXT(ZepUpLink, DNS, "     +- DNS='%s'\n"),
    NUMBER(ZepUpLink, restart, "     +- restart='%d'\n"),
};

constexpr Line kDevice[] = {
    TEXT(ZepDevice, DeviceName, " +- DeviceName='%s'\n"),
    TEXT(ZepDevice, DevicePwd, " +- DevicePwd='%s'\n"),
    TEXT(ZepDevice, DeviceType, " +- DeviceType='%s'\n"),
    NUMBER(ZepDevice, RouterEnbl, " +- RouterEnbl=%d\n"),
};

constexpr Line kExtenderEnbl[] = {NUMBER(ZepDevice, ExtenderEnbl, " +- ExtenderEnbl=%d\n")};

constexpr Line kRoaming[] = {TEXT(ZepDevice, EasyRoaming, " +- EasyRoaming=%s\n")};

constexpr Line kSurvey[] = {NUMBER(ZepDevice, wlanSurveyRestart, " +- wlanSurveyRestart=%d\n")};

constexpr Line kRadio[] = {
    TEXT(ZepWireless, path, " +- %s\n"),
    NUMBER(ZepWireless, Configurable, "     +- Configurable=%d\n"),
    NUMBERS(ZepWireless, WlEnbl, WlSchedule, "     +- WlEnbl,WlSchedule=%d,%d\n"),
    TEXT(ZepWireless, WirelessBSSID, "     +- WirelessBSSID='%s'\n"),
    TEXT(ZepWireless, WirelessName, "     +- WirelessName='%s'\n"),
    TEXTS(ZepWireless, EncryptionMode, EncryptionType, "     +- EncryptionMode,Type='%s,%s'\n"),
    TEXT(ZepWireless, EncryptionKey, "     +- EncryptionKey='%s'\n"),
};

constexpr Line kLaterRadio[] = {
    TEXT(ZepWireless, Channel, "     +- Channel='%s'\n"),
    NUMBER(ZepWireless, restart, "     +- restart=%d\n"),
    TEXT(ZepWireless, accessControl.path, "     +- %s\n"),
    NUMBER(ZepWireless, accessControl.WlAcEnbl, "         +- WlAcEnbl=%d\n"),
};

constexpr Line kAccessMode[] = {NUMBER(ZepAccessControl, WlAcMode, "         +- WlAcMode=%d\n")};

constexpr Line kSafety[] = {
    TEXT(ZepSafetyWdn, path, " +- %s\n"),
    NUMBER(ZepSafetyWdn, SafetyWdnEnbl, "     +- SafetyWdnEnbl=%d\n"),
    NUMBER(ZepSafetyWdn, UrlDetectEnbl, "     +- UrlDetectEnbl=%d\n"),
    NUMBER(ZepSafetyWdn, SafetyNotifyEnbl, "     +- SafetyNotifyEnbl=%d\n"),
    NUMBER(ZepSafetyWdn, ToolRecommendEnbl, "     +- ToolRecommendEnbl=%d\n"),
    NUMBER(ZepSafetyWdn, restart, "     +- restart=%d\n"),
};

constexpr Line kSwitches[] = {
    BYTE(apCloningOnly, "+- apCloningOnly=%d\n"),       BYTE(apCloningFeature, "+- apCloningFeature=%d\n"),
    BYTE(fwUpgradeFeature, "+- fwUpgradeFeature=%d\n"), BYTE(easyRoamingFeature, "+- easyRoamingFeature=%d\n"),
    BYTE(safetyWdnFeature, "+- safetyWdnFeature=%d\n"), BYTE(wlan24Feature, "+- wlan24Feature=%d\n"),
    BYTE(wlan5Feature, "+- wlan5Feature=%d\n"),         TEXT(ZepXmlData, tmpPath, "+- tmpPath=%s\n"),
    TEXT(ZepXmlData, scriptPath, "+- scriptPath=%s\n"), BYTE(saveflag, "+- saveflag=%d\n"),
};

void dumpDsl(const ZepIsp& dsl) {
    if (isFirstGeneration())
        dumpLines(dsl, kDslLine);
    else
        dumpLines(dsl, kIsp);
}

// One chain: a first-generation device that may extend shows its extender site whatever else it has.
void dumpHardware(const ZepDevice& device) {
    const ZepUpLink& upLink = device.upLink;
    const int32_t kind = upLink.hardwareTypeIdx;
    if (kind == kAdsl || kind == kVdsl || kind == kDsl)
        dumpDsl(upLink.dsl);
    else if (kind == kWwan80211 || (isFirstGeneration() && device.ExtenderEnbl != 2))
        dumpLines(upLink.extenderSite, kExtenderSite);
    else if (kind == kWwanApn)
        dumpLines(upLink.apn, kIsp);
}

void dumpRoaming(const ZepDevice& device) {
    if (!isFirstGeneration() && zepXmlData.easyRoamingFeature != 0) dumpLines(device, kRoaming);
}

void dumpDevice(const ZepDevice& device) {
    dumpLines(device, kDevice);
    if (isFirstGeneration()) dumpLines(device, kExtenderEnbl);
    dumpRoaming(device);
    dumpLines(device, kSurvey);
    dumpLines(device.upLink, kUpLink);
    dumpHardware(device);
}

void dumpRules(const ZepAccessControl& access) {
    if (access.WlAcEnbl != 1) return;
    dumpLines(access, kAccessMode);
    for (int32_t index = 0; index < rulesInUse(access); index++) {
        const ZepAcRule& rule = access.acRule[index];
        LINE("         +- %s:%d\n", rule.path, index + 1);
        LINE("             +- Active,MAC=%d,%s\n", rule.Active, rule.MAC);
    }
}

void dumpRadio(const ZepWireless& radio) {
    dumpLines(radio, kRadio);
    if (isFirstGeneration()) return;
    dumpLines(radio, kLaterRadio);
    dumpRules(radio.accessControl);
}

} // namespace

void dumpRecord() {
    if (!logs(kLogInfo)) return;
    const ZepXmlData& data = zepXmlData;
    LINE("----ZEPXML_BGN----\n");
    dumpLines(data, kHead);
    if (isApCloning())
        dumpRoaming(data.device);
    else
        dumpDevice(data.device);
    for (int radio = 0; radio < kRadios; radio++)
        if (hasRadio(radio)) dumpRadio(data.device.wireless[radio]);
    if (data.safetyWdnFeature != 0) dumpLines(data.device.safetyWdn, kSafety);
    dumpLines(data, kSwitches);
    LINE("----ZEPXML_END----\n");
}

} // namespace pendra
