#include "platform/kernel/shell.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "platform/device_state.h"
#include "platform/kernel/next_symbol.h"

namespace pendra::device {
namespace {

/** A command's attributes: no signal is blocked. */
class OpenSignals {
  public:
    OpenSignals() {
        sigset_t none;
        sigemptyset(&none);
        posix_spawnattr_init(&attributes_);
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK);
    }
    OpenSignals(const OpenSignals&) = delete;
    OpenSignals& operator=(const OpenSignals&) = delete;
    ~OpenSignals() { posix_spawnattr_destroy(&attributes_); }
    [[nodiscard]] const posix_spawnattr_t* attributes() const { return &attributes_; }

  private:
    posix_spawnattr_t attributes_;
};

} // namespace

int runCommand(const std::string& command) {
    std::string shell = "sh";
    std::string option = "-c";
    std::string text = command;
    char* arguments[] = {shell.data(), option.data(), text.data(), nullptr};
    const OpenSignals signals;
    pid_t child = 0;
    const int fault = ::posix_spawn(&child, "/bin/sh", nullptr, signals.attributes(), arguments, environ);
    if (fault != 0) {
        errno = fault;
        return -1;
    }
    int status = 0;
    pid_t ended = 0;
    while ((ended = ::waitpid(child, &status, 0)) < 0 && errno == EINTR)
        continue;
    return ended == child ? status : -1;
}

std::string shellQuoted(std::string_view text) {
    std::string quoted = "'";
    for (const char c : text)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

std::string deviceCommand(std::string_view command) {
    constexpr std::string_view tool = "/userfs/bin/iwpriv";
    const std::string ownTool = deviceFile("bin/iwpriv");
    const bool isTool = command.substr(0, command.find(' ')) == tool && ::access(ownTool.c_str(), X_OK) == 0;
    if (!isTool) return std::string(command);
    return shellQuoted(ownTool) + std::string(command.substr(tool.size()));
}

} // namespace pendra::device

extern "C" int system(const char* command) {
    using namespace pendra::device;
    static const auto next = nextSymbol<int(const char*)>("system");
    return command && isDeviceOpen() ? runCommand(deviceCommand(command)) : next(command);
}
