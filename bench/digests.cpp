// Keys and checksums: the library against OpenSSL, zlib and the image tool.
#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "bench/fixture.h"
#include "bench/openssl_digests.h"
#include "pendra/pendra.h"

namespace pendra::bench {
namespace {

constexpr const char* kAddress = "192.168.1.100";
constexpr const char* kPassword = "bramble-1234"; // of the device
constexpr const char* kWrongKey = "PendraKey=0123456789abcdef0123456789abcdef";

// A wrong key: all five slots are tried. Includes the clock, the password's node and the search for the key.
void checkKey(benchmark::State& state) {
    prepareLibrary();
    for (auto _ : state)
        if (pendra_auth_check(kWrongKey, kAddress, "1") != -1) state.SkipWithError("admitted");
}

using Digest = void (*)(const char* text, size_t length, unsigned char (&digest)[16]);

void digestHere(const char* text, size_t length, unsigned char (&digest)[16]) {
    MD5Digest(text, static_cast<unsigned>(length), digest);
}

void writeHex(const unsigned char (&digest)[16], char (&hex)[33]) {
    for (size_t byte = 0; byte < sizeof digest; byte++) {
        hex[2 * byte] = "0123456789abcdef"[digest[byte] >> 4];
        hex[2 * byte + 1] = "0123456789abcdef"[digest[byte] & 15];
    }
    hex[32] = '\0';
}

// The same five keys, compared alike.
template <Digest Make>
bool matchesAnySlot(uint32_t uptime, const char* key) {
    for (int slot = -1; slot < 4; slot++) {
        char text[128];
        const int length = std::snprintf(text, sizeof text, "%ld%s%s%s", static_cast<long>(uptime) / 20 + slot,
                                         kAddress, "admin", kPassword);
        unsigned char digest[16];
        char hex[33];
        Make(text, static_cast<size_t>(length), digest);
        writeHex(digest, hex);
        if (std::strncmp(hex, key, 32) == 0) return true;
    }
    return false;
}

template <Digest Make>
void makeKeys(benchmark::State& state) {
    if (!matchesAnySlot<Make>(1000, MD5Encryption("50192.168.1.100adminbramble-1234")))
        state.SkipWithError("wrong digest");
    const char* key = std::strchr(kWrongKey, '=') + 1;
    for (auto _ : state)
        if (matchesAnySlot<Make>(100000, key)) state.SkipWithError("matches");
}

BENCHMARK(checkKey)->Name("key/check");
BENCHMARK(makeKeys<digestHere>)->Name("key/digests/library");
BENCHMARK(makeKeys<digestWithEvp>)->Name("key/digests/openssl-evp");
BENCHMARK(makeKeys<digestWithOneShot>)->Name("key/digests/openssl-md5");

// ---- checksums ----

constexpr size_t kImageSize = size_t{20} << 20;
constexpr size_t kHeaderSize = 64;

std::vector<unsigned char> imageData() {
    std::vector<unsigned char> data(kImageSize - kHeaderSize);
    uint32_t state = 1;
    for (auto& byte : data)
        byte = static_cast<unsigned char>((state = state * 1664525 + 1013904223) >> 24);
    return data;
}

void putNumber(unsigned char* header, size_t offset, uint32_t number) {
    for (size_t byte = 0; byte < 4; byte++)
        header[offset + byte] = static_cast<unsigned char>(number >> (24 - 8 * byte));
}

// A legacy image that both checkers take.
const std::string& imageFile() {
    static const std::string file = [] {
        const std::vector<unsigned char> data = imageData();
        unsigned char header[kHeaderSize] = {};
        putNumber(header, 0, 0x27051956);
        putNumber(header, 12, static_cast<uint32_t>(data.size()));
        putNumber(header, 24, crc32(0, data.data(), static_cast<uint32_t>(data.size())));
        header[28] = 5; // Linux
        header[29] = 5; // MIPS
        header[30] = 2; // kernel
        putNumber(header, 4, crc32(0, header, sizeof header));
        const std::string path = ownDirectory() + "/image.bin";
        std::ofstream out(path, std::ios::binary);
        out.write(reinterpret_cast<const char*>(header), sizeof header);
        out.write(reinterpret_cast<const char*>(data.data()), static_cast<std::streamsize>(data.size()));
        return path;
    }();
    return file;
}

using Crc = unsigned long (*)(unsigned long, const unsigned char*, unsigned);

// zlib's function has the name of the library's: looked up in zlib itself.
Crc zlibCrc() {
    void* zlib = dlopen("libz.so.1", RTLD_NOW | RTLD_LOCAL);
    return zlib == nullptr ? nullptr : reinterpret_cast<Crc>(dlsym(zlib, "crc32"));
}

void crcHere(benchmark::State& state) {
    const std::vector<unsigned char> data = imageData();
    for (auto _ : state)
        benchmark::DoNotOptimize(crc32(0, data.data(), static_cast<uint32_t>(data.size())));
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(data.size()));
}

void crcWithZlib(benchmark::State& state) {
    const Crc crc = zlibCrc();
    if (crc == nullptr) return state.SkipWithError("no zlib");
    const std::vector<unsigned char> data = imageData();
    const auto size = static_cast<unsigned>(data.size());
    if (crc(0, data.data(), size) != crc32(0, data.data(), size)) state.SkipWithError("different sums");
    for (auto _ : state)
        benchmark::DoNotOptimize(crc(0, data.data(), size));
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(data.size()));
}

void checkHere(benchmark::State& state) {
    char reason[256] = "";
    const std::string& file = imageFile();
    for (auto _ : state)
        if (check(file.c_str(), 0, static_cast<int32_t>(kImageSize), reason) != 1) state.SkipWithError(reason);
}

int listWithTool(const std::string& file) {
    char tool[] = "mkimage";
    char option[] = "-l";
    std::string path = file;
    char* arguments[] = {tool, option, path.data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int fault = posix_spawnp(&child, tool, &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = -1;
    if (fault == 0) waitpid(child, &status, 0);
    return status;
}

void checkWithTool(benchmark::State& state) {
    const std::string& file = imageFile();
    for (auto _ : state)
        if (listWithTool(file) != 0) state.SkipWithError("refused");
}

BENCHMARK(crcHere)->Name("crc/library")->Unit(benchmark::kMillisecond);
BENCHMARK(crcWithZlib)->Name("crc/zlib")->Unit(benchmark::kMillisecond);
BENCHMARK(checkHere)->Name("check/library")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(checkWithTool)->Name("check/mkimage")->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
} // namespace pendra::bench
