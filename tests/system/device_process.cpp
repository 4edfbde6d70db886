#include "device_process.h"

#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>
#include <thread>

namespace pendra::test {

namespace {

constexpr std::string_view kAnnouncement = "pendrad: listening on ";

// Root passes over permissions by these two capabilities; a program it starts cannot get them back.
bool giveUpOverride() {
    if (::geteuid() != 0) return true;
    return ::prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE) == 0 && ::prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH) == 0;
}

// A write beyond the limit is to fail, as on a full disk, and not to end the program.
bool limitFiles(uint64_t bytes) {
    const rlimit limit{bytes, bytes};
    return ::signal(SIGXFSZ, SIG_IGN) != SIG_ERR && ::setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

bool restrict(const HostOptions& options) {
    if (options.bindByPermissions && !giveUpOverride()) return false;
    return options.largestFile == 0 || limitFiles(options.largestFile);
}

std::string awaitAnnouncement(Process& process) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (std::chrono::steady_clock::now() < end) {
        const bool running = process.isRunning(); // asked first: what it said before its end is read
        const std::string said = process.output();
        const size_t start = said.find(kAnnouncement);
        const size_t stop = said.find('\n', start);
        if (stop != std::string::npos)
            return said.substr(start + kAnnouncement.size(), stop - start - kAnnouncement.size());
        if (!running) break;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    throw std::runtime_error("pendrad does not listen: " + process.errors());
}

} // namespace

Launch hostLaunch(const DeviceFiles& files, const HostOptions& options) {
    return {.command = {PENDRA_HOST, "--tree", files.tree(), "--tmp", files.tmp(), "--scripts", files.scripts(),
                        "--device", files.hardware(), "--port", std::to_string(options.port), "--log-level",
                        std::to_string(options.logLevel), "--connections", std::to_string(options.connections)},
            .environment = {std::string("PENDRA_XTREE=") + PENDRA_XTREE},
            .prepare = [options] { return restrict(options); }};
}

DeviceProcess::DeviceProcess(const DeviceFiles& files, const HostOptions& options)
    : process_(hostLaunch(files, options)), url_(awaitAnnouncement(process_)) {}

uint16_t DeviceProcess::port() const {
    return static_cast<uint16_t>(std::stoi(url_.substr(url_.rfind(':') + 1)));
}

int DeviceProcess::stop() {
    signal(SIGTERM);
    return wait();
}

} // namespace pendra::test
