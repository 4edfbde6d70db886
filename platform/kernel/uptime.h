/**
 * @file
 * The simulated device's clock.
 */
#ifndef PENDRA_PLATFORM_KERNEL_UPTIME_H
#define PENDRA_PLATFORM_KERNEL_UPTIME_H

#include <string_view>

namespace pendra::device {

/**
 * The uptime of the device in seconds: "+N" sets it ahead of the machine's, "N" stops it there; anything else leaves
 * it the machine's.
 */
[[nodiscard]] long deviceUptime(long machineUptime, std::string_view setting);

} // namespace pendra::device

#endif
