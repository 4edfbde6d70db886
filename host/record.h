/**
 * @file
 * The library's record of settings as the variables see it.
 */
#ifndef PENDRA_HOST_RECORD_H
#define PENDRA_HOST_RECORD_H

#include <string>
#include <string_view>
#include <vector>

namespace pendra::host {

/** Fills the record from the tree, the access rules included. Call it before a series of variable calls. */
void refreshRecord();

/** A variable's value; "**ERROR**" when it cannot be read. */
std::string variableText(const std::string& name);

struct AccessRule {
    bool active = false;
    std::string mac;
};

/** @param radio 0: 2.4 GHz, 1: 5 GHz. */
std::vector<AccessRule> accessRules(int radio);

/** Stores which rules are active. A set of such a variable goes into another rule than the one it names. */
void storeActivity(int radio, const std::vector<AccessRule>& rules);

} // namespace pendra::host

#endif
