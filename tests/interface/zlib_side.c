/** What `crc32` is to a unit that was linked with zlib. */
#include <zlib.h>

#include "sides.h"

zlibCrc32Function zlibCrc32(void) {
    return crc32;
}
