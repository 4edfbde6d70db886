// A text buffer of an exact capacity whose surroundings betray a write beyond it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace pendra::test {

class GuardedBuffer {
  public:
    static constexpr char kGuard = '\x01';

    // Nothing but guard bytes, so that a text that is not terminated shows.
    explicit GuardedBuffer(size_t capacity) : capacity_(capacity), bytes_(capacity + kGuardSize, kGuard) {}

    // Holds a text and its NUL.
    GuardedBuffer(size_t capacity, const std::string& text) : GuardedBuffer(capacity) {
        std::copy(text.begin(), text.end(), bytes_.begin());
        bytes_[text.size()] = '\0';
    }

    char* data() { return bytes_.data(); }

    // Up to the NUL, or the whole capacity where there is none.
    std::string text() const { return {bytes_.begin(), std::find(bytes_.begin(), bytes_.begin() + capacity(), '\0')}; }

    bool intact() const { return untouchedFrom(capacity_); }

    bool untouchedFrom(size_t offset) const {
        return std::all_of(bytes_.begin() + static_cast<std::ptrdiff_t>(offset), bytes_.end(),
                           [](char byte) { return byte == kGuard; });
    }

  private:
    static constexpr size_t kGuardSize = 64;

    std::ptrdiff_t capacity() const { return static_cast<std::ptrdiff_t>(capacity_); }

    size_t capacity_;
    std::vector<char> bytes_;
};

} // namespace pendra::test
