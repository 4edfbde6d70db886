/**
 * @file
 * Elements of the small documents that a device answers with.
 */
#ifndef PENDRA_CLIENT_ELEMENTS_H
#define PENDRA_CLIENT_ELEMENTS_H

#include <optional>
#include <string>

namespace pendra::client {

/** @return what stands between the first "<tag>" and the "</tag>" behind it. */
std::optional<std::string> elementText(const std::string& xml, const std::string& tag);

/** @return such a text as a decimal number; nothing when it is none. */
std::optional<int> elementNumber(const std::string& xml, const std::string& tag);

} // namespace pendra::client

#endif
