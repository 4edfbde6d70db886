// Firmware images put together byte by byte, with a CRC computed the slow way.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace pendra::test {

constexpr size_t kImageHeaderSize = 64;

// Bit by bit, as CRC-32 is defined.
inline uint32_t referenceCrc(std::string_view data) {
    uint32_t crc = 0xFFFFFFFF;
    for (const char byte : data) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; bit++)
            crc = (crc & 1) != 0 ? crc >> 1 ^ 0xEDB88320 : crc >> 1;
    }
    return ~crc;
}

inline void putNumber(std::string& header, size_t offset, uint32_t number) {
    for (size_t byte = 0; byte < 4; byte++)
        header[offset + byte] = static_cast<char>(number >> (24 - 8 * byte) & 0xFF);
}

// Makes the header's own CRC right.
inline void sealHeader(std::string& image) {
    putNumber(image, 4, 0);
    putNumber(image, 4, referenceCrc(std::string_view(image).substr(0, kImageHeaderSize)));
}

// A valid image: its fields that are not checked hold what a real one would.
inline std::string makeImage(const std::string& data) {
    std::string image(kImageHeaderSize, '\0');
    putNumber(image, 0, 0x27051956);
    putNumber(image, 8, 1700000000);
    putNumber(image, 12, static_cast<uint32_t>(data.size()));
    putNumber(image, 16, 0x80020000);
    putNumber(image, 20, 0x80020400);
    putNumber(image, 24, referenceCrc(data));
    image.replace(28, 4, "\x05\x05\x02\x03");
    image.replace(32, 12, "PX-100 2.0.1");
    sealHeader(image);
    return image + data;
}

// Bytes that do not repeat soon.
inline std::string imageData(size_t size) {
    std::string data(size, '\0');
    uint32_t state = 12345;
    for (char& byte : data) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<char>(state >> 24);
    }
    return data;
}

} // namespace pendra::test
