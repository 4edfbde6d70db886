/** What `crc32` and `MD5Init` are to a unit that was linked with libpendra. */
#include "pendra/fwupgrade.h"
#include "sides.h"

pendraCrc32Function pendraCrc32(void) {
    return crc32;
}

md5InitFunction pendraMd5Init(void) {
    return MD5Init;
}
