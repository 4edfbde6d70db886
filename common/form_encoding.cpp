#include <cstring>
#include <initializer_list>

#include "pendra/common.h"

namespace {

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

// Not checked: browsers send proper digits, and anything else gives some byte.
int hexValue(char character) {
    if (isDigit(character)) return character - '0';
    const bool isUpper = character >= 'A' && character <= 'Z';
    return static_cast<unsigned char>(character) + (isUpper ? 'a' - 'A' : 0) - 87;
}

bool staysAsItIs(char character) {
    return isLetter(character) || isDigit(character) || character == '-' || character == '.' || character == '_';
}

// Both characters of an escape must lie before the source's end.
bool isEscape(const char* source, const char* end) {
    if (*source != '%' || (end != nullptr && end - source < 3)) return false;
    return source[1] != '\0' && source[2] != '\0';
}

// Decodes one character and moves behind it.
char decodeOne(const char*& source, const char* end) {
    if (isEscape(source, end)) {
        const int byte = hexValue(source[1]) * 16 + hexValue(source[2]);
        source += 3;
        return static_cast<char>(byte);
    }
    const char character = *source++;
    return character == '+' ? ' ' : character;
}

} // namespace

extern "C" {

char* strncpy_HtmlDecode_(char* destination, const char* source, int32_t destinationSize, int32_t sourceLength) {
    if (destination == nullptr) return nullptr;
    if (source == nullptr || destinationSize < 1) {
        *destination = '\0';
        return destination;
    }
    const char* end = sourceLength > 0 ? source + sourceLength : nullptr;
    for (char* next = destination; destinationSize > 0; destinationSize--) {
        if (source == end || *source == '\0') {
            *next = '\0';
            break;
        }
        *next++ = decodeOne(source, end); // an escaped NUL does not end the copy
    }
    return destination;
}

char* strncpy_HtmlDecode(char* destination, const char* source, int32_t destinationSize) {
    return strncpy_HtmlDecode_(destination, source, destinationSize, -1);
}

char* strncpy_HtmlEncode(char* destination, const char* source, int32_t destinationSize) {
    if (destination == nullptr) return nullptr;
    if (source == nullptr || destinationSize < 1) {
        *destination = '\0';
        return destination;
    }
    char* const end = destination + destinationSize;
    for (char* next = destination; next < end;) {
        const char character = *source++;
        *next++ = character == ' ' ? '+' : character;
        if (character == '\0') break;
        if (character == ' ' || staysAsItIs(character)) continue;
        next[-1] = '%';
        const unsigned byte = static_cast<unsigned char>(character);
        for (const unsigned digit : {byte >> 4, byte & 15}) // cut short where the capacity ends
            if (next < end) *next++ = "0123456789ABCDEF"[digit];
    }
    return destination;
}

} // extern "C"
