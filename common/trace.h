// The log lines that recur all over the library: the entry trace of a function and the prefix of a notable event. The
// threshold is tested before anything is formatted.
#pragma once

#include "pendra/common.h"

namespace pendra {

enum LogLevel : int32_t { kLogError = 4, kLogEvent = 5, kLogInfo = 6, kLogTrace = 7 };

inline bool logs(LogLevel level) {
    return daemon_log_level >= level;
}

inline long uptimeForLog() {
    return static_cast<long>(sys_uptime_seconds());
}

// "<uptime>:<function>]", to be followed by the rest of the line.
inline void tracePrefix(const char* function) {
    if (logs(kLogTrace)) logPrintf(kLogTrace, "%ld:%s]", uptimeForLog(), function);
}

// The whole entry line of a function.
inline void traceEntry(const char* function) {
    if (!logs(kLogTrace)) return;
    tracePrefix(function);
    logPrintf(kLogTrace, "\n");
}

// "<uptime>:" at a level, to be followed by the rest of the line.
inline void eventPrefix(LogLevel level) {
    if (logs(level)) logPrintf(level, "%ld:", uptimeForLog());
}

} // namespace pendra

// A log line whose arguments are not even evaluated below the threshold.
#define PENDRA_LOG(level, ...)                                    \
    do {                                                          \
        if (::pendra::logs(level)) logPrintf(level, __VA_ARGS__); \
    } while (false)
