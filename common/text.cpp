#include <strings.h>

#include <cstring>

#include "common/bounded_text.h"
#include "common/keywords.h"
#include "common/tree_access.h"
#include "pendra/common.h"

using namespace pendra;

namespace {

// Carriage return and line feed are kept.
constexpr const char* kBlanks = " \t";

bool isInSet(char character, const char* set) {
    return character != '\0' && std::strchr(set, character) != nullptr;
}

// A table's closing row looks empty on purpose; its second byte tells it from a real empty row.
bool isSentinel(const char* row) {
    return row[0] == '\0' && row[1] == '_';
}

} // namespace

extern "C" {

char* strip_chars(char* text, const char* set) {
    if (text == nullptr || set == nullptr) return nullptr;
    char* start = text;
    while (isInSet(*start, set))
        start++;
    char* end = start + std::strlen(start);
    while (end > start + 1 && isInSet(end[-1], set))
        *--end = '\0';
    return start;
}

char* trim(char* text) {
    if (text == nullptr) return nullptr;
    const char* start = strip_chars(text, kBlanks);
    std::memmove(text, start, std::strlen(start) + 1);
    return text;
}

char* trimTo(char* destination, const char* source) {
    if (destination == nullptr || source == nullptr) return nullptr;
    std::memmove(destination, source, std::strlen(source) + 1);
    return trim(destination);
}

char* strstri(const char* text, const char* pattern) {
    if (text == nullptr || isEmpty(pattern)) return nullptr;
    const size_t length = std::strlen(pattern);
    for (; *text != '\0'; text++)
        if (strncasecmp(text, pattern, length) == 0) return const_cast<char*>(text);
    return nullptr;
}

int32_t SearchKeyArray(char* text, const char* const* table) {
    if (text == nullptr || table == nullptr) return -1;
    for (int32_t row = 0; !isSentinel(table[row]); row++) {
        if (strcasecmp(text, table[row]) != 0) continue;
        std::memcpy(text, table[row], std::strlen(table[row])); // same length, the row's own spelling
        return row;
    }
    return -1;
}

char* getXNode_(char* destination, const char* path, const char* defaultText, int32_t encode) {
    if (destination == nullptr || path == nullptr) return nullptr;
    char text[kKeywordTextSize];
    readNode(text, path);
    if (isEmpty(text) && defaultText != nullptr) {
        copyText(text, defaultText);
        xset_str(text, path); // reading a node with a default also creates it
    }
    changeZepKeywordsBounded(text, sizeof text);
    if (encode == 0) {
        std::memcpy(destination, text, std::strlen(text) + 1);
        return destination;
    }
    strncpy_XmlEncode(destination, text, kKeywordTextSize - 1);
    destination[kKeywordTextSize - 1] = '\0';
    return destination;
}

char* getXNode(char* destination, const char* path, const char* defaultText) {
    return getXNode_(destination, path, defaultText, 0);
}

} // extern "C"
