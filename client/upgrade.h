/**
 * @file
 * The command that upgrades a device's firmware.
 */
#ifndef PENDRA_CLIENT_UPGRADE_H
#define PENDRA_CLIENT_UPGRADE_H

#include "client/device_client.h"
#include "client/failure.h"

namespace pendra::client {

struct UpgradeOptions {
    bool checkOnly = false;
    bool yes = false; /**< install without asking */
    bool json = false;
    bool noWait = false;
};

/** Searches for newer firmware and installs it. Returns the program's exit status or throws Failure. */
ExitCode runUpgrade(DeviceClient& device, const UpgradeOptions& options);

} // namespace pendra::client

#endif
