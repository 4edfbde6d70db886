// The current settings of the device, read from the configuration tree into the record.
#pragma once

#include <cstdint>

namespace pendra {

enum SnapshotMode : int32_t {
    kGatesOnly = 0, // versions, features, what may be configured, rules, directories: before a document
    kFull = 1       // and the current values: for the variable interface
};

void restore_XmlZepStatus(int32_t mode);

} // namespace pendra
