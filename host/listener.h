/**
 * @file
 * The listening socket and the addresses around it.
 */
#ifndef PENDRA_HOST_LISTENER_H
#define PENDRA_HOST_LISTENER_H

#include <sys/socket.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace pendra::host {

/**
 * Opens a non-blocking listening socket.
 *
 * @param address numeric IPv4 or IPv6 address.
 * @param port    0 takes any free one.
 * @return the descriptor, or -1 with one line for a person in @p error.
 */
[[nodiscard]] int openListener(const std::string& address, uint16_t port, std::string& error);

/** Raises the limit of open files when it is lower. @return whether it could; if not, @p error says so in one line. */
[[nodiscard]] bool allowDescriptors(size_t needed, std::string& error);

/** The "http://address:port" of a listening socket. */
std::string listenerUrl(int listener);

/** A peer's address as text. An IPv4 peer of an IPv6 socket keeps its IPv4 form, the one its key is made for. */
std::string addressText(const sockaddr* address);

} // namespace pendra::host

#endif
