/**
 * @file
 * Which functions stand behind names that several libraries define. zlib.h and pendra/fwupgrade.h declare two different
 * crc32, so each name is looked up by a unit of its own, "side".
 */
#ifndef PENDRA_TESTS_INTERFACE_SIDES_H
#define PENDRA_TESTS_INTERFACE_SIDES_H

#include <stddef.h>

#include "pendra/auth.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef uint32_t (*pendraCrc32Function)(uint32_t initial, const unsigned char* data, uint32_t length);
typedef unsigned long (*zlibCrc32Function)(unsigned long initial, const unsigned char* data, unsigned int length);
typedef void (*md5InitFunction)(MD5_CTX* context);

pendraCrc32Function pendraCrc32(void);
md5InitFunction pendraMd5Init(void);
zlibCrc32Function zlibCrc32(void);
md5InitFunction rivalMd5Init(void);

#ifdef __cplusplus
}
#endif

#endif
