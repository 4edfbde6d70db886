/**
 * @file
 * Client authentication: time-limited access keys derived from the device password, the list of admitted clients, and
 * the MD5 digest (RFC 1321) behind the keys.
 *
 * Thread rule of everything in this file that its group does not exempt: no locks; one thread, one call at a time.
 */
#ifndef PENDRA_AUTH_H
#define PENDRA_AUTH_H

#include "pendra/common.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup clients Authenticated clients
 *
 * Matching modes of the add, check and delete operations: mode 1 matches by address; any other mode by session, that
 * is, the address equals and the entry's session id occurs anywhere in the session text (for which a host passes
 * whatever request text it has). A null address or session text matches nothing.
 *
 * No timer sweeps the list: an expired entry stays until its address is checked again or it is deleted. Nothing here
 * reads or writes the tree; what happens is logged at levels 6 and 7.
 *
 * Thread rule: one thread, one call at a time; ::clientauthinfo may be walked between calls.
 * @{
 */

/** One admitted client, a heap block owned by the library. */
typedef struct clientAuthEntry {
    struct clientAuthEntry* next; /**< the entry made next; null for the last one */
    char ip[128];                 /**< address as the host gives it */
    char username[64];            /**< "admin" */
    char password[64];            /**< device password when the entry was made */
    char sessionid[32];           /**< eight lower-case hex digits; not secret, entries of one second have the same */
    uint32_t logout;              /**< uptime second at which the entry expires; 0 when made without expiry */
} clientAuthEntry;

/** The list, oldest entry first; null when empty. */
extern PENDRA_API clientAuthEntry* clientauthinfo;

/**
 * The entry made by the last add, or found by the last check_PendraAuthIP(); null after a check that found nothing.
 * After a -1 of that check it may point at a freed entry and must not be used.
 */
extern PENDRA_API clientAuthEntry* cur_authinfo;

/**
 * Adds an entry, or refreshes the one there is. A new entry goes to the list's end and into ::cur_authinfo. It seeds
 * the generator of rand() with the wall-clock time.
 *
 * @param head     address of the list's head; null adds nothing.
 * @param ip       client address, cut at 127 bytes.
 * @param username cut at 63 bytes.
 * @param password cut at 63 bytes.
 * @param session  request text searched for a session id; may be null.
 * @param mode     1: by address, an existing entry's expiry moves to now + 300 s; other modes: by session, an existing
 *                 entry is left as it is. A new entry expires at now + 300 s, or never gets accepted when mode is 0.
 * @return 0 when an existing entry satisfied the request, 1 when a new one was made, and also 1 when memory is out.
 */
PENDRA_API int32_t clientAuthListAdd(clientAuthEntry** head, const char* ip, const char* username, const char* password,
                                     const char* session, uint32_t mode);

/**
 * Looks for an entry. Expiry is not looked at, and nothing changes.
 *
 * @param head    address of the list's head; null is an empty list.
 * @param ip      client address.
 * @param session request text searched for a session id; may be null.
 * @param mode    1: by address; other modes: by session.
 * @return the first entry that matches in the given mode, null when none does.
 */
PENDRA_API clientAuthEntry* checkClientAuthIp(clientAuthEntry** head, const char* ip, const char* session,
                                              uint32_t mode);

/**
 * Removes one entry and frees it, or all of them when @p ip is null. ::cur_authinfo may then point at a freed entry.
 *
 * In session mode the head is removed only when it matches; behind it, the first entry goes whose address equals, or
 * whose session id does not occur in the session text, or any entry when no session text is given.
 *
 * @param head    address of the list's head; null is an empty list.
 * @param ip      client address, or null to empty the list.
 * @param session request text searched for a session id; may be null.
 * @param mode    1: by address; other modes: by session.
 * @return 1 when one entry was removed, else 0 (also after emptying the list).
 */
PENDRA_API int32_t clientAuthListDel(clientAuthEntry** head, const char* ip, const char* session, uint32_t mode);

/**
 * Writes the list to the log (levels 6 and 7): addresses, user names and session ids.
 *
 * @param head address of the list's head; null is an empty list.
 * @return 0; it has no meaning.
 */
PENDRA_API int32_t printList(clientAuthEntry** head);

/**
 * Asks whether a client is admitted, by address alone, and moves its expiry to now + 300 s. An expired entry is
 * removed. Sets ::cur_authinfo.
 *
 * @param ip      client address; null is not admitted.
 * @param session not looked at; may be null.
 * @return 0 admitted, -1 not.
 */
PENDRA_API int32_t check_PendraAuthIP(const char* ip, const char* session);
/** @} */

/**
 * @defgroup keys Access keys
 *
 * A key is the MD5 digest, in lower-case hex, of "<slot><address>admin<password>", where the slot is the uptime divided
 * by 20 and the password is node "/sys/user:1/password" (cut at 63 bytes). The text is cut at 127 characters. The node
 * is read at each call; an absent one is an empty password.
 *
 * Thread rule: one thread, one call at a time; every call but the two of versions overwrites ::string.
 * @{
 */

/**
 * Looks for "PendraKey=" (32 digits) or else "DKey=" (8 digits) in a request and compares the key, case-sensitively,
 * with those of the slots now - 1 to now + 3. On a match the client enters ::clientauthinfo with an expiry 300 seconds
 * ahead (clientAuthListAdd() in mode 1), logged at level 5.
 *
 * @param request request text; what follows the key's digits is ignored. May be null.
 * @param ip      the client's address, the one its key was made for; may be null.
 * @param session request text for the client list; may be null.
 * @return 0 when a valid key was found, -1 otherwise.
 */
PENDRA_API int32_t pendra_auth_check(const char* request, const char* ip, const char* session);

/**
 * Makes the key of the current slot.
 *
 * @param ip the client's address; null counts as empty.
 * @return the 32 digits, in ::string.
 */
PENDRA_API char* generate_PendraKey(const char* ip);

/**
 * Makes the short key of the current slot.
 *
 * @param ip the client's address; null counts as empty.
 * @return the first 8 digits of the key, in ::string.
 */
PENDRA_API char* generate_DKey(const char* ip);

/** @return the library's version, "b1.3.1". Constant; any thread. */
PENDRA_API const char* pendraLibVersion(void);

/** @return the version of the setup protocol, "1.1". Constant; any thread. */
PENDRA_API const char* zepSpecVersion(void);
/** @} */

/**
 * @defgroup md5 MD5 (RFC 1321)
 *
 * None of them logs or allocates.
 *
 * Thread rule: MD5Encryption() writes ::string, so one call at a time. The others keep no state: any thread, as long as
 * nobody else uses their buffers.
 * @{
 */

/** The last hex digest and its NUL; every MD5Encryption() and key call overwrites it. */
extern PENDRA_API char string[80];

/** Digest state, as in the RFC. */
typedef struct {
    uint32_t state[4];        /**< the four words of the digest so far */
    uint32_t count[2];        /**< message length in bits, low word first */
    unsigned char buffer[64]; /**< bytes that do not fill a block yet */
} MD5_CTX;

/**
 * Starts a digest.
 *
 * @param context filled; not null.
 */
PENDRA_API void MD5Init(MD5_CTX* context);

/**
 * Adds bytes to a digest.
 *
 * @param context from MD5Init(); not null.
 * @param input   the bytes; null only when there are none.
 * @param length  how many bytes.
 */
PENDRA_API void MD5Update(MD5_CTX* context, const unsigned char* input, unsigned int length);

/**
 * Finishes a digest and clears the context.
 *
 * @param digest  receives 16 bytes; not null.
 * @param context from MD5Init(); not null.
 */
PENDRA_API void MD5Final(unsigned char digest[16], MD5_CTX* context);

/**
 * The basic step: one 64-byte block.
 *
 * @param state the four words of the digest so far, changed; not null.
 * @param block 64 bytes; not null.
 */
PENDRA_API void MD5Transform(uint32_t state[4], const unsigned char block[64]);

/**
 * Turns words into little-endian bytes.
 *
 * @param output receives @p length bytes.
 * @param input  @p length / 4 words.
 * @param length in bytes, a multiple of 4.
 */
PENDRA_API void Encode(unsigned char* output, const uint32_t* input, unsigned int length);

/**
 * Turns little-endian bytes into words.
 *
 * @param output receives @p length / 4 words.
 * @param input  @p length bytes.
 * @param length in bytes, a multiple of 4.
 */
PENDRA_API void Decode(uint32_t* output, const unsigned char* input, unsigned int length);

/**
 * Digests a NUL-terminated text.
 *
 * @param text   the text; not null.
 * @param length not used: the text ends at its NUL.
 * @param digest receives 16 bytes; not null.
 */
PENDRA_API void MD5Digest(const char* text, unsigned int length, unsigned char digest[16]);

/**
 * Writes bytes as lower-case hex digits, cut after 32 digits whatever the count.
 *
 * @param bytes  at least the smaller of @p count and 16 bytes; may be null.
 * @param output 33 bytes; may be the buffer of the bytes, or null.
 * @param count  bytes to convert; only the first 16 show.
 * @return @p output; null, and nothing written, when a buffer is null.
 */
PENDRA_API char* Hex2String(const unsigned char* bytes, char* output, int32_t count);

/**
 * Digests a text to hex digits.
 *
 * @param text NUL-terminated; may be null.
 * @return the 32 digits of its digest, in ::string; null for a null text.
 */
PENDRA_API char* MD5Encryption(const char* text);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
