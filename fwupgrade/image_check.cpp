#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csetjmp>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "pendra/fwupgrade.h"

namespace {

constexpr int32_t kHeaderSize = 64;
constexpr uint32_t kMagic = 0x27051956;
constexpr size_t kMessageSize = 256;

// Where the header holds what is checked of it, in bytes.
constexpr size_t kMagicOffset = 0;
constexpr size_t kHeaderCrcOffset = 4;
constexpr size_t kDataCrcOffset = 24;

// Numbers of the header are big-endian.
uint32_t numberAt(const unsigned char* header, size_t offset) {
    uint32_t number = 0;
    for (size_t byte = 0; byte < sizeof number; byte++)
        number = number << 8 | header[offset + byte];
    return number;
}

class Message {
  public:
    explicit Message(char* text) : text_(text) {}
    [[gnu::format(printf, 2, 3)]] uint32_t refuse(const char* format, ...) const {
        if (text_ == nullptr) return 0;
        va_list arguments;
        va_start(arguments, format);
        std::vsnprintf(text_, kMessageSize, format, arguments);
        va_end(arguments);
        return 0;
    }

  private:
    char* text_;
};

class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0) close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    [[nodiscard]] int number() const { return number_; }

  private:
    int number_;
};

class Mapping {
  public:
    Mapping(int descriptor, size_t size)
        : size_(size), start_(mmap(nullptr, size, PROT_READ, MAP_SHARED, descriptor, 0)) {}
    ~Mapping() {
        if (isValid()) munmap(start_, size_);
    }
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;
    [[nodiscard]] bool isValid() const { return start_ != MAP_FAILED; }
    [[nodiscard]] const unsigned char* at(int32_t offset) const {
        return static_cast<const unsigned char*>(start_) + offset;
    }

  private:
    size_t size_;
    void* start_;
};

// A file that shrinks while it is read takes the pages away from under the mapping. The signal then ends the reading
// and not the process.
sigjmp_buf fileShrank;

void leaveReading(int) {
    siglongjmp(fileShrank, 1);
}

class ShrinkGuard {
  public:
    ShrinkGuard() {
        struct sigaction action = {};
        action.sa_handler = leaveReading;
        isSet_ = sigaction(SIGBUS, &action, &previous_) == 0;
    }
    ~ShrinkGuard() {
        if (isSet_) sigaction(SIGBUS, &previous_, nullptr);
    }
    ShrinkGuard(const ShrinkGuard&) = delete;
    ShrinkGuard& operator=(const ShrinkGuard&) = delete;

  private:
    struct sigaction previous_ = {};
    bool isSet_ = false;
};

// The header's own CRC is computed with its field taken as 0.
bool headerCrcFits(const unsigned char (&header)[kHeaderSize]) {
    unsigned char copy[kHeaderSize];
    std::memcpy(copy, header, sizeof copy);
    std::memset(copy + kHeaderCrcOffset, 0, sizeof(uint32_t));
    return crc32(0, copy, sizeof copy) == numberAt(header, kHeaderCrcOffset);
}

uint32_t checkImage(const unsigned char* image, int32_t length, const char* path, const Message& message) {
    const ShrinkGuard guard;
    if (sigsetjmp(fileShrank, 1) != 0) return message.refuse("*** Warning: \"%s\" has corrupted data!\n", path);
    unsigned char header[kHeaderSize];
    std::memcpy(header, image, sizeof header);
    if (numberAt(header, kMagicOffset) != kMagic)
        return message.refuse("Bad Magic Number: \"%s\" is no valid image\n", path);
    if (!headerCrcFits(header)) return message.refuse("*** Warning: \"%s\" has bad header checksum!\n", path);
    const uint32_t dataCrc = crc32(0, image + kHeaderSize, static_cast<uint32_t>(length - kHeaderSize));
    if (dataCrc != numberAt(header, kDataCrcOffset))
        return message.refuse("*** Warning: \"%s\" has corrupted data!\n", path);
    return 1;
}

bool fitsFile(int32_t offset, int32_t length, int64_t size) {
    return offset >= 0 && int64_t{offset} + length <= size;
}

} // namespace

extern "C" uint32_t check(const char* path, int32_t offset, int32_t length, char* message) {
    const Message answer(message);
    if (path == nullptr) path = "";
    if (length < kHeaderSize) return answer.refuse("Bad size: \"%s\" is no valid image\n", path);
    const Descriptor file(open(path, O_RDONLY));
    // Descriptor 0 alone counts as a failed open; a real failure shows at the next step, under the text clients know.
    if (file.number() == 0) return answer.refuse("Can't open %s: %s\n", path, std::strerror(errno));
    struct stat status = {};
    if (fstat(file.number(), &status) != 0) return answer.refuse("Can't stat %s: %s\n", path, std::strerror(errno));
    if (!fitsFile(offset, length, status.st_size)) return answer.refuse("Bad size: \"%s\" is no valid image\n", path);
    const Mapping mapping(file.number(), static_cast<size_t>(status.st_size));
    if (!mapping.isValid()) return answer.refuse("Can't mmap %s: %s\n", path, std::strerror(errno));
    return checkImage(mapping.at(offset), length, path, answer);
}
