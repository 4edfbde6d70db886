#include <cstdlib>
#include <cstring>
#include <ctime>

#include "auth/client_lifetime.h"
#include "common/bounded_text.h"
#include "common/trace.h"
#include "pendra/auth.h"

using namespace pendra;

namespace {

constexpr uint32_t kByAddress = 1;

uint32_t newLogout() {
    return sys_uptime_seconds() + kClientLifetimeSeconds;
}

bool hasAddress(const clientAuthEntry& entry, const char* ip) {
    return ip != nullptr && std::strcmp(entry.ip, ip) == 0;
}

// The session id may stand anywhere in the text: hosts pass the whole request.
bool namesSession(const clientAuthEntry& entry, const char* session) {
    return session != nullptr && std::strstr(session, entry.sessionid) != nullptr;
}

bool matches(const clientAuthEntry& entry, const char* ip, const char* session, uint32_t mode) {
    return hasAddress(entry, ip) && (mode == kByAddress || namesSession(entry, session));
}

clientAuthEntry* find(clientAuthEntry* entry, const char* ip, const char* session, uint32_t mode) {
    while (entry != nullptr && !matches(*entry, ip, session, mode))
        entry = entry->next;
    return entry;
}

clientAuthEntry* createEntry(const char* ip, const char* username, const char* password) {
    auto* entry = static_cast<clientAuthEntry*>(std::calloc(1, sizeof(clientAuthEntry)));
    if (entry == nullptr) return nullptr;
    // Re-seeded for every entry: two entries of one wall-clock second get the same id.
    std::srand(static_cast<unsigned>(std::time(nullptr)));
    formatText(entry->sessionid, "%.8x", static_cast<unsigned>(std::rand()));
    copyText(entry->ip, ip);
    copyText(entry->username, username);
    copyText(entry->password, password);
    return entry;
}

void append(clientAuthEntry** head, clientAuthEntry* entry) {
    while (*head != nullptr)
        head = &(*head)->next;
    *head = entry;
}

// One dump for each entry, taken while it is still in the list.
void emptyList(clientAuthEntry** head) {
    while (clientAuthEntry* entry = *head) {
        printList(head);
        *head = entry->next;
        std::free(entry);
    }
}

// Behind the head the test is looser than at the head: the first entry of that address, or whose session is not named,
// or any entry when no session text is given. Hosts that delete by session rely on it as it
// is.
bool endsWalk(const clientAuthEntry& entry, const char* ip, const char* session, uint32_t mode) {
    if (hasAddress(entry, ip)) return true;
    return mode != kByAddress && !namesSession(entry, session);
}

// The link to the entry that is to go; it points at null when there is none.
clientAuthEntry** findLinkToDelete(clientAuthEntry** head, const char* ip, const char* session, uint32_t mode) {
    if (matches(**head, ip, session, mode)) return head;
    clientAuthEntry** link = &(*head)->next;
    while (*link != nullptr && !endsWalk(**link, ip, session, mode))
        link = &(*link)->next;
    return link;
}

void logDeletion(int position, const char* ip, const clientAuthEntry& entry, uint32_t mode) {
    if (mode == kByAddress)
        logPrintf(kLogTrace, "%d Delete IP %s from list.\n", position, ip);
    else
        logPrintf(kLogTrace, "%d Delete IP %s(%s) from list.\n", position, ip, entry.sessionid);
}

} // namespace

extern "C" {

clientAuthEntry* clientauthinfo;
clientAuthEntry* cur_authinfo;

int32_t clientAuthListAdd(clientAuthEntry** head, const char* ip, const char* username, const char* password,
                          const char* session, uint32_t mode) {
    traceEntry("clientAuthListAdd");
    if (head == nullptr) return 1;
    if (clientAuthEntry* entry = find(*head, ip, session, mode)) {
        if (mode == kByAddress) entry->logout = newLogout();
        return 0;
    }
    clientAuthEntry* entry = createEntry(ip, username, password);
    if (entry == nullptr) return 1; // callers cannot tell this from a new entry
    entry->logout = mode != 0 ? newLogout() : 0;
    append(head, entry);
    logPrintf(kLogInfo, "Add new node ip=%s\n", entry->ip);
    cur_authinfo = entry;
    printList(head);
    return 1;
}

clientAuthEntry* checkClientAuthIp(clientAuthEntry** head, const char* ip, const char* session, uint32_t mode) {
    traceEntry("checkClientAuthIp");
    return head == nullptr ? nullptr : find(*head, ip, session, mode);
}

int32_t clientAuthListDel(clientAuthEntry** head, const char* ip, const char* session, uint32_t mode) {
    traceEntry("clientAuthListDel");
    if (head == nullptr || *head == nullptr) {
        logPrintf(kLogInfo, "No IP to be deleted.\n");
        return 0;
    }
    if (ip == nullptr) {
        emptyList(head);
        return 0;
    }
    clientAuthEntry** link = findLinkToDelete(head, ip, session, mode);
    clientAuthEntry* entry = *link;
    if (entry == nullptr) return 0;
    *link = entry->next;
    logDeletion(link == head ? 1 : 2, ip, *entry, mode);
    std::free(entry);
    return 1;
}

int32_t printList(clientAuthEntry** head) {
    if (head == nullptr || *head == nullptr) {
        traceLine("printList", "Auth list is empty.\n");
        return 0;
    }
    traceLine("printList", "The Auth list is:\n");
    for (const clientAuthEntry* entry = *head; entry != nullptr; entry = entry->next)
        logPrintf(kLogInfo, "ip=%s,username=%s, sessionid=%s-->", entry->ip, entry->username, entry->sessionid);
    logPrintf(kLogInfo, "NULL \n\n");
    return 0;
}

int32_t check_PendraAuthIP(const char* ip, const char* session) {
    traceEntry("check_PendraAuthIP");
    clientAuthEntry* const entry = checkClientAuthIp(&clientauthinfo, ip, session, kByAddress);
    cur_authinfo = entry; // for the host alone: it may outlive the entry, so nothing here reads it
    if (entry != nullptr) {
        const uint32_t now = sys_uptime_seconds();
        if (now < entry->logout) {
            entry->logout = now + kClientLifetimeSeconds;
            logPrintf(kLogTrace, "Auth Client IP, logout=%ld\n", static_cast<long>(entry->logout));
            return 0;
        }
        clientAuthListDel(&clientauthinfo, ip, session, kByAddress);
    }
    logPrintf(kLogTrace, "UnAuth Zep Client IP!\n");
    return -1;
}

} // extern "C"
