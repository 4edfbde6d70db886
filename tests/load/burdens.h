/**
 * @file
 * Clients that hold connections and get nowhere.
 */
#ifndef PENDRA_TESTS_LOAD_BURDENS_H
#define PENDRA_TESTS_LOAD_BURDENS_H

#include <atomic>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "wire.h"

namespace pendra::load {

/** Opens connections that send nothing. @param addresses from how many addresses, 127.0.0.1 among them. */
std::vector<Wire> idleCrowd(uint16_t port, size_t connections, size_t addresses);

/** Sends the beginning of a request on each, and then one byte of the rest every second. */
class Drip {
  public:
    Drip(uint16_t port, size_t connections, const std::string& beginning, const std::string& rest);
    Drip(const Drip&) = delete;
    Drip& operator=(const Drip&) = delete;
    ~Drip();

    /** @return how many bytes of the rest the slowest has sent. */
    [[nodiscard]] size_t sent() const { return sent_; }

  private:
    void drip(const std::string& rest);

    std::vector<Wire> wires_;
    std::atomic<size_t> sent_ = 0;
    std::atomic<bool> isOver_ = false;
    std::thread thread_;
};

} // namespace pendra::load

#endif
