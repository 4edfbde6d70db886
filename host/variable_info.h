/**
 * @file
 * What the host knows of the variables without asking the library: which there are, how they are checked, and what
 * their names may look like.
 */
#ifndef PENDRA_HOST_VARIABLE_INFO_H
#define PENDRA_HOST_VARIABLE_INFO_H

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pendra::host {

struct VariableInfo {
    std::string_view name;    /**< "??" stands for the two digits of a list's index */
    std::string_view check;   /**< what a value must pass: "rule", "address", ... */
    std::string_view choices; /**< of a value that is one of a few, with ", " between them */

    [[nodiscard]] bool canBeSet() const { return check != "readOnly"; }
    [[nodiscard]] bool isChoice() const { return check == "name"; }
};

/** Every variable, from the tables of the library. */
std::span<const VariableInfo> allVariables();

/** @return the variable of that name, null when there is none. */
const VariableInfo* findVariable(std::string_view name);

/** @return the names of the variables that a row stands for; list elements are counted from 0. */
std::vector<std::string> namesOf(const VariableInfo& variable, int elementCount);

/** Longest name that the library's form intake takes uncut. */
inline constexpr size_t kMaxFormName = 31;

/** Longest name that the library takes at all. */
inline constexpr size_t kMaxName = 127;

/**
 * Whether a text looks like a name ("zep_Wl2_WirelessName") or a document path ("/Device/DeviceName"). A refused name
 * goes into a shell command by way of the result document, so nothing else may reach the library.
 */
bool isVariableName(std::string_view text, size_t maxLength);

/** @return the name by which the library knows a name or document path; nothing when a text is neither. */
std::optional<std::string> libraryName(std::string_view text);

/** @return whether a name is one of an action, which any call would perform. */
bool isAction(std::string_view name);

} // namespace pendra::host

#endif
