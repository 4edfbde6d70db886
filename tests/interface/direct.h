/**
 * @file
 * Calls that are linked into the program itself.
 */
#ifndef PENDRA_TESTS_INTERFACE_DIRECT_H
#define PENDRA_TESTS_INTERFACE_DIRECT_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/** @return what the program itself calls `crc32`, as some function. */
void (*directCrc32(void))(void);

/** @return 1 when a gzip stream comes back as it was, and one with another checksum does not. */
int zlibKeepsItsChecksum(void);

void opensslMd5(const unsigned char* text, size_t length, unsigned char digest[16]);

#ifdef __cplusplus
}
#endif

#endif
