// The MD5 routines behind the keys.
#include <algorithm>
#include <cstdio>

#include "clients.h"

using namespace pendra::test;

namespace {

const unsigned char* bytesOf(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

// A digest of bytes that may hold NULs.
std::string digestOf(const std::string& bytes) {
    MD5_CTX context;
    MD5Init(&context);
    MD5Update(&context, bytesOf(bytes), static_cast<unsigned>(bytes.size()));
    unsigned char digest[16];
    MD5Final(digest, &context);
    char hex[33];
    return Hex2String(digest, hex, 16);
}

class Md5 : public DeviceTest {};

// The test suite of RFC 1321.
TEST_F(Md5, ReferenceTexts_HaveTheirDigests) {
    struct Case {
        const char* text;
        const char* digest;
    };
    const Case cases[] = {
        {"", "d41d8cd98f00b204e9800998ecf8427e"},
        {"a", "0cc175b9c0f1b6a831c399e269772661"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789", "d174ab98d277d9f5a5611c2c9f419d9f"},
        {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
         "57edf4a22be3c955ac49da2e2107b67a"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.text);
        EXPECT_STREQ(row.digest, MD5Encryption(row.text));
        EXPECT_EQ(row.digest, digestOf(row.text));
    }
}

TEST_F(Md5, MillionBytes_HaveTheirDigest) {
    EXPECT_STREQ("7707d6ae4e027c70eea2a935c2296f21", MD5Encryption(std::string(1000000, 'a').c_str()));
}

TEST_F(Md5, EveryByteValue_IsDigested) {
    std::string bytes;
    for (int value = 0; value < 256; value++)
        bytes += static_cast<char>(value);
    EXPECT_EQ("e2c865db4162bed963bfaa9ef6ac18f0", digestOf(bytes));
}

TEST_F(Md5, InitialContext_IsThatOfTheRfc) {
    MD5_CTX context;
    std::memset(&context, 0xEE, sizeof context);
    MD5Init(&context);
    EXPECT_EQ(0x67452301U, context.state[0]);
    EXPECT_EQ(0xefcdab89U, context.state[1]);
    EXPECT_EQ(0x98badcfeU, context.state[2]);
    EXPECT_EQ(0x10325476U, context.state[3]);
    EXPECT_EQ(0U, context.count[0]);
    EXPECT_EQ(0U, context.count[1]);
}

TEST_F(Md5, Update_CountsBitsAndKeepsTheRest) {
    MD5_CTX context;
    MD5Init(&context);
    MD5Update(&context, bytesOf("abc"), 3);
    EXPECT_EQ(24U, context.count[0]);
    EXPECT_EQ(0U, context.count[1]);
    EXPECT_EQ(0, std::memcmp("abc", context.buffer, 3));
    MD5Update(&context, nullptr, 0);
    EXPECT_EQ(24U, context.count[0]);
    EXPECT_EQ(0x67452301U, context.state[0]);
}

TEST_F(Md5, BitCountBeyond32Bits_IsCarriedIntoTheSecondWord) {
    MD5_CTX context;
    MD5Init(&context);
    context.count[0] = 0xFFFFFFF0;
    MD5Update(&context, bytesOf("a"), 1);
    EXPECT_EQ(0xFFFFFFF8U, context.count[0]);
    EXPECT_EQ(0U, context.count[1]);
    MD5Update(&context, bytesOf("bcd"), 3);
    EXPECT_EQ(0x10U, context.count[0]);
    EXPECT_EQ(1U, context.count[1]);
    EXPECT_EQ(0, std::memcmp("cd", context.buffer, 2));
}

TEST_F(Md5, FinishedContext_IsCleared) {
    MD5_CTX context;
    MD5Init(&context);
    MD5Update(&context, bytesOf("password"), 8);
    unsigned char digest[16];
    MD5Final(digest, &context);
    const auto* bytes = reinterpret_cast<const unsigned char*>(&context);
    EXPECT_TRUE(std::all_of(bytes, bytes + sizeof context, [](unsigned char byte) { return byte == 0; }));
}

// One padded block is the whole digest of "abc", whose length is 24 bits.
TEST_F(Md5, Transform_IsTheBasicStep) {
    uint32_t state[4] = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
    unsigned char block[64] = {'a', 'b', 'c', 0x80};
    block[56] = 24;
    MD5Transform(state, block);
    unsigned char digest[16];
    Encode(digest, state, 16);
    char hex[33];
    EXPECT_STREQ("900150983cd24fb0d6963f7d28e17f72", Hex2String(digest, hex, 16));
}

TEST_F(Md5, Words_AreLittleEndianBytes) {
    const uint32_t words[] = {0x04030201, 0xFFFEFDFC, 0x80000000};
    const unsigned char expected[] = {1, 2, 3, 4, 0xFC, 0xFD, 0xFE, 0xFF, 0, 0, 0, 0x80};
    unsigned char bytes[12] = {};
    Encode(bytes, words, sizeof bytes);
    EXPECT_EQ(0, std::memcmp(expected, bytes, sizeof bytes));
    uint32_t decoded[3] = {};
    Decode(decoded, expected, sizeof expected);
    EXPECT_EQ(0, std::memcmp(words, decoded, sizeof words));
}

TEST_F(Md5, LengthOfWords_LimitsTheConversion) {
    const uint32_t words[] = {0x04030201, 0x08070605};
    unsigned char bytes[8] = {};
    Encode(bytes, words, 4);
    EXPECT_EQ(4, bytes[3]);
    EXPECT_EQ(0, bytes[4]);
    Encode(bytes, words, 0);
    uint32_t decoded[2] = {0, 99};
    Decode(decoded, bytes, 4);
    EXPECT_EQ(0x04030201U, decoded[0]);
    EXPECT_EQ(99U, decoded[1]);
}

TEST_F(Md5, DigestOfAText_DoesNotUseTheLength) {
    for (const unsigned length : {0U, 1U, 3U, 1000000U}) {
        unsigned char digest[16];
        MD5Digest("abc", length, digest);
        char hex[33];
        EXPECT_STREQ("900150983cd24fb0d6963f7d28e17f72", Hex2String(digest, hex, 16));
    }
}

TEST_F(Md5, HexDigest_StandsInTheSharedBuffer) {
    EXPECT_EQ(80U, sizeof string);
    EXPECT_EQ(string, MD5Encryption("abc"));
    EXPECT_STREQ("900150983cd24fb0d6963f7d28e17f72", string);
    EXPECT_EQ(string, MD5Encryption("a"));
    EXPECT_STREQ("0cc175b9c0f1b6a831c399e269772661", string);
}

TEST_F(Md5, HexDigestOfTheSharedBuffer_IsThatOfItsText) {
    const std::string first = MD5Encryption("abc");
    const std::string expected = digestOf(first);
    EXPECT_EQ(expected, MD5Encryption(string));
}

TEST_F(Md5, NullText_GivesNull) {
    MD5Encryption("abc");
    EXPECT_EQ(nullptr, MD5Encryption(nullptr));
    EXPECT_STREQ("900150983cd24fb0d6963f7d28e17f72", string);
}

TEST_F(Md5, DigestAndHexRoutines_DoNotTrace) {
    daemon_log_level = 7;
    MD5Encryption("abc");
    digestOf("abc");
    EXPECT_EQ("", logText());
    EXPECT_TRUE(device().consoleCalls.empty());
}

class HexText : public DeviceTest {
  protected:
    // The output of a count of bytes, which has 33 bytes and no more.
    static std::string hexOf(int32_t count) {
        unsigned char bytes[64];
        for (unsigned i = 0; i < sizeof bytes; i++)
            bytes[i] = static_cast<unsigned char>(i * 17 + 10);
        std::string output(40, '#');
        EXPECT_EQ(output.data(), Hex2String(bytes, output.data(), count));
        EXPECT_EQ("#######", output.substr(33));
        return output.c_str();
    }
};

TEST_F(HexText, Count_GivesTwoDigitsAByteUpTo32) {
    const std::string whole = "0a1b2c3d4e5f708192a3b4c5d6e7f809";
    for (const int32_t count : {0, 1, 2, 15, 16, 17, 64, 127, 128, 129, 1000, 2147483647}) {
        SCOPED_TRACE(count);
        EXPECT_EQ(whole.substr(0, 2 * static_cast<size_t>(std::min(count, 16))), hexOf(count));
    }
}

TEST_F(HexText, NegativeCount_GivesAnEmptyText) {
    EXPECT_EQ("", hexOf(-1));
    EXPECT_EQ("", hexOf(-2147483647));
}

TEST_F(HexText, Digits_AreLowerCaseHighNibbleFirst) {
    for (int value = 0; value < 256; value++) {
        const auto byte = static_cast<unsigned char>(value);
        char expected[3];
        std::snprintf(expected, sizeof expected, "%02x", static_cast<unsigned>(value));
        char hex[33];
        EXPECT_STREQ(expected, Hex2String(&byte, hex, 1));
    }
}

TEST_F(HexText, OutputInPlaceOfTheBytes_IsTheSameText) {
    unsigned char buffer[33] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xab, 0xcd, 0xef};
    EXPECT_STREQ("0123456789abcdef0000000000000000", Hex2String(buffer, reinterpret_cast<char*>(buffer), 16));
}

TEST_F(HexText, NullArguments_GiveNull) {
    const unsigned char byte = 1;
    char hex[33] = "kept";
    EXPECT_EQ(nullptr, Hex2String(nullptr, hex, 1));
    EXPECT_EQ(nullptr, Hex2String(&byte, nullptr, 1));
    EXPECT_STREQ("kept", hex);
}

} // namespace
