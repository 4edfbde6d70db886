/**
 * @file
 * The parts that page templates are put together from: fields of forms, lists, messages.
 */
#ifndef PENDRA_HOST_PAGE_PARTS_H
#define PENDRA_HOST_PAGE_PARTS_H

#include <map>
#include <string>
#include <string_view>

namespace pendra::host {

/** What a page shows beside the settings themselves. */
struct PageView {
    std::string path;
    std::string title;
    std::map<std::string, std::string> typed = {};  /**< by variable: what was posted and refused */
    std::map<std::string, std::string> faults = {}; /**< by variable: why */
    std::string notice = {};
    std::string fault = {}; /**< of the page as a whole */
};

/** A file of host/www with its placeholders replaced. The record must have been refreshed. */
std::string expandPage(const PageView& view, std::string_view file);

} // namespace pendra::host

#endif
