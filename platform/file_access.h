/**
 * @file
 * Small helpers on files.
 */
#ifndef PENDRA_PLATFORM_FILE_ACCESS_H
#define PENDRA_PLATFORM_FILE_ACCESS_H

#include <unistd.h>

#include <string>
#include <string_view>
#include <utility>

namespace pendra::device {

/** Owns a file descriptor. */
class Descriptor {
  public:
    explicit Descriptor(int number = -1) : number_(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() {
        if (number_ >= 0) ::close(number_);
    }

    [[nodiscard]] bool isOpen() const { return number_ >= 0; }
    [[nodiscard]] int number() const { return number_; }

  private:
    int number_;
};

/** The file's whole content; empty when it cannot be read. */
[[nodiscard]] std::string readFile(const std::string& path);

/** Writes all of it, or fails with errno. */
[[nodiscard]] bool writeAll(int descriptor, std::string_view bytes);

/** Adds to the end of a file, which is created when absent, in one write. */
void appendToFile(const std::string& path, std::string_view text);

/** "what: the system's reason", from errno. */
[[nodiscard]] std::string systemError(const std::string& what);

} // namespace pendra::device

#endif
