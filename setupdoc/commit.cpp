#include "common/trace.h"
#include "pendra/apply.h"
#include "pendra/setupdoc.h"

using namespace pendra;

namespace {

constexpr int32_t kDeviceResync = 16;
constexpr int32_t kCfgSaveToFlash = 32;

// The set of this run; or, when it is empty, once more that of the run before.
int32_t takeRequests() {
    const int32_t requests = zepXmlData.exeflag;
    if (requests == 0 && zepXmlData.pre_exeflag != 0) {
        const int32_t previous = zepXmlData.pre_exeflag;
        logPrintf(kLogTrace, "Use pre_exeflag, pre_exeflag=%d, exeflag=%d\n", previous, requests);
        zepXmlData.pre_exeflag = 0;
        return previous;
    }
    traceLine("do_ZepXml_Commit", "exeflag=%d\n", requests);
    return requests;
}

} // namespace

extern "C" {

// exeflag is not cleared here: the next successful run moves it into pre_exeflag, so that the commit of a run that
// changes nothing repeats the actions of the one before. That repetition is intended.
int32_t do_ZepXml_Commit(void) {
    traceEntry("do_ZepXml_Commit");
    const int32_t requests = takeRequests();
    if (requests == 0) return 0;
    if (exe_ExternalCall(static_cast<uint32_t>(requests)) != 0) logPrintf(kLogError, "exe_ExternalCall was fail!");
    traceLine("do_ZepXml_Commit", "done\n");
    return 1;
}

int32_t do_ZepXml_Commit_for_ApCloning(int32_t flag) {
    if (flag != 0) zepXmlData.exeflag |= kDeviceResync | kCfgSaveToFlash;
    return do_ZepXml_Commit();
}

} // extern "C"
