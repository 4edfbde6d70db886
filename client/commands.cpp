#include "client/commands.h"

#include <strings.h>

#include <chrono>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <thread>

#include "client/progress_bar.h"
#include "client/text_file.h"

namespace pendra::client {

namespace {

using nlohmann::ordered_json;

// How long a device may stay silent after the wait it announced itself.
constexpr auto kPatience = std::chrono::seconds(30);

constexpr const char* kNoResult = "The device holds no result document.";

ExitCode tell(const ResultDocument& result) {
    std::printf("%s\n", resultInWords(result).c_str());
    return result.applied() ? kDone : kRefused;
}

// Scripts that restart the network may cut the way to the device for a moment.
std::optional<ResultDocument> pollResult(DeviceClient& device) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    for (;;) {
        try {
            return device.result();
        } catch (const Failure& failure) {
            if (failure.code() != kUnreachable || std::chrono::steady_clock::now() >= end) throw;
        }
        std::this_thread::sleep_for(std::chrono::seconds(1));
    }
}

void printStations(const std::vector<Station>& stations) {
    if (stations.empty()) {
        std::printf("No station is connected.\n");
        return;
    }
    std::printf("%-17s  %-9s  %s\n", "MAC", "Interface", "Signal");
    for (const Station& station : stations) {
        const std::string signal = station.rssi ? std::to_string(*station.rssi) + " dBm" : "unknown";
        std::printf("%-17s  %-9s  %s\n", printable(station.mac).c_str(), printable(station.interface).c_str(),
                    signal.c_str());
    }
}

void printStationsAsJson(const std::vector<Station>& stations) {
    ordered_json list = ordered_json::array();
    for (const Station& station : stations) {
        list.push_back({{"mac", station.mac},
                        {"ifname", station.interface},
                        {"rssi", station.rssi ? ordered_json(*station.rssi) : ordered_json(nullptr)}});
    }
    std::printf("%s\n", list.dump(2, ' ', false, ordered_json::error_handler_t::replace).c_str());
}

ExitCode disconnectStation(DeviceClient& device, const std::string& mac) {
    for (const Station& station : device.stations()) {
        if (strcasecmp(station.mac.c_str(), mac.c_str()) != 0) continue;
        device.disconnect(station);
        std::printf("Disconnected %s from %s.\n", printable(station.mac).c_str(), printable(station.interface).c_str());
        return kDone;
    }
    throw Failure(kRefused, "No station " + printable(mac) + " is connected.");
}

} // namespace

ExitCode showHello(DeviceClient& device) {
    const Hello hello = device.hello();
    std::printf("Library version:   %s\n", printable(hello.library).c_str());
    std::printf("Protocol version:  %s\n", printable(hello.protocol).c_str());
    std::printf("Document version:  %s\n", printable(hello.spec).c_str());
    std::printf("Uptime:            %u s\n", hello.uptime);
    std::printf("Your address:      %s\n", printable(hello.client).c_str());
    return kDone;
}

ExitCode showLogin(DeviceClient& device) {
    const Session session = device.login();
    std::printf("Admitted for %d seconds, session %s.\n", session.seconds, printable(session.id).c_str());
    return kDone;
}

ExitCode runSetup(DeviceClient& device, const SetupOptions& options) {
    const ResultDocument answer = device.setup(readTextFile(options.file), options.cloning);
    if (!answer.applied()) return tell(answer);
    if (answer.waitSeconds > 0) {
        std::fprintf(stderr, "The device needs %d seconds until its settings take effect.\n", answer.waitSeconds);
    }
    if (options.noWait) return tell(answer);
    waitWithBar(answer.waitSeconds);
    const auto result = pollResult(device);
    if (!result) throw Failure(kUnexpected, kNoResult);
    return tell(*result);
}

ExitCode showResult(DeviceClient& device) {
    const auto result = device.result();
    if (!result) throw Failure(kRefused, kNoResult);
    return tell(*result);
}

ExitCode runStations(DeviceClient& device, const StationOptions& options) {
    if (!options.disconnect.empty()) return disconnectStation(device, options.disconnect);
    const std::vector<Station> stations = device.stations();
    if (options.json) {
        printStationsAsJson(stations);
    } else {
        printStations(stations);
    }
    return kDone;
}

} // namespace pendra::client
