#include "direct.h"
#include "pendra/fwupgrade.h"

void (*directCrc32(void))(void) {
    return (void (*)(void))crc32;
}
