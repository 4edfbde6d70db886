#include "common/trace.h"
#include "common/tree_access.h"
#include "setupdoc/record_access.h"
#include "setupdoc/run_state.h"

using namespace pendra;

namespace {

constexpr int32_t kUnknown = -1;

// With an automatic channel the first look remembers 0 and so reports a change at once: a host that has just started
// learns that way that the radio has chosen a channel.
bool channelChanged(int radio) {
    const char* name = WirelessTypeArray[radio];
    const int configured = readNodeInt(NodePath("/lan/wireless%s:1/channel", name)); // 0 is automatic
    int inUse = readNodeInt(NodePath("/lan/wireless%s:1/channelusing", name));
    if (configured < 0 || inUse <= 0) return false;
    if (configured > 0) inUse = configured;
    int32_t& remembered = runState.rememberedChannel[radio];
    if (remembered == kUnknown || configured > 0) remembered = configured;
    if (remembered == inUse) return false;
    traceLine("checkWlanChannelUsing", "Wlan_%s Channel:%d ChannelUsing:%d->%d\n", name, configured, remembered, inUse);
    const bool changed = remembered >= 0;
    remembered = inUse;
    return changed;
}

} // namespace

extern "C" int32_t checkWlanChannelUsing(void) {
    bool changed = false;
    for (int radio = 0; radio < kRadios; radio++)
        changed |= channelChanged(radio);
    return changed ? 1 : 0;
}
