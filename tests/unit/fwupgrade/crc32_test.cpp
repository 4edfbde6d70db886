// CRC-32 of byte stretches.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "image.h"
#include "pendra/fwupgrade.h"

using pendra::test::imageData;
using pendra::test::referenceCrc;

namespace {

uint32_t crcOf(const std::string& data, uint32_t initial = 0) {
    const std::vector<unsigned char> bytes(data.begin(), data.end()); // nothing stands behind the last byte
    return crc32(initial, bytes.data(), static_cast<uint32_t>(bytes.size()));
}

TEST(Crc32, KnownTexts_GiveTheirKnownValues) {
    std::string rising;
    for (char byte = 0; byte < 32; byte++)
        rising += byte;
    const struct {
        std::string data;
        uint32_t crc;
    } rows[] = {
        {"", 0x00000000},
        {"a", 0xE8B7BE43},
        {"abc", 0x352441C2},
        {"123456789", 0xCBF43926},
        {"The quick brown fox jumps over the lazy dog", 0x414FA339},
        {std::string(32, '\0'), 0x190A55AD},
        {std::string(32, '\xFF'), 0xFF6CAB0B},
        {rising, 0x91267E8A},
    };
    for (const auto& [data, crc] : rows)
        EXPECT_EQ(crc, crcOf(data)) << data;
}

TEST(Crc32, EveryByte_UsesItsTableEntry) {
    for (int value = 0; value < 256; value++) {
        const std::string byte(1, static_cast<char>(value));
        EXPECT_EQ(referenceCrc(byte), crcOf(byte)) << value;
    }
}

// Eight bytes go through each round; what is left over goes through one by one.
TEST(Crc32, EveryLengthAroundTheRounds_GivesTheCrcOfExactlyThoseBytes) {
    const std::string data = imageData(66);
    for (size_t length = 0; length <= data.size(); length++)
        EXPECT_EQ(referenceCrc(data.substr(0, length)), crcOf(data.substr(0, length))) << length;
}

TEST(Crc32, EveryAlignment_GivesTheSame) {
    const std::string data = imageData(41);
    for (size_t shift = 0; shift < 9; shift++) {
        const std::string shifted = std::string(shift, 'x') + data;
        const auto* bytes = reinterpret_cast<const unsigned char*>(shifted.data());
        EXPECT_EQ(referenceCrc(data), crc32(0, bytes + shift, static_cast<uint32_t>(data.size()))) << shift;
    }
}

TEST(Crc32, ResultOfTheDataBefore_Continues) {
    const std::string data = imageData(40);
    const uint32_t whole = referenceCrc(data);
    for (size_t split = 0; split <= data.size(); split++)
        EXPECT_EQ(whole, crcOf(data.substr(split), crcOf(data.substr(0, split)))) << split;
}

TEST(Crc32, ByteByByte_GivesTheCrcOfTheWhole) {
    const std::string data = imageData(100);
    uint32_t crc = 0;
    for (const char byte : data)
        crc = crcOf(std::string(1, byte), crc);
    EXPECT_EQ(referenceCrc(data), crc);
}

TEST(Crc32, NoData_GivesTheInitialValue) {
    const unsigned char byte = 'x';
    for (const uint32_t initial : {0U, 1U, 0xCBF43926U, 0xFFFFFFFFU}) {
        EXPECT_EQ(initial, crc32(initial, &byte, 0));
        EXPECT_EQ(initial, crc32(initial, nullptr, 0));
        EXPECT_EQ(initial, crc32(initial, nullptr, 8));
    }
}

} // namespace
