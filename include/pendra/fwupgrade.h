/**
 * @file
 * Firmware upgrade: the firmware list document, the upgrade actions with their status document, the image check and the
 * flash helpers.
 *
 * Thread rule of everything in this file that its group does not exempt: no locks; one thread, one call at a time.
 * Calls block while the shell commands they start run; downloads go on in the background.
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
 *
 * Thread rule: one thread, one call at a time; ::fwXmlData may be read between calls.
 * @{
 */

/** The state of the upgrade. */
typedef struct FwXmlData {
    ZepSpecVersion specVersion; /**< of the list document */
    char fileUrl[128];          /**< address of the image of the entry that matched */
    char notesUrl[128];         /**< address of its release notes */
    char deviceMac[18];         /**< node "/fwupgradeinfo/devicemac" at the last parse */
    char currFwFileName[128];   /**< node "/fwupgradeinfo/currfwfilename" at the last parse */
    int32_t status;             /**< upgrade status, see do_FwUpgradeAction() */
    char downloadKey[16];       /**< finds the download in the process list: its command's first 15 bytes, no quotes */
} FwXmlData;

/** The one record; all zero when the library is loaded. */
extern PENDRA_API FwXmlData fwXmlData;

/**
 * @return base address of the firmware-information server that node "/fwupgradeinfo/isEngFwServer" selects: below 1 or
 * absent the production server's, otherwise the engineering server's. A constant, without a slash at its end.
 */
PENDRA_API const char* get_FwServerWebSite(void);

/**
 * Matches a firmware list document with this device (nodes "/fwupgradeinfo/devicemac" and ".../currfwfilename"). The
 * first matching entry wins, of the first 100; unless the device runs its image already, its addresses are stored under
 * "/fwupgradeinfo/newfw" ("fileurl" and "notesurl"). Clears ::XmlErrMsg_LostKey and logs the document at level 6.
 *
 * @param document writable NUL-terminated text; cut at "</root>". Null is malformed.
 * @param fileUrl  128 bytes or null: receives the image's address, "" unless the result is 2.
 * @param notesUrl 128 bytes or null: receives the release notes' address, "" unless the result is 2.
 * @return 2 new firmware; 1 none; 0 the document is malformed.
 */
PENDRA_API int32_t do_FwXml_Parser(char* document, char* fileUrl, char* notesUrl);
/** @} */

/**
 * @defgroup fwaction Upgrade actions
 *
 * Thread rule: one thread, one call at a time, outside any transaction on the tree: action '4' hands over to the
 * platform. A search blocks while the list document is fetched.
 * @{
 */

/**
 * Performs one step of an upgrade and rewrites the status document "zepcheckfw.xml" in the temporary directory
 * (elements "fwsize" and "fwver" from status 2 on, "time" or "erractmsg" after their actions, "result" always).
 *
 * Actions: '0' start over, '1' search (status 0), '2' download (status 2), '4' upgrade (status 4), '9' report only. In
 * status 3 every action but '0' polls the download. Statuses: 0 initial, 1 no new firmware, 2 found, 3 downloading, 4
 * downloaded, 5 upgrade started, -1 list malformed, -2 upgrade failed, -5 list not fetched. A wrong action reports -3
 * and leaves the status, which the report behind it then gives. A download that fails ends like one that succeeds: have
 * check() look at the image.
 *
 * Files of the temporary directory: the list document "<model>.xml" (the running firmware's name up to its first "_"),
 * the image (node "/fwupgradeinfo/fwupgradefn", set to "upld.bin" when empty), "zepfwnotes.xml", "zepfwtmp.txt". Shell
 * commands: the fetch command of node "/fwupgradeinfo/urlgetcmd" with "$savefn" and "$url" replaced (set to "wget -O
 * \"$savefn\" \"$url\"" when empty), "rm -f", "ps aux", "grep", "echo". Starting over deletes "/fwupgradeinfo/newfw".
 * Upgrading is exe_ExternalCall() with 128.
 *
 * @param action a character.
 * @return 0; it has no meaning.
 */
PENDRA_API int32_t do_FwUpgradeAction(uint32_t action);
/** @} */

/**
 * @defgroup fwimage Image check and flash
 *
 * Thread rule: crc32() keeps no state: any thread. check() installs a handler for SIGBUS while it reads, so one at a
 * time. The others start shell commands or read kernel files, one at a time like the rest of the library.
 * @{
 */

/**
 * Checks a firmware image: 64-byte legacy U-Boot header (magic and header CRC-32), then the CRC-32 of the data. The
 * data size in the header is not looked at. A file that shrinks meanwhile is a corrupted image.
 *
 * @param path    the file, read only; null is no file.
 * @param offset  where the image starts in the file, in bytes.
 * @param length  bytes of the image, header included.
 * @param message 256 bytes, or null: receives the reason of a refusal, one line. Not written when the image is valid.
 * @return 1 valid, 0 not.
 */
PENDRA_API uint32_t check(const char* path, int32_t offset, int32_t length, char* message);

/**
 * CRC-32 (reflected polynomial 0xEDB88320).
 *
 * zlib has a function of the same name with the same results; docs/interface.md says which of the two a program calls.
 *
 * @param initial 0, or the result of the data before.
 * @param data    the bytes; null counts as none.
 * @param length  how many bytes.
 * @return the CRC-32 of all data so far.
 */
PENDRA_API uint32_t crc32(uint32_t initial, const unsigned char* data, uint32_t length);

/**
 * Reads the size of a flash partition from "/proc/mtd". A table that cannot be read is reported on standard error.
 *
 * @param partition name as "/proc/mtd" shows it, quotes included; may be null.
 * @return the partition's size in bytes, 2147483647 for a larger one; 0 when it is not there or the table cannot be
 *         read.
 */
PENDRA_API int32_t getMTDPartSize(const char* partition);

/**
 * Not built in on this platform: writes a message to standard error, runs nothing.
 *
 * @param path   not used.
 * @param offset not used.
 * @param length not used.
 * @return -1.
 */
PENDRA_API int32_t mtd_write_firmware(const char* path, int32_t offset, int32_t length);

/**
 * Writes a part of a file to the boot loader's partition with the shell command "/bin/mtd_write", cut at 511 bytes.
 * Prints "write bootloader" on standard output.
 *
 * @param path   the file, put into the command as it is; null writes nothing.
 * @param offset where the part starts in the file, in bytes.
 * @param length bytes of the part.
 * @return the status of system(3); -1 for a null path.
 */
PENDRA_API int32_t mtd_write_bootloader(const char* path, int32_t offset, int32_t length);

/**
 * Keeps the running kernel's version line ("/proc/version", 511 bytes) as "old_firmware" of the 2860 settings block,
 * with the shell command "nvram_set".
 *
 * @return the status of system(3); -1 when "/proc/version" cannot be read.
 */
PENDRA_API int32_t write_flash_kernel_version(void);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
