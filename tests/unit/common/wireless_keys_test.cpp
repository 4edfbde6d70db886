// Wireless keys: WPA pre-shared keys and WEP keys.
#include "support/fake_device.h"

namespace {

constexpr const char* kUpperHex = "0123456789ABCDEF";

std::string hexDigits(size_t count) {
    std::string digits;
    while (digits.size() < count)
        digits += kUpperHex;
    return digits.substr(0, count);
}

// A key of hexadecimal digits with one character of another kind at every place in turn.
void expectEveryPlaceMatters(size_t count, int32_t (*isValid)(const std::string& key)) {
    ASSERT_EQ(1, isValid(hexDigits(count)));
    for (const char odd : {'a', 'f', 'G', 'g', '/', ':', '@', ' ', '\x80'}) {
        for (size_t place = 0; place < count; place++) {
            SCOPED_TRACE(std::string(1, odd) + " at " + std::to_string(place));
            std::string key = hexDigits(count);
            key[place] = odd;
            EXPECT_EQ(0, isValid(key));
        }
    }
}

TEST(WpaKey, PassPhrase_HasEightTo63CharactersOfAnyKind) {
    for (const char character : {'a', ' ', '\t', '\x80', '\xff', '<'}) {
        for (const size_t length : {8U, 9U, 62U, 63U})
            EXPECT_EQ(1, is_Valid_WpaPskKey(std::string(length, character).c_str())) << length;
        for (const size_t length : {0U, 1U, 7U, 64U, 65U, 128U, 4000U, 1048576U})
            EXPECT_EQ(0, is_Valid_WpaPskKey(std::string(length, character).c_str())) << length;
    }
}

TEST(WpaKey, SixtyFourCharacters_AreUpperCaseHexadecimalDigits) {
    EXPECT_EQ(1, is_Valid_WpaPskKey(std::string(64, '0').c_str()));
    EXPECT_EQ(1, is_Valid_WpaPskKey(std::string(64, 'F').c_str()));
    EXPECT_EQ(0, is_Valid_WpaPskKey(std::string(64, 'f').c_str()));
    expectEveryPlaceMatters(64, [](const std::string& key) { return is_Valid_WpaPskKey(key.c_str()); });
}

TEST(WpaKey, SixtyFiveDigits_AreInvalid) {
    EXPECT_EQ(0, is_Valid_WpaPskKey(hexDigits(65).c_str()));
}

TEST(WpaKey, Null_IsInvalid) {
    EXPECT_EQ(0, is_Valid_WpaPskKey(nullptr));
}

TEST(WepKey, KeysOfTheTwoSizes_AreToldByTheirLength) {
    struct Case {
        uint32_t size;
        size_t length;
        int32_t valid;
    };
    const Case cases[] = {
        {5, 0, 0},   {5, 4, 0},   {5, 5, 1},   {5, 6, 0},   {5, 9, 0},   {5, 10, 1},   {5, 11, 0},
        {5, 13, 0},  {5, 26, 0},  {13, 5, 0},  {13, 10, 0}, {13, 12, 0}, {13, 13, 1},  {13, 14, 0},
        {13, 25, 0}, {13, 26, 1}, {13, 27, 0}, {0, 0, 1},   {0, 1, 0},   {5, 4000, 0}, {13, 1048576, 0},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(std::to_string(row.length) + " digits for " + std::to_string(row.size));
        EXPECT_EQ(row.valid, is_Valid_WepKey(hexDigits(row.length).c_str(), row.size));
    }
}

TEST(WepKey, CharactersOfAnAsciiKey_AreOfAnyKind) {
    EXPECT_EQ(1, is_Valid_WepKey("abcde", 5));
    EXPECT_EQ(1, is_Valid_WepKey("<\t\x80&'", 5));
    EXPECT_EQ(1, is_Valid_WepKey("abcdefghijklm", 13));
    EXPECT_EQ(0, is_Valid_WepKey("abcdef", 5));
}

TEST(WepKey, DigitsOfAHexadecimalKey_AreUpperCase) {
    EXPECT_EQ(1, is_Valid_WepKey("0A1B2C3D4E", 5));
    EXPECT_EQ(0, is_Valid_WepKey("0a1b2c3d4e", 5));
    expectEveryPlaceMatters(10, [](const std::string& key) { return is_Valid_WepKey(key.c_str(), 5); });
    expectEveryPlaceMatters(26, [](const std::string& key) { return is_Valid_WepKey(key.c_str(), 13); });
}

// Twice 2147483653 is 10 in 32 bits.
TEST(WepKey, SizeWhoseDoubleExceeds32Bits_FitsNoKey) {
    EXPECT_EQ(0, is_Valid_WepKey("0A1B2C3D4E", 2147483653U));
    EXPECT_EQ(0, is_Valid_WepKey("", 2147483648U));
}

TEST(WepKey, Null_IsInvalid) {
    EXPECT_EQ(0, is_Valid_WepKey(nullptr, 5));
    EXPECT_EQ(0, is_Valid_WepKey(nullptr, 0));
}

} // namespace
