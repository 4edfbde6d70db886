/**
 * @file
 * Which request does what.
 */
#ifndef PENDRA_HOST_ROUTES_H
#define PENDRA_HOST_ROUTES_H

#include <optional>
#include <string_view>

#include "host/request.h"

namespace pendra::host {

enum class Admission {
    open,
    needed,
    page, /**< a client that is not admitted is sent to the login page */
};
enum class Body { optional, needed };

struct Route {
    std::string_view method;
    std::string_view path;
    Admission admission;
    Body body;
    Answer (*handler)(Request& request);
};

/** Longest body that a request may have. */
inline constexpr size_t kMaxBody = size_t{1} << 20;

/**
 * Finds the request's route and asks whether the client may use it.
 *
 * @param declaredLength the length that the client announced for its body, 0 when it announced none.
 * @return the refusal (404, 405, 403, 401, 303 or 413), or nothing when the request may go on; then its route is set.
 */
std::optional<Answer> admitRequest(Request& request, std::string_view method, std::string_view path,
                                   size_t declaredLength);

/** Refuses a request whose body came in at a time when those of all requests were too much. */
void refuseBusy(Request& request);

/** Adds a stretch of the body to a request; a body that grows too long turns into a refusal. */
void receiveBody(Request& request, std::string_view stretch);

/** Answers a request that has come in completely. */
Answer answerRequest(Request& request);

} // namespace pendra::host

#endif
