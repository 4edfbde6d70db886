/**
 * @file
 * The same document twice.
 */
#include "running_device.h"

namespace pendra::test {
namespace {

const std::vector<std::string> kAllScripts = {"uplink.sh", "wan_resync.sh", "wlan_resync.sh", "wlan5g_resync.sh",
                                              "device_resync.sh"};

class RepeatedDocument : public RunningDevice {};

TEST_F(RepeatedDocument, SecondRunOfAnotherHost_WritesNothingAndRestartsNothing) {
    start();
    // Without access control: its mode is written on every run, equal or not.
    const std::string document = withElement(example("setup.xml"), "Wireless2.4/AccessControl/WlAcEnbl", "0");
    expectResult(setUp(document), 0, "", 65);
    awaitScripts();
    restart({.logLevel = 6});
    const DeviceFiles::Snapshot before = files.snapshot();

    expectResult(setUp(document), 0, "", 0);
    awaitScripts();
    // Of all files only the result document is another one; the tree's file is the same byte by byte.
    EXPECT_EQ(files.changedFiles(before), std::vector<std::string>{"t/zepset_result.xml"});
    EXPECT_NE(readFile(files.logFile()).find("done,ret=1,Restart:wlan2.4=0,wlan5=0,uplink=0,survey=0,roaming=0\n"),
              std::string::npos);
    EXPECT_NE(readFile(files.logFile()).find("exeflag=0, exeWaitSec=0\n"), std::string::npos);
}

TEST_F(RepeatedDocument, SecondRunWithAccessControl_LeavesTheTreeAsItIs) {
    start();
    expectResult(setUp(example("setup.xml")), 0, "", 65);
    const std::string before = files.dump();
    expectResult(setUp(example("setup.xml")), 0, "", 0);
    EXPECT_EQ(files.changesSince(before), "");
}

// The requests of a run are kept for one reuse by the commit of a run that has none, on purpose.
TEST_F(RepeatedDocument, SecondRunOfTheSameHost_RepeatsTheFirstRunsScriptsOnce) {
    start();
    expectResult(setUp(example("setup.xml")), 0, "", 65);
    awaitScripts();
    EXPECT_EQ(files.scriptsRun(), kAllScripts);

    expectResult(setUp(example("setup.xml")), 0, "", 0);
    awaitScripts();
    std::vector<std::string> twice = kAllScripts;
    twice.insert(twice.end(), kAllScripts.begin(), kAllScripts.end());
    EXPECT_EQ(files.scriptsRun(), twice);

    expectResult(setUp(example("setup.xml")), 0, "", 0);
    awaitScripts();
    EXPECT_EQ(files.scriptsRun(), twice);
}

TEST_F(RepeatedDocument, FactoryState_EndsWithTheFirstChangeOnly) {
    start();
    expectResult(setUp(nameDocument("Bramble Router")), 0, "", 0);
    EXPECT_EQ(files.get("/sys/factorydefault"), "1");
    expectResult(setUp(nameDocument("Attic")), 0, "", 5);
    EXPECT_EQ(files.get("/sys/factorydefault"), "0");
}

} // namespace
} // namespace pendra::test
