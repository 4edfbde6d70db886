/**
 * @file
 * The files of one simulated device, made for one test: its tree, its directories, its scripts.
 */
#ifndef PENDRA_TESTS_SYSTEM_DEVICE_FILES_H
#define PENDRA_TESTS_SYSTEM_DEVICE_FILES_H

#include <map>
#include <string>
#include <vector>

#include "process.h"

namespace pendra::test {

std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& content);

/** A document of examples/. */
std::string example(const std::string& name);

class DeviceFiles {
  public:
    /** @param listing the tree's text form in platform/device. */
    explicit DeviceFiles(const std::string& listing);
    DeviceFiles(const DeviceFiles&) = delete;
    DeviceFiles& operator=(const DeviceFiles&) = delete;
    ~DeviceFiles();

    [[nodiscard]] std::string tree() const { return root_ + "/tree"; }
    /** Short: the library builds its shell commands in fixed buffers. */
    [[nodiscard]] std::string tmp() const { return root_ + "/t"; }
    [[nodiscard]] std::string scripts() const { return root_ + "/scripts"; }
    [[nodiscard]] std::string hardware() const { return root_ + "/device"; }
    [[nodiscard]] std::string resultFile() const { return tmp() + "/zepset_result.xml"; }
    [[nodiscard]] std::string logFile() const { return tmp() + "/pendrad_log.txt"; }

    /** Runs xtree on the tree. */
    [[nodiscard]] Ended xtree(std::vector<std::string> arguments, const std::string& input = "") const;
    [[nodiscard]] std::string get(const std::string& path) const;
    void set(const std::string& path, const std::string& text) const;
    [[nodiscard]] std::string dump() const;
    /** @return what turned a dump into today's tree, as lines of "- old" and "+ new". */
    [[nodiscard]] std::string changesSince(const std::string& dump) const;

    [[nodiscard]] std::string journal() const { return readFile(hardware() + "/journal.txt"); }
    /** @return the scripts that have run, in their order. */
    [[nodiscard]] std::vector<std::string> scriptsRun() const;
    void setUptime(const std::string& text) const { writeFile(hardware() + "/uptime", text); }

    /** Every file of the device byte by byte, the tree's included; locks, the log and its console are left out. */
    using Snapshot = std::map<std::string, std::string>;
    [[nodiscard]] Snapshot snapshot() const;
    /** @return the names of the files that came, went or changed since then. */
    [[nodiscard]] std::vector<std::string> changedFiles(const Snapshot& before) const;

  private:
    std::string root_;
};

/** Rows of an expected change: a null old text for a node that is new. */
struct Change {
    const char* path;
    const char* before;
    const char* after;
};

/** @return the lines in which changesSince() tells of such changes. */
std::string changeLines(const std::vector<Change>& changes);

} // namespace pendra::test

#endif
