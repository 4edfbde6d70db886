// The XML key scanner: "LENGTH CAPACITY TAG" and the text. Every answer is the reference's, the buffer is as before.
#include "fuzz/reference.h"
#include "fuzz/support.h"

using namespace pendra::fuzz;

namespace {

constexpr char kStale = '*';

struct Search {
    std::string text;
    std::string tag;
    int32_t length; // the stretch
    std::string_view stretch() const {
        const bool bounded = length > 0 && static_cast<size_t>(length) < text.size();
        return bounded ? std::string_view(text).substr(0, static_cast<size_t>(length)) : std::string_view(text);
    }
    std::string_view from(size_t start) const { return std::string_view(text).substr(start); }
    std::optional<Element> element() const { return findElement(stretch(), tag); }
};

std::vector<std::string> lost; // what the hook was told, "parent/tag"

int32_t noteLostKey(const char* parentPath, const char* tag) {
    lost.push_back(std::string(parentPath == nullptr ? "(none)" : parentPath) + "/" + tag);
    return 0;
}

void requireLost(bool missed, const std::string& expected) {
    requireEqual(static_cast<int64_t>(lost.size()), missed ? 1 : 0, "each miss is told once");
    if (missed) requireEqual(lost.front(), expected, "the hook is told parent and tag");
    lost.clear();
}

void checkElement(Buffer& buffer, const Search& search) {
    int32_t length = -7;
    const char* found = FindXmlKeyContain(buffer.data(), search.length, search.tag.c_str(), &length);
    const auto expected = search.element();
    const bool isThere = expected && expected->complete;
    requireEqual(found == nullptr ? -1 : found - buffer.data(), isThere ? static_cast<int64_t>(expected->start) : -1,
                 "content of an element");
    requireEqual(length, isThere ? static_cast<int64_t>(expected->length) : 0, "length of an element");
}

void checkHeader(Buffer& buffer, const Search& search) {
    const char* found = SearchXmlKeyHeader(buffer.data(), search.length, search.tag.c_str());
    const auto expected = search.element();
    requireEqual(found == nullptr ? -1 : found - buffer.data(), expected ? static_cast<int64_t>(expected->tag) : -1,
                 "opening tag of an element");
}

void checkText(Buffer& buffer, const Search& search, int32_t capacity) {
    Buffer destination(static_cast<size_t>(capacity), kStale);
    const int32_t result =
        GetXmlKeyStrValue(buffer.data(), search.length, "parent", search.tag.c_str(), destination.data(), capacity);
    std::string expected(static_cast<size_t>(capacity), kStale);
    const auto element = search.element();
    const bool isThere = element && element->complete;
    if (isThere)
        expected = storeDecoded(expected, search.from(element->start), element->length);
    else
        expected[0] = '\0';
    requireEqual(result, isThere ? 1 : 0, "result of a text");
    requireEqual(destination.all(), expected, "a text and what is left in its field");
    requireLost(!isThere, "parent/" + search.tag);
}

void checkNumber(Buffer& buffer, const Search& search) {
    constexpr int32_t kBefore = 4711;
    int32_t value = kBefore;
    const int32_t result = GetXmlKeyIntValue(buffer.data(), search.length, "", search.tag.c_str(), &value);
    const auto element = search.element();
    const bool isThere = element && element->complete;
    requireEqual(result, isThere ? 1 : 0, "result of a number");
    requireLost(!isThere, "/" + search.tag);
    if (!isThere) return requireEqual(value, kBefore, "a number that is not there");
    const auto expected = referenceNumber(decodedContent(search.from(element->start), element->length, 128));
    if (expected) requireEqual(value, *expected, "a number");
}

void checkBlock(Buffer& buffer, const Search& search) {
    Buffer path(128, kStale);
    int32_t length = 0;
    const char* block =
        prepareXmlBlockData("Device", buffer.data(), search.length, search.tag.c_str(), path.data(), &length);
    requireLost(block == nullptr, "(none)/" + search.tag);
    if (block == nullptr) return requireEqual(path.all(), std::string(128, kStale), "no path of a missing block");
    requireEqual(path.text(), ("Device/" + search.tag).substr(0, 127), "the path of a block");
}

void checkVersion(Buffer& buffer, const Search& search) {
    ZepSpecVersion version = {};
    if (do_XmlSpecVersion_Parser("", buffer.data(), search.length, &version, search.tag.c_str()) == 1) {
        const int64_t combined = int64_t{version.major} * 100 + version.minor;
        if (combined >= INT32_MIN && combined <= INT32_MAX) requireEqual(version.version, combined, "a version");
    }
    lost.clear();
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    Search search;
    search.length = input.number();
    const int32_t capacity = clampTo(input.number(), 1, 256);
    search.tag = input.line();
    search.text = input.text();
    startDevice();
    XmlErrMsg_LostKey = noteLostKey;
    Buffer buffer(search.text);
    checkElement(buffer, search);
    checkHeader(buffer, search);
    checkText(buffer, search, capacity);
    checkNumber(buffer, search);
    checkBlock(buffer, search);
    checkVersion(buffer, search);
    requireEqual(buffer.text(), search.text, "the buffer is as before");
    XmlErrMsg_LostKey = nullptr;
    return 0;
}
