#include "host/fetch_log.h"

#include <charconv>

namespace pendra::host {

namespace {

constexpr std::string_view kStatusLine = "\n  HTTP/";
constexpr std::string_view kLength = "\n  Content-Length: ";

std::optional<int64_t> numberAt(std::string_view text) {
    const std::string_view digits = text.substr(0, text.find_first_of("\r\n"));
    int64_t number = 0;
    const auto [stop, fault] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (fault != std::errc{} || stop != digits.data() + digits.size() || number < 0) return std::nullopt;
    return number;
}

} // namespace

std::optional<int64_t> announcedLength(std::string_view log) {
    // The last answer counts: those before it sent the fetch elsewhere.
    const size_t answer = log.rfind(kStatusLine);
    if (answer == std::string_view::npos) return std::nullopt;
    const size_t length = log.find(kLength, answer);
    if (length == std::string_view::npos) return std::nullopt;
    return numberAt(log.substr(length + kLength.size()));
}

} // namespace pendra::host
