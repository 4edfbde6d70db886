/**
 * @file
 * One request, from its first line until its answer has been sent.
 */
#ifndef PENDRA_HOST_REQUEST_H
#define PENDRA_HOST_REQUEST_H

#include <cstddef>
#include <optional>
#include <string>

#include "host/answers.h"

namespace pendra::host {

struct Route;

struct Request {
    std::string query; /**< what follows "?", as it was sent */
    std::string host;  /**< the header of that name; so the next four */
    std::string origin;
    std::string referer;
    std::string accept;
    std::string contentType;
    std::string client;   /**< address, the one that keys are bound to */
    std::string body;     /**< its data() is a writable NUL-terminated text for the library */
    bool cutPath = false; /**< the path holds a NUL byte, at which the web server ends it */
    const Route* route = nullptr;
    std::optional<Answer> refusal; /**< decided before or while the body came in; the body is then not kept */
    size_t received = 0;           /**< bytes of the body so far */
    bool started = false;
    bool answered = false;     /**< the answer is on its way */
    unsigned commitTicket = 0; /**< the commit that follows the answer; 0: none */
};

} // namespace pendra::host

#endif
