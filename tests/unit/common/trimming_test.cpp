// Stripping, trimming and the search that ignores case.
#include "guarded_buffer.h"
#include "support/fake_device.h"

using pendra::test::DeviceTest;
using pendra::test::GuardedBuffer;

namespace {

constexpr size_t kMebibyte = 1048576;

class Stripping : public DeviceTest {};

TEST_F(Stripping, CharactersOfTheSet_GoFromBothEndsOnly) {
    struct Case {
        const char* text;
        const char* set;
        const char* stripped;
    };
    const Case cases[] = {
        {"xxabcxx", "x", "abc"}, {"xyabxcyx", "xy", "abxc"}, {"abc", "x", "abc"}, {"abc", "", "abc"},
        {"", "x", ""},           {"xxx", "x", ""},           {"x", "x", ""},      {"a", "x", "a"},
        {"xa", "x", "a"},        {"ax", "x", "a"},           {"XaX", "x", "XaX"}, {"\r\n a\n", "\r\n", " a"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(std::string(row.text) + " without " + row.set);
        GuardedBuffer text(std::string(row.text).size() + 1, row.text);
        EXPECT_STREQ(row.stripped, strip_chars(text.data(), row.set));
        EXPECT_TRUE(text.intact());
    }
}

TEST_F(Stripping, Result_PointsIntoTheText) {
    char text[] = "  abc  ";
    EXPECT_EQ(text + 2, strip_chars(text, " "));
    EXPECT_EQ(std::string("  abc\0\0\0", 8), std::string(text, sizeof text));
}

TEST_F(Stripping, NothingButTheSet_PointsAtTheEndAndOverwritesNothing) {
    char text[] = "xxx";
    EXPECT_EQ(text + 3, strip_chars(text, "x"));
    EXPECT_STREQ("xxx", text);
}

TEST_F(Stripping, NullArguments_GiveNull) {
    char text[] = " a ";
    EXPECT_EQ(nullptr, strip_chars(nullptr, " "));
    EXPECT_EQ(nullptr, strip_chars(text, nullptr));
    EXPECT_STREQ(" a ", text);
}

class Trimming : public DeviceTest {};

struct TrimCase {
    const char* text;
    const char* trimmed;
};

constexpr TrimCase kTrimCases[] = {
    {" \tabc \t", "abc"},
    {"abc\r\n", "abc\r\n"},
    {"   ", ""},
    {"", ""},
    {"\t", ""},
    {"a", "a"},
    {" a", "a"},
    {"a\t", "a"},
    {"a b", "a b"},
    {"\ta \t b ", "a \t b"},
    {"\n a \n", "\n a \n"},
    {"  \r ", "\r"},
    {"\v a", "\v a"},
    {" \n ", "\n"},
};

TEST_F(Trimming, SpacesAndTabs_GoFromBothEndsOnly) {
    for (const TrimCase& row : kTrimCases) {
        SCOPED_TRACE(row.text);
        GuardedBuffer text(std::string(row.text).size() + 1, row.text);
        EXPECT_EQ(text.data(), trim(text.data()));
        EXPECT_EQ(row.trimmed, text.text());
        EXPECT_TRUE(text.intact());
    }
}

TEST_F(Trimming, Copy_IsTrimmedAndTheSourceKept) {
    for (const TrimCase& row : kTrimCases) {
        SCOPED_TRACE(row.text);
        const std::string source = row.text;
        GuardedBuffer copy(source.size() + 1);
        EXPECT_EQ(copy.data(), trimTo(copy.data(), source.c_str()));
        EXPECT_EQ(row.trimmed, copy.text());
        EXPECT_EQ(row.text, source);
        EXPECT_TRUE(copy.intact());
    }
}

TEST_F(Trimming, TextOfAMebibyte_IsTrimmed) {
    const std::string middle(kMebibyte, 'm');
    std::string text = " \t" + middle;
    text += "\t ";
    EXPECT_EQ(middle, trim(text.data()));
}

TEST_F(Trimming, NullArguments_GiveNull) {
    char text[4] = " a ";
    EXPECT_EQ(nullptr, trim(nullptr));
    EXPECT_EQ(nullptr, trimTo(nullptr, " a "));
    EXPECT_EQ(nullptr, trimTo(text, nullptr));
    EXPECT_STREQ(" a ", text);
}

class SearchIgnoringCase : public DeviceTest {};

TEST_F(SearchIgnoringCase, Pattern_IsFoundAtItsFirstOccurrence) {
    struct Case {
        const char* text;
        const char* pattern;
        int offset; // -1: not found
    };
    const Case cases[] = {
        {"Hello", "LL", 2}, {"Hello", "hello", 0}, {"Hello", "O", 4},         {"Hello", "Hellos", -1},
        {"Hello", "x", -1}, {"abcABC", "ABC", 0},  {"aab", "AB", 1},          {"", "a", -1},
        {"abc", "c", 2},    {"a1-B", "1-b", 1},    {"</ROOT>", "</root>", 0}, {"ab", "abc", -1},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(std::string(row.pattern) + " in " + row.text);
        EXPECT_EQ(row.offset < 0 ? nullptr : row.text + row.offset, strstri(row.text, row.pattern));
    }
}

TEST_F(SearchIgnoringCase, EmptyPattern_GivesNull) {
    EXPECT_EQ(nullptr, strstri("abc", ""));
    EXPECT_EQ(nullptr, strstri("", ""));
}

TEST_F(SearchIgnoringCase, NullArguments_GiveNull) {
    EXPECT_EQ(nullptr, strstri(nullptr, "a"));
    EXPECT_EQ(nullptr, strstri("a", nullptr));
    EXPECT_EQ(nullptr, strstri(nullptr, nullptr));
}

TEST_F(SearchIgnoringCase, TextOfAMebibyte_IsSearchedToItsEnd) {
    const std::string text = std::string(kMebibyte, 'm') + "END";
    EXPECT_EQ(text.c_str() + kMebibyte, strstri(text.c_str(), "end"));
}

} // namespace
