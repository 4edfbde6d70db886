/**
 * @file
 * A host that is linked with libpendra, zlib, OpenSSL and another library with an MD5Init. This file is built into two
 * programs: in one libpendra stands first on the linker's line, in the other last.
 */
#include <fstream>
#include <random>
#include <vector>

#include "direct.h"
#include "modules.h"
#include "pendra/auth.h"
#include "sides.h"

namespace pendra::test {
namespace {

std::vector<std::string> exportedNames() {
    std::ifstream list(PENDRA_SYMBOLS);
    std::vector<std::string> names;
    for (std::string line; std::getline(list, line);)
        if (line.front() != '#') names.push_back(line);
    return names;
}

/** @return which of libpendra's names a library answers to. */
std::vector<std::string> namesInCommon(const char* library) {
    const Module module(library, RTLD_LOCAL);
    std::vector<std::string> common;
    for (const std::string& name : exportedNames())
        if (module.find<void*>(name.c_str()) != nullptr) common.push_back(name);
    return common;
}

TEST(Names, InCommonWithZlib_AreCrc32Alone) {
    EXPECT_GT(exportedNames().size(), 100u);
    EXPECT_EQ(namesInCommon("libz.so.1"), std::vector<std::string>{"crc32"});
}

TEST(Names, InCommonWithOpenSsl_AreNone) {
    EXPECT_EQ(namesInCommon(OPENSSL_LIBRARY), std::vector<std::string>{});
}

TEST(Crc32, OfTheProgram_IsThatOfTheFirstLibraryOnItsLine) {
    EXPECT_EQ(ownerOf(directCrc32()), FIRST_LIBRARY);
}

TEST(Crc32, OfModulesBoundDeeply_IsThatOfTheirLibraries) {
    const Module pendra(PENDRA_SIDE, RTLD_LOCAL | RTLD_DEEPBIND);
    const Module zlib(ZLIB_SIDE, RTLD_LOCAL | RTLD_DEEPBIND);
    const auto ofPendra = pendra.ask<pendraCrc32Function>("pendraCrc32");
    const auto ofZlib = zlib.ask<zlibCrc32Function>("zlibCrc32");
    EXPECT_EQ(ownerOf(ofPendra), "libpendra.so.1");
    EXPECT_EQ(ownerOf(ofZlib), "libz.so.1");
    const unsigned char digits[] = "123456789";
    EXPECT_EQ(ofPendra(0, digits, 9), 0xCBF43926u);
    EXPECT_EQ(ofZlib(0, digits, 9), 0xCBF43926u);
}

TEST(Crc32, OfAHandle_IsThatOfTheLibrary) {
    EXPECT_EQ(ownerOf(Module("libpendra.so.1", RTLD_NOLOAD).find<pendraCrc32Function>("crc32")), "libpendra.so.1");
    EXPECT_EQ(ownerOf(Module("libz.so.1", RTLD_NOLOAD).find<zlibCrc32Function>("crc32")), "libz.so.1");
}

// The loader takes a definition without a version, like zlib's, for one of any version, and the other way round. So a
// program may meet the other library's function, and must not notice.
TEST(Crc32, OfEitherLibrary_HasTheSameResults) {
    const auto ofPendra = Module("libpendra.so.1", RTLD_NOLOAD).find<pendraCrc32Function>("crc32");
    const auto ofZlib = Module("libz.so.1", RTLD_NOLOAD).find<zlibCrc32Function>("crc32");
    std::minstd_rand random(20);
    EXPECT_EQ(ofPendra(0, nullptr, 0), 0u);
    EXPECT_EQ(ofZlib(0, nullptr, 0), 0u);
    for (size_t length = 0; length < 300; ++length) {
        std::vector<unsigned char> data(length + 1);
        for (unsigned char& byte : data)
            byte = static_cast<unsigned char>(random());
        const auto initial = static_cast<uint32_t>(random());
        const auto size = static_cast<uint32_t>(length);
        EXPECT_EQ(ofPendra(initial, data.data(), size), ofZlib(initial, data.data(), size)) << length;
    }
}

TEST(Zlib, RoundTrip_KeepsItsChecksum) {
    EXPECT_TRUE(zlibKeepsItsChecksum());
}

TEST(Md5Init, OfModulesOfVersionedLibraries_IsThatOfTheirLibraries) {
    const Module pendra(PENDRA_SIDE, RTLD_LOCAL);
    const Module rival(RIVAL_SIDE, RTLD_LOCAL);
    EXPECT_EQ(ownerOf(pendra.ask<md5InitFunction>("pendraMd5Init")), "libpendra.so.1");
    EXPECT_EQ(ownerOf(rival.ask<md5InitFunction>("rivalMd5Init")), "librival.so");
}

TEST(OpenSsl, Md5OfBothLibraries_IsTheSameDigest) {
    unsigned char ofOpenSsl[16];
    unsigned char ofPendra[16];
    const unsigned char text[] = "message digest";
    opensslMd5(text, sizeof text - 1, ofOpenSsl);
    Module("libpendra.so.1", RTLD_NOLOAD)
        .find<void (*)(const char*, unsigned, unsigned char*)>("MD5Digest")("message digest", 0, ofPendra);
    EXPECT_EQ(std::string(ofPendra, ofPendra + 16), std::string(ofOpenSsl, ofOpenSsl + 16));
    EXPECT_EQ(ofPendra[0], 0xF9); // RFC 1321: f96b697d7cb7938d525a2f31aaf161d0
}

} // namespace
} // namespace pendra::test
