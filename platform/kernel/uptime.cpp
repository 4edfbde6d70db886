#include "platform/kernel/uptime.h"

#include <sys/sysinfo.h>

#include <charconv>

#include "platform/device_state.h"
#include "platform/file_access.h"
#include "platform/kernel/next_symbol.h"

namespace pendra::device {

long deviceUptime(long machineUptime, std::string_view setting) {
    const bool isOffset = setting.starts_with('+');
    if (isOffset) setting.remove_prefix(1);
    setting = setting.substr(0, setting.find_last_not_of(" \t\r\n") + 1);
    long seconds = 0;
    const char* end = setting.data() + setting.size();
    const auto [stop, failure] = std::from_chars(setting.data(), end, seconds);
    if (failure != std::errc() || stop != end || seconds < 0) return machineUptime;
    return isOffset ? machineUptime + seconds : seconds;
}

} // namespace pendra::device

extern "C" int sysinfo(struct sysinfo* info) noexcept {
    using namespace pendra::device;
    static const auto next = nextSymbol<int(struct sysinfo*)>("sysinfo");
    const int result = next(info);
    if (result == 0 && isDeviceOpen()) info->uptime = deviceUptime(info->uptime, readFile(deviceFile("uptime")));
    return result;
}
