// A variable name taken apart.
#pragma once

#include <cstring>

namespace pendra {

// The parts of a name: each runs from behind an underscore to the end of the whole name, so that parts overlap. Part 1
// starts behind "zep_"; underscores beyond the ninth stay inside the last part.
class VariableName {
  public:
    explicit VariableName(const char* behindPrefix) {
        constexpr int kPartsMax = 10;
        for (const char* start = behindPrefix; start != nullptr && count_ < kPartsMax;) {
            parts_[count_++] = start;
            const char* underscore = std::strchr(start, '_');
            start = underscore == nullptr ? nullptr : underscore + 1;
        }
    }
    [[nodiscard]] int count() const { return count_; }
    [[nodiscard]] const char* part(int number) const { return parts_[number - 1]; }
    // Sections are recognised by the first three characters of a part.
    bool begins(int number, const char* prefix) const {
        return number <= count_ && std::strncmp(part(number), prefix, 3) == 0;
    }

  private:
    const char* parts_[10] = {};
    int count_ = 0;
};

} // namespace pendra
