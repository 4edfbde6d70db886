#include "apply/external_calls.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>

#include "common/bounded_text.h"
#include "common/shell.h"
#include "common/trace.h"
#include "common/tree_access.h"
#include "pendra/apply.h"
#include "pendra/platform.h"
#include "setupdoc/record_access.h"

namespace pendra {
namespace {

enum SyncId : uint32_t {
    kWanResync = 1,
    kWlanResync = 4,
    kWlan5gResync = 8,
    kDeviceResync = 16,
    kCfgSaveToFlash = 32,
    kWlanSiteSurvey = 64,
    kFwUpgrade = 128,
    kUpdateStaRssi = 256,
    kDeauthSta = 512,
};

constexpr size_t kCommandSize = 256;
constexpr int kScriptsMax = 2;

// One row for each sync id, in the order in which they are run.
struct ExternalCall {
    uint32_t id;
    const char* logLine;
    int32_t waitSeconds;
    const char* scripts[kScriptsMax] = {};
    void (*action)() = nullptr;
};

constexpr ExternalCall kCalls[] = {
    {kWanResync, "[%s,WanResync]", 20, {"uplink.sh", "wan_resync.sh"}}, // no line end, on purpose
    {kWlanResync, "[%s,WlanResync]\n", 20, {"wlan_resync.sh"}},
    {kWlan5gResync, "[%s,Wlan5gResync]\n", 20, {"wlan5g_resync.sh"}},
    {kDeviceResync, "[%s,DeviceResync]\n", 5, {"device_resync.sh"}},
    {kCfgSaveToFlash, "[%s,CfgSaveToFlash]\n", 6},
    {kWlanSiteSurvey, "[%s,WlanSiteSurvey]\n", 3},
    {kFwUpgrade, "[%s,FwUpgrade]\n", 180},
    {kUpdateStaRssi, "[%s,UpdateStaRssi]\n", 1, {}, do_updatestarssi},
    {kDeauthSta, "[%s,DeauthSta]\n", 1, {}, do_deauthsta},
};

void runScript(const char* directory, const char* script) {
    char command[kCommandSize];
    formatText(command, "%s/%s", directory, script);
    runShell(command);
}

void run(const ExternalCall& call, const char* scriptDirectory) {
    logPrintf(kLogInfo, call.logLine, "exe_ExternalCall");
    for (const char* script : call.scripts)
        if (script != nullptr) runScript(scriptDirectory, script);
    if (call.action != nullptr) call.action();
}

void readImagePath(char (&path)[kCommandSize]) {
    char directory[kCommandSize]; // what is cut here would not fit the path either
    char name[kCommandSize];
    readNode(directory, "/bramble/tempdirecory"); // the node is spelt so
    readNode(name, "/fwupgradeinfo/fwupgradefn");
    formatText(path, "%s/%s", directory, name);
}

// Without a file name the path is a directory, which is no image.
bool isImageThere(const char* path) {
    struct stat status = {};
    if (stat(path, &status) != 0) {
        std::perror("stat");
        return false;
    }
    return !S_ISDIR(status.st_mode);
}

void armHandOver() {
    fwupdtimer = {{0, 0}, {3, 0}};
    setitimer(ITIMER_REAL, &fwupdtimer, nullptr);
    std::signal(SIGALRM, alarm_handler_fwupd);
}

int32_t handOverFirmware() {
    char image[kCommandSize];
    readImagePath(image);
    if (isImageThere(image) && tcapi_set("System_Entry", "upgrade_fw", "1") == 0) {
        armHandOver();
        return 0;
    }
    char command[kCommandSize];
    formatText(command, "rm %s", image);
    logPrintf(kLogInfo, "command: %s\n", command);
    runShell(command);
    return -1;
}

uint32_t requestedIds(const ZepDevice& device) {
    uint32_t ids = 0;
    if (device.upLink.restart != 0) ids |= kWanResync;
    if (device.wireless[0].restart != 0) ids |= kWlanResync;
    if (device.wireless[1].restart != 0) ids |= kWlan5gResync;
    if (device.deviceChanged != 0) ids |= kDeviceResync;
    if (zepXmlData.saveflag != 0) ids |= kCfgSaveToFlash;
    return ids;
}

// Saving adds nothing, although it has a wait of its own: the dispatcher only logs it.
int32_t waitFor(uint32_t ids) {
    int32_t seconds = 0;
    for (const ExternalCall& call : kCalls)
        if ((ids & call.id) != 0 && call.id != kCfgSaveToFlash) seconds += get_ExternalCall_UseSec(call.id);
    return seconds;
}

} // namespace

void compute_ExeFlag() {
    if (zepXmlData.exeflag != 0) zepXmlData.pre_exeflag = zepXmlData.exeflag;
    const ZepDevice& device = zepXmlData.device;
    // A survey excludes every other action.
    const bool surveys = !isApCloning() && device.wlanSurveyRestart != 0;
    const uint32_t ids = surveys ? static_cast<uint32_t>(kWlanSiteSurvey) : requestedIds(device);
    zepXmlData.exeflag = static_cast<int32_t>(ids);
    zepXmlData.exeWaitSec = waitFor(ids);
    eventLine(kLogInfo, "exeflag=%d, exeWaitSec=%d\n", zepXmlData.exeflag, zepXmlData.exeWaitSec);
}

} // namespace pendra

using namespace pendra;

extern "C" {

struct itimerval fwupdtimer = {{0, 0}, {3, 0}};

int32_t get_ExternalCall_UseSec(uint32_t syncId) {
    for (const ExternalCall& call : kCalls)
        if (call.id == syncId) return call.waitSeconds;
    logPrintf(kLogError, "[%s]Unknow sync_id=%d\n", "get_ExternalCall_UseSec", static_cast<int>(syncId));
    return 0;
}

// The firmware hand-over ends the call: stations are not looked at while the image is about to be written.
int32_t exe_ExternalCall(uint32_t syncIds) {
    char scriptDirectory[kCommandSize];                   // what is cut here would not fit a command either
    readNode(scriptDirectory, "/bramble/scriptdirecory"); // the node is spelt so
    for (const ExternalCall& call : kCalls) {
        if ((syncIds & call.id) == 0) continue;
        run(call, scriptDirectory);
        if (call.id == kFwUpgrade) return handOverFirmware();
    }
    return 0;
}

void alarm_handler_fwupd(int signalNumber) {
    static_cast<void>(signalNumber);
    if (tcapi_commit("System_Entry") != 0) {
        logPrintf(kLogInfo, "The firmware is illegal!!\r\n");
        return;
    }
    logPrintf(kLogInfo,
              "WARNING:\nIt will take some minutes writing flash.\nDon't reboot modem within 5 minutes.\n"
              "The modem will reboot itself after finishing writing flash.\r\n");
}

} // extern "C"
