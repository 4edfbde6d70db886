/**
 * @file
 * What a device supplies to the library: its configuration tree and the chip vendor's configuration API.
 *
 * The tree is a hierarchical key/value store addressed by slash-separated paths. A list element is written "name:N" and
 * counts from 1; the path "name#" reads the number of elements there are. Paths compare byte for byte:
 * "/sys/RouterEnbl" and "/sys/routerenbl" are two nodes. A node may be absent, and that is never an error: an absent
 * text reads as "", an absent integer as a negative number.
 *
 * These are the only functions that the library calls from outside, but for those of libc. They come from the program
 * or from a library that it loads.
 *
 * Thread rule of every function here: the library calls them on the thread that called the library (tcapi_commit() on
 * the one that takes SIGALRM) and never two at a time.
 */
#ifndef PENDRA_PLATFORM_H
#define PENDRA_PLATFORM_H

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup platform The platform's functions
 *
 * Thread rule: called on the library's one thread, never two at a time; tcapi_commit() from the SIGALRM handler.
 * @{
 */

/** Capacity in bytes, terminating NUL included, of the buffer that the library hands to xget_str(). */
#define XNODE_TEXT_MAX 1024

/**
 * Reads the text of a node.
 *
 * @param destination receives the text with its NUL: at least XNODE_TEXT_MAX bytes, of which the platform never writes
 *                    more. An absent node gives "".
 * @param pathFormat  printf-style format of the node's path, followed by its arguments.
 * @return 0 when the node is there, negative when it is absent.
 */
int xget_str(char* destination, const char* pathFormat, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 2, 3)))
#endif
    ;

/**
 * Reads a node's text as a decimal integer, or the number of elements of a list ("name#").
 *
 * @param pathFormat printf-style format of the node's path, followed by its arguments.
 * @return the number; negative when the node is absent.
 */
int xget_int(const char* pathFormat, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 1, 2)))
#endif
    ;

/**
 * Stores a text, creating the node when it is absent.
 *
 * @param value the text to store.
 * @param path  the node's path, taken as it stands (no formatting).
 * @return 0 when stored, negative when the tree refused or could not store it.
 */
int xset_str(const char* value, const char* path);

/**
 * Stores a number as its decimal text, creating the node when it is absent.
 *
 * @param value the number to store.
 * @param path  the node's path, taken as it stands.
 * @return 0 when stored, negative when the tree refused or could not store it.
 */
int xset_int(int value, const char* path);

/**
 * Deletes a node and everything below it.
 *
 * @param path the node's path, taken as it stands.
 * @return 0 when deleted, negative when it was absent.
 */
int xdel(const char* path);

/**
 * Sets an attribute of a node of the chip vendor's configuration API. The library uses it once, to announce a firmware
 * image: node "System_Entry", attribute "upgrade_fw", value "1".
 *
 * @param node      the vendor node.
 * @param attribute the attribute's name.
 * @param value     its text.
 * @return 0 on success. Otherwise the library removes the image and reports that the upgrade failed.
 */
int tcapi_set(const char* node, const char* attribute, const char* value);

/**
 * Carries out what was set on a vendor node. On "System_Entry" this checks the announced firmware image and writes it
 * to the flash. Called from the SIGALRM handler of the firmware hand-over.
 *
 * @param node the vendor node.
 * @return 0 on success, non-zero when the vendor API refused.
 */
int tcapi_commit(const char* node);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
