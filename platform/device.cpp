#include "platform/device.h"

#include <cstdlib>
#include <filesystem>

#include "platform/device_state.h"
#include "platform/file_access.h"
#include "platform/kernel/device_files.h"
#include "platform/tree/owner_lock.h"

namespace pendra::device {
namespace {

struct Device {
    OwnerLock lock;
    tree::Tree tree;
    std::string directory;
    bool requestIsOpen = false;
};

/** Never destroyed: the stand-ins are called until the very end of the process. */
Device& device() {
    static Device& theDevice = *new Device;
    return theDevice;
}

std::string absolutePath(const std::string& path) {
    std::error_code failure;
    const std::filesystem::path absolute = std::filesystem::absolute(path, failure);
    return failure ? path : absolute.lexically_normal().string();
}

bool makeDirectory(const std::string& directory, std::string& error) {
    std::error_code failure;
    std::filesystem::create_directories(directory, failure);
    if (!failure) return true;
    error = "cannot create the device directory " + directory + ": " + failure.message();
    return false;
}

/** The scripts that the library runs find their device by these. */
void tellScripts(const std::string& treeFile, const std::string& directory) {
    ::setenv("PENDRA_TREE", treeFile.c_str(), 1);
    ::setenv("PENDRA_DEVICE", directory.c_str(), 1);
}

} // namespace

bool isDeviceOpen() {
    return !device().directory.empty();
}

tree::Tree& deviceTree() {
    return device().tree;
}

std::string deviceFile(std::string_view name) {
    return device().directory + "/" + std::string(name);
}

void appendToJournal(std::string_view line) {
    appendToFile(deviceFile("journal.txt"), std::string(line) + "\n");
}

void printOnConsole(std::string_view line) {
    appendToFile(deviceFile("dbg_msg"), std::string(line) + "\n");
}

bool openDevice(const DeviceOptions& options, std::string& error) {
    closeDevice();
    const std::string treeFile = absolutePath(options.treeFile);
    const std::string directory = absolutePath(options.deviceDirectory);
    const bool isOpen = makeDirectory(directory, error) && device().lock.take(treeFile, error) &&
                        device().tree.open(treeFile, tree::Tree::Access::write, error);
    if (!isOpen) {
        closeDevice();
        return false;
    }
    device().directory = directory;
    createKernelFiles();
    tellScripts(treeFile, directory);
    return true;
}

void closeDevice() {
    abandonRequest();
    device().tree.close();
    device().lock.release();
    device().directory.clear();
}

bool beginRequest(std::string& error) {
    if (device().requestIsOpen) {
        error = "a request is open already";
        return false;
    }
    device().requestIsOpen = device().tree.begin(error);
    return device().requestIsOpen;
}

bool commitRequest(std::string& error) {
    device().requestIsOpen = false;
    return device().tree.commit(error);
}

std::size_t treeVersion() {
    return device().tree.version();
}

void abandonRequest() {
    device().requestIsOpen = false;
    device().tree.abandon();
}

} // namespace pendra::device
