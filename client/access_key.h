/**
 * @file
 * The access key that admits a client.
 */
#ifndef PENDRA_CLIENT_ACCESS_KEY_H
#define PENDRA_CLIENT_ACCESS_KEY_H

#include <cstdint>
#include <string>

namespace pendra::client {

/**
 * @param uptimeSeconds the device's uptime; a key is good for about a minute around it.
 * @param address       the client's address as the device sees it.
 * @return 32 lower-case hex digits.
 */
std::string accessKey(uint32_t uptimeSeconds, const std::string& address, const std::string& password);

} // namespace pendra::client

#endif
