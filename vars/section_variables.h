// The variables of the document's sections and the information variables.
#pragma once

#include "vars/variable_access.h"
#include "vars/variable_name.h"

namespace pendra {

int32_t accessVersion(const VariableName& name, const Request& request);
int32_t accessUpLink(const VariableName& name, const Request& request);
int32_t accessWireless(const VariableName& name, const Request& request);
int32_t accessSafety(const VariableName& name, const Request& request);
int32_t accessInformation(const VariableName& name, const Request& request);

} // namespace pendra
