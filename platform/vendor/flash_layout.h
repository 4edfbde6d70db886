/**
 * @file
 * The partitions of the simulated flash.
 */
#ifndef PENDRA_PLATFORM_VENDOR_FLASH_LAYOUT_H
#define PENDRA_PLATFORM_VENDOR_FLASH_LAYOUT_H

namespace pendra::device {

struct Partition {
    const char* name;
    unsigned long size;
};

inline constexpr unsigned long eraseSize = 0x10000;
inline constexpr Partition firmwarePartition{"Firmware", 0xfb0000};
inline constexpr Partition flashLayout[] = {
    {"Bootloader", 0x30000},
    {"Config", 0x10000},
    {"Factory", 0x10000},
    firmwarePartition,
};

} // namespace pendra::device

#endif
