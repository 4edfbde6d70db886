/**
 * @file
 * What tests with files and processes share: a directory of their own, commands, child processes.
 */
#ifndef PENDRA_TESTS_SUPPORT_SCRATCH_H
#define PENDRA_TESTS_SUPPORT_SCRATCH_H

#include <sys/types.h>

#include <functional>
#include <string>
#include <string_view>

namespace pendra::test {

/** A directory that is there as long as this object. */
class Scratch {
  public:
    Scratch();
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    ~Scratch();
    [[nodiscard]] std::string file(std::string_view name) const { return path_ + "/" + std::string(name); }
    [[nodiscard]] const std::string& path() const { return path_; }

  private:
    std::string path_;
};

struct Ran {
    int status; ///< exit status, or -1 when a signal ended it
    std::string output;
    std::string errors;
};

[[nodiscard]] Ran run(const Scratch& scratch, const std::string& command);

[[nodiscard]] std::string content(const std::string& file);
void store(const std::string& file, std::string_view text);
[[nodiscard]] bool exists(const std::string& file);

/** A process that runs a function and ends with what it returns. It is killed when this object goes. */
class Child {
  public:
    explicit Child(const std::function<int()>& work);
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child();
    [[nodiscard]] pid_t id() const { return id_; }
    [[nodiscard]] bool isRunning();
    void kill();
    /** Waits for the end. @return the exit status, or -1 when a signal ended it. */
    int wait();

  private:
    pid_t id_;
    bool ended_ = false;
    int status_ = 0;
};

/** Lets one process wait for another. */
class Signpost {
  public:
    Signpost();
    Signpost(const Signpost&) = delete;
    Signpost& operator=(const Signpost&) = delete;
    ~Signpost();
    void raise() const;
    void await() const;

  private:
    int ends_[2];
};

} // namespace pendra::test

#endif
