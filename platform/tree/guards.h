/**
 * @file
 * Guards on the nodes whose text later stands in a shell command.
 *
 * The library puts these texts into its commands as they are, some inside double quotes and some bare. So the tree
 * takes only texts there that can neither leave their quotes nor split the command.
 */
#ifndef PENDRA_PLATFORM_TREE_GUARDS_H
#define PENDRA_PLATFORM_TREE_GUARDS_H

#include <string_view>

namespace pendra::tree {

/**
 * @return null when the node may hold the text, else what it takes, for a message. An empty text, which unsets a node,
 *         is always taken.
 */
[[nodiscard]] const char* guardAgainst(std::string_view path, std::string_view text);

} // namespace pendra::tree

#endif
