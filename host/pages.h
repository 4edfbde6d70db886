/**
 * @file
 * The device's own pages.
 */
#ifndef PENDRA_HOST_PAGES_H
#define PENDRA_HOST_PAGES_H

#include "host/request.h"

namespace pendra::host {

/** GET of a page. */
Answer getPage(Request& request);

/** POST of a page's form: sets what was changed; a refused form comes back as it was filled in. */
Answer postPage(Request& request);

/** POST /logout: the client is admitted no longer. */
Answer logout(Request& request);

/** GET of a file that pages link to. */
Answer getAsset(Request& request);

} // namespace pendra::host

#endif
