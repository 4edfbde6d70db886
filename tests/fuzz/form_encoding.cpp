// Form encoding: "CAPACITY LENGTH" and the text. Both directions are the reference's within their buffers, and a text
// that is encoded and decoded is the text.
#include <algorithm>
#include <cstring>

#include "fuzz/reference.h"
#include "fuzz/support.h"

using namespace pendra::fuzz;

namespace {

constexpr char kStale = '*';

// What a bounded copy of a text leaves in its buffer: no NUL where the text does not fit.
std::string bounded(std::string text, size_t capacity) {
    text += '\0';
    text.resize(std::max(text.size(), capacity), kStale);
    return text.substr(0, capacity);
}

void checkEncoding(Buffer& source, size_t capacity) {
    Buffer destination(capacity, kStale);
    strncpy_HtmlEncode(destination.data(), source.data(), static_cast<int32_t>(capacity));
    requireEqual(destination.all(), bounded(encodeForm(source.text()), capacity), "an encoded text");
}

void checkDecoding(Buffer& source, size_t capacity, int32_t length) {
    Buffer destination(capacity, kStale);
    strncpy_HtmlDecode_(destination.data(), source.data(), static_cast<int32_t>(capacity), length);
    const std::string text = source.text();
    const std::string part = length > 0 ? text.substr(0, static_cast<size_t>(length)) : text;
    requireEqual(destination.all(), bounded(decodeForm(part), capacity), "a decoded text");
}

void checkRoundTrip(Buffer& source) {
    Buffer encoded(3 * source.size(), kStale);
    Buffer decoded(source.size(), kStale);
    strncpy_HtmlEncode(encoded.data(), source.data(), static_cast<int32_t>(encoded.size()));
    strncpy_HtmlDecode(decoded.data(), encoded.data(), static_cast<int32_t>(decoded.size()));
    requireEqual(decoded.all(), source.all(), "a text that was encoded and decoded");
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const auto capacity = static_cast<size_t>(clampTo(input.number(), 1, 1024));
    const int32_t length = input.number();
    Buffer source(input.text());
    checkEncoding(source, capacity);
    checkDecoding(source, capacity, length);
    checkRoundTrip(source);
    return 0;
}
