#include "host/tree.h"

#include "pendra/platform.h"

namespace pendra::host {

std::string nodeText(const std::string& path) {
    char text[XNODE_TEXT_MAX] = "";
    xget_str(text, "%s", path.c_str());
    return text;
}

int nodeNumber(const std::string& path) {
    return xget_int("%s", path.c_str());
}

} // namespace pendra::host
