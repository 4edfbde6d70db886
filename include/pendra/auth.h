/**
 * @file
 * Client authentication: time-limited access keys derived from the device password, the list of admitted clients, and
 * the MD5 digest (RFC 1321) behind the keys.
 *
 * Thread rule: no locks; one thread, one call at a time.
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
 * @{
 */

/** One admitted client, a heap block owned by the library. */
typedef struct clientAuthEntry {
    struct clientAuthEntry* next;
    char ip[128];       /**< address as the host gives it */
    char username[64];  /**< "admin" */
    char password[64];  /**< device password when the entry was made */
    char sessionid[32]; /**< eight lower-case hex digits */
    uint32_t logout;    /**< uptime second at which the entry expires; 0 when made without expiry */
} clientAuthEntry;

/** The list, oldest entry first; null when empty. */
extern PENDRA_API clientAuthEntry* clientauthinfo;

/**
 * The entry made by the last add, or found by the last check_PendraAuthIP(). After a -1 of that check it may point at
 * a freed entry and must not be used.
 */
extern PENDRA_API clientAuthEntry* cur_authinfo;

/**
 * Adds an entry, or refreshes the one there is.
 *
 * @param head     address of the list's head.
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

/** @return the first entry that matches in the given mode, null when none does. */
PENDRA_API clientAuthEntry* checkClientAuthIp(clientAuthEntry** head, const char* ip, const char* session,
                                              uint32_t mode);

/**
 * Removes one entry and frees it, or all of them when @p ip is null.
 *
 * In session mode the head is removed only when it matches; behind it, the first entry goes whose address equals, or
 * whose session id does not occur in the session text, or any entry when no session text is given.
 *
 * @return 1 when one entry was removed, else 0 (also after emptying the list).
 */
PENDRA_API int32_t clientAuthListDel(clientAuthEntry** head, const char* ip, const char* session, uint32_t mode);

/** Writes the list to the log (levels 6 and 7). @return no meaning. */
PENDRA_API int32_t printList(clientAuthEntry** head);

/**
 * Asks whether a client is admitted, by address alone, and moves its expiry to now + 300 s. An expired entry is
 * removed.
 *
 * @param session not looked at.
 * @return 0 admitted, -1 not.
 */
PENDRA_API int32_t check_PendraAuthIP(const char* ip, const char* session);
/** @} */

/**
 * @defgroup keys Access keys
 *
 * A key is the MD5 digest, in lower-case hex, of "<slot><address>admin<password>", where the slot is the uptime divided
 * by 20 and the password is node "/sys/user:1/password" (cut at 63 bytes). The text is cut at 127 characters.
 * @{
 */

/**
 * Looks for "PendraKey=" (32 digits) or else "DKey=" (8 digits) in a request and compares the key with those of the
 * slots now - 1 to now + 3. On a match the client enters ::clientauthinfo with an expiry 300 seconds ahead.
 *
 * @param request request text; what follows the key's digits is ignored.
 * @param ip      the client's address, the one its key was made for.
 * @param session request text for the client list.
 * @return 0 when a valid key was found, -1 otherwise.
 */
PENDRA_API int32_t pendra_auth_check(const char* request, const char* ip, const char* session);

/** @return the 32-digit key of the current slot for an address, in ::string. */
PENDRA_API char* generate_PendraKey(const char* ip);

/** @return the first 8 digits of that key, in ::string. */
PENDRA_API char* generate_DKey(const char* ip);

/** @return the library's version, "b1.3.1". */
PENDRA_API const char* pendraLibVersion(void);

/** @return the version of the setup protocol, "1.1". */
PENDRA_API const char* zepSpecVersion(void);
/** @} */

/**
 * @defgroup md5 MD5 (RFC 1321)
 * @{
 */

/** The last hex digest; every digest and key call overwrites it. */
extern PENDRA_API char string[80];

/** Digest state, as in the RFC. */
typedef struct {
    uint32_t state[4];
    uint32_t count[2]; /**< message length in bits, low word first */
    unsigned char buffer[64];
} MD5_CTX;

/** Starts a digest. */
PENDRA_API void MD5Init(MD5_CTX* context);

/** Adds @p length bytes to a digest. */
PENDRA_API void MD5Update(MD5_CTX* context, const unsigned char* input, unsigned int length);

/** Finishes a digest and clears the context. */
PENDRA_API void MD5Final(unsigned char digest[16], MD5_CTX* context);

/** The basic step: one 64-byte block. */
PENDRA_API void MD5Transform(uint32_t state[4], const unsigned char block[64]);

/** Words to little-endian bytes; @p length in bytes, a multiple of 4. */
PENDRA_API void Encode(unsigned char* output, const uint32_t* input, unsigned int length);

/** Little-endian bytes to words; @p length in bytes, a multiple of 4. */
PENDRA_API void Decode(uint32_t* output, const unsigned char* input, unsigned int length);

/** Digests a NUL-terminated text; @p length is not used. */
PENDRA_API void MD5Digest(const char* text, unsigned int length, unsigned char digest[16]);

/**
 * Writes bytes as lower-case hex digits, cut after 32 digits whatever the count.
 *
 * @param output 33 bytes.
 * @param count  bytes to convert; only the first 16 show.
 * @return @p output.
 */
PENDRA_API char* Hex2String(const unsigned char* bytes, char* output, int32_t count);

/** @return the 32-digit hex digest of a text, in ::string. */
PENDRA_API char* MD5Encryption(const char* text);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
