/**
 * @file
 * Checks and refusals in words for a person.
 */
#ifndef PENDRA_HOST_WORDS_H
#define PENDRA_HOST_WORDS_H

#include <cstdint>
#include <string>
#include <string_view>

#include "host/variable_info.h"

namespace pendra::host {

/** A validation rule of the device in words, for example "1 to 32 plain characters". Empty when it asks for nothing. */
std::string ruleInWords(std::string_view rule);

/** What a variable takes, in words; @p rule is the text of its "_Validate" variable. */
std::string hintInWords(const VariableInfo& variable, std::string_view rule);

/** Why a value was refused. @p variable is null when there is no such variable. */
std::string refusalInWords(const VariableInfo* variable, int32_t code, std::string_view rule);

} // namespace pendra::host

#endif
