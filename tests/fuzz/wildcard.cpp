// Wildcard matching: "COUNT", a pattern and a text on two lines; the answer is the reference's.
#include "fuzz/reference.h"
#include "fuzz/support.h"

using namespace pendra::fuzz;

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const int32_t count = input.number();
    Buffer pattern(input.line());
    Buffer text(input.text());
    if (text.size() > 4096) return 0; // the reference takes a call for each character
    const int32_t expected = referenceWildcard(text.text(), pattern.text(), count);
    requireEqual(strnWildcardCmp(text.data(), pattern.data(), count), expected, "a comparison of so many characters");
    requireEqual(strWildcardCmp(text.data(), pattern.data()), referenceWildcard(text.text(), pattern.text(), 32767),
                 "a comparison of whole texts");
    requireEqual(strWildcardCmp(text.data(), text.data()), 0, "a text matches itself");
    return 0;
}
