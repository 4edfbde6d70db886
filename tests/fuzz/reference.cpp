#include "fuzz/reference.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace pendra::fuzz {

namespace {

int signedOf(char character) {
    return static_cast<signed char>(character);
}

char at(std::string_view text, size_t index) {
    return index < text.size() ? text[index] : '\0';
}

} // namespace

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    for (char& character : lower)
        if (character >= 'A' && character <= 'Z') character = static_cast<char>(character - 'A' + 'a');
    return lower;
}

std::optional<int32_t> referenceNumber(std::string_view text) {
    const long long number = std::strtoll(std::string(text).c_str(), nullptr, 10);
    if (number < INT32_MIN || number > INT32_MAX) return std::nullopt;
    return static_cast<int32_t>(number);
}

// ---- XML ----

std::optional<Element> findElement(std::string_view text, std::string_view tag) {
    const std::string lower = lowerCase(text);
    // A pattern has room for 127 characters.
    const auto pattern = [&](const char* before, const char* behind) {
        return lowerCase(before + std::string(tag) + behind).substr(0, 127);
    };
    const std::string opening = pattern("<", ">");
    const size_t start = lower.find(opening);
    if (start != std::string::npos) {
        const size_t content = start + opening.size();
        const size_t end = lower.find(pattern("</", ">"), content);
        if (end == std::string::npos) return Element{.tag = start};
        return Element{.tag = start, .start = content, .length = end - content, .complete = true};
    }
    for (const char* behind : {"/>", " />"}) {
        const size_t self = lower.find(pattern("<", behind));
        if (self != std::string::npos) return Element{.tag = self, .start = self, .complete = true};
    }
    return std::nullopt;
}

std::string storeDecoded(std::string before, std::string_view content, size_t length) {
    static constexpr std::pair<std::string_view, char> kEntities[] = {
        {"nbsp;", ' '}, {"lt;", '<'},  {"gt;", '>'},  {"amp;", '&'}, {"quot;", '"'}, {"apos;", '\''}, {"#32;", ' '},
        {"#160;", ' '}, {"#60;", '<'}, {"#62;", '>'}, {"#38;", '&'}, {"#34;", '"'},  {"#39;", '\''},
    };
    length = std::min(length, before.size() - 1);
    size_t written = 0;
    for (size_t read = 0; read < length; read++) {
        char character = content[read];
        for (const auto& [entity, meaning] : kEntities) {
            if (content[read] != '&' || content.substr(read + 1, entity.size()) != entity) continue;
            character = meaning;
            read += entity.size();
            break;
        }
        before[written++] = character;
    }
    if (length == 0) before[0] = '\0';
    before[length] = '\0';
    return before;
}

std::string decodedContent(std::string_view content, size_t length, size_t capacity) {
    return storeDecoded(std::string(capacity, '\0'), content, length).c_str();
}

std::string encodeEntities(std::string_view text) {
    std::string encoded;
    for (const char character : text) {
        switch (character) {
            case '"':
                encoded += "&quot;";
                break;
            case '&':
                encoded += "&amp;";
                break;
            case '\'':
                encoded += "&#39;";
                break;
            case '<':
                encoded += "&lt;";
                break;
            case '>':
                encoded += "&gt;";
                break;
            default:
                encoded += character;
        }
    }
    return encoded;
}

// ---- rules ----

namespace {

std::vector<std::string> splitRule(std::string_view rule) {
    rule = rule.substr(0, 255);
    std::vector<std::string> fields(1);
    for (size_t index = 0; index < rule.size(); index++) {
        const char next = at(rule, index + 1);
        if (rule[index] == ',') {
            if (fields.size() == 32) break;
            fields.emplace_back();
        } else if (rule[index] == '\\' && (next == '\\' || next == ',')) {
            fields.back() += rule[++index];
        } else {
            fields.back() += rule[index];
        }
    }
    return fields;
}

int64_t integerField(const std::vector<std::string>& fields, size_t index, int64_t whenAbsent) {
    if (index >= fields.size()) return whenAbsent;
    const long number = std::strtol(fields[index].c_str(), nullptr, 10);
    return std::clamp<long>(number, INT_MIN, INT_MAX);
}

float realOf(const std::string& text) {
    const auto number = static_cast<float>(std::strtod(text.c_str(), nullptr));
    return std::isnan(number) ? 0.0F : number; // a text that is no number
}

int32_t validateNumber(const std::string& value, const std::vector<std::string>& fields) {
    const float number = realOf(value);
    if (number > (fields.size() > 1 ? realOf(fields[1]) : 1e38F)) return 20;
    if (number < (fields.size() > 2 ? realOf(fields[2]) : -1e38F)) return 21;
    return 0;
}

bool isInRanges(char character, const std::vector<std::string>& fields) {
    for (size_t index = 5; index < fields.size(); index++) {
        const std::string& field = fields[index];
        if (field.empty()) continue;
        const int low = signedOf(field[0]);
        const int high = at(field, 1) == '-' ? signedOf(at(field, 2)) : low;
        if (signedOf(character) >= low && signedOf(character) <= high) return true;
    }
    return false;
}

int32_t validateText(std::string_view value, const std::vector<std::string>& fields) {
    const auto length = static_cast<int64_t>(value.size());
    if (length > integerField(fields, 1, 9999) || length < integerField(fields, 2, 1)) return 10;
    const bool controlsAllowed = integerField(fields, 3, 0) != 0;
    const auto isControl = [](char character) { return signedOf(character) < 32 || character == 127; };
    if (!controlsAllowed && std::any_of(value.begin(), value.end(), isControl)) return 11;
    const bool allowList = integerField(fields, 4, 0) != 0;
    const auto isForbidden = [&](char character) { return isInRanges(character, fields) != allowList; };
    return std::any_of(value.begin(), value.end(), isForbidden) ? 11 : 0;
}

} // namespace

int32_t referenceValidate(std::string_view value, std::string_view rule) {
    const std::vector<std::string> fields = splitRule(rule);
    const int64_t type = integerField(fields, 0, 0);
    if (type == 1) return validateNumber(std::string(value), fields);
    return type == 0 ? validateText(value, fields) : 0;
}

// ---- addresses and keys ----

namespace {

// Four numbers with dots between them; what follows is not looked at. Empty where there are not four.
std::vector<long> dottedNumbers(std::string_view text) {
    const std::string copy(text);
    const char* next = copy.c_str();
    std::vector<long> numbers;
    while (numbers.size() < 4) {
        char* end = nullptr;
        numbers.push_back(std::strtol(next, &end, 10));
        if (end == next || (numbers.size() < 4 && *end != '.')) return {};
        next = end + 1;
    }
    return numbers;
}

bool areTooLong(const std::vector<long>& numbers) {
    return std::any_of(numbers.begin(), numbers.end(), [](long n) { return n < INT_MIN || n > INT_MAX; });
}

bool isUpperHex(std::string_view text) {
    return text.find_first_not_of("0123456789ABCDEF") == std::string_view::npos;
}

} // namespace

std::optional<bool> referenceIsAddress(std::string_view text) {
    const std::vector<long> n = dottedNumbers(text);
    if (n.empty()) return false;
    if (areTooLong(n)) return std::nullopt;
    return n[0] >= 1 && n[0] <= 223 && n[0] != 127 && n[1] >= 0 && n[1] <= 255 && n[2] >= 0 && n[2] <= 255 &&
           n[3] >= 1 && n[3] <= 255;
}

std::optional<bool> referenceIsNetmask(std::string_view text) {
    const std::vector<long> numbers = dottedNumbers(text);
    if (numbers.empty()) return false;
    if (areTooLong(numbers)) return std::nullopt;
    uint32_t bits = 0;
    for (const long number : numbers) {
        if (number < 0 || number > 255) return false;
        bits = bits << 8 | static_cast<uint32_t>(number);
    }
    const uint32_t hosts = ~bits;
    return (hosts & (hosts + 1)) == 0; // ones only at the end
}

bool referenceIsWpaKey(std::string_view text) {
    return (text.size() >= 8 && text.size() <= 63) || (text.size() == 64 && isUpperHex(text));
}

bool referenceIsWepKey(std::string_view text, size_t length) {
    return text.size() == length || (text.size() == 2 * length && isUpperHex(text));
}

// ---- wildcards ----

int32_t referenceWildcard(std::string_view text, std::string_view pattern, int32_t count) {
    if ((text.empty() && pattern.empty()) || count < 1 || at(pattern, 0) == '*') return 0;
    const bool equal = at(pattern, 0) == '?' ? !text.empty() : at(text, 0) == at(pattern, 0);
    if (!equal) return signedOf(at(text, 0)) - signedOf(at(pattern, 0));
    return referenceWildcard(text.substr(1), pattern.substr(1), count - 1);
}

// ---- forms ----

std::string encodeForm(std::string_view text) {
    std::string encoded;
    for (const char character : text) {
        const bool plain = (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
                           (character >= '0' && character <= '9') || character == '-' || character == '.' ||
                           character == '_';
        char escape[4];
        std::snprintf(escape, sizeof escape, "%%%02X", static_cast<unsigned>(static_cast<unsigned char>(character)));
        if (plain)
            encoded += character;
        else
            encoded += character == ' ' ? "+" : escape;
    }
    return encoded;
}

std::string decodeForm(std::string_view text) {
    const auto digit = [](char character) {
        if (character >= '0' && character <= '9') return character - '0';
        return static_cast<int>(static_cast<unsigned char>(lowerCase({&character, 1})[0])) - 87;
    };
    std::string decoded;
    for (size_t index = 0; index < text.size(); index++) {
        if (text[index] == '%' && index + 2 < text.size()) {
            decoded += static_cast<char>(digit(text[index + 1]) * 16 + digit(text[index + 2]));
            index += 2;
        } else {
            decoded += text[index] == '+' ? ' ' : text[index];
        }
    }
    return decoded;
}

// ---- checksums ----

uint32_t referenceCrc(std::string_view bytes) {
    uint32_t crc = 0xFFFFFFFF;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; bit++)
            crc = crc >> 1 ^ (0xEDB88320 & (0 - (crc & 1)));
    }
    return ~crc;
}

} // namespace pendra::fuzz
