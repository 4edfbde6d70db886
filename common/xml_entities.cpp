#include <cstring>

#include "pendra/common.h"

namespace {

struct Entity {
    char character;
    const char* text; // what follows the "&"
    int32_t length;
};

constexpr Entity kDecodeRows[] = {
    {' ', "nbsp;", 5},  {'<', "lt;", 3},  {'>', "gt;", 3},   {'&', "amp;", 4}, {'"', "quot;", 5},
    {'\'', "apos;", 5}, {' ', "#32;", 4}, {' ', "#160;", 5}, // the plain space and not 0xA0: values stay printable
    {'<', "#60;", 4},   {'>', "#62;", 4}, {'&', "#38;", 4},  {'"', "#34;", 4}, {'\'', "#39;", 4},
};

constexpr Entity kEncodeRows[] = {
    {'"', "quot;", 5}, {'&', "amp;", 4}, {'\'', "#39;", 4}, {'<', "lt;", 3}, {'>', "gt;", 3},
};

// Rows are tried from the last to the first.
template <size_t Rows, typename Predicate>
const Entity* findRow(const Entity (&rows)[Rows], Predicate matches) {
    for (size_t row = Rows; row > 0; row--)
        if (matches(rows[row - 1])) return &rows[row - 1];
    return nullptr;
}

const Entity* entityAt(const char* text) {
    return findRow(kDecodeRows, [text](const Entity& row) {
        return std::strncmp(text, row.text, static_cast<size_t>(row.length)) == 0;
    });
}

const Entity* entityFor(char character) {
    return findRow(kEncodeRows, [character](const Entity& row) { return row.character == character; });
}

} // namespace

extern "C" {

char* strncpy_XmlDecode(char* destination, const char* source, int32_t count) {
    if (destination == nullptr) return nullptr;
    if (source == nullptr || count <= 0) {
        *destination = '\0';
        return destination;
    }
    for (char* next = destination; count > 0; count--) {
        const char character = *source++;
        *next = character;
        if (character == '\0') break;
        // An entity is matched whole even where the count ends inside it.
        if (const Entity* entity = character == '&' ? entityAt(source) : nullptr) {
            *next = entity->character;
            source += entity->length;
            count -= entity->length;
        }
        next++;
    }
    return destination;
}

char* strncpy_XmlEncode(char* destination, const char* source, int32_t count) {
    if (destination == nullptr) return nullptr;
    if (source == nullptr || count <= 0) {
        *destination = '\0';
        return destination;
    }
    for (char* next = destination; count > 0;) {
        const char character = *source++;
        const Entity* entity = entityFor(character);
        *next++ = entity == nullptr ? character : '&';
        count--;
        if (character == '\0') break;
        if (entity == nullptr) continue;
        // The budget may end inside the entity text, which is then cut short.
        for (const char* rest = entity->text; *rest != '\0' && count > 0; count--)
            *next++ = *rest++;
    }
    return destination;
}

} // extern "C"
