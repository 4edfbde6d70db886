// The ways in which a run ends in the result document with a fault.
#pragma once

#include <cstdint>

namespace pendra {

enum SetResult : int32_t { kResultDone = 0, kResultWrongVersion = 1, kResultMissing = 2, kResultInvalid = 3 };

// Writes a result code with the message "parentPath/tag" (the tag alone without a parent path) and no wait.
void reportFault(int32_t code, const char* parentPath, const char* tag);

// The missing-element hook of a run: result 2. The last report of a run is the one that stays.
int32_t reportMissingElement(const char* parentPath, const char* tag);

// A value that is out of its set or range: result 3.
void reportInvalidValue(const char* parentPath, const char* tag);

} // namespace pendra
