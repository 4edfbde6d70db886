/**
 * @file
 * What has become of the last firmware image that was handed over.
 */
#ifndef PENDRA_PLATFORM_VENDOR_UPGRADE_H
#define PENDRA_PLATFORM_VENDOR_UPGRADE_H

#include <string>

namespace pendra::device {

enum class UpgradeState { none, announced, written, refused };

struct Upgrade {
    UpgradeState state = UpgradeState::none;
    std::string reason = {}; /**< of a refusal: one line for a person */
};

/** Since this process has started. */
[[nodiscard]] const Upgrade& lastUpgrade();

} // namespace pendra::device

#endif
