// The log lines that recur all over the library: the entry trace of a function, a traced line and a notable event. Out
// of line, so that a call site costs no more than a call; the threshold is tested before anything is formatted.
#pragma once

#include <cstdarg>

#include "pendra/common.h"

namespace pendra {

enum LogLevel : int32_t { kLogError = 4, kLogEvent = 5, kLogInfo = 6, kLogTrace = 7 };

inline bool logs(LogLevel level) {
    return daemon_log_level >= level;
}

// logPrintf() with its arguments in a list.
void logArguments(int32_t level, const char* format, va_list arguments);

// "<uptime>:<function>]" and the end of the line: the whole entry line of a function.
void traceEntry(const char* function);

// "<uptime>:<function>]" and the rest of the line, in two messages.
[[gnu::format(printf, 2, 3)]] void traceLine(const char* function, const char* format, ...);

// "<uptime>:" and the rest of the line at a level, in two messages.
[[gnu::format(printf, 2, 3)]] void eventLine(LogLevel level, const char* format, ...);

} // namespace pendra
