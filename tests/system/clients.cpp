#include "clients.h"

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <sstream>
#include <stdexcept>

namespace pendra::test {

namespace {

// curl tells these on standard error, one a line, behind what else it may have to say there.
constexpr const char* kReport = "%{stderr}\n%{http_code}\n%{content_type}\n%header{allow}\n%header{www-authenticate}\n";

HttpReply readReply(const Ended& ended) {
    std::vector<std::string> lines;
    std::istringstream text(ended.errors);
    for (std::string line; std::getline(text, line);) {
        lines.push_back(line);
    }
    constexpr size_t kFields = 4;
    if (lines.size() < kFields) throw std::runtime_error("curl: " + ended.errors);
    const std::string* fields = lines.data() + lines.size() - kFields;
    return {std::stoi(fields[0]), fields[1], fields[2], fields[3], ended.output};
}

} // namespace

HttpReply curl(std::vector<std::string> arguments, const std::string& input) {
    arguments.insert(arguments.begin(), {"curl", "-q", "-sS", "--noproxy", "*", "--max-time", "60", "-w", kReport});
    return readReply(run({.command = std::move(arguments), .input = input}, std::chrono::seconds(70)));
}

std::string md5(const std::string& text) {
    return run({.command = {"md5sum"}, .input = text}).output.substr(0, 32);
}

std::string accessKey(long slot, const std::string& address, const std::string& password) {
    return md5(std::to_string(slot) + address + "admin" + password);
}

Connection::Connection(uint16_t port) : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const void* raw = &address;
    if (::connect(socket_, static_cast<const sockaddr*>(raw), sizeof address) != 0) {
        throw std::runtime_error(std::string("cannot connect: ") + std::strerror(errno));
    }
}

Connection::~Connection() {
    ::close(socket_);
}

void Connection::send(std::string_view text) const {
    while (!text.empty()) {
        const ssize_t count = ::send(socket_, text.data(), text.size(), MSG_NOSIGNAL);
        if (count <= 0) throw std::runtime_error(std::string("cannot send: ") + std::strerror(errno));
        text.remove_prefix(static_cast<size_t>(count));
    }
}

bool Connection::readMore(std::chrono::milliseconds limit) {
    pollfd source{socket_, POLLIN, 0};
    if (::poll(&source, 1, static_cast<int>(limit.count())) <= 0) return false;
    std::array<char, 16384> block{};
    const ssize_t count = ::recv(socket_, block.data(), block.size(), 0);
    if (count <= 0) return false;
    received_.append(block.data(), static_cast<size_t>(count));
    return true;
}

std::string Connection::readUntil(std::string_view text, std::chrono::milliseconds limit) {
    while (received_.find(text) == std::string::npos && readMore(limit)) {
    }
    return received_;
}

std::string Connection::readAll() {
    while (readMore(std::chrono::seconds(20))) {
    }
    return received_;
}

std::string httpPost(const std::string& path, const std::string& body) {
    return "POST " + path + " HTTP/1.1\r\nHost: device\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" +
           body;
}

} // namespace pendra::test
