// The image check on files of the test's own directory.
#pragma once

#include <dirent.h>

#include <algorithm>
#include <climits>
#include <string>
#include <vector>

#include "image.h"
#include "support/fake_device.h"

namespace pendra::test {

inline size_t openDescriptors() {
    DIR* directory = opendir("/proc/self/fd");
    size_t count = 0;
    while (readdir(directory) != nullptr)
        count++;
    closedir(directory);
    return count;
}

// Every refusal is told in a buffer of 256 bytes; what stands behind them stays.
class ImageCheckTest : public DeviceTest {
  protected:
    static constexpr size_t kMessageSize = 256;
    static constexpr char kGuard = '\x01';

    std::string file() const { return path("image.bin"); }

    uint32_t checkFile(const std::string& name, int32_t offset, int32_t length) {
        buffer_.assign(kMessageSize + 64, kGuard);
        const size_t before = openDescriptors();
        const uint32_t result = check(name.c_str(), offset, length, buffer_.data());
        EXPECT_EQ(before, openDescriptors());
        const auto isGuard = [](char byte) { return byte == kGuard; };
        EXPECT_TRUE(std::all_of(buffer_.begin() + kMessageSize, buffer_.end(), isGuard));
        return result;
    }

    // Stores a file and checks a part of it.
    uint32_t checkPart(const std::string& content, int32_t offset, int32_t length) {
        writeFile(file(), content);
        return checkFile(file(), offset, length);
    }
    uint32_t checkWhole(const std::string& content) {
        return checkPart(content, 0, static_cast<int32_t>(content.size()));
    }

    bool saysNothing() const { return buffer_.front() == kGuard; }
    std::string message() const { return saysNothing() ? "" : buffer_.data(); }

    static std::string badSize(const std::string& name) { return "Bad size: \"" + name + "\" is no valid image\n"; }
    static std::string badMagic(const std::string& name) {
        return "Bad Magic Number: \"" + name + "\" is no valid image\n";
    }
    static std::string badHeader(const std::string& name) {
        return "*** Warning: \"" + name + "\" has bad header checksum!\n";
    }
    static std::string badData(const std::string& name) {
        return "*** Warning: \"" + name + "\" has corrupted data!\n";
    }

  private:
    std::vector<char> buffer_ = std::vector<char>(kMessageSize, kGuard);
};

} // namespace pendra::test
