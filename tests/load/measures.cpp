#include "measures.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "wire.h"

namespace pendra::load {

namespace {

constexpr auto kPause = std::chrono::milliseconds(3);

long fieldOf(const std::string& status, const std::string& name) {
    const size_t place = status.find("\n" + name + ":");
    return place == std::string::npos ? -1 : std::atol(status.c_str() + place + name.size() + 2);
}

// A new connection each time: one that is kept would not notice that no more are taken.
bool isAnswered(uint16_t port, const std::string& request) {
    try {
        return Wire(port, "127.0.0.1").exchange(request).status == 200;
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace

Footprint footprintOf(pid_t process) {
    const std::string directory = "/proc/" + std::to_string(process);
    std::ifstream file(directory + "/status");
    const std::string status{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    const std::filesystem::directory_iterator descriptors(directory + "/fd");
    return {.residentKiB = fieldOf(status, "VmRSS"),
            .heapKiB = fieldOf(status, "RssAnon"),
            .descriptors = static_cast<size_t>(std::distance(begin(descriptors), end(descriptors)))};
}

double Waits::at(double share) const {
    if (waits_.empty()) return 0;
    std::vector<double> sorted = waits_;
    std::sort(sorted.begin(), sorted.end());
    const double place = std::ceil(share * static_cast<double>(sorted.size())) - 1;
    return sorted[static_cast<size_t>(std::max(place, 0.0))];
}

std::string Waits::text() const {
    char line[120];
    std::snprintf(line, sizeof line, "p50 %.2f ms, p99 %.2f ms, longest %.2f ms (%zu requests)", at(0.5), at(0.99),
                  at(1), count());
    return line;
}

WorkingClient::WorkingClient(uint16_t port) : thread_([this, port] { work(port); }) {}

const Waits& WorkingClient::stop() {
    isOver_ = true;
    if (thread_.joinable()) thread_.join();
    return waits_;
}

void WorkingClient::work(uint16_t port) {
    const std::string hello = httpRequest("GET", "/zep/hello", "Connection: close\r\n");
    while (!isOver_) {
        const auto begin = Clock::now();
        failures_ += isAnswered(port, hello) ? 0 : 1;
        waits_.add(Clock::now() - begin);
        std::this_thread::sleep_for(kPause);
    }
}

} // namespace pendra::load
