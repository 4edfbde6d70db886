#include "platform/kernel/stations.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <optional>
#include <sstream>

namespace pendra::device {
namespace {

constexpr Radio radios[] = {{"ra0", 24}, {"rai0", 40}};

constexpr std::uint32_t mostStations = 32;

// The table: a count, then entries that begin alike for both drivers.
constexpr std::size_t macOffset = 1;
constexpr std::size_t associationOffset = 7;
constexpr std::size_t rssiOffset = 10;

struct Station {
    std::array<unsigned char, 6> mac;
    std::array<std::int8_t, 3> rssi;
};

bool parseMac(std::string_view text, std::array<unsigned char, 6>& mac) {
    if (text.size() != 17) return false;
    for (std::size_t i = 0; i < mac.size(); ++i) {
        const char* digits = text.data() + 3 * i;
        const auto [end, failure] = std::from_chars(digits, digits + 2, mac[i], 16);
        if (failure != std::errc() || end != digits + 2 || (i + 1 < mac.size() && *end != ':')) return false;
    }
    return true;
}

std::optional<Station> parseStation(const std::string& mac, std::istringstream& rssiWords) {
    Station station{};
    if (!parseMac(mac, station.mac)) return std::nullopt;
    for (std::int8_t& rssi : station.rssi) {
        int value = 0;
        if (!(rssiWords >> value) || value < INT8_MIN || value > INT8_MAX) return std::nullopt;
        rssi = static_cast<std::int8_t>(value);
    }
    std::string more;
    return (rssiWords >> more) ? std::nullopt : std::optional(station);
}

void addEntry(StationTable& table, const Radio& radio, const Station& station) {
    std::uint32_t count = 0;
    std::memcpy(&count, table.bytes.data(), sizeof count);
    if (count == mostStations) return;
    ++count;
    std::memcpy(table.bytes.data(), &count, sizeof count);

    const std::size_t start = table.bytes.size();
    table.bytes.resize(start + radio.entrySize);
    unsigned char* entry = table.bytes.data() + start;
    std::copy(station.mac.begin(), station.mac.end(), entry + macOffset);
    entry[associationOffset] = static_cast<unsigned char>(count);
    std::memcpy(entry + rssiOffset, station.rssi.data(), station.rssi.size());
}

/** @return false when the line says nothing that a driver understands. */
bool readLine(const std::string& line, const Radio& radio, StationTable& table) {
    std::istringstream words(line.substr(0, line.find('#')));
    std::string interface;
    std::string mac;
    if (!(words >> interface)) return true;
    if (!findRadio(interface) || !(words >> mac)) return false;

    const bool isMine = interface == radio.interface;
    if (mac == "down") {
        table.isDown = table.isDown || isMine;
        return true;
    }
    const std::optional<Station> station = parseStation(mac, words);
    if (station && isMine) addEntry(table, radio, *station);
    return station.has_value();
}

} // namespace

const Radio* findRadio(std::string_view interface) {
    const auto* radio = std::find_if(std::begin(radios), std::end(radios),
                                     [&](const Radio& each) { return each.interface == interface; });
    return radio == std::end(radios) ? nullptr : radio;
}

StationTable buildStationTable(const Radio& radio, std::string_view stations) {
    StationTable table;
    table.bytes.resize(sizeof(std::uint32_t));
    std::istringstream lines{std::string(stations)};
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number)
        if (!readLine(line, radio, table))
            table.mistakes.push_back("stations.txt, line " + std::to_string(number) + ": not a station: " + line);
    return table;
}

} // namespace pendra::device
