#include "host/stations.h"

#include <charconv>
#include <nlohmann/json.hpp>

#include "host/forms.h"
#include "host/tree.h"
#include "pendra/apply.h"
#include "pendra/platform.h"

namespace pendra::host {

namespace {

using nlohmann::ordered_json;

constexpr uint32_t kUpdateStaRssi = 256;
constexpr uint32_t kDeauthSta = 512;

// A station without a signal has an empty text.
std::optional<int> signalStrength(const std::string& text) {
    int value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, fault] = std::from_chars(text.data(), end, value);
    if (fault != std::errc{} || stop != end) return std::nullopt;
    return value;
}

Station stationAt(int number) {
    const std::string path = "/runtime/easyroaming/connstainfo/sta:" + std::to_string(number);
    return {nodeText(path + "/mac"), nodeText(path + "/ifname"), signalStrength(nodeText(path + "/rssi"))};
}

ordered_json stationAsJson(const Station& station) {
    return {{"mac", station.mac},
            {"ifname", station.interface},
            {"rssi", station.signal ? ordered_json(*station.signal) : ordered_json(nullptr)}};
}

bool requestDisconnect(const std::string& mac, const std::string& interface) {
    return xset_str(mac.c_str(), "/runtime/easyroaming/deauthsta/mac") == 0 &&
           xset_str(interface.c_str(), "/runtime/easyroaming/deauthsta/ifname") == 0;
}

Answer notStored(const std::string& reason) {
    return textAnswer(MHD_HTTP_INSUFFICIENT_STORAGE, "The device could not store the request: " + reason);
}

} // namespace

std::vector<Station> currentStations(std::string& error) {
    std::vector<Station> stations;
    const bool stored = inTransaction(error, [] {
        exe_ExternalCall(kUpdateStaRssi);
        return true;
    });
    const int count = stored ? nodeNumber("/runtime/easyroaming/connstainfo/sta#") : 0;
    for (int number = 1; number <= count; ++number) {
        stations.push_back(stationAt(number));
    }
    return stations;
}

Answer getStations(Request&) {
    std::string error;
    const std::vector<Station> stations = currentStations(error);
    if (!error.empty()) return notStored(error);
    ordered_json list = ordered_json::array();
    for (const Station& station : stations) {
        list.push_back(stationAsJson(station));
    }
    return jsonAnswer({{"stations", list}});
}

Answer postStations(Request& request) {
    const std::string mac = formField(request.body, "mac");
    const std::string interface = formField(request.body, "ifname");
    if (!isMac(mac)) return textAnswer(MHD_HTTP_BAD_REQUEST, "The field \"mac\" must be like 00:11:22:33:44:55.");
    if (!isWirelessInterface(interface)) {
        return textAnswer(MHD_HTTP_BAD_REQUEST, "The field \"ifname\" must be ra0 or rai0.");
    }
    std::string error = "the configuration tree refused it";
    if (!inTransaction(error, [&] { return requestDisconnect(mac, interface); })) return notStored(error);
    // Outside the transaction: the driver's tool is run, and then the library takes the stored request away.
    exe_ExternalCall(kDeauthSta);
    return jsonAnswer({{"disconnected", {{"mac", mac}, {"ifname", interface}}}});
}

} // namespace pendra::host
