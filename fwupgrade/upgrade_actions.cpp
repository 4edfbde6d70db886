// The upgrade as a state machine: one action character a call, one status document after each.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "common/bounded_text.h"
#include "common/keywords.h"
#include "common/shell.h"
#include "common/trace.h"
#include "common/tree_access.h"
#include "fwupgrade/firmware_list.h"
#include "pendra/apply.h"
#include "pendra/fwupgrade.h"

using namespace pendra;

namespace {

enum Status : int32_t {
    kInitial = 0,
    kNoneFound = 1,
    kFound = 2,
    kDownloading = 3,
    kDownloaded = 4,
    kStarted = 5,
    kListBroken = -1,
    kUpgradeFailed = -2,
    kListNotFetched = -5,
};

constexpr uint32_t kFwUpgrade = 128; // sync id of the hand-over
constexpr size_t kCommandSize = 256;
constexpr size_t kReadSize = 4096; // of a list document or process list, NUL included
constexpr const char* kStatusFile = "zepcheckfw.xml";
constexpr const char* kNotesFile = "zepfwnotes.xml";
constexpr const char* kProcessFile = "zepfwtmp.txt";
constexpr const char* kBackground = " &";

template <size_t Capacity>
void setPath(char (&path)[Capacity], const char* fileName) {
    formatText(path, "%s/%s", zepXmlData.tmpPath, fileName);
}

// Reading it with its default also settles it in the tree, where the hand-over looks for it.
void readImageName(char (&name)[kKeywordTextSize]) {
    getXNode(name, "/fwupgradeinfo/fwupgradefn", "upld.bin");
}

void setImagePath(char (&path)[128]) {
    char name[kKeywordTextSize];
    readImageName(name);
    setPath(path, name);
}

// Reads a file up to the buffer's size; false when it cannot be opened.
bool readFile(const char* path, char (&text)[kReadSize]) {
    std::FILE* file = std::fopen(path, "r");
    if (file == nullptr) return false;
    const size_t length = std::fread(text, 1, sizeof text - 1, file);
    text[length] = '\0';
    std::fclose(file);
    return true;
}

// ---- fetching ----

// Puts the device's own fetch command together.
void makeFetchCommand(char (&command)[kCommandSize], const char* target, const char* address, bool trimmed = false) {
    char pattern[kCommandSize];
    char withTarget[kCommandSize];
    getXNode(pattern, "/fwupgradeinfo/urlgetcmd", "wget -O \"$savefn\" \"$url\"");
    changeKeywordBounded(withTarget, sizeof withTarget, trimmed ? trim(pattern) : pattern, "$savefn", target);
    changeKeywordBounded(command, sizeof command, withTarget, "$url", address);
}

// A command that fills its buffer is cut, but it still goes to the background.
void sendToBackground(char (&command)[kCommandSize]) {
    const size_t room = sizeof command - 1 - std::strlen(kBackground);
    copyTextBounded(command + std::min(std::strlen(command), room), std::strlen(kBackground) + 1, kBackground);
}

void runTraced(const char* command) {
    runShell(command);
    logPrintf(kLogTrace, "cmd=%s\n", command);
}

// The first characters of the command without its quotes: the process list shows the command's words so.
void rememberDownload(const char* command) {
    char* next = fwXmlData.downloadKey;
    for (size_t index = 0; index < sizeof fwXmlData.downloadKey - 1 && command[index] != '\0'; index++)
        if (command[index] != '\'' && command[index] != '"') *next++ = command[index];
    *next = '\0';
}

// ---- actions ----

void startOver(uint32_t) {
    char image[kKeywordTextSize];
    readImageName(image);
    const char* const directory = zepXmlData.tmpPath;
    char command[kReadSize];
    formatText(command, "rm -f \"%s/%s\" \"%s/%s\" \"%s/%s\" \"%s/%s\"", directory, kStatusFile, directory, image,
               directory, kNotesFile, directory, kProcessFile);
    runTraced(command);
    xdel("/fwupgradeinfo/newfw");
    fwXmlData.status = kInitial;
}

void fetchNotes() {
    char address[128];
    char target[128];
    char command[kCommandSize];
    readNode(address, "/fwupgradeinfo/newfw/notesurl");
    setPath(target, kNotesFile);
    makeFetchCommand(command, target, address);
    sendToBackground(command);
    runShell(command);
}

// Fetches the list document into a file; the model prefix of the running firmware's name says which.
void fetchList(char (&listFile)[128]) {
    char prefix[128];
    char address[128];
    char command[kCommandSize];
    readNode(prefix, "/fwupgradeinfo/currfwfilename");
    prefix[std::strcspn(prefix, "_")] = '\0';
    readNode(zepXmlData.tmpPath, "/bramble/tempdirecory"); // always anew here; the node is spelt so
    formatText(listFile, "%s/%s.xml", zepXmlData.tmpPath, prefix);
    formatText(address, "%s/%s/%s.xml", get_FwServerWebSite(), prefix, prefix);
    makeFetchCommand(command, listFile, address);
    runTraced(command);
}

void search(uint32_t) {
    char listFile[128];
    fetchList(listFile);
    char document[kReadSize];
    if (!readFile(listFile, document)) {
        fwXmlData.status = kListNotFetched;
        return;
    }
    const int32_t result = do_FwXml_Parser(document, nullptr, nullptr);
    if (result == kListMatched) fetchNotes();
    fwXmlData.status = result == kListMatched ? kFound : result == kListNoMatch ? kNoneFound : kListBroken;
}

void download(uint32_t) {
    char target[128];
    char address[128];
    char command[kCommandSize];
    setImagePath(target);
    readNode(address, "/fwupgradeinfo/newfw/fileurl");
    makeFetchCommand(command, target, address, true);
    rememberDownload(command);
    sendToBackground(command);
    runShell(command);
    fwXmlData.status = kDownloading;
}

// The process list is one line. When the first process that names the download is the grep for it, nothing else does.
bool hasEnded(const char* processes, const char* download) {
    const char* firstDownload = std::strstr(processes, download);
    const char* firstGrep = std::strstr(processes, " grep ");
    return firstDownload != nullptr && firstGrep != nullptr && firstGrep < firstDownload;
}

void poll(uint32_t) {
    char listFile[128];
    char command[kCommandSize];
    setPath(listFile, kProcessFile);
    formatText(command, "echo `ps aux |grep \"%s\"` > \"%s\"", fwXmlData.downloadKey, listFile);
    runShell(command);
    char processes[kReadSize];
    if (!readFile(listFile, processes)) return;
    char searched[sizeof fwXmlData.downloadKey + 1];
    formatText(searched, " %s", fwXmlData.downloadKey);
    logPrintf(kLogTrace, "==BGN=='%s'\n%s\n==END==\n", searched, processes);
    if (hasEnded(processes, searched)) fwXmlData.status = kDownloaded;
}

void upgrade(uint32_t) {
    if (exe_ExternalCall(kFwUpgrade) != 0) {
        fwXmlData.status = kUpgradeFailed;
        return;
    }
    char seconds[16];
    formatText(seconds, "%d", get_ExternalCall_UseSec(kFwUpgrade));
    write_TmpXmlFile(kStatusFile, "time", seconds, 0);
    fwXmlData.status = kStarted;
}

void reportOnly(uint32_t) {}

// The status stays. "-3" closes the document, so that the report that follows starts it anew.
void refuse(uint32_t action) {
    const int character = static_cast<int>(action);
    logPrintf(kLogTrace, "===FWUPGRADE_ACT_UNKNOW===,act='%c',%d\n", character, character);
    char text[32];
    formatText(text, "Status=%d, Act=%c", fwXmlData.status, character);
    write_TmpXmlFile(kStatusFile, "erractmsg", text, 0);
    write_TmpXmlFile(kStatusFile, "result", "-3", 1);
    logPrintf(kLogTrace, "zepcheckfw.xml wrong act=%c\n", character);
}

// ---- the state machine: the first rule that fits a call is carried out ----

constexpr int32_t kAnyStatus = INT32_MAX;
constexpr uint32_t kAnyAction = UINT32_MAX;

struct ActionRule {
    uint32_t action;
    int32_t status;
    void (*carryOut)(uint32_t action);
    const char* traced = nullptr;
};

constexpr ActionRule kRules[] = {
    {'0', kAnyStatus, startOver, "ACT_INIT"},   {'1', kInitial, search, "ACT_SEARCH"},
    {'2', kFound, download, "ACT_DOWNLOAD"},    {kAnyAction, kDownloading, poll, "BINGETTING"},
    {'4', kDownloaded, upgrade, "ACT_UPGRADE"}, {'9', kAnyStatus, reportOnly},
    {kAnyAction, kAnyStatus, refuse},
};

const ActionRule& ruleFor(uint32_t action) {
    const ActionRule* rule = kRules;
    while ((rule->action != kAnyAction && rule->action != action) ||
           (rule->status != kAnyStatus && rule->status != fwXmlData.status))
        rule++;
    return *rule; // the last one fits every call
}

// ---- the report ----

// "PX_FW1.02.bin" has version "1.02": what follows the first "_FW" as far as it is digits and dots. Returns where the
// version starts in the address and ends it there; null without one.
char* cutVersion(char* component) {
    char* marker = std::strstr(component, "_FW");
    if (marker == nullptr) return nullptr;
    char* version = marker + 3;
    version[std::strspn(version, "0123456789.")] = '\0';
    return version;
}

char* lastComponent(char* address) {
    address[std::strcspn(address, "?")] = '\0';
    char* slash = std::strrchr(address, '/');
    return slash == nullptr ? address : slash + 1;
}

// A missing image, or one that no device could hold, counts as 0.
void formatSize(char (&text)[32], const char* image) {
    constexpr int32_t kLargest = 20000000;
    const int32_t bytes = getFileSize(image);
    if (bytes < 1000 || bytes > kLargest) {
        formatText(text, "%d", bytes < 0 || bytes > kLargest ? 0 : bytes);
        return;
    }
    const float kilobytes = static_cast<float>(bytes) / 1024.0F;
    if (kilobytes < 1000.0F)
        formatText(text, "%.2f K", static_cast<double>(kilobytes));
    else
        formatText(text, "%.2f M", static_cast<double>(kilobytes / 1024.0F));
}

void reportImage() {
    char buffer[128];
    readNode(buffer, "/fwupgradeinfo/newfw/fileurl");
    const char* version = cutVersion(lastComponent(buffer));
    // The image's path goes into the buffer that the version stands in, and the version is read from there afterwards:
    // clients have always been shown the characters of the path from that position on.
    setImagePath(buffer);
    char size[32];
    formatSize(size, buffer);
    write_TmpXmlFile(kStatusFile, "fwsize", size, 0);
    write_TmpXmlFile(kStatusFile, "fwver", version == nullptr ? "" : version, 0);
}

void report() {
    if (fwXmlData.status >= kFound) reportImage();
    char status[16];
    formatText(status, "%d", fwXmlData.status);
    write_TmpXmlFile(kStatusFile, "result", status, 1);
    logPrintf(kLogTrace, "zepcheckfw.xml done\n");
}

} // namespace

extern "C" int32_t do_FwUpgradeAction(uint32_t action) {
    traceEntry("do_FwUpgradeAction");
    if (isEmpty(zepXmlData.tmpPath)) readNode(zepXmlData.tmpPath, "/bramble/tempdirecory"); // the node is spelt so
    const ActionRule& rule = ruleFor(action);
    if (rule.traced != nullptr) logPrintf(kLogTrace, "===FWUPGRADE_%s===\n", rule.traced);
    rule.carryOut(action);
    report();
    return 0;
}
