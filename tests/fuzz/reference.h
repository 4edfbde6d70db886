// The behaviour of the small languages once more, written down plainly: what the library answers is compared with it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace pendra::fuzz {

std::string lowerCase(std::string_view text);

// A decimal number as atoi() reads it; nothing beyond the range of an int32_t, where atoi() promises nothing.
std::optional<int32_t> referenceNumber(std::string_view text);

// ---- XML ----

struct Element {
    size_t tag = 0;        // where its opening tag stands
    size_t start = 0;      // of its content; a tag that closes itself is its own empty content
    size_t length = 0;     // of its content
    bool complete = false; // with a closing tag, or closing itself
};

// The first element of that tag in a text.
std::optional<Element> findElement(std::string_view text, std::string_view tag);

// The text of a value field of that capacity that held `before`, after an element's content was stored in it.
// `content` runs on behind the element.
std::string storeDecoded(std::string before, std::string_view content, size_t length);

// The decoded content in a field that was empty.
std::string decodedContent(std::string_view content, size_t length, size_t capacity);

std::string encodeEntities(std::string_view text);

// ---- rules ----

int32_t referenceValidate(std::string_view value, std::string_view rule);

// ---- addresses and keys ----

// Nothing where a number is too long for the conversion.
std::optional<bool> referenceIsAddress(std::string_view text);
std::optional<bool> referenceIsNetmask(std::string_view text);
bool referenceIsWpaKey(std::string_view text);
bool referenceIsWepKey(std::string_view text, size_t length);

// ---- wildcards ----

int32_t referenceWildcard(std::string_view text, std::string_view pattern, int32_t count);

// ---- forms ----

std::string encodeForm(std::string_view text);
std::string decodeForm(std::string_view text);

// ---- checksums ----

uint32_t referenceCrc(std::string_view bytes);

} // namespace pendra::fuzz
