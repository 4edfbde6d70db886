/**
 * @file
 * The chip vendor's configuration API (pendra/platform.h): the firmware upgrade is the one thing it can do.
 */
#include <string>
#include <string_view>

#include "pendra/platform.h"
#include "platform/device_state.h"
#include "platform/vendor/flash.h"

namespace {

using namespace pendra::device;

constexpr std::string_view upgradeNode = "System_Entry";
constexpr std::string_view upgradeAttribute = "upgrade_fw";

bool upgradeIsAnnounced = false;

std::string nodeText(const char* path) {
    std::string text;
    return deviceTree().get(path, text) == pendra::tree::Outcome::done ? text : std::string();
}

std::string announcedImage() {
    const std::string name = nodeText("/fwupgradeinfo/fwupgradefn");
    return nodeText("/bramble/tempdirecory") + "/" + (name.empty() ? "upld.bin" : name);
}

} // namespace

extern "C" int tcapi_set(const char* node, const char* attribute, const char* value) {
    const bool isKnown = node && attribute && value && node == upgradeNode && attribute == upgradeAttribute;
    if (!isKnown || !isDeviceOpen()) return -1;
    upgradeIsAnnounced = std::string_view(value) == "1";
    return 0;
}

extern "C" int tcapi_commit(const char* node) {
    const bool isKnown = node && node == upgradeNode;
    if (!isKnown || !upgradeIsAnnounced || !isDeviceOpen()) return -1;
    upgradeIsAnnounced = false;
    const std::string image = announcedImage();
    std::string error;
    const bool written = isImageAcceptable(image, error) && writeFlash(image, deviceFile("flash/firmware.bin"), error);
    appendToJournal(written ? "flash: wrote firmware " + image : "flash: refused firmware: " + error);
    return written ? 0 : -1;
}
