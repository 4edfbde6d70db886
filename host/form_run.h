/**
 * @file
 * Posted forms: what they may say, how they are run, and what came of it.
 */
#ifndef PENDRA_HOST_FORM_RUN_H
#define PENDRA_HOST_FORM_RUN_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/forms.h"
#include "host/request.h"

namespace pendra::host {

/** What a client may ask of a form. */
enum class Actions { allowed, refused };

/** A form whose names may reach the library. */
struct Form {
    std::vector<FormPair> pairs = {};
    char separator = '&';
    std::string fault = {}; /**< why the form is refused as a whole; empty: it is not */
};

/** Takes the request's body apart and checks every name in it, those within actions included. */
Form readForm(const Request& request, Actions actions);

/** @return the library's answer to a value by itself; 0 also for the 2 by which it says that a choice is there. */
int32_t checkValue(const std::string& name, std::string value);

/** What the rule or check of a variable says to a code; empty for 0. */
std::string codeInWords(const std::string& name, int32_t code);

/** What a run came to. */
struct FormOutcome {
    int32_t code = 0;
    std::string name = {}; /**< the variable at fault, or the path in the document when no variable stands for it */
    std::string words = {};
    int waitSeconds = 0;
};

/**
 * Sets, checks and applies a form as one transaction.
 *
 * @param prepare changes the refreshed record before the form does; may be empty.
 * @param outcome what came of it.
 * @return the refusal when nothing could be stored.
 */
std::optional<Answer> runForm(Request& request, const Form& form, const std::function<void()>& prepare,
                              FormOutcome& outcome);

} // namespace pendra::host

#endif
