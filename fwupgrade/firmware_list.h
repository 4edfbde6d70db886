// The walkers of the firmware list document. Results: 0 malformed (stop), 1 no match (go on), 2 matched.
#pragma once

#include <cstdint>

namespace pendra {

enum ListResult : int32_t { kListMalformed = 0, kListNoMatch = 1, kListMatched = 2 };

// Which list of the document is walked, and what its entries are compared with.
enum ListMode : int32_t { kFirmwareList, kMacList, kMacRangeList, kMatchList };

int32_t do_FwRoot_Parser(char* document);
int32_t do_FwEntryList_Parser(char* start, int32_t length, int32_t mode);
int32_t do_FwFirmware_Parser(char* start, int32_t length);

} // namespace pendra
