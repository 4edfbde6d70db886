/**
 * @file
 * The bar of a download that goes on elsewhere.
 */
#ifndef PENDRA_CLIENT_DOWNLOAD_BAR_H
#define PENDRA_CLIENT_DOWNLOAD_BAR_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace pendra::client {

/** @return "1.8 MB"; below 1000 bytes "999 B". */
std::string sizeText(int64_t bytes);

/** @return "[####------]  42 %  1.8 MB of 4.2 MB, 900.0 kB/s"; without a total there is no bar and no percentage. */
std::string downloadText(int64_t bytes, std::optional<int64_t> total, double seconds, int width);

/** One line on standard error, redrawn; on anything but a terminal only its last state is shown. */
class DownloadBar {
  public:
    DownloadBar();
    void show(int64_t bytes, std::optional<int64_t> total) const;
    void end(int64_t bytes, std::optional<int64_t> total) const;

  private:
    [[nodiscard]] std::string text(int64_t bytes, std::optional<int64_t> total) const;

    bool visible_;
    std::chrono::steady_clock::time_point start_;
};

} // namespace pendra::client

#endif
