/**
 * @file
 * Several clients at a time that send requests of all kinds.
 */
#ifndef PENDRA_TESTS_LOAD_TRAFFIC_H
#define PENDRA_TESTS_LOAD_TRAFFIC_H

#include <string>
#include <vector>

#include "changes.h"

namespace pendra::load {

struct Tally {
    size_t requests = 0;
    double seconds = 0;
    std::vector<std::string> faults;
};

/** Sends at least so many requests from four clients. */
Tally sendTraffic(uint16_t port, const std::string& password, size_t requests, Model& model);

} // namespace pendra::load

#endif
