// The calls of the flat-file platform that reach the disk: written down, and failing when a test wants them to.
#pragma once

#include <string>
#include <vector>

namespace pendra::test {

struct Disk {
    std::vector<std::string> calls; // in order, as "open tree.new": file names without their directory
    bool isWatched = false;
    int failingCall = 0; // the number of the watched call that fails, from 1 on; a write fails halfway
};

Disk& disk();

} // namespace pendra::test
