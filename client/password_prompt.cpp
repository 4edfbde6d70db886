#include "client/password_prompt.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <optional>

#include "client/failure.h"

namespace pendra::client {

namespace {

constexpr std::array kCaught = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP};
constexpr size_t kMaxPassword = 1024;

volatile sig_atomic_t caughtSignal = 0;

void remember(int signalNumber) {
    caughtSignal = signalNumber;
}

class Terminal {
  public:
    Terminal() : file_(open("/dev/tty", O_RDWR | O_CLOEXEC)) {
        if (file_ >= 0) return;
        throw Failure(kUsage, "No password: give --password or ZEPCTL_PASSWORD, or run this on a terminal.");
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    ~Terminal() { close(file_); }

    void say(const std::string& text) const {
        if (write(file_, text.data(), text.size()) < 0) throw Failure(kUsage, "The terminal cannot be written to.");
    }
    [[nodiscard]] int file() const { return file_; }

  private:
    int file_;
};

/** Switches the echo off and remembers signals as long as it lives. */
class QuietInput {
  public:
    explicit QuietInput(int terminal) : terminal_(terminal) {
        caughtSignal = 0;
        struct sigaction action = {};
        action.sa_handler = remember; // without SA_RESTART: a signal ends the read
        for (size_t i = 0; i < kCaught.size(); ++i) {
            sigaction(kCaught[i], &action, &before_[i]);
        }
        tcgetattr(terminal_, &shown_);
        termios quiet = shown_;
        quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(terminal_, TCSAFLUSH, &quiet);
    }
    QuietInput(const QuietInput&) = delete;
    QuietInput& operator=(const QuietInput&) = delete;
    ~QuietInput() {
        tcsetattr(terminal_, TCSAFLUSH, &shown_);
        for (size_t i = 0; i < kCaught.size(); ++i) {
            sigaction(kCaught[i], &before_[i], nullptr);
        }
    }

  private:
    int terminal_;
    termios shown_ = {};
    std::array<struct sigaction, kCaught.size()> before_ = {};
};

/** @return the line without its end; nothing when a signal came or the input ended. */
std::optional<std::string> readLine(int terminal) {
    std::string line;
    char c = 0;
    while (caughtSignal == 0) {
        const ssize_t count = read(terminal, &c, 1);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return std::nullopt;
        if (c == '\n') return line;
        if (line.size() < kMaxPassword) line += c;
    }
    return std::nullopt;
}

} // namespace

std::string askPassword() {
    const Terminal terminal;
    for (;;) {
        terminal.say("Password of the device: ");
        std::optional<std::string> line;
        {
            const QuietInput quiet(terminal.file());
            line = readLine(terminal.file());
        }
        terminal.say("\n");
        if (line) return *line;
        if (caughtSignal == 0) throw Failure(kUsage, "No password was given.");
        raise(caughtSignal); // goes on here after a stop, with a new prompt
    }
}

} // namespace pendra::client
