/**
 * @file
 * A device whose surroundings are damaged: nothing crashes, the message is clear, nothing that was stored is lost.
 */
#include <sys/stat.h>

#include <algorithm>
#include <csignal>
#include <filesystem>

#include "running_device.h"

namespace pendra::test {
namespace {

namespace fs = std::filesystem;

class Surroundings : public RunningDevice {
  protected:
    [[nodiscard]] bool complained(const std::string& line) const {
        return host->complaints().find(line) != std::string::npos;
    }

    /** Expects the answers of an applied document although its file could not be stored. */
    void expectAppliedWithoutFile(const HttpReply& reply) const {
        EXPECT_EQ(reply.status, 200);
        EXPECT_EQ(reply.body, resultDocument(0, "", 65));
        EXPECT_EQ(get("/zep/result").body, resultDocument(0, "", 65));
        EXPECT_EQ(zepctl({"result"}).output, "The device has applied the settings.\n");
        EXPECT_TRUE(complained("pendrad: the result document could not be stored in " + files.resultFile() + "\n"))
            << host->complaints();
        expectStored();
    }

    void expectStored() const {
        EXPECT_EQ(files.get("/sys/friendlyname"), "Living Room");
        EXPECT_EQ(files.get("/uplink/hardwaretype"), "ADSL");
        EXPECT_EQ(files.get("/safetywdn/safetynotifyenbl"), "1");
    }

    /** Everything works again once the damage is gone, and the host stops as always. */
    void expectWorksAgain() {
        expectResult(setUp(nameDocument("Attic")), 0, "", 5);
        EXPECT_EQ(host->stop(), 0);
    }
};

const std::vector<std::string> kScripts = {"uplink.sh", "wan_resync.sh", "wlan_resync.sh", "wlan5g_resync.sh",
                                           "device_resync.sh"};

TEST_F(Surroundings, OneScriptMissing_RunsTheOthers) {
    start();
    for (const std::string& missing : kScripts) {
        SCOPED_TRACE(missing);
        fs::rename(files.scripts() + "/" + missing, files.scripts() + "/away");
        fs::remove(files.hardware() + "/journal.txt");
        // One value of every section differs from the run before.
        const std::string tag = "x" + missing;
        std::string document = withElement(example("setup.xml"), "DeviceName", tag);
        for (const char* element : {"LoginUserName", "Wireless2.4/WirelessName", "Wireless5/WirelessName"}) {
            document = withElement(document, element, tag);
        }
        expectResult(setUp(document), 0, "", 65);
        awaitScripts();
        std::vector<std::string> others = kScripts;
        std::erase(others, missing);
        EXPECT_EQ(files.scriptsRun(), others);
        EXPECT_TRUE(complained(files.scripts() + "/" + missing + ": not found")) << host->complaints();
        fs::rename(files.scripts() + "/away", files.scripts() + "/" + missing);
    }
    expectWorksAgain();
}

TEST_F(Surroundings, AllScriptsMissing_StoresTheDocument) {
    start();
    fs::rename(files.scripts(), files.scripts() + "-away");
    expectResult(setUp(example("setup.xml")), 0, "", 65);
    awaitScripts();
    EXPECT_EQ(files.journal(), "");
    expectStored();
    for (const std::string& script : kScripts) {
        EXPECT_TRUE(complained(files.scripts() + "/" + script + ": not found")) << script;
    }
    EXPECT_EQ(host->stop(), 0);
    start();
    EXPECT_EQ(host->complaints(),
              "pendrad: there is no script directory " + files.scripts() + "; changes cannot take effect\n");
    fs::rename(files.scripts() + "-away", files.scripts());
    expectWorksAgain();
    EXPECT_EQ(files.scriptsRun(), std::vector<std::string>{"device_resync.sh"});
}

TEST_F(Surroundings, TemporaryDirectoryMissing_AppliesAndKeepsTheResult) {
    fs::remove(files.tmp());
    start();
    EXPECT_EQ(host->complaints(),
              "pendrad: there is no temporary directory " + files.tmp() + "; results cannot be stored\n");
    expectAppliedWithoutFile(setUp(example("setup.xml")));
    EXPECT_FALSE(fs::exists(files.tmp()));
    awaitScripts();
    EXPECT_EQ(files.scriptsRun(), kScripts);
    fs::create_directory(files.tmp());
    expectWorksAgain();
}

TEST_F(Surroundings, TemporaryDirectoryGoesAway_DoesNotShowAnOlderResult) {
    start();
    expectResult(setUp(example("faulty-name.xml")), 10, "Device/DeviceName", 0);
    fs::rename(files.tmp(), files.tmp() + "-away");
    expectAppliedWithoutFile(setUp(example("setup.xml")));
}

TEST_F(Surroundings, TemporaryDirectoryReadOnly_AppliesAndKeepsTheResult) {
    start({.bindByPermissions = true});
    expectResult(setUp(example("faulty-name.xml")), 10, "Device/DeviceName", 0);
    ASSERT_EQ(::chmod(files.tmp().c_str(), 0555), 0);
    ASSERT_EQ(::chmod(files.resultFile().c_str(), 0444), 0);
    expectAppliedWithoutFile(setUp(example("setup.xml")));
    EXPECT_EQ(readFile(files.resultFile()), resultDocument(10, "Device/DeviceName", 0));
    ASSERT_EQ(::chmod(files.resultFile().c_str(), 0644), 0);
    ASSERT_EQ(::chmod(files.tmp().c_str(), 0755), 0);
    expectWorksAgain();
}

// "/dev/full" answers every write as a full disk does, for every user and without a mount.
TEST_F(Surroundings, TemporaryDirectoryFull_AppliesAndKeepsTheResult) {
    fs::create_symlink("/dev/full", files.resultFile());
    fs::create_symlink("/dev/full", files.logFile());
    start({.logLevel = 7});
    expectAppliedWithoutFile(setUp(example("setup.xml")));
    awaitScripts();
    EXPECT_EQ(files.scriptsRun(), kScripts);
    fs::remove(files.resultFile());
    expectWorksAgain();
}

TEST_F(Surroundings, LogFileUnwritable_ChangesNothingElse) {
    writeFile(files.logFile(), "kept\n");
    ASSERT_EQ(::chmod(files.logFile().c_str(), 0444), 0);
    start({.logLevel = 7, .bindByPermissions = true});
    expectResult(setUp(example("setup.xml")), 0, "", 65);
    expectStored();
    EXPECT_EQ(readFile(files.logFile()), "kept\n");
    expectWorksAgain();
}

TEST_F(Surroundings, DirectoryInPlaceOfTheLogFile_ChangesNothingElse) {
    fs::create_directory(files.logFile());
    start({.logLevel = 7});
    expectResult(setUp(example("setup.xml")), 0, "", 65);
    expectStored();
    EXPECT_TRUE(fs::is_directory(files.logFile()));
    expectWorksAgain();
}

TEST_F(Surroundings, TreeFileReadOnly_DoesNotStartAndSaysWhy) {
    const std::string content = readFile(files.tree());
    ASSERT_EQ(::chmod(files.tree().c_str(), 0400), 0);
    const Ended ended = run(hostLaunch(files, {.bindByPermissions = true}), std::chrono::seconds(20));
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.errors, "pendrad: cannot open the tree " + files.tree() + ": Permission denied\n");
    EXPECT_EQ(readFile(files.tree()), content);
    ASSERT_EQ(::chmod(files.tree().c_str(), 0600), 0);
    start();
    expectWorksAgain();
}

TEST_F(Surroundings, DirectoryOfTheTreeReadOnly_DoesNotStartAndSaysWhy) {
    const std::string directory = fs::path(files.tree()).parent_path();
    const std::string content = readFile(files.tree());
    ASSERT_EQ(::chmod(directory.c_str(), 0555), 0);
    const Ended ended = run(hostLaunch(files, {.bindByPermissions = true}), std::chrono::seconds(20));
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.errors, "pendrad: cannot lock the tree with " + files.tree() + ".owner: Permission denied\n");
    EXPECT_EQ(readFile(files.tree()), content);
}

TEST_F(Surroundings, NoRoomForTheTree_RefusesTheDocumentAndKeepsTheTree) {
    start();
    const std::string before = files.dump();
    ASSERT_EQ(host->stop(), 0);
    // The tree's two head pages; whatever a document changes lies behind them.
    start({.largestFile = 8192});
    const HttpReply reply = setUp(example("setup.xml"));
    EXPECT_EQ(reply.status, 507);
    EXPECT_EQ(reply.body, "The device could not store the settings: File too large\n");
    EXPECT_TRUE(complained("pendrad: a setup document could not be stored: File too large\n")) << host->complaints();
    EXPECT_EQ(get("/zep/result").status, 404); // nothing tells of a run that left nothing
    awaitScripts();
    EXPECT_EQ(files.journal(), "");
    EXPECT_EQ(files.changesSince(before), "");
    EXPECT_EQ(get("/zep/stations").status, 507);
    EXPECT_EQ(zepctl({"setup", "--no-wait", "-"}, example("setup.xml")).status, 1);
    restart();
    EXPECT_EQ(files.changesSince(before), "");
    expectResult(setUp(example("setup.xml")), 0, "", 65);
    expectStored();
}

TEST_F(Surroundings, DriverThatIsDown_GivesAnEmptyList) {
    writeFile(files.hardware() + "/stations.txt", "ra0 down\nrai0 02:a1:b2:c3:d4:e7 -48 0 0\n");
    start();
    login();
    const HttpReply reply = get("/zep/stations");
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.body, "{\"stations\":[]}\n");
}

} // namespace
} // namespace pendra::test
