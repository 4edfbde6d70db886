/**
 * @file
 * Page templates: texts with placeholders.
 */
#ifndef PENDRA_HOST_TEMPLATES_H
#define PENDRA_HOST_TEMPLATES_H

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace pendra::host {

/** A text as it may stand in HTML, within quotes too. */
std::string escapeHtml(std::string_view text);

/** What a placeholder stands for; its words are what stands between its braces, cut at each "|". */
using Resolve = std::function<std::string(const std::vector<std::string>& words)>;

/**
 * Replaces every "{{word|word|...}}". What stands in its place is not looked at again. An opening without an end stays
 * as it is.
 */
std::string expandTemplate(std::string_view text, const Resolve& resolve);

} // namespace pendra::host

#endif
