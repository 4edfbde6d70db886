#include "host/templates.h"

#include <gtest/gtest.h>

namespace pendra::host {
namespace {

std::string joined(const std::vector<std::string>& words) {
    std::string text = "(";
    for (const std::string& word : words) {
        text += word + ",";
    }
    return text + ")";
}

TEST(EscapeHtml, MarkupCharacters_BecomeEntities) {
    EXPECT_EQ(escapeHtml("<a href=\"x\">Tom's & Co</a>"), "&lt;a href=&quot;x&quot;&gt;Tom&#39;s &amp; Co&lt;/a&gt;");
}

TEST(EscapeHtml, OtherBytes_Stay) {
    EXPECT_EQ(escapeHtml("B\xc3\xa4r {{x}} %s\n"), "B\xc3\xa4r {{x}} %s\n");
    EXPECT_EQ(escapeHtml(""), "");
}

TEST(ExpandTemplate, Placeholders_AreReplacedWordByWord) {
    EXPECT_EQ(expandTemplate("a {{one}} b {{two|x y|}} c", joined), "a (one,) b (two,x y,,) c");
}

TEST(ExpandTemplate, ValueWithBraces_IsNotExpandedAgain) {
    EXPECT_EQ(expandTemplate("{{x}}{{y}}", [](const auto&) { return "{{z}}"; }), "{{z}}{{z}}");
}

TEST(ExpandTemplate, OpeningWithoutAnEnd_Stays) {
    EXPECT_EQ(expandTemplate("a {{one", joined), "a {{one");
    EXPECT_EQ(expandTemplate("{{one}} }} {{", joined), "(one,) }} {{");
    EXPECT_EQ(expandTemplate("", joined), "");
}

} // namespace
} // namespace pendra::host
