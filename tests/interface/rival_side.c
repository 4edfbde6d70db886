/** What `MD5Init` is to a unit that was linked with the rival. */
#include "sides.h"

md5InitFunction rivalMd5Init(void) {
    return MD5Init;
}
