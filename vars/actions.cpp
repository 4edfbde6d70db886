#include "vars/actions.h"

#include <unistd.h>

#include <csignal>
#include <cstring>

#include "apply/application.h"
#include "apply/external_calls.h"
#include "apply/site_survey.h"
#include "apply/verification.h"
#include "common/bounded_text.h"
#include "common/trace.h"
#include "pendra/apply.h"
#include "setupdoc/record_access.h"

namespace pendra {
namespace {

constexpr uint32_t kWlanSiteSurvey = 64;
constexpr unsigned kCommitDelaySeconds = 2; // the web reply goes out first

int32_t done(const Request& request) {
    return request.answer("");
}

// A failed step has left its code and message in the record.
int32_t failed(const Request& request) {
    request.answer(zepXmlData.setMsg);
    return zepXmlData.setResult;
}

int32_t surveySites(const Request& request) {
    request.answer("");
    if (zepXmlData.device.upLink.hardwareTypeIdx != kWwan80211) return kRefused;
    logPrintf(kLogTrace, "Trigger Site Survey ...\n");
    requestSiteSurvey();
    exe_ExternalCall(kWlanSiteSurvey);
    return kDone;
}

int32_t verifyAll(const Request& request) {
    if (Verify_ZepXml() != 1) return failed(request);
    write_ZepXml_ResultXml(0, "", 0);
    return done(request);
}

int32_t applyAll(const Request& request) {
    if (Apply_ZepXmlToDevice() != 1) return failed(request);
    compute_ExeFlag();
    return done(request);
}

void commitOnAlarm(int) {
    do_ZepVar_Commit();
}

int32_t commitLater(const Request& request) {
    std::signal(SIGALRM, commitOnAlarm);
    alarm(kCommitDelaySeconds); // a later call within the delay re-arms it: one commit
    return done(request);
}

int32_t setAll(const Request& request) {
    char list[ZEPVAR_VALUE_SIZE];
    copyText(list, request.value);
    request.answer("");
    const int32_t code = do_ZepVar_Parser(list, '&', request.value, 0); // answers with what failed
    return code == kDone ? done(request) : code;
}

constexpr struct {
    const char* name;
    int32_t (*perform)(const Request& request);
} kActions[] = {
    {"SiteSurvey", surveySites},    {"VerifyAllZepVars", verifyAll}, {"ApplyAllZepVars", applyAll},
    {"CommitZepVars", commitLater}, {"SetZepVars", setAll},
};

} // namespace

int32_t performAction(const char* action, const Request& request) {
    for (const auto& row : kActions)
        if (std::strcmp(row.name, action) == 0) return row.perform(request);
    return kRefused;
}

} // namespace pendra
