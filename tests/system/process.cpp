#include "process.h"

#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <stdexcept>

namespace pendra::test {

namespace {

constexpr int kCannotStart = 127;

std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts) {
        pointers.push_back(const_cast<char*>(text.c_str()));
    }
    pointers.push_back(nullptr);
    return pointers;
}

[[noreturn]] void become(const Launch& launch) {
    ::setsid();                         // a process group of its own, and no terminal
    ::prctl(PR_SET_PDEATHSIG, SIGKILL); // a test that is killed itself must not leave it behind
    for (const std::string& variable : launch.environment) {
        ::putenv(const_cast<char*>(variable.c_str()));
    }
    const std::vector<char*> arguments = pointersTo(launch.command);
    if (!launch.prepare || launch.prepare()) ::execvp(arguments[0], arguments.data());
    ::perror(arguments[0]);
    ::_exit(kCannotStart);
}

pid_t start(const Launch& launch, int input, int output, int errors) {
    const pid_t id = ::fork();
    if (id < 0) throw std::runtime_error("cannot start another process");
    if (id == 0) {
        ::dup2(input, STDIN_FILENO);
        ::dup2(output, STDOUT_FILENO);
        ::dup2(errors, STDERR_FILENO);
        become(launch);
    }
    return id;
}

bool endsWithin(pid_t id, std::chrono::milliseconds limit) {
    const int handle = static_cast<int>(::syscall(SYS_pidfd_open, id, 0));
    if (handle < 0) throw std::runtime_error("cannot watch a process");
    pollfd source{handle, POLLIN, 0};
    const int ready = ::poll(&source, 1, static_cast<int>(limit.count()));
    ::close(handle);
    return ready > 0;
}

} // namespace

MemoryFile::MemoryFile(const std::string& content) : descriptor_(::memfd_create("test", MFD_CLOEXEC)) {
    const auto size = static_cast<ssize_t>(content.size());
    if (descriptor_ < 0 || ::pwrite(descriptor_, content.data(), content.size(), 0) != size) {
        throw std::runtime_error("no file in memory");
    }
}

MemoryFile::~MemoryFile() {
    ::close(descriptor_);
}

std::string MemoryFile::content() const {
    std::string text;
    char block[65536];
    ssize_t count = 0;
    while ((count = ::pread(descriptor_, block, sizeof block, static_cast<off_t>(text.size()))) > 0) {
        text.append(block, static_cast<size_t>(count));
    }
    return text;
}

Process::Process(const Launch& launch)
    : input_(launch.input), id_(start(launch, input_.descriptor(), output_.descriptor(), errors_.descriptor())) {}

Process::~Process() {
    if (status_) return;
    ::kill(-id_, SIGKILL);
    signal(SIGKILL); // when it has no group yet
    ::waitpid(id_, nullptr, 0);
}

void Process::signal(int number) const {
    ::kill(id_, number);
}

std::optional<int> Process::wait(std::chrono::milliseconds limit) {
    if (status_ || !endsWithin(id_, limit)) return status_;
    ::kill(-id_, SIGKILL); // while the ended process still holds the number of the group
    int state = 0;
    ::waitpid(id_, &state, 0);
    status_ = WIFEXITED(state) ? WEXITSTATUS(state) : 128 + WTERMSIG(state);
    return status_;
}

Ended run(const Launch& launch, std::chrono::milliseconds limit) {
    Process process(launch);
    const std::optional<int> status = process.wait(limit);
    return {status.value_or(-1), process.output(), process.errors()};
}

} // namespace pendra::test
