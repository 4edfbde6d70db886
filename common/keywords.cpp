#include "common/keywords.h"

#include <algorithm>
#include <cstdint>

#include "common/bounded_text.h"
#include "common/tree_access.h"
#include "pendra/common.h"

namespace pendra {
namespace {

// Appends to a buffer until it is full; the byte for the NUL is kept free.
class BoundedWriter {
  public:
    BoundedWriter(char* destination, size_t capacity) : next_(destination), room_(capacity - 1) {}
    void append(const char* bytes, size_t length) {
        if (length > room_) length = room_;
        if (length > 0) std::memmove(next_, bytes, length);
        next_ += length;
        room_ -= length;
    }
    void terminate() { *next_ = '\0'; }

  private:
    char* next_;
    size_t room_;
};

} // namespace

char* changeKeywordBounded(char* destination, size_t capacity, const char* source, const char* keyword,
                           const char* replacement) {
    BoundedWriter writer(destination, capacity);
    const size_t keywordLength = std::strlen(keyword);
    while (keywordLength > 0) {
        const char* found = std::strstr(source, keyword);
        if (found == nullptr) break;
        writer.append(source, static_cast<size_t>(found - source));
        writer.append(replacement, std::strlen(replacement));
        source = found + keywordLength;
    }
    writer.append(source, std::strlen(source));
    writer.terminate();
    return destination;
}

char* changeZepKeywordsBounded(char* text, size_t capacity) {
    if (*text == '\0') return text;
    char replacement[64];
    char work[kKeywordTextSize];
    readNode(replacement, "/runtime/bramble/lanip");
    changeKeywordBounded(work, sizeof work, text, "$lanip", replacement);
    readNode(replacement, "/bramble/zephttpport");
    return changeKeywordBounded(text, std::min(capacity, sizeof work), work, "$zepport", replacement);
}

} // namespace pendra

using namespace pendra;

extern "C" {

char* strChgKeyword(char* destination, const char* source, const char* keyword, const char* replacement) {
    if (destination == nullptr || source == nullptr || keyword == nullptr || replacement == nullptr) return nullptr;
    return changeKeywordBounded(destination, PTRDIFF_MAX, source, keyword, replacement);
}

char* strChgZepKeywords(char* text) {
    return text == nullptr ? nullptr : changeZepKeywordsBounded(text, kKeywordTextSize);
}

} // extern "C"
