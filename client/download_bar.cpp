#include "client/download_bar.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "client/progress_bar.h"

namespace pendra::client {

namespace {

constexpr int kBarWidth = 30;
constexpr int kLineWidth = 78; // covers what was longer before

std::string formatted(const char* format, double number) {
    char text[32];
    std::snprintf(text, sizeof text, format, number);
    return text;
}

std::string speedText(int64_t bytes, double seconds) {
    if (seconds <= 0) return "";
    return ", " + sizeText(static_cast<int64_t>(static_cast<double>(bytes) / seconds)) + "/s";
}

} // namespace

std::string sizeText(int64_t bytes) {
    if (bytes < 1000) return std::to_string(bytes) + " B";
    const auto size = static_cast<double>(bytes);
    return bytes < 1'000'000 ? formatted("%.1f kB", size / 1e3) : formatted("%.1f MB", size / 1e6);
}

std::string downloadText(int64_t bytes, std::optional<int64_t> total, double seconds, int width) {
    const std::string speed = speedText(bytes, seconds);
    if (!total || *total <= 0) return sizeText(bytes) + speed;
    const int64_t done = std::clamp<int64_t>(bytes, 0, *total);
    std::string percent = std::to_string(done * 100 / *total);
    percent.insert(0, 3 - percent.size(), ' ');
    return bar(done, *total, width) + " " + percent + " %  " + sizeText(bytes) + " of " + sizeText(*total) + speed;
}

DownloadBar::DownloadBar() : visible_(isatty(STDERR_FILENO) == 1), start_(std::chrono::steady_clock::now()) {}

std::string DownloadBar::text(int64_t bytes, std::optional<int64_t> total) const {
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start_;
    return downloadText(bytes, total, passed.count(), kBarWidth);
}

void DownloadBar::show(int64_t bytes, std::optional<int64_t> total) const {
    if (visible_) std::fprintf(stderr, "\r%-*s", kLineWidth, text(bytes, total).c_str());
}

void DownloadBar::end(int64_t bytes, std::optional<int64_t> total) const {
    show(bytes, total);
    std::fprintf(stderr, "%s\n", visible_ ? "" : text(bytes, total).c_str());
}

} // namespace pendra::client
