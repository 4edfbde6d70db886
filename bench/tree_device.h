// The reference device's tree under the library, without its simulated hardware: commands do nothing and succeed.
#pragma once

#include <string>

#include "platform/tree/tree.h"

namespace pendra::bench {

// A directory of the program's own, removed at its end.
const std::string& treeDirectory();

// Opens a fresh tree with the default nodes, and a library as after loading.
void openDevice();

void beginTransaction();
void commitTransaction();

} // namespace pendra::bench
