#include "requests.h"

#include <algorithm>
#include <cstdlib>
#include <functional>

#include "clients.h"
#include "device_files.h"

namespace pendra::load {

namespace {

constexpr size_t kMebibyte = size_t{1} << 20;

/** A kind of request, and how often it comes among all of them. */
struct Kind {
    unsigned weight;
    std::function<void(Caller&)> send;
};

struct Plain {
    unsigned weight;
    const char* method;
    const char* path;
    const char* headers;
    const char* body;
    int status;
    const char* content; // the answer holds this
};

constexpr const char* kXml = "Accept: application/xml\r\n";

constexpr Plain kPlain[] = {
    {1500, "GET", "/zep/hello", "", "", 200, "\"spec\":\"1.1\""},
    {200, "HEAD", "/zep/hello", "", "", 200, ""},
    {2000, "GET", "/zep/var?name=zep_Wl2_WirelessBSSID", "", "", 200, "\"02:50:42:00:00:24\""},
    {300, "GET", "/zep/var?name=zep_Wl2_Channel&path=1", "", "", 200, "\"path\":"},
    {300, "GET", "/zep/var?name=zep_None", "", "", 404, ""},
    {300, "GET", "/zep/vars", "", "", 200, "zep_DeviceName"},
    {300, "GET", "/zep/result", "", "", 200, "<ZepSetResult>"},
    {30, "GET", "/zep/stations", "", "", 200, "\"stations\":["},
    {10, "POST", "/zep/stations", "", "mac=02:00:00:00:00:99&ifname=ra0", 200, "\"disconnected\""},
    {50, "POST", "/zep/stations", "", "mac=02:00:00:00:00:99;reboot&ifname=ra0", 400, ""},
    {20, "POST", "/zep/fw?act=9", "", "", 200, "<result>0</result>"},
    {10, "POST", "/zep/fw?act=0", "", "", 200, "<result>0</result>"},
    {50, "POST", "/zep/fw?act=7", "", "", 400, ""},
    {100, "GET", "/zep/checkfw", "", "", 200, "<result>0</result>"},
    {100, "GET", "/zep/fwnotes", "", "", 404, ""},
    {100, "GET", "/zep/fwstate", "", "", 200, "\"status\":0"},
    {300, "POST", "/zep/validate", "", "zep_Wl2_Channel=6&zep_DeviceName=Attic", 200, "\"code\":0"},
    {300, "POST", "/zep/validate", "", "zep_Wl2_Channel=99", 200, "\"code\":2"},
    {40, "POST", "/zep/var", "", "zep_Wl2_Channel=99", 200, "\"name\":\"zep_Wl2_Channel\""},
    {40, "POST", "/zep/var", kXml, "zep_DeviceName=%3Cb%3E", 200, "<ZepSetResult>11</ZepSetResult>"},
    {100, "POST", "/zep/var", "", "x';reboot'=1", 400, ""},
    {100, "POST", "/zep/var", "", "", 400, "The body is empty."},
    {100, "POST", "/zep/setup", "", "<ruut></ruut>", 400, ""},
    {20, "GET", "/", "", "", 200, "</html>"},
    {100, "GET", "/uplink", "", "", 200, "</html>"},
    {100, "GET", "/wireless", "", "", 200, "</html>"},
    {100, "GET", "/safety", "", "", 200, "</html>"},
    {100, "GET", "/system", "", "", 200, "</html>"},
    {100, "GET", "/upgrade", "", "", 200, "</html>"},
    {100, "GET", "/login", "", "", 200, "</html>"},
    {50, "POST", "/uplink", "", "zep_Upl_ConnType=Pigeon", 422, ""},
    {50, "POST", "/wireless", "", "zep_Wl2_Channel=99", 422, ""},
    {50, "POST", "/wireless", "", "radio=Wl2&do=remove&rule=77", 422, ""},
    {50, "POST", "/safety", "", "zep_None=1", 400, ""},
    {50, "POST", "/safety", "", "zep_Wdn_SafetyWdnEnbl=1", 303, "Location: /safety?same=1"},
    {50, "POST", "/system", "", "zep_DeviceName=%3Cb%3E", 422, ""},
    {50, "GET", "/style.css", "", "", 200, ""},
    {50, "GET", "/pages.js", "", "", 200, ""},
    {50, "GET", "/login.js", "", "", 200, ""},
    {50, "GET", "/upgrade.js", "", "", 200, ""},
    {50, "GET", "/icon.svg", "", "", 200, ""},
    {200, "GET", "/zep/none", "", "", 404, ""},
    {200, "PUT", "/zep/hello", "", "", 405, "Allow: GET, HEAD\r\n"},
    {100, "DELETE", "/zep/setup", "", "", 405, "Allow: POST\r\n"},
    {100, "POST", "/zep/login", "", "PendraKey=00000000000000000000000000000000", 401, "WWW-Authenticate"},
    {100, "GET", "/zep/login?DKey=00000000", "", "", 401, ""},
    {100, "POST", "/zep/var", "Origin: http://evil.example\r\n", "zep_DeviceName=x", 403, ""},
};

constexpr Plain kOfStrangers[] = {
    {100, "GET", "/zep/vars", "", "", 401, ""},
    {100, "POST", "/zep/setup", "", "<root></root>", 401, ""},
    {100, "GET", "/system", "", "", 303, ""},
    {50, "POST", "/system", "", "zep_DeviceName=x", 303, ""},
};

struct Broken {
    unsigned weight;
    std::string text;
    int status; // 0: the host closes without an answer
};

std::vector<Broken> brokenRequests() {
    const std::string post = "POST /zep/login HTTP/1.1\r\nHost: device\r\n";
    return {
        {60, "GET /zep/hello HTTP/1.1\r\nHost: device\r\nX-Long: " + std::string(40'000, 'x') + "\r\n\r\n", 431},
        {60, "GET /" + std::string(40'000, 'x') + " HTTP/1.1\r\nHost: device\r\n\r\n", 414},
        {60, post + "Content-Length: -5\r\n\r\n", 400},
        {60, post + "Content-Length: many\r\n\r\n", 400},
        {60, post + "Content-Length: 99999999999\r\n\r\nx", 413},
        {60, post + "Content-Length: 3\r\n\r\nabcdefgh\r\n\r\n", 401}, // what is too much is no request
        {60, post + "Transfer-Encoding: chunked\r\n\r\nzz\r\nabc\r\n", 400},
        {60, post + "Transfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n0\r\n\r\n", 401},
        {60, "GET /zep/hello HTTP/9.9\r\nHost: device\r\n\r\n", 505},
        {60, "NONSENSE\r\n\r\n", 0},
        {60, "GET /zep/hello HTTP/1.1\r\nHost: evil.example\r\n\r\n", 421},
        {4, httpRequest("POST", "/zep/login", "", std::string(kMebibyte, 'x')), 401},
        {4, httpRequest("POST", "/zep/login", "", std::string(kMebibyte + 1, 'x')), 413},
        {60, post + "Expect: 100-continue\r\nContent-Length: 2000000\r\n\r\n", 413},
    };
}

const std::string kHalves[] = {
    "",
    "GET /zep/he",
    "GET /zep/hello HTTP/1.1\r\nHost: dev",
    "POST /zep/setup HTTP/1.1\r\nHost: device\r\nContent-Length: 2000\r\n\r\n<root><specVersion>",
    "POST /zep/login HTTP/1.1\r\nHost: device\r\nTransfer-Encoding: chunked\r\n\r\n10\r\nPendra",
    "GET /zep/hello HTTP/1.1\r\nHost: device\r\n\r\n", // goes away before its answer
};

struct Refused {
    const char* document;
    const char* result;
};

constexpr Refused kRefused[] = {
    {"faulty-version.xml", "<ZepSetResult>1</ZepSetResult>"},
    {"faulty-missing-element.xml", "<ZepSetResult>2</ZepSetResult>"},
    {"faulty-channel.xml", "<ZepSetResult>3</ZepSetResult>"},
    {"faulty-name.xml", "<ZepSetResult>10</ZepSetResult>"},
};

struct Accepted {
    unsigned weight;
    Change (*make)(Random& random);
};

constexpr Accepted kAccepted[] = {
    {50, changeSafety},     {4, changeNameByDocument}, {4, changeRadioByForm},
    {4, changeRadioByPage}, {3, changeUplinkByText},   {3, changeAllByDocument},
};

std::string textOf(const Plain& row) {
    return httpRequest(row.method, row.path, row.headers, row.body);
}

void addPlain(std::vector<Kind>& kinds) {
    for (const Plain& row : kPlain) {
        kinds.push_back(
            {row.weight, [&row, text = textOf(row)](Caller& caller) { caller.expect(text, row.status, row.content); }});
    }
    for (const Plain& row : kOfStrangers) {
        kinds.push_back(
            {row.weight, [&row, text = textOf(row)](Caller& caller) { caller.expectOfStranger(text, row.status); }});
    }
}

void addBroken(std::vector<Kind>& kinds) {
    for (const Broken& row : brokenRequests()) {
        kinds.push_back({row.weight, [row](Caller& caller) { caller.expectAlone(row.text, row.status); }});
    }
    for (const std::string& half : kHalves) {
        kinds.push_back({60, [&half](Caller& caller) { caller.abandon(half); }});
    }
}

void addChanges(std::vector<Kind>& kinds) {
    for (const Accepted& row : kAccepted) {
        kinds.push_back({row.weight, [&row](Caller& caller) { caller.make(row.make(caller.random())); }});
    }
    for (const Refused& row : kRefused) {
        const std::string text = httpRequest("POST", "/zep/setup", "", test::example(row.document));
        kinds.push_back({8, [&row, text](Caller& caller) { caller.expect(text, 200, row.result); }});
    }
}

std::vector<Kind> makeKinds() {
    std::vector<Kind> kinds = {
        {100, [](Caller& caller) { caller.pipeline(); }},
        {30, [](Caller& caller) { caller.loginAnew("PendraKey="); }},
        {30, [](Caller& caller) { caller.loginAnew("DKey="); }},
        {20, [](Caller& caller) { caller.logout(); }},
    };
    addPlain(kinds);
    addBroken(kinds);
    addChanges(kinds);
    return kinds;
}

const std::vector<Kind>& allKinds() {
    static const std::vector<Kind> kinds = makeKinds();
    return kinds;
}

const Kind& chooseKind(Random& random) {
    static const std::vector<unsigned> ends = [] {
        std::vector<unsigned> sums;
        for (const Kind& kind : allKinds()) {
            sums.push_back(kind.weight + (sums.empty() ? 0 : sums.back()));
        }
        return sums;
    }();
    const auto place = std::upper_bound(ends.begin(), ends.end(), random() % ends.back());
    return allKinds()[static_cast<size_t>(place - ends.begin())];
}

std::string firstLine(const std::string& text) {
    return text.substr(0, std::min<size_t>(text.find('\r'), 80));
}

} // namespace

Caller::Caller(uint16_t port, unsigned number, const std::string& password, Model& model)
    : wire_(port, "127.0.1." + std::to_string(number)),
      stranger_(port, "127.0.2." + std::to_string(number)),
      alone_(port, "127.0.3." + std::to_string(number)),
      password_(password),
      model_(model),
      random_(number) {}

void Caller::call() {
    chooseKind(random_).send(*this);
}

void Caller::check(const std::string& request, const Reply& reply, int status, const std::string& content) {
    ++requests_;
    const bool hasContent =
        reply.body.find(content) != std::string::npos || reply.head.find(content) != std::string::npos;
    if (reply.status == status && hasContent) return;
    faults_.push_back(firstLine(request) + ": " + std::to_string(reply.status) + " " + reply.body.substr(0, 200));
}

void Caller::expect(const std::string& request, int status, const std::string& content) {
    check(request, wire_.exchange(request), status, content);
}

void Caller::expectOfStranger(const std::string& request, int status) {
    check(request, stranger_.exchange(request), status, "");
}

void Caller::expectAlone(const std::string& text, int status) {
    check(text, alone_.exchange(text), status, "");
    alone_.close();
}

void Caller::abandon(const std::string& text) {
    alone_.send(text);
    alone_.close();
    ++requests_;
}

void Caller::make(const Change& change) {
    const std::scoped_lock hold(model_.lock);
    const std::string request = httpRequest("POST", change.path, change.headers, change.body);
    const size_t before = faults_.size();
    expect(request, change.path.starts_with("/zep/") ? 200 : 303, change.accepted);
    if (faults_.size() > before) return;
    ++model_.changes;
    for (const auto& [path, text] : change.nodes) {
        model_.nodes[path] = text;
    }
}

// Each answer names what was asked for, so their order shows.
void Caller::pipeline() {
    const char* const names[] = {"zep_Wl2_Country", "zep_DeviceModel", "zep_Ver_major", "zep_Wl5_Country"};
    std::string text;
    for (const char* name : names) {
        text += httpRequest("GET", std::string("/zep/var?name=") + name);
    }
    wire_.send(text);
    for (const char* name : names) {
        check(name, wire_.receive(), 200, std::string("\"name\":\"") + name + "\"");
    }
}

std::string Caller::key() {
    const std::string hello = wire_.exchange(httpRequest("GET", "/zep/hello")).body;
    ++requests_;
    const std::string field = "\"uptime\":";
    const size_t place = hello.find(field);
    if (place == std::string::npos) return "";
    const long slot = std::atol(hello.c_str() + place + field.size()) / 20;
    if (std::to_string(slot) != slot_) key_ = test::accessKey(slot, wire_.address(), password_);
    slot_ = std::to_string(slot);
    return key_;
}

void Caller::loginAnew(const char* field) {
    const std::string text = std::string(field) == "DKey=" ? key().substr(0, 8) : key();
    expect(httpRequest("POST", "/zep/login", "", field + text), 200, "\"session\":");
}

void Caller::login() {
    loginAnew("PendraKey=");
}

void Caller::logout() {
    expect(httpRequest("POST", "/logout"), 303);
    expect(httpRequest("GET", "/zep/vars"), 401);
    login();
}

size_t requestKinds() {
    return allKinds().size();
}

} // namespace pendra::load
