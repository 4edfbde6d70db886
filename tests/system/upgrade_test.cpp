// Firmware upgrades with the real fetch command and a real server.
#include <filesystem>
#include <thread>

#include "firmware_server.h"
#include "running_device.h"

namespace pendra::test {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr const char* kOldFirmware = "the firmware before";

std::string served(const std::string& path) {
    return readFile(std::string(PENDRA_FIRMWARE) + path);
}

std::string statusDocument(const std::string& elements) {
    return "<?xml version=\"1.0\" ?><root>" + elements + "</root>\n";
}

std::string imageStatus(const std::string& size, int result) {
    return statusDocument("<fwsize>" + size + "</fwsize>\n<fwver>1.4.0.</fwver>\n<result>" + std::to_string(result) +
                          "</result>");
}

/** A device of the first series with firmware 1.3.1, and firmware in its flash. */
class FirmwareUpgrade : public RunningDevice {
  protected:
    FirmwareUpgrade() {
        fs::create_directory(files.hardware() + "/flash");
        writeFile(flashFile(), kOldFirmware);
        // The first 15 characters of the command tell this device's downloads from those of others on this machine.
        const std::string tag = "t" + fs::path(files.tmp()).parent_path().filename().string().substr(3);
        files.set("/fwupgradeinfo/urlgetcmd",
                  "wget -U " + tag + " -S -T 5 -t 1 -o \"$savefn.log\" -O \"$savefn\" \"$url\"");
    }
    void serve(int rate = 0) { server.emplace(PENDRA_FIRMWARE, rate); }
    void startAdmitted(const HostOptions& options = {}) {
        start(options);
        login();
    }

    [[nodiscard]] std::string flashFile() const { return files.hardware() + "/flash/firmware.bin"; }
    [[nodiscard]] std::string flash() const { return readFile(flashFile()); }
    [[nodiscard]] std::string image() const { return readFile(files.tmp() + "/upld.bin"); }

    [[nodiscard]] HttpReply act(const std::string& action) const {
        return curl({"-X", "POST", url("/zep/fw?act=" + action)});
    }
    /** @return the last answer: that of the download's end, or of the end of the time. */
    [[nodiscard]] std::string awaitDownload() const {
        const auto end = std::chrono::steady_clock::now() + seconds(30);
        std::string answer = act("9").body;
        while (answer.find("<result>3</result>") != std::string::npos && std::chrono::steady_clock::now() < end) {
            std::this_thread::sleep_for(milliseconds(100));
            answer = act("9").body;
        }
        return answer;
    }
    [[nodiscard]] std::string state() const { return get("/zep/fwstate").body; }
    bool eventually(const std::function<bool()>& holds) const {
        const auto end = std::chrono::steady_clock::now() + seconds(10);
        while (std::chrono::steady_clock::now() < end) {
            if (holds()) return true;
            std::this_thread::sleep_for(milliseconds(50));
        }
        return holds();
    }
    bool stateHolds(const std::string& text) const {
        return eventually([&] { return state().find(text) != std::string::npos; });
    }
    /** Downloads the image of a search that has found one. */
    void download() const {
        ASSERT_NE(act("2").body.find("<result>3</result>"), std::string::npos);
        ASSERT_NE(awaitDownload().find("<result>4</result>"), std::string::npos);
    }

    std::optional<FirmwareServer> server;
};

TEST_F(FirmwareUpgrade, StepByStep_ReachesTheFlash) {
    serve();
    startAdmitted();
    EXPECT_EQ(act("0").body, statusDocument("<result>0</result>"));
    EXPECT_EQ(act("1").body, imageStatus("0", 2));
    EXPECT_EQ(files.get("/fwupgradeinfo/newfw/fileurl"),
              kFirmwareServer + std::string("/PB100/PB100_FW1.4.0.bin?series=1&lang=en"));
    EXPECT_EQ(files.get("/fwupgradeinfo/newfw/notesurl"), kFirmwareServer + std::string("/PB100/notes-1.4.0.txt"));
    EXPECT_TRUE(eventually([&] { return get("/zep/fwnotes").body == served("/PB100/notes-1.4.0.txt"); }));
    ASSERT_NE(act("2").body.find("<result>3</result>"), std::string::npos);
    EXPECT_EQ(awaitDownload(), imageStatus("4.00 M", 4));
    EXPECT_EQ(get("/zep/checkfw").body, imageStatus("4.00 M", 4));
    EXPECT_TRUE(image() == served("/PB100/PB100_FW1.4.0.bin"));

    const std::string started = act("4").body;
    EXPECT_EQ(started, statusDocument("<time>180</time>\n<fwsize>4.00 M</fwsize>\n<fwver>1.4.0.</fwver>\n"
                                      "<result>5</result>"));
    expectWellFormed(started);
    std::this_thread::sleep_for(seconds(2));
    EXPECT_EQ(flash(), kOldFirmware) << "the hand-over comes three seconds after the answer";
    EXPECT_TRUE(stateHolds("\"upgrade\":\"written\""));
    EXPECT_TRUE(flash() == served("/PB100/PB100_FW1.4.0.bin"));
    EXPECT_EQ(files.journal(), "flash: wrote firmware " + files.tmp() + "/upld.bin\n");
}

TEST_F(FirmwareUpgrade, Client_InstallsWhatItHasFound) {
    serve();
    start();
    const Ended ended = zepctl({"upgrade", "--yes", "--no-wait"});
    EXPECT_EQ(ended.status, 0) << ended.errors;
    EXPECT_EQ(ended.output.substr(0, ended.output.find('\n')), "Found PB100_FW1.4.0.bin.");
    EXPECT_NE(ended.output.find("  - The 5 GHz radio finds a quiet channel by itself.\n"), std::string::npos);
    EXPECT_NE(ended.output.find("PB100_FW1.4.0.bin was installed.\n"), std::string::npos);
    EXPECT_NE(ended.errors.find("100 %  4.2 MB of 4.2 MB"), std::string::npos) << ended.errors;
    EXPECT_NE(ended.errors.find("which takes 180 seconds"), std::string::npos) << ended.errors;
    EXPECT_TRUE(flash() == served("/PB100/PB100_FW1.4.0.bin"));
}

TEST_F(FirmwareUpgrade, ClientThatOnlyChecks_ChangesNothingInTheFlash) {
    serve();
    start();
    const Ended ended = zepctl({"upgrade", "--check", "--json"});
    EXPECT_EQ(ended.status, 0) << ended.errors;
    EXPECT_NE(ended.output.find("\"image\": \"PB100_FW1.4.0.bin\""), std::string::npos) << ended.output;
    EXPECT_NE(ended.output.find("\"installed\": false"), std::string::npos) << ended.output;
    EXPECT_FALSE(fs::exists(files.tmp() + "/upld.bin"));
    EXPECT_EQ(flash(), kOldFirmware);
}

TEST_F(FirmwareUpgrade, ClientWithNobodyToAsk_DoesNothing) {
    start();
    EXPECT_EQ(zepctl({"upgrade"}).status, 2);
    EXPECT_FALSE(fs::exists(files.tmp() + "/zepcheckfw.xml"));
}

/** What the served lists hold for a device. */
struct Match {
    const char* name;
    const char* mac;
    const char* running;
    int result;
    const char* image;
};

class ServedList : public FirmwareUpgrade, public testing::WithParamInterface<Match> {};

TEST_P(ServedList, Device_FindsItsEntry) {
    files.set("/fwupgradeinfo/devicemac", GetParam().mac);
    files.set("/fwupgradeinfo/currfwfilename", GetParam().running);
    serve();
    startAdmitted();
    const std::string result = "<result>" + std::to_string(GetParam().result) + "</result>";
    EXPECT_NE(act("1").body.find(result), std::string::npos) << get("/zep/checkfw").body;
    EXPECT_NE(state().find("\"image\":\"" + std::string(GetParam().image) + "\""), std::string::npos) << state();
    EXPECT_EQ(zepctl({"upgrade", "--check"}).status, GetParam().result == 2 ? 0 : 7);
}

constexpr const char* kFirst = "02:50:42:00:00:00";
constexpr const char* kLast = "02:50:42:00:00:7f";
INSTANTIATE_TEST_SUITE_P(
    Upgrades, ServedList,
    testing::Values(Match{"SingleAddress", "02:50:42:00:01:11", "PB100_FW1.3.1.bin", 2, "PB100_FW2.0.0.bin"},
                    Match{"StartOfTheRange", kFirst, "PB100_FW1.3.1.bin", 2, "PB100_FW1.4.0.bin"},
                    Match{"EndOfTheRange", kLast, "PB100_FW1.2.bin", 2, "PB100_FW1.4.0.bin"},
                    Match{"BehindTheRange", "02:50:42:00:00:80", "PB100_FW1.3.1.bin", 1, ""},
                    Match{"Wildcard", "02:50:42:ff:ff:ff", "PB100_FW1.4.0.bin", 2, "PB100_FW1.5.0.bin"},
                    Match{"OtherMaker", "02:51:42:ff:ff:ff", "PB100_FW1.4.0.bin", 1, ""},
                    Match{"RunsItAlready", "02:50:42:00:01:10", "PB100_FW2.0.0.bin", 1, ""},
                    Match{"FileNameAlone", "00:00:00:00:00:00", "PB200_FW1.0.bin", 2, "PB200_FW1.1.bin"},
                    Match{"SecondEntry", "00:00:00:00:00:00", "PB200_FW1.1.bin", 2, "PB200_FW1.2.bin"}),
    [](const auto& each) { return std::string(each.param.name); });

TEST_F(FirmwareUpgrade, DamagedImage_IsRefusedAndLeavesTheFlash) {
    files.set("/fwupgradeinfo/currfwfilename", "PB100_FW1.4.0.bin");
    serve();
    start();
    const Ended ended = zepctl({"upgrade", "--yes"});
    const std::string reason = "*** Warning: \"" + files.tmp() + "/upld.bin\" has corrupted data!";
    EXPECT_EQ(ended.status, 11) << ended.errors;
    EXPECT_NE(ended.errors.find("The device refused the image: " + reason), std::string::npos) << ended.errors;
    EXPECT_EQ(flash(), kOldFirmware);
    EXPECT_EQ(files.journal(), "flash: refused firmware: " + reason + "\n");
}

TEST_F(FirmwareUpgrade, ServerThatIsDown_IsNamed) {
    start();
    const Ended ended = zepctl({"upgrade", "--yes"});
    EXPECT_EQ(ended.status, 9) << ended.errors;
    EXPECT_NE(ended.errors.find("could not fetch the firmware list"), std::string::npos) << ended.errors;
    EXPECT_EQ(flash(), kOldFirmware);
}

TEST_F(FirmwareUpgrade, ListOfAnEarlierSearch_IsNotTakenForAnAnswer) {
    serve();
    startAdmitted();
    ASSERT_NE(act("1").body.find("<result>2</result>"), std::string::npos);
    server->kill();
    EXPECT_EQ(zepctl({"upgrade", "--check"}).status, 9);
}

TEST_F(FirmwareUpgrade, ModelWithoutAList_IsNotFetched) {
    files.set("/fwupgradeinfo/currfwfilename", "PB900_FW1.bin");
    serve();
    start();
    EXPECT_EQ(zepctl({"upgrade", "--check"}).status, 9);
}

class UnresponsiveServer : public FirmwareUpgrade, public testing::WithParamInterface<SilentServer::Connections> {};

TEST_P(UnresponsiveServer, HoldsTheDeviceForSecondsOnly) {
    const SilentServer silent(GetParam());
    startAdmitted();
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(act("1").body, statusDocument("<result>-1</result>"));
    const auto passed = std::chrono::steady_clock::now() - begin;
    EXPECT_GT(passed, seconds(4)) << "it was not silent";
    EXPECT_LT(passed, seconds(12));
}

INSTANTIATE_TEST_SUITE_P(Upgrades, UnresponsiveServer,
                         testing::Values(SilentServer::Connections::taken, SilentServer::Connections::ignored),
                         [](const auto& each) {
                             return each.param == SilentServer::Connections::taken ? "Silent" : "Unconnected";
                         });

TEST_F(FirmwareUpgrade, ConnectionCutHalfway_IsAFailedDownload) {
    serve(500);
    startAdmitted();
    ASSERT_NE(act("1").body.find("<result>2</result>"), std::string::npos);
    ASSERT_NE(act("2").body.find("<result>3</result>"), std::string::npos);
    ASSERT_TRUE(eventually([&] { return image().size() > 100000; }));
    server->kill();
    EXPECT_NE(awaitDownload().find("<result>4</result>"), std::string::npos);
    EXPECT_LT(image().size(), served("/PB100/PB100_FW1.4.0.bin").size());
    EXPECT_NE(state().find("\"bytes\":" + std::to_string(image().size()) + ",\"total\":4194368"), std::string::npos);

    EXPECT_NE(act("4").body.find("<result>5</result>"), std::string::npos);
    EXPECT_TRUE(stateHolds("\"upgrade\":\"refused\""));
    EXPECT_NE(state().find("has corrupted data!"), std::string::npos) << state();
    EXPECT_EQ(flash(), kOldFirmware);
}

TEST_F(FirmwareUpgrade, ClientOfACutConnection_DoesNotInstall) {
    serve(500);
    start();
    std::jthread cutter([&] {
        if (eventually([&] { return image().size() > 100000; })) server->kill();
    });
    const Ended ended = zepctl({"upgrade", "--yes"});
    EXPECT_EQ(ended.status, 10) << ended.errors;
    EXPECT_NE(ended.errors.find("The download ended early, with "), std::string::npos) << ended.errors;
    EXPECT_EQ(flash(), kOldFirmware);
    EXPECT_EQ(files.journal(), "");
}

TEST_F(FirmwareUpgrade, FullDisk_IsAFailedDownload) {
    serve();
    start({.largestFile = 2 << 20});
    const Ended ended = zepctl({"upgrade", "--yes"});
    EXPECT_EQ(ended.status, 10) << ended.errors;
    EXPECT_NE(ended.errors.find("with 2097152 of 4194368 bytes"), std::string::npos) << ended.errors;
    EXPECT_EQ(flash(), kOldFirmware);
}

TEST_F(FirmwareUpgrade, NoRoomForTheFlash_KeepsTheOldFirmware) {
    serve();
    startAdmitted();
    ASSERT_NE(act("1").body.find("<result>2</result>"), std::string::npos);
    download();
    fs::create_directory(flashFile() + ".new"); // nothing can be written there
    EXPECT_NE(act("4").body.find("<result>5</result>"), std::string::npos);
    EXPECT_TRUE(stateHolds("\"upgrade\":\"refused\""));
    EXPECT_NE(state().find("cannot write"), std::string::npos) << state();
    EXPECT_EQ(flash(), kOldFirmware);
}

TEST_F(FirmwareUpgrade, StatusThatCannotBeStored_IsAnsweredAllTheSame) {
    startAdmitted();
    fs::create_directory(files.tmp() + "/zepcheckfw.xml");
    writeFile(files.tmp() + "/zepcheckfw.xml/x", "");
    EXPECT_EQ(act("0").body, statusDocument("<result>0</result>"));
    EXPECT_EQ(get("/zep/checkfw").body, statusDocument("<result>0</result>"));
    EXPECT_NE(host->complaints().find("could not be stored"), std::string::npos);
}

TEST_F(FirmwareUpgrade, ImageThatIsGone_FailsTheHandOver) {
    serve();
    startAdmitted();
    ASSERT_NE(act("1").body.find("<result>2</result>"), std::string::npos);
    download();
    fs::remove(files.tmp() + "/upld.bin");
    EXPECT_NE(act("4").body.find("<result>-2</result>"), std::string::npos);
    EXPECT_NE(act("1").body.find("<result>-2</result>"), std::string::npos) << "only a start-over leaves it";
    EXPECT_EQ(act("0").body, statusDocument("<result>0</result>"));
    EXPECT_EQ(flash(), kOldFirmware);
}

TEST_F(FirmwareUpgrade, HostThatIsKilledDuringADownload_StartsAgain) {
    serve(500);
    startAdmitted();
    ASSERT_NE(act("1").body.find("<result>2</result>"), std::string::npos);
    ASSERT_NE(act("2").body.find("<result>3</result>"), std::string::npos);
    host->signal(SIGKILL);
    host->wait();
    startAdmitted();
    EXPECT_EQ(act("9").body, statusDocument("<result>0</result>"));
    EXPECT_EQ(zepctl({"upgrade", "--check"}).status, 0);
}

// ---- actions ----

TEST_F(FirmwareUpgrade, UnknownActions_AreNotHandedOn) {
    startAdmitted();
    ASSERT_EQ(act("0").status, 200);
    const auto before = files.snapshot();
    for (const char* action : {"", "3", "5", "8", "x", "00", "1%3B", "%00", "%0a", "'", "-1", "&act=1", "3&act=1"}) {
        const HttpReply reply = act(action);
        EXPECT_EQ(reply.status, 400) << action;
        EXPECT_EQ(reply.body, "The field \"act\" must be 0, 1, 2, 4 or 9.\n") << action;
        EXPECT_EQ(files.changedFiles(before), std::vector<std::string>{}) << action;
    }
    EXPECT_EQ(curl({"-X", "POST", url("/zep/fw")}).status, 400);
    EXPECT_EQ(get("/zep/fw?act=0").status, 405);
}

TEST_F(FirmwareUpgrade, WrongActionForTheStatus_ChangesNothing) {
    startAdmitted();
    for (const char* action : {"2", "4", "9"}) {
        EXPECT_EQ(act(action).body, statusDocument("<result>0</result>")) << action;
    }
    EXPECT_FALSE(fs::exists(files.tmp() + "/upld.bin"));
    EXPECT_EQ(files.journal(), "");
}

TEST_F(FirmwareUpgrade, ClientsThatAreNotAdmitted_ReachNothing) {
    start();
    const auto before = files.snapshot();
    EXPECT_EQ(act("0").status, 401);
    EXPECT_EQ(act("1").status, 401);
    for (const char* path : {"/zep/checkfw", "/zep/fwnotes", "/zep/fwstate"}) {
        EXPECT_EQ(get(path).status, 401) << path;
    }
    EXPECT_EQ(files.changedFiles(before), std::vector<std::string>{});
}

TEST_F(FirmwareUpgrade, PageOfAnotherSite_IsRefused) {
    startAdmitted();
    EXPECT_EQ(curl({"-X", "POST", "-H", "Origin: http://evil.example", url("/zep/fw?act=0")}).status, 403);
    EXPECT_FALSE(fs::exists(files.tmp() + "/zepcheckfw.xml"));
}

TEST_F(FirmwareUpgrade, DocumentsBeforeAnyAction_AreMissing) {
    startAdmitted();
    EXPECT_EQ(get("/zep/checkfw").status, 404);
    EXPECT_EQ(get("/zep/fwnotes").status, 404);
    EXPECT_EQ(get("/zep/fwstate").body,
              "{\"status\":0,\"image\":\"\",\"list\":null,\"bytes\":null,\"total\":null,"
              "\"upgrade\":\"none\",\"reason\":\"\"}\n");
}

// ---- hostile and malformed lists ----

std::string listDocument(const std::string& image, const std::string& notes) {
    return "<root><specVersion><major>1</major><minor>0</minor></specVersion><FirmwareList><Firmware>"
           "<MatchList><Match>*</Match></MatchList><FwURL>" +
           image + "</FwURL><NotesURL>" + notes + "</NotesURL></Firmware></FirmwareList></root>";
}

/** A device whose server has a list of the test's own. */
class OwnList : public FirmwareUpgrade {
  protected:
    OwnList() : root(fs::path(files.tmp()).parent_path().string() + "/www") { fs::create_directories(root + "/PB100"); }
    void serveList(const std::string& list) {
        writeFile(root + "/PB100/PB100.xml", list);
        if (!server) server.emplace(root);
    }
    std::string root;
};

/** Ways out of the double quotes; "CANARY" is a file that must not come into being. */
constexpr const char* kEscapes[] = {"/x&quot;;touch CANARY;&quot;",
                                    "/x&quot; -O CANARY &quot;",
                                    "/$(touch CANARY)",
                                    "/`touch CANARY`",
                                    "/x\\&quot;;touch CANARY;",
                                    "/x\n touch CANARY\n",
                                    "/x&#34;|touch CANARY|&#34;",
                                    "/x;touch CANARY;",
                                    "/x' ;touch CANARY;'",
                                    "/x|touch${IFS}CANARY",
                                    "/x&amp;touch\tCANARY&amp;",
                                    "/x&quot; &gt;CANARY &quot;"};

TEST_F(OwnList, HostileAddresses_RunNothing) {
    const std::string canary = root + "/canary";
    writeFile(root + "/good.bin", "no image");
    serveList("");
    startAdmitted();
    for (std::string hostile : kEscapes) {
        hostile.replace(hostile.find("CANARY"), 6, canary);
        for (const bool inImage : {true, false}) {
            SCOPED_TRACE(hostile + (inImage ? " as image" : " as notes"));
            serveList(inImage ? listDocument(hostile, "/good.bin") : listDocument("/good.bin", hostile));
            EXPECT_EQ(act("0").status, 200);
            EXPECT_EQ(act("1").status, 200);
            EXPECT_EQ(act("2").status, 200);
            EXPECT_NE(awaitDownload().find("<result>4</result>"), std::string::npos);
            EXPECT_FALSE(fs::exists(canary));
            const char* node = inImage ? "/fwupgradeinfo/newfw/fileurl" : "/fwupgradeinfo/newfw/notesurl";
            EXPECT_EQ(files.get(node).find_first_of("\"`$\\ \n\t"), std::string::npos) << files.get(node);
        }
    }
}

TEST_F(OwnList, HostileImageAddress_EndsTheClient) {
    serveList(listDocument("/$(reboot)", "/notes"));
    start();
    const Ended ended = zepctl({"upgrade", "--yes"});
    EXPECT_EQ(ended.status, 8) << ended.errors;
    EXPECT_NE(ended.errors.find("does not accept"), std::string::npos) << ended.errors;
    EXPECT_EQ(files.get("/fwupgradeinfo/newfw/fileurl"), "");
}

TEST_F(OwnList, MalformedList_EndsTheClient) {
    serveList("<root><specVersion><major>1</major><minor>1</minor></specVersion></root>");
    start();
    const Ended ended = zepctl({"upgrade", "--yes"});
    EXPECT_EQ(ended.status, 8) << ended.errors;
    EXPECT_NE(ended.errors.find("malformed"), std::string::npos) << ended.errors;
}

TEST_F(OwnList, NotesWithControlCharacters_CannotSteerATerminal) {
    writeFile(root + "/notes", "plain\n\x1b]0;title\x07\x1b[2J\n");
    serveList(listDocument("/a_FW9.bin", "/notes"));
    start();
    const Ended ended = zepctl({"upgrade", "--check"});
    EXPECT_EQ(ended.status, 0) << ended.errors;
    EXPECT_EQ(ended.output, "Found a_FW9.bin.\n  plain\n  ?]0;title??[2J\n");
}

} // namespace
} // namespace pendra::test
