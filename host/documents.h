/**
 * @file
 * Setup documents, their result documents, and the commit that makes an applied one take effect.
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

/** Runs the commit of a ticket, once; call it when the answer has been sent. It blocks while the scripts run. */
void commitSetup(unsigned ticket);

/** The result document in the form in which the library writes it. */
std::string composeResult(int32_t code, const std::string& message, int32_t waitSeconds);

} // namespace pendra::host

#endif
