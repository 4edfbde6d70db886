/**
 * @file
 * The signals of the host. SIGALRM, SIGTERM and SIGINT are delivered only inside the event loop's wait, so that the
 * library's alarm handlers never interrupt a request.
 */
#ifndef PENDRA_HOST_SIGNALS_H
#define PENDRA_HOST_SIGNALS_H

#include <csignal>

namespace pendra::host {

/** Blocks the three signals and installs the handlers. Call it once, before anything else runs. */
void installSignals();

/** The signal mask for the wait: the one the process was started with, the three signals let through. */
const sigset_t& waitMask();

/** Whether SIGTERM or SIGINT has arrived. */
bool stopRequested();

} // namespace pendra::host

#endif
