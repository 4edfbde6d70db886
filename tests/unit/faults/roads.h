// The main roads through the library, each with a device to walk it on, and what a walk leaves behind.
#pragma once

#include <string>
#include <vector>

#include "support/fake_device.h"

namespace pendra::test {

// A way through the library. It can be walked again and again on one device: what a walk leaves in the device is, after
// the first time, what it found there.
struct Road {
    const char* name;
    void (*prepare)(const std::string& directory);     // fills the device and the directory of the test
    std::string (*walk)(const std::string& directory); // what the calls answer, in words
    const char* answer;                                // without a fault
};

using Tree = std::map<std::string, std::string>;

// What a walk has come to.
struct Outcome {
    std::string answer;
    Events events;
    Tree tree;
    std::string record; // all bytes of the setup record
    std::string said;   // on standard output and standard error
};

const std::vector<Road>& roads();
const Road& roadNamed(const std::string& name);

// A road's device, and a library of which nobody knows anything yet, with its log in a directory.
void startRoad(const Road& road, const std::string& directory);

// Stores a file that may be there. It is not cut and written again: file systems wait for their disk then.
void storeAnew(const std::string& path, const std::string& content);

// The parts of roads().
std::vector<Road> setupRoads();
std::vector<Road> deviceRoads();
std::vector<Road> loggerRoads();
std::vector<Road> firmwareRoads();

void PrintTo(const Road& road, std::ostream* output);

} // namespace pendra::test
