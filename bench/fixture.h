// The library as after loading, on the device in memory, with a record that is refreshed from the tree. What it logs
// goes into a directory of the program's own, which is removed at its end.
#pragma once

#include <string>

namespace pendra::bench {

void prepareLibrary();

// The directory of the program's own.
const std::string& ownDirectory();

// Calls of malloc, calloc, realloc and the like that the library has made.
long allocationsSoFar();

} // namespace pendra::bench
