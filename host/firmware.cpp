#include "host/firmware.h"

#include <sys/stat.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "host/fetch_log.h"
#include "host/files.h"
#include "host/forms.h"
#include "host/report.h"
#include "host/tree.h"
#include "pendra/fwupgrade.h"
#include "platform/vendor/upgrade.h"

namespace pendra::host {

namespace {

using nlohmann::ordered_json;

// The library takes any character; every other one would only be written into its status document.
constexpr std::string_view kActions = "01249";
constexpr char kStartOver = '0';
constexpr char kSearch = '1';

constexpr const char* kStatusName = "zepcheckfw.xml";
constexpr const char* kNotesName = "zepfwnotes.xml";
constexpr const char* kLogSuffix = ".log"; // what the tree's fetch command adds to the name of a file

// The last status document when it could not be stored in the temporary directory, else empty.
std::string unstoredStatus;

std::string temporaryFile(const std::string& name) {
    return nodeText("/bramble/tempdirecory") + "/" + name;
}

std::string imageFile() {
    const std::string name = nodeText("/fwupgradeinfo/fwupgradefn");
    return temporaryFile(name.empty() ? "upld.bin" : name);
}

// The part of the running firmware's name before the first "_" names the list document.
std::string listFile() {
    const std::string name = nodeText("/fwupgradeinfo/currfwfilename");
    return temporaryFile(name.substr(0, name.find('_')) + ".xml");
}

void removeWithLog(const std::string& file) {
    unlink(file.c_str());
    unlink((file + kLogSuffix).c_str());
}

// What an earlier upgrade has left must not pass for an answer of this one. The library removes the rest itself.
void clearTraces(char action) {
    unlink(temporaryFile(kStatusName).c_str());
    if (action != kStartOver && action != kSearch) return;
    removeWithLog(listFile());
    if (action != kStartOver) return;
    unlink((imageFile() + kLogSuffix).c_str());
    removeWithLog(temporaryFile(kNotesName));
}

bool isComplete(const std::string& document) {
    return document.ends_with("</root>\n");
}

// The library does not look at the outcome of the commands that write the file, so the answer of an action comes from
// its status when there is no room for the document.
std::string statusOfAction() {
    const std::string path = temporaryFile(kStatusName);
    std::string stored = readFile(path).value_or("");
    unstoredStatus.clear();
    if (isComplete(stored)) return stored;
    reportFault("the status document could not be stored in " + path);
    unstoredStatus = "<?xml version=\"1.0\" ?><root><result>" + std::to_string(fwXmlData.status) + "</result></root>\n";
    return unstoredStatus;
}

ordered_json sizeOf(const std::string& file) {
    struct stat status = {};
    if (stat(file.c_str(), &status) != 0) return nullptr;
    return status.st_size;
}

ordered_json announcedSize() {
    const auto length = announcedLength(readFile(imageFile() + kLogSuffix).value_or(""));
    if (!length) return nullptr;
    return *length;
}

std::string foundImage() {
    const std::string address = nodeText("/fwupgradeinfo/newfw/fileurl");
    const std::string path = address.substr(0, address.find('?'));
    return path.substr(path.rfind('/') + 1);
}

const char* upgradeText(device::UpgradeState state) {
    switch (state) {
        case device::UpgradeState::announced:
            return "announced";
        case device::UpgradeState::written:
            return "written";
        case device::UpgradeState::refused:
            return "refused";
        case device::UpgradeState::none:
            break;
    }
    return "none";
}

} // namespace

// Outside a transaction of the tree, unlike other requests: a search fetches a document and may take its seconds, and
// each of the few writes of an action stands for itself. After an end in between the next search writes them anew.
Answer postFirmware(Request& request) {
    const std::string action = formField(request.query, "act");
    if (action.size() != 1 || kActions.find(action) == std::string_view::npos) {
        return textAnswer(MHD_HTTP_BAD_REQUEST, "The field \"act\" must be 0, 1, 2, 4 or 9.");
    }
    clearTraces(action.front());
    do_FwUpgradeAction(static_cast<unsigned char>(action.front()));
    return xmlAnswer(statusOfAction());
}

Answer getFirmwareStatus(Request&) {
    if (!unstoredStatus.empty()) return xmlAnswer(unstoredStatus);
    const auto status = readFile(temporaryFile(kStatusName));
    if (!status) return textAnswer(MHD_HTTP_NOT_FOUND, "There is no status document.");
    return xmlAnswer(*status);
}

// They come from another machine, so a browser is told to show them as they are.
Answer getReleaseNotes(Request&) {
    const auto notes = readFile(temporaryFile(kNotesName));
    if (!notes || notes->empty()) return textAnswer(MHD_HTTP_NOT_FOUND, "There are no release notes.");
    return {.body = *notes};
}

Answer getFirmwareState(Request&) {
    const device::Upgrade& upgrade = device::lastUpgrade();
    return jsonAnswer({{"status", fwXmlData.status},
                       {"image", foundImage()},
                       {"list", sizeOf(listFile())},
                       {"bytes", sizeOf(imageFile())},
                       {"total", announcedSize()},
                       {"upgrade", upgradeText(upgrade.state)},
                       {"reason", upgrade.reason}});
}

} // namespace pendra::host
