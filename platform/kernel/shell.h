/**
 * @file
 * Tools of the device's own file system, which lie in its directory here.
 */
#ifndef PENDRA_PLATFORM_KERNEL_SHELL_H
#define PENDRA_PLATFORM_KERNEL_SHELL_H

#include <string>
#include <string_view>

namespace pendra::device {

/** A word that a shell takes as this text. */
[[nodiscard]] std::string shellQuoted(std::string_view text);

/**
 * The command as it runs here: a leading "/userfs/bin/iwpriv" becomes the "bin/iwpriv" of the device's directory when
 * there is one.
 */
[[nodiscard]] std::string deviceCommand(std::string_view command);

} // namespace pendra::device

#endif
