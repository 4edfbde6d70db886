#include "host/variables.h"

#include <nlohmann/json.hpp>

#include "common/number.h"
#include "host/form_run.h"
#include "host/record.h"
#include "host/setup_run.h"
#include "host/variable_info.h"
#include "pendra/vars.h"

namespace pendra::host {

namespace {

using nlohmann::ordered_json;

Answer badRequest(const std::string& line) {
    return textAnswer(MHD_HTTP_BAD_REQUEST, line);
}

// Which list the indexes of a variable's row count.
int elementCount(const VariableInfo& variable) {
    const std::string row(variable.name.substr(0, variable.name.find("??")));
    if (row.ends_with("_Ssv_S")) return parseInt(variableText("zep_Ext_Ssv_SiteNo").c_str());
    if (row.ends_with("_Acl_R")) return parseInt(variableText(row.substr(0, row.size() - 1) + "AcRuleNo").c_str());
    return 0;
}

bool wantsDocument(const Request& request) {
    return request.accept.find("application/xml") != std::string::npos;
}

Answer outcomeAnswer(const FormOutcome& outcome) {
    return jsonAnswer(
        {{"code", outcome.code}, {"name", outcome.name}, {"words", outcome.words}, {"wait", outcome.waitSeconds}});
}

ordered_json checkedPair(const FormPair& pair) {
    const std::string value = decodeValue(pair.value);
    const int32_t code = checkValue(pair.name, value);
    return {{"name", pair.name}, {"code", code}, {"words", codeInWords(pair.name, code)}};
}

} // namespace

Answer getVariable(Request& request) {
    const auto name = libraryName(formField(request.query, "name"));
    if (!name) return badRequest("The field \"name\" must be the name of a variable, like zep_DeviceName.");
    if (isAction(*name)) return badRequest("An action is not read; post it.");
    const bool wantsPath = formField(request.query, "path") == "1";
    char value[ZEPVAR_VALUE_SIZE] = "";
    refreshRecord();
    if (get_ZepVar(name->c_str(), value, wantsPath ? 1 : 0) != 0) {
        return textAnswer(MHD_HTTP_NOT_FOUND, "There is no variable of this name.");
    }
    ordered_json object; // filled one by one: a list of pairs would be copied twice on the way
    object["name"] = *name;
    object[wantsPath ? "path" : "value"] = value;
    return jsonAnswer(object);
}

Answer getVariables(Request&) {
    refreshRecord();
    ordered_json list = ordered_json::array();
    for (const VariableInfo& variable : allVariables()) {
        for (const std::string& name : namesOf(variable, elementCount(variable))) {
            list.push_back({{"name", name}, {"value", variableText(name)}, {"settable", variable.canBeSet()}});
        }
    }
    return jsonAnswer(list);
}

Answer postVariables(Request& request) {
    const Form form = readForm(request, Actions::allowed);
    if (!form.fault.empty()) return badRequest(form.fault);
    FormOutcome outcome;
    const auto refusal = runForm(request, form, {}, outcome);
    if (refusal) return *refusal;
    const std::string document = resultOfRun();
    return wantsDocument(request) ? xmlAnswer(document) : outcomeAnswer(outcome);
}

Answer postValidate(Request& request) {
    const Form form = readForm(request, Actions::refused);
    if (!form.fault.empty()) return badRequest(form.fault);
    refreshRecord();
    ordered_json list = ordered_json::array();
    for (const FormPair& pair : form.pairs) {
        list.push_back(checkedPair(pair));
    }
    return jsonAnswer(list);
}

} // namespace pendra::host
