/**
 * @file
 * The wireless stations: listing them and disconnecting one.
 */
#ifndef PENDRA_HOST_STATIONS_H
#define PENDRA_HOST_STATIONS_H

#include "host/request.h"

namespace pendra::host {

/** GET /zep/stations: refreshes the station list and shows it. */
Answer getStations(Request& request);

/** POST /zep/stations, form "mac=...&ifname=...": disconnects one station. */
Answer postStations(Request& request);

} // namespace pendra::host

#endif
