// Copying and formatting into fixed text fields that know their own capacity: every result is NUL-terminated and cut at
// capacity - 1 bytes, never more.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstring>

namespace pendra {

// Copies a text into a buffer of `capacity` bytes; a null source counts as empty.
inline void copyTextBounded(char* destination, size_t capacity, const char* source) {
    const size_t length = source == nullptr ? 0 : strnlen(source, capacity - 1);
    if (length > 0) std::memmove(destination, source, length);
    destination[length] = '\0';
}

template <size_t Capacity>
void copyText(char (&field)[Capacity], const char* source) {
    copyTextBounded(field, Capacity, source);
}

template <size_t Capacity>
[[gnu::format(printf, 2, 3)]] void formatText(char (&field)[Capacity], const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(field, Capacity, format, arguments);
    va_end(arguments);
}

// Formats behind the text that the field holds already.
template <size_t Capacity>
[[gnu::format(printf, 2, 3)]] void appendText(char (&field)[Capacity], const char* format, ...) {
    const size_t used = strnlen(field, Capacity - 1);
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(field + used, Capacity - used, format, arguments);
    va_end(arguments);
}

inline bool isEmpty(const char* text) {
    return text == nullptr || *text == '\0';
}

} // namespace pendra
