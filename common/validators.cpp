#include <cstdlib>
#include <cstring>

#include "common/number.h"
#include "pendra/common.h"

namespace {

constexpr int kParts = 4;

struct DottedText {
    bool complete = false; // four numbers were there
    int32_t part[kParts] = {};
};

// One number the way "%d" reads it. A number beyond an int becomes INT_MIN or INT_MAX: out of every range.
bool readNumber(const char*& text, int32_t& number) {
    char* end = nullptr;
    const long value = std::strtol(text, &end, 10);
    if (end == text) return false;
    number = pendra::clampToInt(value);
    text = end;
    return true;
}

// What follows the fourth number is not looked at.
DottedText readDotted(const char* text) {
    DottedText dotted;
    if (text == nullptr) return dotted;
    for (int i = 0; i < kParts; i++) {
        if (i > 0 && *text++ != '.') return dotted;
        if (!readNumber(text, dotted.part[i])) return dotted;
    }
    dotted.complete = true;
    return dotted;
}

bool isByte(int32_t number) {
    return is_in_range(number, 0, 255) == 1;
}

// An address ending in 0 is refused, one ending in 255 accepted. The asymmetry is the interface: clients rely on
// either.
bool isHostAddress(const DottedText& address) {
    const auto& part = address.part;
    return address.complete && is_in_range(part[0], 1, 223) == 1 && part[0] != 127 && isByte(part[1]) &&
           isByte(part[2]) && is_in_range(part[3], 1, 255) == 1;
}

bool isNetmask(const DottedText& mask) {
    if (!mask.complete) return false;
    uint32_t bits = 0;
    for (const int32_t part : mask.part) {
        if (!isByte(part)) return false;
        bits = bits << 8 | static_cast<uint32_t>(part);
    }
    const uint32_t hostBits = ~bits;
    return (hostBits & (hostBits + 1)) == 0; // ones, then zeros; all ones and all zeros included
}

// Lower-case digits make a key of this form invalid, and must: what is stored is handed on as it stands.
bool isUpperHex(const char* text) {
    return text[std::strspn(text, "0123456789ABCDEF")] == '\0';
}

} // namespace

extern "C" {

int32_t is_in_range(int32_t value, int32_t low, int32_t high) {
    return low <= value && value <= high ? 1 : 0;
}

int32_t is_Valid_IP(const char* text) {
    return isHostAddress(readDotted(text)) ? 1 : 0;
}

int32_t is_Valid_Netmask(const char* text) {
    return isNetmask(readDotted(text)) ? 1 : 0;
}

int32_t is_Valid_IP_CheckMask(const char* mask, const char* address1, const char* address2) {
    const DottedText maskParts = readDotted(mask);
    const DottedText first = readDotted(address1);
    const DottedText second = readDotted(address2);
    if (!isHostAddress(first) || !isHostAddress(second) || !isNetmask(maskParts)) return 0;
    for (int i = 0; i < kParts; i++)
        if (((first.part[i] ^ second.part[i]) & maskParts.part[i]) != 0) return 0;
    return 1;
}

int32_t is_Valid_WpaPskKey(const char* text) {
    if (text == nullptr) return 0;
    const size_t length = std::strlen(text);
    if (length >= 8 && length <= 63) return 1;
    return length == 64 && isUpperHex(text) ? 1 : 0;
}

int32_t is_Valid_WepKey(const char* text, uint32_t length) {
    if (text == nullptr) return 0;
    const size_t given = std::strlen(text);
    if (given == length) return 1;
    return given == uint64_t{2} * length && isUpperHex(text) ? 1 : 0;
}

} // extern "C"
