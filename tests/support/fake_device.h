// A device under the control of a test: configuration tree, vendor API, shell, clock, wireless drivers, debug console
// and signals. Everything that leaves the library is recorded in order, texts to the letter.
//
// Linked into a test program, its functions take the place of those of the platform and of libc (system, sysinfo,
// socket, ioctl, signal, alarm, setitimer, and fopen of redirected files).
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "pendra/pendra.h"

namespace pendra::test {

// One thing that left the library: "set PATH=VALUE", "del PATH", "run COMMAND", "tcapi_set N A V", "tcapi_commit N",
// "setitimer SECONDS.MICROSECONDS", "alarm SECONDS", "signal N".
using Events = std::vector<std::string>;

// One associated station as a driver reports it.
struct Station {
    unsigned char mac[6];
    signed char rssi[3];
};

struct FakeDevice {
    // The configuration tree. Absent nodes are absent keys. "name#" counts the elements "name:N" and is negative when
    // there are none; a key "name#" overrules the count.
    std::map<std::string, std::string> tree;
    bool refuseWrites = false; // xset_* returns -1 and stores nothing

    // The clock: seconds of uptime.
    long uptime = 1000;

    // The shell. Commands are recorded; with runShell they are also run for real by /bin/sh.
    bool runShell = false;
    int shellStatus = 0; // what system() returns when commands are not run

    // The debug console "/proc/tc3162/dbg_msg".
    std::string console;                   // everything written to it
    std::vector<std::string> consoleCalls; // one entry for each opening
    bool consoleMissing = false;

    // Files that are opened elsewhere: real path by the path that the library uses.
    std::map<std::string, std::string> redirectedFiles;

    // The wireless drivers, by interface name. An interface that is not here makes the ioctl fail.
    std::map<std::string, std::vector<Station>> stations;
    std::map<std::string, uint32_t> stationCounts; // a driver that lies about its number of entries
    bool socketFails = false;
    std::vector<std::string> ioctls; // "INTERFACE REQUEST-IN-HEX", in order

    // The vendor API.
    int tcapiSetResult = 0;
    int tcapiCommitResult = 0;

    // Signals and timers.
    void (*alarmHandler)(int) = nullptr;

    // Allocation: the next calloc of the library fails when set (once).
    bool failNextAllocation = false;

    // What left the library, in order.
    Events events;
    std::vector<std::string> reads; // paths read, in order

    std::vector<std::string> commands() const;       // the "run " events without the word
    Events treeWrites() const;                       // the "set " and "del " events
    bool wrote(const std::string& path) const;       // whether a "set" of that path happened
    std::string node(const std::string& path) const; // "" when absent
    bool has(const std::string& path) const { return tree.count(path) != 0; }
    void forget(); // clears events, reads, console
};

FakeDevice& device();

// A fresh device and a library as it was when it was loaded, for each test; log files go to a directory of the test's
// own, which is removed afterwards.
class DeviceTest : public ::testing::Test {
  protected:
    DeviceTest();
    ~DeviceTest() override;

    const std::string& directory() const { return directory_; } // the test's own directory
    std::string path(const std::string& name) const { return directory_ + "/" + name; }
    std::string logFile() const { return path("DL_log.txt"); }
    std::string logText() const;               // the log file's content, "" when there is none
    std::vector<std::string> logLines() const; // its lines without the leading "<uptime>: "

  private:
    std::string directory_;
};

// The library's state as it is after loading.
void resetLibrary();

std::string readFile(const std::string& path); // "" when there is none
void writeFile(const std::string& path, const std::string& content);

// Fills the tree with a device of spec version 1.1 (1.0 with minor 0): both radios, safety, easy roaming, rules and
// channel lists. Tests change what they need.
void loadRouter(FakeDevice& device, int minor = 1);

} // namespace pendra::test
