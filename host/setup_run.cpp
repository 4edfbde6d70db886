#include "host/setup_run.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "host/files.h"
#include "host/report.h"
#include "host/tree.h"
#include "pendra/setupdoc.h"

namespace pendra::host {

namespace {

constexpr int32_t kApplied = 0;

// At most one applied run waits for its commit.
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

unsigned announceCommit(bool cloning) {
    pending = {.ticket = pending.ticket + 1, .waiting = true, .cloning = cloning};
    return pending.ticket;
}

// Nothing of the run was stored, so neither the record nor a result document may say otherwise.
Answer undoRun(const ZepXmlData& before, const char* what, const std::string& reason) {
    zepXmlData = before;
    unstoredResult.clear();
    if (unlink(resultPath().c_str()) != 0 && errno != ENOENT) {
        reportFault("cannot remove " + resultPath() + ": " + std::strerror(errno));
    }
    reportFault(std::string(what) + " could not be stored: " + reason);
    return textAnswer(MHD_HTTP_INSUFFICIENT_STORAGE, "The device could not store the settings: " + reason);
}

} // namespace

std::optional<Answer> storeRun(Request& request, const char* what, Commit commit, const std::function<bool()>& run) {
    // An earlier run whose answer is still on its way to a slow client comes first.
    commitSetup(pending.ticket);
    const ZepXmlData before = zepXmlData;
    bool applied = false;
    std::string error;
    const bool stored = inTransaction(error, [&] {
        applied = run();
        // What a refused run changed before the refusal stays, as the library's protocol has it.
        return true;
    });
    if (!stored) return undoRun(before, what, error);
    if (applied && commit != Commit::byAlarm) request.commitTicket = announceCommit(commit == Commit::cloning);
    return std::nullopt;
}

int32_t resultCode() {
    return zepXmlData.setResult;
}

std::string resultMessage() {
    return zepXmlData.setMsg;
}

int32_t resultWaitSeconds() {
    return resultCode() == kApplied ? zepXmlData.exeWaitSec : 0;
}

// The library does not look at the outcome of the commands that write the file (no directory, no room, no right to
// write), so an older document may still be there: the answer is always the one of this run.
std::string resultOfRun() {
    std::string result = composeResult(resultCode(), resultMessage(), resultWaitSeconds());
    const std::string path = resultPath();
    const bool stored = readFile(path) == result;
    if (!stored) reportFault("the result document could not be stored in " + path);
    unstoredResult = stored ? "" : result;
    return result;
}

std::optional<std::string> lastResult() {
    if (!unstoredResult.empty()) return unstoredResult;
    return readFile(resultPath());
}

std::string composeResult(int32_t code, const std::string& message, int32_t waitSeconds) {
    return "<?xml version=\"1.0\" ?>\n"
           "<root>\n"
           " <ZepSetResult>" +
           std::to_string(code) + "</ZepSetResult>\n <ZepSetMsg>" + message + "</ZepSetMsg>\n <ZepGetWaitSec>" +
           std::to_string(waitSeconds) +
           "</ZepGetWaitSec>\n"
           "</root>\n";
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
