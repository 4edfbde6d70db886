/**
 * @file
 * Bringing the device up before the first request.
 */
#ifndef PENDRA_HOST_STARTUP_H
#define PENDRA_HOST_STARTUP_H

#include <string>

#include "host/options.h"

namespace pendra::host {

/**
 * Opens the device, stores the directories of the command line in its tree and sets up the library's log.
 *
 * @param error receives one line for a person when the device cannot be brought up.
 */
[[nodiscard]] bool startDevice(const Options& options, std::string& error);

} // namespace pendra::host

#endif
