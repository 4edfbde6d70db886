/**
 * @file
 * What the host itself has to say.
 */
#ifndef PENDRA_HOST_REPORT_H
#define PENDRA_HOST_REPORT_H

#include <string>

namespace pendra::host {

/** One line on standard error and, as an error, in the device's log. */
void reportFault(const std::string& line);

/** One line of a given level in the device's log. */
void logLine(int level, const std::string& line);

} // namespace pendra::host

#endif
