#include "client/access_key.h"

#include <openssl/evp.h>

#include <cstdio>

#include "client/failure.h"

namespace pendra::client {

namespace {

constexpr uint32_t kSlotSeconds = 20;

// The device keeps the password and the key's text in buffers of 64 and 128 bytes and cuts what is longer.
constexpr size_t kMaxPassword = 63;
constexpr size_t kMaxKeyText = 127;

std::string keyText(uint32_t uptimeSeconds, const std::string& address, const std::string& password) {
    const std::string slot = std::to_string(uptimeSeconds / kSlotSeconds);
    return (slot + address + "admin" + password.substr(0, kMaxPassword)).substr(0, kMaxKeyText);
}

std::string hexOf(const unsigned char* bytes, unsigned count) {
    std::string text;
    for (unsigned i = 0; i < count; ++i) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", bytes[i]);
        text += digits;
    }
    return text;
}

} // namespace

std::string accessKey(uint32_t uptimeSeconds, const std::string& address, const std::string& password) {
    const std::string text = keyText(uptimeSeconds, address, password);
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned length = 0;
    if (EVP_Digest(text.data(), text.size(), digest, &length, EVP_md5(), nullptr) != 1) {
        throw Failure(kUnexpected, "This machine's crypto library does not offer MD5, which the device's keys need.");
    }
    return hexOf(digest, length);
}

} // namespace pendra::client
