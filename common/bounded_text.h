// Copying and formatting into fixed text fields that know their own capacity: every result is NUL-terminated and cut at
// capacity - 1 bytes, never more.
#pragma once

#include <cstddef>
#include <cstdio>
#include <cstring>

namespace pendra {

#ifdef __clang_analyzer__
void mayBeFilled(char* field); // the analyzer does not follow the address of an array inside an argument of class type
#endif

// A fixed field with its capacity: what an array becomes at a call, so that one function serves every size.
struct TextField {
    template <size_t Capacity>
    TextField(char (&field)[Capacity]) : text(field), capacity(Capacity) { // NOLINT(google-explicit-constructor)
#ifdef __clang_analyzer__
        mayBeFilled(field);
#endif
    }

    char* text;
    size_t capacity;
};

// Copies a text into a buffer of `capacity` bytes; a null source counts as empty.
void copyTextBounded(char* destination, size_t capacity, const char* source);

inline void copyText(TextField field, const char* source) {
    copyTextBounded(field.text, field.capacity, source);
}

// "parent/child"; the child alone where the parent is empty.
void joinPathBounded(char* path, size_t capacity, const char* parent, const char* child);

inline void joinPath(TextField path, const char* parent, const char* child) {
    joinPathBounded(path.text, path.capacity, parent, child);
}

[[gnu::format(printf, 2, 3)]] void formatText(TextField field, const char* format, ...);

// Formats behind the text that the field holds already.
[[gnu::format(printf, 2, 3)]] void appendText(TextField field, const char* format, ...);

inline bool isEmpty(const char* text) {
    return text == nullptr || *text == '\0';
}

} // namespace pendra
