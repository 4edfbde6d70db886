// docs/porting.md: what it quotes is the source, and what it tells to run does what it says.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "support/scratch.h"

namespace pendra::test {
namespace {

// A fenced block with the comment on the line before it.
struct Block {
    std::string marker; // "" when there is none
    std::string language;
    std::string text;
    int line;
};

std::vector<Block> blocksOf(const std::string& page) {
    std::vector<Block> blocks;
    std::istringstream lines(page);
    std::string before;
    bool isInside = false;
    int number = 0;
    for (std::string line; std::getline(lines, line); before = line) {
        number++;
        const bool isFence = line.starts_with("```");
        if (isFence && !isInside) {
            const bool isMarked = before.starts_with("<!-- ") && before.ends_with(" -->");
            blocks.push_back({isMarked ? before.substr(5, before.size() - 9) : "", line.substr(3), "", number});
        } else if (!isFence && isInside) {
            blocks.back().text += line + "\n";
        }
        if (isFence) isInside = !isInside;
    }
    return blocks;
}

std::vector<Block> page() {
    return blocksOf(content(PENDRA_SOURCE "/docs/porting.md"));
}

// "FILE" is all of it, "FILE: SECTION" what stands between "[SECTION]" and the next "[end]".
std::string quoted(const std::string& marker) {
    const size_t colon = marker.find(": ");
    const std::string source = content(PENDRA_SOURCE "/" + marker.substr(0, colon));
    if (colon == marker.npos) return source;
    const std::string start = "/* [" + marker.substr(colon + 2) + "] */\n";
    const size_t begin = source.find(start);
    if (begin == source.npos) return "(there is no such section)";
    const size_t first = begin + start.size();
    return source.substr(first, source.find("/* [end] */", first) - first);
}

bool isOneOf(const std::string& marker, const std::vector<std::string>& markers) {
    return std::find(markers.begin(), markers.end(), marker) != markers.end();
}

bool isQuote(const Block& block) {
    return !isOneOf(block.marker, {"run", "output", "shown"});
}

TEST(PortingPage, Block_SaysWhereItComesFrom) {
    for (const Block& block : page()) {
        EXPECT_NE(block.marker, "") << "line " << block.line;
        EXPECT_TRUE(block.language != "c" || isQuote(block)) << "line " << block.line;
        EXPECT_EQ(block.language == "text", block.marker == "output") << "line " << block.line;
    }
}

TEST(PortingPage, Quote_IsTheSource) {
    int quotes = 0;
    for (const Block& block : page()) {
        if (!isQuote(block)) continue;
        EXPECT_EQ(block.text, quoted(block.marker)) << "line " << block.line;
        quotes++;
    }
    EXPECT_GE(quotes, 10);
}

TEST(PortingPage, Section_IsQuoted) {
    std::vector<std::string> markers;
    for (const Block& block : page())
        markers.push_back(block.marker);
    for (const std::string file :
         {"examples/porting/host.c", "examples/porting/flat_tree_platform.c", "tests/conformance/flat_tree_main.c"}) {
        std::istringstream lines(content(PENDRA_SOURCE "/" + file));
        for (std::string line; std::getline(lines, line);) {
            if (!line.starts_with("/* [") || line == "/* [end] */") continue;
            EXPECT_TRUE(isOneOf(file + ": " + line.substr(4, line.size() - 8), markers)) << file << ": " << line;
        }
    }
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (size_t at = 0; (at = text.find(from, at)) != text.npos; at += to.size())
        text.replace(at, from.size(), to);
    return text;
}

// The reader's own folders are the test's.
std::string commandsOf(const Block& block, const Scratch& scratch) {
    const std::string commands = replaced(block.text, "build/porting", scratch.file("build"));
    return "set -e\ncd '" PENDRA_SOURCE "'\n" + replaced(commands, "/tmp/zep", scratch.path());
}

// The build that the page makes: what it needs, and what its libraries leave open.
void expectOwnBuild(const Scratch& scratch) {
    const std::string cache = content(scratch.file("build/CMakeCache.txt"));
    EXPECT_NE(cache.find("PENDRA_PLATFORM:STRING=external\n"), std::string::npos);
    for (const char* package : {"LMDB", "MICROHTTPD", "CURL", "CLI11", "GTest", "OPENSSL", "ZLIB", "nlohmann"})
        EXPECT_EQ(cache.find(package), std::string::npos) << package;
    for (const char* library : {"libpendra.so", "libpendra.a"}) {
        const Ran check = run(scratch, PENDRA_CHECK_UNDEFINED " " + scratch.file("build/") + library +
                                           " " PENDRA_SOURCE "/include/pendra/platform.h " PENDRA_C_LIBRARIES);
        EXPECT_EQ(check.status, 0) << check.output << check.errors;
    }
}

TEST(PortingPage, Commands_DoWhatThePageSays) {
    const Scratch scratch;
    Ran last{};
    int outputs = 0;
    for (const Block& block : page()) {
        if (block.marker == "run") {
            last = run(scratch, commandsOf(block, scratch));
            ASSERT_EQ(last.status, 0) << "line " << block.line << "\n" << last.output << last.errors;
        }
        if (block.marker != "output") continue;
        EXPECT_EQ(last.output, block.text) << "line " << block.line;
        outputs++;
    }
    EXPECT_GE(outputs, 4);
    expectOwnBuild(scratch);
}

} // namespace
} // namespace pendra::test
