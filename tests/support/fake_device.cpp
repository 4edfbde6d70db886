#include "support/fake_device.h"

#include <dlfcn.h>
#include <ftw.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysinfo.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <set>
#include <sstream>

#include "common/log_state.h"
#include "setupdoc/run_state.h"
#include "support/ioctl_request.h"
#include "vars/form_intake.h"

namespace pendra::test {
namespace {

constexpr const char* kConsoleFile = "/proc/tc3162/dbg_msg";
constexpr unsigned long kGetMacTable = 0x8BFF;

template <typename Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

std::string formatPath(const char* format, va_list arguments) {
    char path[1024];
    vsnprintf(path, sizeof path, format, arguments);
    return path;
}

bool startsWith(const std::string& text, const std::string& prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

// The elements "name:N" there are, whether they have a text of their own or only nodes below them.
int countElements(const std::string& listPath) {
    std::set<std::string> elements;
    const std::string prefix = listPath + ":";
    for (const auto& [path, value] : device().tree)
        if (startsWith(path, prefix))
            elements.insert(path.substr(prefix.size(), path.find('/', prefix.size()) - prefix.size()));
    return static_cast<int>(elements.size());
}

int readInt(const std::string& path) {
    device().reads.push_back(path);
    if (!path.empty() && path.back() == '#' && !device().has(path)) {
        const int count = countElements(path.substr(0, path.size() - 1));
        return count > 0 ? count : -1;
    }
    const auto found = device().tree.find(path);
    return found == device().tree.end() ? -1 : static_cast<int>(std::strtol(found->second.c_str(), nullptr, 10));
}

int readText(char* destination, const std::string& path) {
    device().reads.push_back(path);
    const auto found = device().tree.find(path);
    const std::string text = found == device().tree.end() ? "" : found->second.substr(0, XNODE_TEXT_MAX - 1);
    std::memcpy(destination, text.c_str(), text.size() + 1);
    return found == device().tree.end() ? -1 : 0;
}

int deleteSubtree(const std::string& root) {
    auto& tree = device().tree;
    const size_t before = tree.size();
    for (auto node = tree.begin(); node != tree.end();)
        node = node->first == root || startsWith(node->first, root + "/") ? tree.erase(node) : std::next(node);
    return tree.size() < before ? 0 : -1;
}

int runForReal(const char* command) {
    const pid_t child = fork();
    if (child == 0) {
        execl("/bin/sh", "sh", "-c", command, static_cast<char*>(nullptr));
        _exit(127);
    }
    int status = -1;
    waitpid(child, &status, 0);
    return status;
}

// A console whose writes end up in the device's record.
std::FILE* openConsole() {
    device().consoleCalls.emplace_back();
    const cookie_io_functions_t functions = {nullptr,
                                             [](void*, const char* bytes, size_t size) -> ssize_t {
                                                 device().console.append(bytes, size);
                                                 device().consoleCalls.back().append(bytes, size);
                                                 return static_cast<ssize_t>(size);
                                             },
                                             nullptr, nullptr};
    return fopencookie(nullptr, "w", functions);
}

const char* redirect(const char* path) {
    const auto found = device().redirectedFiles.find(path);
    return found == device().redirectedFiles.end() ? path : found->second.c_str();
}

size_t entrySize(const std::string& interfaceName) {
    return interfaceName == "rai0" ? 40 : 24;
}

// The table of the drivers: the number of entries, then the entries with MAC at 1 and antennas at 10.
void fillTable(const std::string& interfaceName, unsigned char* table) {
    const auto& stations = device().stations[interfaceName];
    const auto lie = device().stationCounts.find(interfaceName);
    const uint32_t count = lie == device().stationCounts.end() ? static_cast<uint32_t>(stations.size()) : lie->second;
    std::memcpy(table, &count, sizeof count);
    unsigned char* entry = table + 4;
    for (const Station& station : stations) {
        std::memset(entry, 0x7F, entrySize(interfaceName)); // what the library must not read
        std::memcpy(entry + 1, station.mac, sizeof station.mac);
        std::memcpy(entry + 10, station.rssi, sizeof station.rssi);
        entry += entrySize(interfaceName);
    }
}

int answerMacTable(void* argument) {
    struct Request {
        char name[16];
        unsigned char* table;
    };
    const auto* request = static_cast<const Request*>(argument);
    char hex[16];
    snprintf(hex, sizeof hex, "%lX", kGetMacTable);
    device().ioctls.push_back(std::string(request->name) + " " + hex);
    if (device().stations.count(request->name) == 0) {
        errno = ENODEV;
        return -1;
    }
    fillTable(request->name, request->table);
    return 0;
}

int removeEntry(const char* path, const struct stat*, int, struct FTW*) {
    return std::remove(path);
}

} // namespace

FakeDevice& device() {
    static FakeDevice instance;
    return instance;
}

std::vector<std::string> FakeDevice::commands() const {
    std::vector<std::string> found;
    for (const std::string& event : events)
        if (startsWith(event, "run ")) found.push_back(event.substr(4));
    return found;
}

Events FakeDevice::treeWrites() const {
    Events found;
    for (const std::string& event : events)
        if (startsWith(event, "set ") || startsWith(event, "del ")) found.push_back(event);
    return found;
}

bool FakeDevice::wrote(const std::string& path) const {
    for (const std::string& event : events)
        if (startsWith(event, "set " + path + "=")) return true;
    return false;
}

std::string FakeDevice::node(const std::string& path) const {
    const auto found = tree.find(path);
    return found == tree.end() ? "" : found->second;
}

void FakeDevice::forget() {
    events.clear();
    reads.clear();
    console.clear();
    consoleCalls.clear();
    ioctls.clear();
}

void resetLibrary() {
    clientAuthListDel(&clientauthinfo, nullptr, nullptr, 1);
    cur_authinfo = nullptr;
    timer_list = nullptr;
    zepXmlData = {};
    XmlErrMsg_LostKey = nullptr;
    fwupdtimer = {{0, 0}, {3, 0}};
    std::memset(string, 0, sizeof string);
    runState = {};
    variableState = {};
    fwXmlData = {};
    daemon_log_level = 5;
    daemon_log_file_size_k = 250;
    std::memset(daemon_log_header, 0, sizeof daemon_log_header);
    std::memset(daemon_log_path, 0, sizeof daemon_log_path);
    logState = {};
}

DeviceTest::DeviceTest() {
    char name[] = "/tmp/pendra-test-XXXXXX";
    directory_ = mkdtemp(name);
    resetLibrary();
    device() = {};
    snprintf(daemon_log_path, sizeof daemon_log_path, "%s", directory_.c_str());
}

DeviceTest::~DeviceTest() {
    resetLibrary();
    device() = {};
    nftw(directory_.c_str(), removeEntry, 16, FTW_DEPTH | FTW_PHYS);
}

std::string DeviceTest::logText() const {
    return readFile(logFile());
}

std::vector<std::string> DeviceTest::logLines() const {
    std::istringstream text(logText());
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) {
        const size_t digits = line.find_first_not_of("0123456789");
        const bool stamped = digits != std::string::npos && digits > 0 && line.compare(digits, 2, ": ") == 0;
        lines.push_back(stamped ? line.substr(digits + 2) : line);
    }
    return lines;
}

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

void writeFile(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
}

} // namespace pendra::test

using pendra::test::device;

// What the platform supplies, and what of libc a device answers differently.
extern "C" {

int xget_str(char* destination, const char* pathFormat, ...) {
    va_list arguments;
    va_start(arguments, pathFormat);
    const std::string path = pendra::test::formatPath(pathFormat, arguments);
    va_end(arguments);
    return pendra::test::readText(destination, path);
}

int xget_int(const char* pathFormat, ...) {
    va_list arguments;
    va_start(arguments, pathFormat);
    const std::string path = pendra::test::formatPath(pathFormat, arguments);
    va_end(arguments);
    return pendra::test::readInt(path);
}

int xset_str(const char* value, const char* path) {
    device().events.push_back(std::string("set ") + path + "=" + value);
    if (device().refuseWrites) return -1;
    device().tree[path] = value;
    return 0;
}

int xset_int(int value, const char* path) {
    return xset_str(std::to_string(value).c_str(), path);
}

int xdel(const char* path) {
    device().events.push_back(std::string("del ") + path);
    return device().refuseWrites ? -1 : pendra::test::deleteSubtree(path);
}

int tcapi_set(const char* node, const char* attribute, const char* value) {
    device().events.push_back(std::string("tcapi_set ") + node + " " + attribute + " " + value);
    return device().tcapiSetResult;
}

int tcapi_commit(const char* node) {
    device().events.push_back(std::string("tcapi_commit ") + node);
    return device().tcapiCommitResult;
}

int system(const char* command) {
    device().events.push_back(std::string("run ") + command);
    return device().runShell ? pendra::test::runForReal(command) : device().shellStatus;
}

int sysinfo(struct sysinfo* info) {
    *info = {};
    info->uptime = static_cast<decltype(info->uptime)>(device().uptime);
    return 0;
}

int socket(int domain, int type, int protocol) {
    if (device().socketFails) {
        errno = EMFILE;
        return -1;
    }
    const auto realSocket = pendra::test::next<int (*)(int, int, int)>("socket");
    return realSocket(domain, type, protocol);
}

int ioctl(int descriptor, pendra::test::IoctlRequest request, ...) {
    va_list arguments;
    va_start(arguments, request);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    if (static_cast<unsigned long>(request) == pendra::test::kGetMacTable)
        return pendra::test::answerMacTable(argument);
    return pendra::test::next<int (*)(int, pendra::test::IoctlRequest, void*)>("ioctl")(descriptor, request, argument);
}

sighandler_t signal(int number, sighandler_t handler) {
    device().events.push_back("signal " + std::to_string(number));
    const sighandler_t previous = device().alarmHandler;
    if (number == SIGALRM) device().alarmHandler = handler;
    return previous;
}

unsigned alarm(unsigned seconds) {
    device().events.push_back("alarm " + std::to_string(seconds));
    return 0;
}

// The linker sends every calloc of the program here.
void* __real_calloc(size_t count, size_t size);
void* __wrap_calloc(size_t count, size_t size);
void* __wrap_calloc(size_t count, size_t size) {
    if (!device().failNextAllocation) return __real_calloc(count, size);
    device().failNextAllocation = false;
    return nullptr;
}

int setitimer(int which, const struct itimerval* value, struct itimerval*) {
    char text[96];
    snprintf(text, sizeof text, "setitimer %d %ld.%06ld every %ld.%06ld", which,
             static_cast<long>(value->it_value.tv_sec), static_cast<long>(value->it_value.tv_usec),
             static_cast<long>(value->it_interval.tv_sec), static_cast<long>(value->it_interval.tv_usec));
    device().events.emplace_back(text);
    return 0;
}

FILE* fopen(const char* path, const char* mode) {
    if (std::strcmp(path, pendra::test::kConsoleFile) == 0 && !device().redirectedFiles.count(path)) {
        if (!device().consoleMissing) return pendra::test::openConsole();
        errno = ENOENT;
        return nullptr;
    }
    static const auto realFopen = pendra::test::next<FILE* (*)(const char*, const char*)>("fopen");
    return realFopen(pendra::test::redirect(path), mode);
}

} // extern "C"
