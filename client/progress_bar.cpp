#include "client/progress_bar.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <thread>

namespace pendra::client {

namespace {

constexpr int kBarWidth = 40;

void draw(int elapsedSeconds, int totalSeconds) {
    std::fprintf(stderr, "\r%s", barText(elapsedSeconds, totalSeconds, kBarWidth).c_str());
}

} // namespace

std::string bar(int64_t done, int64_t total, int width) {
    const auto places = static_cast<size_t>(width);
    const auto filled = static_cast<size_t>(total == 0 ? width : width * done / total);
    return "[" + std::string(filled, '#') + std::string(places - filled, '-') + "]";
}

std::string barText(int elapsedSeconds, int totalSeconds, int width) {
    const int elapsed = std::clamp(elapsedSeconds, 0, totalSeconds);
    const std::string total = std::to_string(totalSeconds);
    std::string passed = std::to_string(elapsed);
    passed.insert(0, total.size() - passed.size(), ' ');
    return bar(elapsed, totalSeconds, width) + " " + passed + " of " + total + " s";
}

void waitWithBar(int seconds) {
    const bool visible = isatty(STDERR_FILENO) == 1;
    const auto start = std::chrono::steady_clock::now();
    for (int elapsed = 0; elapsed < seconds; ++elapsed) {
        if (visible) draw(elapsed, seconds);
        std::this_thread::sleep_until(start + std::chrono::seconds(elapsed + 1));
    }
    if (!visible) return;
    draw(seconds, seconds);
    std::fputc('\n', stderr);
}

} // namespace pendra::client
