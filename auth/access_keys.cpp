#include <cstring>

#include "auth/client_lifetime.h"
#include "common/bounded_text.h"
#include "common/trace.h"
#include "common/tree_access.h"
#include "pendra/auth.h"

using namespace pendra;

namespace {

constexpr int32_t kSlotSeconds = 20;
constexpr int kSlotsTried = 5; // the previous slot, the current one and the three after it
constexpr const char* kUserName = "admin";

// The ways a request carries a key; the first one present counts.
struct KeyKind {
    const char* keyword;
    size_t digits;
};
constexpr KeyKind kKeyKinds[] = {{"PendraKey=", 32}, {"DKey=", 8}};
constexpr size_t kShortKeyDigits = kKeyKinds[1].digits;

struct ReceivedKey {
    const char* text = nullptr; // to the end of the request: only the first digits count
    size_t digits = 0;
};

ReceivedKey findKey(const char* request) {
    for (const KeyKind& kind : kKeyKinds)
        if (const char* found = std::strstr(request, kind.keyword))
            return {found + std::strlen(kind.keyword), kind.digits};
    return {};
}

void readPassword(char (&password)[64]) {
    readNode(password, "/sys/user:1/password");
}

// What follows the slot in the text of a key. The whole text counts up to 127 characters.
struct KeyTail {
    KeyTail(const char* ip, const char* password) { formatText(text, "%s%s%s", ip, kUserName, password); }
    char text[128];
};

// The key of a slot, in the shared result buffer.
char* keyOf(int32_t slot, const KeyTail& tail) {
    char input[128];
    formatText(input, "%ld%s", static_cast<long>(slot), tail.text);
    return MD5Encryption(input);
}

bool matchesSlotAround(uint32_t now, const ReceivedKey& key, const KeyTail& tail) {
    const int32_t firstSlot = static_cast<int32_t>(now) / kSlotSeconds - 1;
    for (int32_t slot = firstSlot; slot < firstSlot + kSlotsTried; slot++)
        if (std::strncmp(keyOf(slot, tail), key.text, key.digits) == 0) return true;
    return false;
}

char* currentKey(const char* ip) {
    char password[64];
    readPassword(password);
    const int32_t slot = static_cast<int32_t>(sys_uptime_seconds()) / kSlotSeconds;
    return keyOf(slot, KeyTail(ip == nullptr ? "" : ip, password));
}

} // namespace

extern "C" {

int32_t pendra_auth_check(const char* request, const char* ip, const char* session) {
    traceEntry("pendra_auth_check");
    if (request == nullptr || ip == nullptr) return -1;
    const uint32_t now = sys_uptime_seconds();
    char password[64];
    readPassword(password);
    const ReceivedKey key = findKey(request);
    if (key.text == nullptr) return -1;
    logPrintf(kLogTrace, "match_buff = %s, ip=%s, time=%ld\n", key.text, ip, static_cast<long>(now));
    if (!matchesSlotAround(now, key, KeyTail(ip, password))) return -1;
    const uint32_t logout = now + kClientLifetimeSeconds;
    eventLine(kLogEvent, "PendraKey success, logout=%ld\n", static_cast<long>(logout));
    clientAuthListAdd(&clientauthinfo, ip, kUserName, password, session, 1);
    return 0;
}

char* generate_PendraKey(const char* ip) {
    traceEntry("generate_PendraKey");
    return currentKey(ip);
}

char* generate_DKey(const char* ip) {
    traceEntry("generate_DKey");
    char* key = generate_PendraKey(ip);
    key[kShortKeyDigits] = '\0';
    return key;
}

const char* pendraLibVersion(void) {
    return "b1.3.1";
}

const char* zepSpecVersion(void) {
    return "1.1";
}

} // extern "C"
