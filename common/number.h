// Reading decimal integers the way atoi() does, with numbers beyond an int held at its limits.
#pragma once

#include <climits>
#include <cstdint>
#include <cstdlib>

namespace pendra {

inline int32_t clampToInt(int64_t value) {
    return value > INT_MAX ? INT_MAX : value < INT_MIN ? INT_MIN : static_cast<int32_t>(value);
}

// Leading blanks and a sign are accepted, what follows the digits is ignored, and no digits give 0.
inline int32_t parseInt(const char* text) {
    return clampToInt(std::strtol(text, nullptr, 10));
}

} // namespace pendra
