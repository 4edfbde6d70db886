#include "host/documents.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "host/files.h"
#include "host/forms.h"
#include "host/report.h"
#include "host/tree.h"
#include "pendra/setupdoc.h"

namespace pendra::host {

namespace {

constexpr int32_t kApplied = 0;

// At most one applied document waits for its commit.
struct PendingCommit {
    unsigned ticket = 0;
    bool waiting = false;
    bool cloning = false;
};

PendingCommit pending;

// The last result document when it could not be stored in the temporary directory, else empty.
std::string unstoredResult;

std::string resultPath() {
    return nodeText("/bramble/tempdirecory") + "/zepset_result.xml";
}

bool hasRoot(std::string& document) {
    return FindXmlKeyContain(document.data(), -1, "root", nullptr) != nullptr;
}

unsigned announceCommit(bool cloning) {
    pending = {.ticket = pending.ticket + 1, .waiting = true, .cloning = cloning};
    return pending.ticket;
}

// The library does not look at the outcome of the commands that write the file (no directory, no room, no right to
// write), so an older document may still be there: the answer is always the one of this run.
std::string resultOfRun() {
    const int32_t code = zepXmlData.setResult;
    const int32_t waitSeconds = code == kApplied ? zepXmlData.exeWaitSec : 0;
    std::string result = composeResult(code, zepXmlData.setMsg, waitSeconds);
    const std::string path = resultPath();
    const bool stored = readFile(path) == result;
    if (!stored) reportFault("the result document could not be stored in " + path);
    unstoredResult = stored ? "" : result;
    return result;
}

// Nothing of the run was stored, so neither the record nor a result document may say otherwise.
Answer undoRun(const ZepXmlData& before, const std::string& reason) {
    zepXmlData = before;
    unstoredResult.clear();
    if (unlink(resultPath().c_str()) != 0 && errno != ENOENT) {
        reportFault("cannot remove " + resultPath() + ": " + std::strerror(errno));
    }
    reportFault("a setup document could not be stored: " + reason);
    return textAnswer(MHD_HTTP_INSUFFICIENT_STORAGE, "The device could not store the settings: " + reason);
}

} // namespace

std::string composeResult(int32_t code, const std::string& message, int32_t waitSeconds) {
    return "<?xml version=\"1.0\" ?>\n"
           "<root>\n"
           " <ZepSetResult>" +
           std::to_string(code) + "</ZepSetResult>\n <ZepSetMsg>" + message + "</ZepSetMsg>\n <ZepGetWaitSec>" +
           std::to_string(waitSeconds) +
           "</ZepGetWaitSec>\n"
           "</root>\n";
}

Answer postSetup(Request& request) {
    // An earlier document whose answer is still on its way to a slow client comes first.
    commitSetup(pending.ticket);
    if (!hasRoot(request.body)) {
        return textAnswer(MHD_HTTP_BAD_REQUEST, "This is no setup document: it has no <root> element.");
    }
    const bool cloning = formField(request.query, "apcloning") == "1";
    const ZepXmlData before = zepXmlData;
    int32_t applied = 0;
    std::string error;
    const bool stored = inTransaction(error, [&] {
        char* document = request.body.data();
        applied = cloning ? do_ZepXml_Parser_for_ApCloning(document) : do_ZepXml_Parser(document);
        // What a refused document changed before the refusal stays, as the library's protocol has it.
        return true;
    });
    if (!stored) return undoRun(before, error);
    if (applied == 1) request.commitTicket = announceCommit(cloning);
    return xmlAnswer(resultOfRun());
}

Answer getResult(Request&) {
    if (!unstoredResult.empty()) return xmlAnswer(unstoredResult);
    const std::optional<std::string> result = readFile(resultPath());
    if (!result) return textAnswer(MHD_HTTP_NOT_FOUND, "There is no result document.");
    return xmlAnswer(*result);
}

void commitSetup(unsigned ticket) {
    if (!pending.waiting || ticket != pending.ticket) return;
    pending.waiting = false;
    if (pending.cloning) {
        do_ZepXml_Commit_for_ApCloning(1);
    } else {
        do_ZepXml_Commit();
    }
}

} // namespace pendra::host
