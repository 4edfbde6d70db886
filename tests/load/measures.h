/**
 * @file
 * What is measured: how long a client waits, and what the host takes of the machine.
 */
#ifndef PENDRA_TESTS_LOAD_MEASURES_H
#define PENDRA_TESTS_LOAD_MEASURES_H

#include <sys/types.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

namespace pendra::load {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

/** What a process takes. */
struct Footprint {
    long residentKiB;
    long heapKiB; /**< of it, what is not a file: heap, stack, data */
    size_t descriptors;
};

Footprint footprintOf(pid_t process);

/** How long answers took. */
class Waits {
  public:
    void add(Clock::duration wait) { waits_.push_back(Milliseconds(wait).count()); }
    [[nodiscard]] size_t count() const { return waits_.size(); }
    /** @param share 0.5 is the median, 1 the longest; in milliseconds. */
    [[nodiscard]] double at(double share) const;
    [[nodiscard]] std::string text() const;

  private:
    std::vector<double> waits_;
};

/** A client that goes on working while others do what they do: it asks every few milliseconds. */
class WorkingClient {
  public:
    explicit WorkingClient(uint16_t port);
    WorkingClient(const WorkingClient&) = delete;
    WorkingClient& operator=(const WorkingClient&) = delete;
    ~WorkingClient() { stop(); }

    /** Ends it. @return how long it waited for connection and answer, each time. */
    const Waits& stop();
    /** @return requests that were not answered as they should be. */
    [[nodiscard]] size_t failures() const { return failures_; }

  private:
    void work(uint16_t port);

    Waits waits_;
    size_t failures_ = 0;
    std::atomic<bool> isOver_ = false;
    std::thread thread_;
};

} // namespace pendra::load

#endif
