#include "platform/kernel/device_files.h"

#include <sys/stat.h>

#include <cstdio>
#include <string>
#include <string_view>

#include "platform/device_state.h"
#include "platform/file_access.h"
#include "platform/kernel/next_symbol.h"
#include "platform/vendor/flash_layout.h"

namespace pendra::device {
namespace {

struct KernelFile {
    std::string_view path;
    const char* name; ///< in the device's directory
    bool isConsole;
};
constexpr KernelFile kernelFiles[] = {
    {"/proc/tc3162/dbg_msg", "dbg_msg", true},
    {"/proc/mtd", "mtd", false},
    {"/proc/version", "version", false},
};

/** The console starts over beyond this size, as the ring buffer of a kernel does. */
constexpr off_t consoleSize = 1 << 20;

const KernelFile* findKernelFile(const char* path) {
    for (const KernelFile& file : kernelFiles)
        if (path && file.path == path) return &file;
    return nullptr;
}

/** Every message opens the console with "w", which in a kernel file drops nothing of what was shown before. */
const char* consoleMode(const std::string& file) {
    struct stat status {};
    return ::stat(file.c_str(), &status) == 0 && status.st_size > consoleSize ? "we" : "ae";
}

std::string partitionTable() {
    std::string table = "dev:    size   erasesize  name\n";
    int number = 0;
    for (const Partition& partition : flashLayout) {
        char line[64];
        std::snprintf(line, sizeof line, "mtd%d: %08lx %08lx \"%s\"\n", number++, partition.size, eraseSize,
                      partition.name);
        table += line;
    }
    return table;
}

void createWhenAbsent(const std::string& file, std::string_view content) {
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0) appendToFile(file, content);
}

} // namespace

void createKernelFiles() {
    createWhenAbsent(deviceFile("mtd"), partitionTable());
    createWhenAbsent(deviceFile("version"),
                     "Linux version 3.18.21 (build@pendra.example) (gcc version 4.9.3) #7 SMP preempt\n");
}

} // namespace pendra::device

extern "C" FILE* fopen(const char* filename, const char* modes) {
    using namespace pendra::device;
    static const auto next = nextSymbol<FILE*(const char*, const char*)>("fopen");
    const KernelFile* kernelFile = isDeviceOpen() ? findKernelFile(filename) : nullptr;
    if (!kernelFile) return next(filename, modes);
    const std::string file = deviceFile(kernelFile->name);
    return next(file.c_str(), kernelFile->isConsole ? consoleMode(file) : modes);
}
