/**
 * @file
 * The result document of a setup run: reading it and putting it into words.
 */
#ifndef PENDRA_CLIENT_RESULT_DOCUMENT_H
#define PENDRA_CLIENT_RESULT_DOCUMENT_H

#include <optional>
#include <string>

namespace pendra::client {

struct ResultDocument {
    int code = 0;
    std::string message; /**< path of the element that is at fault */
    int waitSeconds = 0;

    [[nodiscard]] bool applied() const { return code == 0; }
};

/** @return nothing when the text is no result document. */
std::optional<ResultDocument> parseResult(const std::string& xml);

/** @return one line for a person. */
std::string resultInWords(const ResultDocument& result);

/** @return a text from the device with its control characters replaced, so that it cannot steer a terminal. */
std::string printable(std::string text);

} // namespace pendra::client

#endif
