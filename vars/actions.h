// The action variables: whatever the mode, a call performs the action.
#pragma once

#include "vars/variable_access.h"

namespace pendra {

// `action` is the name behind "zep_Act_".
int32_t performAction(const char* action, const Request& request);

} // namespace pendra
