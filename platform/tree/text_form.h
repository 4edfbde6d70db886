/**
 * @file
 * The tree as text, one node a line:
 *
 *     # a comment
 *     /sys/friendlyname = "Kitchen \"north\""   # another one
 *
 * In a text "\n", "\t", "\r", "\"" and "\\" stand for what they do in C, and "\xHH" for any byte. In a path "\xHH"
 * stands for the bytes that would end it or cannot be seen. What is written is printable ASCII; other bytes are taken
 * as they stand when read.
 */
#ifndef PENDRA_PLATFORM_TREE_TEXT_FORM_H
#define PENDRA_PLATFORM_TREE_TEXT_FORM_H

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace pendra::tree {

struct Line {
    std::string text;
    int number; ///< of the line it stands on, from 1
};

using Listing = std::map<std::string, Line, std::less<>>;

[[nodiscard]] std::string escapedPath(std::string_view path);
[[nodiscard]] std::string escapedText(std::string_view text);

/** One line of the text form, with its newline. */
[[nodiscard]] std::string formatNode(std::string_view path, std::string_view text);

/**
 * Reads a text form.
 *
 * @param error receives what is wrong and on which line.
 */
[[nodiscard]] bool parseListing(std::string_view source, Listing& listing, std::string& error);

/** What turns one listing into another: "- " lines of the first, "+ " lines of the second, by path. */
[[nodiscard]] std::string difference(const Listing& before, const Listing& after);

} // namespace pendra::tree

#endif
