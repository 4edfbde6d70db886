/**
 * @file
 * The wireless stations: listing them and disconnecting one.
 */
#ifndef PENDRA_HOST_STATIONS_H
#define PENDRA_HOST_STATIONS_H

#include <optional>
#include <string>
#include <vector>

#include "host/request.h"

namespace pendra::host {

struct Station {
    std::string mac;
    std::string interface;
    std::optional<int> signal; /**< dBm; nothing when no antenna hears it */
};

/** The stations of now. When they cannot be asked for, @p error tells why. */
std::vector<Station> currentStations(std::string& error);

/** GET /zep/stations: refreshes the station list and shows it. */
Answer getStations(Request& request);

/** POST /zep/stations, form "mac=...&ifname=...": disconnects one station. */
Answer postStations(Request& request);

} // namespace pendra::host

#endif
