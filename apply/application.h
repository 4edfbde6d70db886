// Writing a verified document into the configuration tree.
#pragma once

#include <cstdint>

namespace pendra {

// Writes every value that differs from the tree and raises the restart flags of the record. Returns 1, or 0 when a
// setting that the device has fixed was to change (reported in the result document; what was written before stays).
int32_t Apply_ZepXmlToDevice();

} // namespace pendra
