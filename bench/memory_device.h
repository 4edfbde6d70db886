// A device in memory for the benches: what it costs to answer the library is as small as it can be, so that what is
// measured is the library. Commands are counted and run only when asked for.
#pragma once

#include <string>

namespace pendra::bench {

// Loads the tree of the reference device, and directories that are there.
void loadDevice();

// Stores a node.
void setNode(const std::string& path, const std::string& text);

struct DeviceCounts {
    long reads = 0;
    long writes = 0;
    long commands = 0;
};

extern DeviceCounts deviceCounts;
extern bool runsCommands; // else a command does nothing and succeeds

} // namespace pendra::bench
