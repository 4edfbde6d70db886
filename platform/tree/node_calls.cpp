/**
 * @file
 * The tree as the library sees it (pendra/platform.h).
 */
#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>

#include "pendra/platform.h"
#include "platform/device_state.h"
#include "platform/tree/node_path.h"

namespace {

using pendra::device::deviceTree;
using pendra::tree::Outcome;

/** @return false when the path is longer than any node's. */
bool formatPath(std::string& path, const char* format, va_list arguments) {
    char buffer[pendra::tree::longestPath + 1];
    const int length = std::vsnprintf(buffer, sizeof buffer, format, arguments);
    if (length < 0 || static_cast<std::size_t>(length) >= sizeof buffer) return false;
    path = buffer;
    return true;
}

bool readNode(std::string& text, const char* format, va_list arguments) {
    std::string path;
    return format != nullptr && formatPath(path, format, arguments) && deviceTree().get(path, text) == Outcome::done;
}

int storeNode(std::string_view text, const char* path) {
    return path != nullptr && deviceTree().set(path, text) == Outcome::done ? 0 : -1;
}

/** Leading blanks and one sign are read over as atoi() does; a text without a number reads like an absent node. */
int asNumber(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    if (text.starts_with('+')) text.remove_prefix(1);
    long long number = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (failure == std::errc::invalid_argument) return -1;
    if (failure == std::errc::result_out_of_range)
        number = text.front() == '-' ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
    constexpr long long lowest = std::numeric_limits<int>::min();
    constexpr long long highest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(number, lowest, highest));
}

} // namespace

extern "C" {

int xget_str(char* destination, const char* pathFormat, ...) {
    std::string text;
    va_list arguments;
    va_start(arguments, pathFormat);
    const bool found = readNode(text, pathFormat, arguments);
    va_end(arguments);

    if (!destination) return -1;
    const std::size_t length = std::min(text.size(), std::size_t{XNODE_TEXT_MAX - 1});
    std::memcpy(destination, text.data(), length);
    destination[length] = '\0';
    return found ? 0 : -1;
}

int xget_int(const char* pathFormat, ...) {
    std::string text;
    va_list arguments;
    va_start(arguments, pathFormat);
    const bool found = readNode(text, pathFormat, arguments);
    va_end(arguments);
    return found ? asNumber(text) : -1;
}

int xset_str(const char* value, const char* path) {
    return value != nullptr ? storeNode(value, path) : -1;
}

int xset_int(int value, const char* path) {
    return storeNode(std::to_string(value), path);
}

int xdel(const char* path) {
    return path != nullptr && deviceTree().remove(path) == Outcome::done ? 0 : -1;
}

} // extern "C"
