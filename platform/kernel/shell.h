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

/**
 * Runs a command and waits for its end, as system(3) does, but without the signals that this process blocks: a fetch
 * needs SIGALRM for its timeouts, and whoever is left in the background must hear SIGTERM.
 *
 * @return the wait status, or -1 with errno.
 */
int runCommand(const std::string& command);

} // namespace pendra::device

#endif
