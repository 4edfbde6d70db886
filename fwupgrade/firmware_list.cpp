#include "fwupgrade/firmware_list.h"

#include <algorithm>
#include <cstring>

#include "common/bounded_text.h"
#include "common/trace.h"
#include "common/tree_access.h"
#include "pendra/fwupgrade.h"
#include "pendra/setupdoc.h"

namespace pendra {
namespace {

constexpr int kEntriesMax = 100;
constexpr int32_t kListVersion = 100; // 1.0
constexpr const char* kServer = PENDRA_FW_SERVER;
constexpr const char* kEngineeringServer = PENDRA_FW_ENG_SERVER;
static_assert(sizeof PENDRA_FW_SERVER < sizeof FwXmlData::fileUrl);
static_assert(sizeof PENDRA_FW_ENG_SERVER < sizeof FwXmlData::fileUrl);

// The raw text of an entry, cut to the longest pattern there is.
template <size_t Capacity>
void copyEntry(char (&pattern)[Capacity], const char* start, int32_t length) {
    const size_t copied = std::min(static_cast<size_t>(length), Capacity - 1);
    std::memcpy(pattern, start, copied);
    pattern[copied] = '\0';
}

int32_t matchPattern(const char* value, const char* pattern) {
    logPrintf(kLogTrace, "Match '%s' with '%s'\n", pattern, value);
    return strWildcardCmp(value, pattern) == 0 ? kListMatched : kListNoMatch;
}

int32_t matchMac(char* start, int32_t length) {
    char pattern[sizeof fwXmlData.deviceMac];
    copyEntry(pattern, start, length);
    return matchPattern(fwXmlData.deviceMac, pattern);
}

int32_t matchFileName(char* start, int32_t length) {
    char pattern[sizeof fwXmlData.currFwFileName];
    copyEntry(pattern, start, length);
    return matchPattern(fwXmlData.currFwFileName, pattern);
}

// Both bounds belong to the range.
int32_t matchMacRange(char* start, int32_t length) {
    char first[sizeof fwXmlData.deviceMac] = "";
    char last[sizeof fwXmlData.deviceMac] = "";
    if (GetXmlKeyStrValue_(start, length, "Start", first, sizeof first) == 0) return kListMalformed;
    if (GetXmlKeyStrValue_(start, length, "End", last, sizeof last) == 0) return kListMalformed;
    logPrintf(kLogTrace, "Match '%s'~'%s' with '%s'\n", first, last, fwXmlData.deviceMac);
    const bool inside =
        strWildcardCmp(fwXmlData.deviceMac, first) >= 0 && strWildcardCmp(fwXmlData.deviceMac, last) <= 0;
    return inside ? kListMatched : kListNoMatch;
}

// One row for each mode of the walker.
struct ListKind {
    const char* listTag;
    const char* entryTag;
    int32_t (*match)(char* start, int32_t length);
};
constexpr ListKind kLists[] = {
    {"FirmwareList", "Firmware", do_FwFirmware_Parser},
    {"MacList", "MAC", matchMac},
    {"MacList", "MACs", matchMacRange},
    {"MatchList", "Match", matchFileName},
};

bool holds(char* start, int32_t length, const char* listTag) {
    return SearchXmlKeyHeader(start, length, listTag) != nullptr;
}

// A device must be named by its address or by a range.
int32_t matchMacList(char* start, int32_t length) {
    const int32_t single = do_FwEntryList_Parser(start, length, kMacList);
    return single == kListNoMatch ? do_FwEntryList_Parser(start, length, kMacRangeList) : single;
}

// An entry with neither list names no device. With both, both must match.
int32_t matchDevice(char* start, int32_t length) {
    const bool hasMacs = holds(start, length, "MacList");
    const bool hasNames = holds(start, length, "MatchList");
    if (hasMacs) {
        const int32_t result = matchMacList(start, length);
        if (result != kListMatched) return result;
    }
    if (hasNames) return do_FwEntryList_Parser(start, length, kMatchList);
    return hasMacs ? kListMatched : kListNoMatch;
}

bool readAddress(char* start, int32_t length, const char* tag, char (&address)[128]) {
    const char* base = get_FwServerWebSite();
    const size_t baseLength = std::strlen(base);
    copyText(address, base);
    if (GetXmlKeyStrValue_(start, length, tag, address + baseLength,
                           static_cast<int32_t>(sizeof address - baseLength)) != 0)
        return true;
    logPrintf(kLogInfo, "%s not found\n", tag);
    return false;
}

// Whether the device runs the image of an address already: its file name up to a query.
bool runsAlready(const char* address) {
    const char* slash = std::strrchr(address, '/');
    const char* name = slash == nullptr ? address : slash + 1;
    const size_t length = std::strcspn(name, "?");
    logPrintf(kLogTrace, "Final Match '%s'(%d) with '%s'\n", name, static_cast<int>(length), fwXmlData.currFwFileName);
    return std::strncmp(fwXmlData.currFwFileName, name, length) == 0;
}

int32_t settleMatch(int32_t result) {
    if (result != kListMatched) return result;
    if (runsAlready(fwXmlData.fileUrl)) return kListNoMatch;
    xset_str(fwXmlData.fileUrl, "/fwupgradeinfo/newfw/fileurl");
    xset_str(fwXmlData.notesUrl, "/fwupgradeinfo/newfw/notesurl");
    return result;
}

void tell(char* output, const char* address, int32_t result) {
    if (output != nullptr) copyTextBounded(output, sizeof fwXmlData.fileUrl, result == kListMatched ? address : "");
}

} // namespace

int32_t do_FwRoot_Parser(char* document) {
    traceEntry("do_FwRoot_Parser");
    int32_t length = 0;
    char* root = FindXmlKeyContain(document, -1, "root", &length);
    if (root == nullptr) return kListMalformed;
    root[length] = '\0';
    ZepSpecVersion& version = fwXmlData.specVersion;
    if (do_XmlSpecVersion_Parser("", root, length, &version, "specVersion") == 0) return kListMalformed;
    if (version.version != kListVersion) {
        logPrintf(kLogInfo, "wrong specVersion %d.%d\n", version.major, version.minor);
        return kListMalformed;
    }
    const int32_t result = do_FwEntryList_Parser(root, length, kFirmwareList);
    if (result == kListMalformed) {
        logPrintf(kLogInfo, "check FirmwareList fail\n");
        return result;
    }
    logPrintf(kLogTrace, "done, ret=%d\n", result);
    return result;
}

// The scanner takes a length of 0 as "to the end of the text", so an empty stretch is never handed to it.
int32_t do_FwEntryList_Parser(char* start, int32_t length, int32_t mode) {
    traceEntry("do_FwEntryList_Parser");
    const ListKind& kind = kLists[mode];
    int32_t listLength = 0;
    char* next = FindXmlKeyContain(start, length, kind.listTag, &listLength);
    if (next == nullptr) return kListMalformed;
    const char* const end = next + listLength;
    for (int entry = 0; entry < kEntriesMax && next < end; entry++) {
        int32_t entryLength = 0;
        next = FindXmlKeyContain(next, static_cast<int32_t>(end - next), kind.entryTag, &entryLength);
        if (next == nullptr || entryLength == 0) break;
        const int32_t result = kind.match(next, entryLength);
        if (result != kListNoMatch) return result;
        next += entryLength;
    }
    return kListNoMatch;
}

int32_t do_FwFirmware_Parser(char* start, int32_t length) {
    traceEntry("do_FwFirmware_Parser");
    const int32_t result = matchDevice(start, length);
    if (result != kListMatched) return result;
    std::memset(fwXmlData.fileUrl, 0, sizeof fwXmlData.fileUrl);
    std::memset(fwXmlData.notesUrl, 0, sizeof fwXmlData.notesUrl);
    const bool complete = readAddress(start, length, "FwURL", fwXmlData.fileUrl) &&
                          readAddress(start, length, "NotesURL", fwXmlData.notesUrl);
    return complete ? kListMatched : kListMalformed;
}

} // namespace pendra

using namespace pendra;

extern "C" {

FwXmlData fwXmlData;

const char* get_FwServerWebSite(void) {
    return readNodeInt("/fwupgradeinfo/isEngFwServer") < 1 ? kServer : kEngineeringServer;
}

int32_t do_FwXml_Parser(char* document, char* fileUrl, char* notesUrl) {
    int32_t result = kListMalformed;
    if (document != nullptr) {
        logPrintf(kLogInfo, "---- Received FW XML Data Begin ----\n%s\n---- Received FW XML Data End ----\n", document);
        XmlErrMsg_LostKey = nullptr; // misses of a list document are nobody's result document
        readNode(fwXmlData.deviceMac, "/fwupgradeinfo/devicemac");
        readNode(fwXmlData.currFwFileName, "/fwupgradeinfo/currfwfilename");
        result = settleMatch(do_FwRoot_Parser(document));
    }
    tell(fileUrl, fwXmlData.fileUrl, result);
    tell(notesUrl, fwXmlData.notesUrl, result);
    logPrintf(kLogTrace, "done, ret=%d\n", result);
    return result;
}

} // extern "C"
