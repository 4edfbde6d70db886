#include "platform/tree/text_form.h"

#include <gtest/gtest.h>

namespace {

using pendra::tree::difference;
using pendra::tree::escapedPath;
using pendra::tree::formatNode;
using pendra::tree::Line;
using pendra::tree::Listing;
using pendra::tree::parseListing;

std::string mistakeIn(std::string_view source) {
    Listing listing;
    std::string error;
    return parseListing(source, listing, error) ? "none" : error;
}

Listing parsed(std::string_view source) {
    Listing listing;
    std::string error;
    EXPECT_TRUE(parseListing(source, listing, error)) << error;
    return listing;
}

TEST(TextForm, Node_IsOneLine) {
    EXPECT_EQ(formatNode("/sys/friendlyname", "Kitchen"), "/sys/friendlyname = \"Kitchen\"\n");
    EXPECT_EQ(formatNode("/a", ""), "/a = \"\"\n");
}

TEST(TextForm, SpecialBytes_AreEscaped) {
    EXPECT_EQ(formatNode("/a", "x\n\t\r\"\\\x01\x7f\xc3\xa4 =#'"),
              "/a = \"x\\n\\t\\r\\\"\\\\\\x01\\x7f\\xc3\\xa4 =#'\"\n");
    EXPECT_EQ(escapedPath("/a b=\"\\\xff\n"), "/a\\x20b\\x3d\\x22\\x5c\\xff\\x0a");
}

TEST(TextForm, EveryByteInPathAndText_SurvivesTheRoundTrip) {
    std::string text;
    for (int byte = 0; byte < 256; ++byte)
        text += static_cast<char>(byte);
    std::string path = "/";
    for (int byte = 1; byte < 256; ++byte)
        if (byte != '/') path += static_cast<char>(byte);
    path.resize(255);
    const Listing listing = parsed(formatNode(path, text));
    ASSERT_EQ(listing.size(), 1u);
    EXPECT_EQ(listing.begin()->first, path);
    EXPECT_EQ(listing.begin()->second.text, text);
}

TEST(TextForm, CommentsBlankLinesAndLooseSpacing_AreRead) {
    const Listing listing = parsed("# head\n\n  \t\n/a=\"1\"\n  /b  =\t\"2\"  # why\r\n/c = \"#3\"#\n/d = \"4\"");
    ASSERT_EQ(listing.size(), 4u);
    EXPECT_EQ(listing.at("/a").text, "1");
    EXPECT_EQ(listing.at("/b").text, "2");
    EXPECT_EQ(listing.at("/c").text, "#3");
    EXPECT_EQ(listing.at("/d").text, "4");
    EXPECT_EQ(listing.at("/d").number, 7);
}

TEST(TextForm, BytesAboveAscii_AreReadAsTheyStand) {
    EXPECT_EQ(parsed("/a = \"K\xc3\xbc\x80\"").at("/a").text, "K\xc3\xbc\x80");
}

TEST(TextForm, Mistake_NamesItsLine) {
    EXPECT_EQ(mistakeIn("/a = \"1\"\nb = \"2\"\n"), "line 2: b is not a node's path");
    EXPECT_EQ(mistakeIn("/a\n"), "line 1: expected /path = \"text\"");
    EXPECT_EQ(mistakeIn("/a = 1\n"), "line 1: expected /path = \"text\"");
    EXPECT_EQ(mistakeIn("/a \"1\"\n"), "line 1: expected /path = \"text\"");
    EXPECT_EQ(mistakeIn("/a = \"1\n"), "line 1: the text is not closed with \"");
    EXPECT_EQ(mistakeIn("/a = \"1\\\"\n"), "line 1: the text is not closed with \"");
    EXPECT_EQ(mistakeIn("\n\n/a = \"1\" x\n"), "line 3: only a # comment may follow the text");
    EXPECT_EQ(mistakeIn("/a# = \"1\"\n"), "line 1: /a# is not a node's path");
    EXPECT_EQ(mistakeIn("/a/ = \"1\"\n"), "line 1: /a/ is not a node's path");
    EXPECT_EQ(mistakeIn("/a = \"1\"\n/a = \"1\"\n"), "line 2: /a is given a second time, first on line 1");
}

TEST(TextForm, UnknownEscape_IsAMistake) {
    const char* expected = "line 1: a \\ is followed by one of n t r \" \\ or by x and two hex digits";
    for (const char* text : {"\\q", "\\x", "\\x4", "\\xg0", "\\x4g", "\\"})
        EXPECT_EQ(mistakeIn(std::string("/a = \"") + text + "\n"), expected) << text;
}

TEST(TextForm, Difference_ShowsLinesThatWentAndCameByPath) {
    const Listing before = parsed("/a = \"1\"\n/b = \"2\"\n/c = \"3\"\n/x:1/y = \"\"\n");
    const Listing after = parsed("/a = \"1\"\n/b = \"two\"\n/bb = \"n\"\n/x:1/y = \"\"\n");
    EXPECT_EQ(difference(before, after), "- /b = \"2\"\n+ /b = \"two\"\n+ /bb = \"n\"\n- /c = \"3\"\n");
    EXPECT_EQ(difference(before, before), "");
    EXPECT_EQ(difference({}, parsed("/a = \"1\"\n")), "+ /a = \"1\"\n");
    EXPECT_EQ(difference(parsed("/a = \"1\"\n"), {}), "- /a = \"1\"\n");
}

} // namespace
