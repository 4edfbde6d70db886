#include "platform/vendor/flash.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "pendra/fwupgrade.h"
#include "platform/file_access.h"
#include "platform/vendor/flash_layout.h"

namespace pendra::device {
namespace {

constexpr off_t imageHeaderSize = 64;
constexpr std::size_t messageSize = 256; // of the image check
constexpr mode_t ownerOnly = 0600;

bool failed(const std::string& what, std::string& error) {
    error = systemError(what);
    return false;
}

bool copyTo(int target, int source) {
    char block[65536];
    ssize_t size = 0;
    while ((size = ::read(source, block, sizeof block)) != 0) {
        if (size < 0 && errno == EINTR) continue;
        if (size < 0 || !writeAll(target, {block, static_cast<std::size_t>(size)})) return false;
    }
    return ::fsync(target) == 0;
}

bool writeCopy(const std::string& image, const std::string& copy, std::string& error) {
    const Descriptor source(::open(image.c_str(), O_RDONLY | O_CLOEXEC));
    if (!source.isOpen()) return failed("cannot read " + image, error);
    const Descriptor target(::open(copy.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, ownerOnly));
    if (!target.isOpen() || !copyTo(target.number(), source.number())) return failed("cannot write " + copy, error);
    return true;
}

bool syncDirectory(const std::string& directory) {
    const Descriptor opened(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return opened.isOpen() && ::fsync(opened.number()) == 0;
}

bool isWhole(const std::string& image, off_t size, std::string& error) {
    char message[messageSize] = "";
    if (check(image.c_str(), 0, static_cast<int32_t>(size), message) == 1) return true;
    error = message;
    error.erase(error.find_last_not_of('\n') + 1);
    return false;
}

} // namespace

bool isImageAcceptable(const std::string& image, std::string& error) {
    struct stat status {};
    if (::stat(image.c_str(), &status) != 0) return failed("cannot read " + image, error);
    const bool fits = S_ISREG(status.st_mode) && status.st_size >= imageHeaderSize &&
                      status.st_size <= static_cast<off_t>(firmwarePartition.size);
    if (fits) return isWhole(image, status.st_size, error);
    error = image + " is no image of 64 to " + std::to_string(firmwarePartition.size) + " bytes";
    return false;
}

bool writeFlash(const std::string& image, const std::string& flashFile, std::string& error) {
    const std::string directory = std::filesystem::path(flashFile).parent_path().string();
    std::error_code failure;
    std::filesystem::create_directories(directory, failure);

    const std::string copy = flashFile + ".new";
    // The copy counts: an image that somebody replaced after its check must not get into the flash.
    if (!writeCopy(image, copy, error) || !isImageAcceptable(copy, error)) {
        ::unlink(copy.c_str());
        return false;
    }
    if (::rename(copy.c_str(), flashFile.c_str()) != 0) return failed("cannot replace " + flashFile, error);
    return syncDirectory(directory) || failed("cannot write " + directory, error);
}

} // namespace pendra::device
