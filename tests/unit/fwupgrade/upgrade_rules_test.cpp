// The upgrade as a state machine: what each action does in each status, and what a wrong one reports.
#include <csignal>

#include "upgrade.h"

using namespace pendra::test;

namespace {

constexpr const char* kActions = "0123456789x*";

class UpgradeRules : public UpgradeTest {
  protected:
    void prepare() {
        resetLibrary();
        device() = {};
        load();
        loadAddresses();
        writeFile(path("PX.xml"), kList);
        storeImage(999);
    }

    // A step: everything that leaves the library before the report, and the status after it.
    struct Step {
        Events events;
        int32_t status;
    };

    Step step(char kind, int32_t status, char action) const {
        switch (kind) {
            case 'R':
                return startOver();
            case 'S':
                return search();
            case 'D':
                return {{"run get " + inQuotes("upld.bin") + " \"" + kImageAddress + "\" &"}, 3};
            case 'P':
                return {{"run echo `ps aux |grep \"\"` > " + inQuotes("zepfwtmp.txt")}, 3};
            case 'U':
                return {kHandOver, 5};
            case 'W':
                return {wrong(status, action), status};
            default:
                return {{}, status};
        }
    }

    Events report(char kind, int32_t status) const {
        if (kind == 'U')
            return starting("time", "180") + going("fwsize", "999") + going("fwver", "2.0.") +
                   going("result", "5", true);
        return status < 2 ? shortReport(status) : imageReport(status, "999", "2.0.");
    }

    Events wrong(int32_t status, char action) const {
        return starting("erractmsg", "Status=" + std::to_string(status) + ", Act=" + action) +
               going("result", "-3", true);
    }

  private:
    const Events kHandOver = {"tcapi_set System_Entry upgrade_fw 1", "setitimer 0 3.000000 every 0.000000",
                              "signal " + std::to_string(SIGALRM)};

    Step startOver() const {
        return {{"run rm -f " + inQuotes("zepcheckfw.xml") + " " + inQuotes("upld.bin") + " " +
                     inQuotes("zepfwnotes.xml") + " " + inQuotes("zepfwtmp.txt"),
                 "del /fwupgradeinfo/newfw"},
                0};
    }

    Step search() const {
        return {{"run get " + inQuotes("PX.xml") + " \"" + kServer + "/PX/PX.xml\"",
                 std::string("set ") + kFileNode + "=" + kImageAddress,
                 std::string("set ") + kNotesNode + "=" + kNotesAddress,
                 "run get " + inQuotes("zepfwnotes.xml") + " \"" + kNotesAddress + "\" &"},
                2};
    }
};

// R starts over, S searches, D downloads, P polls, U upgrades, W is wrong, - only reports.
struct StatusRow {
    int32_t status;
    const char* kinds; // one for each action
};

constexpr StatusRow kRows[] = {
    //   0123456789x*
    {0, "RSWWWWWWW-WW"},  // initial
    {1, "RWWWWWWWW-WW"},  // none found
    {2, "RWDWWWWWW-WW"},  // found
    {3, "RPPPPPPPPPPP"},  // downloading
    {4, "RWWWUWWWW-WW"},  // downloaded
    {5, "RWWWWWWWW-WW"},  // started
    {-1, "RWWWWWWWW-WW"}, // list malformed
    {-2, "RWWWWWWWW-WW"}, // upgrade failed
    {-5, "RWWWWWWWW-WW"}, // list not fetched
};

TEST_F(UpgradeRules, EveryActionInEveryStatus_DoesItsStepAndReports) {
    for (const auto& [status, kinds] : kRows)
        for (size_t column = 0; kActions[column] != '\0'; column++) {
            const char action = kActions[column];
            SCOPED_TRACE("status " + std::to_string(status) + ", action " + action);
            prepare();
            const Step expected = step(kinds[column], status, action);
            EXPECT_EQ(expected.events + report(kinds[column], expected.status),
                      actIn(status, static_cast<unsigned char>(action)));
            EXPECT_EQ(expected.status, fwXmlData.status);
        }
}

class StartingOver : public UpgradeTest {};

TEST_F(StartingOver, ImageName_IsItsNodeOrTheDefault) {
    device().tree["/fwupgradeinfo/fwupgradefn"] = "px.img";
    const Events named = act('0');
    EXPECT_NE(std::string::npos, named[0].find(" " + inQuotes("px.img") + " "));
    device().tree.erase("/fwupgradeinfo/fwupgradefn");
    const Events unnamed = act('0');
    EXPECT_EQ("set /fwupgradeinfo/fwupgradefn=upld.bin", unnamed[0]); // reading it also creates it
    EXPECT_NE(std::string::npos, unnamed[1].find(" " + inQuotes("upld.bin") + " "));
}

TEST_F(StartingOver, FoundFirmware_IsForgotten) {
    loadAddresses();
    act('0');
    EXPECT_FALSE(device().has(kFileNode));
    EXPECT_FALSE(device().has(kNotesNode));
}

// The command has room for every path there can be.
TEST_F(StartingOver, LongNames_AreNotCut) {
    const std::string name(255, 'n');
    const std::string directoryName = "/" + std::string(126, 'd');
    device().tree["/fwupgradeinfo/fwupgradefn"] = name;
    setDirectory(directoryName);
    const std::string start = " \"" + directoryName + "/";
    EXPECT_EQ("run rm -f" + start + "zepcheckfw.xml\"" + start + name + "\"" + start + "zepfwnotes.xml\"" + start +
                  "zepfwtmp.txt\"",
              act('0')[0]);
}

TEST_F(StartingOver, Trace_HoldsTheCommand) {
    daemon_log_level = 7;
    const Events events = act('0');
    EXPECT_EQ(
        (std::vector<std::string>{"1000:do_FwUpgradeAction]", "===FWUPGRADE_ACT_INIT===", "cmd=" + events[0].substr(4),
                                  "1000:write_TmpXmlFile]" + events[2].substr(4), "zepcheckfw.xml done"}),
        logLines());
}

class TemporaryDirectory : public UpgradeTest {};

TEST_F(TemporaryDirectory, EmptyField_IsReadFromItsNode) {
    EXPECT_EQ(shortReport(0), act('9'));
    EXPECT_EQ(directory(), zepXmlData.tmpPath);
}

TEST_F(TemporaryDirectory, FilledField_Stays) {
    setDirectory("/t");
    EXPECT_EQ(Events{"run echo '<?xml version=\"1.0\" ?><root><result>0</result></root>' > /t/zepcheckfw.xml"},
              act('9'));
    EXPECT_EQ("run rm -f \"/t/zepcheckfw.xml\" \"/t/upld.bin\" \"/t/zepfwnotes.xml\" \"/t/zepfwtmp.txt\"", act('0')[0]);
    EXPECT_STREQ("/t", zepXmlData.tmpPath);
}

TEST_F(TemporaryDirectory, Search_ReadsItAnew) {
    setDirectory("/t");
    const Events events = act('1');
    EXPECT_EQ("run get " + inQuotes("PX.xml") + " \"" + kServer + "/PX/PX.xml\"", events[0]);
    EXPECT_EQ(directory(), zepXmlData.tmpPath);
    EXPECT_EQ(shortReport(-5)[0], events[1]);
}

TEST_F(TemporaryDirectory, WrongSearch_DoesNotReadItAnew) {
    setDirectory("/t");
    actIn(1, '1');
    EXPECT_STREQ("/t", zepXmlData.tmpPath);
}

TEST_F(TemporaryDirectory, LongNode_IsCutToItsField) {
    device().tree["/bramble/tempdirecory"] = "/" + std::string(1022, 'd');
    act('9');
    EXPECT_EQ("/" + std::string(126, 'd'), zepXmlData.tmpPath);
}

class WrongAction : public UpgradeTest {};

// "-3" closes the document, so the report starts it anew and is all that is left.
TEST_F(WrongAction, DownloadBeforeASearch_ReportsTheStatusInTheEnd) {
    EXPECT_EQ(
        (Events{"run echo '<?xml version=\"1.0\" ?><root><erractmsg>Status=0, Act=2</erractmsg>' > " +
                    path("zepcheckfw.xml"),
                "run echo '<result>-3</result></root>' >> " + path("zepcheckfw.xml"),
                "run echo '<?xml version=\"1.0\" ?><root><result>0</result></root>' > " + path("zepcheckfw.xml")}),
        act('2'));
}

TEST_F(WrongAction, RealDocument_HoldsTheStatusAlone) {
    device().runShell = true;
    actIn(-2, '4');
    EXPECT_EQ("<?xml version=\"1.0\" ?><root><result>-2</result></root>\n", readFile(path("zepcheckfw.xml")));
}

TEST_F(WrongAction, Trace_NamesTheActionTwice) {
    daemon_log_level = 7;
    const Events events = act('x');
    std::vector<std::string> expected = {"1000:do_FwUpgradeAction]", "===FWUPGRADE_ACT_UNKNOW===,act='x',120"};
    for (const size_t write : {0U, 1U})
        expected.push_back("1000:write_TmpXmlFile]" + events[write].substr(4));
    expected.insert(expected.end(), {"zepcheckfw.xml wrong act=x", "1000:write_TmpXmlFile]" + events[2].substr(4),
                                     "zepcheckfw.xml done"});
    EXPECT_EQ(expected, logLines());
}

TEST_F(WrongAction, BelowTheTraceLevel_LeavesNoTrace) {
    daemon_log_level = 6;
    for (const char action : {'x', '0', '9'})
        act(static_cast<unsigned char>(action));
    EXPECT_EQ("", logText());
}

// Only the whole number is the character.
TEST_F(WrongAction, NumbersBeyondACharacter_AreNone) {
    writeFile(path("PX.xml"), kList);
    for (const uint32_t action : {0x131U, 0x80000031U, 0xFFFFFFFFU, 0U}) {
        SCOPED_TRACE(action);
        const Events events = act(action);
        ASSERT_EQ(3U, events.size());
        EXPECT_EQ(going("result", "-3", true)[0], events[1]);
        EXPECT_EQ(shortReport(0)[0], events[2]);
        EXPECT_EQ(0, fwXmlData.status);
    }
}

} // namespace
