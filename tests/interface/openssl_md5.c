#define OPENSSL_SUPPRESS_DEPRECATED /* the names are what counts here */
#include <openssl/md5.h>

#include "direct.h"

void opensslMd5(const unsigned char* text, size_t length, unsigned char digest[16]) {
    MD5_CTX context;
    MD5_Init(&context);
    MD5_Update(&context, text, length);
    MD5_Final(digest, &context);
}
