// The engine behind every variable: one row of a table, applied to one section of the record.
#pragma once

#include "pendra/vars.h"
#include "vars/variable_tables.h"

namespace pendra {

enum VariableCode : int32_t {
    kDone = 0,
    kNotConfigurable = 1,
    kRefused = 2, // unknown name, unsupported mode, index out of range, or a value that a built-in check rejects
    kMalformed = 3,
    kNotInTable = 10
};

// A caller's value buffer (ZEPVAR_VALUE_SIZE bytes) and what is to be done with it.
struct Request {
    char* value;
    uint32_t flags;

    [[nodiscard]] bool gets() const { return (flags & ZEPVAR_GET) != 0; }
    [[nodiscard]] bool sets() const { return (flags & ZEPVAR_SET) != 0; }
    [[nodiscard]] bool checks() const { return (flags & (ZEPVAR_SET | ZEPVAR_VALIDATE)) != 0; }
    [[nodiscard]] bool asksForPath() const { return (flags & ZEPVAR_PATH) != 0; }

    int32_t answer(const char* text) const; // puts a text into the buffer; kDone
};

// A section of the record and the base of its paths.
struct Section {
    const VariableTable& variables;
    void* record;
    const char* base;
};

// Reads, checks or sets the variable of a section whose leaf equals the text.
int32_t accessVariable(const Section& section, const char* leaf, const Request& request);

} // namespace pendra
