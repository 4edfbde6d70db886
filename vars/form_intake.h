// What the variable interface remembers between calls. One instance; tests set it back to its load-time value.
#pragma once

namespace pendra {

struct VariableState {
    bool firstInit = true; // init_ZepVar() has not been called since loading
    char answer[128] = ""; // what getZepVar() gave last
};

extern VariableState variableState;

} // namespace pendra
