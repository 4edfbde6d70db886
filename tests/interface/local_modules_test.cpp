/**
 * @file
 * A host that is linked with neither libpendra nor zlib and loads both in modules.
 */
#include "modules.h"
#include "sides.h"

namespace pendra::test {
namespace {

std::string pendraOwner(const Module& module) {
    return ownerOf(module.ask<pendraCrc32Function>("pendraCrc32"));
}

std::string zlibOwner(const Module& module) {
    return ownerOf(module.ask<zlibCrc32Function>("zlibCrc32"));
}

TEST(Crc32, OfLocalModulesPendraFirst_IsThatOfTheirLibraries) {
    const Module pendra(PENDRA_SIDE, RTLD_LOCAL);
    const Module zlib(ZLIB_SIDE, RTLD_LOCAL);
    EXPECT_EQ(pendraOwner(pendra), "libpendra.so.1");
    EXPECT_EQ(zlibOwner(zlib), "libz.so.1");
}

TEST(Crc32, OfLocalModulesZlibFirst_IsThatOfTheirLibraries) {
    const Module zlib(ZLIB_SIDE, RTLD_LOCAL);
    const Module pendra(PENDRA_SIDE, RTLD_LOCAL);
    EXPECT_EQ(pendraOwner(pendra), "libpendra.so.1");
    EXPECT_EQ(zlibOwner(zlib), "libz.so.1");
}

} // namespace
} // namespace pendra::test
