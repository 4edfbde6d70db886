/**
 * @file
 * Requests that a page of somebody else makes the browser send.
 */
#ifndef PENDRA_HOST_CROSS_SITE_H
#define PENDRA_HOST_CROSS_SITE_H

#include <string_view>

namespace pendra::host {

/**
 * @param host    the header of that name; so the other two.
 * @return whether a request comes from the device's own page: the origin, or else the referer, names the device as the
 *         request itself does. Programs send neither and are taken at their word.
 */
bool isFromOwnPage(std::string_view host, std::string_view origin, std::string_view referer);

} // namespace pendra::host

#endif
