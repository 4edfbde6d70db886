/**
 * @file
 * What a host does with the reference device before, around and after the library's calls.
 *
 * The device answers the library itself through the functions of pendra/platform.h; this header holds what only the
 * host needs: opening the device and putting one write transaction around a request.
 */
#ifndef PENDRA_PLATFORM_DEVICE_H
#define PENDRA_PLATFORM_DEVICE_H

#include <cstddef>
#include <string>

namespace pendra::device {

struct DeviceOptions {
    std::string treeFile;        /**< the configuration tree; created when absent, its directory must exist */
    std::string deviceDirectory; /**< what the simulated hardware remembers; created when absent */
};

/**
 * Opens the device for this process, which holds it until closeDevice() or its end.
 *
 * @param error receives one line for a person when the device cannot be opened, for example that another process
 *              uses the tree.
 */
[[nodiscard]] bool openDevice(const DeviceOptions& options, std::string& error);

/** Closes the device. A request that is still open is abandoned. Harmless when nothing is open. */
void closeDevice();

/**
 * Starts the write transaction of a request: until its end every read and write of the tree in this process is part
 * of it. Outside a request each write is a transaction of its own and each read sees the newest committed tree.
 *
 * The transaction keeps every other writer of the tree waiting, so end it before a device script runs.
 */
[[nodiscard]] bool beginRequest(std::string& error);

/**
 * Makes everything that was written since beginRequest() durable, all of it or nothing. After a write that could not
 * be stored (not one that a guard refused) nothing is, and the reason is told.
 *
 * The transaction is over either way.
 */
[[nodiscard]] bool commitRequest(std::string& error);

/**
 * Number of the newest committed change of the tree, by whichever process. While it stays the same, every read gives
 * the same. 0, which says nothing, while a request is open.
 */
[[nodiscard]] std::size_t treeVersion();

/** Drops everything written since beginRequest(). Harmless when no request is open. */
void abandonRequest();

} // namespace pendra::device

#endif
