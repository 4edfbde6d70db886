// The host of the example, as a program: what it prints, the tree it leaves, what its device is told.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "support/scratch.h"

namespace pendra::test {
namespace {

std::string withReplaced(std::string text, const std::string& from, const std::string& to) {
    const size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

// The example's device in a directory of its own. Its tree names its directories already, so that only the road itself
// has something to store.
class PortingHost : public testing::Test {
  protected:
    PortingHost() {
        std::filesystem::create_directory(temporary());
        std::filesystem::copy(PENDRA_EXAMPLE "/scripts", scripts());
        store(document(), content(PENDRA_EXAMPLE "/setup.xml"));
        std::string listing = content(PENDRA_EXAMPLE "/device.tree");
        listing = withReplaced(listing, "tempdirecory=/tmp", "tempdirecory=" + temporary());
        listing = withReplaced(listing, "scriptdirecory=/usr/share/pendra/scripts", "scriptdirecory=" + scripts());
        store(tree(), listing);
        before_ = listing;
    }
    Ran runHost(const std::string& before = "", const std::string& host = "porting_host") const {
        return run(directory_, before + PENDRA_PORTING_HOSTS + host + " " + tree() + " " + temporary() + " " +
                                   scripts() + " " + document());
    }
    std::string tree() const { return directory_.file("device.tree"); }
    std::string temporary() const { return directory_.file("t"); }
    std::string scripts() const { return directory_.file("scripts"); }
    std::string document() const { return directory_.file("setup.xml"); }
    std::string temporaryFile(const std::string& name) const { return content(temporary() + "/" + name); }
    std::string directoryFile(const std::string& name) const { return directory_.file(name); }
    std::set<std::string> temporaryFiles() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(temporary()))
            names.insert(entry.path().filename());
        return names;
    }
    const std::string& before() const { return before_; }

  private:
    Scratch directory_;
    std::string before_;
};

const char* const kAdmitted = "login: 192.0.2.7 is admitted\n";

// On the library as a file of its own and on the static one.
class MainRoad : public PortingHost, public testing::WithParamInterface<const char*> {
  protected:
    MainRoad() : host_(runHost("umask 022; ", GetParam())) {}
    const Ran& host() const { return host_; }
    std::string expectedTree() const {
        std::string expected = before();
        for (const auto& [from, to] : {std::pair{"friendlyname=Small Router", "friendlyname=Kitchen"},
                                       {"factorydefault=1", "factorydefault=0"},
                                       {"wirelessname=Small", "wirelessname=Tea & biscuits"},
                                       {"encryptionkey=small-network", "encryptionkey=apple-pear-plum"},
                                       {"channel=6", "channel=11"}})
            expected = withReplaced(expected, from, to);
        return expected;
    }
    void expectResultDocument() const {
        EXPECT_EQ(temporaryFile("zepset_result.xml"),
                  "<?xml version=\"1.0\" ?>\n<root>\n <ZepSetResult>0</ZepSetResult>\n <ZepSetMsg></ZepSetMsg>\n"
                  " <ZepGetWaitSec>20</ZepGetWaitSec>\n</root>\n");
    }
    void expectOwnerAlone() const {
        for (const std::string& file : temporaryFiles()) {
            const auto permissions = std::filesystem::status(temporary() + "/" + file).permissions();
            EXPECT_EQ(permissions & std::filesystem::perms(0077), std::filesystem::perms::none) << file;
        }
    }

  private:
    Ran host_;
};

TEST_P(MainRoad, WholeRoad_IsToldStoredAndPutIntoEffect) {
    EXPECT_EQ(host().status, 0);
    EXPECT_EQ(host().output, std::string(kAdmitted) +
                                 "document: result 0 \"\", in effect in 25 s\n"
                                 "form: result 0 \"\"\n"
                                 "variable: the radio is \"Tea & biscuits\"\n");
    EXPECT_EQ(host().errors, "");
    EXPECT_EQ(content(tree()), expectedTree());
    EXPECT_FALSE(exists(tree() + ".new"));
    EXPECT_EQ(temporaryFiles(), (std::set<std::string>{"DL_log.txt", "device.conf", "wlan.conf", "zepset_result.xml"}));
    EXPECT_EQ(temporaryFile("device.conf"), "friendlyname=Kitchen\n");
    // The second run of the script, which the delayed commit started.
    EXPECT_EQ(temporaryFile("wlan.conf"),
              "wlenbl=1\nwirelessname=Tea & biscuits\nencryptionkey=apple-pear-plum\nchannel=11\n");
    expectResultDocument();
    expectOwnerAlone();
}

INSTANTIATE_TEST_SUITE_P(Library, MainRoad, testing::Values("porting_host", "porting_host_static"),
                         [](const auto& row) { return std::string(row.index == 0 ? "Shared" : "Static"); });

// SIGALRM is number 14, bit 13 of the mask; the host has it blocked while it calls the library.
TEST_F(PortingHost, Script_DoesNotInheritABlockedAlarm) {
    store(scripts() + "/wlan_resync.sh", "#!/bin/sh\ngrep SigBlk /proc/self/status >>" + directoryFile("masks") + "\n");
    std::filesystem::permissions(scripts() + "/wlan_resync.sh", std::filesystem::perms::owner_all);
    ASSERT_EQ(runHost().status, 0);
    EXPECT_EQ(content(directoryFile("masks")), "SigBlk:\t0000000000000000\nSigBlk:\t0000000000000000\n");
}

TEST_F(PortingHost, RefusedDocument_ChangesAndRunsNothing) {
    store(document(), withReplaced(content(document()), "<Channel>6<", "<Channel>7<"));
    const Ran host = runHost();
    EXPECT_EQ(host.status, 1);
    EXPECT_EQ(host.output,
              std::string(kAdmitted) + "document: result 3 \"Device/Wireless2.4/Channel\", in effect in 0 s\n");
    EXPECT_EQ(content(tree()), before());
    EXPECT_EQ(temporaryFiles(), (std::set<std::string>{"DL_log.txt", "zepset_result.xml"}));
}

TEST_F(PortingHost, MissingTree_KeepsItFromServing) {
    std::filesystem::remove(tree());
    const Ran host = runHost();
    EXPECT_EQ(host.status, 1);
    EXPECT_EQ(host.output, "");
    EXPECT_EQ(host.errors, "porting_host: cannot open " + tree() + ": No such file or directory\n");
    EXPECT_FALSE(exists(tree()));
    EXPECT_EQ(temporaryFiles(), std::set<std::string>{});
}

TEST_F(PortingHost, DamagedTree_KeepsItFromServing) {
    const std::string damaged = before() + "/sys/modelnumber=" + std::string(1024, 'm') + "\n";
    store(tree(), damaged);
    const Ran host = runHost();
    EXPECT_EQ(host.status, 1);
    const auto line = std::to_string(std::count(damaged.begin(), damaged.end(), '\n'));
    EXPECT_EQ(host.errors, "porting_host: " + tree() + ", line " + line + ": no path=value that the tree takes\n");
    EXPECT_EQ(content(tree()), damaged);
}

TEST_F(PortingHost, MissingDocument_IsNamed) {
    std::filesystem::remove(document());
    const Ran host = runHost();
    EXPECT_EQ(host.status, 1);
    EXPECT_EQ(host.errors, "porting_host: the document cannot be read\n");
    EXPECT_EQ(content(tree()), before());
}

// Files end at 8 blocks of 512 bytes, which the tree with its padding is beyond.
class FullDisk : public PortingHost {
  protected:
    FullDisk() { store(tree(), padded()); }
    std::string padded() const { return before() + "#" + std::string(6000, '-') + "\n"; }
};

TEST_F(FullDisk, Document_IsNotStoredAndNotSaidToBe) {
    const Ran host = runHost("trap '' XFSZ; ulimit -f 8; ");
    EXPECT_EQ(host.status, 1);
    EXPECT_EQ(host.output, kAdmitted);
    EXPECT_EQ(host.errors, "porting_host: cannot write " + tree() + ".new: File too large\n");
    EXPECT_EQ(content(tree()), padded());
    EXPECT_FALSE(exists(tree() + ".new"));
    EXPECT_FALSE(temporaryFiles().contains("wlan.conf"));
}

TEST_F(FullDisk, HostThatIsKilledInItsWrite_LeavesTheOldTree) {
    const Ran host = runHost("ulimit -c 0; ulimit -f 8; exec ");
    EXPECT_NE(host.status, 0);
    EXPECT_EQ(content(tree()), padded());
    EXPECT_EQ(runHost().status, 0); // the file it has left stands in nobody's way
    EXPECT_NE(content(tree()).find("friendlyname=Kitchen\n"), std::string::npos);
}

} // namespace
} // namespace pendra::test
