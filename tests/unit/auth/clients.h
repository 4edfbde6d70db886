// The authenticated clients as tests see them.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "support/fake_device.h"

namespace pendra::test {

// Adds a client of the user "admin" with the password "secret".
inline int32_t addClient(const char* ip, uint32_t mode = 1, const char* session = nullptr) {
    return clientAuthListAdd(&clientauthinfo, ip, "admin", "secret", session, mode);
}

// Adds a client whose session id is known.
inline clientAuthEntry* addClientWithSession(const char* ip, const char* sessionId, uint32_t mode = 2) {
    addClient(ip, mode);
    std::strcpy(cur_authinfo->sessionid, sessionId);
    return cur_authinfo;
}

inline std::vector<std::string> clientAddresses() {
    std::vector<std::string> addresses;
    for (const clientAuthEntry* entry = clientauthinfo; entry != nullptr; entry = entry->next)
        addresses.emplace_back(entry->ip);
    return addresses;
}

inline std::vector<std::string> clientSessions() {
    std::vector<std::string> sessions;
    for (const clientAuthEntry* entry = clientauthinfo; entry != nullptr; entry = entry->next)
        sessions.emplace_back(entry->sessionid);
    return sessions;
}

} // namespace pendra::test
