/**
 * @file
 * Applying and acting: compare-then-write into the configuration tree, the external calls (resync scripts, firmware
 * hand-over) and the roaming station services.
 *
 * Thread rule: no locks; one thread, one call at a time. Calls block while the shell commands they start run.
 */
#ifndef PENDRA_APPLY_H
#define PENDRA_APPLY_H

#include <sys/time.h>

#include "pendra/common.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup sync External calls
 *
 * Sync ids are bits and may be combined in one exe_ExternalCall():
 *
 * | id  | name           | wait s | action |
 * |-----|----------------|--------|--------|
 * | 1   | WanResync      | 20     | "uplink.sh", then "wan_resync.sh" |
 * | 4   | WlanResync     | 20     | "wlan_resync.sh" |
 * | 8   | Wlan5gResync   | 20     | "wlan5g_resync.sh" |
 * | 16  | DeviceResync   | 5      | "device_resync.sh" |
 * | 32  | CfgSaveToFlash | 6      | logged only |
 * | 64  | WlanSiteSurvey | 3      | logged only |
 * | 128 | FwUpgrade      | 180    | hands the downloaded image to the platform |
 * | 256 | UpdateStaRssi  | 1      | do_updatestarssi() |
 * | 512 | DeauthSta      | 1      | do_deauthsta() |
 *
 * The scripts lie in the directory of node "/bramble/scriptdirecory".
 * @{
 */

/** The one-shot timer of the firmware hand-over: first expiry 3 s, no repetition. */
extern PENDRA_API struct itimerval fwupdtimer;

/**
 * Runs the actions of a set of sync ids, in the order of the table.
 *
 * With 128, ids 256 and 512 are not looked at: the image "<tempdirecory>/<fwupgradefn>" is announced with tcapi_set()
 * and ::fwupdtimer armed with alarm_handler_fwupd() as SIGALRM handler. An image that is missing or refused is removed.
 *
 * @return 0, or -1 when the firmware hand-over failed. Exit statuses of scripts are not looked at.
 */
PENDRA_API int32_t exe_ExternalCall(uint32_t syncIds);

/** @return the seconds a client waits for exactly one sync id; 0 (and a level-4 line) for any other value. */
PENDRA_API int32_t get_ExternalCall_UseSec(uint32_t syncId);

/** SIGALRM handler: has the platform write the announced image and logs the outcome at level 6. */
PENDRA_API void alarm_handler_fwupd(int signalNumber);
/** @} */

/**
 * @defgroup roaming Roaming station services
 * @{
 */

/** Disconnects the station named under "/runtime/easyroaming/deauthsta" and deletes that node; without both of its
 *  texts nothing happens. */
PENDRA_API void do_deauthsta(void);

/** Publishes the stations of interfaces "ra0" and "rai0" under "/runtime/easyroaming/connstainfo/sta:N" (mac, ifname,
 *  rssi), at most 32 of each. A socket or driver failure is logged at level 5 and ends the update. */
PENDRA_API void do_updatestarssi(void);
/** @} */

/**
 * @defgroup compare Compare-then-write
 *
 * Each returns 1 when the stored value differs, else 0, and writes the new one unless @p compareOnly is non-zero.
 * @{
 */

/** Compares texts exactly; of the stored one the first 127 bytes count. */
PENDRA_API int32_t StrCmpWithXStr(const char* value, const char* path, int32_t compareOnly);

/** Compares numbers; an absent node counts as 0. */
PENDRA_API int32_t IntCmpWithXStr(int32_t value, const char* path, int32_t compareOnly);

/**
 * Compares numbers under a maximum; an absent node is negative.
 *
 * @param overflow set to 1 when the value differs and is above @p maximum (then nothing is written and 0 returned),
 *                 else to 0; may be null.
 */
PENDRA_API int32_t IntMaxCmpWithXStr(int32_t value, const char* path, int32_t compareOnly, int32_t maximum,
                                     int32_t* overflow);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
