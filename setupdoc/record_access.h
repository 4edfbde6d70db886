// What the tables and indexes of the setup record mean.
#pragma once

#include <algorithm>

#include "pendra/setupdoc.h"

namespace pendra {

// Rows of HardwareTypeArray.
enum Hardware : int32_t { kEthernet, kAdsl, kVdsl, kWwan80211, kWwanApn, kDsl };

// Rows of ConnTypeArray.
enum Connection : int32_t { kDhcp, kStatic, kPppoe, kPppoa };

// Rows of WlanEncrypModeArray.
enum EncryptionMode : int32_t { kNoEncryption, kWep, kWpa, kWpaWpa2, kWpa2 };

// Rows of WlanEncrypTypeArray.
enum EncryptionType : int32_t { kAuto, kOpen, kShared, kTkip, kAes, kNoType };

constexpr int kRadios = 2; // rows of WirelessTypeArray

// Version 1.0 selects the first-generation layout of several sections.
inline bool isFirstGeneration() {
    return zepXmlData.specVersion.version == 100;
}

inline bool isApCloning() {
    return zepXmlData.apCloningOnly != 0;
}

inline bool hasRadio(int radio) {
    return (radio == 0 ? zepXmlData.wlan24Feature : zepXmlData.wlan5Feature) != 0;
}

inline bool usesLogin(const ZepUpLink& upLink) {
    return upLink.connTypeIdx == kPppoe || upLink.connTypeIdx == kPppoa;
}

// A first-generation router that extends another network over its Ethernet uplink.
inline bool isEthernetExtender() {
    const ZepDevice& device = zepXmlData.device;
    return isFirstGeneration() && device.upLink.hardwareTypeIdx == kEthernet &&
           (device.ExtenderEnbl == 1 || device.ExtenderEnbl == 3);
}

inline bool usesExtenderSite() {
    return zepXmlData.device.upLink.hardwareTypeIdx == kWwan80211 || isEthernetExtender();
}

// A count from the tree or from a variable may be anything; the record holds 40 rules.
inline int32_t rulesInUse(const ZepAccessControl& access) {
    return std::clamp<int32_t>(access.acRuleCount, 0, ZEP_AC_RULE_MAX);
}

} // namespace pendra
