#include "host/forms.h"

#include <microhttpd.h>

#include <algorithm>

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
