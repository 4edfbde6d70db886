#include "host/www_files.h"

namespace pendra::host {

namespace {

struct File {
    std::string_view name;
    std::string_view content;
};

constexpr File kFiles[] = {
#include "www_files.inc"
};

} // namespace

std::string_view wwwFile(std::string_view name) {
    for (const File& file : kFiles) {
        if (file.name == name) return file.content;
    }
    return {};
}

} // namespace pendra::host
