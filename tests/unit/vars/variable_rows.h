// Every variable of the interface with what the protocol says of it: for tests that hold for all of them.
#pragma once

#include <iterator>

#include "variables.h"

namespace pendra::test {

// A variable that can be set.
struct StoredRow {
    std::string name; // behind "zep_"
    std::string path;
    char* text = nullptr; // field of a text
    size_t capacity = 0;
    int32_t* number = nullptr; // field of a number, or of an enumerated text's index
    std::string good = {};     // a value that the check takes
    int32_t goodNumber = 0;
    std::string bad = {}; // a value that the check does not take
    int32_t badCode = 0;
    char* rule = nullptr;    // the text of its validation rule
    int32_t* gate = nullptr; // its section's Configurable

    bool isEnumerated() const { return text != nullptr && number != nullptr; }
    bool isPlainText() const { return text != nullptr && number == nullptr; }
    bool isChecked() const { return badCode != 0; }
    bool isGated() const { return gate != nullptr; }
};

// A variable that can only be read.
struct ReadOnlyRow {
    std::string name; // behind "zep_"
    std::string path;
    std::string value; // what it gives once it is provided
    char* text = nullptr;
    int32_t* number = nullptr;
    std::string node; // of a live value
    int32_t* gate = nullptr;

    bool isGated() const { return gate != nullptr; }
    bool isLiveText() const { return !node.empty() && value.find_first_not_of("0123456789") != std::string::npos; }
};

inline void PrintTo(const StoredRow& row, std::ostream* output) {
    *output << row.name;
}

inline void PrintTo(const ReadOnlyRow& row, std::ostream* output) {
    *output << row.name;
}

const std::vector<StoredRow>& storedRows();
const std::vector<ReadOnlyRow>& readOnlyRows();

// The rows for which a question is answered with yes.
template <typename Row>
std::vector<Row> rowsThat(bool (Row::*holds)() const, const std::vector<Row>& rows) {
    std::vector<Row> found;
    std::copy_if(rows.begin(), rows.end(), std::back_inserter(found),
                 [holds](const Row& row) { return (row.*holds)(); });
    return found;
}

// Sections that may be set, rules of 2 to 12 characters, channels 1, 6, 11 and 100, two access rules, one site.
void prepareRecord();

void provide(const ReadOnlyRow& row);

} // namespace pendra::test
