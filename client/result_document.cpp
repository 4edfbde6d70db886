#include "client/result_document.h"

#include <algorithm>

#include "client/elements.h"

namespace pendra::client {

namespace {

constexpr int kMaxWaitSeconds = 3600;

struct ResultText {
    int code;
    const char* words;
    bool namesElement;
};

constexpr ResultText kResultTexts[] = {
    {0, "The device has applied the settings.", false},
    {1, "The document's version differs from the one the device speaks.", false},
    {2, "The document lacks an element", true},
    {3, "A value is not valid", true},
    {10, "A value has the wrong length", true},
    {11, "A value holds a forbidden character", true},
    {20, "A value is too large", true},
    {21, "A value is too small", true},
};

} // namespace

std::optional<ResultDocument> parseResult(const std::string& xml) {
    const auto code = elementNumber(xml, "ZepSetResult");
    const auto message = elementText(xml, "ZepSetMsg");
    const auto waitSeconds = elementNumber(xml, "ZepGetWaitSec");
    if (!code || !message || !waitSeconds) return std::nullopt;
    if (*waitSeconds < 0 || *waitSeconds > kMaxWaitSeconds) return std::nullopt;
    return ResultDocument{*code, *message, *waitSeconds};
}

std::string resultInWords(const ResultDocument& result) {
    const std::string element = printable(result.message);
    for (const ResultText& row : kResultTexts) {
        if (row.code != result.code) continue;
        return row.namesElement ? row.words + (": " + element) : row.words;
    }
    return "The device reports result " + std::to_string(result.code) + ": " + element;
}

// U+0080 to U+009F in UTF-8 count too: many terminals obey them like an escape.
std::string printable(std::string text) {
    const auto isControl = [](char c) { return (c >= 0 && c < ' ') || c == '\x7f'; };
    std::replace_if(text.begin(), text.end(), isControl, '?');
    for (size_t lead = text.find('\xc2'); lead != std::string::npos; lead = text.find('\xc2', lead + 1)) {
        const int next = lead + 1 < text.size() ? static_cast<unsigned char>(text[lead + 1]) : 0;
        if (next >= 0x80 && next < 0xa0) text.replace(lead, 2, "?");
    }
    return text;
}

} // namespace pendra::client
