// Access keys: lines with the uptime, the address and the password, then the request, in which $0 to $6 stand for the
// keys of the slots around the current one. What is accepted is what the reference accepts, and admits one address for
// 300 seconds.
#include <openssl/evp.h>

#include <cstring>

#include "fuzz/support.h"

using namespace pendra::fuzz;
using pendra::test::device;

namespace {

struct Client {
    int32_t uptime;
    std::string address;
    std::string password;
    int32_t slot() const { return uptime / 20; }
};

std::string md5(const std::string& text) {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned size = 0;
    EVP_Digest(text.data(), text.size(), digest, &size, EVP_md5(), nullptr);
    std::string hex;
    for (unsigned index = 0; index < size; index++) {
        hex += "0123456789abcdef"[digest[index] >> 4];
        hex += "0123456789abcdef"[digest[index] & 15];
    }
    return hex;
}

// The text that is digested has room for 127 characters, the password for 63.
std::string keyOf(const Client& client, int32_t slot) {
    const std::string text = std::to_string(slot) + client.address + "admin" + client.password.substr(0, 63);
    return md5(text.substr(0, 127));
}

std::string fillKeys(const std::string& request, const Client& client) {
    std::string filled;
    for (size_t index = 0; index < request.size(); index++) {
        const char digit = index + 1 < request.size() ? request[index + 1] : '\0';
        if (request[index] != '$' || digit < '0' || digit > '6')
            filled += request[index];
        else
            filled += keyOf(client, client.slot() - 2 + (request[++index] - '0'));
    }
    return filled;
}

bool isAccepted(const std::string& request, const Client& client) {
    for (const auto& [word, digits] : {std::pair<std::string, size_t>{"PendraKey=", 32}, {"DKey=", 8}}) {
        const size_t found = request.find(word);
        if (found == std::string::npos) continue;
        const std::string key = request.substr(found + word.size(), digits);
        for (int32_t slot = client.slot() - 1; slot <= client.slot() + 3; slot++)
            if (key == keyOf(client, slot).substr(0, digits)) return true;
        return false;
    }
    return false;
}

int entries() {
    int count = 0;
    for (const clientAuthEntry* entry = clientauthinfo; entry != nullptr; entry = entry->next)
        count++;
    return count;
}

void checkOwnKeys(const Client& client) {
    requireEqual(generate_PendraKey(client.address.c_str()), keyOf(client, client.slot()), "the key of the slot");
    requireEqual(generate_DKey(client.address.c_str()), keyOf(client, client.slot()).substr(0, 8), "the short key");
}

bool isAdmittedAt(const Client& client, int64_t uptime) {
    device().uptime = uptime;
    return check_PendraAuthIP(client.address.c_str(), nullptr) == 0;
}

void checkLifetime(const Client& client) {
    requireEqual(clientauthinfo->logout, static_cast<uint32_t>(client.uptime) + 300, "a client stays for 300 seconds");
    require(check_PendraAuthIP((client.address + "0").c_str(), nullptr) != 0, "no other address is admitted");
    const int64_t now = client.uptime;
    require(isAdmittedAt(client, now + 299), "a client is admitted until its end");
    require(isAdmittedAt(client, now + 299 + 299), "each request counts from the start again");
    require(!isAdmittedAt(client, now + 299 + 299 + 300), "a client that was silent for long is out");
    requireEqual(entries(), 0, "a client that is out is forgotten");
}

void checkRequest(const Client& client, const std::string& request) {
    Buffer buffer(request);
    const int32_t result = pendra_auth_check(buffer.data(), client.address.c_str(), buffer.data());
    const bool accepted = isAccepted(request, client);
    requireEqual(result, accepted ? 0 : -1, "a key is accepted that the reference accepts, and no other");
    requireEqual(entries(), accepted ? 1 : 0, "a key enters its client");
    requireEqual(buffer.text(), request, "the request is as before");
    if (!accepted) return;
    requireEqual(pendra_auth_check(buffer.data(), client.address.c_str(), nullptr), 0, "a key counts again");
    requireEqual(entries(), 1, "a client is entered once");
    checkLifetime(client);
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const bool trace = input.flag('l');
    Client client;
    client.uptime = clampTo(input.number(), 0, INT32_MAX - 1000);
    client.address = input.line().substr(0, 126);
    client.password = input.line();
    startDevice(1, trace);
    device().uptime = client.uptime;
    device().tree["/sys/user:1/password"] = client.password;
    checkOwnKeys(client);
    checkRequest(client, fillKeys(input.text(), client));
    pendra::test::resetLibrary();
    return 0;
}
