// Whether a radio has a channel.
#pragma once

#include "common/bounded_text.h"
#include "common/number.h"
#include "pendra/common.h"

namespace pendra {

// The list is "1,2,3,...": the channel's first three characters must stand between two of its commas, and no channel is
// below 0 (automatic).
inline bool isChannelInList(const char* channel, const char* list) {
    char wanted[8];
    char listed[129];
    formatText(wanted, ",%1.3s,", channel);
    formatText(listed, ",%s,", list);
    return !isEmpty(channel) && parseInt(channel) >= 0 && strstri(listed, wanted) != nullptr;
}

} // namespace pendra
