/**
 * @file
 * The stations of the simulated wireless drivers, from a text file:
 *
 *     # interface  MAC                RSSI of antenna 0, 1, 2 in dBm, 0 when there is none
 *     ra0          02:11:22:33:44:55  -61 -58 0
 *     rai0 down
 *
 * An interface that is down refuses the driver's requests.
 */
#ifndef PENDRA_PLATFORM_KERNEL_STATIONS_H
#define PENDRA_PLATFORM_KERNEL_STATIONS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace pendra::device {

/** A wireless interface and the size of an entry in its driver's table. */
struct Radio {
    std::string_view interface;
    std::size_t entrySize;
};

/** @return null for the name of no radio. */
[[nodiscard]] const Radio* findRadio(std::string_view interface);

struct StationTable {
    bool isDown = false;
    std::vector<unsigned char> bytes;  ///< as the driver returns it
    std::vector<std::string> mistakes; ///< one line for each line that was not understood
};

[[nodiscard]] StationTable buildStationTable(const Radio& radio, std::string_view stations);

} // namespace pendra::device

#endif
