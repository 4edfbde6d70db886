/**
 * @file
 * Form bodies ("name=value&name=value") and the grammar of what they may say.
 */
#ifndef PENDRA_HOST_FORMS_H
#define PENDRA_HOST_FORMS_H

#include <string>
#include <string_view>

namespace pendra::host {

/** @return a field's decoded value, empty when the form has no such field. The first one of a name counts. */
std::string formField(std::string_view form, std::string_view name);

/** @return whether a text is six pairs of hex digits with colons between them. */
bool isMac(std::string_view text);

/** @return whether a text names one of the device's wireless interfaces. */
bool isWirelessInterface(std::string_view text);

} // namespace pendra::host

#endif
