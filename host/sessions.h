/**
 * @file
 * Greeting and admitting clients.
 */
#ifndef PENDRA_HOST_SESSIONS_H
#define PENDRA_HOST_SESSIONS_H

#include "host/request.h"

namespace pendra::host {

/** GET /zep/hello: what a client must know to make its key. */
Answer getHello(Request& request);

/** GET or POST /zep/login: checks the access key in the form body or else in the query. */
Answer login(Request& request);

} // namespace pendra::host

#endif
