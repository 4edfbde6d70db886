#include "setupdoc/record_dump.h"

#include <cstddef>

#include "common/trace.h"
#include "setupdoc/record_access.h"

// Passwords and keys stand in the dump in clear: support reads level-6 logs to see what a client really sent.

#define LINE(...) logPrintf(kLogInfo, __VA_ARGS__)

namespace pendra {
namespace {

int32_t numberAt(const char* field) {
    return *reinterpret_cast<const int32_t*>(field);
}

// How a line goes on behind its indentation.
enum class Form : uint8_t {
    path,         // the text alone
    text,         // name=text
    quotedText,   // name='text'
    texts,        // name='text,text'
    name,         // name='text',row
    number,       // name=number
    quotedNumber, // name='number'
    byte,         // name=number, of a small field
};

// A line of the dump: how deep it stands, its name, and the fields of a section that it shows.
struct Line {
    uint8_t depth;
    Form form;
    uint16_t offset;
    const char* name;
    uint16_t second = 0;
};

#define PATH(depth, Section, field) \
    { depth, Form::path, offsetof(Section, field), "" }
#define TEXT(depth, Section, field) \
    { depth, Form::text, offsetof(Section, field), #field }
#define QUOTED(depth, Section, field) \
    { depth, Form::quotedText, offsetof(Section, field), #field }
#define NUMBER(depth, Section, field) \
    { depth, Form::number, offsetof(Section, field), #field }
#define BYTE(field) \
    { 0, Form::byte, offsetof(ZepXmlData, field), #field }
#define NAME(depth, Section, field, row, shown) \
    { depth, Form::name, offsetof(Section, field), shown, offsetof(Section, row) }
#define TEXTS(depth, Section, field, other, shown) \
    { depth, Form::texts, offsetof(Section, field), shown, offsetof(Section, other) }

constexpr const char* kIndents[] = {"+- ", " +- ", "     +- ", "         +- "};

// By form, behind indentation and name; a format takes as many of the values as it has places.
constexpr const char* kFormats[] = {
    "%s%s%s\n", "%s%s=%s\n", "%s%s='%s'\n", "%s%s='%s,%s'\n", "%s%s='%s',%d\n", "%s%s=%d\n", "%s%s='%d'\n", "%s%s=%d\n",
};

void dumpLine(const char* section, const Line& line) {
    const char* const format = kFormats[static_cast<size_t>(line.form)];
    const char* const indent = kIndents[line.depth];
    const char* const field = section + line.offset;
    const char* const second = section + line.second;
    if (line.form < Form::name)
        LINE(format, indent, line.name, field, second);
    else if (line.form == Form::name)
        LINE(format, indent, line.name, field, numberAt(second));
    else
        LINE(format, indent, line.name,
             line.form == Form::byte ? *reinterpret_cast<const int8_t*>(field) : numberAt(field));
}

void dumpRows(const char* section, const Line* line, size_t count) {
    for (; count > 0; line++, count--)
        dumpLine(section, *line);
}

template <typename Section, size_t Count>
void dumpLines(const Section& section, const Line (&lines)[Count]) {
    dumpRows(reinterpret_cast<const char*>(&section), lines, Count);
}

constexpr Line kIsp[] = {
    PATH(2, ZepIsp, path),
    TEXT(3, ZepIsp, CountryName),
    TEXT(3, ZepIsp, IspName),
};

constexpr Line kExtenderSite[] = {
    PATH(2, ZepExtenderSite, path),
    NUMBER(3, ZepExtenderSite, Survey),
    TEXT(3, ZepExtenderSite, ConnRefSiteBSSID),
    NAME(3, ZepExtenderSite, WirelessType, wirelessTypeIdx, "WirelessType"),
    TEXT(3, ZepExtenderSite, WirelessName),
    TEXT(3, ZepExtenderSite, EncryptionKey),
};

constexpr Line kUpLink[] = {
    PATH(1, ZepUpLink, path),
    NUMBER(2, ZepUpLink, Configurable),
    NAME(2, ZepUpLink, HardwareType, hardwareTypeIdx, "HardwareType"),
    QUOTED(2, ZepUpLink, LoginUserName),
    QUOTED(2, ZepUpLink, LoginPassword),
    TEXTS(2, ZepUpLink, IP, NetMask, "IP,NetMask"),
    QUOTED(2, ZepUpLink, Gateway),
    QUOTED(2, ZepUpLink, DNS),
    {2, Form::quotedNumber, offsetof(ZepUpLink, restart), "restart"},
};

constexpr Line kDevice[] = {
    QUOTED(1, ZepDevice, DeviceName),
    QUOTED(1, ZepDevice, DevicePwd),
    QUOTED(1, ZepDevice, DeviceType),
    NUMBER(1, ZepDevice, RouterEnbl),
};

constexpr Line kExtenderEnbl[] = {NUMBER(1, ZepDevice, ExtenderEnbl)};

constexpr Line kRoaming[] = {TEXT(1, ZepDevice, EasyRoaming)};

constexpr Line kSurvey[] = {NUMBER(1, ZepDevice, wlanSurveyRestart)};

constexpr Line kNetwork[] = {
    QUOTED(2, ZepWireless, WirelessBSSID),
    QUOTED(2, ZepWireless, WirelessName),
    TEXTS(2, ZepWireless, EncryptionMode, EncryptionType, "EncryptionMode,Type"),
    QUOTED(2, ZepWireless, EncryptionKey),
};

constexpr Line kLaterRadio[] = {
    QUOTED(2, ZepWireless, Channel),
    NUMBER(2, ZepWireless, restart),
    PATH(2, ZepWireless, accessControl.path),
    {3, Form::number, offsetof(ZepWireless, accessControl.WlAcEnbl), "WlAcEnbl"},
};

constexpr Line kAccessMode[] = {NUMBER(3, ZepAccessControl, WlAcMode)};

constexpr Line kSafety[] = {
    PATH(1, ZepSafetyWdn, path),
    NUMBER(2, ZepSafetyWdn, SafetyWdnEnbl),
    NUMBER(2, ZepSafetyWdn, UrlDetectEnbl),
    NUMBER(2, ZepSafetyWdn, SafetyNotifyEnbl),
    NUMBER(2, ZepSafetyWdn, ToolRecommendEnbl),
    NUMBER(2, ZepSafetyWdn, restart),
};

constexpr Line kSwitches[] = {
    BYTE(apCloningOnly),      BYTE(apCloningFeature),       BYTE(fwUpgradeFeature),
    BYTE(easyRoamingFeature), BYTE(safetyWdnFeature),       BYTE(wlan24Feature),
    BYTE(wlan5Feature),       TEXT(0, ZepXmlData, tmpPath), TEXT(0, ZepXmlData, scriptPath),
    BYTE(saveflag),
};

void dumpHead(const ZepXmlData& data) {
    LINE("----ZEPXML_BGN----\n");
    LINE("%s\n", data.specVersion.path);
    LINE(" +- Ver=%d.%d\n", data.specVersion.major, data.specVersion.minor);
    LINE("%s\n", data.device.path);
    LINE(" +- Configurable=%d\n", data.device.Configurable);
}

void dumpDsl(const ZepIsp& dsl) {
    if (!isFirstGeneration()) {
        dumpLines(dsl, kIsp);
        return;
    }
    LINE("     +- %s\n", dsl.path);
    LINE("         +- VPI/VCI=%d/%d\n", dsl.VPI, dsl.VCI);
    LINE("         +- EncapMode='%s',%d\n", dsl.EncapsulationMode, dsl.encapModeIdx);
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
    LINE(" +- %s\n", radio.path);
    LINE("     +- Configurable=%d\n", radio.Configurable);
    LINE("     +- WlEnbl,WlSchedule=%d,%d\n", radio.WlEnbl, radio.WlSchedule);
    dumpLines(radio, kNetwork);
    if (isFirstGeneration()) return;
    dumpLines(radio, kLaterRadio);
    dumpRules(radio.accessControl);
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
    if (data.safetyWdnFeature != 0) dumpLines(data.device.safetyWdn, kSafety);
    dumpLines(data, kSwitches);
    LINE("----ZEPXML_END----\n");
}

} // namespace pendra
