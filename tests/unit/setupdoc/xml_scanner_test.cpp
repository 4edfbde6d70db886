#include <climits>
#include <optional>

#include "setup_document.h"

using pendra::test::Buffer;
using pendra::test::DeviceTest;

namespace {

constexpr int32_t kUntouched = -77;

class XmlScanner : public DeviceTest {
  protected:
    // The content of the tag's element in the stretch, nothing when it is not found.
    static std::optional<std::string> find(const std::string& text, const char* tag, int32_t length = -1) {
        Buffer buffer(text);
        int32_t outLength = kUntouched;
        const char* content = FindXmlKeyContain(buffer.text(), length, tag, &outLength);
        EXPECT_EQ(text, buffer.whole()) << "the buffer must be as it was";
        if (content == nullptr) {
            EXPECT_EQ(0, outLength);
            return std::nullopt;
        }
        return std::string(content, static_cast<size_t>(outLength));
    }

    // The offset of the tag's opening tag, -1 when it is not found.
    static ptrdiff_t findHeader(const std::string& text, const char* tag, int32_t length = -1) {
        Buffer buffer(text);
        const char* header = SearchXmlKeyHeader(buffer.text(), length, tag);
        EXPECT_EQ(text, buffer.whole());
        return header == nullptr ? -1 : header - buffer.text();
    }
};

// ---- Opening and closing tags ----

TEST_F(XmlScanner, BareTagsInAnyCase_AreFound) {
    for (const char* text : {"<Name>abc</Name>", "<NAME>abc</name>", "<name>abc</NAME>", "<nAmE>abc</NaMe>"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ("abc", find(text, "Name"));
        EXPECT_EQ("abc", find(text, "name"));
    }
}

TEST_F(XmlScanner, Content_PointsIntoTheBufferBehindTheOpeningTag) {
    Buffer buffer("..<Name>abc</Name>");
    int32_t length = kUntouched;
    EXPECT_EQ(buffer.text() + 8, FindXmlKeyContain(buffer.text(), -1, "Name", &length));
    EXPECT_EQ(3, length);
}

TEST_F(XmlScanner, OpeningTagInAnyOtherForm_IsNotFound) {
    for (const char* text :
         {"<Name attr=\"1\">abc</Name>", "<Name >abc</Name>", "< Name>abc</Name>", "<Names>a</Names>",
          "<xName>a</xName>", "Name", "</Name>", "<Name", "<Name  />", "< Name/>", ""}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(std::nullopt, find(text, "Name"));
        EXPECT_EQ(-1, findHeader(text, "Name"));
    }
}

TEST_F(XmlScanner, NoClosingTag_IsNotFound) {
    for (const char* text : {"<Name>abc", "<Name>abc</Name", "<Name>abc</Names>", "<Name>abc</ Name>", "<Name>a<Name>",
                             "</Name><Name>abc", "<Name/><Name>abc"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(std::nullopt, find(text, "Name"));
    }
}

TEST_F(XmlScanner, Nesting_IsNotLookedAt) {
    EXPECT_EQ("1<A>2", find("<A>1<A>2</A>3</A>", "A")); // first opening tag, first closing tag behind it
    EXPECT_EQ("inner", find("<B><A>inner</A></B><A>outer</A>", "A"));
    EXPECT_EQ("1</B>2", find("<A>1</B>2</A>", "A"));
    EXPECT_EQ("x", find("</A><A>x</A>", "A"));
}

TEST_F(XmlScanner, EmptyElement_HasLengthZero) {
    EXPECT_EQ("", find("<Name></Name>", "Name"));
}

TEST_F(XmlScanner, BytesOfAnyValue_AreContent) {
    EXPECT_EQ("\x01\xff\xc3\xa4 %s \r\n\t'\"", find("<Name>\x01\xff\xc3\xa4 %s \r\n\t'\"</Name>", "Name"));
}

// ---- Self-closing tags ----

TEST_F(XmlScanner, SelfClosingTag_IsAnEmptyValueAtItsOwnPosition) {
    for (const char* text : {"ab<Name/>cd", "ab<Name />cd", "ab<NAME/>", "ab<name />"}) {
        SCOPED_TRACE(text);
        Buffer buffer(text);
        int32_t length = kUntouched;
        EXPECT_EQ(buffer.text() + 2, FindXmlKeyContain(buffer.text(), -1, "Name", &length));
        EXPECT_EQ(0, length);
    }
}

TEST_F(XmlScanner, OpeningTag_GoesBeforeASelfClosingOne) {
    EXPECT_EQ("x", find("<A/><A>x</A>", "A"));
    EXPECT_EQ(4, findHeader("<A/><A>x</A>", "A"));
}

TEST_F(XmlScanner, SelfClosingTagWithoutBlank_GoesBeforeTheOneWithBlank) {
    EXPECT_EQ(6, findHeader("<A /> <A/>", "A"));
}

// ---- Header-only searches ----

TEST_F(XmlScanner, Header_NeedsNoClosingTag) {
    EXPECT_EQ(1, findHeader(" <Name>abc", "Name"));
    EXPECT_EQ(1, findHeader(" <name>abc</name>", "Name"));
    EXPECT_EQ(1, findHeader(" <Name/>", "Name"));
    EXPECT_EQ(1, findHeader(" <NAME />", "Name"));
}

TEST_F(XmlScanner, OutLengthOfAHeader_IsUntouchedOnAHitAndZeroOnAMiss) {
    for (const char* text : {"<Name>abc", "<Name/>", "<Name />"}) {
        SCOPED_TRACE(text);
        Buffer buffer(text);
        int32_t length = kUntouched;
        EXPECT_EQ(buffer.text(), FindXmlKeyContain_(buffer.text(), -1, "Name", &length, 1));
        EXPECT_EQ(kUntouched, length);
    }
    Buffer other("<Other>");
    int32_t length = kUntouched;
    EXPECT_EQ(nullptr, FindXmlKeyContain_(other.text(), -1, "Name", &length, 1));
    EXPECT_EQ(0, length);
}

TEST_F(XmlScanner, FlagClear_SearchesTheContent) {
    Buffer buffer("<Name>abc</Name>");
    int32_t length = kUntouched;
    EXPECT_EQ(buffer.text() + 6, FindXmlKeyContain_(buffer.text(), -1, "Name", &length, 0));
    EXPECT_EQ(3, length);
}

TEST_F(XmlScanner, NullOutLength_IsTolerated) {
    Buffer buffer("<Name>abc</Name>");
    EXPECT_EQ(buffer.text() + 6, FindXmlKeyContain(buffer.text(), -1, "Name", nullptr));
    EXPECT_EQ(nullptr, FindXmlKeyContain(buffer.text(), -1, "Other", nullptr));
    EXPECT_EQ(nullptr, FindXmlKeyContain(buffer.text(), 10, "Name", nullptr));
}

TEST_F(XmlScanner, NullArguments_FindNothingAndTouchNothing) {
    Buffer buffer("<Name>abc</Name>");
    int32_t length = kUntouched;
    EXPECT_EQ(nullptr, FindXmlKeyContain_(nullptr, -1, "Name", &length, 0));
    EXPECT_EQ(nullptr, FindXmlKeyContain_(buffer.text(), -1, nullptr, &length, 0));
    EXPECT_EQ(nullptr, FindXmlKeyContain(nullptr, 5, "Name", &length));
    EXPECT_EQ(nullptr, FindXmlKeyContain(buffer.text(), 5, nullptr, &length));
    EXPECT_EQ(kUntouched, length);
    EXPECT_EQ(nullptr, SearchXmlKeyHeader(nullptr, -1, "Name"));
    EXPECT_EQ(nullptr, SearchXmlKeyHeader(buffer.text(), -1, nullptr));
}

// ---- Stretches ----

TEST_F(XmlScanner, LengthOfZeroOrBelow_ReachesTheEndOfTheText) {
    const std::string text = "<A>1</A><Name>abc</Name>";
    for (const int32_t length : {0, -1, -2, INT_MIN}) {
        SCOPED_TRACE(length);
        EXPECT_EQ("abc", find(text, "Name", length));
        EXPECT_EQ(8, findHeader(text, "Name", length));
    }
}

TEST_F(XmlScanner, LengthOfTheTextOrBeyond_ReachesItsEnd) {
    const std::string text = "<Name>abc</Name>";
    for (const int32_t length : {16, 17, 1000, INT_MAX}) {
        SCOPED_TRACE(length);
        EXPECT_EQ("abc", find(text, "Name", length));
    }
}

TEST_F(XmlScanner, EachShorterLength_HidesWhatLiesBeyond) {
    const std::string text = "<Name>abc</Name> tail <Name/>";
    for (int32_t length = 1; length < 16; length++) {
        SCOPED_TRACE(length);
        EXPECT_EQ(std::nullopt, find(text, "Name", length));
        EXPECT_EQ(length < 6 ? -1 : 0, findHeader(text, "Name", length));
    }
    EXPECT_EQ("abc", find(text, "Name", 16));
}

TEST_F(XmlScanner, SelfClosingTagBeyondTheStretch_IsHidden) {
    const std::string text = "abc<Name/>";
    EXPECT_EQ(std::nullopt, find(text, "Name", 9));
    EXPECT_EQ("", find(text, "Name", 10));
}

TEST_F(XmlScanner, TextThatEndsBeforeTheStretch_EndsTheSearch) {
    Buffer buffer(std::string("<A>1</A>\0<B>2</B>", 17));
    EXPECT_EQ(nullptr, SearchXmlKeyHeader(buffer.text(), 17, "B"));
    EXPECT_EQ(buffer.text(), SearchXmlKeyHeader(buffer.text(), 17, "A"));
    EXPECT_EQ(std::string("<A>1</A>\0<B>2</B>", 17), buffer.whole());
}

// ---- Long tags and long texts ----

TEST_F(XmlScanner, TagThatFitsItsPatterns_IsFoundWhole) {
    const std::string tag(124, 'T'); // "</T...>" has 127 characters
    EXPECT_EQ("v", find("<" + tag + ">v</" + tag + ">", tag.c_str()));
    EXPECT_EQ(std::nullopt, find("<" + tag + ">v</" + tag + "X>", tag.c_str()));
}

TEST_F(XmlScanner, PatternsOfALongerTag_AreCutAt127Characters) {
    const std::string tag125(125, 'T'); // the closing pattern loses its ">"
    EXPECT_EQ("v", find("<" + tag125 + ">v</" + tag125 + "X>", tag125.c_str()));
    EXPECT_EQ(std::nullopt, find("<" + tag125 + "X>v</" + tag125 + ">", tag125.c_str()));
    const std::string tag126(126, 'T'); // and so does the opening pattern
    EXPECT_EQ(">v", find("<" + tag126 + ">v</" + tag126 + ">", tag126.c_str()));
    const std::string tag1000(1000, 'T');
    EXPECT_EQ(std::string(874, 'T') + ">v", find("<" + tag1000 + ">v</" + tag1000 + ">", tag1000.c_str()));
}

TEST_F(XmlScanner, MebibyteOfText_IsSearchedWhole) {
    const std::string content((1 << 20) - 13, 'x');
    EXPECT_EQ(content, find("<Name>" + content + "</Name>", "Name"));
    EXPECT_EQ(std::nullopt, find(std::string(1 << 20, '<'), "Name"));
}

} // namespace
