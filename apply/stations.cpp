#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "common/bounded_text.h"
#include "common/shell.h"
#include "common/trace.h"
#include "common/tree_access.h"
#include "pendra/apply.h"

using namespace pendra;

namespace {

constexpr unsigned long kGetMacTable = 0x8BFF; // RTPRIV_IOCTL_GET_MAC_TABLE_STRUCT
constexpr uint32_t kStationsMax = 32;
constexpr size_t kCountSize = 4;
constexpr size_t kTableSizeMax = kCountSize + size_t{kStationsMax} * 40;
constexpr const char* kStationList = "/runtime/easyroaming/connstainfo";

// Where the drivers' station entries hold what is used of them.
constexpr size_t kMacOffset = 1;
constexpr size_t kRssiOffset = 10;
constexpr int kAntennas = 3;

// The mixed case of the MAC formats differs between the two radios on purpose: the published texts are the interface.
struct Radio {
    const char* nameFormat;
    const char* macFormat;
    size_t entrySize;
};
constexpr Radio kRadios[] = {
    {"ra%d", "%02x:%02x:%02x:%02X:%02X:%02X", 24},
    {"rai%d", "%02x:%02x:%02x:%02X:%02x:%02x", 40},
};

// The request record of the wireless extensions, as far as the driver's private requests use it: the kernel copies all
// of it, so its size counts.
struct RequestData {
    void* pointer;
    uint16_t length;
    uint16_t flags;
};
struct WirelessRequest {
    char interfaceName[16];
    union {
        RequestData data;
        unsigned char size[16];
    };
};
static_assert(sizeof(WirelessRequest) == 32);

struct StationTable {
    alignas(8) unsigned char bytes[kTableSizeMax];

    [[nodiscard]] uint32_t count() const {
        uint32_t entries = 0;
        std::memcpy(&entries, bytes, sizeof entries);
        return std::min(entries, kStationsMax); // whatever the driver says
    }
};

bool logFailure(const char* message) {
    eventLine(kLogEvent, "%s", message);
    return false;
}

bool readTable(const char* interfaceName, StationTable& table) {
    table = {};
    const int descriptor = socket(AF_INET, SOCK_DGRAM, 0);
    if (descriptor < 0) return logFailure("ioctl sock failed!\n");
    WirelessRequest request = {};
    std::strncpy(request.interfaceName, interfaceName, sizeof request.interfaceName);
    request.data.pointer = table.bytes;
    const int result = ioctl(descriptor, kGetMacTable, &request);
    close(descriptor);
    return result >= 0 || logFailure("ioctl -> RTPRIV_IOCTL_GET_MAC_TABLE_STRUCT failed!\n");
}

// The strongest antenna; an antenna that reports 0 heard nothing.
int strongestSignal(const unsigned char* entry) {
    int strongest = 0;
    for (int antenna = 0; antenna < kAntennas; antenna++) {
        const int rssi = static_cast<int8_t>(entry[kRssiOffset + static_cast<size_t>(antenna)]);
        if (rssi != 0 && (strongest == 0 || strongest < rssi)) strongest = rssi;
    }
    return strongest;
}

void setLeaf(const char* station, const char* leaf, const char* text) {
    xset_str(text, NodePath("%s/%s", station, leaf));
}

void publish(const unsigned char* entry, const Radio& radio, const char* interfaceName, int number) {
    const NodePath station("%s/sta:%d", kStationList, number);
    const unsigned char* mac = entry + kMacOffset;
    char text[32];
    std::snprintf(text, sizeof text, radio.macFormat, mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
    setLeaf(station, "mac", text);
    setLeaf(station, "ifname", interfaceName);
    const int rssi = strongestSignal(entry);
    if (rssi == 0) eventLine(kLogEvent, "Get Station %s RSSI failed!\n", text);
    formatText(text, "%.0d", rssi); // with this precision a 0 is no text at all
    setLeaf(station, "rssi", text);
}

// Publishes a radio's stations from a number on; false when the driver could not be asked.
bool publishRadio(const Radio& radio, int& number) {
    char interfaceName[16];
    std::snprintf(interfaceName, sizeof interfaceName, radio.nameFormat, 0);
    StationTable table;
    if (!readTable(interfaceName, table)) return false;
    for (uint32_t index = 0; index < table.count(); index++)
        publish(table.bytes + kCountSize + index * radio.entrySize, radio, interfaceName, number++);
    return true;
}

} // namespace

extern "C" {

void do_updatestarssi(void) {
    if (readNodeInt(NodePath("%s/sta#", kStationList)) > 0) xdel(kStationList);
    int number = 1; // across both radios
    for (const Radio& radio : kRadios)
        if (!publishRadio(radio, number)) return;
}

void do_deauthsta(void) {
    char interfaceName[32];
    char mac[32];
    readNode(interfaceName, "/runtime/easyroaming/deauthsta/ifname");
    readNode(mac, "/runtime/easyroaming/deauthsta/mac");
    if (isEmpty(interfaceName) || isEmpty(mac)) return;
    char command[128];
    formatText(command, "/userfs/bin/iwpriv %s set DisConnectSta=%s", interfaceName, mac);
    eventLine(kLogEvent, "Disconnect WLAN station: interface=%s, mac=%s!\n", interfaceName, mac);
    runShell(command);
    xdel("/runtime/easyroaming/deauthsta");
}

} // extern "C"
