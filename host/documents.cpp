#include "host/documents.h"

#include "host/forms.h"
#include "host/setup_run.h"
#include "pendra/setupdoc.h"

namespace pendra::host {

namespace {

bool hasRoot(std::string& document) {
    return FindXmlKeyContain(document.data(), -1, "root", nullptr) != nullptr;
}

} // namespace

Answer postSetup(Request& request) {
    if (!hasRoot(request.body)) {
        return textAnswer(MHD_HTTP_BAD_REQUEST, "This is no setup document: it has no <root> element.");
    }
    const bool cloning = formField(request.query, "apcloning") == "1";
    const auto refusal = storeRun(request, "a setup document", cloning ? Commit::cloning : Commit::ordinary, [&] {
        char* document = request.body.data();
        return (cloning ? do_ZepXml_Parser_for_ApCloning(document) : do_ZepXml_Parser(document)) == 1;
    });
    if (refusal) return *refusal;
    return xmlAnswer(resultOfRun());
}

Answer getResult(Request&) {
    const auto result = lastResult();
    if (!result) return textAnswer(MHD_HTTP_NOT_FOUND, "There is no result document.");
    return xmlAnswer(*result);
}

} // namespace pendra::host
