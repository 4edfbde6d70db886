// Which calls leave the library, as its symbols say, and which of them the sweeps know.
#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>

#include "fault_points.h"
#include "roads.h"

namespace pendra::test {
namespace {

// The words of each line; '#' starts a comment.
std::vector<std::vector<std::string>> readTable(const char* file) {
    std::ifstream text(file);
    EXPECT_TRUE(text.good()) << file;
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(text, line);) {
        std::istringstream words(line.substr(0, line.find('#')));
        std::vector<std::string> row;
        for (std::string word; words >> word;)
            row.push_back(word);
        if (!row.empty()) rows.push_back(row);
    }
    return rows;
}

// The symbols that the library uses and does not define.
std::set<std::string> callsOfLibrary() {
    std::set<std::string> used;
    std::set<std::string> defined;
    for (const auto& row : readTable(PENDRA_LIBRARY_SYMBOLS)) {
        if (row.size() < 2 || row[1].size() != 1) continue; // the name of an object
        const bool isUse = row[1] == "U" || row[1] == "w" || row[1] == "v";
        (isUse ? used : defined).insert(row[0]);
    }
    for (const std::string& name : defined)
        used.erase(name);
    return used;
}

// The symbol that a call is swept as, by the call's name.
std::map<std::string, std::string> sweptCalls() {
    const std::string prefix = "fault_";
    std::map<std::string, std::string> swept;
    for (const auto& row : readTable(PENDRA_CALLS_MAP))
        swept[row[0]] = canonicalName(row[1].substr(prefix.size()));
    return swept;
}

bool isHarmless(const std::string& name) {
    const auto rows = readTable(PENDRA_HARMLESS_CALLS);
    return std::any_of(rows.begin(), rows.end(), [&](const auto& row) {
        const std::string& pattern = row[0];
        return pattern.back() == '*' ? name.compare(0, pattern.size() - 1, pattern, 0, pattern.size() - 1) == 0
                                     : name == pattern;
    });
}

class CallList : public DeviceTest {};

TEST_F(CallList, EveryCallOfTheLibrary_IsSweptOrCannotFail) {
    const auto calls = callsOfLibrary();
    EXPECT_EQ(1U, calls.count("system"));
    const auto swept = sweptCalls();
    for (const std::string& call : calls)
        EXPECT_TRUE(swept.count(call) == 1 || isHarmless(call))
            << call << " is new: add it to calls.map and fault_points.cpp, or to harmless.calls when it cannot fail";
}

TEST_F(CallList, NoCall_IsSweptAndHarmlessAtOnce) {
    for (const auto& [call, symbol] : sweptCalls())
        EXPECT_FALSE(isHarmless(call)) << call;
}

// A call that no road comes to would be swept in name only.
TEST_F(CallList, EverySweptCall_IsReached) {
    std::set<std::string> reached;
    for (const Road& road : roads()) {
        startRoad(road, directory());
        faults().start();
        road.walk(directory());
        faults().stop();
        for (const Call& call : faults().calls())
            reached.insert(call.symbol);
    }
    // puts() tells of a console that cannot be opened; free() and perror() cannot fail.
    reached.insert({"puts", "free", "perror"});
    const auto swept = sweptCalls();
    for (const std::string& call : callsOfLibrary()) {
        const auto found = swept.find(call);
        if (found == swept.end()) continue;
        EXPECT_EQ(1U, reached.count(found->second)) << call << " is on no road";
    }
}

} // namespace
} // namespace pendra::test
