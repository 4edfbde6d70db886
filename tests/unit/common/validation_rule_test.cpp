// The validation-rule language.
#include "support/fake_device.h"

namespace {

std::string repeat(const std::string& text, size_t count) {
    std::string result;
    while (count-- > 0)
        result += text;
    return result;
}

struct RuleCase {
    const char* rule;
    const char* value;
    int32_t code;
};

template <size_t Count>
void expectAll(const RuleCase (&cases)[Count]) {
    for (const RuleCase& row : cases) {
        SCOPED_TRACE(std::string("rule ") + row.rule + " value " + row.value);
        EXPECT_EQ(row.code, validate_ZepData(row.value, row.rule));
    }
}

TEST(ValidationRule, NullValue_IsMissing) {
    for (const char* rule : {"0,32,1", "1,10,1", "2", ""})
        EXPECT_EQ(3, validate_ZepData(nullptr, rule));
    EXPECT_EQ(3, validate_ZepData(nullptr, nullptr));
}

TEST(ValidationRule, NullRule_AcceptsAllButTheEmptyValue) {
    EXPECT_EQ(3, validate_ZepData("", nullptr));
    EXPECT_EQ(0, validate_ZepData("x", nullptr));
    EXPECT_EQ(0, validate_ZepData("\t\xff", nullptr));
    EXPECT_EQ(0, validate_ZepData(repeat("x", 1048576).c_str(), nullptr));
}

TEST(ValidationRule, EmptyRule_IsATextWithItsDefaults) {
    EXPECT_EQ(10, validate_ZepData("", ""));
    EXPECT_EQ(0, validate_ZepData("x", ""));
    EXPECT_EQ(11, validate_ZepData("\t", ""));
    EXPECT_EQ(0, validate_ZepData(repeat("x", 9999).c_str(), ""));
    EXPECT_EQ(10, validate_ZepData(repeat("x", 10000).c_str(), ""));
}

TEST(ValidationRule, OtherTypes_AcceptEverything) {
    for (const char* rule : {"2", "2,1,1", "3", "-1", "10", "99,0,0", "2x"}) {
        SCOPED_TRACE(rule);
        EXPECT_EQ(0, validate_ZepData("", rule));
        EXPECT_EQ(0, validate_ZepData("\t\xff", rule));
        EXPECT_EQ(0, validate_ZepData(repeat("x", 20000).c_str(), rule));
    }
}

TEST(ValidationRule, Type_IsTheIntegerValueOfItsField) {
    expectAll({{"1x,5", "6", 20}, {" 1,5", "6", 20}, {"x,1", "ab", 10}, {"0x,1", "ab", 10}, {"01,5", "6", 20}});
}

TEST(NumberRule, Limits_BelongToTheRange) {
    expectAll({
        {"1,100,1", "0", 21},      {"1,100,1", "100", 0},     {"1,100,1", "100.5", 20},   {"1,100,1", "none", 21},
        {"1,100,1", "1", 0},       {"1,100,1", "0.99", 21},   {"1,100,1", "101", 20},     {"1,100,1", "", 21},
        {"1,13,1", "13", 0},       {"1,13,1", "14", 20},      {"1,100,1", "-5", 21},      {"1,100,1", "50abc", 0},
        {"1,100,1", " 50", 0},     {"1,100,1", "5e1", 0},     {"1,100,1", "5e2", 20},     {"1,100,1", "+7", 0},
        {"1,0.5,-0.5", "0.6", 20}, {"1,0.5,-0.5", "-0.5", 0}, {"1,0.5,-0.5", "-0.6", 21},
    });
}

TEST(NumberRule, AbsentLimits_AreTenToThe38th) {
    expectAll({
        {"1", "1e38", 0},
        {"1", "1.01e38", 20},
        {"1", "-1e38", 0},
        {"1", "-1.01e38", 21},
        {"1", "1e39", 20},
        {"1", "-1e39", 21},
        {"1", "1e400", 20},
        {"1", "-1e400", 21},
        {"1,5", "-1e38", 0},
        {"1,5", "5.1", 20},
        {"1", "", 0},
        {"1", "inf", 20},
        {"1", "-inf", 21},
        {"1,5", "-1e39", 21},
    });
}

TEST(NumberRule, EmptyOrUnreadableLimit_ReadsAsZero) {
    expectAll({
        {"1,", "0", 0},
        {"1,", "1", 20},
        {"1,", "-1", 0},
        {"1,,", "0", 0},
        {"1,,", "1", 20},
        {"1,,", "-1", 21},
        {"1,9,", "-1", 21},
        {"1,9,", "9", 0},
        {"1,,-5", "-5", 0},
        {"1,max,min", "0", 0},
        {"1,max", "1", 20},
        {"1,nan,-1", "1", 20},
        {"1,nan,-1", "0", 0},
        {"1,9,nan", "-1", 21},
        {"1,9,nan", "0", 0},
    });
}

TEST(NumberRule, NotANumber_ReadsAsZero) {
    expectAll({{"1,100,1", "nan", 21}, {"1,100,0", "nan", 0}, {"1,-1,-9", "nan", 20}, {"1,100,1", "-nan", 21}});
}

// 16777216 is the first number whose successor single precision cannot hold.
TEST(NumberRule, Comparison_IsInSinglePrecision) {
    expectAll({
        {"1,16777216", "16777217", 0},
        {"1,16777216", "16777218", 20},
        {"1,16777217", "16777217", 0},
        {"1,16777217", "16777218", 20},
        {"1,99,16777217", "16777216", 20},
        {"1,33554432,16777217", "16777216", 0},
        {"1,33554432,16777218", "16777217", 21},
        {"1,100,1", "100.000001", 0},
        {"1,100,1", "100.00001", 20},
        {"1,0.1", "0.1", 0},
        {"1,99,0.1", "0.1", 0},
    });
}

// Read as a real number first: the digits beyond it are gone before it is narrowed.
TEST(NumberRule, Value_IsReadBeforeItIsNarrowed) {
    EXPECT_EQ(0, validate_ZepData("16777217.0000000001", "1,16777216"));
    EXPECT_EQ(20, validate_ZepData("16777217.001", "1,16777216"));
}

TEST(NumberRule, FurtherFields_AreNotLookedAt) {
    EXPECT_EQ(0, validate_ZepData("5", "1,9,1,0,0,5"));
}

TEST(TextRule, Length_MustLieInTheRange) {
    expectAll({
        {"0,4,2", "a", 10},
        {"0,4,2", "ab", 0},
        {"0,4,2", "abcd", 0},
        {"0,4,2", "abcde", 10},
        {"0,4,2", "", 10},
        {"0,4,2", "a\tc", 11},
        {"0,4,2", "\xc3\xa9", 11},
        {"0,4,0", "", 0},
        {"0,4", "", 10},
        {"0,4", "a", 0},
        {"0,32,1", "x y", 0},
        {"0,4,5", "abcd", 10},
        {"0,4,5", "abcde", 10},
        {"0,-1,-5", "", 10},
        {"0,0,-5", "", 0},
    });
}

TEST(TextRule, LengthFault_ComesBeforeACharacterFault) {
    EXPECT_EQ(10, validate_ZepData("\t", "0,4,2"));
    EXPECT_EQ(10, validate_ZepData("a\tbcd", "0,4,2"));
}

TEST(TextRule, EmptyOrUnreadableNumber_ReadsAsZero) {
    expectAll({
        {"0,", "a", 10},
        {"0,,0", "", 0},
        {"0,,", "", 0},
        {"0,4,", "", 0},
        {"0,4,x", "", 0},
        {"0,x,0", "a", 10},
        {"0,4,1,", "\t", 11},
        {"0,4,1,1,,a", "a", 11},
        {"0,4,1,1,,a", "b", 0},
        {",4,2", "a", 10},
        {"0,4,1,x,x,a", "b", 0},
    });
}

TEST(TextRule, WithoutTheControlFlag_OnlyPrintableAsciiPasses) {
    for (int code = 1; code < 256; code++) {
        SCOPED_TRACE(code);
        const std::string value(1, static_cast<char>(code));
        const bool printable = code >= 32 && code <= 126;
        EXPECT_EQ(printable ? 0 : 11, validate_ZepData(value.c_str(), "0,4,1"));
        EXPECT_EQ(printable ? 0 : 11, validate_ZepData(("ab" + value).c_str(), "0,4,1,0"));
        EXPECT_EQ(0, validate_ZepData(value.c_str(), "0,4,1,1"));
        EXPECT_EQ(0, validate_ZepData(value.c_str(), "0,4,1,-1"));
    }
}

TEST(TextRule, AllowList_WantsEveryCharacterInARange) {
    expectAll({
        {"0,63,8,0,1,0-9,A-Z,a-z", "Passw0rd", 0},
        {"0,63,8,0,1,0-9,A-Z,a-z", "Passw0rd!", 11},
        {"0,63,8,0,1,0-9,A-Z,a-z", "Passw0r", 10},
        {"0,9,1,0,1,a-c,x", "abcx", 0},
        {"0,9,1,0,1,a-c,x", "d", 11},
        {"0,9,1,0,1,a-c,x", "ax-", 11},
        {"0,9,1,0,1", "a", 11},
        {"0,9,1,0,1,", "a", 11},
        {"0,9,0,0,1", "", 0},
        {"0,9,1,0,-1,a", "a", 0},
        {"0,9,1,0,1,a-c", "\x07", 11},
        {"0,9,1,1,1,\x01-\x1f", "\x07", 0},
        {"0,9,1,0,1,a", "A", 11},
        {"0,9,1,0,2,a", "b", 11},
    });
}

TEST(TextRule, DenyList_WantsNoCharacterInARange) {
    expectAll({
        {"0,32,1,0,0,<,>", "plain", 0},
        {"0,32,1,0,0,<,>", "a<b", 11},
        {"0,32,1,0,0,<,>", "b>", 11},
        {"0,32,1,0,0,a-c", "xyz", 0},
        {"0,32,1,0,0,a-c", "xbz", 11},
        {"0,32,1,0,0,a-c", "-", 0},
        {"0,32,1,0,0,a-c", "a", 11},
        {"0,32,1,0,0,a-c", "c", 11},
        {"0,32,1,0,0,a-c", "d", 0},
        {"0,32,1,0,0", "anything", 0},
        {"0,32,1,1,0,\t", "a\t", 11},
        {"0,32,1,1,0,\t", "a\n", 0},
    });
}

TEST(TextRule, RangeFields_ReadTheirFirstThreeCharacters) {
    expectAll({
        {"0,9,1,0,1,abc", "a", 0},
        {"0,9,1,0,1,abc", "b", 11},
        {"0,9,1,0,1,a-cX", "b", 0},
        {"0,9,1,0,1,a-cX", "X", 11},
        {"0,9,1,0,1,z-a", "m", 11},
        {"0,9,1,0,1,a-", "a", 11},
        {"0,9,1,0,1,-", "-", 0},
        {"0,9,1,0,1,-", "a", 11},
        {"0,9,1,0,1,--0", ".", 0},
        {"0,9,1,0,1,--0", "/", 0},
        {"0,9,1,0,1,--0", ",", 11},
        {"0,9,1,0,1,,a,,b,", "ab", 0},
        {"0,9,1,0,1,,a,,b,", "c", 11},
        {"0,9,1,0,1, ", " ", 0},
        {"0,9,1,0,1,a-a", "a", 0},
        {"0,9,1,0,1,a -c", "b", 11},
    });
}

// Bytes of 128 and above lie below 0, on every target.
TEST(TextRule, Ranges_CompareSignedCharacters) {
    expectAll({
        {"0,9,1,1,0,\x80-\xff", "\x80", 11},
        {"0,9,1,1,0,\x80-\xff", "\xff", 11},
        {"0,9,1,1,0,\x80-\xff", "a", 0},
        {"0,9,1,1,0,a-\xff", "z", 0},
        {"0,9,1,1,0,a-\xff", "\xf0", 0},
        {"0,9,1,1,0,\x80-z", "a", 11},
        {"0,9,1,1,0,\x80-z", "\x90", 11},
        {"0,9,1,1,0,\x80-z", "\t", 11},
        {"0,9,1,1,0,\x80-z", "~", 0},
        {"0,9,1,1,1,\xe9", "\xe9", 0},
    });
}

TEST(TextRule, Backslash_TakesACommaOrABackslashLiterally) {
    expectAll({
        {R"(0,9,1,0,0,\,)", "a,b", 11},
        {R"(0,9,1,0,0,\,)", R"(\)", 0},
        {R"(0,9,1,0,0,\,-.)", "-", 11},
        {R"(0,9,1,0,0,\,-.)", ",", 11},
        {R"(0,9,1,0,0,\,-.)", ".", 11},
        {R"(0,9,1,0,0,\,-.)", "+", 0},
        {R"(0,9,1,0,0,\\)", R"(\)", 11},
        {R"(0,9,1,0,0,\\,a)", "a", 11},
        {R"(0,9,1,0,0,\\\,)", R"(\)", 11},
        {R"(0,9,1,0,0,\\\,)", ",", 0},
        {R"(0,9,1,0,0,\a)", R"(\)", 11},
        {R"(0,9,1,0,0,\a)", "a", 0},
        {R"(0,9,1,0,0,\)", R"(\)", 11},
        {R"(0,9,1,0,1,+-\,)", "+,", 0},
        {R"(0,9,1,0,1,+-\,)", "-", 11},
        {R"(0,9,1,0,0,x\,y)", "y", 0},
        {R"(0,9,1,0,0,\,,a)", "a", 11},
        {R"(0,9,1,0,1,Z-\\)", "[", 0},
    });
}

// Field 31 is the last one: 27 ranges.
TEST(RuleBounds, ThirtySecondField_IsTheLast) {
    const std::string fields31 = "0,9,1,0,0" + repeat(",x", 26);
    EXPECT_EQ(11, validate_ZepData("y", (fields31 + ",y").c_str()));
    EXPECT_EQ(11, validate_ZepData("y", (fields31 + ",y,z").c_str()));
    EXPECT_EQ(0, validate_ZepData("z", (fields31 + ",y,z").c_str()));
    EXPECT_EQ(0, validate_ZepData("z", (fields31 + ",y" + repeat(",z", 60)).c_str()));
}

TEST(RuleBounds, ThirtySecondField_EndsAtItsComma) {
    const std::string fields31 = "0,9,1,0,1" + repeat(",x", 26);
    EXPECT_EQ(11, validate_ZepData("b", (fields31 + ",a-,c").c_str()));
    EXPECT_EQ(0, validate_ZepData("b", (fields31 + R"(,a-c,)").c_str()));
}

TEST(RuleBounds, RuleText_IsCutAt255Characters) {
    const std::string start = "0,9,1,0,0,";
    const std::string fits = start + repeat("x", 255 - start.size() - 2) + ",y";
    ASSERT_EQ(255U, fits.size());
    EXPECT_EQ(11, validate_ZepData("y", fits.c_str()));
    const std::string cut = start + repeat("x", 256 - start.size() - 2) + ",y";
    ASSERT_EQ(256U, cut.size());
    EXPECT_EQ(0, validate_ZepData("y", cut.c_str()));
    EXPECT_EQ(11, validate_ZepData("x", cut.c_str()));
}

TEST(RuleBounds, EscapeThatTheCutDivides_KeepsItsBackslash) {
    const std::string start = "0,9,1,0,0,";
    const std::string rule = start + repeat("x", 253 - start.size()) + R"(,\,)";
    ASSERT_EQ(256U, rule.size());
    EXPECT_EQ(11, validate_ZepData(R"(\)", rule.c_str()));
    EXPECT_EQ(0, validate_ZepData(",", rule.c_str()));
}

TEST(RuleBounds, FieldLongerThan32Characters_IsReadWhole) {
    EXPECT_EQ(0, validate_ZepData("ab", ("0," + repeat("0", 60) + "2,1").c_str()));
    EXPECT_EQ(10, validate_ZepData("abc", ("0," + repeat("0", 60) + "2,1").c_str()));
}

TEST(RuleBounds, HugeRules_AreReadAsFarAsTheyAreTaken) {
    const RuleCase cases[] = {
        {",", "value", 10},  {"\\", "value", 0}, {R"(\,)", "value", 0}, {"0", "value", 0}, {"a-z,", "value", 10},
        {",x", "value", 10}, {"2", "", 0},       {"1,", "2", 20},       {"1,", "0", 21},
    };
    for (const RuleCase& row : cases) {
        SCOPED_TRACE(row.rule);
        for (const size_t count : {256U, 4000U, 1048576U})
            EXPECT_EQ(row.code, validate_ZepData(row.value, repeat(row.rule, count).c_str()));
    }
}

TEST(RuleBounds, HugeValues_AreMeasured) {
    EXPECT_EQ(10, validate_ZepData(repeat("v", 1048576).c_str(), "0,1048575,1"));
    EXPECT_EQ(0, validate_ZepData(repeat("v", 1048576).c_str(), "0,1048576,1"));
}

} // namespace
