/**
 * @file
 * The log that a fetch command writes ("wget -S -o FILE").
 */
#ifndef PENDRA_HOST_FETCH_LOG_H
#define PENDRA_HOST_FETCH_LOG_H

#include <cstdint>
#include <optional>
#include <string_view>

namespace pendra::host {

/** @return the bytes that the server has announced; nothing when it did not, or has not answered yet. */
std::optional<int64_t> announcedLength(std::string_view log);

} // namespace pendra::host

#endif
