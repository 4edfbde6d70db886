/**
 * @file
 * How far an upgrade is, as the device tells it.
 */
#ifndef PENDRA_CLIENT_FIRMWARE_STATUS_H
#define PENDRA_CLIENT_FIRMWARE_STATUS_H

#include <cstdint>
#include <optional>
#include <string>

namespace pendra::client {

/** Results of the device's status document. */
enum FirmwareResult : int {
    kFwInitial = 0,
    kFwNoneFound = 1,
    kFwFound = 2,
    kFwDownloading = 3,
    kFwDownloaded = 4,
    kFwStarted = 5,
    kFwListMalformed = -1,
    kFwUpgradeFailed = -2,
    kFwListNotFetched = -5,
};

/** The status document "zepcheckfw.xml". */
struct FirmwareStatus {
    int result = kFwInitial;
    int waitSeconds = 0; /**< until the device is back, once the upgrade has started */
};

/** @return nothing when the text is no status document. */
std::optional<FirmwareStatus> parseFirmwareStatus(const std::string& xml);

/** What the status document does not tell. */
struct FirmwareState {
    std::string image;            /**< file name of the firmware that was found; empty: none */
    int64_t listBytes = 0;        /**< of the list document as it was fetched */
    int64_t bytes = 0;            /**< of the image so far */
    std::optional<int64_t> total; /**< bytes of the image, when the server has told */
    std::string upgrade;          /**< "none", "announced", "written" or "refused" */
    std::string reason;           /**< of a refusal */
};

} // namespace pendra::client

#endif
