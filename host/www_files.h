/**
 * @file
 * The files of host/www, as they were when the program was built.
 */
#ifndef PENDRA_HOST_WWW_FILES_H
#define PENDRA_HOST_WWW_FILES_H

#include <string_view>

namespace pendra::host {

/** @return a file's content, empty when there is none of that name. */
std::string_view wwwFile(std::string_view name);

} // namespace pendra::host

#endif
