/**
 * @file
 * Changing the access rules of a radio: what the buttons of the wireless page do.
 */
#ifndef PENDRA_HOST_RULE_EDIT_H
#define PENDRA_HOST_RULE_EDIT_H

#include <string>
#include <string_view>
#include <vector>

#include "host/forms.h"
#include "host/record.h"

namespace pendra::host {

struct RuleEdit {
    bool wanted = false; /**< the form asks for such a change at all */
    int radio = 0;
    std::string field; /**< of the station's address */
    std::string mac;
    std::vector<AccessRule> rules; /**< after the change */
    std::string fault;             /**< why there is none */
};

/** Reads what a form wants to have done to the rules of the refreshed record. */
RuleEdit readRuleEdit(std::string_view form);

/** The pairs that set these rules, but for their activity. */
std::vector<FormPair> rulePairs(const RuleEdit& edit);

} // namespace pendra::host

#endif
