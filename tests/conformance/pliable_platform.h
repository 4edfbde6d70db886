// A platform whose parts a test replaces, one at a time, by faulty ones. What is not replaced is the flat-file
// platform.
#pragma once

#include <functional>
#include <string>

namespace pendra::test {

struct PliablePlatform {
    // The path that a read gets out of its format; its own result is the second argument.
    std::function<std::string(const char* format, const std::string& path)> readPath;

    std::function<int(char* destination, const std::string& path)> getText;
    std::function<int(const std::string& path)> getNumber;
    std::function<int(const std::string& text, const std::string& path)> setText;
    std::function<int(int number, const std::string& path)> setNumber;
    std::function<int(const std::string& path)> remove;
    std::function<int()> announceUpgrade;
    std::function<int()> writeFirmware;
};

// A platform without a fault.
PliablePlatform soundPlatform();

// The one that the functions of pendra/platform.h stand on.
PliablePlatform& platform();

} // namespace pendra::test
