#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "common/bounded_text.h"
#include "common/number.h"
#include "common/shell.h"
#include "pendra/fwupgrade.h"

using namespace pendra;

namespace {

constexpr int kLineSize = 128;

// Reads a line of the table; one that is longer than the buffer is read away and counts as empty.
bool readLine(std::FILE* table, char (&line)[kLineSize]) {
    if (std::fgets(line, sizeof line, table) == nullptr) return false;
    if (std::strchr(line, '\n') != nullptr) return true;
    for (int next = std::fgetc(table); next != EOF; next = std::fgetc(table)) {
        line[0] = '\0';
        if (next == '\n') break;
    }
    return true;
}

// A line is: device, size in hexadecimal, erase size, name with its quotes. Returns -1 for another partition's line.
int32_t sizeInLine(const char* line, const char* partition) {
    char word[4][kLineSize];
    if (std::sscanf(line, "%127s %127s %127s %127s", word[0], word[1], word[2], word[3]) != 4) return -1;
    if (std::strcmp(word[3], partition) != 0) return -1;
    return clampToInt(static_cast<int64_t>(std::strtoul(word[1], nullptr, 16)));
}

int32_t findPartition(std::FILE* table, const char* partition) {
    char line[kLineSize];
    while (readLine(table, line)) {
        const int32_t size = sizeInLine(line, partition);
        if (size >= 0) return size;
    }
    return 0;
}

} // namespace

extern "C" {

int32_t getMTDPartSize(const char* partition) {
    if (partition == nullptr) return 0;
    std::FILE* table = std::fopen("/proc/mtd", "r");
    if (table == nullptr) {
        std::fputs("mtd support not enable?", stderr);
        return 0;
    }
    const int32_t size = findPartition(table, partition);
    std::fclose(table);
    return size;
}

int32_t mtd_write_bootloader(const char* path, int32_t offset, int32_t length) {
    if (path == nullptr) return -1;
    std::fputs("write bootloader", stdout);
    char command[512];
    formatText(command, "/bin/mtd_write -o %d -l %d write %s Bootloader", offset, length, path);
    return runShell(command);
}

int32_t mtd_write_firmware(const char*, int32_t, int32_t) {
    std::fputs("goahead: no CONFIG_RT2880_ROOTFS defined!", stderr);
    return -1;
}

int32_t write_flash_kernel_version(void) {
    char line[512];
    char command[sizeof line + 64];
    std::FILE* file = std::fopen("/proc/version", "r");
    if (file == nullptr) return -1;
    const bool hasLine = std::fgets(line, sizeof line, file) != nullptr;
    std::fclose(file);
    if (!hasLine) return -1;
    formatText(command, "nvram_set 2860 old_firmware \"%s\"", line); // the line keeps its newline
    return runShell(command);
}

} // extern "C"
