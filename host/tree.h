/**
 * @file
 * The host's own dealings with the configuration tree.
 */
#ifndef PENDRA_HOST_TREE_H
#define PENDRA_HOST_TREE_H

#include <string>

#include "platform/device.h"

namespace pendra::host {

/** @return the node's text, empty when it is absent. */
std::string nodeText(const std::string& path);

/** @return the node's number (or the length of a list, "name#"), negative when it is absent. */
int nodeNumber(const std::string& path);

/**
 * Does some work as one write transaction of the tree.
 *
 * @param work returns false when nothing of it is to be kept.
 * @return whether the work was kept; when the tree failed, @p error tells why, otherwise it is left alone.
 */
template <typename Work>
[[nodiscard]] bool inTransaction(std::string& error, Work work) {
    if (!device::beginRequest(error)) return false;
    if (work()) return device::commitRequest(error);
    device::abandonRequest();
    return false;
}

} // namespace pendra::host

#endif
