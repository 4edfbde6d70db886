// The download in the background, polling for its end, and the hand-over of the image.
#include <csignal>

#include "upgrade.h"

using namespace pendra::test;

namespace {

class UpgradeDownload : public UpgradeTest {
  protected:
    UpgradeDownload() { loadAddresses(); }
    static std::string keyOf(const std::string& command) {
        loadTemplate(command);
        actIn(2, '2');
        return fwXmlData.downloadKey;
    }
};

TEST_F(UpgradeDownload, Image_IsFetchedInTheBackground) {
    EXPECT_EQ(Events{"run get " + inQuotes("upld.bin") + " \"" + kImageAddress + "\" &"} + imageReport(3, "0", "2.0."),
              actIn(2, '2'));
    EXPECT_EQ(3, fwXmlData.status);
}

TEST_F(UpgradeDownload, ImageName_IsItsNodeOrTheDefault) {
    device().tree["/fwupgradeinfo/fwupgradefn"] = "px.img";
    EXPECT_EQ("run get " + inQuotes("px.img") + " \"" + kImageAddress + "\" &", actIn(2, '2')[0]);
    device().tree.erase("/fwupgradeinfo/fwupgradefn");
    const Events events = actIn(2, '2');
    EXPECT_EQ("set /fwupgradeinfo/fwupgradefn=upld.bin", events[0]);
    EXPECT_EQ("run get " + inQuotes("upld.bin") + " \"" + kImageAddress + "\" &", events[1]);
}

TEST_F(UpgradeDownload, UnsetTemplate_IsTheDefaultAndIsStored) {
    device().tree.erase("/fwupgradeinfo/urlgetcmd");
    const Events events = actIn(2, '2');
    EXPECT_EQ("set /fwupgradeinfo/urlgetcmd=wget -O \"$savefn\" \"$url\"", events[0]);
    EXPECT_EQ("run wget -O " + inQuotes("upld.bin") + " \"" + kImageAddress + "\" &", events[1]);
}

TEST_F(UpgradeDownload, Template_IsTrimmed) {
    loadTemplate(" \t get $url \t ");
    EXPECT_EQ("run get " + kImageAddress + " &", actIn(2, '2')[0]);
    loadTemplate(" get $url\n");
    EXPECT_EQ("run get " + kImageAddress + "\n &", actIn(2, '2')[0]);
}

TEST_F(UpgradeDownload, UnsetAddress_IsFetchedAsNone) {
    device().tree.erase(kFileNode);
    EXPECT_EQ("run get " + inQuotes("upld.bin") + " \"\" &", actIn(2, '2')[0]);
}

TEST_F(UpgradeDownload, LongAddressAndImageName_AreCutToTheirFields) {
    loadTemplate("$savefn");
    device().tree["/fwupgradeinfo/fwupgradefn"] = std::string(1023, 'n');
    EXPECT_EQ("run " + path(std::string(200, 'n')).substr(0, 127) + " &", actIn(2, '2')[0]);
    loadTemplate("$url");
    device().tree[kFileNode] = std::string(1023, 'u');
    EXPECT_EQ("run " + std::string(127, 'u') + " &", actIn(2, '2')[0]);
}

TEST_F(UpgradeDownload, LongCommand_IsCutAndStaysInTheBackground) {
    for (const size_t length : {252U, 253U, 254U, 255U, 256U, 300U}) {
        SCOPED_TRACE(length);
        const std::string padding(length - 1 - kImageAddress.size(), 'p');
        loadTemplate(padding + " $url");
        EXPECT_EQ("run " + (padding + " " + kImageAddress).substr(0, 253) + " &", actIn(2, '2')[0]);
        EXPECT_EQ(std::string(15, 'p'), fwXmlData.downloadKey);
    }
}

// 15 characters of the command, and then the quotes left out of them.
TEST_F(UpgradeDownload, MatchKey_IsTheCommandsStartWithoutQuotes) {
    const std::pair<const char*, const char*> rows[] = {
        {"abcdefghijklmn", "abcdefghijklmn"},
        {"abcdefghijklmno", "abcdefghijklmno"},
        {"abcdefghijklmnop", "abcdefghijklmno"},
        {"wget -O \"/tmp/pendra/upld.bin\" x", "wget -O /tmp/p"},
        {"wget -O '/tmp/pendra/upld.bin' x", "wget -O /tmp/p"},
        {"'a' \"b\" 'c' \"d\"", "a b c d"},
        {"a \"'\"'\"'\"'\"'\"'\"'b", "a "},
        {"\"'\"'\"'\"'\"'\"'\"'abc", "a"},
        {"\"'\"'\"'\"'\"'\"'\"'\"abc", ""},
        {"get", "get"}, // not "get &"
        {"  get", "get"},
        {"get $url", "get http://fw.p"},
        {"`get`", "`get`"},
    };
    for (const auto& [command, key] : rows)
        EXPECT_EQ(key, keyOf(command)) << command;
}

TEST_F(UpgradeDownload, DefaultCommand_GivesItsKey) {
    setDirectory("/tmp/pendra");
    device().tree.erase("/fwupgradeinfo/urlgetcmd");
    actIn(2, '2');
    EXPECT_STREQ("wget -O /tmp/p", fwXmlData.downloadKey);
}

TEST_F(UpgradeDownload, Trace_HoldsNoCommand) {
    daemon_log_level = 7;
    const Events events = actIn(2, '2');
    const auto lines = logLines();
    ASSERT_EQ(6U, lines.size());
    EXPECT_EQ("1000:do_FwUpgradeAction]", lines[0]);
    EXPECT_EQ("===FWUPGRADE_ACT_DOWNLOAD===", lines[1]);
    EXPECT_EQ("1000:write_TmpXmlFile]" + events[1].substr(4), lines[2]);
    EXPECT_EQ("zepcheckfw.xml done", lines[5]);
}

class DownloadPoll : public UpgradeTest {
  protected:
    DownloadPoll() {
        loadAddresses();
        std::strcpy(fwXmlData.downloadKey, "wget -O /tmp/p");
    }
    int32_t statusAfter(const std::string& processes, uint32_t action = '3') {
        writeFile(path("zepfwtmp.txt"), processes);
        actIn(3, action);
        return fwXmlData.status;
    }
};

const std::string kRunningDownload = "root 10 0.0 wget -O /tmp/pendra/upld.bin http://fw.pendra.example/x";
const std::string kGrep = "root 11 0.0 grep wget -O /tmp/p";
const std::string kShell = "root 12 0.0 sh -c echo `ps aux |grep \"wget -O /tmp/p\"` > \"/tmp/pendra/zepfwtmp.txt\"";

TEST_F(DownloadPoll, ProcessList_IsAskedForTheKey) {
    const Events poll = {"run echo `ps aux |grep \"wget -O /tmp/p\"` > " + inQuotes("zepfwtmp.txt")};
    EXPECT_EQ(poll + imageReport(3, "0", "2.0."), actIn(3, '3'));
}

TEST_F(DownloadPoll, FirstGrepBeforeTheFirstDownload_IsTheEnd) {
    const std::pair<std::string, int32_t> rows[] = {
        {kGrep, 4},
        {kGrep + "\n", 4},
        {kShell + " " + kGrep, 4},
        {kGrep + " " + kShell, 4},
        {kRunningDownload + " " + kGrep, 3},
        {kRunningDownload + " " + kShell + " " + kGrep, 3},
        {kGrep + " " + kRunningDownload, 4}, // the order of the list decides
        {"root 9 grep x " + kRunningDownload, 4},
        {kRunningDownload, 3},
        {kShell, 3},
        {"root 9 grep x", 3},
        {"", 3},
        {"\n", 3},
        {"grep wget -O /tmp/p", 3},        // no blank before it
        {"root\tgrep\twget -O /tmp/p", 3}, // nor are tabs
        {" GREP  wget -O /tmp/p", 3},
        {" grep  WGET -O /tmp/p", 3},
        {" grep wget -O /tmp/", 3},
    };
    for (const auto& [processes, status] : rows)
        EXPECT_EQ(status, statusAfter(processes)) << processes;
}

TEST_F(DownloadPoll, LongestKey_IsSearchedWhole) {
    std::strcpy(fwXmlData.downloadKey, "get http://fw.p");
    EXPECT_EQ(3, statusAfter("root 11 0.0 grep get http://fw.x"));
    EXPECT_EQ(4, statusAfter("root 11 0.0 grep get http://fw.p"));
}

TEST_F(DownloadPoll, EndedDownload_IsReportedAtOnce) {
    storeImage(2048);
    writeFile(path("zepfwtmp.txt"), kGrep);
    const Events events = actIn(3, '3');
    EXPECT_EQ(imageReport(4, "2.00 K", "2.0."), Events(events.begin() + 1, events.end()));
}

TEST_F(DownloadPoll, UnreadableFile_ChangesNothing) {
    actIn(3, '3');
    EXPECT_EQ(3, fwXmlData.status);
}

TEST_F(DownloadPoll, EveryActionButStartingOver_Polls) {
    for (const char* action = "123456789x*"; *action != '\0'; action++)
        EXPECT_EQ(4, statusAfter(kGrep, static_cast<unsigned char>(*action))) << *action;
    EXPECT_EQ(0, statusAfter(kGrep, '0'));
}

TEST_F(DownloadPoll, EndedDownload_IsNotPolledFurther) {
    EXPECT_EQ(4, statusAfter(kGrep));
    EXPECT_EQ(imageReport(4, "0", "2.0."), act('9'));
}

// 4096 bytes of the list are read, a NUL included.
TEST_F(DownloadPoll, LongProcessList_IsReadAsCut) {
    const std::string end = " grep wget -O /tmp/p";
    EXPECT_EQ(4, statusAfter(std::string(4095 - end.size(), 'x') + end));
    EXPECT_EQ(3, statusAfter(std::string(4096 - end.size(), 'x') + end));
    EXPECT_EQ(4, statusAfter(end + std::string(100000, 'x')));
}

TEST_F(DownloadPoll, Trace_HoldsTheSearchTextAndTheList) {
    daemon_log_level = 7;
    writeFile(path("zepfwtmp.txt"), kRunningDownload + " " + kGrep + "\n");
    actIn(3, '3');
    const auto lines = logLines();
    ASSERT_EQ(10U, lines.size());
    EXPECT_EQ((std::vector<std::string>{"1000:do_FwUpgradeAction]", "===FWUPGRADE_BINGETTING===",
                                        "==BGN==' wget -O /tmp/p'", kRunningDownload + " " + kGrep, "", "==END=="}),
              std::vector<std::string>(lines.begin(), lines.begin() + 6));
    EXPECT_EQ("zepcheckfw.xml done", lines[9]);
}

TEST_F(DownloadPoll, TraceOfAnUnreadableFile_HoldsNoList) {
    daemon_log_level = 7;
    actIn(3, '3');
    const auto lines = logLines();
    ASSERT_EQ(6U, lines.size());
    EXPECT_EQ("===FWUPGRADE_BINGETTING===", lines[1]);
    EXPECT_EQ(0U, lines[2].find("1000:write_TmpXmlFile]"));
}

// The path of the list has 128 bytes.
TEST_F(DownloadPoll, LongDirectory_CutsThePath) {
    const std::string name = "/" + std::string(126, 'd');
    setDirectory(name);
    EXPECT_EQ("run echo `ps aux |grep \"wget -O /tmp/p\"` > \"" + name + "\"", actIn(3, '3')[0]);
    setDirectory(name.substr(0, 115));
    EXPECT_EQ("run echo `ps aux |grep \"wget -O /tmp/p\"` > \"" + name.substr(0, 115) + "/zepfwtmp.tx\"",
              actIn(3, '3')[0]);
}

class HandOver : public UpgradeTest {
  protected:
    HandOver() { loadAddresses(); }
    Events failing(const std::string& image) const { return Events{"run rm " + image} + shortReport(-2); }
    Events upgradeQuietly() const {
        testing::internal::CaptureStderr(); // the platform's report about the missing image
        Events events = actIn(4, '4');
        testing::internal::GetCapturedStderr();
        return events;
    }
};

TEST_F(HandOver, Image_IsHandedOverAndTheTimeTold) {
    storeImage(2048);
    EXPECT_EQ((Events{"tcapi_set System_Entry upgrade_fw 1", "setitimer 0 3.000000 every 0.000000",
                      "signal " + std::to_string(SIGALRM)}) +
                  starting("time", "180") + going("fwsize", "2.00 K") + going("fwver", "2.0.") +
                  going("result", "5", true),
              actIn(4, '4'));
    EXPECT_EQ(5, fwXmlData.status);
    EXPECT_EQ(&alarm_handler_fwupd, device().alarmHandler);
}

TEST_F(HandOver, MissingImage_FailsWithoutATime) {
    EXPECT_EQ(failing(path("upld.bin")), upgradeQuietly());
    EXPECT_EQ(-2, fwXmlData.status);
}

TEST_F(HandOver, RefusingVendor_FailsWithoutATime) {
    storeImage(2048);
    device().tcapiSetResult = -1;
    EXPECT_EQ(Events{"tcapi_set System_Entry upgrade_fw 1"} + failing(path("upld.bin")), actIn(4, '4'));
    EXPECT_EQ(-2, fwXmlData.status);
}

// Without a file name the path is the directory, which is no image; "rm" fails harmlessly on it.
TEST_F(HandOver, UnsetImageName_FailsLikeAMissingImage) {
    device().tree.erase("/fwupgradeinfo/fwupgradefn");
    EXPECT_EQ(failing(directory() + "/"), upgradeQuietly());
    EXPECT_EQ(-2, fwXmlData.status);
}

TEST_F(HandOver, Trace_HoldsTheCall) {
    daemon_log_level = 7;
    storeImage(2048);
    actIn(4, '4');
    const auto lines = logLines();
    ASSERT_EQ(8U, lines.size());
    EXPECT_EQ("===FWUPGRADE_ACT_UPGRADE===", lines[1]);
    EXPECT_EQ("[exe_ExternalCall,FwUpgrade]", lines[2]);
}

} // namespace
