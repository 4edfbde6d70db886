#include "host/rule_edit.h"

#include <charconv>

#include "host/variable_info.h"
#include "pendra/setupdoc.h"

namespace pendra::host {

namespace {

constexpr const char* kRadioNames[] = {"Wl2", "Wl5"};

std::string add(std::vector<AccessRule>& rules, size_t, const std::string& mac) {
    if (!isMac(mac)) return "This must be six pairs of hex digits with colons between.";
    if (rules.size() >= ZEP_AC_RULE_MAX) return "There is no room for another rule.";
    rules.push_back({true, mac});
    return {};
}

std::string remove(std::vector<AccessRule>& rules, size_t index, const std::string&) {
    rules.erase(rules.begin() + static_cast<std::ptrdiff_t>(index));
    return {};
}

std::string turnOn(std::vector<AccessRule>& rules, size_t index, const std::string&) {
    rules[index].active = true;
    return {};
}

std::string turnOff(std::vector<AccessRule>& rules, size_t index, const std::string&) {
    rules[index].active = false;
    return {};
}

struct Change {
    std::string_view word;
    bool ofPresentRule;
    std::string (*make)(std::vector<AccessRule>& rules, size_t index, const std::string& mac);
};

constexpr Change kChanges[] = {
    {"add", false, add}, {"remove", true, remove}, {"on", true, turnOn}, {"off", true, turnOff}};

// The address shows that the rule is still the one that the page showed.
bool isRule(const std::vector<AccessRule>& rules, size_t index, const std::string& mac) {
    return index < rules.size() && rules[index].mac == mac;
}

size_t indexOf(const std::string& text) {
    size_t index = ZEP_AC_RULE_MAX;
    std::from_chars(text.data(), text.data() + text.size(), index);
    return index;
}

std::string change(std::vector<AccessRule>& rules, std::string_view form, const std::string& mac) {
    const std::string word = formField(form, "do");
    const size_t index = indexOf(formField(form, "rule"));
    for (const Change& row : kChanges) {
        if (row.word != word) continue;
        if (row.ofPresentRule && !isRule(rules, index, mac)) return "The rules have changed meanwhile; try again.";
        return row.make(rules, index, mac);
    }
    return "There is nothing of this kind to be done.";
}

} // namespace

RuleEdit readRuleEdit(std::string_view form) {
    RuleEdit edit;
    const std::string radio = formField(form, "radio");
    if (radio.empty()) return edit;
    edit.wanted = true;
    edit.radio = radio == kRadioNames[0] ? 0 : 1;
    if (radio != kRadioNames[edit.radio]) {
        edit.fault = "There is nothing of this kind to be done.";
        return edit;
    }
    edit.rules = accessRules(edit.radio);
    edit.field = "mac-" + radio;
    edit.mac = formField(form, edit.field);
    edit.fault = change(edit.rules, form, edit.mac);
    return edit;
}

std::vector<FormPair> rulePairs(const RuleEdit& edit) {
    const std::string prefix = std::string("zep_") + kRadioNames[edit.radio] + "_Acl_";
    std::vector<FormPair> pairs = {{prefix + "AcRuleNo", std::to_string(edit.rules.size())}};
    const VariableInfo* address = findVariable(prefix + "R00_MAC");
    const std::vector<std::string> names = namesOf(*address, static_cast<int>(edit.rules.size()));
    for (size_t rule = 0; rule < names.size(); ++rule) {
        pairs.push_back({names[rule], encodeValue(edit.rules[rule].mac)});
    }
    return pairs;
}

} // namespace pendra::host
