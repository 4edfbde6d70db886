/**
 * @file
 * The device that this process has opened, for the parts of the platform.
 */
#ifndef PENDRA_PLATFORM_DEVICE_STATE_H
#define PENDRA_PLATFORM_DEVICE_STATE_H

#include <string>
#include <string_view>

#include "platform/tree/tree.h"

namespace pendra::device {

[[nodiscard]] bool isDeviceOpen();

/** The tree of the device; not open when no device is. */
[[nodiscard]] tree::Tree& deviceTree();

/** A file in the device's directory. Only while a device is open. */
[[nodiscard]] std::string deviceFile(std::string_view name);

/** Adds a line to the journal, which tells what the device has done. */
void appendToJournal(std::string_view line);

/** Adds a line to what the kernel's debug console has shown. */
void printOnConsole(std::string_view line);

} // namespace pendra::device

#endif
