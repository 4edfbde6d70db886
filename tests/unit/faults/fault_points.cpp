#include "fault_points.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysinfo.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iterator>

#include "pendra/platform.h"
#include "support/ioctl_request.h"

namespace pendra::test {
namespace {

// Each symbol that can fail, and how it says so; those first that are called most.
constexpr struct {
    const char* symbol;
    int error;
} kFaultPoints[] = {
    {"fclose", ENOSPC},  {"fopen", ENFILE},     {"fputs", EIO},        {"stat", EACCES},   {"sysinfo", EIO},
    {"system", EAGAIN},  {"xget_int", EIO},     {"xget_str", EIO},     {"calloc", ENOMEM}, {"close", EIO},
    {"fgetc", EIO},      {"fgets", EIO},        {"fprintf", EIO},      {"fread", EIO},     {"fstat", EIO},
    {"fwrite", ENOSPC},  {"ioctl", ENODEV},     {"mmap", ENOMEM},      {"munmap", ENOMEM}, {"open", ENFILE},
    {"puts", EIO},       {"setitimer", EIO},    {"sigaction", EINVAL}, {"signal", EINVAL}, {"socket", ENFILE},
    {"time", EOVERFLOW}, {"tcapi_commit", EIO}, {"tcapi_set", EIO},    {"xdel", EIO},      {"xset_int", EIO},
    {"xset_str", EIO},
};

size_t rowOf(const char* symbol) {
    for (size_t row = 0; row < std::size(kFaultPoints); row++)
        if (std::strcmp(kFaultPoints[row].symbol, symbol) == 0) return row;
    std::abort(); // a wrapper without a row
}

// A path of the tree that the library formats.
std::string formatted(const char* format, va_list arguments) {
    char text[1024];
    vsnprintf(text, sizeof text, format, arguments);
    return text;
}

// Standard streams are taken down here and not printed.
bool isStandard(const std::FILE* stream) {
    return stream == stdout || stream == stderr;
}

} // namespace

Faults& faults() {
    static Faults instance;
    return instance;
}

void Faults::start(const FaultPlan& plan) {
    active_ = true;
    plan_ = plan;
    calls_.clear();
    struck_.clear();
    counts_.assign(std::size(kFaultPoints), 0);
    said_.clear();
}

bool Faults::strikes(const char* symbol, const std::string& detail) {
    const size_t row = rowOf(symbol);
    if (!active_) return false;
    calls_.push_back({symbol, detail});
    const long ofSymbol = ++counts_[row];
    const long number = plan_.symbol.empty() ? static_cast<long>(calls_.size()) : ofSymbol;
    const bool planned = plan_.symbol.empty() || plan_.symbol == symbol;
    if (!planned || number < plan_.first || number > plan_.last) return false;
    struck_.push_back(calls_.size() - 1);
    errno = kFaultPoints[row].error;
    return true;
}

std::string Faults::unreturned() const {
    std::string text;
    for (const auto& [kind, number] : held)
        if (number != 0) text += (text.empty() ? "" : ", ") + kind + " " + std::to_string(number);
    return text;
}

std::vector<std::string> faultSymbols() {
    std::vector<std::string> symbols;
    for (const auto& point : kFaultPoints)
        symbols.emplace_back(point.symbol);
    return symbols;
}

std::string canonicalName(const std::string& spelling) {
    const size_t start = spelling.find_first_not_of('_');
    const size_t end = std::min(spelling.find("_time64"), spelling.find("64"));
    return spelling.substr(start, end == std::string::npos ? end : end - start);
}

} // namespace pendra::test

using namespace pendra::test;

namespace {

// Takes note of what a call gave the library, or took back from it.
template <typename Result>
Result taken(const char* kind, bool success, Result result) {
    if (success) ++faults().held[kind];
    return result;
}

template <typename Text>
bool takenDown(std::FILE* stream, const Text& text) {
    if (isStandard(stream)) faults().say(text);
    return isStandard(stream);
}

} // namespace

// What the library's calls are renamed to: calls.map. Each one does the real thing unless the plan lets it fail; what
// closes or gives back does so in any case, as the kernel does.
extern "C" {

void* fault_calloc(size_t count, size_t size) {
    if (faults().strikes("calloc", std::to_string(count * size))) return nullptr;
    void* const block = std::malloc(count * size);
    if (block != nullptr) std::memset(block, 0, count * size);
    return taken("memory", block != nullptr, block);
}

void fault_free(void* block) {
    if (block != nullptr) --faults().held["memory"];
    std::free(block);
}

std::FILE* fault_fopen(const char* path, const char* mode) {
    if (faults().strikes("fopen", std::string(mode) + " " + path)) return nullptr;
    std::FILE* const file = std::fopen(path, mode);
    return taken("FILE", file != nullptr, file);
}

int fault_fclose(std::FILE* file) {
    --faults().held["FILE"];
    const int result = std::fclose(file);
    return faults().strikes("fclose", "") ? EOF : result;
}

int fault_fgetc(std::FILE* file) {
    return faults().strikes("fgetc", "") ? EOF : std::fgetc(file);
}

char* fault_fgets(char* line, int size, std::FILE* file) {
    return faults().strikes("fgets", "") ? nullptr : std::fgets(line, size, file);
}

size_t fault_fread(void* bytes, size_t size, size_t count, std::FILE* file) {
    return faults().strikes("fread", "") ? 0 : std::fread(bytes, size, count, file);
}

int fault_fputs(const char* text, std::FILE* stream) {
    if (faults().strikes("fputs", text)) return EOF;
    return takenDown(stream, text) ? 0 : std::fputs(text, stream);
}

size_t fault_fwrite(const void* bytes, size_t size, size_t count, std::FILE* stream) {
    const std::string text(static_cast<const char*>(bytes), size * count);
    if (faults().strikes("fwrite", text)) return 0;
    return takenDown(stream, text) ? count : std::fwrite(bytes, size, count, stream);
}

int fault_fprintf(std::FILE* stream, const char* format, ...) {
    if (faults().strikes("fprintf", format)) return -1;
    va_list arguments;
    va_start(arguments, format);
    const int result = std::vfprintf(stream, format, arguments);
    va_end(arguments);
    return result;
}

int fault_puts(const char* text) {
    if (faults().strikes("puts", text)) return EOF;
    faults().say(std::string(text) + "\n");
    return 0;
}

void fault_perror(const char* prefix) {
    faults().say(std::string(prefix) + ": " + std::strerror(errno) + "\n");
}

int fault_open(const char* path, int flags, ...) {
    if (faults().strikes("open", path)) return -1;
    const int descriptor = ::open(path, flags);
    return taken("descriptor", descriptor >= 0, descriptor);
}

int fault_close(int descriptor) {
    --faults().held["descriptor"];
    const int result = ::close(descriptor);
    return faults().strikes("close", "") ? -1 : result;
}

int fault_stat(const char* path, struct stat* status) {
    return faults().strikes("stat", path) ? -1 : ::stat(path, status);
}

int fault_fstat(int descriptor, struct stat* status) {
    return faults().strikes("fstat", "") ? -1 : ::fstat(descriptor, status);
}

void* fault_mmap(void* address, size_t size, int protection, int flags, int descriptor, off_t offset) {
    if (faults().strikes("mmap", "")) return MAP_FAILED;
    void* const start = ::mmap(address, size, protection, flags, descriptor, offset);
    return taken("mapping", start != MAP_FAILED, start);
}

int fault_munmap(void* start, size_t size) {
    --faults().held["mapping"];
    const int result = ::munmap(start, size);
    return faults().strikes("munmap", "") ? -1 : result;
}

int fault_socket(int domain, int type, int protocol) {
    if (faults().strikes("socket", "")) return -1;
    const int descriptor = ::socket(domain, type, protocol);
    return taken("descriptor", descriptor >= 0, descriptor);
}

int fault_ioctl(int descriptor, IoctlRequest request, ...) {
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    if (faults().strikes("ioctl", static_cast<const char*>(argument))) return -1; // begins with the interface's name
    return ::ioctl(descriptor, request, argument);
}

int fault_system(const char* command) {
    return faults().strikes("system", command) ? -1 : std::system(command);
}

// Its first parameter is of a type of its own in some C libraries; the library has one timer.
int fault_setitimer(int which, const struct itimerval* value, struct itimerval* previous) {
    if (which != ITIMER_REAL) std::abort();
    return faults().strikes("setitimer", "") ? -1 : ::setitimer(ITIMER_REAL, value, previous);
}

int fault_sigaction(int number, const struct sigaction* action, struct sigaction* previous) {
    return faults().strikes("sigaction", std::to_string(number)) ? -1 : ::sigaction(number, action, previous);
}

void (*fault_signal(int number, void (*handler)(int)))(int) {
    return faults().strikes("signal", std::to_string(number)) ? SIG_ERR : std::signal(number, handler);
}

int fault_sysinfo(struct sysinfo* info) {
    return faults().strikes("sysinfo", "") ? -1 : ::sysinfo(info);
}

std::time_t fault_time(std::time_t* seconds) {
    return faults().strikes("time", "") ? static_cast<std::time_t>(-1) : std::time(seconds);
}

int fault_xget_str(char* destination, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const std::string path = formatted(format, arguments);
    va_end(arguments);
    return faults().strikes("xget_str", path) ? -1 : xget_str(destination, "%s", path.c_str());
}

int fault_xget_int(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const std::string path = formatted(format, arguments);
    va_end(arguments);
    return faults().strikes("xget_int", path) ? -1 : xget_int("%s", path.c_str());
}

int fault_xset_str(const char* value, const char* path) {
    return faults().strikes("xset_str", path) ? -1 : xset_str(value, path);
}

int fault_xset_int(int value, const char* path) {
    return faults().strikes("xset_int", path) ? -1 : xset_int(value, path);
}

int fault_xdel(const char* path) {
    return faults().strikes("xdel", path) ? -1 : xdel(path);
}

int fault_tcapi_set(const char* node, const char* attribute, const char* value) {
    return faults().strikes("tcapi_set", node) ? -1 : tcapi_set(node, attribute, value);
}

int fault_tcapi_commit(const char* node) {
    return faults().strikes("tcapi_commit", node) ? -1 : tcapi_commit(node);
}

// Other spellings, for 64-bit files and times.
#define SPELT_ALSO(spelling, name) decltype(fault_##name) fault_##spelling __attribute__((alias("fault_" #name)))
SPELT_ALSO(fopen64, fopen);
SPELT_ALSO(open64, open);
SPELT_ALSO(stat64, stat);
SPELT_ALSO(fstat64, fstat);
SPELT_ALSO(__stat_time64, stat);
SPELT_ALSO(__fstat_time64, fstat);
SPELT_ALSO(__setitimer_time64, setitimer);
SPELT_ALSO(__time64, time);

} // extern "C"

void pendra::test::freeBlock(void* block) {
    fault_free(block);
}
