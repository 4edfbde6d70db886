#include "traffic.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <iterator>
#include <thread>

#include "requests.h"

namespace pendra::load {

namespace {

constexpr unsigned kCallers = 4;
constexpr size_t kMostFaults = 20; // nothing is learned from more

std::string work(Caller& caller, size_t requests) {
    try {
        caller.login();
        while (caller.requests() < requests && caller.faults().size() < kMostFaults) {
            caller.call();
        }
    } catch (const std::exception& fault) {
        return fault.what();
    }
    return {};
}

} // namespace

Tally sendTraffic(uint16_t port, const std::string& password, size_t requests, Model& model) {
    std::vector<Caller> callers;
    for (unsigned number = 1; number <= kCallers; ++number) {
        callers.emplace_back(port, number, password, model);
    }
    requestKinds(); // made before the clock runs
    const auto begin = std::chrono::steady_clock::now();
    std::vector<std::string> ends(kCallers);
    std::vector<std::thread> threads;
    for (size_t number = 0; number < kCallers; ++number) {
        threads.emplace_back([&, number] { ends[number] = work(callers[number], requests / kCallers); });
    }
    std::for_each(threads.begin(), threads.end(), [](std::thread& thread) { thread.join(); });
    Tally tally;
    tally.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    for (const Caller& caller : callers) {
        tally.requests += caller.requests();
        tally.faults.insert(tally.faults.end(), caller.faults().begin(), caller.faults().end());
    }
    std::copy_if(ends.begin(), ends.end(), std::back_inserter(tally.faults), [](const auto& e) { return !e.empty(); });
    return tally;
}

} // namespace pendra::load
