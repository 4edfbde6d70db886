/**
 * @file
 * The command line of pendrad.
 */
#ifndef PENDRA_HOST_OPTIONS_H
#define PENDRA_HOST_OPTIONS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace pendra::host {

inline constexpr size_t kDefaultConnections = 128;

struct Options {
    std::string treeFile;
    std::string tmpDirectory;    /**< empty: the one the tree names */
    std::string scriptDirectory; /**< empty: the one the tree names */
    std::string deviceDirectory;
    std::string bindAddress = "127.0.0.1";
    uint16_t port = 8480; /**< 0: any free one */
    int32_t logLevel = 5;
    size_t connections = kDefaultConnections;
};

/**
 * Reads the command line; every path comes back absolute.
 *
 * @return the exit status when the program is to end here (help, version, wrong usage), nothing when it goes on.
 */
[[nodiscard]] std::optional<int> parseOptions(int argc, const char* const* argv, Options& options);

} // namespace pendra::host

#endif
