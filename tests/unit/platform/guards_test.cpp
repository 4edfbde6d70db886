#include "platform/tree/guards.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "scratch.h"

namespace {

using namespace pendra::test;
using pendra::tree::guardAgainst;

struct Corpus {
    const char* path;
    std::vector<std::string> taken;
    std::vector<std::string> refused;
};

/** What breaks out of an unquoted word. */
const std::vector<std::string> splitters = {" ",
                                            "\t",
                                            "\n",
                                            "\r",
                                            ";",
                                            "|",
                                            "&",
                                            "`",
                                            "$",
                                            "(",
                                            ")",
                                            "<",
                                            ">",
                                            "*",
                                            "?",
                                            "[",
                                            "]",
                                            "{",
                                            "}",
                                            "~",
                                            "!",
                                            "#",
                                            "'",
                                            "\"",
                                            "\\",
                                            "\xa0",
                                            "\x01",
                                            "\x7f",
                                            std::string(1, '\0')};

std::vector<std::string> withEach(const std::string& before, const std::vector<std::string>& middles,
                                  const std::string& after) {
    std::vector<std::string> all = middles;
    for (std::string& text : all)
        text.insert(0, before).append(after);
    return all;
}

std::vector<std::string> operator+(std::vector<std::string> all, const std::vector<std::string>& more) {
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

const std::vector<Corpus> corpora = {
    {"/bramble/tempdirecory",
     {"", "/", "/tmp", "/tmp/", "/var/run/zep-1.2_x+y,z:@%=", "/" + std::string(108, 'd')},
     withEach("/tmp/a", splitters, "b") +
         std::vector<std::string>{"tmp", "./tmp", "-rf", "/tmp; reboot", "/" + std::string(109, 'd')}},
    {"/bramble/scriptdirecory",
     {"", "/usr/share/pendra/device", "/" + std::string(126, 'd')},
     withEach("/s/a", splitters, "b") + std::vector<std::string>{"scripts", "/" + std::string(127, 'd')}},
    {"/fwupgradeinfo/fwupgradefn",
     {"", "upld.bin", "PB100_FW1.3.1.bin", "a+b,c:d@e%f=g"},
     withEach("upld", splitters, ".bin") + std::vector<std::string>{"a/b", "/etc/passwd", ".", "..", "../x"}},
    {"/fwupgradeinfo/currfwfilename",
     {"", "PB100_FW1.3.1.bin", "noprefix"},
     withEach("PB100", splitters, "_FW1") + std::vector<std::string>{"../PB100_FW1.bin"}},
    {"/fwupgradeinfo/urlgetcmd",
     {"", "wget -O \"$savefn\" \"$url\"", "  wget -q -T 20 -O \"$savefn\" \"$url\" ",
      "/usr/bin/curl -f -L --max-time=60 -o \"$savefn\" \"$url\"", "fetch \"a b\" \"$url$savefn\"", "true"},
     withEach("wget -O \"$savefn\" ", {";", "|", "&", "`", "$(", "<", ">", "\n", "\r", "\\", "'", "*", "#", "~"},
              " \"$url\"") +
         withEach("wget -O \"$savefn", {";", "|", "&", "`", "$(", "<", ">", "\n", "\\", "'", "$HOME", "$", "${url}"},
                  "\" \"$url\"") +
         std::vector<std::string>{"wget -O $savefn \"$url\"", "wget -O \"$savefn\" $url", "wget -O \"$savefn\" \"$url",
                                  "wget \"$other\"", "wget -O \"$savefn\" \"$url\" && reboot",
                                  "wget " + std::string(251, 'x')}},
    {"/fwupgradeinfo/newfw/fileurl",
     {"", "http://fw.pendra.example/PB100/PB100_FW1.4.0.bin", "https://h/p?a=1&b=2;c=%20#frag",
      "http://h/it's(1)<2>|~*[]{}^!,"},
     withEach("http://h/a", {" ", "\t", "\n", "\"", "`", "$", "\\", "\x01", "\x7f", "\xc3\xa4", std::string(1, '\0')},
              "b") +
         std::vector<std::string>{"-O/etc/passwd", "ftp://h/x", "file:///etc/passwd", "h/x", "http:/h",
                                  "\"; reboot; \"", "http://h/$(reboot)", "http://h/`reboot`"}},
    {"/fwupgradeinfo/newfw/notesurl",
     {"", "http://fw.pendra.example/PB100/notes.xml?lang=en&v=1"},
     {"http://h/a\"b", "http://h/a b", "notes.xml", "http://h/$x"}},
    {"/runtime/easyroaming/deauthsta/ifname",
     {"", "ra0", "rai0", "wlan0.1"},
     withEach("ra", splitters, "0") + std::vector<std::string>{"-h", "ra/0", "abcdefghijklmnop"}},
    {"/runtime/easyroaming/deauthsta/mac",
     {"", "02:11:22:33:44:55", "aa:bb:cc:DD:EE:FF", "AB:cd:EF:01:23:45"},
     {"02:11:22:33:44", "02:11:22:33:44:55:66", "02-11-22-33-44-55", "0g:11:22:33:44:55", "02:11:22:33:44:5",
      "02:11:22:33:44:55;", " 02:11:22:33:44:55", "02:11:22:33:44;55", "021122334455"}},
};

class CorpusGuards : public testing::TestWithParam<Corpus> {};

TEST_P(CorpusGuards, LegitimateText_IsTaken) {
    for (const std::string& text : GetParam().taken)
        EXPECT_EQ(guardAgainst(GetParam().path, text), nullptr) << GetParam().path << " " << text;
}

TEST_P(CorpusGuards, TextThatBreaksOut_IsRefusedWithAReason) {
    for (const std::string& text : GetParam().refused) {
        const char* reason = guardAgainst(GetParam().path, text);
        ASSERT_NE(reason, nullptr) << GetParam().path << " " << testing::PrintToString(text);
        EXPECT_TRUE(std::string(reason).starts_with("takes ")) << reason;
    }
}

INSTANTIATE_TEST_SUITE_P(Nodes, CorpusGuards, testing::ValuesIn(corpora), [](const auto& each) {
    const std::string path = each.param.path;
    return path.substr(path.rfind('/') + 1);
});

TEST(Guards, OtherNodes_TakeAnyText) {
    for (const char* path : {"/sys/friendlyname", "/bramble/tempdirecory/x", "/BRAMBLE/tempdirecory", "/uplink/ip"})
        EXPECT_EQ(guardAgainst(path, "'; reboot; $(x)\n"), nullptr) << path;
}

/** How the library's commands hold a text. */
struct Quoting {
    const char* path;
    const char* before;
    const char* after;
};
constexpr Quoting quotings[] = {
    {"/bramble/tempdirecory", "", "/zepset_result.xml"},    {"/bramble/tempdirecory", "\"", "/x\""},
    {"/bramble/scriptdirecory", "", "/uplink.sh"},          {"/fwupgradeinfo/fwupgradefn", "/tmp/", ""},
    {"/fwupgradeinfo/currfwfilename", "\"/tmp/", ".xml\""}, {"/fwupgradeinfo/newfw/fileurl", "\"", "\""},
    {"/runtime/easyroaming/deauthsta/ifname", "", ""},      {"/runtime/easyroaming/deauthsta/mac", "", ""},
};

std::string withoutQuotes(std::string text) {
    std::erase(text, '"');
    return text;
}

/** A text of bytes that a shell looks at, sometimes behind a start that the guard wants. */
std::string randomText(std::mt19937& random) {
    const std::string bytes = "ab0F/.:-_=%@,+ \t\n;|&`$()<>*?[]{}~!#'\"\\^\x80\xff";
    const std::vector<std::string> starts = {"", "/", "http://", "a", "02:11:22:33:44:5"};
    std::string text = starts[random() % starts.size()];
    for (auto length = random() % 4; length > 0; --length)
        text += bytes[random() % bytes.size()];
    return text;
}

TEST(Guards, WhateverIsTaken_StaysOneWordOfTheShell) {
    const Scratch scratch;
    std::mt19937 random(7);
    std::string script;
    std::string expected;
    int words = 0;
    for (int tries = 0; tries < 40000; ++tries) {
        const std::string text = randomText(random);
        const Quoting& quoting = quotings[static_cast<std::size_t>(tries) % std::size(quotings)];
        if (text.empty() || guardAgainst(quoting.path, text) != nullptr) continue;
        script += std::string("printf '<%s>\\n' ") + quoting.before + text + quoting.after + "\n";
        expected += "<" + withoutQuotes(quoting.before + text + quoting.after) + ">\n";
        ++words;
    }
    store(scratch.file("script"), script);
    const Ran ran = run(scratch, "cd " + scratch.path() + " && sh ./script");
    EXPECT_GT(words, 1000);
    EXPECT_EQ(ran.output, expected);
    EXPECT_EQ(ran.errors, "");
}

TEST(Guards, FetchTemplate_HandsTheAddressOverAsOneArgument) {
    const Scratch scratch;
    const std::string address = "http://h/it's(1)?a=1&b=2;c=%20|<x>*#f";
    ASSERT_EQ(guardAgainst("/fwupgradeinfo/newfw/fileurl", address), nullptr);
    const std::string command = "wget -O \"/tmp/upld.bin\" \"" + address + "\"";
    const Ran ran = run(scratch, "wget() { printf '<%s>\\n' \"$@\"; }\n" + command);
    EXPECT_EQ(ran.output, "<-O>\n</tmp/upld.bin>\n<" + address + ">\n");
}

} // namespace
