/**
 * @file
 * The simulated flash: files in the device's directory.
 */
#ifndef PENDRA_PLATFORM_VENDOR_FLASH_H
#define PENDRA_PLATFORM_VENDOR_FLASH_H

#include <string>

namespace pendra::device {

/** Whether an image may be written to the flash at all: its size fits the partition, and it is whole. */
[[nodiscard]] bool isImageAcceptable(const std::string& image, std::string& error);

/**
 * Writes an image into a flash file: at any moment, power loss included, the file is the old one or the new one. What
 * has been written is checked before it takes the place of the old one.
 *
 * @param flashFile its directory is created when absent.
 */
[[nodiscard]] bool writeFlash(const std::string& image, const std::string& flashFile, std::string& error);

} // namespace pendra::device

#endif
