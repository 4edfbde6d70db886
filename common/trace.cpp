#include "common/trace.h"

namespace pendra {
namespace {

long uptimeForLog() {
    return static_cast<long>(sys_uptime_seconds());
}

void tracePrefix(const char* function) {
    logPrintf(kLogTrace, "%ld:%s]", uptimeForLog(), function);
}

} // namespace

void traceEntry(const char* function) {
    traceLine(function, "\n");
}

void traceLine(const char* function, const char* format, ...) {
    if (!logs(kLogTrace)) return;
    tracePrefix(function);
    va_list arguments;
    va_start(arguments, format);
    logArguments(kLogTrace, format, arguments);
    va_end(arguments);
}

void eventLine(LogLevel level, const char* format, ...) {
    if (!logs(level)) return;
    logPrintf(level, "%ld:", uptimeForLog());
    va_list arguments;
    va_start(arguments, format);
    logArguments(level, format, arguments);
    va_end(arguments);
}

} // namespace pendra
