#include "host/record.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "host/tree.h"
#include "pendra/setupdoc.h"
#include "pendra/vars.h"
#include "platform/device.h"

namespace pendra::host {

namespace {

constexpr int kRadios = 2;

template <size_t Capacity>
void store(char (&field)[Capacity], const std::string& text) {
    std::snprintf(field, Capacity, "%s", text.c_str());
}

void loadRule(ZepAcRule& rule, const std::string& node, const std::string& path) {
    rule.Active = std::max(0, nodeNumber(node + "/active"));
    store(rule.MAC, nodeText(node + "/mac"));
    store(rule.path, path + "/AcRule");
}

// The library's own refresh looks for the rules at another node, where no device has any. Applying a form then would
// drop the rules it does not speak of.
void loadAccessRules(int radio) {
    ZepAccessControl& access = zepXmlData.device.wireless[radio].accessControl;
    const std::string node = std::string("/lan/wireless") + WirelessTypeArray[radio] + ":1/accesscontrol";
    access.WlAcMode = std::max(0, nodeNumber(node + "/wlacmode"));
    access.acRuleCount = std::clamp(nodeNumber(node + "/acrule#"), 0, ZEP_AC_RULE_MAX);
    for (int32_t rule = 0; rule < access.acRuleCount; ++rule) {
        loadRule(access.acRule[rule], node + "/acrule:" + std::to_string(rule + 1), access.path);
    }
}

// The last refresh: what it made of which tree. Pages and clients that only look ask again and again, and a read of the
// whole record costs more than all the rest of such a request.
struct LastRefresh {
    size_t treeVersion = 0;
    ZepXmlData record;

    [[nodiscard]] bool stillHolds() const {
        return treeVersion != 0 && treeVersion == device::treeVersion() &&
               // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): bytes between the fields cost one more refresh
               std::memcmp(&record, &zepXmlData, sizeof record) == 0;
    }
};
LastRefresh lastRefresh;

} // namespace

void refreshRecord() {
    if (lastRefresh.stillHolds()) return;
    lastRefresh.treeVersion = device::treeVersion();
    init_ZepVar();
    zepXmlData.apCloningOnly = 0; // left over from a document of that kind, it would hold for forms too
    for (int radio = 0; radio < kRadios; ++radio) {
        loadAccessRules(radio);
    }
    std::memcpy(&lastRefresh.record, &zepXmlData, sizeof zepXmlData);
}

std::string variableText(const std::string& name) {
    return getZepVar(name.c_str());
}

std::vector<AccessRule> accessRules(int radio) {
    const ZepAccessControl& access = zepXmlData.device.wireless[radio].accessControl;
    // A client may set any count; the record holds so many rules.
    const int32_t count = std::clamp<int32_t>(access.acRuleCount, 0, ZEP_AC_RULE_MAX);
    std::vector<AccessRule> rules;
    rules.reserve(static_cast<size_t>(count));
    for (int32_t rule = 0; rule < count; ++rule) {
        rules.push_back({access.acRule[rule].Active != 0, access.acRule[rule].MAC});
    }
    return rules;
}

void storeActivity(int radio, const std::vector<AccessRule>& rules) {
    ZepAccessControl& access = zepXmlData.device.wireless[radio].accessControl;
    for (size_t rule = 0; rule < std::min(rules.size(), size_t{ZEP_AC_RULE_MAX}); ++rule) {
        access.acRule[rule].Active = rules[rule].active ? 1 : 0;
    }
}

} // namespace pendra::host
