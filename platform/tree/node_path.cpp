#include "platform/tree/node_path.h"

#include <algorithm>

namespace pendra::tree {

bool isPath(std::string_view path) {
    if (path.size() < 2 || path.size() > longestPath || path.front() != '/' || path.back() == '/') return false;
    return path.find("//") == std::string_view::npos && path.find('\0') == std::string_view::npos;
}

bool isCountPath(std::string_view path) {
    return isPath(path) && path.back() == '#';
}

std::string elementPrefix(std::string_view countPath) {
    std::string prefix(countPath);
    prefix.back() = ':';
    return prefix;
}

std::string childPrefix(std::string_view path) {
    std::string prefix(path);
    if (prefix.empty() || prefix.back() != '/') prefix += '/';
    return prefix;
}

std::string_view throughComponent(std::string_view path, std::size_t offset) {
    return path.substr(0, path.find('/', offset));
}

std::string behindSubtree(std::string_view path) {
    std::string key(path);
    static_assert('0' == '/' + 1);
    key += '0'; // the byte behind the slash, and the smallest digit that can continue an element's number
    return key;
}

bool isElementNumber(std::string_view text) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    return !text.empty() && text.front() != '0' && std::all_of(text.begin(), text.end(), isDigit);
}

} // namespace pendra::tree
