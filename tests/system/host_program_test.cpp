/**
 * @file
 * pendrad as a program: options, start, stop.
 */
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>

#include "running_device.h"

namespace pendra::test {
namespace {

Ended runHost(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), PENDRA_HOST);
    return run({.command = std::move(arguments)});
}

TEST(HostOptions, Version_IsPrinted) {
    const Ended ended = runHost({"--version"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.output, "pendrad, libpendra b1.3.1\n");
}

TEST(HostOptions, Help_NamesEveryOption) {
    const Ended ended = runHost({"--help"});
    EXPECT_EQ(ended.status, 0);
    for (const char* option : {"--tree", "--port", "--bind", "--tmp", "--scripts", "--device", "--log-level",
                               "--connections", "--version", "--help"}) {
        EXPECT_NE(ended.output.find(option), std::string::npos) << option;
    }
}

TEST(HostOptions, WrongUsage_EndsWith2AndSaysWhatIsWrong) {
    const std::vector<std::vector<std::string>> rows = {
        {},
        {"--tree"},
        {"--tree", "x", "--port", "65536"},
        {"--tree", "x", "--port", "-1"},
        {"--tree", "x", "--port", "http"},
        {"--tree", "x", "--log-level", "8"},
        {"--tree", "x", "--log-level", "-1"},
        {"--tree", "x", "--connections", "7"},
        {"--tree", "x", "--nonsense"},
        {"--tree", "x", "--tmp", "/tmp/" + std::string(60, 'd')}, // 65 characters, the log keeps 63
        {"--tree", "x", "extra"},
    };
    for (const std::vector<std::string>& row : rows) {
        const Ended ended = runHost(row);
        EXPECT_EQ(ended.status, 2) << (row.empty() ? "no option" : row.back());
        EXPECT_NE(ended.errors, "");
        EXPECT_EQ(ended.output, "");
    }
}

class HostProgram : public RunningDevice {
  protected:
    [[nodiscard]] Ended startWith(const std::vector<std::string>& more) const {
        Launch launch = hostLaunch(files);
        launch.command.insert(launch.command.end(), more.begin(), more.end());
        return run(launch, std::chrono::seconds(10));
    }
    [[nodiscard]] Ended startOn(const std::string& tree) const {
        Launch launch = hostLaunch(files);
        launch.command[2] = tree;
        return run(launch, std::chrono::seconds(10));
    }
};

TEST_F(HostProgram, NoTree_EndsWith1AndCreatesNone) {
    const std::string absent = files.tmp() + "/none";
    const Ended ended = startOn(absent);
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.errors,
              "pendrad: there is no configuration tree " + absent + " (xtree can load one from a text file)\n");
    EXPECT_NE(::access(absent.c_str(), F_OK), 0);
}

TEST_F(HostProgram, FileThatIsNoTree_EndsWith1AndLeavesIt) {
    const std::string file = files.tmp() + "/text";
    const std::string content(20000, 'x');
    writeFile(file, content);
    const Ended ended = startOn(file);
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.errors.find("pendrad: cannot open the tree " + file + ": "), 0u) << ended.errors;
    EXPECT_EQ(readFile(file), content);
}

TEST_F(HostProgram, SecondHostOnATree_EndsWith1AndTheFirstGoesOn) {
    start();
    const Ended second = startWith({});
    EXPECT_EQ(second.status, 1);
    EXPECT_EQ(second.errors,
              "pendrad: the tree " + files.tree() + " is in use by process " + std::to_string(host->id()) + "\n");
    expectResult(setUp(nameDocument("Attic")), 0, "", 5);
}

TEST_F(HostProgram, KilledHost_LeavesTheTreeToTheNextOne) {
    start();
    host->signal(SIGKILL);
    EXPECT_EQ(host->wait(), 128 + SIGKILL);
    start();
    expectResult(setUp(nameDocument("Attic")), 0, "", 5);
}

TEST_F(HostProgram, PortInUse_EndsWith1AndSaysSo) {
    start();
    const DeviceFiles others("router.tree");
    const Ended ended = run(hostLaunch(others, {.port = host->port()}), std::chrono::seconds(10));
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.errors, "pendrad: cannot listen on 127.0.0.1 port " + std::to_string(host->port()) +
                                ": Address already in use\n");
}

TEST_F(HostProgram, AddressThatIsNone_EndsWith1) {
    const Ended ended = startWith({"--bind", "nowhere"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.errors, "pendrad: \"nowhere\" is not a numeric address to listen on\n");
}

TEST_F(HostProgram, MoreConnectionsThanFilesMayBeOpen_EndsWith1AndSaysSo) {
    Launch launch = hostLaunch(files, {.connections = 200});
    launch.prepare = [] {
        const rlimit limit{300, 300};
        return ::setrlimit(RLIMIT_NOFILE, &limit) == 0;
    };
    const Ended ended = run(launch, std::chrono::seconds(10));
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.errors, "pendrad: so many connections need 328 open files, and 300 are allowed\n");
}

TEST_F(HostProgram, DirectoriesOfTheCommandLine_AreStoredInTheTree) {
    start();
    EXPECT_EQ(files.get("/bramble/tempdirecory"), files.tmp());
    EXPECT_EQ(files.get("/bramble/scriptdirecory"), files.scripts());
}

TEST_F(HostProgram, TerminatedWhileIdle_EndsWith0) {
    for (const int number : {SIGTERM, SIGINT}) {
        start();
        EXPECT_EQ(get("/zep/hello").status, 200);
        host->signal(number);
        EXPECT_EQ(host->wait(), 0);
        EXPECT_EQ(host->complaints(), "");
    }
}

TEST_F(HostProgram, TerminatedDuringARequest_AnswersItFirst) {
    start();
    login();
    const std::string document = nameDocument("Attic");
    Connection connection(host->port());
    connection.send("POST /zep/setup HTTP/1.1\r\nHost: device\r\nExpect: 100-continue\r\nContent-Length: " +
                    std::to_string(document.size()) + "\r\n\r\n");
    ASSERT_NE(connection.readUntil("100 Continue\r\n\r\n").find("100 Continue"), std::string::npos);
    host->signal(SIGTERM);
    connection.send(document);
    EXPECT_NE(connection.readUntil("</root>\n").find(resultDocument(0, "", 5)), std::string::npos);
    EXPECT_EQ(host->wait(), 0);
    EXPECT_EQ(files.get("/sys/friendlyname"), "Attic");
    EXPECT_EQ(files.scriptsRun(), std::vector<std::string>{"device_resync.sh"});
}

TEST_F(HostProgram, TerminatedDuringARequestThatNeverEnds_EndsAllTheSame) {
    start();
    login();
    const DeviceFiles::Snapshot before = files.snapshot();
    Connection connection(host->port());
    connection.send("POST /zep/setup HTTP/1.1\r\nHost: device\r\nExpect: 100-continue\r\nContent-Length: 500\r\n\r\n");
    ASSERT_NE(connection.readUntil("100 Continue\r\n\r\n").find("100 Continue"), std::string::npos);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(host->stop(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
    EXPECT_EQ(files.changedFiles(before), std::vector<std::string>{});
}

TEST_F(HostProgram, TerminatedWhileScriptsRun_LetsThemEnd) {
    writeFile(files.scripts() + "/device_resync.sh",
              "#!/bin/sh\n: >\"$PENDRA_DEVICE/begun\"\nsleep 1\necho 'device_resync.sh: done' "
              ">>\"$PENDRA_DEVICE/journal.txt\"\n");
    start();
    expectResult(setUp(nameDocument("Attic")), 0, "", 5);
    EXPECT_EQ(host->stop(), 0);
    EXPECT_EQ(files.journal(), "device_resync.sh: done\n");
}

TEST_F(HostProgram, Library_IsTheOneOfTheBuild) {
    const Ended linked = run({.command = {"ldd", PENDRA_HOST}});
    const std::string library = PENDRA_LIBRARY;
    const std::string directory = library.substr(0, library.rfind('/'));
    EXPECT_NE(linked.output.find("libpendra.so.1 => " + directory + "/libpendra.so.1 "), std::string::npos)
        << linked.output;
    start();
    const std::string maps = readFile("/proc/" + std::to_string(host->id()) + "/maps");
    EXPECT_NE(maps.find(" " + library + "\n"), std::string::npos) << maps;
}

} // namespace
} // namespace pendra::test
