// The MD5 message-digest algorithm of RFC 1321, with the RFC's own interface.
#include <bit>
#include <cstring>

#include "common/bounded_text.h"
#include "pendra/auth.h"

namespace {

constexpr unsigned kBlockSize = 64;
constexpr unsigned kLengthOffset = 56; // where the bit count stands in the last block

// T[i] = floor(2^32 * |sin(i + 1)|)
constexpr uint32_t kSineTable[64] = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391,
};

struct State {
    uint32_t a, b, c, d;
};

// The sixteen steps of a round. Rounds differ in how three words are mixed, in which word of the block each step takes,
// and in their rotations; each has a copy of its own, with nothing left to decide at a step.
template <unsigned Number, unsigned FirstWord, unsigned Stride, typename Mix>
inline void doRound(State& now, const uint32_t (&words)[16], const int (&rotations)[4], Mix mix) {
    unsigned word = FirstWord;
    for (unsigned step = 0; step < 16; step++, word += Stride) {
        const uint32_t sum = now.a + words[word % 16] + kSineTable[16 * Number + step] + mix(now.b, now.c, now.d);
        now = {now.d, now.b + std::rotl(sum, rotations[step % 4]), now.b, now.c};
    }
}

} // namespace

extern "C" {

char string[80];

void Encode(unsigned char* output, const uint32_t* input, unsigned int length) {
    for (unsigned i = 0; i < length; i++)
        output[i] = static_cast<unsigned char>(input[i / 4] >> (8 * (i % 4)));
}

void Decode(uint32_t* output, const unsigned char* input, unsigned int length) {
    for (unsigned i = 0; i < length; i += 4)
        output[i / 4] = uint32_t{input[i]} | uint32_t{input[i + 1]} << 8 | uint32_t{input[i + 2]} << 16 |
                        uint32_t{input[i + 3]} << 24;
}

void MD5Transform(uint32_t state[4], const unsigned char block[64]) {
    uint32_t words[kBlockSize / 4];
    Decode(words, block, kBlockSize);
    State now = {state[0], state[1], state[2], state[3]};
    doRound<0, 0, 1>(now, words, {7, 12, 17, 22}, [](auto b, auto c, auto d) { return d ^ (b & (c ^ d)); });
    doRound<1, 1, 5>(now, words, {5, 9, 14, 20}, [](auto b, auto c, auto d) { return (b & d) + (c & ~d); });
    doRound<2, 5, 3>(now, words, {4, 11, 16, 23}, [](auto b, auto c, auto d) { return b ^ c ^ d; });
    doRound<3, 0, 7>(now, words, {6, 10, 15, 21}, [](auto b, auto c, auto d) { return c ^ (b | ~d); });
    state[0] += now.a;
    state[1] += now.b;
    state[2] += now.c;
    state[3] += now.d;
}

void MD5Init(MD5_CTX* context) {
    *context = {{0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476}, {}, {}};
}

void MD5Update(MD5_CTX* context, const unsigned char* input, unsigned int length) {
    const uint32_t before = context->count[0];
    context->count[0] += length << 3;
    context->count[1] += (length >> 29) + (context->count[0] < before ? 1 : 0);
    for (unsigned used = (before >> 3) % kBlockSize; length > 0; used = 0) {
        const unsigned part = length < kBlockSize - used ? length : kBlockSize - used;
        std::memcpy(context->buffer + used, input, part);
        if (used + part == kBlockSize) MD5Transform(context->state, context->buffer);
        input += part;
        length -= part;
    }
}

void MD5Final(unsigned char digest[16], MD5_CTX* context) {
    unsigned used = (context->count[0] >> 3) % kBlockSize;
    context->buffer[used++] = 0x80;
    if (used > kLengthOffset) { // no room for the bit count
        std::memset(context->buffer + used, 0, kBlockSize - used);
        MD5Transform(context->state, context->buffer);
        used = 0;
    }
    std::memset(context->buffer + used, 0, kLengthOffset - used);
    Encode(context->buffer + kLengthOffset, context->count, sizeof context->count);
    MD5Transform(context->state, context->buffer);
    Encode(digest, context->state, 16);
    *context = {};
}

void MD5Digest(const char* text, unsigned int length, unsigned char digest[16]) {
    static_cast<void>(length); // the text's own length counts
    MD5_CTX context;
    MD5Init(&context);
    MD5Update(&context, reinterpret_cast<const unsigned char*>(text), static_cast<unsigned>(std::strlen(text)));
    MD5Final(digest, &context);
}

char* Hex2String(const unsigned char* bytes, char* output, int32_t count) {
    constexpr int32_t kShown = 16; // the text is cut after 32 digits whatever the count
    if (bytes == nullptr || output == nullptr) return nullptr;
    char work[2 * kShown + 1]; // bytes and output may be the same buffer
    char* next = work;
    for (int32_t i = 0; i < count && i < kShown; i++) {
        *next++ = "0123456789abcdef"[bytes[i] >> 4];
        *next++ = "0123456789abcdef"[bytes[i] & 15];
    }
    *next = '\0';
    std::memcpy(output, work, static_cast<size_t>(next - work) + 1);
    return output;
}

char* MD5Encryption(const char* text) {
    if (text == nullptr) return nullptr;
    unsigned char digest[16];
    MD5Digest(text, 0, digest);
    return Hex2String(digest, string, sizeof digest);
}

} // extern "C"
