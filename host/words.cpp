#include "host/words.h"

#include <vector>

#include "common/number.h"

namespace pendra::host {

namespace {

enum Code : int32_t { kDone = 0, kNotConfigurable = 1, kRefused = 2, kInvalid = 3, kCharacter = 11 };

// A comma ends a field; a backslash takes a comma or a backslash behind it literally.
std::vector<std::string> ruleFields(std::string_view rule) {
    std::vector<std::string> fields(1);
    for (size_t i = 0; i < rule.size(); ++i) {
        const char next = i + 1 < rule.size() ? rule[i + 1] : '\0';
        if (rule[i] == '\\' && (next == ',' || next == '\\')) {
            fields.back() += rule[++i];
        } else if (rule[i] == ',') {
            fields.emplace_back();
        } else {
            fields.back() += rule[i];
        }
    }
    return fields;
}

std::string fieldOr(const std::vector<std::string>& fields, size_t index, const char* whenAbsent) {
    return index < fields.size() ? fields[index] : whenAbsent;
}

// Of a range the library looks at its first and third character only, of other fields at the first.
std::string characterRange(const std::string& field) {
    if (field.size() > 2 && field[1] == '-') return field.substr(0, 3);
    return field == " " ? "blank" : field.substr(0, 1);
}

std::string characterRanges(const std::vector<std::string>& fields) {
    constexpr size_t kFirstRange = 5;
    std::string words;
    for (size_t i = kFirstRange; i < fields.size(); ++i) {
        if (fields[i].empty()) continue;
        if (!words.empty()) words += ' ';
        words += characterRange(fields[i]);
    }
    return words;
}

std::string lengthInWords(const std::string& shortest, const std::string& longest) {
    if (shortest == longest) return "exactly " + longest;
    return parseInt(shortest.c_str()) > 0 ? shortest + " to " + longest : "up to " + longest;
}

std::string textRuleInWords(const std::vector<std::string>& fields) {
    const bool anyCharacter = parseInt(fieldOr(fields, 3, "0").c_str()) != 0;
    std::string words = lengthInWords(fieldOr(fields, 2, "1"), fieldOr(fields, 1, "9999"));
    words += anyCharacter ? " characters" : " characters, no accents";
    const std::string ranges = characterRanges(fields);
    if (ranges.empty()) return words;
    const bool isAllowList = parseInt(fieldOr(fields, 4, "0").c_str()) != 0;
    return words + (isAllowList ? "; only these: " : "; none of these: ") + ranges;
}

std::string numberRuleInWords(const std::vector<std::string>& fields) {
    if (fields.size() < 2) return "a number";
    if (fields.size() < 3) return "a number up to " + fields[1];
    return "a number from " + fields[2] + " to " + fields[1];
}

struct CheckWords {
    std::string_view check;
    const char* words;
};

// What a value that passes is like.
constexpr CheckWords kCheckWords[] = {
    {"address", "an address like 192.168.1.20"},
    {"netmask", "a netmask like 255.255.255.0"},
    {"zeroOrOne", "0 (off) or 1 (on)"},
    {"locked", "0 (off) or 1 (on)"},
    {"channel", "a channel of the list; 0 is automatic"},
    {"roaming", "four numbers: the first negative, the second 0 or more, the others 1 or more"},
};

struct LeafWords {
    std::string_view leaf;
    const char* words;
};

// Values that are well by themselves and do not fit the others.
constexpr LeafWords kMisfitWords[] = {
    {"EncryptionKey", "This key does not fit the encryption: WPA takes 8 to 63 characters, WEP 5 or 13."},
    {"EncryptionType",
     "This cipher does not fit the encryption: AUTO fits all; WPA takes TKIP or AES, WEP OPEN or SHARED."},
    {"HardwareType", "The device has no such uplink."},
    {"CountryName", "This uplink needs the country."},
    {"IspName", "This uplink needs the name of the provider."},
    {"RouterEnbl", "The device has fixed this setting."},
    {"WlEnbl", "The device has fixed this setting."},
    {"WlSchedule", "The device has fixed this setting."},
    {"WlAcEnbl", "The device has fixed this setting."},
};

std::string refusedInWords(const VariableInfo& variable, const std::string& hint) {
    if (!variable.canBeSet()) return "This can be read but not set.";
    if (variable.check == "locked") return "The device has fixed this setting.";
    if (variable.check == "rule" || variable.check == "none") return "This is too long.";
    return "This must be " + hint + ".";
}

std::string misfitInWords(const VariableInfo& variable, const std::string& hint) {
    for (const LeafWords& row : kMisfitWords) {
        if (variable.name.ends_with(row.leaf)) return row.words;
    }
    return hint.empty() ? "This is missing or not valid." : "This must be " + hint + ".";
}

} // namespace

std::string ruleInWords(std::string_view rule) {
    const std::vector<std::string> fields = ruleFields(rule);
    const int type = parseInt(fields[0].c_str());
    if (rule.empty() || type < 0 || type > 1) return {};
    return type == 1 ? numberRuleInWords(fields) : textRuleInWords(fields);
}

std::string hintInWords(const VariableInfo& variable, std::string_view rule) {
    if (variable.check == "rule") return ruleInWords(rule);
    if (variable.isChoice()) return "one of " + std::string(variable.choices);
    for (const CheckWords& row : kCheckWords) {
        if (row.check == variable.check) return row.words;
    }
    return {};
}

std::string refusalInWords(const VariableInfo* variable, int32_t code, std::string_view rule) {
    if (code == kDone) return {};
    if (variable == nullptr) return "There is no such setting.";
    const std::string hint = hintInWords(*variable, rule);
    switch (code) {
        case kNotConfigurable:
            return "This part of the device cannot be changed.";
        case kRefused:
            return refusedInWords(*variable, hint);
        case kInvalid:
            return misfitInWords(*variable, hint);
        case kCharacter:
            return "A character is not allowed here: " + hint + ".";
        default:
            return "This must be " + hint + ".";
    }
}

} // namespace pendra::host
