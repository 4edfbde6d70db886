/**
 * @file
 * Settings as named variables: reading, checking and setting them.
 */
#ifndef PENDRA_HOST_VARIABLES_H
#define PENDRA_HOST_VARIABLES_H

#include "host/request.h"

namespace pendra::host {

/** GET /zep/var?name=... (&path=1): one variable, or where in the configuration tree it stands. */
Answer getVariable(Request& request);

/** GET /zep/vars: every variable. */
Answer getVariables(Request& request);

/** POST /zep/var: sets, checks and applies a form. */
Answer postVariables(Request& request);

/** POST /zep/validate: checks each pair of a form and changes nothing. */
Answer postValidate(Request& request);

} // namespace pendra::host

#endif
