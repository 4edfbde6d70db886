/**
 * @file
 * Common services: diagnostic logging, the uptime clock, text utilities, field validators and interval timers.
 *
 * Thread rule of everything in this file that its group does not exempt: the library has no locks. Call it from one
 * thread, one call at a time; a SIGALRM that runs library code must not be delivered while a call is in progress.
 */
#ifndef PENDRA_COMMON_H
#define PENDRA_COMMON_H

#include <stdint.h>

#if defined(__GNUC__)
/** Marks what the shared library exports. */
#define PENDRA_API __attribute__((visibility("default")))
/** Has the compiler check the arguments of a printf-style function, which are numbered from 1. */
#define PENDRA_PRINTF(formatIndex, firstArgument) __attribute__((format(printf, formatIndex, firstArgument)))
#else
#define PENDRA_API
#define PENDRA_PRINTF(formatIndex, firstArgument)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup log Diagnostic logging
 *
 * A message of level L is handled when L is not above ::daemon_log_level. It is appended to the log file
 * "<path>/<header>_log.txt" and echoed to the debug console "/proc/tc3162/dbg_msg". Levels in use: 4 errors, 5 notable
 * events, 6 information (documents and the record, with passwords in clear), 7 trace.
 *
 * Thread rule: one thread, one call at a time, as for the whole library: file name, line start and settings are
 * process-wide. Every other call of the library may log.
 * @{
 */

/** Threshold; default 5. A change takes effect with the next message. */
extern PENDRA_API int32_t daemon_log_level;

/** Limit of the log file in KiB; default 250. 0 or below switches the file off. Takes effect with the next message. */
extern PENDRA_API int32_t daemon_log_file_size_k;

/** Tag in the file's name and prefix on the console; filled with "DL" by the first message when still empty. */
extern PENDRA_API char daemon_log_header[32];

/**
 * Directory of the log file. When still empty, the first message fills it from node "/bramble/tempdirecory", and with
 * "/tmp" when that is empty too. The first message that passes the threshold fixes the file's name for good (127
 * bytes).
 */
extern PENDRA_API char daemon_log_path[64];

/**
 * Logs one message.
 *
 * The message is cut at 5119 bytes in the file and at 255 bytes on the console, prefix included. A message that starts
 * a line gets "<uptime>: " in the file and "<header>> " on the console; one that continues a line gets neither, and its
 * console copy has "%%" turned into "%". An empty message writes nothing, and the next one then continues a line.
 *
 * When the file would reach its limit it is first copied to "<file>.old" and removed, by the shell commands "cp -f" and
 * "rm -f". A file that cannot be opened is skipped; for the console see msgPrintf().
 *
 * @param level  0 to 7, compared with ::daemon_log_level.
 * @param format printf-style format, followed by its arguments; null logs nothing.
 * @return 0; it has no meaning.
 */
PENDRA_API int32_t logPrintf(int32_t level, const char* format, ...) PENDRA_PRINTF(2, 3);

/**
 * Writes one text to "/proc/tc3162/dbg_msg", no newline added. When that file cannot be opened, prints "open
 * /proc/tc3162/dbg_msg fail" and a newline on standard output.
 *
 * @param format printf-style format, followed by its arguments; the text is cut at 255 bytes. Null writes nothing.
 * @return 0; it has no meaning.
 */
PENDRA_API int32_t msgPrintf(const char* format, ...) PENDRA_PRINTF(1, 2);

/**
 * The same as msgPrintf(); the logger uses it for every level but 0.
 *
 * @param format printf-style format, followed by its arguments; the text is cut at 255 bytes. Null writes nothing.
 * @return 0; it has no meaning.
 */
PENDRA_API int32_t dbgPrintf(const char* format, ...) PENDRA_PRINTF(1, 2);

/** @return the system's uptime in whole seconds, from sysinfo(2): the library's only clock. 0 when that call fails. */
PENDRA_API uint32_t sys_uptime_seconds(void);

/** @return the uptime as decimal text, in one static buffer that every call overwrites. */
PENDRA_API char* sys_uptime_sec_str(void);

/**
 * Asks for the size of a file.
 *
 * @param path a file's path; may be null.
 * @return its size in bytes, 2147483647 for a larger one; -1 when stat(2) fails or @p path is null.
 */
PENDRA_API int32_t getFileSize(const char* path);
/** @} */

/**
 * @defgroup text Text utilities
 *
 * None of them allocates or logs; all write into buffers that the caller owns. Case is that of ASCII letters.
 *
 * Thread rule: those that read or write nodes of the tree (strChgZepKeywords(), getXNode_() and getXNode()) one at a
 * time, like the rest of the library. The others keep no state: any thread, as long as nobody else uses their buffers.
 * @{
 */

/**
 * Strips leading and trailing characters of a set.
 *
 * @param text modified: trailing characters of the set become NUL. May be null.
 * @param set  the characters to strip; may be null.
 * @return a pointer into @p text at its first character that is not in the set; null when an argument is null.
 */
PENDRA_API char* strip_chars(char* text, const char* set);

/**
 * Removes leading and trailing spaces and tabs. Carriage return and line feed stay.
 *
 * @param text modified: what is left moves to its start. May be null.
 * @return @p text.
 */
PENDRA_API char* trim(char* text);

/**
 * Copies a text and trims the copy as trim() does.
 *
 * @param destination at least strlen(source) + 1 bytes; may overlap the source.
 * @param source      the text to copy.
 * @return @p destination; null, and nothing written, when an argument is null.
 */
PENDRA_API char* trimTo(char* destination, const char* source);

/**
 * Finds a text in another, ignoring case.
 *
 * @param text    searched; may be null.
 * @param pattern what is looked for; may be null.
 * @return the first occurrence; null when there is none, the pattern is empty or an argument is null.
 */
PENDRA_API char* strstri(const char* text, const char* pattern);

/**
 * Maps a text to its row in a name table, ignoring case, and overwrites it with the row's own spelling.
 *
 * @param text  modified when found, its length stays. May be null.
 * @param table rows closed by the sentinel "\0_" (NUL, underscore, NUL). A real empty row is the literal "\0". May be
 *              null.
 * @return the row's index, counted from 0; -1 when no row equals the text or an argument is null.
 */
PENDRA_API int32_t SearchKeyArray(char* text, const char* const* table);

/**
 * Copies a text and replaces every occurrence of a keyword, case-sensitively.
 *
 * @param destination must hold the whole result and its NUL: no bound is checked. Not the source.
 * @param source      the text to copy.
 * @param keyword     what is replaced; an empty one replaces nothing.
 * @param replacement what takes its place; may be empty. It is not searched again.
 * @return @p destination; null, and nothing written, when an argument is null.
 */
PENDRA_API char* strChgKeyword(char* destination, const char* source, const char* keyword, const char* replacement);

/**
 * Replaces "$lanip" by node "/runtime/bramble/lanip" and "$zepport" by node "/bramble/zephttpport" in place. 63 bytes
 * of each node count; an absent one replaces by nothing.
 *
 * @param text at least 256 bytes when the replacements are longer than the keywords; the result is cut at 255 bytes.
 * May be null.
 * @return @p text.
 */
PENDRA_API char* strChgZepKeywords(char* text);

/**
 * Copies a text and decodes XML entities: "lt;", "gt;", "amp;", "quot;" and "apos;" and their decimal numbers, and
 * "nbsp;", "#32;" and "#160;", which all three become the plain space. Other entities stay as they are.
 *
 * @param destination @p count bytes; may be the source.
 * @param source      the text to copy; may be null.
 * @param count       source bytes to take; an entity that starts among them is taken whole. The result is terminated
 *                    only when the source's NUL lies among them: terminate it yourself. With 0 or below, or a null
 *                    source, the destination is emptied.
 * @return @p destination; null when that is null.
 */
PENDRA_API char* strncpy_XmlDecode(char* destination, const char* source, int32_t count);

/**
 * Copies a text and encodes the five XML special characters (the single quote as "#39;").
 *
 * @param destination @p count bytes; not the source.
 * @param source      the text to copy; may be null.
 * @param count       destination bytes to write at the most; an entity may be cut by it. The result is terminated only
 *                    when the NUL fits: terminate it yourself. With 0 or below, or a null source, the destination is
 *                    emptied.
 * @return @p destination; null when that is null.
 */
PENDRA_API char* strncpy_XmlEncode(char* destination, const char* source, int32_t count);

/**
 * Reads a node's text with "$lanip" and "$zepport" replaced, see strChgZepKeywords(). Of the node 255 bytes count.
 *
 * Reading an empty or absent node with a default also stores the default in the node, its keywords not replaced.
 *
 * @param destination 256 bytes; may be null.
 * @param path        the node's path, taken as it stands; may be null.
 * @param defaultText used when the node is empty; may be null.
 * @param encode      non-zero: encode the result for XML (cut at 255 bytes).
 * @return @p destination; null, and nothing read or written, when it or the path is null.
 */
PENDRA_API char* getXNode_(char* destination, const char* path, const char* defaultText, int32_t encode);

/**
 * getXNode_() without encoding.
 *
 * @param destination 256 bytes; may be null.
 * @param path        the node's path, taken as it stands; may be null.
 * @param defaultText used, and stored in the node, when the node is empty; may be null.
 * @return @p destination; null, and nothing read or written, when it or the path is null.
 */
PENDRA_API char* getXNode(char* destination, const char* path, const char* defaultText);
/** @} */

/**
 * @defgroup valid Field validators
 *
 * Pure functions: no state, no log, no change of their input. Dotted texts are read like "%d.%d.%d.%d": leading blanks
 * and signs are accepted, what follows the fourth number is ignored, fewer than four numbers are invalid, and a number
 * beyond an int is out of range.
 *
 * Thread rule: any thread, at any time.
 * @{
 */

/**
 * Tells whether a number lies in a range.
 *
 * @param value the number.
 * @param low   the smallest one allowed.
 * @param high  the largest one allowed.
 * @return 1 when low <= value <= high, else 0.
 */
PENDRA_API int32_t is_in_range(int32_t value, int32_t low, int32_t high);

/**
 * Checks the address of a host. One that ends in 255 is accepted, one that ends in 0 is not.
 *
 * @param text dotted text; may be null.
 * @return 1 for a host address (first number 1 to 223 but 127, last 1 to 255), else 0.
 */
PENDRA_API int32_t is_Valid_IP(const char* text);

/**
 * Checks a netmask.
 *
 * @param text dotted text; may be null.
 * @return 1 for a mask whose one-bits are contiguous from the top (0.0.0.0 included), else 0.
 */
PENDRA_API int32_t is_Valid_Netmask(const char* text);

/**
 * Checks that two addresses lie in one subnet.
 *
 * @param mask     dotted netmask; may be null.
 * @param address1 dotted address; may be null.
 * @param address2 dotted address; may be null.
 * @return 1 when mask and addresses are valid and the addresses are equal where the mask has ones, else 0.
 */
PENDRA_API int32_t is_Valid_IP_CheckMask(const char* mask, const char* address1, const char* address2);

/**
 * Checks a WPA pre-shared key.
 *
 * @param text the key; may be null.
 * @return 1 for 8 to 63 characters of any kind or 64 digits "0-9A-F" (upper case only), else 0.
 */
PENDRA_API int32_t is_Valid_WpaPskKey(const char* text);

/**
 * Checks a WEP key.
 *
 * @param text   the key; may be null.
 * @param length key length in characters: 5 or 13.
 * @return 1 for @p length characters of any kind or twice as many digits "0-9A-F" (upper case only), else 0.
 */
PENDRA_API int32_t is_Valid_WepKey(const char* text, uint32_t length);

/**
 * Checks a value under a validation rule, a comma-separated text (field 0 is the type):
 * - "1,maximum,minimum": a number, compared in single precision; a text that is no number counts as 0. Without a field
 *   there is no such limit.
 * - "0,maximum length,minimum length,allow control characters,allow list,range,range...": a text, where a range is
 *   "a-z" or one character and "\," stands for a comma. Absent fields: 9999, 1, 0, 0. Without control characters, bytes
 *   of 128 and above are forbidden too. With allow list non-zero every character must lie in a range, otherwise none
 *   may.
 * - any other type accepts everything.
 *
 * @param value may be null.
 * @param rule  may be null, and then any value but an empty one is valid; cut at 255 characters and 32 fields.
 * @return 0 valid; 3 value missing; 10 length; 11 forbidden character; 20 above the maximum; 21 below the minimum.
 */
PENDRA_API int32_t validate_ZepData(const char* value, const char* rule);
/** @} */

/**
 * @defgroup timer Interval timers
 *
 * Software timers that the host's periodic tick counts down. The caller owns every record, a heap block of the C
 * library: free one with free() and only while it is not in ::timer_list.
 *
 * Thread rule: one thread, the one that calls tick_timers(); callbacks run on it.
 * @{
 */

/** A timer record, created by create_timer(). */
typedef struct zep_timer {
    struct zep_timer* next;           /**< link in ::timer_list */
    uint32_t remaining;               /**< ticks left */
    uint32_t period;                  /**< ticks to reload after expiry */
    uint32_t flags;                   /**< stored for the host; selects nothing here */
    void* argument;                   /**< handed to the callback */
    void* argument2;                  /**< stored for the host */
    void (*callback)(void* argument); /**< called on expiry; may be null */
} zep_timer;

/** Armed timers, last armed first; null when there are none. */
extern PENDRA_API zep_timer* timer_list;

/**
 * Allocates a timer record. It is not armed.
 *
 * @param period    ticks until expiry, and between expiries.
 * @param callback  called on expiry; may be null.
 * @param argument  handed to the callback.
 * @param argument2 stored in the record for the host.
 * @param flags     stored in the record for the host.
 * @return the record, or null when memory is out (logged at level 5).
 */
PENDRA_API zep_timer* create_timer(uint32_t period, void (*callback)(void*), void* argument, void* argument2,
                                   uint32_t flags);

/**
 * Arms a timer: links it at the head of ::timer_list. A timer with no ticks left is not linked; its callback is called
 * at once.
 *
 * @param timer the record; null, or one that is armed already, is left alone.
 */
PENDRA_API void add_timer(zep_timer* timer);

/**
 * The tick routine: counts every armed timer down by one, calls the callback of each that reaches 0 and reloads it from
 * its period. The host calls it once a second. A callback may arm timers and take its own or others out of
 * ::timer_list; it must not free its own record.
 */
PENDRA_API void tick_timers(void);
/** @} */

/**
 * @defgroup forms Wildcard matching and form encoding
 *
 * The encoding is that of query strings and forms (application/x-www-form-urlencoded): "%hh" escapes, "+" for a space.
 *
 * Thread rule: they keep no state: any thread, as long as nobody else uses their buffers.
 * @{
 */

/**
 * Compares a text with a pattern: "?" matches any one character, "*" the whole rest, anything else itself.
 *
 * @param text    the text; null counts as empty.
 * @param pattern the pattern; null counts as empty.
 * @param n       characters to compare at the most; with 0 or below everything matches.
 * @return 0 on a match, else the difference of the first differing characters as signed bytes.
 */
PENDRA_API int32_t strnWildcardCmp(const char* text, const char* pattern, int32_t n);

/**
 * strnWildcardCmp() over 32767 characters.
 *
 * @param text    the text; null counts as empty.
 * @param pattern the pattern; null counts as empty.
 * @return 0 on a match, else the difference of the first differing characters as signed bytes.
 */
PENDRA_API int32_t strWildcardCmp(const char* text, const char* pattern);

/**
 * Decodes a form-encoded text. Digits of an escape are not checked; one that the source's end cuts stays as it is.
 *
 * @param destination     receives the text; not the source.
 * @param source          the encoded text; null empties the destination.
 * @param destinationSize capacity of @p destination in bytes; a result that fills it is not terminated. Below 1 the
 *                        destination is emptied.
 * @param sourceLength    bytes to take; below 1, up to the source's NUL, which ends the source in any case.
 * @return @p destination; null when that is null.
 */
PENDRA_API char* strncpy_HtmlDecode_(char* destination, const char* source, int32_t destinationSize,
                                     int32_t sourceLength);

/**
 * strncpy_HtmlDecode_() up to the source's NUL.
 *
 * @param destination     receives the text; not the source.
 * @param source          the encoded text; null empties the destination.
 * @param destinationSize capacity of @p destination in bytes; a result that fills it is not terminated. Below 1 the
 *                        destination is emptied.
 * @return @p destination; null when that is null.
 */
PENDRA_API char* strncpy_HtmlDecode(char* destination, const char* source, int32_t destinationSize);

/**
 * Form-encodes a text: letters, digits, "-", "." and "_" stay, a space becomes "+", the rest "%HH".
 *
 * @param destination     receives the encoded text; not the source.
 * @param source          the text; null empties the destination.
 * @param destinationSize capacity of @p destination in bytes; a result that fills it is not terminated, and an escape
 *                        may be cut by it. Below 1 the destination is emptied.
 * @return @p destination; null when that is null.
 */
PENDRA_API char* strncpy_HtmlEncode(char* destination, const char* source, int32_t destinationSize);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
