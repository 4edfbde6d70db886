#include "pliable_platform.h"

#include <cstdarg>
#include <cstdio>

#include "pendra/platform.h"

// The flat-file platform, compiled under these names.
extern "C" {
int flat_xget_str(char* destination, const char* pathFormat, ...);
int flat_xget_int(const char* pathFormat, ...);
int flat_xset_str(const char* value, const char* path);
int flat_xset_int(int value, const char* path);
int flat_xdel(const char* path);
int flat_tcapi_set(const char* node, const char* attribute, const char* value);
int flat_tcapi_commit(const char* node);
}

namespace pendra::test {
namespace {

std::string pathOf(const char* format, va_list arguments) {
    char path[512];
    std::vsnprintf(path, sizeof path, format, arguments);
    return platform().readPath(format, path);
}

} // namespace

PliablePlatform soundPlatform() {
    return {
        .readPath = [](const char*, const std::string& path) { return path; },
        .getText = [](char* text, const std::string& path) { return flat_xget_str(text, "%s", path.c_str()); },
        .getNumber = [](const std::string& path) { return flat_xget_int("%s", path.c_str()); },
        .setText = [](const std::string& text,
                      const std::string& path) { return flat_xset_str(text.c_str(), path.c_str()); },
        .setNumber = [](int number, const std::string& path) { return flat_xset_int(number, path.c_str()); },
        .remove = [](const std::string& path) { return flat_xdel(path.c_str()); },
        .announceUpgrade = [] { return flat_tcapi_set("System_Entry", "upgrade_fw", "1"); },
        .writeFirmware = [] { return flat_tcapi_commit("System_Entry"); },
    };
}

PliablePlatform& platform() {
    static PliablePlatform thePlatform = soundPlatform();
    return thePlatform;
}

} // namespace pendra::test

using pendra::test::pathOf;
using pendra::test::platform;

extern "C" {

int xget_str(char* destination, const char* pathFormat, ...) {
    va_list arguments;
    va_start(arguments, pathFormat);
    const std::string path = pathOf(pathFormat, arguments);
    va_end(arguments);
    return platform().getText(destination, path);
}

int xget_int(const char* pathFormat, ...) {
    va_list arguments;
    va_start(arguments, pathFormat);
    const std::string path = pathOf(pathFormat, arguments);
    va_end(arguments);
    return platform().getNumber(path);
}

int xset_str(const char* value, const char* path) {
    return platform().setText(value, path);
}

int xset_int(int value, const char* path) {
    return platform().setNumber(value, path);
}

int xdel(const char* path) {
    return platform().remove(path);
}

int tcapi_set(const char*, const char*, const char*) {
    return platform().announceUpgrade();
}

int tcapi_commit(const char*) {
    return platform().writeFirmware();
}

} // extern "C"
