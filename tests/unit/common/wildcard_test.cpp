// Comparison with wildcard characters in the pattern.
#include <string>

#include "support/fake_device.h"

using pendra::test::DeviceTest;

namespace {

class Wildcard : public DeviceTest {};

struct Case {
    const char* text;
    const char* pattern;
    int32_t count;
    int32_t result;
};

TEST_F(Wildcard, PlainCharacters_GiveTheFirstDifference) {
    const Case cases[] = {
        {"abc", "abc", 3, 0},   {"", "", 5, 0},        {"b", "a", 1, 1},      {"abc", "abe", 3, -2},
        {"Abc", "abc", 3, -32}, {"abc", "Abc", 3, 32}, {"", "a", 1, -97},     {"a", "", 1, 97},
        {"abc", "ab", 3, 99},   {"ab", "abc", 3, -99}, {"axz", "ayb", 3, -1}, // what follows the first difference does
                                                                              // not count
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(std::string(row.text) + " / " + row.pattern);
        EXPECT_EQ(row.result, strnWildcardCmp(row.text, row.pattern, row.count));
    }
}

TEST_F(Wildcard, BytesFrom128On_CountAsNegative) {
    EXPECT_EQ(-128 - 97, strnWildcardCmp("\x80", "a", 1));
    EXPECT_EQ(97 + 1, strnWildcardCmp("a", "\xff", 1));
    EXPECT_EQ(-128 + 1, strnWildcardCmp("\x80", "\xff", 1));
    EXPECT_EQ(-1, strnWildcardCmp("\xff", "", 1));
    EXPECT_EQ(0, strnWildcardCmp("\x80\xff", "\x80\xff", 2));
}

TEST_F(Wildcard, EveryPairOfBytes_DiffersAsSignedBytes) {
    for (int text = 1; text < 256; text++)
        for (int pattern = 1; pattern < 256; pattern++) {
            if (pattern == '*' || pattern == '?') continue;
            const char subject[] = {static_cast<char>(text), '\0'};
            const char wanted[] = {static_cast<char>(pattern), '\0'};
            const int expected = (text < 128 ? text : text - 256) - (pattern < 128 ? pattern : pattern - 256);
            ASSERT_EQ(expected, strnWildcardCmp(subject, wanted, 1)) << text << " " << pattern;
        }
}

TEST_F(Wildcard, CountUsedUp_Matches) {
    EXPECT_EQ(0, strnWildcardCmp("abc", "abd", 2));
    EXPECT_NE(0, strnWildcardCmp("abc", "abd", 3));
    EXPECT_EQ(0, strnWildcardCmp("abc", "abcdef", 3));
    EXPECT_EQ(0, strnWildcardCmp("abcdef", "abc", 3));
    for (const int32_t count : {0, -1, INT32_MIN})
        EXPECT_EQ(0, strnWildcardCmp("abc", "xyz", count)) << count;
}

TEST_F(Wildcard, CountBeyondBothEnds_ReadsNoFurther) {
    const std::string text = "abc";
    for (const int32_t count : {3, 4, 32767, INT32_MAX})
        EXPECT_EQ(0, strnWildcardCmp(text.c_str(), "abc", count)) << count;
}

TEST_F(Wildcard, QuestionMark_MatchesAnyOneCharacter) {
    for (int byte = 1; byte < 256; byte++) {
        const char text[] = {'a', static_cast<char>(byte), 'c', '\0'};
        EXPECT_EQ(0, strnWildcardCmp(text, "a?c", 3)) << byte;
    }
    EXPECT_EQ(0, strnWildcardCmp("ab", "??", 2));
    EXPECT_EQ('c' - 'd', strnWildcardCmp("abc", "??d", 3));
}

TEST_F(Wildcard, QuestionMarkAtTheSubjectsEnd_IsAMismatch) {
    EXPECT_NE(0, strnWildcardCmp("", "?", 1));
    EXPECT_NE(0, strnWildcardCmp("a", "a?", 2));
    EXPECT_NE(0, strnWildcardCmp("R0", "R??_", 4));
    EXPECT_NE(0, strWildcardCmp("a", "a?b"));
}

TEST_F(Wildcard, Star_MatchesTheWholeRest) {
    const Case cases[] = {
        {"abc", "a*", 3, 0},  {"abc", "*", 3, 0},    {"", "*", 1, 0},      {"a", "a*", 2, 0},
        {"abc", "a*z", 3, 0}, {"abc", "?*", 32, 0},  {"abc", "b*", 3, -1}, {"abcdef", "abc*xyz", 100, 0},
        {"xbc", "a*", 3, 23}, {"ab", "abc*", 4, -99}};
    for (const Case& row : cases) {
        SCOPED_TRACE(std::string(row.text) + " / " + row.pattern);
        EXPECT_EQ(row.result, strnWildcardCmp(row.text, row.pattern, row.count));
    }
}

TEST_F(Wildcard, WildcardsInTheSubject_ArePlain) {
    EXPECT_EQ('*' - 'a', strnWildcardCmp("*", "a", 1));
    EXPECT_EQ('?' - 'a', strnWildcardCmp("?", "a", 1));
    EXPECT_EQ('?', strnWildcardCmp("a?", "a", 2));
}

TEST_F(Wildcard, ListElements_NeedAnIndexOfTwoCharacters) {
    EXPECT_EQ(0, strnWildcardCmp("AcRule:07/Active", "AcRule:?\?/", 10));
    EXPECT_NE(0, strnWildcardCmp("AcRule:7/Active", "AcRule:?\?/", 10));
    EXPECT_NE(0, strnWildcardCmp("AcRule:007/Active", "AcRule:?\?/", 10));
    EXPECT_NE(0, strnWildcardCmp("acRule:07/Active", "AcRule:?\?/", 10));
}

TEST_F(Wildcard, WithoutCount_ComparesThe32767FirstCharacters) {
    const std::string same(32766, 'x');
    EXPECT_EQ('a' - 'b', strWildcardCmp((same + "a").c_str(), (same + "b").c_str()));
    EXPECT_EQ(0, strWildcardCmp((same + "xa").c_str(), (same + "xb").c_str()));
    EXPECT_EQ(0, strWildcardCmp("abc", "a?c"));
    EXPECT_EQ(0, strWildcardCmp("abc", "a*"));
    EXPECT_EQ('c', strWildcardCmp("abc", "ab"));
    EXPECT_EQ(-'c', strWildcardCmp("ab", "abc"));
}

TEST_F(Wildcard, Null_CountsAsEmpty) {
    EXPECT_EQ(0, strnWildcardCmp(nullptr, nullptr, 3));
    EXPECT_EQ(-97, strnWildcardCmp(nullptr, "a", 3));
    EXPECT_EQ(97, strWildcardCmp("a", nullptr));
}

} // namespace
