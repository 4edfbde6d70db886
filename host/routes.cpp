#include "host/routes.h"

#include <utility>

#include "host/cross_site.h"
#include "host/documents.h"
#include "host/firmware.h"
#include "host/pages.h"
#include "host/sessions.h"
#include "host/stations.h"
#include "host/variables.h"
#include "pendra/auth.h"

namespace pendra::host {

namespace {

constexpr Route kRoutes[] = {
    {"GET", "/zep/hello", Admission::open, Body::optional, getHello},
    {"GET", "/zep/login", Admission::open, Body::optional, login},
    {"POST", "/zep/login", Admission::open, Body::optional, login},
    {"POST", "/zep/setup", Admission::needed, Body::needed, postSetup},
    {"GET", "/zep/result", Admission::needed, Body::optional, getResult},
    {"GET", "/zep/stations", Admission::needed, Body::optional, getStations},
    {"POST", "/zep/stations", Admission::needed, Body::needed, postStations},
    {"POST", "/zep/fw", Admission::needed, Body::optional, postFirmware},
    {"GET", "/zep/checkfw", Admission::needed, Body::optional, getFirmwareStatus},
    {"GET", "/zep/fwnotes", Admission::needed, Body::optional, getReleaseNotes},
    {"GET", "/zep/fwstate", Admission::needed, Body::optional, getFirmwareState},
    {"GET", "/zep/var", Admission::needed, Body::optional, getVariable},
    {"POST", "/zep/var", Admission::needed, Body::needed, postVariables},
    {"GET", "/zep/vars", Admission::needed, Body::optional, getVariables},
    {"POST", "/zep/validate", Admission::needed, Body::needed, postValidate},
    {"GET", "/", Admission::page, Body::optional, getPage},
    {"GET", "/uplink", Admission::page, Body::optional, getPage},
    {"POST", "/uplink", Admission::page, Body::needed, postPage},
    {"GET", "/wireless", Admission::page, Body::optional, getPage},
    {"POST", "/wireless", Admission::page, Body::needed, postPage},
    {"GET", "/safety", Admission::page, Body::optional, getPage},
    {"POST", "/safety", Admission::page, Body::needed, postPage},
    {"GET", "/system", Admission::page, Body::optional, getPage},
    {"POST", "/system", Admission::page, Body::needed, postPage},
    {"GET", "/upgrade", Admission::page, Body::optional, getPage},
    {"GET", "/login", Admission::open, Body::optional, getPage},
    {"POST", "/logout", Admission::page, Body::optional, logout},
    {"GET", "/style.css", Admission::open, Body::optional, getAsset},
    {"GET", "/pages.js", Admission::open, Body::optional, getAsset},
    {"GET", "/login.js", Admission::open, Body::optional, getAsset},
    {"GET", "/upgrade.js", Admission::open, Body::optional, getAsset},
    {"GET", "/icon.svg", Admission::open, Body::optional, getAsset},
};

// A HEAD request is a GET whose answer's body stays at home.
const Route* findRoute(std::string_view method, std::string_view path) {
    const std::string_view wanted = method == "HEAD" ? "GET" : method;
    for (const Route& route : kRoutes) {
        if (route.path == path && route.method == wanted) return &route;
    }
    return nullptr;
}

std::string methodsOf(std::string_view path) {
    std::string methods;
    for (const Route& route : kRoutes) {
        if (route.path != path) continue;
        if (!methods.empty()) methods += ", ";
        methods += route.method == "GET" ? "GET, HEAD" : route.method;
    }
    return methods;
}

Answer noRoute(std::string_view path) {
    const std::string methods = methodsOf(path);
    if (methods.empty()) return textAnswer(MHD_HTTP_NOT_FOUND, "There is nothing at this address.");
    Answer answer = textAnswer(MHD_HTTP_METHOD_NOT_ALLOWED, "This address takes " + methods + " only.");
    answer.allow = methods;
    return answer;
}

bool isAdmitted(const Request& request) {
    return check_PendraAuthIP(request.client.c_str(), request.query.c_str()) == 0;
}

Answer notAdmitted(const Route& route) {
    if (route.admission == Admission::page) return redirect("/login");
    return textAnswer(MHD_HTTP_UNAUTHORIZED, "Log in first: this address is not admitted, or no longer.");
}

Answer tooLong() {
    return textAnswer(MHD_HTTP_CONTENT_TOO_LARGE, "The body is longer than 1 MiB.");
}

// The body's memory is given back at once: an assigned empty text would keep it.
void dropBody(Request& request, Answer reason) {
    request.refusal = std::move(reason);
    std::string().swap(request.body);
}

} // namespace

std::optional<Answer> admitRequest(Request& request, std::string_view method, std::string_view path,
                                   size_t declaredLength) {
    request.route = findRoute(method, path);
    if (request.route == nullptr) return noRoute(path);
    if (!isHomeHost(request.host)) {
        return textAnswer(MHD_HTTP_MISDIRECTED_REQUEST, "Call the device by its address, or by a name of the home.");
    }
    if (request.route->method == "POST" && !isFromOwnPage(request.host, request.origin, request.referer)) {
        return textAnswer(MHD_HTTP_FORBIDDEN, "This request comes from a page of another site.");
    }
    if (request.route->admission != Admission::open && !isAdmitted(request)) return notAdmitted(*request.route);
    if (declaredLength > kMaxBody) return tooLong();
    return std::nullopt;
}

void refuseBusy(Request& request) {
    dropBody(request, textAnswer(MHD_HTTP_SERVICE_UNAVAILABLE, "The device is busy; try again in a moment."));
}

void receiveBody(Request& request, std::string_view stretch) {
    request.received += stretch.size();
    if (request.refusal) return;
    if (request.received > kMaxBody) {
        dropBody(request, tooLong());
        return;
    }
    request.body += stretch;
}

Answer answerRequest(Request& request) {
    if (request.refusal) return *request.refusal;
    if (request.route->body == Body::needed && request.body.empty()) {
        return textAnswer(MHD_HTTP_BAD_REQUEST, "The body is empty.");
    }
    if (request.body.find('\0') != std::string::npos) {
        return textAnswer(MHD_HTTP_BAD_REQUEST, "The body holds a NUL byte; send text.");
    }
    return request.route->handler(request);
}

} // namespace pendra::host
