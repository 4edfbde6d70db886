/**
 * @file
 * Answers to requests: built as values, sent in one place.
 */
#ifndef PENDRA_HOST_ANSWERS_H
#define PENDRA_HOST_ANSWERS_H

#include <microhttpd.h>

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace pendra::host {

struct Answer {
    unsigned status = MHD_HTTP_OK;
    const char* contentType = "text/plain; charset=utf-8";
    std::string body;
    std::string allow = {};    /**< the methods of the path, with status 405 */
    std::string location = {}; /**< where to go on, with status 303 */
};

/** One line for a person, with the status that says the same to a program. */
Answer textAnswer(unsigned status, const std::string& line);

Answer jsonAnswer(const nlohmann::ordered_json& value);

Answer xmlAnswer(std::string document);

/** Sends a browser on to another page. */
Answer redirect(const std::string& location);

/** Hands an answer to the connection. */
MHD_Result sendAnswer(MHD_Connection* connection, const Answer& answer);

} // namespace pendra::host

#endif
