/**
 * @file
 * The kernel files that the library opens, kept in the device's directory.
 */
#ifndef PENDRA_PLATFORM_KERNEL_DEVICE_FILES_H
#define PENDRA_PLATFORM_KERNEL_DEVICE_FILES_H

namespace pendra::device {

/** Fills a fresh device directory with the files that a kernel would show; keeps those that are there. */
void createKernelFiles();

} // namespace pendra::device

#endif
