/**
 * @file
 * The commands of zepctl. Results go to standard output, everything else to standard error.
 */
#ifndef PENDRA_CLIENT_COMMANDS_H
#define PENDRA_CLIENT_COMMANDS_H

#include <string>

#include "client/device_client.h"
#include "client/failure.h"

namespace pendra::client {

struct SetupOptions {
    std::string file;
    bool cloning = false;
    bool noWait = false;
};

struct StationOptions {
    std::string disconnect; /**< MAC of the station to disconnect; empty: list them */
    bool json = false;
};

/** Each returns the program's exit status or throws Failure. @{ */
ExitCode showHello(DeviceClient& device);
ExitCode showLogin(DeviceClient& device);
ExitCode runSetup(DeviceClient& device, const SetupOptions& options);
ExitCode showResult(DeviceClient& device);
ExitCode runStations(DeviceClient& device, const StationOptions& options);
/** @} */

} // namespace pendra::client

#endif
