// Checking a parsed document before anything of it is applied.
#pragma once

#include <cstdint>

namespace pendra {

// 1 when the record may be applied; 0 when its first fault has been written to the result document. Changes the record
// in two places only: an empty static DNS becomes "8.8.8.8", and in a cloning run a channel that the radio does not
// have becomes "0".
int32_t Verify_ZepXml();

} // namespace pendra
