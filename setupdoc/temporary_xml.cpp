#include "common/bounded_text.h"
#include "common/shell.h"
#include "common/trace.h"
#include "common/tree_access.h"
#include "pendra/setupdoc.h"
#include "setupdoc/run_state.h"

using namespace pendra;

extern "C" {

int32_t write_TmpXmlFile(const char* fileName, const char* element, const char* value, int32_t closeFile) {
    if (fileName == nullptr || element == nullptr || value == nullptr) return -1;
    if (isEmpty(zepXmlData.tmpPath)) readNode(zepXmlData.tmpPath, "/bramble/tempdirecory"); // the node is spelt so
    const bool starts = runState.startNewFile;
    char command[256] = "";
    appendText(command, "%s", starts ? "echo '<?xml version=\"1.0\" ?><root>" : "echo '");
    appendText(command, "<%s>%s</%s>%s' %s %s/%s", element, value, element, closeFile != 0 ? "</root>" : "",
               starts ? ">" : ">>", zepXmlData.tmpPath, fileName);
    runState.startNewFile = closeFile != 0;
    traceLine("write_TmpXmlFile", "%s\n", command);
    return runShell(command);
}

int32_t write_ResultXmlFile(const char* fileName, const char* element, const char* value) {
    return write_TmpXmlFile(fileName, element, value, 1);
}

} // extern "C"
