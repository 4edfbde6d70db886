#include "running_device.h"

#include <stdexcept>

namespace pendra::test {

namespace {

struct Place {
    size_t start;   // of "<Tag>"
    size_t content; // behind it
    size_t end;     // of the content
    size_t stop;    // behind "</Tag>"
};

Place find(const std::string& document, std::string path) {
    size_t from = 0;
    size_t slash = 0;
    while ((slash = path.find('/')) != std::string::npos) {
        from = document.find("<" + path.substr(0, slash) + ">", from);
        path.erase(0, slash + 1);
    }
    const size_t start = from == std::string::npos ? from : document.find("<" + path + ">", from);
    const size_t end = start == std::string::npos ? start : document.find("</" + path + ">", start);
    if (end == std::string::npos) throw std::runtime_error("the document has no element " + path);
    return {start, start + path.size() + 2, end, end + path.size() + 3};
}

} // namespace

void RunningDevice::restart(const HostOptions& options) {
    ASSERT_EQ(host->stop(), 0);
    start(options);
}

long RunningDevice::uptime() const {
    const std::string hello = get("/zep/hello").body;
    const std::string field = "\"uptime\":";
    return std::stol(hello.substr(hello.find(field) + field.size()));
}

HttpReply RunningDevice::post(const std::string& path, const std::string& body) const {
    return curl({"-H", "Content-Type: application/xml", "--data-binary", "@-", url(path)}, body);
}

void RunningDevice::login() const {
    ASSERT_EQ(curl({"-d", "PendraKey=" + key(), url("/zep/login")}).status, 200);
}

HttpReply RunningDevice::setUp(const std::string& document, const std::string& query) const {
    login();
    return post("/zep/setup" + query, document);
}

void RunningDevice::awaitScripts() const {
    EXPECT_EQ(get("/zep/hello").status, 200);
}

Ended RunningDevice::zepctl(std::vector<std::string> arguments, const std::string& input) const {
    arguments.insert(arguments.begin(), PENDRA_CLIENT);
    return run({.command = std::move(arguments),
                .environment = {"ZEPCTL_DEVICE=" + host->url(), "ZEPCTL_PASSWORD=" + password()},
                .input = input});
}

void RunningDevice::expectResult(const HttpReply& reply, int code, const std::string& message, int waitSeconds) const {
    const std::string expected = resultDocument(code, message, waitSeconds);
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.contentType, "application/xml");
    EXPECT_EQ(reply.body, expected);
    EXPECT_EQ(readFile(files.resultFile()), expected);
    EXPECT_EQ(get("/zep/result").body, expected);
    expectWellFormed(reply.body);
}

std::string resultDocument(int code, const std::string& message, int waitSeconds) {
    return "<?xml version=\"1.0\" ?>\n<root>\n <ZepSetResult>" + std::to_string(code) +
           "</ZepSetResult>\n <ZepSetMsg>" + message + "</ZepSetMsg>\n <ZepGetWaitSec>" + std::to_string(waitSeconds) +
           "</ZepGetWaitSec>\n</root>\n";
}

void expectWellFormed(const std::string& document) {
    const Ended checked = run({.command = {"xmllint", "--noout", "-"}, .input = document});
    EXPECT_EQ(checked.status, 0) << checked.errors;
}

std::string withElement(const std::string& document, const std::string& path, const std::string& content) {
    const Place place = find(document, path);
    return document.substr(0, place.content) + content + document.substr(place.end);
}

std::string withoutElement(const std::string& document, const std::string& path) {
    const Place place = find(document, path);
    return document.substr(0, place.start) + document.substr(place.stop);
}

std::string nameDocument(const std::string& name) {
    return "<root><specVersion><major>1</major><minor>1</minor></specVersion><Device>"
           "<Configurable>1</Configurable><DeviceName>" +
           name +
           "</DeviceName><DevicePwd>bramble-1234</DevicePwd><RouterEnbl>1</RouterEnbl>"
           "<UpLinkConnection><Configurable>0</Configurable></UpLinkConnection>"
           "<EasyRoaming>-70 3 10 5</EasyRoaming>"
           "<Wireless2.4><Configurable>0</Configurable></Wireless2.4>"
           "<Wireless5><Configurable>0</Configurable></Wireless5>"
           "<SafetyWdn><SafetyWdnEnbl>1</SafetyWdnEnbl><UrlDetectEnbl>1</UrlDetectEnbl>"
           "<SafetyNotifyEnbl>0</SafetyNotifyEnbl><ToolRecommendEnbl>0</ToolRecommendEnbl></SafetyWdn>"
           "</Device></root>\n";
}

} // namespace pendra::test
