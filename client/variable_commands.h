/**
 * @file
 * The commands of zepctl that read, check and set variables.
 */
#ifndef PENDRA_CLIENT_VARIABLE_COMMANDS_H
#define PENDRA_CLIENT_VARIABLE_COMMANDS_H

#include <string>
#include <vector>

#include "client/device_client.h"
#include "client/failure.h"

namespace pendra::client {

struct VariableOptions {
    std::vector<std::string> names;       /**< of get and path */
    std::vector<std::string> assignments; /**< "NAME=VALUE", of set and validate */
    bool noWait = false;
    bool json = false;
};

/** Each returns the program's exit status or throws Failure. @{ */
ExitCode getVariables(DeviceClient& device, const VariableOptions& options);
ExitCode showPaths(DeviceClient& device, const VariableOptions& options);
ExitCode setVariables(DeviceClient& device, const VariableOptions& options);
ExitCode validateVariables(DeviceClient& device, const VariableOptions& options);
ExitCode listVariables(DeviceClient& device, const VariableOptions& options);
/** @} */

/** @return names and values; throws Failure (wrong usage) for a text without a name or "=". */
Assignments readAssignments(const std::vector<std::string>& texts);

} // namespace pendra::client

#endif
