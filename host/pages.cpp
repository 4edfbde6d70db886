#include "host/pages.h"

#include <algorithm>

#include "host/form_run.h"
#include "host/page_parts.h"
#include "host/record.h"
#include "host/routes.h"
#include "host/rule_edit.h"
#include "host/variable_info.h"
#include "host/www_files.h"
#include "pendra/auth.h"

namespace pendra::host {

namespace {

constexpr const char* kHtml = "text/html; charset=utf-8";

struct Page {
    std::string_view path;
    const char* title;
    const char* file;
};

constexpr Page kPages[] = {
    {"/", "Status", "status.html"},
    {"/uplink", "Uplink", "uplink.html"},
    {"/wireless", "Wireless", "wireless.html"},
    {"/safety", "Web safety", "safety.html"},
    {"/system", "System", "system.html"},
    {"/upgrade", "Upgrade", "upgrade.html"},
    {"/login", "Log in", "login.html"},
};

struct Asset {
    std::string_view path;
    const char* contentType;
};

constexpr Asset kAssets[] = {
    {"/style.css", "text/css; charset=utf-8"},
    {"/pages.js", "text/javascript; charset=utf-8"},
    {"/login.js", "text/javascript; charset=utf-8"},
    {"/upgrade.js", "text/javascript; charset=utf-8"},
    {"/icon.svg", "image/svg+xml"},
};

const Page& pageAt(std::string_view path) {
    const auto* page =
        std::find_if(std::begin(kPages), std::end(kPages), [&](const Page& p) { return p.path == path; });
    return page == std::end(kPages) ? kPages[0] : *page;
}

PageView viewOf(const Request& request) {
    const Page& page = pageAt(request.route->path);
    return {.path = std::string(page.path), .title = page.title};
}

Answer showPage(const PageView& view, unsigned status) {
    const std::string top = expandPage(view, view.path == "/login" ? "login_top.html" : "top.html");
    return {.status = status,
            .contentType = kHtml,
            .body = top + expandPage(view, pageAt(view.path).file) + expandPage(view, "bottom.html")};
}

// What a page says after a form was taken in, by the query that the form's answer sent the browser on with.
std::string noticeOf(const std::string& query) {
    if (formField(query, "same") == "1") return "Nothing was changed.";
    const std::string saved = formField(query, "saved");
    const bool isNumber =
        !saved.empty() && saved.size() < 4 && saved.find_first_not_of("0123456789") == std::string::npos;
    if (!isNumber) return {};
    if (saved == "0") return "Saved.";
    return "Saved. The device needs about " + saved + " seconds until all of it takes effect.";
}

// A form, as a person filled it in. The last one of a name counts: a ticked box comes after its "0".
std::map<std::string, std::string> typedValues(const std::vector<FormPair>& pairs) {
    std::map<std::string, std::string> typed;
    for (const FormPair& pair : pairs) {
        typed[pair.name] = decodeValue(pair.value);
    }
    return typed;
}

bool isSettable(const std::string& name) {
    const VariableInfo* variable = findVariable(name);
    return variable != nullptr && variable->canBeSet();
}

bool isSecret(const std::string& name) {
    return name.ends_with("Password") || name.ends_with("Key") || name.ends_with("Pwd");
}

bool isChange(const std::string& name, const std::string& value) {
    return !(isSecret(name) && value.empty()) && value != variableText(name);
}

// Only what was changed is set: what the device holds need not pass its own checks, an empty address for example.
std::vector<FormPair> changedPairs(const std::map<std::string, std::string>& typed) {
    std::vector<FormPair> pairs;
    for (const auto& [name, value] : typed) {
        if (isChange(name, value)) pairs.push_back({name, encodeValue(value)});
    }
    return pairs;
}

void checkPairs(const std::vector<FormPair>& pairs, PageView& view) {
    for (const FormPair& pair : pairs) {
        const int32_t code = checkValue(pair.name, decodeValue(pair.value));
        if (code != 0) view.faults[pair.name] = codeInWords(pair.name, code);
    }
}

// A fault that belongs to no field of the page is told above it.
void tellOutcome(const FormOutcome& outcome, PageView& view) {
    if (view.typed.contains(outcome.name)) {
        view.faults[outcome.name] = outcome.words;
    } else {
        view.fault = "The device refused the change at " + outcome.name + ": " + outcome.words;
    }
}

Answer refuse(PageView& view) {
    if (view.fault.empty()) view.fault = "Nothing was saved. Look at the marked fields.";
    return showPage(view, MHD_HTTP_UNPROCESSABLE_CONTENT);
}

Answer runPage(Request& request, PageView& view, const Form& form, const std::function<void()>& prepare) {
    FormOutcome outcome;
    const auto refusal = runForm(request, form, prepare, outcome);
    if (refusal) {
        refreshRecord();
        view.fault = refusal->body;
        return showPage(view, refusal->status);
    }
    if (outcome.code == 0) return redirect(view.path + "?saved=" + std::to_string(outcome.waitSeconds));
    refreshRecord();
    tellOutcome(outcome, view);
    return refuse(view);
}

Answer runRuleEdit(Request& request, PageView& view, const RuleEdit& edit) {
    if (!edit.fault.empty()) {
        view.typed[edit.field] = edit.mac;
        view.faults[edit.field] = edit.fault;
        return refuse(view);
    }
    const Form form{.pairs = rulePairs(edit)};
    return runPage(request, view, form, [&] { storeActivity(edit.radio, edit.rules); });
}

Answer runFields(Request& request, PageView& view, const Form& posted) {
    view.typed = typedValues(posted.pairs);
    const Form form{.pairs = changedPairs(view.typed)};
    if (form.pairs.empty()) return redirect(view.path + "?same=1");
    checkPairs(form.pairs, view);
    if (!view.faults.empty()) return refuse(view);
    return runPage(request, view, form, {});
}

} // namespace

Answer getPage(Request& request) {
    PageView view = viewOf(request);
    view.notice = noticeOf(request.query);
    refreshRecord();
    return showPage(view, MHD_HTTP_OK);
}

Answer postPage(Request& request) {
    PageView view = viewOf(request);
    refreshRecord();
    const RuleEdit edit = readRuleEdit(request.body);
    if (edit.wanted) return runRuleEdit(request, view, edit);
    const Form form = readForm(request, Actions::refused);
    const bool known =
        std::all_of(form.pairs.begin(), form.pairs.end(), [](const FormPair& p) { return isSettable(p.name); });
    if (form.fault.empty() && known) return runFields(request, view, form);
    return textAnswer(MHD_HTTP_BAD_REQUEST, form.fault.empty() ? "A field is no setting of the device." : form.fault);
}

Answer logout(Request& request) {
    clientAuthListDel(&clientauthinfo, request.client.c_str(), nullptr, 1);
    return redirect("/login");
}

Answer getAsset(Request& request) {
    const std::string_view path = request.route->path;
    const auto* asset =
        std::find_if(std::begin(kAssets), std::end(kAssets), [&](const Asset& a) { return a.path == path; });
    if (asset == std::end(kAssets)) return textAnswer(MHD_HTTP_NOT_FOUND, "There is no such file.");
    return {.contentType = asset->contentType, .body = std::string(wwwFile(path.substr(1)))};
}

} // namespace pendra::host
