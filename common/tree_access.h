// Reading the configuration tree into bounded fields. xget_str knows no bound of its own, so every text goes through a
// buffer of XNODE_TEXT_MAX bytes and is cut to the field behind it.
#pragma once

#include "common/bounded_text.h"
#include "pendra/platform.h"

namespace pendra {

// A path of the tree, put together once and used like a text.
class NodePath {
  public:
    [[gnu::format(printf, 2, 3)]] explicit NodePath(const char* format, ...) {
        va_list arguments;
        va_start(arguments, format);
        std::vsnprintf(text_, sizeof text_, format, arguments);
        va_end(arguments);
    }
    operator const char*() const { return text_; } // NOLINT(google-explicit-constructor): it is a path text

  private:
    char text_[128];
};

// The text of the node at a path, cut to `capacity` bytes with its NUL; "" when the node is absent.
void readNodeBounded(char* destination, size_t capacity, const char* path);

template <size_t Capacity>
void readNode(char (&field)[Capacity], const char* path) {
    readNodeBounded(field, Capacity, path);
}

inline int readNodeInt(const char* path) {
    return xget_int("%s", path);
}

// Several settings have a value of their own for a node that is absent.
inline int readNodeInt(const char* path, int whenAbsent) {
    const int value = readNodeInt(path);
    return value < 0 ? whenAbsent : value;
}

} // namespace pendra
