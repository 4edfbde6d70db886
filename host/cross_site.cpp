#include "host/cross_site.h"

#include <arpa/inet.h>
#include <strings.h>

#include <algorithm>
#include <string>

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

// Endings of names that nobody can register: only the home's own name service answers for them.
constexpr std::string_view kHomeEndings[] = {".local", ".lan", ".home.arpa", ".internal"};

bool isHomeName(std::string_view name) {
    return name.find('.') == std::string_view::npos ||
           std::any_of(std::begin(kHomeEndings), std::end(kHomeEndings), [&](std::string_view ending) {
               return name.size() > ending.size() &&
                      equalsIgnoringCase(name.substr(name.size() - ending.size()), ending);
           });
}

} // namespace

bool isHomeHost(std::string_view host) {
    if (host.starts_with('[')) return true; // an IPv6 address
    const std::string name(host.substr(0, host.find(':')));
    in_addr address = {};
    return inet_pton(AF_INET, name.c_str(), &address) == 1 || isHomeName(name);
}

bool isFromOwnPage(std::string_view host, std::string_view origin, std::string_view referer) {
    const std::string_view sender = origin.empty() ? referer : origin;
    if (sender.empty()) return true;
    const std::string_view authority = authorityOf(sender);
    return !authority.empty() && equalsIgnoringCase(authority, host);
}

} // namespace pendra::host
