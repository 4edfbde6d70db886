/**
 * @file
 * The chip vendor's configuration API (pendra/platform.h): the firmware upgrade is the one thing it can do.
 */
#include <string>
#include <string_view>

#include "pendra/platform.h"
#include "platform/device_state.h"
#include "platform/vendor/flash.h"
#include "platform/vendor/upgrade.h"

namespace {

using namespace pendra::device;

constexpr std::string_view upgradeNode = "System_Entry";
constexpr std::string_view upgradeAttribute = "upgrade_fw";

Upgrade upgrade;

std::string nodeText(const char* path) {
    std::string text;
    return deviceTree().get(path, text) == pendra::tree::Outcome::done ? text : std::string();
}

std::string announcedImage() {
    const std::string name = nodeText("/fwupgradeinfo/fwupgradefn");
    return nodeText("/bramble/tempdirecory") + "/" + (name.empty() ? "upld.bin" : name);
}

bool writeFirmware(const std::string& image, std::string& error) {
    return isImageAcceptable(image, error) && writeFlash(image, deviceFile("flash/firmware.bin"), error);
}

Upgrade refused(const std::string& reason) {
    appendToJournal("flash: refused firmware: " + reason);
    return {.state = UpgradeState::refused, .reason = reason};
}

Upgrade written(const std::string& image) {
    appendToJournal("flash: wrote firmware " + image);
    return {.state = UpgradeState::written};
}

} // namespace

const Upgrade& pendra::device::lastUpgrade() {
    return upgrade;
}

extern "C" int tcapi_set(const char* node, const char* attribute, const char* value) {
    const bool isKnown = node != nullptr && attribute != nullptr && value != nullptr && node == upgradeNode &&
                         attribute == upgradeAttribute;
    if (!isKnown || !isDeviceOpen()) return -1;
    upgrade = {.state = std::string_view(value) == "1" ? UpgradeState::announced : UpgradeState::none};
    return 0;
}

extern "C" int tcapi_commit(const char* node) {
    const bool isKnown = node != nullptr && node == upgradeNode;
    if (!isKnown || upgrade.state != UpgradeState::announced || !isDeviceOpen()) return -1;
    const std::string image = announcedImage();
    std::string error;
    upgrade = writeFirmware(image, error) ? written(image) : refused(error);
    return upgrade.state == UpgradeState::written ? 0 : -1;
}
