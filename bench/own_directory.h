// What the benches need of the file system.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace pendra::bench {

// A directory that is removed with everything in it. Its name is short: the library's shell commands are bounded.
class OwnDirectory {
  public:
    OwnDirectory() {
        char name[] = "/tmp/pb-XXXXXX";
        const char* made = mkdtemp(name);
        if (made == nullptr) std::abort();
        path_ = made;
    }
    OwnDirectory(const OwnDirectory&) = delete;
    OwnDirectory& operator=(const OwnDirectory&) = delete;
    ~OwnDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    [[nodiscard]] const std::string& path() const { return path_; }

  private:
    std::string path_;
};

inline std::string textOfFile(const std::string& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

} // namespace pendra::bench
