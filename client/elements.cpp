#include "client/elements.h"

#include <charconv>

namespace pendra::client {

std::optional<std::string> elementText(const std::string& xml, const std::string& tag) {
    const std::string opening = "<" + tag + ">";
    const size_t begin = xml.find(opening);
    if (begin == std::string::npos) return std::nullopt;
    const size_t end = xml.find("</" + tag + ">", begin);
    if (end == std::string::npos) return std::nullopt;
    return xml.substr(begin + opening.size(), end - begin - opening.size());
}

std::optional<int> elementNumber(const std::string& xml, const std::string& tag) {
    const auto text = elementText(xml, tag);
    if (!text) return std::nullopt;
    int number = 0;
    const char* end = text->data() + text->size();
    const auto [stop, fault] = std::from_chars(text->data(), end, number);
    if (fault != std::errc{} || stop != end) return std::nullopt;
    return number;
}

} // namespace pendra::client
