#include "host/templates.h"

namespace pendra::host {

namespace {

constexpr std::string_view kOpening = "{{";
constexpr std::string_view kClosing = "}}";

std::vector<std::string> wordsOf(std::string_view placeholder) {
    std::vector<std::string> words;
    for (;;) {
        const size_t bar = placeholder.find('|');
        words.emplace_back(placeholder.substr(0, bar));
        if (bar == std::string_view::npos) return words;
        placeholder.remove_prefix(bar + 1);
    }
}

struct Entity {
    char character;
    const char* text;
};

constexpr Entity kEntities[] = {{'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&#39;"}};

void appendEscaped(std::string& html, char c) {
    for (const Entity& entity : kEntities) {
        if (entity.character != c) continue;
        html += entity.text;
        return;
    }
    html += c;
}

} // namespace

std::string escapeHtml(std::string_view text) {
    std::string html;
    for (const char c : text) {
        appendEscaped(html, c);
    }
    return html;
}

std::string expandTemplate(std::string_view text, const Resolve& resolve) {
    std::string result;
    for (;;) {
        const size_t start = text.find(kOpening);
        const size_t end = start == std::string_view::npos ? start : text.find(kClosing, start);
        if (end == std::string_view::npos) return result += text;
        result += text.substr(0, start);
        result += resolve(wordsOf(text.substr(start + kOpening.size(), end - start - kOpening.size())));
        text.remove_prefix(end + kClosing.size());
    }
}

} // namespace pendra::host
