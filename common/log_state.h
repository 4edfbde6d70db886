// What the logger remembers between messages. One instance; tests set it back to its load-time value.
#pragma once

#include <cstdint>

namespace pendra {

struct LogState {
    char fileName[128] = ""; // fixed by the first message that passes the threshold
    int16_t atLineStart = 1; // whether the last message ended its line
};

extern LogState logState;

} // namespace pendra
