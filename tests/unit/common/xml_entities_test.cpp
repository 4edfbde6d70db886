// Decoding and encoding of XML entities.
#include "guarded_buffer.h"
#include "support/fake_device.h"

using pendra::test::DeviceTest;
using pendra::test::GuardedBuffer;

namespace {

constexpr int32_t kWhole = 1 << 24; // a count beyond every text here

class XmlDecoding : public DeviceTest {
  protected:
    static std::string decode(const std::string& source) {
        GuardedBuffer result(source.size() + 1);
        EXPECT_EQ(result.data(), strncpy_XmlDecode(result.data(), source.c_str(), kWhole));
        EXPECT_TRUE(result.intact());
        return result.text();
    }
};

TEST_F(XmlDecoding, EveryEntity_BecomesItsCharacter) {
    struct Case {
        const char* entity;
        char character;
    };
    const Case cases[] = {
        {"&nbsp;", ' '},  {"&lt;", '<'},  {"&gt;", '>'},   {"&amp;", '&'}, {"&quot;", '"'},
        {"&apos;", '\''}, {"&#32;", ' '}, {"&#160;", ' '}, {"&#60;", '<'}, {"&#62;", '>'},
        {"&#38;", '&'},   {"&#34;", '"'}, {"&#39;", '\''},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.entity);
        EXPECT_EQ(std::string(1, row.character), decode(row.entity));
        EXPECT_EQ(std::string("a") + row.character + "b", decode(std::string("a") + row.entity + "b"));
    }
}

TEST_F(XmlDecoding, KnownAndUnknownEntities_AreToldApart) {
    EXPECT_EQ("a<b c&unknown;", decode("a&lt;b&#160;c&unknown;"));
}

TEST_F(XmlDecoding, WhatIsNoEntity_StaysAsItIs) {
    for (const char* text : {"", "plain", "&", "&&", "&lt", "&l t;", "&;", "&LT;", "&Amp;", "&#061;", "&#x3c;", "&#61;",
                             "lt;", "&#3", "a & b", "&nbs", "<>\"'"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(text, decode(text));
    }
}

TEST_F(XmlDecoding, DecodedAmpersand_IsNotDecodedAgain) {
    EXPECT_EQ("&lt;", decode("&amp;lt;"));
    EXPECT_EQ("&amp;", decode("&#38;amp;"));
}

TEST_F(XmlDecoding, AmpersandBeforeAnEntity_KeepsTheEntity) {
    EXPECT_EQ("&<", decode("&&lt;"));
}

TEST_F(XmlDecoding, Count_LimitsTheSourceBytes) {
    struct Case {
        const char* source;
        int32_t count;
        const char* result;
    };
    const Case cases[] = {
        {"abc", 1, "a"},      {"abc", 2, "ab"},       {"abc", 3, "abc"},
        {"&lt;abc", 4, "<"},  {"&lt;abc", 5, "<a"},   {"a&lt;bc", 6, "a<b"},
        {"ab&gt;", 6, "ab>"}, {"&lt;&gt;x", 8, "<>"}, {"&lt;&gt;x", 9, "<>x"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(std::string(row.source) + " " + std::to_string(row.count));
        const size_t length = std::string(row.result).size();
        GuardedBuffer result(16);
        strncpy_XmlDecode(result.data(), row.source, row.count);
        EXPECT_EQ(row.result, std::string(result.data(), length));
        EXPECT_TRUE(result.untouchedFrom(length)) << "not terminated by the routine";
    }
}

TEST_F(XmlDecoding, CountThatTakesTheNul_TerminatesTheResult) {
    GuardedBuffer result(16);
    strncpy_XmlDecode(result.data(), "abc", 4);
    EXPECT_EQ("abc", result.text());
    EXPECT_TRUE(result.untouchedFrom(4));
}

TEST_F(XmlDecoding, EntityThatCrossesTheCount_IsMatchedWhole) {
    for (int32_t count = 2; count <= 6; count++) {
        SCOPED_TRACE(count);
        GuardedBuffer result(16);
        strncpy_XmlDecode(result.data(), "a&quot;b", count);
        EXPECT_EQ("a\"", std::string(result.data(), 2));
        EXPECT_TRUE(result.untouchedFrom(2));
    }
}

TEST_F(XmlDecoding, CopyOntoItself_Works) {
    char text[] = "0,&lt;,&gt;";
    EXPECT_EQ(text, strncpy_XmlDecode(text, text, kWhole));
    EXPECT_STREQ("0,<,>", text);
}

TEST_F(XmlDecoding, SourceOfAMebibyte_IsDecodedToItsEnd) {
    std::string source;
    std::string expected;
    while (source.size() < 1048576) {
        source += "&amp;x";
        expected += "&x";
    }
    EXPECT_EQ(expected, decode(source));
}

TEST_F(XmlDecoding, NoSourceOrNoCount_GivesAnEmptyText) {
    for (const int32_t count : {0, -1, -2147483647}) {
        GuardedBuffer result(8);
        EXPECT_EQ(result.data(), strncpy_XmlDecode(result.data(), "abc", count));
        EXPECT_EQ("", result.text());
        EXPECT_TRUE(result.untouchedFrom(1));
    }
    GuardedBuffer result(8);
    EXPECT_EQ(result.data(), strncpy_XmlDecode(result.data(), nullptr, 5));
    EXPECT_EQ("", result.text());
    EXPECT_TRUE(result.untouchedFrom(1));
}

TEST_F(XmlDecoding, NullDestination_GivesNull) {
    EXPECT_EQ(nullptr, strncpy_XmlDecode(nullptr, "abc", 3));
    EXPECT_EQ(nullptr, strncpy_XmlDecode(nullptr, nullptr, 0));
}

class XmlEncoding : public DeviceTest {
  protected:
    static std::string encode(const std::string& source) {
        GuardedBuffer result(source.size() * 6 + 1);
        EXPECT_EQ(result.data(), strncpy_XmlEncode(result.data(), source.c_str(), kWhole));
        EXPECT_TRUE(result.intact());
        return result.text();
    }
};

TEST_F(XmlEncoding, EverySpecialCharacter_BecomesItsEntity) {
    EXPECT_EQ("&quot;", encode("\""));
    EXPECT_EQ("&amp;", encode("&"));
    EXPECT_EQ("&#39;", encode("'"));
    EXPECT_EQ("&lt;", encode("<"));
    EXPECT_EQ("&gt;", encode(">"));
    EXPECT_EQ("a&lt;b&gt; &amp;&quot;&#39;c", encode("a<b> &\"'c"));
}

TEST_F(XmlEncoding, EveryOtherByte_StaysAsItIs) {
    for (int code = 1; code < 256; code++) {
        const std::string text(1, static_cast<char>(code));
        if (std::string("\"&'<>").find(text) != std::string::npos) continue;
        SCOPED_TRACE(code);
        EXPECT_EQ(text, encode(text));
    }
}

TEST_F(XmlEncoding, EncodedText_DecodesToItself) {
    std::string text;
    for (int code = 1; code < 256; code++)
        text += static_cast<char>(code);
    const std::string encoded = encode(text);
    GuardedBuffer decoded(encoded.size() + 1);
    strncpy_XmlDecode(decoded.data(), encoded.c_str(), kWhole);
    EXPECT_EQ(text, decoded.text());
}

TEST_F(XmlEncoding, AlreadyEncodedText_IsEncodedAgain) {
    EXPECT_EQ("&amp;lt;", encode("&lt;"));
}

TEST_F(XmlEncoding, Budget_LimitsTheDestinationBytes) {
    struct Case {
        const char* source;
        int32_t budget;
        const char* result;
    };
    const Case cases[] = {
        {"a<b", 1, "a"},      {"a<b", 2, "a&"},   {"a<b", 3, "a&l"},   {"a<b", 4, "a&lt"}, {"a<b", 5, "a&lt;"},
        {"a<b", 6, "a&lt;b"}, {"\"", 5, "&quot"}, {"\"", 6, "&quot;"}, {"'", 4, "&#39"},   {"&&", 5, "&amp;"},
        {"&&", 7, "&amp;&a"}, {"abc", 3, "abc"},  {"abc", 2, "ab"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(std::string(row.source) + " " + std::to_string(row.budget));
        const size_t length = std::string(row.result).size();
        GuardedBuffer result(16);
        strncpy_XmlEncode(result.data(), row.source, row.budget);
        EXPECT_EQ(row.result, std::string(result.data(), length));
        EXPECT_TRUE(result.untouchedFrom(length)) << "not terminated by the routine";
    }
}

TEST_F(XmlEncoding, BudgetThatHoldsTheNul_TerminatesTheResult) {
    GuardedBuffer result(16);
    strncpy_XmlEncode(result.data(), "a<b", 7);
    EXPECT_EQ("a&lt;b", result.text());
    EXPECT_TRUE(result.untouchedFrom(7));
}

TEST_F(XmlEncoding, SourceOfAMebibyte_StaysInsideTheBudget) {
    GuardedBuffer result(1000);
    strncpy_XmlEncode(result.data(), std::string(1048576, '<').c_str(), 1000);
    EXPECT_EQ("&lt;&lt;", result.text().substr(992));
    EXPECT_TRUE(result.intact());
}

TEST_F(XmlEncoding, NoSourceOrNoBudget_GivesAnEmptyText) {
    for (const int32_t budget : {0, -1, -2147483647}) {
        GuardedBuffer result(8);
        EXPECT_EQ(result.data(), strncpy_XmlEncode(result.data(), "abc", budget));
        EXPECT_EQ("", result.text());
        EXPECT_TRUE(result.untouchedFrom(1));
    }
    GuardedBuffer result(8);
    EXPECT_EQ(result.data(), strncpy_XmlEncode(result.data(), nullptr, 5));
    EXPECT_EQ("", result.text());
    EXPECT_TRUE(result.untouchedFrom(1));
}

TEST_F(XmlEncoding, NullDestination_GivesNull) {
    EXPECT_EQ(nullptr, strncpy_XmlEncode(nullptr, "abc", 3));
    EXPECT_EQ(nullptr, strncpy_XmlEncode(nullptr, nullptr, 0));
}

} // namespace
