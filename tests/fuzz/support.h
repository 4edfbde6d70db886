// What the fuzz targets share: taking an input apart, exact buffers, properties, and a device in a known state.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/fake_device.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments);

namespace pendra::fuzz {

extern std::string currentInput; // the file that is replayed, for the report

// A property that does not hold ends the program as a sanitizer's report does, so that the input is kept.
void require(bool holds, std::string_view property, std::string_view detail = {});
void requireEqual(int64_t actual, int64_t expected, std::string_view what);
void requireEqual(std::string_view actual, std::string_view expected, std::string_view what);

// An input is text in lines, so that seeds can be written and findings read. Texts end at a NUL, as the library sees
// them.
class Input {
  public:
    Input(const uint8_t* data, size_t size) : rest_(reinterpret_cast<const char*>(data), size) {}
    bool empty() const { return rest_.empty(); }
    bool beginsWith(char character) const { return !rest_.empty() && rest_.front() == character; }
    std::string line();                                    // the next line without its end
    int32_t number();                                      // the next word of digits with its delimiter; 0 if none
    bool flag(char letter);                                // whether the next character is this one; skips it then
    std::string text();                                    // all that is left, as a text
    std::string bytes() { return std::string(takeAll()); } // all that is left

  private:
    std::string_view takeAll();
    std::string_view rest_;
};

// A block of exactly as many bytes as the library is told about: one more is the sanitizer's.
class Buffer {
  public:
    explicit Buffer(std::string_view text); // with its NUL
    Buffer(size_t capacity, char fill) : bytes_(capacity, fill) {}
    char* data() { return bytes_.data(); }
    size_t size() const { return bytes_.size(); }
    std::string_view all() const { return {bytes_.data(), bytes_.size()}; }
    std::string text() const; // up to the NUL, which must be there

  private:
    std::vector<char> bytes_;
};

// A value that would overflow the expected range is cut to it.
int32_t clampTo(int32_t value, int32_t low, int32_t high);

// A fresh router with a silent library; with trace everything is logged to the device's console.
void startDevice(int minor = 1, bool trace = false);

// Lines "/path=value" at the front of the input overrule the tree.
void readTreeLines(Input& input);

// Every text of the record ends within its field, and the area that nothing uses is as it was filled.
void guardRecord();
void checkRecord();

// What an application may do although nothing differs: the mode of the access control is written on every run, and a
// cloned site is published on every run. The writes of the device's events that are neither.
std::vector<std::string> unexpectedRewrites();

// A list of the tree that has gaps, or whose count is overruled, is not what a device stores.
bool treeListsAreSound();

} // namespace pendra::fuzz
