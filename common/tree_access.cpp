#include "common/tree_access.h"

#include <cstdarg>

namespace pendra {

NodePath::NodePath(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text_, sizeof text_, format, arguments);
    va_end(arguments);
}

void readNodeBounded(char* destination, size_t capacity, const char* path) {
    char text[XNODE_TEXT_MAX];
    text[0] = '\0'; // an absent node leaves the text alone
    xget_str(text, "%s", path);
    text[sizeof text - 1] = '\0';
    copyTextBounded(destination, capacity, text);
}

int readNodeInt(const char* path) {
    return xget_int("%s", path);
}

int readNodeInt(const char* path, int whenAbsent) {
    const int value = readNodeInt(path);
    return value < 0 ? whenAbsent : value;
}

} // namespace pendra
