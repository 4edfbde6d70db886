// Setup documents of every size, good and hostile, and forms.
#pragma once

#include <cstddef>
#include <string>

namespace pendra::bench {

struct DocumentPlan {
    int rules24 = 3;       // access rules of each radio
    int rules5 = 0;        //
    int indent = 2;        // blanks a level
    bool other = false;    // every value that a device stores is another one
    std::size_t bytes = 0; // filled up to this size with elements that the library does not know
};

[[nodiscard]] std::string setupDocument(const DocumentPlan& plan);

[[nodiscard]] std::string smallDocument(); // 2.4 kB, as a client sends it
[[nodiscard]] std::string largeDocument(); // 14 kB: all the access rules that a device takes

// A complete document whose Device starts with `bytes` of the piece over and over.
[[nodiscard]] std::string hostileDocument(const std::string& piece, std::size_t bytes);

// A firmware list of so many entries, of which none is for this device.
[[nodiscard]] std::string firmwareList(int entries);

// So many pairs of variables, every value a good one.
[[nodiscard]] std::string variableForm(int pairs);

} // namespace pendra::bench
