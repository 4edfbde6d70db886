// The one entry of the variable interface: takes a name apart and hands the request to its section.
#include "common/bounded_text.h"
#include "common/trace.h"
#include "common/tree_access.h"
#include "vars/actions.h"
#include "vars/section_variables.h"

using namespace pendra;

namespace {

constexpr const char* kNamePrefix = "zep_";
constexpr size_t kNamePrefixLength = 4;

bool startsWith(const char* text, const char* prefix) {
    return std::strncmp(text, prefix, std::strlen(prefix)) == 0;
}

int32_t accessDevice(const VariableTable& variables, const char* leaf, const Request& request) {
    return accessVariable({variables, &zepXmlData.device, ""}, leaf, request);
}

// Fixed texts that pages need; asking for the path gives the same.
int32_t accessConstant(const VariableName& name, const Request& request) {
    if (name.count() != 2 || !request.gets()) return kRefused;
    for (const Variable& variable : kConstantVariables) {
        if (std::strcmp(variable.leaf, name.part(2)) != 0) continue;
        if (variable.kind == Kind::text) return request.answer(variable.answer);
        return accessVariable({kConstantVariables, nullptr, ""}, name.part(2), {request.value, ZEPVAR_GET});
    }
    return kRefused;
}

int32_t act(const VariableName& name, const Request& request) {
    return name.count() == 2 ? performAction(name.part(2), request) : static_cast<int32_t>(kRefused);
}

int32_t accessSafetyOfTwoParts(const VariableName& name, const Request& request) {
    return name.count() == 2 ? accessSafety(name, request) : static_cast<int32_t>(kRefused);
}

constexpr struct {
    const char* prefix; // of part 1
    int32_t (*access)(const VariableName& name, const Request& request);
} kSections[] = {
    {"Var", accessConstant}, {"Act", act},          {"Ver", accessVersion},          {"Wl2", accessWireless},
    {"Wl5", accessWireless}, {"Upl", accessUpLink}, {"Wdn", accessSafetyOfTwoParts}, {"Ext", accessInformation},
};

int32_t dispatch(const VariableName& name, const Request& request) {
    if (name.count() == 1) return accessDevice(kDeviceVariables, name.part(1), request);
    if (name.count() == 2 && request.gets() && std::strcmp(name.part(2), "Validate") == 0)
        return accessDevice(kDeviceRules, name.part(1), request);
    for (const auto& section : kSections)
        if (name.begins(1, section.prefix)) return section.access(name, request);
    return kRefused;
}

} // namespace

extern "C" int32_t setget_ZepVar(const char* name, char* value, uint32_t flags) {
    if (name == nullptr || value == nullptr) return kRefused;
    char converted[ZEPVAR_VALUE_SIZE]; // a copy: the conversion's own buffer is overwritten by the next one
    if (*name == '/') {
        const char* variable = cvtZep_XmlPathVsVarName(name, 0);
        if (variable == nullptr) return kRefused;
        logPrintf(kLogTrace, "zepVar='%s'\n", variable);
        copyText(converted, variable);
        name = converted;
    }
    if (!startsWith(name, kNamePrefix)) return kRefused;
    // An action reads its argument from the buffer, so that one is kept.
    if ((flags & ZEPVAR_GET) != 0 && !startsWith(name, "zep_Act_")) *value = '\0';
    return dispatch(VariableName(name + kNamePrefixLength), {value, flags});
}
