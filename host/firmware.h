/**
 * @file
 * The firmware upgrade: its actions, its status, the release notes.
 */
#ifndef PENDRA_HOST_FIRMWARE_H
#define PENDRA_HOST_FIRMWARE_H

#include "host/request.h"

namespace pendra::host {

/** POST /zep/fw?act=...: one upgrade action; answers with the status document. */
Answer postFirmware(Request& request);

/** GET /zep/checkfw: the status document of the last action. */
Answer getFirmwareStatus(Request& request);

/** GET /zep/fwnotes: the release notes of the firmware that was found. */
Answer getReleaseNotes(Request& request);

/** GET /zep/fwstate: what the status document does not tell, for a progress bar and the outcome of the hand-over. */
Answer getFirmwareState(Request& request);

} // namespace pendra::host

#endif
