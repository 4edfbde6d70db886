// MD5 as OpenSSL offers it. Apart from the library's headers, which have a context of the same name.
#pragma once

#include <cstddef>

namespace pendra::bench {

// One context and one algorithm, fetched once: as fast as this interface goes.
void digestWithEvp(const char* text, std::size_t length, unsigned char (&digest)[16]);

// The one call of the older interface.
void digestWithOneShot(const char* text, std::size_t length, unsigned char (&digest)[16]);

} // namespace pendra::bench
