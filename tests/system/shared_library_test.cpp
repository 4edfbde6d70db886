/**
 * @file
 * The shared library as it ships: what it exports, what it needs, and headers that every compiler takes.
 */
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <sstream>

#include "device_files.h"
#include "process.h"

namespace pendra::test {
namespace {

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

/** @return the texts in brackets of the dynamic section's entries of one kind. */
std::vector<std::string> dynamicEntries(const std::string& kind) {
    std::vector<std::string> entries;
    for (const std::string& line : linesOf(run({.command = {"readelf", "-d", "-W", PENDRA_LIBRARY}}).output)) {
        if (line.find("(" + kind + ")") == std::string::npos) continue;
        const size_t open = line.find('[');
        entries.push_back(line.substr(open + 1, line.find(']') - open - 1));
    }
    return entries;
}

std::set<std::string> listedSymbols() {
    std::set<std::string> symbols;
    for (const std::string& line : linesOf(readFile(std::string(PENDRA_SOURCE) + "/cmake/pendra.symbols"))) {
        if (!line.empty() && line.front() != '#') symbols.insert(line);
    }
    return symbols;
}

std::set<std::string> exportedSymbols() {
    const Ended ended =
        run({.command = {"nm", "-D", "--defined-only", "--format=posix", "--without-symbol-versions", PENDRA_LIBRARY}});
    EXPECT_EQ(ended.status, 0) << ended.errors;
    std::set<std::string> symbols;
    for (const std::string& line : linesOf(ended.output)) {
        std::istringstream words(line);
        std::string name;
        std::string kind;
        words >> name >> kind;
        if (kind != "A") symbols.insert(name); // the name of the version itself
    }
    return symbols;
}

TEST(SharedLibrary, DynamicSymbols_AreThoseOfTheList) {
    const std::set<std::string> listed = listedSymbols();
    EXPECT_GT(listed.size(), 100u);
    EXPECT_EQ(exportedSymbols(), listed);
}

TEST(SharedLibrary, DynamicSection_NeedsTheCLibraryOnly) {
    EXPECT_EQ(dynamicEntries("NEEDED"), std::vector<std::string>{"libc.so.6"});
}

TEST(SharedLibrary, DynamicSection_HasTheSettledName) {
    EXPECT_EQ(dynamicEntries("SONAME"), std::vector<std::string>{"libpendra.so.1"});
    EXPECT_EQ(dynamicEntries("RPATH"), std::vector<std::string>{});
    EXPECT_EQ(dynamicEntries("RUNPATH"), std::vector<std::string>{});
}

/** Compiles one line that includes a header, with every warning an error. */
Ended compile(const std::vector<std::string>& compiler, const std::string& header) {
    std::vector<std::string> command = compiler;
    command.insert(command.end(), {"-Wall", "-Wextra", "-Wpedantic", "-Werror", "-fsyntax-only",
                                   "-I" + std::string(PENDRA_SOURCE) + "/include", "-"});
    return run({.command = std::move(command), .input = "#include \"pendra/" + header + "\"\n"});
}

TEST(SharedLibrary, EachPublicHeader_CompilesAloneAsC99AndAsCpp17) {
    int headers = 0;
    for (const auto& entry : std::filesystem::directory_iterator(std::string(PENDRA_SOURCE) + "/include/pendra")) {
        const std::string header = entry.path().filename();
        const Ended c = compile({PENDRA_C_COMPILER, "-x", "c", "-std=c99"}, header);
        EXPECT_EQ(c.status, 0) << header << "\n" << c.errors;
        const Ended cpp = compile({PENDRA_CXX_COMPILER, "-x", "c++", "-std=c++17"}, header);
        EXPECT_EQ(cpp.status, 0) << header << "\n" << cpp.errors;
        ++headers;
    }
    EXPECT_EQ(headers, 8);
}

} // namespace
} // namespace pendra::test
