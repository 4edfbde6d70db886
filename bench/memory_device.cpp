#include "bench/memory_device.h"

#include <dlfcn.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string_view>
#include <unordered_map>

#include "bench/own_directory.h"
#include "pendra/platform.h"
#include "platform/tree/text_form.h"

namespace pendra::bench {

DeviceCounts deviceCounts;
bool runsCommands = false;

namespace {

// Found by a text that is no std::string, so that a read allocates nothing.
struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};
std::unordered_map<std::string, std::string, TextHash, std::equal_to<>> nodes;

constexpr std::size_t kPathSize = 1024;

const std::string* findNode(const char* format, va_list arguments) {
    char path[kPathSize];
    std::vsnprintf(path, sizeof path, format, arguments);
    deviceCounts.reads++;
    const auto found = nodes.find(std::string_view(path));
    return found == nodes.end() ? nullptr : &found->second;
}

// Keeps "name#" beside the elements "name:N", so that reading a count is a read like any other.
void storeCount(const std::string& path) {
    const std::size_t colon = path.rfind(':');
    if (colon == std::string::npos) return;
    const std::string list = path.substr(0, colon);
    std::set<std::string> elements;
    for (const auto& [other, text] : nodes)
        if (other.starts_with(list + ":")) elements.insert(other.substr(0, other.find('/', colon)));
    nodes.erase(list + "#");
    if (!elements.empty()) nodes[list + "#"] = std::to_string(elements.size());
}

int runReally(const char* command) {
    char shell[] = "sh";
    char option[] = "-c";
    std::string text = command;
    char* arguments[] = {shell, option, text.data(), nullptr};
    pid_t child = 0;
    if (posix_spawn(&child, "/bin/sh", nullptr, nullptr, arguments, environ) != 0) return -1;
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR)
        continue;
    return status;
}

} // namespace

void setNode(const std::string& path, const std::string& text) {
    const bool isNew = nodes.insert_or_assign(path, text).second;
    if (isNew) storeCount(path);
}

void loadDevice() {
    tree::Listing listing;
    std::string error;
    if (!tree::parseListing(textOfFile(PENDRA_BENCH_TREE), listing, error)) {
        std::fprintf(stderr, "bench: %s: %s\n", PENDRA_BENCH_TREE, error.c_str());
        std::exit(EXIT_FAILURE);
    }
    nodes.clear();
    for (const auto& [path, line] : listing)
        setNode(path, line.text);
    deviceCounts = {};
}

} // namespace pendra::bench

using namespace pendra::bench;

extern "C" {

int xget_str(char* destination, const char* pathFormat, ...) {
    va_list arguments;
    va_start(arguments, pathFormat);
    const std::string* text = findNode(pathFormat, arguments);
    va_end(arguments);
    if (text == nullptr) return -1;
    std::memcpy(destination, text->c_str(), text->size() + 1);
    return 0;
}

int xget_int(const char* pathFormat, ...) {
    va_list arguments;
    va_start(arguments, pathFormat);
    const std::string* text = findNode(pathFormat, arguments);
    va_end(arguments);
    return text == nullptr ? -1 : std::atoi(text->c_str());
}

int xset_str(const char* value, const char* path) {
    deviceCounts.writes++;
    setNode(path, value);
    return 0;
}

int xset_int(int value, const char* path) {
    return xset_str(std::to_string(value).c_str(), path);
}

int xdel(const char* path) {
    deviceCounts.writes++;
    const std::string below = std::string(path) + "/";
    const auto removed =
        std::erase_if(nodes, [&](const auto& node) { return node.first == path || node.first.starts_with(below); });
    storeCount(path);
    return removed > 0 ? 0 : -1;
}

int tcapi_set(const char*, const char*, const char*) {
    return 0;
}

int tcapi_commit(const char*) {
    return 0;
}

// The kernel's debug console is there, as on a device.
std::FILE* fopen(const char* file, const char* mode) {
    static const auto next = reinterpret_cast<std::FILE* (*)(const char*, const char*)>(dlsym(RTLD_NEXT, "fopen"));
    return next(std::strcmp(file, "/proc/tc3162/dbg_msg") == 0 ? "/dev/null" : file, mode);
}

int system(const char* command) {
    deviceCounts.commands++;
    return runsCommands ? runReally(command) : 0;
}

} // extern "C"
