#include "wire.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace pendra::load {

namespace {

constexpr int kPatienceMs = 30'000;

sockaddr_in endpoint(const std::string& address, uint16_t port) {
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_port = htons(port);
    ::inet_pton(AF_INET, address.c_str(), &place.sin_addr);
    return place;
}

const sockaddr* generic(const sockaddr_in& place) {
    return static_cast<const sockaddr*>(static_cast<const void*>(&place));
}

size_t bodyLength(const std::string& head) {
    const size_t field = head.find("\r\nContent-Length: ");
    return field == std::string::npos ? 0 : std::strtoul(head.c_str() + field + 18, nullptr, 10);
}

} // namespace

Wire::Wire(Wire&& other) noexcept
    : port_(other.port_),
      from_(std::move(other.from_)),
      socket_(std::exchange(other.socket_, -1)),
      received_(std::move(other.received_)) {}

void Wire::open() {
    close();
    socket_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in here = endpoint(from_, 0);
    const sockaddr_in there = endpoint("127.0.0.1", port_);
    if (::bind(socket_, generic(here), sizeof here) == 0 && ::connect(socket_, generic(there), sizeof there) == 0) {
        return;
    }
    throw std::runtime_error("cannot connect from " + from_ + ": " + std::strerror(errno));
}

void Wire::close() {
    if (socket_ >= 0) ::close(std::exchange(socket_, -1));
    received_.clear();
}

bool Wire::send(std::string_view text) {
    if (socket_ < 0) open();
    while (!text.empty()) {
        const ssize_t count = ::send(socket_, text.data(), text.size(), MSG_NOSIGNAL);
        if (count <= 0) return false;
        text.remove_prefix(static_cast<size_t>(count));
    }
    return true;
}

bool Wire::readMore() {
    pollfd source{socket_, POLLIN, 0};
    if (::poll(&source, 1, kPatienceMs) <= 0) throw std::runtime_error("no answer within 30 s");
    char block[16384];
    const ssize_t count = ::recv(socket_, block, sizeof block, 0);
    if (count <= 0) return false;
    received_.append(block, static_cast<size_t>(count));
    return true;
}

bool Wire::readUntil(size_t length) {
    while (received_.size() < length) {
        if (!readMore()) return false;
    }
    return true;
}

Reply Wire::receive(bool isHead) {
    size_t end = 0;
    while ((end = received_.find("\r\n\r\n")) == std::string::npos) {
        if (readMore()) continue;
        close();
        return {};
    }
    Reply reply;
    reply.head = received_.substr(0, end + 4);
    reply.status = std::atoi(reply.head.c_str() + std::strlen("HTTP/1.1 "));
    const size_t length = isHead ? 0 : bodyLength(reply.head);
    const bool isWhole = readUntil(reply.head.size() + length);
    reply.body = received_.substr(reply.head.size(), length);
    received_.erase(0, reply.head.size() + length);
    if (!isWhole || reply.head.find("\r\nConnection: close") != std::string::npos) close();
    return reply;
}

std::string httpRequest(std::string_view method, std::string_view path, std::string_view headers,
                        std::string_view body) {
    std::string text(method);
    text.append(" ").append(path).append(" HTTP/1.1\r\nHost: device\r\n").append(headers);
    if (!body.empty()) text += "Content-Length: " + std::to_string(body.size()) + "\r\n";
    return text.append("\r\n").append(body);
}

} // namespace pendra::load
