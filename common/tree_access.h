// Reading the configuration tree into bounded fields. xget_str knows no bound of its own, so every text goes through a
// buffer of XNODE_TEXT_MAX bytes and is cut to the field behind it.
#pragma once

#include "common/bounded_text.h"
#include "pendra/platform.h"

namespace pendra {

// A path of the tree, put together once and used like a text.
class NodePath {
  public:
    [[gnu::format(printf, 2, 3)]] explicit NodePath(const char* format, ...);
    operator const char*() const { return text_; } // NOLINT(google-explicit-constructor): it is a path text

  private:
    char text_[128];
};

// The text of the node at a path, cut to `capacity` bytes with its NUL; "" when the node is absent.
void readNodeBounded(char* destination, size_t capacity, const char* path);

inline void readNode(TextField field, const char* path) {
    readNodeBounded(field.text, field.capacity, path);
}

int readNodeInt(const char* path);

// Several settings have a value of their own for a node that is absent.
int readNodeInt(const char* path, int whenAbsent);

} // namespace pendra
