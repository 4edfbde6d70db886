#include "pendra/common.h"

namespace {

int32_t difference(char first, char second) {
    return static_cast<signed char>(first) - static_cast<signed char>(second);
}

} // namespace

extern "C" {

int32_t strnWildcardCmp(const char* text, const char* pattern, int32_t n) {
    if (text == nullptr) text = "";
    if (pattern == nullptr) pattern = "";
    for (; *text != '\0' || *pattern != '\0'; text++, pattern++, n--) {
        if (n < 1 || *pattern == '*') return 0;
        // A "?" matches any one character, and at the text's end there is none.
        const bool matches = *pattern == '?' ? *text != '\0' : *text == *pattern;
        if (!matches) return difference(*text, *pattern);
    }
    return 0;
}

int32_t strWildcardCmp(const char* text, const char* pattern) {
    return strnWildcardCmp(text, pattern, 32767);
}

} // extern "C"
