/**
 * @file
 * Form bodies ("name=value&name=value") and the grammar of what they may say.
 */
#ifndef PENDRA_HOST_FORMS_H
#define PENDRA_HOST_FORMS_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pendra::host {

/** @return a field's decoded value, empty when the form has no such field. The first one of a name counts. */
std::string formField(std::string_view form, std::string_view name);

struct FormPair {
    std::string name;
    std::string value; /**< as it was sent, still encoded */
};

/**
 * Takes a form apart where the library does: at the separator and at every line's end. Blanks around names and values
 * are cut.
 *
 * @return nothing when a part has no name or no "=".
 */
std::optional<std::vector<FormPair>> splitForm(std::string_view text, char separator);

/** The form of these pairs, as splitForm() takes it apart. */
std::string joinForm(const std::vector<FormPair>& pairs, char separator);

/** A value as the library decodes it, uncut; a NUL byte ends it. */
std::string decodeValue(const std::string& encoded);

/** A value as it may stand in a form. */
std::string encodeValue(const std::string& value);

/** @return whether a text is six pairs of hex digits with colons between them. */
bool isMac(std::string_view text);

/** @return whether a text names one of the device's wireless interfaces. */
bool isWirelessInterface(std::string_view text);

} // namespace pendra::host

#endif
