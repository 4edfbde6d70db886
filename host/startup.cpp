#include "host/startup.h"

#include <cstdio>
#include <filesystem>

#include "host/report.h"
#include "host/tree.h"
#include "pendra/common.h"
#include "pendra/platform.h"

namespace pendra::host {

namespace {

constexpr const char* kTmpNode = "/bramble/tempdirecory";
constexpr const char* kScriptNode = "/bramble/scriptdirecory";

// The library builds each command that writes the result document in 128 bytes. The longest element path of a document,
// "Device/UpLinkConnection/ExtenderSite/ConnRefSiteBSSID", leaves this much of them to the directory.
constexpr size_t kSafeTmpDirectory = 21;

bool isDirectory(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::is_directory(path, ignored);
}

// Opening the device would create what is absent: a mistyped name must not become an empty device.
bool treeExists(const std::string& file, std::string& error) {
    std::error_code ignored;
    if (std::filesystem::is_regular_file(file, ignored)) return true;
    error = "there is no configuration tree " + file + " (xtree can load one from a text file)";
    return false;
}

bool storeNode(const std::string& value, const char* node, std::string& error) {
    if (value.empty() || nodeText(node) == value) return true;
    if (xset_str(value.c_str(), node) == 0) return true;
    error = "the configuration tree does not take \"" + value + "\" for " + node;
    return false;
}

bool storeDirectories(const Options& options, std::string& error) {
    return inTransaction(error, [&] {
        return storeNode(options.tmpDirectory, kTmpNode, error) &&
               storeNode(options.scriptDirectory, kScriptNode, error);
    });
}

bool directoriesKnown(std::string& error) {
    if (nodeText(kTmpNode).empty()) error = "the tree names no temporary directory; give --tmp";
    if (nodeText(kScriptNode).empty()) error = "the tree names no script directory; give --scripts";
    return error.empty();
}

// The device works without them, but not fully: say so at once.
void checkDirectories() {
    const std::string tmp = nodeText(kTmpNode);
    const std::string scripts = nodeText(kScriptNode);
    if (!isDirectory(tmp)) reportFault("there is no temporary directory " + tmp + "; results cannot be stored");
    if (!isDirectory(scripts)) reportFault("there is no script directory " + scripts + "; changes cannot take effect");
    if (tmp.size() > kSafeTmpDirectory) {
        reportFault("the path of the temporary directory is longer than " + std::to_string(kSafeTmpDirectory) +
                    " characters; result documents with long messages cannot be stored");
    }
}

void setUpLog(const Options& options) {
    daemon_log_level = options.logLevel;
    std::snprintf(daemon_log_header, sizeof daemon_log_header, "pendrad");
    std::snprintf(daemon_log_path, sizeof daemon_log_path, "%s", nodeText(kTmpNode).c_str());
}

} // namespace

bool startDevice(const Options& options, std::string& error) {
    if (!treeExists(options.treeFile, error)) return false;
    const device::DeviceOptions device = {.treeFile = options.treeFile, .deviceDirectory = options.deviceDirectory};
    if (!device::openDevice(device, error)) return false;
    if (!storeDirectories(options, error) || !directoriesKnown(error)) return false;
    setUpLog(options);
    checkDirectories();
    return true;
}

} // namespace pendra::host
