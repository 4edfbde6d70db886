/**
 * @file
 * The firmware-information server of the tests: the project's own, at the address that the library is built with.
 */
#ifndef PENDRA_TESTS_SYSTEM_FIRMWARE_SERVER_H
#define PENDRA_TESTS_SYSTEM_FIRMWARE_SERVER_H

#include <string>

#include "process.h"

namespace pendra::test {

/** The library's engineering server; it is compiled in, so one test at a time may use it. */
inline constexpr const char* kFirmwareServer = PENDRA_FW_ENG_SERVER;

class FirmwareServer {
  public:
    /** Returns when it listens. @param rate KiB per second of a connection; 0: as fast as it can. */
    explicit FirmwareServer(const std::string& root, int rate = 0);

    /** Ends it at once; what it is sending is cut. */
    void kill();

  private:
    Process process_;
};

/** Takes connections at the server's address, and nothing else. */
class SilentServer {
  public:
    enum class Connections {
        taken,   /**< but never answered */
        ignored, /**< its queue is full: no connection comes about */
    };
    explicit SilentServer(Connections connections);
    SilentServer(const SilentServer&) = delete;
    SilentServer& operator=(const SilentServer&) = delete;
    ~SilentServer();

  private:
    int listener_;
    int fillers_[4] = {-1, -1, -1, -1};
};

} // namespace pendra::test

#endif
