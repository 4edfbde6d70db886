#include "bench/fixture.h"

#include <cstdlib>
#include <cstring>

#include "bench/memory_device.h"
#include "bench/own_directory.h"
#include "common/log_state.h"
#include "pendra/pendra.h"

namespace pendra::bench {
namespace {

long allocations = 0;

} // namespace

const std::string& ownDirectory() {
    static const OwnDirectory directory;
    return directory.path();
}

long allocationsSoFar() {
    return allocations;
}

void prepareLibrary() {
    loadDevice();
    setNode("/bramble/tempdirecory", ownDirectory());
    setNode("/bramble/scriptdirecory", ownDirectory());
    zepXmlData = {};
    XmlErrMsg_LostKey = nullptr;
    daemon_log_level = 5;
    daemon_log_file_size_k = 1 << 20; // never rotates
    std::memset(daemon_log_path, 0, sizeof daemon_log_path);
    logState = {};
    init_ZepVar();
}

} // namespace pendra::bench

// The linker sends the library's calls here (--wrap), and those of this program, which makes none while it measures.
// Calls within libc, such as the buffer of an open file, are libc's own.
extern "C" {

void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* block, size_t size);
char* __real_strdup(const char* text);

void* __wrap_malloc(size_t size) {
    pendra::bench::allocations++;
    return __real_malloc(size);
}

void* __wrap_calloc(size_t count, size_t size) {
    pendra::bench::allocations++;
    return __real_calloc(count, size);
}

void* __wrap_realloc(void* block, size_t size) {
    pendra::bench::allocations++;
    return __real_realloc(block, size);
}

char* __wrap_strdup(const char* text) {
    pendra::bench::allocations++;
    return __real_strdup(text);
}

} // extern "C"
