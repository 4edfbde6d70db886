/**
 * @file
 * The private request of the wireless drivers that returns the table of connected stations.
 */
#include <linux/wireless.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <string_view>

#include "platform/device_state.h"
#include "platform/file_access.h"
#include "platform/kernel/next_symbol.h"
#include "platform/kernel/stations.h"

namespace pendra::device {
namespace {

constexpr unsigned long getMacTable = SIOCIWFIRSTPRIV + 0x1F;

std::string_view interfaceName(const iwreq& request) {
    return {request.ifr_name, ::strnlen(request.ifr_name, sizeof request.ifr_name)};
}

int refuse(int reason) {
    errno = reason;
    return -1;
}

int answerMacTable(const iwreq& request) {
    const Radio* radio = findRadio(interfaceName(request));
    if (!radio) return refuse(ENODEV);
    const StationTable table = buildStationTable(*radio, readFile(deviceFile("stations.txt")));
    for (const std::string& mistake : table.mistakes)
        printOnConsole(mistake);
    if (table.isDown) return refuse(ENETDOWN);
    std::copy(table.bytes.begin(), table.bytes.end(), static_cast<unsigned char*>(request.u.data.pointer));
    return 0;
}

} // namespace
} // namespace pendra::device

extern "C" int ioctl(int fd, unsigned long request, ...) noexcept {
    using namespace pendra::device;
    static const auto next = nextSymbol<int(int, unsigned long, ...)>("ioctl");
    va_list arguments;
    va_start(arguments, request);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    if (request != getMacTable || !isDeviceOpen()) return next(fd, request, argument);
    return answerMacTable(*static_cast<const iwreq*>(argument));
}
