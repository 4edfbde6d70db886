#include "host/variable_info.h"

#include <algorithm>

#include "pendra/vars.h"

namespace pendra::host {

namespace {

constexpr VariableInfo kVariables[] = {
#include "variable_rows.inc"
};

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isNameCharacter(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool isPathCharacter(char c) {
    return isNameCharacter(c) || c == '/' || c == '.' || c == ':' || c == '#';
}

bool matches(std::string_view pattern, std::string_view name) {
    return std::equal(pattern.begin(), pattern.end(), name.begin(), name.end(),
                      [](char wanted, char c) { return wanted == '?' ? isDigit(c) : wanted == c; });
}

std::string twoDigits(int number) {
    return std::to_string(number / 10) + std::to_string(number % 10);
}

} // namespace

std::span<const VariableInfo> allVariables() {
    return kVariables;
}

const VariableInfo* findVariable(std::string_view name) {
    for (const VariableInfo& variable : kVariables) {
        if (matches(variable.name, name)) return &variable;
    }
    return nullptr;
}

std::vector<std::string> namesOf(const VariableInfo& variable, int elementCount) {
    const size_t index = variable.name.find("??");
    if (index == std::string_view::npos) return {std::string(variable.name)};
    constexpr int kMaxIndexes = 100; // two digits
    const int count = std::clamp(elementCount, 0, kMaxIndexes);
    std::vector<std::string> names;
    names.reserve(static_cast<size_t>(count));
    for (int element = 0; element < count; ++element) {
        names.push_back(std::string(variable.name).replace(index, 2, twoDigits(element)));
    }
    return names;
}

bool isVariableName(std::string_view text, size_t maxLength) {
    if (text.size() > maxLength) return false;
    if (text.starts_with("/")) return std::all_of(text.begin(), text.end(), isPathCharacter);
    return text.starts_with("zep_") && std::all_of(text.begin(), text.end(), isNameCharacter);
}

std::optional<std::string> libraryName(std::string_view text) {
    const std::string name(text);
    if (!isVariableName(name, kMaxName)) return std::nullopt;
    if (!name.starts_with('/')) return name;
    const char* converted = cvtZep_XmlPathVsVarName(name.c_str(), 0);
    if (converted == nullptr || !isVariableName(converted, kMaxName)) return std::nullopt;
    return converted;
}

bool isAction(std::string_view name) {
    return name.starts_with("zep_Act_");
}

} // namespace pendra::host
