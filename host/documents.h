/**
 * @file
 * Setup documents and their result documents.
 */
#ifndef PENDRA_HOST_DOCUMENTS_H
#define PENDRA_HOST_DOCUMENTS_H

#include "host/request.h"

namespace pendra::host {

/** POST /zep/setup: runs a posted document and answers with the result document. An applied one leaves a commit ticket
 *  in the request. */
Answer postSetup(Request& request);

/** GET /zep/result: the result document of the last run. */
Answer getResult(Request& request);

} // namespace pendra::host

#endif
