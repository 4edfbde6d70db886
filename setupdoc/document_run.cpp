#include "setupdoc/document_run.h"

#include "apply/application.h"
#include "apply/external_calls.h"
#include "apply/verification.h"
#include "common/bounded_text.h"
#include "common/trace.h"
#include "setupdoc/record_dump.h"
#include "setupdoc/result_document.h"
#include "setupdoc/run_state.h"
#include "setupdoc/section_parsers.h"
#include "setupdoc/snapshot.h"

namespace pendra {

RunState runState;

namespace {

// Only the combined number counts: 1.0 and 0.100 are the same version.
bool hasDeviceVersion(const ZepSpecVersion& document) {
    const ZepSpecVersion& device = zepXmlData.specVersion;
    if (document.version == device.version) return true;
    logPrintf(kLogError, "Wrong Spec Version! Device=%d.%d, XML=%d.%d\n", device.major, device.minor, document.major,
              document.minor);
    write_ZepXml_ResultXml(kResultWrongVersion, "", 0);
    return false;
}

void startRun() {
    if (runState.firstRun) zepXmlData.pre_exeflag = 0;
    runState.firstRun = false;
    restore_XmlZepStatus(kGatesOnly);
}

// A failing step has written the result document itself.
int32_t parseAndApply(char* document) {
    if (do_ZepRoot_Parser(document) != 1 || Verify_ZepXml() != 1) return 0;
    const int32_t result = Apply_ZepXmlToDevice();
    if (result != 1) return result;
    compute_ExeFlag();
    write_ZepXml_ResultXml(kResultDone, "", zepXmlData.exeWaitSec);
    return result;
}

int32_t runAs(char* document, bool apCloning) {
    zepXmlData.apCloningOnly = apCloning ? 1 : 0;
    return do_ZepXml_Parser_(document);
}

} // namespace

int32_t do_ZepRoot_Parser(char* document) {
    traceEntry("do_ZepRoot_Parser");
    int32_t length = 0;
    char* root = FindXmlKeyContain(document, -1, "root", &length);
    if (root == nullptr) return 0;
    root[length] = '\0'; // for good: no later lookup may run past "</root>"
    startRun();
    ZepSpecVersion version = {};
    if (do_XmlSpecVersion_Parser("", root, length, &version, "specVersion") == 0) return 0;
    copyText(zepXmlData.specVersion.path, "specVersion");
    if (!hasDeviceVersion(version)) return 0;
    return do_ZepDevice_Parser("", root, length, &zepXmlData.device, "Device");
}

} // namespace pendra

using namespace pendra;

extern "C" {

int32_t do_ZepXml_Parser(char* document) {
    return runAs(document, false);
}

int32_t do_ZepXml_Parser_for_ApCloning(char* document) {
    return runAs(document, true);
}

int32_t do_ZepXml_Parser_(char* document) {
    if (document == nullptr) return 0;
    traceEntry("do_ZepXml_Parser_");
    logPrintf(kLogInfo, "---- Received Zep XML Data Begin ----\n%s\n---- Received Zep XML Data End ----\n", document);
    XmlErrMsg_LostKey = reportMissingElement;
    const int32_t result = parseAndApply(document);
    dumpRecord();
    logPrintf(kLogTrace, "done, ret=%d\n", result);
    return result;
}

} // extern "C"
