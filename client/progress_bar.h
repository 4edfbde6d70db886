/**
 * @file
 * Waiting with something to look at.
 */
#ifndef PENDRA_CLIENT_PROGRESS_BAR_H
#define PENDRA_CLIENT_PROGRESS_BAR_H

#include <cstdint>
#include <string>

namespace pendra::client {

/** @return "[#####-----]", with @p width places between the brackets. */
std::string bar(int64_t done, int64_t total, int width);

/** @return "[#####-----]  5 of 10 s", with @p width places between the brackets. */
std::string barText(int elapsedSeconds, int totalSeconds, int width);

/** Waits exactly this long; on a terminal with a bar on standard error that is redrawn every second. */
void waitWithBar(int seconds);

} // namespace pendra::client

#endif
