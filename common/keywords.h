// Keyword substitution within the capacity of the buffer at hand.
#pragma once

#include <cstddef>

namespace pendra {

constexpr size_t kKeywordTextSize = 256; // work text of the device keywords

// strChgKeyword() cut to `capacity` bytes, NUL included.
char* changeKeywordBounded(char* destination, size_t capacity, const char* source, const char* keyword,
                           const char* replacement);

// strChgZepKeywords() on a buffer of `capacity` bytes.
char* changeZepKeywordsBounded(char* text, size_t capacity);

} // namespace pendra
