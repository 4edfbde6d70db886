// What setup runs remember from one to the next besides the record. One instance; tests set it back to its load-time
// value.
#pragma once

#include <cstdint>

namespace pendra {

struct RunState {
    bool firstRun = true;                    // no root element has been parsed since loading
    bool startNewFile = true;                // the next temporary XML element starts its file
    int32_t rememberedChannel[2] = {-1, -1}; // per radio; -1 is unknown
};

extern RunState runState;

} // namespace pendra
