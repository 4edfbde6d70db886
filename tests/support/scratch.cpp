#include "support/scratch.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace pendra::test {

Scratch::Scratch() {
    std::string path = (std::filesystem::temp_directory_path() / "pendra-XXXXXX").string();
    if (::mkdtemp(path.data()) == nullptr) throw std::runtime_error("no scratch directory");
    path_ = path;
}

Scratch::~Scratch() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

Ran run(const Scratch& scratch, const std::string& command) {
    const std::string output = scratch.file("command.out");
    const std::string errors = scratch.file("command.err");
    const int status = std::system(("( " + command + "\n) >" + output + " 2>" + errors).c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, content(output), content(errors)};
}

std::string content(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    if (stream.peek() != std::ifstream::traits_type::eof()) text << stream.rdbuf();
    return text.str();
}

void store(const std::string& file, std::string_view text) {
    std::filesystem::create_directories(std::filesystem::path(file).parent_path());
    std::ofstream(file, std::ios::binary) << text;
}

bool exists(const std::string& file) {
    return std::filesystem::exists(file);
}

Child::Child(const std::function<int()>& work) : id_(::fork()) {
    if (id_ != 0) return;
    int status = 99;
    try {
        status = work();
    } catch (...) {
        status = 98;
    }
    ::_exit(status);
}

Child::~Child() {
    kill();
}

bool Child::isRunning() {
    if (!ended_ && ::waitpid(id_, &status_, WNOHANG) == id_) ended_ = true;
    return !ended_;
}

void Child::kill() {
    if (ended_) return;
    ::kill(id_, SIGKILL);
    wait();
}

int Child::wait() {
    if (!ended_) ::waitpid(id_, &status_, 0);
    ended_ = true;
    return WIFEXITED(status_) ? WEXITSTATUS(status_) : -1;
}

Signpost::Signpost() {
    if (::pipe(ends_) != 0) throw std::runtime_error("no pipe");
}

Signpost::~Signpost() {
    ::close(ends_[0]);
    ::close(ends_[1]);
}

void Signpost::raise() const {
    if (::write(ends_[1], "x", 1) != 1) throw std::runtime_error("cannot raise the signpost");
}

void Signpost::await() const {
    char byte = 0;
    if (::read(ends_[0], &byte, 1) != 1) throw std::runtime_error("nobody raised the signpost");
}

} // namespace pendra::test
