// Every variable of the interface as a row of a table. Adding a variable is adding a row.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "pendra/setupdoc.h"

namespace pendra {

// How a variable's value comes about.
enum class Kind : uint8_t {
    text,        // a text of the record
    number,      // a number of the record
    name,        // a text of a name table, stored with its row
    liveText,    // a node's text, read at each call
    liveNumber,  // a node's number, read at each call
    expandedText // a node's text with the device's keywords replaced
};

// What a value must pass before it is stored.
enum class Check : uint8_t {
    none,
    readOnly, // no value is taken at all
    rule,     // the validation rule in the record
    name,     // a row of the name table
    address,  // a host address
    netmask,
    zeroOrOne,
    locked,  // a stored value of 2 or more cannot be changed
    channel, // in the radio's channel list
    roaming  // four numbers of easy roaming
};

struct Variable {
    const char* leaf;
    Kind kind;
    Check check;
    uint16_t offset = 0;        // of the field in its section
    uint16_t capacity = 0;      // of a text field
    uint16_t partnerOffset = 0; // of the rule text, or of the field that holds the row
    const char* const* table = nullptr;
    const char* answer = nullptr; // path answer; null is "<base>/<leaf>"
    const char* source = nullptr; // node of a live value; null is the path answer
    int32_t whenAbsent = -1;      // what a live number is while its node is negative
};

using VariableTable = std::span<const Variable>;

extern const VariableTable kDeviceVariables;     // ZepDevice
extern const VariableTable kDeviceRules;         // ZepDevice
extern const VariableTable kConstantVariables;   // texts that pages need
extern const VariableTable kVersionVariables;    // ZepSpecVersion
extern const VariableTable kUpLinkVariables;     // ZepUpLink
extern const VariableTable kExtenderVariables;   // ZepExtenderSite
extern const VariableTable kIspVariables;        // ZepIsp
extern const VariableTable kWirelessVariables;   // ZepWireless
extern const VariableTable kAccessVariables;     // ZepAccessControl
extern const VariableTable kAcRuleVariables;     // ZepAcRule
extern const VariableTable kSafetyVariables;     // ZepSafetyWdn
extern const VariableTable kFirmwareVariables;   // live
extern const VariableTable kSurveyVariables;     // live
extern const VariableTable kSurveySiteVariables; // live

} // namespace pendra
