#include "burdens.h"

#include <chrono>

namespace pendra::load {

std::vector<Wire> idleCrowd(uint16_t port, size_t connections, size_t addresses) {
    std::vector<Wire> crowd;
    for (size_t number = 0; number < connections; ++number) {
        crowd.emplace_back(port, "127.0.0." + std::to_string(1 + number % addresses)).open();
    }
    return crowd;
}

Drip::Drip(uint16_t port, size_t connections, const std::string& beginning, const std::string& rest)
    : wires_(idleCrowd(port, connections, 1)) {
    for (Wire& wire : wires_) {
        wire.send(beginning);
    }
    thread_ = std::thread([this, rest] { drip(rest); });
}

Drip::~Drip() {
    isOver_ = true;
    thread_.join();
}

void Drip::drip(const std::string& rest) {
    constexpr int kLooksInASecond = 20;
    for (const char byte : rest) {
        for (int look = 0; look < kLooksInASecond; ++look) {
            if (isOver_) return;
            std::this_thread::sleep_for(std::chrono::milliseconds(1000 / kLooksInASecond));
        }
        for (Wire& wire : wires_) {
            wire.send({&byte, 1});
        }
        ++sent_;
    }
}

} // namespace pendra::load
