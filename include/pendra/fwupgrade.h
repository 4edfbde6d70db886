/**
 * @file
 * Firmware upgrade: the firmware list document, the upgrade actions with their status document, the image check and the
 * flash helpers.
 *
 * Thread rule: no locks; one thread, one call at a time. Calls block while the shell commands they start run; downloads
 * go on in the background.
 */
#ifndef PENDRA_FWUPGRADE_H
#define PENDRA_FWUPGRADE_H

#include "pendra/common.h"
#include "pendra/setupdoc.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup fwlist Firmware list
 * @{
 */

/** The state of the upgrade. */
typedef struct FwXmlData {
    ZepSpecVersion specVersion; /**< of the list document */
    char fileUrl[128];          /**< address of the image of the entry that matched */
    char notesUrl[128];         /**< address of its release notes */
    char deviceMac[18];
    char currFwFileName[128];
    int32_t status;       /**< upgrade status, see do_FwUpgradeAction() */
    char downloadKey[16]; /**< finds the download in the process list */
} FwXmlData;

/** The one record; all zero when the library is loaded. */
extern PENDRA_API FwXmlData fwXmlData;

/** @return base address of the firmware-information server that node "/fwupgradeinfo/isEngFwServer" selects. */
PENDRA_API const char* get_FwServerWebSite(void);

/**
 * Matches a firmware list document with this device (nodes "/fwupgradeinfo/devicemac" and ".../currfwfilename"). The
 * first matching entry wins; unless the device runs its image already, its addresses are stored under
 * "/fwupgradeinfo/newfw".
 *
 * @param document writable NUL-terminated text; cut at "</root>".
 * @param fileUrl  128 bytes or null: receives the image's address, "" unless the result is 2.
 * @param notesUrl 128 bytes or null: receives the release notes' address, "" unless the result is 2.
 * @return 2 new firmware; 1 none; 0 the document is malformed.
 */
PENDRA_API int32_t do_FwXml_Parser(char* document, char* fileUrl, char* notesUrl);
/** @} */

/**
 * @defgroup fwaction Upgrade actions
 * @{
 */

/**
 * Performs one step of an upgrade and rewrites the status document "zepcheckfw.xml" in the temporary directory.
 *
 * Actions: '0' start over, '1' search (status 0), '2' download (status 2), '4' upgrade (status 4), '9' report only. In
 * status 3 every action but '0' polls the download. Statuses: 0 initial, 1 no new firmware, 2 found, 3 downloading, 4
 * downloaded, 5 upgrade started, -1 list malformed, -2 upgrade failed, -5 list not fetched. A wrong action reports -3
 * and leaves the status.
 *
 * @param action a character.
 * @return no meaning.
 */
PENDRA_API int32_t do_FwUpgradeAction(uint32_t action);
/** @} */

/**
 * @defgroup fwimage Image check and flash
 * @{
 */

/**
 * Checks a firmware image: 64-byte legacy U-Boot header (magic and header CRC-32), then the CRC-32 of the data.
 *
 * @param offset  where the image starts in the file, in bytes.
 * @param length  bytes of the image, header included.
 * @param message 256 bytes: receives the reason of a refusal.
 * @return 1 valid, 0 not.
 */
PENDRA_API uint32_t check(const char* path, int32_t offset, int32_t length, char* message);

/**
 * CRC-32 (reflected polynomial 0xEDB88320).
 *
 * @param initial 0, or the result of the data before.
 */
PENDRA_API uint32_t crc32(uint32_t initial, const unsigned char* data, uint32_t length);

/**
 * @param partition name as "/proc/mtd" shows it, quotes included.
 * @return the partition's size in bytes; 0 when it is not there or the table cannot be read.
 */
PENDRA_API int32_t getMTDPartSize(const char* partition);

/** Not built in on this platform: writes a message to standard error, runs nothing. @return -1. */
PENDRA_API int32_t mtd_write_firmware(const char* path, int32_t offset, int32_t length);

/** Writes a part of a file to the boot loader's partition with "/bin/mtd_write". @return the status of system(3). */
PENDRA_API int32_t mtd_write_bootloader(const char* path, int32_t offset, int32_t length);

/**
 * Keeps the running kernel's version line as "old_firmware" of the 2860 settings block, with "nvram_set".
 *
 * @return the status of system(3); -1 when "/proc/version" cannot be read.
 */
PENDRA_API int32_t write_flash_kernel_version(void);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
