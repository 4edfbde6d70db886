#include <cstring>

#include "common/bounded_text.h"
#include "common/number.h"
#include "common/trace.h"
#include "pendra/setupdoc.h"

using namespace pendra;

namespace {

// The texts that a tag stands for in a document, each cut at 127 characters.
struct TagPatterns {
    explicit TagPatterns(const char* tag) {
        formatText(opening, "<%s>", tag);
        formatText(closing, "</%s>", tag);
        formatText(selfClosing, "<%s/>", tag);
        formatText(spacedSelfClosing, "<%s />", tag);
    }
    char opening[128];
    char closing[128];
    char selfClosing[128];
    char spacedSelfClosing[128];
};

// Bounds a search by a NUL at the end of the stretch, and puts the byte there back.
class StretchBound {
  public:
    StretchBound(char* buffer, int32_t length) {
        if (length <= 0 || strnlen(buffer, static_cast<size_t>(length)) < static_cast<size_t>(length)) return;
        if (buffer[length] == '\0') return;
        end_ = buffer + length;
        remembered_ = *end_;
        *end_ = '\0';
    }
    ~StretchBound() {
        if (end_ != nullptr) *end_ = remembered_;
    }
    StretchBound(const StretchBound&) = delete;
    StretchBound& operator=(const StretchBound&) = delete;

  private:
    char* end_ = nullptr;
    char remembered_ = '\0';
};

void store(int32_t* outLength, int32_t length) {
    if (outLength != nullptr) *outLength = length;
}

char* findContent(char* content, const TagPatterns& patterns, int32_t* outLength) {
    const char* closing = strstri(content, patterns.closing);
    store(outLength, closing == nullptr ? 0 : static_cast<int32_t>(closing - content));
    return closing == nullptr ? nullptr : content;
}

char* findSelfClosing(char* buffer, const TagPatterns& patterns) {
    char* found = strstri(buffer, patterns.selfClosing);
    return found != nullptr ? found : strstri(buffer, patterns.spacedSelfClosing);
}

void reportLostKey(const char* parentPath, const char* tag) {
    if (XmlErrMsg_LostKey != nullptr) XmlErrMsg_LostKey(parentPath, tag);
}

} // namespace

extern "C" {

int32_t (*XmlErrMsg_LostKey)(const char* parentPath, const char* tag);

char* FindXmlKeyContain_(char* buffer, int32_t length, const char* tag, int32_t* outLength, int32_t headerOnly) {
    if (buffer == nullptr || tag == nullptr) return nullptr;
    const TagPatterns patterns(tag);
    const StretchBound bound(buffer, length);
    if (char* opening = strstri(buffer, patterns.opening)) {
        if (headerOnly != 0) return opening;
        return findContent(opening + std::strlen(patterns.opening), patterns, outLength);
    }
    char* selfClosing = findSelfClosing(buffer, patterns);
    if (selfClosing == nullptr || headerOnly == 0) store(outLength, 0);
    return selfClosing;
}

char* FindXmlKeyContain(char* buffer, int32_t length, const char* tag, int32_t* outLength) {
    return FindXmlKeyContain_(buffer, length, tag, outLength, 0);
}

char* SearchXmlKeyHeader(char* buffer, int32_t length, const char* tag) {
    return FindXmlKeyContain_(buffer, length, tag, nullptr, 1);
}

int32_t GetXmlKeyStrValue_(char* buffer, int32_t length, const char* tag, char* destination, int32_t capacity) {
    if (buffer == nullptr || tag == nullptr || destination == nullptr || capacity < 1) return 0;
    int32_t contentLength = 0;
    const char* content = FindXmlKeyContain(buffer, length, tag, &contentLength);
    if (content == nullptr) {
        *destination = '\0';
        return 0;
    }
    if (contentLength >= capacity) contentLength = capacity - 1;
    strncpy_XmlDecode(destination, content, contentLength);
    // At the length of the encoded text: where entities shortened it, what the destination held before shows between
    // the decoded end and this NUL. Kept on purpose: values with entities are rare, and the record's readers live with
    // it.
    destination[contentLength] = '\0';
    return 1;
}

int32_t GetXmlKeyIntValue_(char* buffer, int32_t length, const char* tag, int32_t* value) {
    char text[128] = "";
    if (value == nullptr || GetXmlKeyStrValue_(buffer, length, tag, text, sizeof text) == 0) return 0;
    *value = parseInt(text);
    return 1;
}

int32_t GetXmlKeyStrValue(char* buffer, int32_t length, const char* parentPath, const char* tag, char* destination,
                          int32_t capacity) {
    if (GetXmlKeyStrValue_(buffer, length, tag, destination, capacity) != 0) return 1;
    reportLostKey(parentPath, tag);
    return 0;
}

int32_t GetXmlKeyIntValue(char* buffer, int32_t length, const char* parentPath, const char* tag, int32_t* value) {
    if (GetXmlKeyIntValue_(buffer, length, tag, value) != 0) return 1;
    reportLostKey(parentPath, tag);
    return 0;
}

char* prepareXmlBlockData(const char* parentPath, char* buffer, int32_t length, const char* tag, char* blockPath,
                          int32_t* outLength) {
    constexpr int kBlockPathSize = 128;
    traceEntry("prepareXmlBlockData");
    char* content = FindXmlKeyContain(buffer, length, tag, outLength);
    if (content == nullptr) {
        reportLostKey(nullptr, tag); // without the parent path: the message names the block alone
        return nullptr;
    }
    if (blockPath == nullptr) return content;
    if (isEmpty(parentPath))
        std::snprintf(blockPath, kBlockPathSize, "%s", tag);
    else
        std::snprintf(blockPath, kBlockPathSize, "%s/%s", parentPath, tag);
    return content;
}

int32_t do_XmlSpecVersion_Parser(const char* parentPath, char* buffer, int32_t length, ZepSpecVersion* record,
                                 const char* tag) {
    if (record == nullptr) return 0;
    char path[128];
    int32_t blockLength = 0;
    char* block = prepareXmlBlockData(parentPath, buffer, length, tag, path, &blockLength);
    if (block == nullptr) return 0;
    copyText(record->path, path);
    if (GetXmlKeyIntValue(block, blockLength, record->path, "major", &record->major) == 0) return 0;
    if (GetXmlKeyIntValue(block, blockLength, record->path, "minor", &record->minor) == 0) return 0;
    // In 64 bits and cut: a hostile version must not overflow.
    record->version = clampToInt(int64_t{record->major} * 100 + record->minor);
    return 1;
}

} // extern "C"
