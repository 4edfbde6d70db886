// The escaping of form values.
#include <cstdio>
#include <memory>
#include <string>
#include <tuple>
#include <utility>

#include "guarded_buffer.h"
#include "support/fake_device.h"

using pendra::test::DeviceTest;
using pendra::test::GuardedBuffer;

namespace {

// What lies in the buffer up to a NUL, which must be there.
std::string terminated(const GuardedBuffer& buffer, size_t capacity) {
    const std::string text = buffer.text();
    EXPECT_LT(text.size(), capacity) << "not terminated";
    EXPECT_TRUE(buffer.intact());
    return text;
}

std::string decode(const std::string& source, int32_t length = -1) {
    const size_t capacity = source.size() + 1;
    GuardedBuffer buffer(capacity);
    EXPECT_EQ(buffer.data(),
              strncpy_HtmlDecode_(buffer.data(), source.c_str(), static_cast<int32_t>(capacity), length));
    return terminated(buffer, capacity);
}

std::string encode(const std::string& source) {
    const size_t capacity = 3 * source.size() + 1;
    GuardedBuffer buffer(capacity);
    EXPECT_EQ(buffer.data(), strncpy_HtmlEncode(buffer.data(), source.c_str(), static_cast<int32_t>(capacity)));
    return terminated(buffer, capacity);
}

// The bytes that a call leaves in a buffer that is all guard bytes before.
std::string filled(GuardedBuffer& buffer, size_t count) {
    EXPECT_TRUE(buffer.untouchedFrom(count));
    return {buffer.data(), count};
}

class FormDecoding : public DeviceTest {};

TEST_F(FormDecoding, Text_IsDecoded) {
    const std::pair<const char*, const char*> cases[] = {
        {"", ""},
        {"abc", "abc"},
        {"a%41+b", "aA b"},
        {"+", " "},
        {"++", "  "},
        {"%2B", "+"},
        {"%2b", "+"},
        {"%25", "%"},
        {"%2541", "%41"},
        {"a%3Db%26c", "a=b&c"},
        {"100%", "100%"},
        {"%", "%"},
        {"%4", "%4"},
        {"%+", "% "},
        {"a%4", "a%4"},
        {"x%2Fy+z", "x/y z"},
        {"%c3%BC", "\xc3\xbc"},
        {"%41%42%43", "ABC"},
        {"&lt;", "&lt;"},
    };
    for (const auto& [source, expected] : cases) {
        SCOPED_TRACE(source);
        EXPECT_EQ(expected, decode(source));
        GuardedBuffer buffer(32);
        EXPECT_EQ(buffer.data(), strncpy_HtmlDecode(buffer.data(), source, 32));
        EXPECT_EQ(expected, buffer.text());
    }
}

TEST_F(FormDecoding, EveryByteAsAnEscape_IsDecodedInBothCases) {
    for (const char* format : {"<%%%02x>", "<%%%02X>"})
        for (int byte = 1; byte < 256; byte++) {
            char source[16];
            snprintf(source, sizeof source, format, static_cast<unsigned>(byte));
            const char expected[] = {'<', static_cast<char>(byte), '>', '\0'};
            EXPECT_EQ(expected, decode(source)) << byte;
        }
}

TEST_F(FormDecoding, EveryByteItself_IsCopied) {
    for (int byte = 1; byte < 256; byte++) {
        if (byte == '+') continue;
        const char source[] = {'<', static_cast<char>(byte), '>', '\0'};
        EXPECT_EQ(source, decode(source)) << byte; // "%" too: only one character follows it
    }
}

// Unchecked on purpose: any character has a value, its lower-case code minus 87.
TEST_F(FormDecoding, OddDigits_GiveHighTimes16PlusLow) {
    const std::pair<const char*, int> cases[] = {
        {"%zz", 35 * 16 + 35},
        {"%Zz", 35 * 16 + 35},
        {"%g1", 16 * 16 + 1},
        {"%1G", 16 + 16},
        {"%[[", 4 * 16 + 4},
        {"%``", 9 * 16 + 9},
        {"%{0", 36 * 16},
        {"%@0", 256 - 23 * 16 + 256},
        {"% 1", -55 * 16 + 1 + 1024},
        {"%-1", -42 * 16 + 1 + 768},
        {"%+1", -44 * 16 + 1 + 768},
        {"%/:", -40 * 16 - 29 + 1024},
        {"%%4", -50 * 16 + 4 + 1024},
        {"%\xe9\x31", 146 * 16 + 1},
        {"%1\xff", 16 + 168},
    };
    for (const auto& [source, value] : cases) {
        SCOPED_TRACE(source);
        const char expected[] = {static_cast<char>(static_cast<unsigned char>(value % 256)), 'x', '\0'};
        EXPECT_EQ(expected, decode(source + std::string("x")));
    }
}

TEST_F(FormDecoding, EscapedNul_DoesNotEndTheCopy) {
    for (const char* source : {"a%00b", "a%g0b"}) {
        GuardedBuffer buffer(8);
        strncpy_HtmlDecode(buffer.data(), source, 8);
        EXPECT_EQ(std::string("a\0b\0", 4), filled(buffer, 4)) << source;
    }
}

TEST_F(FormDecoding, Capacity_BoundsTheCopyLikeStrncpy) {
    for (const char* source : {"abc", "%61%62%63", "a%62c"}) {
        SCOPED_TRACE(source);
        const std::string expected[] = {"a", "ab", "abc", std::string("abc\0", 4), std::string("abc\0", 4)};
        for (int32_t capacity = 1; capacity <= 5; capacity++) {
            GuardedBuffer buffer(static_cast<size_t>(capacity));
            strncpy_HtmlDecode(buffer.data(), source, capacity);
            const std::string& bytes = expected[capacity - 1];
            EXPECT_EQ(bytes, filled(buffer, bytes.size())) << capacity;
        }
    }
}

TEST_F(FormDecoding, SourceLength_EndsTheCopyWithATerminator) {
    EXPECT_EQ("abc", decode("abcdef", 3));
    EXPECT_EQ("a", decode("abcdef", 1));
    EXPECT_EQ("abcdef", decode("abcdef", 6));
    EXPECT_EQ("abcdef", decode("abcdef", 100)); // the NUL comes first
    for (const int32_t none : {0, -1, INT32_MIN})
        EXPECT_EQ("abcdef", decode("abcdef", none)) << none;
}

TEST_F(FormDecoding, EscapeAcrossTheSourcesEnd_StaysAsItIs) {
    EXPECT_EQ("a%", decode("a%41b", 2));
    EXPECT_EQ("a%4", decode("a%41b", 3));
    EXPECT_EQ("aA", decode("a%41b", 4));
    EXPECT_EQ("aAb", decode("a%41b", 5));
}

TEST_F(FormDecoding, SourceWithoutNul_IsReadToItsLengthOnly) {
    for (const std::string text : {"abc", "ab%", "a%4", "%41"}) {
        const std::unique_ptr<char[]> source(new char[3]);
        text.copy(source.get(), 3);
        GuardedBuffer buffer(4);
        strncpy_HtmlDecode_(buffer.data(), source.get(), 4, 3);
        EXPECT_EQ(text == "%41" ? "A" : text, terminated(buffer, 4));
    }
}

// The terminator of a source that ends where the capacity does would stand behind the destination.
TEST_F(FormDecoding, SourceAndCapacityEndTogether_LeaveNoTerminator) {
    for (int32_t capacity = 2; capacity <= 4; capacity++) {
        GuardedBuffer buffer(static_cast<size_t>(capacity));
        strncpy_HtmlDecode_(buffer.data(), "abcdef", capacity, 3);
        const std::string expected = std::string("abc\0", 4).substr(0, static_cast<size_t>(capacity));
        EXPECT_EQ(expected, filled(buffer, expected.size())) << capacity;
    }
}

TEST_F(FormDecoding, MissingArguments_GiveNullOrAnEmptyText) {
    EXPECT_EQ(nullptr, strncpy_HtmlDecode_(nullptr, "abc", 4, 3));
    EXPECT_EQ(nullptr, strncpy_HtmlDecode(nullptr, nullptr, 0));
    const std::tuple<const char*, int32_t> cases[] = {{nullptr, 4}, {"abc", 0}, {"abc", -1}, {"abc", INT32_MIN}};
    for (const auto& [source, capacity] : cases) {
        GuardedBuffer buffer(1), other(1);
        EXPECT_EQ(buffer.data(), strncpy_HtmlDecode_(buffer.data(), source, capacity, 3));
        EXPECT_EQ(other.data(), strncpy_HtmlDecode(other.data(), source, capacity));
        EXPECT_EQ("", terminated(buffer, 1));
        EXPECT_EQ("", terminated(other, 1));
    }
}

TEST_F(FormDecoding, OneMebibyte_IsDecoded) {
    std::string source;
    while (source.size() < (1U << 20))
        source += "a+%41";
    const std::string decoded = decode(source);
    EXPECT_EQ(source.size() / 5 * 3, decoded.size());
    EXPECT_EQ("a Aa A", decoded.substr(decoded.size() - 6));
}

class FormEncoding : public DeviceTest {};

TEST_F(FormEncoding, Text_IsEncoded) {
    const std::pair<const char*, const char*> cases[] = {
        {"", ""},        {"a b&c", "a+b%26c"}, {"x_y-1.2", "x_y-1.2"}, {"/", "%2F"},    {" ", "+"},
        {"+", "%2B"},    {"%", "%25"},         {"a=b", "a%3Db"},       {"~", "%7E"},    {"\r\n\t", "%0D%0A%09"},
        {"\x80", "%80"}, {"\xff", "%FF"},      {"\xc3\xbc", "%C3%BC"}, {"\x01", "%01"},
    };
    for (const auto& [source, expected] : cases)
        EXPECT_EQ(expected, encode(source));
}

TEST_F(FormEncoding, EveryByte_StaysOnlyWhenPlain) {
    const std::string plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._";
    for (int byte = 1; byte < 256; byte++) {
        const std::string source(1, static_cast<char>(byte));
        char escape[8];
        snprintf(escape, sizeof escape, "%%%02X", static_cast<unsigned>(byte));
        const bool stays = plain.find(source) != std::string::npos;
        EXPECT_EQ(byte == ' ' ? "+" : stays ? source : escape, encode(source)) << byte;
    }
}

TEST_F(FormEncoding, EveryByte_SurvivesARoundTrip) {
    std::string text;
    for (int byte = 1; byte < 256; byte++)
        text += static_cast<char>(byte);
    EXPECT_EQ(text, decode(encode(text)));
}

TEST_F(FormEncoding, Capacity_CutsTheOutput) {
    const std::pair<const char*, std::string> cases[] = {
        {"&", std::string("%26\0", 4)},     {"abc", std::string("abc\0", 4)}, {"a b", std::string("a+b\0", 4)},
        {"a&b", std::string("a%26b\0", 6)}, {"", std::string("\0", 1)},       {"\xff", std::string("%FF\0", 4)},
        {"&&", std::string("%26%26\0", 7)},
    };
    for (const auto& [source, whole] : cases)
        for (size_t capacity = 1; capacity <= whole.size() + 1; capacity++) {
            SCOPED_TRACE(source + (" in " + std::to_string(capacity)));
            GuardedBuffer buffer(capacity);
            EXPECT_EQ(buffer.data(), strncpy_HtmlEncode(buffer.data(), source, static_cast<int32_t>(capacity)));
            const std::string expected = whole.substr(0, capacity);
            EXPECT_EQ(expected, filled(buffer, expected.size()));
        }
}

TEST_F(FormEncoding, MissingArguments_GiveNullOrAnEmptyText) {
    EXPECT_EQ(nullptr, strncpy_HtmlEncode(nullptr, "abc", 4));
    EXPECT_EQ(nullptr, strncpy_HtmlEncode(nullptr, nullptr, 0));
    const std::tuple<const char*, int32_t> cases[] = {{nullptr, 4}, {"abc", 0}, {"abc", -1}, {"abc", INT32_MIN}};
    for (const auto& [source, capacity] : cases) {
        GuardedBuffer buffer(1);
        EXPECT_EQ(buffer.data(), strncpy_HtmlEncode(buffer.data(), source, capacity));
        EXPECT_EQ("", terminated(buffer, 1));
    }
}

} // namespace
