// The checks themselves: a sound platform passes them all, and each fault is found by the check that is there for it.
#include "platform_checks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <set>
#include <sstream>

#include "flat_tree_platform.h"
#include "pendra/platform.h"
#include "pliable_platform.h"
#include "support/scratch.h"

namespace pendra::test {
namespace {

struct Fault {
    const char* name;
    std::set<std::string> finders; // the checks that fail
    void (*put)(PliablePlatform& platform);
};

const PliablePlatform sound = soundPlatform();

bool startsWith(const std::string& text, const char* beginning) {
    return text.starts_with(beginning);
}

// Text and result of the sound platform.
std::pair<std::string, int> read(const std::string& path) {
    char text[XNODE_TEXT_MAX];
    const int result = sound.getText(text, path);
    return {text, result};
}

// Stores what a change of the text makes of it.
void changeTexts(PliablePlatform& platform, std::function<std::string(std::string)> change) {
    platform.setText = [change](const std::string& text, const std::string& path) {
        return sound.setText(startsWith(path, "/conformance") ? change(text) : text, path);
    };
}

// Finds nodes by what a change of the path makes of it.
void changePaths(PliablePlatform& platform, std::function<std::string(std::string)> change) {
    platform.readPath = [change](const char*, const std::string& path) { return change(path); };
    platform.setText = [change](const std::string& text, const std::string& path) {
        return sound.setText(text, change(path));
    };
    platform.setNumber = [change](int number, const std::string& path) {
        return sound.setNumber(number, change(path));
    };
    platform.remove = [change](const std::string& path) { return sound.remove(change(path)); };
}

std::string replaced(std::string text, char from, char to) {
    std::replace(text.begin(), text.end(), from, to);
    return text;
}

std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

const char* const kTexts = "texts are stored and read back";
const char* const kBytes = "every byte of a text is kept";
const char* const kLineEnds = "a line end stays in its text";
const char* const kAbsent = "an absent node reads empty and negative";
const char* const kFormats = "read paths are formats";
const char* const kPlainPaths = "written paths are plain";
const char* const kLetterCase = "paths compare byte for byte";
const char* const kNumbers = "numbers are decimal texts";
const char* const kLongestText = "the longest text fills the buffer";
const char* const kLongestPath = "the longest path is a node";
const char* const kCounts = "elements of a list are counted";
const char* const kDeletion = "a node is deleted with all below it";
const char* const kRoom = "a full house has room";
const char* const kGuards = "guarded nodes refuse what a shell would run";
const char* const kVendor = "the vendor's API refuses an absent image";

const Fault faults[] = {
    {"AbsentTextLeavesTheBuffer",
     {kAbsent, kPlainPaths, kLetterCase, kLongestPath, kDeletion},
     [](PliablePlatform& platform) {
         platform.getText = [](char* destination, const std::string& path) {
             const auto [text, result] = read(path);
             if (result == 0) std::strcpy(destination, text.c_str());
             return result;
         };
     }},
    {"AbsentTextIsFound",
     {kAbsent, kPlainPaths, kLetterCase, kLongestPath, kDeletion},
     [](PliablePlatform& platform) {
         platform.getText = [](char* text, const std::string& path) { return sound.getText(text, path), 0; };
     }},
    {"AbsentNumberIsZero",
     {kAbsent, kPlainPaths, kLetterCase, kLongestPath, kDeletion},
     [](PliablePlatform& platform) {
         platform.getNumber = [](const std::string& path) {
             return read(path).second == 0 || path.ends_with('#') ? sound.getNumber(path) : 0;
         };
     }},
    {"PathArgumentsAreIgnored",
     {kFormats},
     [](PliablePlatform& platform) {
         platform.readPath = [](const char* format, const std::string& path) {
             return std::strcmp(format, "%s") == 0 ? path : std::string(format);
         };
     }},
    {"WrittenPathsAreFormats",
     {kPlainPaths},
     [](PliablePlatform& platform) {
         platform.setText = [](const std::string& text, const std::string& path) {
             return sound.setText(text, path.ends_with("%d") ? path.substr(0, path.size() - 2) + "0" : path);
         };
     }},
    {"PathsIgnoreLetterCase", {kLetterCase}, [](PliablePlatform& platform) { changePaths(platform, lowered); }},
    {"PathsAreCut",
     {kLongestPath},
     [](PliablePlatform& platform) { changePaths(platform, [](std::string path) { return path.substr(0, 126); }); }},
    {"TextsAreCut",
     {kLongestText},
     [](PliablePlatform& platform) { changeTexts(platform, [](std::string text) { return text.substr(0, 127); }); }},
    {"TextsAreTrimmed",
     {kBytes},
     [](PliablePlatform& platform) {
         changeTexts(platform,
                     [](std::string text) { return text.substr(std::min(text.find_first_not_of(' '), text.size())); });
     }},
    {"BackslashesAreLost",
     {kBytes},
     [](PliablePlatform& platform) {
         changeTexts(platform, [](std::string text) { return replaced(std::move(text), '\\', '/'); });
     }},
    {"BytesAreAscii",
     {kBytes},
     [](PliablePlatform& platform) {
         changeTexts(platform, [](std::string text) { return replaced(std::move(text), '\xc3', '?'); });
     }},
    {"LineEndsBecomeBlanks",
     {kLineEnds},
     [](PliablePlatform& platform) {
         changeTexts(platform,
                     [](std::string text) { return replaced(replaced(std::move(text), '\n', ' '), '\r', ' '); });
     }},
    {"LineEndsBeginNodes",
     {kLineEnds},
     [](PliablePlatform& platform) {
         platform.setText = [](const std::string& text, const std::string& path) {
             if (text.find("\r/conformance/zzz=c") == text.npos) return sound.setText(text, path);
             return sound.setText("c", "/conformance/zzz");
         };
     }},
    {"LongTextsOverflow",
     {kLongestText},
     [](PliablePlatform& platform) {
         platform.setText = [](const std::string& text, const std::string& path) {
             return sound.setText(text.substr(0, XNODE_TEXT_MAX - 1), path);
         };
         platform.getText = [](char* text, const std::string& path) {
             const int result = sound.getText(text, path);
             if (std::strlen(text) == XNODE_TEXT_MAX - 1 && path.ends_with("/text")) text[XNODE_TEXT_MAX] = '\0';
             return result;
         };
     }},
    {"EmptyTextDeletes",
     {kTexts},
     [](PliablePlatform& platform) {
         platform.setText = [](const std::string& text, const std::string& path) {
             if (!text.empty() || !startsWith(path, "/conformance")) return sound.setText(text, path);
             sound.remove(path);
             return 0;
         };
     }},
    {"WritesAreLost",
     {kTexts, kBytes, kLineEnds, kLongestText},
     [](PliablePlatform& platform) {
         platform.setText = [](const std::string& text, const std::string& path) {
             return path == "/conformance/text" ? 0 : sound.setText(text, path);
         };
     }},
    {"NumbersAreHexadecimal",
     {kNumbers},
     [](PliablePlatform& platform) {
         platform.setNumber = [](int number, const std::string& path) {
             std::ostringstream text;
             text << std::hex << number;
             return sound.setText(text.str(), path);
         };
     }},
    {"NumbersAreShort",
     {kNumbers},
     [](PliablePlatform& platform) {
         platform.getNumber = [](const std::string& path) { return static_cast<short>(sound.getNumber(path)); };
     }},
    {"CountIsTheHighestNumber",
     {kCounts},
     [](PliablePlatform& platform) {
         platform.getNumber = [](const std::string& path) {
             const bool isGap = path == "/conformance/sta#" && read("/conformance/sta:11").second == 0;
             return isGap ? 11 : sound.getNumber(path);
         };
     }},
    {"CountIsOfNodes",
     {kCounts},
     [](PliablePlatform& platform) {
         platform.getNumber = [](const std::string& path) {
             const int count = sound.getNumber(path);
             return path == "/conformance/sta#" && count > 0 ? count + 1 : count; // "mac" and "ifname" of the first
         };
     }},
    {"CountOfNothingIsOne",
     {kCounts},
     [](PliablePlatform& platform) {
         platform.getNumber = [](const std::string& path) {
             const int count = sound.getNumber(path);
             return path.ends_with('#') && count < 0 ? 1 : count;
         };
     }},
    {"DeletionLeavesWhatIsBelow",
     {kDeletion},
     [](PliablePlatform& platform) {
         platform.remove = [](const std::string& path) {
             const auto [text, found] = read(path + "/mac");
             const int result = sound.remove(path);
             return found == 0 && path.ends_with("l/sta:1") ? sound.setText(text, path + "/mac") : result;
         };
     }},
    {"DeletionTakesNeighbours",
     {kDeletion},
     [](PliablePlatform& platform) {
         platform.remove = [](const std::string& path) {
             sound.remove(path + "0");
             return sound.remove(path);
         };
     }},
    {"DeletionOfNothingSucceeds",
     {kDeletion},
     [](PliablePlatform& platform) {
         platform.remove = [](const std::string& path) { return sound.remove(path), 0; };
     }},
    {"RoomFor200Nodes",
     {kRoom},
     [](PliablePlatform& platform) {
         platform.setText = [](const std::string& text, const std::string& path) {
             return sound.getNumber("/conformance/site#") < 200 ? sound.setText(text, path) : -1;
         };
     }},
    {"NothingIsGuarded",
     {kGuards},
     [](PliablePlatform& platform) {
         platform.setText = [](const std::string& text, const std::string& path) {
             const int result = sound.setText(text, path);
             return startsWith(path, "/conformance") ? result : 0;
         };
     }},
    {"GuardsTakeNothing",
     {kGuards},
     [](PliablePlatform& platform) {
         platform.setText = [](const std::string& text, const std::string& path) {
             return startsWith(path, "/conformance") || text.empty() ? sound.setText(text, path) : -1;
         };
     }},
    {"UpgradeIsRefused", {kVendor}, [](PliablePlatform& platform) { platform.announceUpgrade = [] { return -1; }; }},
    {"AnyImageIsTaken", {kVendor}, [](PliablePlatform& platform) { platform.writeFirmware = [] { return 0; }; }},
};

int runWords(std::vector<std::string> words) {
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    return runChecks(static_cast<int>(words.size()), pointers.data());
}

struct Outcome {
    int result;
    std::set<std::string> passed;
    std::set<std::string> failed;
    std::string output;
};

Outcome outcomeOf(const std::vector<std::string>& words) {
    testing::internal::CaptureStdout();
    Outcome outcome{.result = runWords(words), .passed = {}, .failed = {}, .output = {}};
    outcome.output = testing::internal::GetCapturedStdout();
    std::istringstream lines(outcome.output);
    for (std::string line; std::getline(lines, line);) {
        if (startsWith(line, "ok     ")) outcome.passed.insert(line.substr(7));
        if (startsWith(line, "FAILED ")) outcome.failed.insert(line.substr(7));
    }
    return outcome;
}

// A device of the flat-file example, whose parts a test takes away.
class PlatformChecks : public testing::Test {
  protected:
    PlatformChecks() {
        std::filesystem::copy(PENDRA_EXAMPLE "/device.tree", tree_);
        std::filesystem::copy(PENDRA_EXAMPLE "/scripts", directory_.file("scripts"));
        EXPECT_EQ(flatTreeOpen(tree_.c_str()), 0) << flatTreeProblem();
        platform() = sound;
        flatTreeBegin(); // what the checks do stays in memory
        EXPECT_EQ(sound.setText(directory_.path(), "/bramble/tempdirecory"), 0);
        EXPECT_EQ(sound.setText(directory_.file("scripts"), "/bramble/scriptdirecory"), 0);
    }
    ~PlatformChecks() override { platform() = sound; }
    const Scratch& directory() const { return directory_; }
    const std::string& tree() const { return tree_; }

  private:
    Scratch directory_;
    std::string tree_ = directory_.file("device.tree");
};

TEST_F(PlatformChecks, SoundPlatform_PassesThemAll) {
    const Outcome outcome = outcomeOf({"platform", "device"});
    EXPECT_EQ(outcome.result, 0) << outcome.output;
    EXPECT_EQ(outcome.passed.size(), 21u) << outcome.output;
    EXPECT_TRUE(outcome.output.ends_with("\n0 failed\n")) << outcome.output;
}

TEST_F(PlatformChecks, SoundPlatform_IsLeftAsItWas) {
    ASSERT_EQ(sound.setText("eth0", "/runtime/easyroaming/deauthsta/ifname"), 0);
    ASSERT_EQ(flatTreeCommit(), 0);
    const std::string before = content(tree());
    flatTreeBegin();
    ASSERT_EQ(outcomeOf({"platform", "device"}).result, 0);
    ASSERT_EQ(flatTreeCommit(), 0);
    EXPECT_EQ(content(tree()), before);
}

TEST_F(PlatformChecks, Mark_IsFoundOnceAfterTheTreeWasReadAgain) {
    EXPECT_EQ(outcomeOf({"find"}).result, 1);
    EXPECT_EQ(outcomeOf({"leave"}).result, 0);
    ASSERT_EQ(flatTreeCommit(), 0);
    ASSERT_EQ(flatTreeOpen(tree().c_str()), 0);
    EXPECT_EQ(outcomeOf({"find"}).result, 0);
    EXPECT_EQ(outcomeOf({"find"}).result, 1);
}

TEST_F(PlatformChecks, UnknownWord_IsNamed) {
    const Outcome outcome = outcomeOf({"platfrom"});
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.output, "no such checks: platfrom\n");
}

TEST_F(PlatformChecks, ImageInItsPlace_IsLeftAlone) {
    ASSERT_EQ(sound.setText("upld.bin", "/fwupgradeinfo/fwupgradefn"), 0);
    store(directory().file("upld.bin"), "an image");
    bool isTouched = false;
    platform().announceUpgrade = [&] { return isTouched = true, 0; };
    platform().writeFirmware = [&] { return isTouched = true, -1; };
    EXPECT_EQ(outcomeOf({"platform"}).failed, std::set<std::string>{kVendor});
    EXPECT_FALSE(isTouched);
    EXPECT_EQ(content(directory().file("upld.bin")), "an image");
}

class FaultyPlatform : public PlatformChecks, public testing::WithParamInterface<Fault> {};

TEST_P(FaultyPlatform, Fault_IsFoundByItsChecks) {
    GetParam().put(platform());
    const Outcome outcome = outcomeOf({"platform"});
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.failed, GetParam().finders) << outcome.output;
}

INSTANTIATE_TEST_SUITE_P(PlatformChecks, FaultyPlatform, testing::ValuesIn(faults),
                         [](const auto& row) { return std::string(row.param.name); });

struct Lack {
    const char* name;
    const char* finder;
    const char* node; // takes the text
    const char* text;
};

const Lack lacks[] = {
    {"Password", "the nodes that every device needs are there", "/sys/user:1/password", ""},
    {"Channels", "each radio has its channels", "/lan/wireless2.4:1/channellist", ""},
    {"ChannelsOfTheOtherRadio", "each radio has its channels", "/lan/wireless5:1/wlenbl", "3"},
    {"TemporaryDirectory", "the temporary directory is short and writable", "/bramble/tempdirecory", "/nowhere"},
    {"ShortDirectory", "the temporary directory is short and writable", "/bramble/tempdirecory",
     "/tmp/./././././././././"},
    {"Scripts", "the scripts can be run", "/bramble/scriptdirecory", "/tmp"},
};

class LackingDevice : public PlatformChecks, public testing::WithParamInterface<Lack> {};

TEST_P(LackingDevice, Lack_IsFoundByItsCheck) {
    ASSERT_EQ(sound.setText(GetParam().text, GetParam().node), 0);
    const Outcome outcome = outcomeOf({"device"});
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.failed, std::set<std::string>{GetParam().finder}) << outcome.output;
}

INSTANTIATE_TEST_SUITE_P(PlatformChecks, LackingDevice, testing::ValuesIn(lacks),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(PlatformChecks, MissingProgram_IsNamed) {
    const std::string path = getenv("PATH");
    setenv("PATH", directory().path().c_str(), 1);
    const Outcome outcome = outcomeOf({"device"});
    setenv("PATH", path.c_str(), 1);
    EXPECT_EQ(outcome.failed, std::set<std::string>{"the shell has the programs"}) << outcome.output;
    EXPECT_NE(outcome.output.find(": cp\n"), std::string::npos) << outcome.output;
}

} // namespace
} // namespace pendra::test
