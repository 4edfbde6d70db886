// Firmware: the list document, an upgrade from the search to the flash, the image check and the flash helpers.
#include <csignal>

#include "roads.h"
#include "unit/fwupgrade/image.h"
#include "unit/fwupgrade/list_document.h"

namespace pendra::test {
namespace {

const std::string& list() {
    // The version stands behind any image path of these tests, which leaves it readable.
    static const std::string text = listDocument(firmware(
        macList(mac(kMac)), addresses("/PX/images/of/all/the/models/that/there/are/PX_FW2.0.bin", "/PX/notes.txt")));
    return text;
}

const std::string& image() {
    static const std::string bytes = makeImage(imageData(5056));
    return bytes;
}

void prepareUpgrade(const std::string& directory) {
    auto& tree = device().tree;
    tree["/bramble/tempdirecory"] = directory;
    tree["/bramble/scriptdirecory"] = "/userfs/bramble";
    tree["/fwupgradeinfo/devicemac"] = kMac;
    tree["/fwupgradeinfo/currfwfilename"] = kRunning;
    tree["/fwupgradeinfo/fwupgradefn"] = "upld.bin";
    tree["/fwupgradeinfo/urlgetcmd"] = "get \"$savefn\" \"$url\"";
    tree["/fwupgradeinfo/isEngFwServer"] = "0";
    storeAnew(directory + "/PX.xml", list());
    storeAnew(directory + "/upld.bin", image());
}

std::string act(char action) {
    do_FwUpgradeAction(static_cast<uint32_t>(action));
    return " " + std::to_string(fwXmlData.status);
}

// Nothing is fetched for real: the files are there already.
std::string walkUpgrade(const std::string& directory) {
    std::string statuses;
    for (const char action : {'0', '1', '2'})
        statuses += act(action);
    storeAnew(directory + "/zepfwtmp.txt", std::string("1 root grep ") + fwXmlData.downloadKey);
    for (int poll = 0; poll < 3 && fwXmlData.status == 3; poll++)
        statuses += act('3');
    statuses += act('4');
    if (fwXmlData.status == 5) alarm_handler_fwupd(SIGALRM);
    return statuses;
}

void prepareDefaults(const std::string& directory) {
    prepareUpgrade(directory);
    device().tree.erase("/fwupgradeinfo/fwupgradefn");
}

// The image's name settles in the tree.
std::string walkDefaults(const std::string&) {
    device().tree.erase("/fwupgradeinfo/fwupgradefn");
    return act('0');
}

std::string walkList(const std::string&) {
    std::string document = list();
    char image[128] = "";
    char notes[128] = "";
    const int32_t result = do_FwXml_Parser(document.data(), image, notes);
    return std::to_string(result) + " " + image + " " + notes;
}

void ownHandler(int) {}

// The caller's handler for SIGBUS is back afterwards.
std::string walkCheck(const std::string& directory) {
    struct sigaction own = {};
    struct sigaction found = {};
    struct sigaction before = {};
    own.sa_handler = ownHandler;
    sigaction(SIGBUS, &own, &before);
    char message[256] = "";
    const uint32_t result = check((directory + "/upld.bin").c_str(), 0, 5120, message);
    sigaction(SIGBUS, &before, &found);
    return std::to_string(result) + " " + message + (found.sa_handler == ownHandler ? " own" : " other") + " handler";
}

void prepareFlash(const std::string& directory) {
    storeAnew(directory + "/mtd", "dev:    size   erasesize  name\nmtd0: 00020000 00010000 \"" + std::string(120, 'l') +
                                      "\"\nmtd1: 00fe0000 00010000 \"Kernel\"\n");
    storeAnew(directory + "/version", "Linux version 3.10.14\n");
    device().redirectedFiles["/proc/mtd"] = directory + "/mtd";
    device().redirectedFiles["/proc/version"] = directory + "/version";
}

std::string walkFlash(const std::string&) {
    std::string answer = std::to_string(getMTDPartSize("\"Kernel\""));
    answer += " " + std::to_string(mtd_write_bootloader("/tmp/boot.bin", 0, 1024));
    answer += " " + std::to_string(mtd_write_firmware("/tmp/fw.bin", 0, 1024));
    return answer + " " + std::to_string(write_flash_kernel_version());
}

} // namespace

std::vector<Road> firmwareRoads() {
    return {
        {"FirmwareUpgrade", prepareUpgrade, walkUpgrade, " 0 2 3 4 5"},
        {"FirmwareDefaults", prepareDefaults, walkDefaults, " 0"},
        {"FirmwareList", prepareUpgrade, walkList,
         "2 http://fw.pendra.example/PX/images/of/all/the/models/that/there/are/PX_FW2.0.bin "
         "http://fw.pendra.example/PX/notes.txt"},
        {"ImageCheck", prepareUpgrade, walkCheck, "1  own handler"},
        {"FlashHelpers", prepareFlash, walkFlash, "16646144 0 -1 0"},
    };
}

} // namespace pendra::test
