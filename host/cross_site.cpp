#include "host/cross_site.h"

#include <strings.h>

namespace pendra::host {

namespace {

bool equalsIgnoringCase(std::string_view one, std::string_view other) {
    return one.size() == other.size() && strncasecmp(one.data(), other.data(), one.size()) == 0;
}

// "http://host:port/path" gives "host:port"; the "null" of a page without an origin gives nothing.
std::string_view authorityOf(std::string_view address) {
    const size_t scheme = address.find("://");
    if (scheme == std::string_view::npos) return {};
    address.remove_prefix(scheme + 3);
    return address.substr(0, address.find_first_of("/?#"));
}

} // namespace

bool isFromOwnPage(std::string_view host, std::string_view origin, std::string_view referer) {
    const std::string_view sender = origin.empty() ? referer : origin;
    if (sender.empty()) return true;
    const std::string_view authority = authorityOf(sender);
    return !authority.empty() && equalsIgnoringCase(authority, host);
}

} // namespace pendra::host
