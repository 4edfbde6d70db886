/**
 * @file
 * pendrad, running on the files of a device, on a free port of this machine.
 */
#ifndef PENDRA_TESTS_SYSTEM_DEVICE_PROCESS_H
#define PENDRA_TESTS_SYSTEM_DEVICE_PROCESS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "device_files.h"
#include "process.h"

namespace pendra::test {

struct HostOptions {
    int logLevel = 5;
    uint16_t port = 0;              /**< 0: any free one */
    bool bindByPermissions = false; /**< the permissions of files hold for it, even when the tests run as root */
    uint64_t largestFile = 0;       /**< bytes; a file that would grow beyond cannot be written; 0: no such limit */
    size_t connections = 128;
};

/** @return how to start pendrad on a device, as it is started when nothing else is said. */
Launch hostLaunch(const DeviceFiles& files, const HostOptions& options = {});

class DeviceProcess {
  public:
    /** Returns when the host listens; throws what it said when it does not. */
    explicit DeviceProcess(const DeviceFiles& files, const HostOptions& options = {});

    [[nodiscard]] const std::string& url() const { return url_; }
    [[nodiscard]] uint16_t port() const;
    [[nodiscard]] pid_t id() const { return process_.id(); }
    [[nodiscard]] bool isRunning() { return process_.isRunning(); }
    [[nodiscard]] std::string complaints() const { return process_.errors(); }
    void signal(int number) const { process_.signal(number); }

    /** Waits for the end. @return the exit status, -1 when it did not end in time. */
    int wait() { return process_.wait(std::chrono::seconds(30)).value_or(-1); }
    /** SIGTERM, then as wait(). */
    int stop();

  private:
    Process process_;
    std::string url_;
};

} // namespace pendra::test

#endif
