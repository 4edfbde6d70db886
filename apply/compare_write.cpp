#include <cstring>

#include "common/number.h"
#include "common/tree_access.h"
#include "pendra/apply.h"

using namespace pendra;

namespace {

constexpr size_t kComparedTextSize = 128;

} // namespace

extern "C" {

int32_t StrCmpWithXStr(const char* value, const char* path, int32_t compareOnly) {
    if (value == nullptr || path == nullptr) return 0;
    char stored[kComparedTextSize];
    readNode(stored, path);
    if (std::strcmp(stored, value) == 0) return 0;
    if (compareOnly == 0) xset_str(value, path);
    return 1;
}

int32_t IntCmpWithXStr(int32_t value, const char* path, int32_t compareOnly) {
    if (path == nullptr) return 0;
    char stored[kComparedTextSize];
    readNode(stored, path);
    if (parseInt(stored) == value) return 0;
    if (compareOnly == 0) xset_int(value, path);
    return 1;
}

int32_t IntMaxCmpWithXStr(int32_t value, const char* path, int32_t compareOnly, int32_t maximum, int32_t* overflow) {
    if (overflow != nullptr) *overflow = 0;
    if (path == nullptr || readNodeInt(path) == value) return 0;
    if (value > maximum) {
        if (overflow != nullptr) *overflow = 1;
        return 0;
    }
    if (compareOnly == 0) xset_int(value, path);
    return 1;
}

} // extern "C"
