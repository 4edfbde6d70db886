#include "host/sessions.h"

#include <nlohmann/json.hpp>

#include "host/tree.h"
#include "pendra/auth.h"

namespace pendra::host {

namespace {

// An absent number counts as 1, as it does when a document is checked.
std::string deviceSpecVersion() {
    const int major = nodeNumber("/bramble/specversion/major");
    const int minor = nodeNumber("/bramble/specversion/minor");
    return std::to_string(major < 0 ? 1 : major) + "." + std::to_string(minor < 0 ? 1 : minor);
}

} // namespace

Answer getHello(Request& request) {
    return jsonAnswer({{"library", pendraLibVersion()},
                       {"protocol", zepSpecVersion()},
                       {"spec", deviceSpecVersion()},
                       {"uptime", sys_uptime_seconds()},
                       {"client", request.client}});
}

Answer login(Request& request) {
    const std::string& text = request.body.empty() ? request.query : request.body;
    const char* client = request.client.c_str();
    if (pendra_auth_check(text.c_str(), client, text.c_str()) != 0) {
        return textAnswer(MHD_HTTP_UNAUTHORIZED, "The access key is missing, wrong or out of date.");
    }
    const clientAuthEntry* entry = checkClientAuthIp(&clientauthinfo, client, nullptr, 1);
    if (entry == nullptr) return textAnswer(MHD_HTTP_INTERNAL_SERVER_ERROR, "The client list is out of memory.");
    return jsonAnswer(
        {{"session", entry->sessionid}, {"expires", entry->logout}, {"seconds", entry->logout - sys_uptime_seconds()}});
}

} // namespace pendra::host
