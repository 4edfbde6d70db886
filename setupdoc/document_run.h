// The root of a setup document.
#pragma once

#include <cstdint>

namespace pendra {

// Refreshes the record, checks the document's version and parses its Device element. The document is cut at "</root>".
// Returns 1 when the device tree was parsed, else 0.
int32_t do_ZepRoot_Parser(char* document);

} // namespace pendra
