#include "vars/section_variables.h"

#include "common/number.h"
#include "common/tree_access.h"

namespace pendra {
namespace {

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

// A list index is a letter and exactly two digits ("R03"), which must be the whole of the part before the next one.
// Returns -1 for anything else.
int listIndex(const char* part, char letter) {
    if (part[0] != letter || !isDigit(part[1]) || !isDigit(part[2]) || part[3] != '_') return -1;
    return (part[1] - '0') * 10 + (part[2] - '0');
}

int32_t accessAcRule(const VariableName& name, const Request& request, ZepAccessControl& access) {
    const int index = listIndex(name.part(3), 'R');
    if (index < 0 || index >= access.acRuleCount || index >= ZEP_AC_RULE_MAX) return kRefused;
    int target = index;
    // A set of Active goes into the rule whose index the value is, 0 or 1, and not into the named one. That is part of
    // the interface; the check against the count is on the named one all the same.
    if (request.sets() && std::strcmp(name.part(4), "Active") == 0) {
        char value[ZEPVAR_VALUE_SIZE];
        copyText(value, request.value);
        target = parseInt(value) == 1 ? 1 : 0;
    }
    // The path answer carries no wireless base; that is part of the interface.
    const NodePath base("/acrule:%d", index + 1);
    return accessVariable({kAcRuleVariables, &access.acRule[target], base}, name.part(4), request);
}

constexpr const char* kRadioBases[] = {"/lan/wireless2.4:1", "/lan/wireless5:1"};

constexpr Section kVersionSection = {kVersionVariables, &zepXmlData.specVersion, "/specversion"};
constexpr Section kUpLinkSection = {kUpLinkVariables, &zepXmlData.device.upLink, "/uplink"};
constexpr Section kSafetySection = {kSafetyVariables, &zepXmlData.device.safetyWdn, "/safetywdn"};
constexpr Section kFirmwareSection = {kFirmwareVariables, nullptr, "/fwupgradeinfo"};
constexpr Section kSurveySection = {kSurveyVariables, nullptr, ""};

constexpr struct {
    const char* prefix;
    Section section;
} kUpLinkParts[] = {
    {"Ets", {kExtenderVariables, &zepXmlData.device.upLink.extenderSite, "/uplink/extendersite"}},
    {"Dsl", {kIspVariables, &zepXmlData.device.upLink.dsl, "/uplink/dsl"}},
    {"Apn", {kIspVariables, &zepXmlData.device.upLink.apn, "/uplink/asp"}}, // spelt so: part of the interface
};

int32_t accessSurvey(const VariableName& name, const Request& request) {
    if (name.count() == 3) return accessVariable(kSurveySection, name.part(3), request);
    if (name.count() != 4) return kRefused;
    const int index = listIndex(name.part(3), 'S');
    if (index < 0 || readNodeInt("/wirelesssitesurvey/site#") < index + 1) return kRefused;
    // Two above the index, unlike the access rules: this is part of the interface, and so S00 reads element 2.
    const NodePath base("/wirelesssitesurvey/site:%d", index + 2);
    return accessVariable({kSurveySiteVariables, nullptr, base}, name.part(4), request);
}

} // namespace

int32_t accessVersion(const VariableName& name, const Request& request) {
    if (name.count() != 2) return kRefused;
    return accessVariable(kVersionSection, name.part(2), request);
}

int32_t accessUpLink(const VariableName& name, const Request& request) {
    if (request.sets() && zepXmlData.device.upLink.Configurable == 0) return kNotConfigurable;
    for (const auto& part : kUpLinkParts)
        if (name.count() == 3 && name.begins(2, part.prefix))
            return accessVariable(part.section, name.part(3), request);
    return accessVariable(kUpLinkSection, name.part(2), request);
}

int32_t accessWireless(const VariableName& name, const Request& request) {
    const int index = name.begins(1, "Wl2") ? 0 : 1;
    ZepWireless& radio = zepXmlData.device.wireless[index];
    if (request.sets() && radio.Configurable == 0) return kNotConfigurable;
    if (name.count() == 2 || !name.begins(2, "Acl"))
        return accessVariable({kWirelessVariables, &radio, kRadioBases[index]}, name.part(2), request);
    if (name.count() == 4) return accessAcRule(name, request, radio.accessControl);
    if (name.count() != 3) return kRefused;
    const NodePath base("%s/accesscontrol", kRadioBases[index]);
    return accessVariable({kAccessVariables, &radio.accessControl, base}, name.part(3), request);
}

int32_t accessSafety(const VariableName& name, const Request& request) {
    return accessVariable(kSafetySection, name.part(2), request);
}

int32_t accessInformation(const VariableName& name, const Request& request) {
    if (!request.gets()) return kRefused;
    if (name.begins(2, "Fwu")) {
        if (name.count() != 3) return kRefused;
        return accessVariable(kFirmwareSection, name.part(3), request);
    }
    return name.begins(2, "Ssv") ? accessSurvey(name, request) : static_cast<int32_t>(kRefused);
}

} // namespace pendra
