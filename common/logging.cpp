#include <sys/stat.h>
#include <sys/sysinfo.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "common/bounded_text.h"
#include "common/log_state.h"
#include "common/shell.h"
#include "common/trace.h"
#include "common/tree_access.h"
#include "pendra/common.h"

namespace pendra {

LogState logState;

namespace {

constexpr size_t kMessageSize = 5120;
constexpr size_t kConsoleSize = 256;
constexpr const char* kConsoleFile = "/proc/tc3162/dbg_msg";

using ConsolePrinter = int32_t (*)(const char* format, ...);

int32_t printToConsole(const char* format, va_list arguments) {
    if (format == nullptr) return 0;
    char text[kConsoleSize];
    std::vsnprintf(text, sizeof text, format, arguments);
    std::FILE* console = std::fopen(kConsoleFile, "w");
    if (console == nullptr) {
        std::puts("open /proc/tc3162/dbg_msg fail");
        return 0;
    }
    std::fputs(text, console);
    std::fclose(console);
    return 0;
}

// The name is built once: settings that change later have no effect on it.
void settleFileName() {
    if (logState.fileName[0] != '\0') return;
    if (isEmpty(daemon_log_path)) readNode(daemon_log_path, "/bramble/tempdirecory"); // the node is spelt so
    if (isEmpty(daemon_log_path)) copyText(daemon_log_path, "/tmp");
    if (isEmpty(daemon_log_header)) copyText(daemon_log_header, "DL");
    formatText(logState.fileName, "%s/%s_log.txt", daemon_log_path, daemon_log_header);
}

void rotateLogFile() {
    char command[256];
    formatText(command, "cp -f \"%s\" \"%s.old\"", logState.fileName, logState.fileName);
    runShell(command);
    formatText(command, "rm -f \"%s\"", logState.fileName);
    runShell(command);
}

// A missing file never rotates, however small the limit.
bool reachesLimit(size_t messageLength) {
    const int32_t size = getFileSize(logState.fileName);
    if (size < 0) return false;
    const uint64_t limit = static_cast<uint64_t>(daemon_log_file_size_k) * 1024;
    return static_cast<uint64_t>(size) + messageLength >= limit;
}

// Opened and closed for every message: no handle is kept.
void appendToFile(const char* message) {
    if (daemon_log_file_size_k <= 0) return;
    if (reachesLimit(std::strlen(message))) rotateLogFile();
    std::FILE* file = std::fopen(logState.fileName, "a");
    if (file == nullptr) return;
    if (logState.atLineStart != 0) std::fprintf(file, "%ld: ", static_cast<long>(sys_uptime_seconds()));
    std::fputs(message, file);
    std::fclose(file);
}

// Continuation text is interpreted once more as a format that has no arguments: "%%" becomes "%", and a conversion
// stays as it stands.
void collapsePercents(char (&text)[kConsoleSize], const char* message) {
    size_t length = 0;
    while (*message != '\0' && length < kConsoleSize - 1) {
        if (message[0] == '%' && message[1] == '%') message++;
        text[length++] = *message++;
    }
    text[length] = '\0';
}

void echoToConsole(ConsolePrinter print, const char* message) {
    if (logState.atLineStart != 0) {
        print("%s> %s", daemon_log_header, message);
        return;
    }
    char text[kConsoleSize];
    collapsePercents(text, message);
    print("%s", text);
}

// An empty message writes nothing, but the next one continues its line.
void emit(ConsolePrinter print, const char* message) {
    const size_t length = std::strlen(message);
    if (length > 0) {
        appendToFile(message);
        echoToConsole(print, message);
    }
    logState.atLineStart = length > 0 && message[length - 1] == '\n' ? 1 : 0;
}

} // namespace

void logArguments(int32_t level, const char* format, va_list arguments) {
    if (format == nullptr) return;
    char message[kMessageSize];
    message[0] = '\0';
    std::vsnprintf(message, sizeof message, format, arguments);
    settleFileName();
    emit(level == 0 ? msgPrintf : dbgPrintf, message);
}

} // namespace pendra

using namespace pendra;

extern "C" {

int32_t daemon_log_level = 5;
int32_t daemon_log_file_size_k = 250;
char daemon_log_header[32];
char daemon_log_path[64];

int32_t logPrintf(int32_t level, const char* format, ...) {
    if (daemon_log_level < level) return 0;
    va_list arguments;
    va_start(arguments, format);
    logArguments(level, format, arguments);
    va_end(arguments);
    return 0;
}

int32_t msgPrintf(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int32_t result = printToConsole(format, arguments);
    va_end(arguments);
    return result;
}

int32_t dbgPrintf(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int32_t result = printToConsole(format, arguments);
    va_end(arguments);
    return result;
}

uint32_t sys_uptime_seconds(void) {
    struct sysinfo info = {};
    if (sysinfo(&info) != 0) return 0;
    return static_cast<uint32_t>(info.uptime);
}

char* sys_uptime_sec_str(void) {
    static char text[24];
    formatText(text, "%ld", static_cast<long>(sys_uptime_seconds()));
    return text;
}

int32_t getFileSize(const char* path) {
    struct stat status = {};
    if (path == nullptr || stat(path, &status) != 0) return -1;
    return static_cast<int32_t>(std::min<int64_t>(status.st_size, INT32_MAX));
}

} // extern "C"
