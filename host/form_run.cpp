#include "host/form_run.h"

#include <algorithm>

#include "host/record.h"
#include "host/setup_run.h"
#include "host/variable_info.h"
#include "host/words.h"
#include "pendra/vars.h"

namespace pendra::host {

namespace {

constexpr const char* kSetAction = "zep_Act_SetZepVars";
constexpr const char* kCommitAction = "zep_Act_CommitZepVars";
constexpr int32_t kRefused = 2;

std::string inPair(size_t number, const std::string& fault) {
    return "Pair " + std::to_string(number) + " of the form: " + fault;
}

std::string checkName(FormPair& pair, Actions actions) {
    const auto name = libraryName(pair.name);
    if (!name) return "this is no name of a variable.";
    if (name->size() > kMaxFormName) return "a name has at most 31 characters.";
    if (isAction(*name) && actions == Actions::refused) return "an action cannot be checked.";
    pair.name = *name;
    return {};
}

// The first pair that @p faultOf finds a fault in, and the fault.
template <typename FaultOf>
std::string checkEach(std::vector<FormPair>& pairs, FaultOf faultOf) {
    size_t number = 0;
    for (FormPair& pair : pairs) {
        ++number;
        const std::string fault = faultOf(pair);
        if (!fault.empty()) return inPair(number, fault);
    }
    return {};
}

// The value of this action is a form of its own, whose names reach the library too.
std::string checkInnerForm(const FormPair& pair) {
    if (pair.name != kSetAction) return {};
    auto inner = splitForm(decodeValue(pair.value), '&');
    if (!inner) return "its value must be a list of name=value, with & between them.";
    // By either spelling: each level would be checked by a call within the one before.
    const bool nested =
        std::any_of(inner->begin(), inner->end(), [](const FormPair& p) { return libraryName(p.name) == kSetAction; });
    if (nested) return "it cannot hold itself.";
    return checkEach(*inner, [](FormPair& inside) { return checkName(inside, Actions::allowed); });
}

std::string checkPairs(std::vector<FormPair>& pairs, Actions actions) {
    return checkEach(pairs, [actions](FormPair& pair) {
        const std::string fault = checkName(pair, actions);
        return fault.empty() ? checkInnerForm(pair) : fault;
    });
}

bool asksForCommit(const FormPair& pair) {
    return libraryName(pair.name) == kCommitAction;
}

bool listsCommit(const FormPair& pair) {
    if (pair.name != kSetAction) return false;
    // The library sees so much of the list; what it does not see arms no alarm.
    const auto inner = splitForm(decodeValue(pair.value).substr(0, ZEPVAR_VALUE_SIZE - 1), '&');
    return inner && std::any_of(inner->begin(), inner->end(), asksForCommit);
}

bool commitsByItself(const Form& form) {
    return std::any_of(form.pairs.begin(), form.pairs.end(),
                       [](const FormPair& pair) { return asksForCommit(pair) || listsCommit(pair); });
}

// A fault names its place in the document: "Device/Wireless2.4/Channel".
std::string variableAtFault(const std::string& text) {
    if (text.starts_with("zep_")) return text;
    std::string path = "/" + text;
    constexpr std::string_view kShort = "/Device/Uplink/";
    if (path.starts_with(kShort)) path.replace(0, kShort.size(), "/Device/UpLinkConnection/");
    const auto name = libraryName(path);
    return name && findVariable(*name) != nullptr ? *name : text;
}

FormOutcome outcomeOf(int32_t code, const std::string& fault) {
    if (code == 0) return {.waitSeconds = resultWaitSeconds()};
    const std::string name = variableAtFault(fault);
    return {.code = code, .name = name, .words = codeInWords(name, code)};
}

bool isPlainText(const Request& request) {
    return request.contentType.starts_with("text/plain");
}

} // namespace

Form readForm(const Request& request, Actions actions) {
    Form form{.separator = isPlainText(request) ? '\n' : '&'};
    auto pairs = splitForm(request.body, form.separator);
    if (!pairs || pairs->empty()) return {.fault = "The form must be made of name=value pairs."};
    form.pairs = std::move(*pairs);
    form.fault = checkPairs(form.pairs, actions);
    return form;
}

int32_t checkValue(const std::string& name, std::string value) {
    value.resize(std::max(value.size() + 1, size_t{ZEPVAR_VALUE_SIZE}));
    const int32_t code = validate_ZepVar(name.c_str(), value.data());
    const VariableInfo* variable = findVariable(name);
    return code == kRefused && variable != nullptr && variable->isChoice() ? 0 : code;
}

std::string codeInWords(const std::string& name, int32_t code) {
    if (code == 0) return {};
    const VariableInfo* variable = findVariable(name);
    const bool hasRule = variable != nullptr && variable->check == "rule";
    return refusalInWords(variable, code, hasRule ? variableText(name + "_Validate") : "");
}

std::optional<Answer> runForm(Request& request, const Form& form, const std::function<void()>& prepare,
                              FormOutcome& outcome) {
    const std::string text = joinForm(form.pairs, form.separator);
    return storeRun(request, "a form", commitsByItself(form) ? Commit::byAlarm : Commit::ordinary, [&] {
        char fault[ZEPVAR_VALUE_SIZE] = "";
        refreshRecord();
        if (prepare) prepare();
        const int32_t code = do_ZepVar_Parser(text.c_str(), form.separator, fault, 1);
        outcome = outcomeOf(code, fault);
        return code == 0;
    });
}

} // namespace pendra::host
