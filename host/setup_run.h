/**
 * @file
 * One run that may change the device's settings, be it of a document or of a form: stored as a whole or not at all,
 * answered with its result, and committed once the answer has been sent.
 */
#ifndef PENDRA_HOST_SETUP_RUN_H
#define PENDRA_HOST_SETUP_RUN_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "host/request.h"

namespace pendra::host {

enum class Commit {
    ordinary,
    cloning,
    byAlarm, /**< the library itself commits a moment later */
};

/**
 * Does a run as one transaction of the tree. An applied one leaves a commit ticket in the request.
 *
 * @param what what is run, for the log.
 * @param run  calls the library; returns whether the settings were applied.
 * @return the refusal when nothing of the run could be stored.
 */
std::optional<Answer> storeRun(Request& request, const char* what, Commit commit, const std::function<bool()>& run);

/** The result of the run that storeRun() did. @{ */
int32_t resultCode();
std::string resultMessage();
int32_t resultWaitSeconds();
/** @} */

/** The result document of that run; also kept for lastResult(). */
std::string resultOfRun();

/** @return the result document of the last run, if there is one. */
std::optional<std::string> lastResult();

/** Runs the commit of a ticket, once; call it when the answer has been sent. It blocks while the scripts run. */
void commitSetup(unsigned ticket);

/** The result document in the form in which the library writes it. */
std::string composeResult(int32_t code, const std::string& message, int32_t waitSeconds);

} // namespace pendra::host

#endif
