/**
 * @file
 * Applying and acting: compare-then-write into the configuration tree, the external calls (resync scripts, firmware
 * hand-over) and the roaming station services.
 *
 * Thread rule of everything in this file: no locks; one thread, one call at a time. Calls block while the shell
 * commands they start run.
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
 * The scripts lie in the directory of node "/bramble/scriptdirecory". Each is run by system(3), without arguments, in a
 * command of at most 255 bytes. Every action is logged at level 6.
 *
 * Thread rule: one thread, one call at a time, outside any transaction on the tree: scripts and platform read it. The
 * process has one SIGALRM: the hand-over and the delayed commit of "zep_Act_CommitZepVars" replace each other's
 * handler.
 * @{
 */

/** The one-shot timer of the firmware hand-over: first expiry 3 s, no repetition. */
extern PENDRA_API struct itimerval fwupdtimer;

/**
 * Runs the actions of a set of sync ids, in the order of the table.
 *
 * With 128, ids 256 and 512 are not looked at: the image "<tempdirecory>/<fwupgradefn>" (nodes
 * "/bramble/tempdirecory" and "/fwupgradeinfo/fwupgradefn") is announced with tcapi_set(), ::fwupdtimer armed with
 * setitimer(2) and alarm_handler_fwupd() installed for SIGALRM. An image that is missing or refused is removed by the
 * shell command "rm"; that one is missing also goes to standard error.
 *
 * @param syncIds the bits of the table; others do nothing.
 * @return 0, or -1 when the firmware hand-over failed. Exit statuses of scripts are not looked at.
 */
PENDRA_API int32_t exe_ExternalCall(uint32_t syncIds);

/**
 * Tells how long an action takes.
 *
 * @param syncId exactly one sync id.
 * @return the seconds a client waits for it; 0 (and a level-4 line) for any other value.
 */
PENDRA_API int32_t get_ExternalCall_UseSec(uint32_t syncId);

/**
 * SIGALRM handler: has the platform write the announced image, with tcapi_commit(), and logs the outcome at level 6.
 * Not async-signal-safe: SIGALRM must come only while no call of the library, the tree or the allocator is under way.
 *
 * @param signalNumber not looked at.
 */
PENDRA_API void alarm_handler_fwupd(int signalNumber);
/** @} */

/**
 * @defgroup roaming Roaming station services
 *
 * What exe_ExternalCall() runs for the ids 256 and 512.
 *
 * Thread rule: one thread, one call at a time.
 * @{
 */

/**
 * Disconnects the station named under "/runtime/easyroaming/deauthsta" (texts "ifname" and "mac", 31 bytes each) with
 * the shell command "/userfs/bin/iwpriv <ifname> set DisConnectSta=<mac>", cut at 127 bytes and logged at level 5, and
 * deletes that node. Without both of its texts nothing happens. The texts go into the command as they are; its exit
 * status is not looked at.
 */
PENDRA_API void do_deauthsta(void);

/**
 * Publishes the stations of interfaces "ra0" and "rai0" under "/runtime/easyroaming/connstainfo/sta:N" (mac, ifname,
 * rssi in dBm), numbered from 1 across both, at most 32 of each. A list that is there is deleted first. A station that
 * no antenna has heard gets an empty rssi and a line at level 5. A socket or driver failure is logged at level 5 and
 * ends the update; what is published stays.
 */
PENDRA_API void do_updatestarssi(void);
/** @} */

/**
 * @defgroup compare Compare-then-write
 *
 * Each returns 1 when the stored value differs, else 0, and writes the new one unless @p compareOnly is non-zero. That
 * the tree refused a write is not reported.
 *
 * Thread rule: one thread, one call at a time.
 * @{
 */

/**
 * Compares texts exactly; of the stored one the first 127 bytes count.
 *
 * @param value       the text that is to be stored; null counts as equal.
 * @param path        the node's path, taken as it stands; null counts as equal.
 * @param compareOnly non-zero: nothing is written.
 * @return 1 when the texts differ, else 0.
 */
PENDRA_API int32_t StrCmpWithXStr(const char* value, const char* path, int32_t compareOnly);

/**
 * Compares numbers; an absent node, and one that holds no number, counts as 0.
 *
 * @param value       the number that is to be stored.
 * @param path        the node's path, taken as it stands; null counts as equal.
 * @param compareOnly non-zero: nothing is written.
 * @return 1 when the numbers differ, else 0.
 */
PENDRA_API int32_t IntCmpWithXStr(int32_t value, const char* path, int32_t compareOnly);

/**
 * Compares numbers under a maximum; an absent node is negative.
 *
 * @param value       the number that is to be stored.
 * @param path        the node's path, taken as it stands; null counts as equal.
 * @param compareOnly non-zero: nothing is written.
 * @param maximum     the largest number that may be stored.
 * @param overflow    set to 1 when the value differs and is above @p maximum (then nothing is written and 0 returned),
 *                    else to 0; may be null.
 * @return 1 when the numbers differ and the new one is allowed, else 0.
 */
PENDRA_API int32_t IntMaxCmpWithXStr(int32_t value, const char* path, int32_t compareOnly, int32_t maximum,
                                     int32_t* overflow);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
