#include "host/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pendra::host {

namespace {

constexpr size_t kMaxFile = size_t{64} << 10;

bool isRegular(int file) {
    struct stat status = {};
    return fstat(file, &status) == 0 && S_ISREG(status.st_mode);
}

bool readAll(int file, std::string& content) {
    char buffer[4096];
    ssize_t count = 0;
    while (content.size() < kMaxFile && (count = read(file, buffer, sizeof buffer)) > 0) {
        content.append(buffer, static_cast<size_t>(count));
    }
    return count >= 0;
}

} // namespace

std::optional<std::string> readFile(const std::string& path) {
    // Without O_NONBLOCK, a pipe put in the file's place would stop the host.
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) return std::nullopt;
    std::string content;
    const bool done = isRegular(file) && readAll(file, content);
    close(file);
    if (!done) return std::nullopt;
    return content;
}

} // namespace pendra::host
