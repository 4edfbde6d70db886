#include <strings.h>

#include <algorithm>
#include <cstring>

#include "common/bounded_text.h"
#include "common/number.h"
#include "common/trace.h"
#include "pendra/setupdoc.h"

using namespace pendra;

namespace {

constexpr size_t kTagMax = 127; // characters of a tag with its marks; what is longer is cut there

// A tag as it stands in a document: "<" or "</", the name, and what ends it.
struct Tag {
    const char* lead;
    const char* name;
    const char* tail;
};

// Whether name and tail stand at a text. Most names differ in the first letter.
bool standsAt(const char* text, const Tag& tag, size_t nameLength, size_t tailLength) {
    constexpr int kCaseBit = 0x20;
    if (nameLength > 0 && ((*text ^ *tag.name) & ~kCaseBit) != 0) return false;
    return strncasecmp(text, tag.name, nameLength) == 0 && std::strncmp(text + nameLength, tag.tail, tailLength) == 0;
}

// The stretch ends at its length or at the text's NUL, whichever comes first. The lead's last character is searched:
// few texts hold it but for their tags.
char* findTag(char* start, size_t stretch, const Tag& tag) {
    const size_t leadLength = std::strlen(tag.lead);
    const size_t nameLength = strnlen(tag.name, kTagMax - leadLength);
    const size_t tailLength = strnlen(tag.tail, kTagMax - leadLength - nameLength);
    for (char* next = start; (next = std::strchr(next, tag.lead[leadLength - 1])) != nullptr;) {
        const auto before = static_cast<size_t>(++next - start);
        if (before + nameLength + tailLength > stretch) return nullptr;
        char* found = next - leadLength;
        if (before >= leadLength && *found == '<' && standsAt(next, tag, nameLength, tailLength)) return found;
    }
    return nullptr;
}

void store(int32_t* outLength, int32_t length) {
    if (outLength != nullptr) *outLength = length;
}

char* findContent(char* content, size_t length, const char* name, int32_t* outLength) {
    const char* closing = findTag(content, length, {"</", name, ">"});
    store(outLength, closing == nullptr ? 0 : static_cast<int32_t>(closing - content));
    return closing == nullptr ? nullptr : content;
}

char* findSelfClosing(char* start, size_t length, const char* name) {
    char* found = findTag(start, length, {"<", name, "/>"});
    return found != nullptr ? found : findTag(start, length, {"<", name, " />"});
}

void reportLostKey(const char* parentPath, const char* tag) {
    if (XmlErrMsg_LostKey != nullptr) XmlErrMsg_LostKey(parentPath, tag);
}

} // namespace

extern "C" {

int32_t (*XmlErrMsg_LostKey)(const char* parentPath, const char* tag);

char* FindXmlKeyContain_(char* buffer, int32_t length, const char* tag, int32_t* outLength, int32_t headerOnly) {
    if (buffer == nullptr || tag == nullptr) return nullptr;
    const size_t stretch = length > 0 ? static_cast<size_t>(length) : SIZE_MAX;
    if (char* opening = findTag(buffer, stretch, {"<", tag, ">"})) {
        if (headerOnly != 0) return opening;
        char* content = opening + std::min(std::strlen(tag) + 2, kTagMax); // behind "<tag>"
        return findContent(content, stretch - static_cast<size_t>(content - buffer), tag, outLength);
    }
    char* selfClosing = findSelfClosing(buffer, stretch, tag);
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
    traceEntry("prepareXmlBlockData");
    char* content = FindXmlKeyContain(buffer, length, tag, outLength);
    if (content == nullptr) {
        reportLostKey(nullptr, tag); // without the parent path: the message names the block alone
        return nullptr;
    }
    if (blockPath == nullptr) return content;
    joinPathBounded(blockPath, 128, parentPath, tag);
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
