#include "platform/file_access.h"

#include <fcntl.h>

#include <cerrno>
#include <cstring>

namespace pendra::device {
namespace {

constexpr mode_t ownerOnly = 0600;

} // namespace

std::string readFile(const std::string& path) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::string content;
    char block[4096];
    ssize_t size = 0;
    while (file.isOpen() && (size = ::read(file.number(), block, sizeof block)) > 0)
        content.append(block, static_cast<std::size_t>(size));
    return content;
}

bool writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

void appendToFile(const std::string& path, std::string_view text) {
    const Descriptor file(::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, ownerOnly));
    // Journal and console are there to be looked at; the device goes on without them.
    if (file.isOpen()) static_cast<void>(writeAll(file.number(), text));
}

std::string systemError(const std::string& what) {
    return what + ": " + std::strerror(errno);
}

} // namespace pendra::device
