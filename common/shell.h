// The one place that starts shell commands. Commands block the caller; their status is the shell's.
#pragma once

#include <cstdlib>

namespace pendra {

inline int runShell(const char* command) {
    return std::system(command);
}

} // namespace pendra
