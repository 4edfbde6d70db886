/**
 * @file
 * Reading the small files that the library writes.
 */
#ifndef PENDRA_HOST_FILES_H
#define PENDRA_HOST_FILES_H

#include <optional>
#include <string>

namespace pendra::host {

/** @return a file's content, at most its first 64 KiB; nothing when it cannot be read. */
std::optional<std::string> readFile(const std::string& path);

} // namespace pendra::host

#endif
