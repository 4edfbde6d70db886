/**
 * @file
 * The grammar of node paths and the order they are kept in.
 *
 * Nodes are kept in byte order of their paths. Below a node lie the paths that continue it with a slash, so a subtree
 * is the node and one run of neighbours.
 */
#ifndef PENDRA_PLATFORM_TREE_NODE_PATH_H
#define PENDRA_PLATFORM_TREE_NODE_PATH_H

#include <cstddef>
#include <string>
#include <string_view>

namespace pendra::tree {

inline constexpr std::size_t longestPath = 255;
inline constexpr std::size_t longestText = 1023;

/** "/a/b:1/c": a leading slash, no empty component, no NUL, at most longestPath bytes. */
[[nodiscard]] bool isPath(std::string_view path);

/** A count path ("/a/name#") is read like a node, but computed and never stored. */
[[nodiscard]] bool isCountPath(std::string_view path);

/** The list's elements all begin so: "/a/name:" for "/a/name#". */
[[nodiscard]] std::string elementPrefix(std::string_view countPath);

/** What everything below a node begins with; "/" for the root, which is "/" or "". */
[[nodiscard]] std::string childPrefix(std::string_view path);

/** The part of @p path up to the end of the component that @p offset lies in. */
[[nodiscard]] std::string_view throughComponent(std::string_view path, std::size_t offset);

/** The first key that is behind a node's whole subtree and may belong to another element ("name:1" to "name:10"). */
[[nodiscard]] std::string behindSubtree(std::string_view path);

/** The N of "name:N" in its plain decimal form, from 1 on. */
[[nodiscard]] bool isElementNumber(std::string_view text);

} // namespace pendra::tree

#endif
