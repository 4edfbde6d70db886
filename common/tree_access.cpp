#include "common/tree_access.h"

namespace pendra {

void readNodeBounded(char* destination, size_t capacity, const char* path) {
    char text[XNODE_TEXT_MAX] = "";
    xget_str(text, "%s", path);
    text[sizeof text - 1] = '\0';
    copyTextBounded(destination, capacity, text);
}

} // namespace pendra
