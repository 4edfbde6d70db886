#include "host/forms.h"

#include <microhttpd.h>
#include <cstring>

#include <algorithm>

#include "pendra/common.h"

namespace pendra::host {

namespace {

std::string decode(std::string_view encoded) {
    std::string text(encoded);
    std::replace(text.begin(), text.end(), '+', ' ');
    text.resize(MHD_http_unescape(text.data()));
    return text;
}

bool isHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

constexpr std::string_view kBlanks = " \t";

std::string_view cutBlanks(std::string_view text) {
    const size_t start = text.find_first_not_of(kBlanks);
    if (start == std::string_view::npos) return {};
    return text.substr(start, text.find_last_not_of(kBlanks) - start + 1);
}

std::optional<FormPair> readPair(std::string_view part) {
    const size_t equals = part.find('=');
    if (equals == std::string_view::npos) return std::nullopt;
    const std::string_view name = cutBlanks(part.substr(0, equals));
    if (name.empty()) return std::nullopt;
    return FormPair{std::string(name), std::string(cutBlanks(part.substr(equals + 1)))};
}

} // namespace

std::string formField(std::string_view form, std::string_view name) {
    while (!form.empty()) {
        const std::string_view field = form.substr(0, form.find('&'));
        form.remove_prefix(std::min(form.size(), field.size() + 1));
        const size_t equals = field.find('=');
        if (equals == std::string_view::npos || field.substr(0, equals) != name) continue;
        return decode(field.substr(equals + 1));
    }
    return {};
}

std::optional<std::vector<FormPair>> splitForm(std::string_view text, char separator) {
    const std::string ends = {separator, '\r', '\n'};
    std::vector<FormPair> pairs;
    while (!text.empty()) {
        const std::string_view part = text.substr(0, text.find_first_of(ends));
        text.remove_prefix(std::min(text.size(), part.size() + 1));
        if (cutBlanks(part).empty()) continue;
        const auto pair = readPair(part);
        if (!pair) return std::nullopt;
        pairs.push_back(*pair);
    }
    return pairs;
}

std::string joinForm(const std::vector<FormPair>& pairs, char separator) {
    std::string form;
    for (const FormPair& pair : pairs) {
        if (!form.empty()) form += separator;
        form += pair.name + "=" + pair.value;
    }
    return form;
}

std::string decodeValue(const std::string& encoded) {
    const auto length = static_cast<int32_t>(encoded.size());
    std::string value(encoded.size() + 1, '\0');
    if (length > 0) strncpy_HtmlDecode_(value.data(), encoded.c_str(), length, length);
    value.resize(std::strlen(value.c_str())); // an escaped NUL ends the text
    return value;
}

std::string encodeValue(const std::string& value) {
    constexpr size_t kLongestEscape = 3;
    std::string encoded(value.size() * kLongestEscape + 1, '\0');
    strncpy_HtmlEncode(encoded.data(), value.c_str(), static_cast<int32_t>(encoded.size()));
    encoded.resize(std::strlen(encoded.c_str()));
    return encoded;
}

bool isMac(std::string_view text) {
    constexpr size_t kMacLength = 17;
    if (text.size() != kMacLength) return false;
    for (size_t i = 0; i < kMacLength; ++i) {
        const bool fits = i % 3 == 2 ? text[i] == ':' : isHexDigit(text[i]);
        if (!fits) return false;
    }
    return true;
}

bool isWirelessInterface(std::string_view text) {
    return text == "ra0" || text == "rai0";
}

} // namespace pendra::host
