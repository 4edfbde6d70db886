#include <string.h>
#include <zlib.h>

#include "direct.h"

static const char kText[] = "a gzip stream ends with the CRC-32 of what is in it";

/** @return the stream's length, 0 when it cannot be made. */
static size_t pack(unsigned char* stream, size_t capacity) {
    z_stream state;
    memset(&state, 0, sizeof state);
    if (deflateInit2(&state, Z_BEST_COMPRESSION, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY) != Z_OK) return 0;
    state.next_in = (z_const Bytef*)kText;
    state.avail_in = sizeof kText;
    state.next_out = stream;
    state.avail_out = (uInt)capacity;
    const int result = deflate(&state, Z_FINISH);
    deflateEnd(&state);
    return result == Z_STREAM_END ? state.total_out : 0;
}

static int unpack(unsigned char* stream, size_t length, char* text, size_t capacity) {
    z_stream state;
    memset(&state, 0, sizeof state);
    if (inflateInit2(&state, 15 + 16) != Z_OK) return Z_MEM_ERROR;
    state.next_in = stream;
    state.avail_in = (uInt)length;
    state.next_out = (Bytef*)text;
    state.avail_out = (uInt)capacity;
    const int result = inflate(&state, Z_FINISH);
    inflateEnd(&state);
    return result;
}

int zlibKeepsItsChecksum(void) {
    unsigned char stream[256];
    char text[sizeof kText];
    const size_t length = pack(stream, sizeof stream);
    if (length < 8 || unpack(stream, length, text, sizeof text) != Z_STREAM_END) return 0;
    if (strcmp(text, kText) != 0) return 0;
    stream[length - 8] ^= 1; /* the checksum is the last but four bytes */
    return unpack(stream, length, text, sizeof text) == Z_DATA_ERROR;
}
