#include "host/report.h"

#include <cstdio>

#include "pendra/common.h"

namespace pendra::host {

void reportFault(const std::string& line) {
    std::fprintf(stderr, "pendrad: %s\n", line.c_str());
    logLine(4, line);
}

void logLine(int level, const std::string& line) {
    logPrintf(level, "pendrad: %s\n", line.c_str());
}

} // namespace pendra::host
