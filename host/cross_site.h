/**
 * @file
 * Requests that a page of somebody else makes the browser send.
 */
#ifndef PENDRA_HOST_CROSS_SITE_H
#define PENDRA_HOST_CROSS_SITE_H

#include <string_view>

namespace pendra::host {

/**
 * A page of somebody else may let its own name point to the device after it has been loaded; to the browser the device
 * is then the page's own server, and its answers are the page's to read.
 *
 * @param host the header of that name; programs may leave it out.
 * @return whether it is an address, or a name that only the home's own name service can give.
 */
bool isHomeHost(std::string_view host);

/**
 * @param host    the header of that name; so the other two.
 * @return whether a request comes from the device's own page: the origin, or else the referer, names the device as the
 *         request itself does. Programs send neither and are taken at their word.
 */
bool isFromOwnPage(std::string_view host, std::string_view origin, std::string_view referer);

} // namespace pendra::host

#endif
