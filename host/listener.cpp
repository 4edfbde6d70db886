#include "host/listener.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>

namespace pendra::host {

namespace {

// Those who come in a rush, or while a script runs, wait in the kernel. When it has no more room, they try again a
// second later, and so does everybody else.
constexpr int kBacklog = 1024;

using AddressList = std::unique_ptr<addrinfo, decltype(&freeaddrinfo)>;

AddressList resolveNumeric(const std::string& address, uint16_t port) {
    addrinfo hints = {};
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV | AI_PASSIVE;
    addrinfo* found = nullptr;
    if (getaddrinfo(address.c_str(), std::to_string(port).c_str(), &hints, &found) != 0) found = nullptr;
    return {found, freeaddrinfo};
}

bool bindAndListen(int listener, const addrinfo& target) {
    const int on = 1;
    if (setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) != 0) return false;
    return bind(listener, target.ai_addr, target.ai_addrlen) == 0 && listen(listener, kBacklog) == 0;
}

const sockaddr* plainSockaddr(const sockaddr_storage& storage) {
    return static_cast<const sockaddr*>(static_cast<const void*>(&storage));
}

uint16_t portOf(const sockaddr_storage& storage) {
    const void* raw = &storage;
    if (storage.ss_family == AF_INET6) return ntohs(static_cast<const sockaddr_in6*>(raw)->sin6_port);
    return ntohs(static_cast<const sockaddr_in*>(raw)->sin_port);
}

} // namespace

int openListener(const std::string& address, uint16_t port, std::string& error) {
    const AddressList target = resolveNumeric(address, port);
    if (target == nullptr) {
        error = "\"" + address + "\" is not a numeric address to listen on";
        return -1;
    }
    const int listener = socket(target->ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (listener >= 0 && bindAndListen(listener, *target)) return listener;
    error = "cannot listen on " + address + " port " + std::to_string(port) + ": " + std::strerror(errno);
    if (listener >= 0) close(listener);
    return -1;
}

bool allowDescriptors(size_t needed, std::string& error) {
    rlimit limit = {};
    getrlimit(RLIMIT_NOFILE, &limit);
    if (limit.rlim_cur >= needed) return true;
    const rlim_t allowed = limit.rlim_max;
    limit.rlim_cur = needed;
    if (needed <= allowed && setrlimit(RLIMIT_NOFILE, &limit) == 0) return true;
    error = "so many connections need " + std::to_string(needed) + " open files, and " + std::to_string(allowed) +
            " are allowed";
    return false;
}

std::string listenerUrl(int listener) {
    sockaddr_storage bound = {};
    socklen_t length = sizeof bound;
    getsockname(listener, static_cast<sockaddr*>(static_cast<void*>(&bound)), &length);
    const std::string address = addressText(plainSockaddr(bound));
    const std::string host = bound.ss_family == AF_INET6 ? "[" + address + "]" : address;
    return "http://" + host + ":" + std::to_string(portOf(bound));
}

std::string addressText(const sockaddr* address) {
    const void* raw = address;
    char text[INET6_ADDRSTRLEN] = "";
    if (address->sa_family == AF_INET) {
        inet_ntop(AF_INET, &static_cast<const sockaddr_in*>(raw)->sin_addr, text, sizeof text);
    } else if (address->sa_family == AF_INET6) {
        const in6_addr& address6 = static_cast<const sockaddr_in6*>(raw)->sin6_addr;
        if (IN6_IS_ADDR_V4MAPPED(&address6)) {
            inet_ntop(AF_INET, &address6.s6_addr[12], text, sizeof text);
        } else {
            inet_ntop(AF_INET6, &address6, text, sizeof text);
        }
    }
    return text;
}

} // namespace pendra::host
