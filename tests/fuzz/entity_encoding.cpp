// XML entities: "COUNT" and the text. Both directions are the reference's within their counts, and a text that is
// encoded and decoded is the text.
#include <algorithm>
#include <cstring>

#include "fuzz/reference.h"
#include "fuzz/support.h"

using namespace pendra::fuzz;

namespace {

constexpr char kStale = '*';

void checkEncoding(Buffer& source, size_t count) {
    Buffer destination(count, kStale);
    strncpy_XmlEncode(destination.data(), source.data(), static_cast<int32_t>(count));
    std::string expected = encodeEntities(source.text()) + '\0';
    expected.resize(std::max(expected.size(), count), kStale);
    requireEqual(destination.all(), expected.substr(0, count), "an encoded text");
}

void checkDecoding(Buffer& source, size_t count) {
    const std::string text = source.text();
    Buffer destination(count + 1, kStale);
    strncpy_XmlDecode(destination.data(), source.data(), static_cast<int32_t>(count));
    destination.data()[count] = '\0';
    // A text that ends within the count brings its NUL along.
    const size_t length = std::min(text.size(), count);
    const std::string decoded = decodedContent(text, length, length + 1);
    requireEqual(destination.all().substr(0, decoded.size()), decoded, "a decoded text");
    const std::string_view behind = destination.all().substr(decoded.size());
    const size_t own = text.size() < count ? 1 : 0;
    if (own == 1) require(behind[0] == '\0', "a text that ends within the count is terminated");
    requireEqual(behind.substr(own, count - decoded.size() - own), std::string(count - decoded.size() - own, kStale),
                 "nothing is written behind the text");
}

void checkRoundTrip(Buffer& source) {
    Buffer encoded(6 * source.size(), kStale);
    Buffer decoded(source.size(), kStale);
    strncpy_XmlEncode(encoded.data(), source.data(), static_cast<int32_t>(encoded.size()));
    strncpy_XmlDecode(decoded.data(), encoded.data(), static_cast<int32_t>(encoded.size()));
    requireEqual(decoded.all(), source.all(), "a text that was encoded and decoded");
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const auto count = static_cast<size_t>(clampTo(input.number(), 1, 1024));
    Buffer source(input.text());
    checkEncoding(source, count);
    checkDecoding(source, count);
    checkRoundTrip(source);
    return 0;
}
