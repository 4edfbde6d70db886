/**
 * @file
 * Programs that a test starts: their input, what they say, how they end. Everything is bounded in time, and nothing
 * that was started outlives the test.
 */
#ifndef PENDRA_TESTS_SYSTEM_PROCESS_H
#define PENDRA_TESTS_SYSTEM_PROCESS_H

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace pendra::test {

struct Launch {
    std::vector<std::string> command;
    std::vector<std::string> environment = {}; /**< "NAME=value" on top of this process's own */
    std::string input = {};
    std::function<bool()> prepare = {}; /**< runs in the new process before its program does */
};

/** A file without a name, in memory. */
class MemoryFile {
  public:
    explicit MemoryFile(const std::string& content = "");
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile();
    [[nodiscard]] int descriptor() const { return descriptor_; }
    [[nodiscard]] std::string content() const;

  private:
    int descriptor_;
};

/** A running program without a terminal, in a process group of its own. What is left of the group ends with it. */
class Process {
  public:
    explicit Process(const Launch& launch);
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process();

    [[nodiscard]] pid_t id() const { return id_; }
    [[nodiscard]] std::string output() const { return output_.content(); }
    [[nodiscard]] std::string errors() const { return errors_.content(); }
    [[nodiscard]] bool isRunning() { return !wait(std::chrono::milliseconds(0)).has_value(); }
    void signal(int number) const;

    /** @return the exit status (128 and the signal's number after a signal), or nothing when it still runs then. */
    std::optional<int> wait(std::chrono::milliseconds limit);

  private:
    MemoryFile input_;
    MemoryFile output_;
    MemoryFile errors_;
    pid_t id_;
    std::optional<int> status_;
};

struct Ended {
    int status; /**< -1 when the program had to be killed because it took too long */
    std::string output;
    std::string errors;
};

Ended run(const Launch& launch, std::chrono::milliseconds limit = std::chrono::seconds(60));

} // namespace pendra::test

#endif
