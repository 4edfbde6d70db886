#include "bench/openssl_digests.h"

#include <openssl/evp.h>
#include <openssl/md5.h>

namespace pendra::bench {

void digestWithEvp(const char* text, std::size_t length, unsigned char (&digest)[16]) {
    static EVP_MD* const algorithm = EVP_MD_fetch(nullptr, "MD5", nullptr);
    static EVP_MD_CTX* const context = EVP_MD_CTX_new();
    unsigned size = 0;
    EVP_DigestInit_ex(context, algorithm, nullptr);
    EVP_DigestUpdate(context, text, length);
    EVP_DigestFinal_ex(context, digest, &size);
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
void digestWithOneShot(const char* text, std::size_t length, unsigned char (&digest)[16]) {
    MD5(reinterpret_cast<const unsigned char*>(text), length, digest);
}
#pragma GCC diagnostic pop

} // namespace pendra::bench
