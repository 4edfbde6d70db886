#include "setupdoc/result_document.h"

#include "common/bounded_text.h"
#include "common/shell.h"
#include "common/trace.h"
#include "pendra/setupdoc.h"

namespace pendra {
namespace {

// One line of the document: a command of at most 127 characters, run as cut.
[[gnu::format(printf, 1, 2)]] void runLine(const char* format, ...) {
    char command[128];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(command, sizeof command, format, arguments);
    va_end(arguments);
    runShell(command);
}

} // namespace

void reportFault(int32_t code, const char* parentPath, const char* tag) {
    char message[128];
    joinPath(message, parentPath, tag);
    write_ZepXml_ResultXml(code, message, 0);
}

int32_t reportMissingElement(const char* parentPath, const char* tag) {
    reportFault(kResultMissing, parentPath, tag);
    return 0;
}

void reportInvalidValue(const char* parentPath, const char* tag) {
    reportFault(kResultInvalid, parentPath, tag);
}

} // namespace pendra

using namespace pendra;

// The message goes into the command as it is. It is a path put together by the library or, after a form, a name as the
// client sent it: a host that takes forms checks names before.
extern "C" void write_ZepXml_ResultXml(int32_t code, const char* message, int32_t waitSeconds) {
    if (message == nullptr) message = "";
    zepXmlData.setResult = code;
    copyText(zepXmlData.setMsg, message);
    char file[128];
    formatText(file, "%s/%s", zepXmlData.tmpPath, "zepset_result.xml");
    logPrintf(kLogEvent, "Zep SetResult=%d, SetMsg='%s', GetWaitSec=%d\n", code, message, waitSeconds);
    runLine("echo '<?xml version=\"1.0\" ?>' > %s", file);
    runLine("echo '<root>' >> %s", file);
    runLine("echo ' <ZepSetResult>%d</ZepSetResult>' >> %s", code, file);
    runLine("echo ' <ZepSetMsg>%s</ZepSetMsg>' >> %s", message, file);
    runLine("echo ' <ZepGetWaitSec>%d</ZepGetWaitSec>' >> %s", waitSeconds, file);
    runLine("echo '</root>' >> %s", file);
}
