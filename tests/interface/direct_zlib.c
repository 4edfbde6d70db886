#include <zlib.h>

#include "direct.h"

void (*directCrc32(void))(void) {
    return (void (*)(void))crc32;
}
