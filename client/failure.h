/**
 * @file
 * How a command of zepctl ends.
 */
#ifndef PENDRA_CLIENT_FAILURE_H
#define PENDRA_CLIENT_FAILURE_H

#include <stdexcept>
#include <string>

namespace pendra::client {

enum ExitCode : int {
    kDone = 0,
    kRefused = 1,
    kUsage = 2,
    kNotAdmitted = 3,
    kUnreachable = 4,
    kUnexpected = 5,
    kUnreadable = 6,
    kNoFirmware = 7,
    kListMalformed = 8,
    kServerUnreachable = 9,
    kDownloadFailed = 10,
    kImageRefused = 11,
};

/** Ends a command: what() is one line for a person. */
class Failure : public std::runtime_error {
  public:
    Failure(ExitCode code, const std::string& line) : std::runtime_error(line), code_(code) {}
    [[nodiscard]] ExitCode code() const { return code_; }

  private:
    ExitCode code_;
};

} // namespace pendra::client

#endif
