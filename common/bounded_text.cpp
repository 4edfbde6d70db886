#include "common/bounded_text.h"

#include <cstdarg>

namespace pendra {

void copyTextBounded(char* destination, size_t capacity, const char* source) {
    const size_t length = source == nullptr ? 0 : strnlen(source, capacity - 1);
    if (length > 0) std::memmove(destination, source, length);
    destination[length] = '\0';
}

void joinPathBounded(char* path, size_t capacity, const char* parent, const char* child) {
    copyTextBounded(path, capacity, parent);
    size_t used = std::strlen(path);
    if (used > 0 && used + 1 < capacity) path[used++] = '/';
    copyTextBounded(path + used, capacity - used, child);
}

void formatText(TextField field, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(field.text, field.capacity, format, arguments);
    va_end(arguments);
}

void appendText(TextField field, const char* format, ...) {
    const size_t used = strnlen(field.text, field.capacity - 1);
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(field.text + used, field.capacity - used, format, arguments);
    va_end(arguments);
}

} // namespace pendra
