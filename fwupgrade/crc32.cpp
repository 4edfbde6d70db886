#include <array>

#include "pendra/fwupgrade.h"

namespace {

constexpr uint32_t kPolynomial = 0xEDB88320;

constexpr std::array<uint32_t, 256> makeTable() {
    std::array<uint32_t, 256> table = {};
    for (uint32_t byte = 0; byte < table.size(); byte++) {
        uint32_t value = byte;
        for (int bit = 0; bit < 8; bit++)
            value = (value & 1) != 0 ? value >> 1 ^ kPolynomial : value >> 1;
        table[byte] = value;
    }
    return table;
}

constexpr std::array<uint32_t, 256> kTable = makeTable();

inline uint32_t step(uint32_t crc, unsigned char byte) {
    return kTable[(crc ^ byte) & 0xFF] ^ crc >> 8;
}

} // namespace

extern "C" uint32_t crc32(uint32_t initial, const unsigned char* data, uint32_t length) {
    if (data == nullptr) return initial;
    constexpr uint32_t kUnrolled = 8;
    uint32_t crc = ~initial;
    for (; length >= kUnrolled; length -= kUnrolled)
        for (uint32_t index = 0; index < kUnrolled; index++)
            crc = step(crc, *data++);
    for (; length > 0; length--)
        crc = step(crc, *data++);
    return ~crc;
}
