/**
 * @file
 * The host as a web server: what it answers to requests that are no setup.
 */
#include <algorithm>

#include "running_device.h"

namespace pendra::test {
namespace {

constexpr size_t kMebibyte = size_t{1} << 20;

class HttpInterface : public RunningDevice {
  protected:
    HttpInterface() { start(); }

    /** Expects a refusal of a posted document, nothing changed, and a host that goes on. */
    void expectRefused(const HttpReply& reply, int status, const DeviceFiles::Snapshot& before) const {
        EXPECT_EQ(reply.status, status);
        EXPECT_EQ(reply.contentType, "text/plain; charset=utf-8");
        EXPECT_EQ(std::count(reply.body.begin(), reply.body.end(), '\n'), 1) << reply.body;
        awaitScripts();
        EXPECT_EQ(files.changedFiles(before), std::vector<std::string>{});
    }
};

TEST_F(HttpInterface, UnknownPath_Is404) {
    for (const char* path : {"/zep", "/zep/", "/zep/Setup", "/zep/setup/", "/zep/none?name=x", "/%00"}) {
        EXPECT_EQ(get(path).status, 404) << path;
    }
    EXPECT_EQ(post("/zep/hello/x", "text").status, 404);
}

TEST_F(HttpInterface, WrongMethod_Is405WithTheRightOnes) {
    const std::vector<std::vector<std::string>> rows = {
        {"POST", "/zep/hello", "GET, HEAD"},  {"PUT", "/zep/login", "GET, HEAD, POST"},
        {"GET", "/zep/setup", "POST"},        {"DELETE", "/zep/setup", "POST"},
        {"POST", "/zep/result", "GET, HEAD"}, {"OPTIONS", "/zep/stations", "GET, HEAD, POST"},
        {"post", "/zep/setup", "POST"}, // methods tell cases apart
    };
    for (const std::vector<std::string>& row : rows) {
        const HttpReply reply = curl({"-X", row[0], url(row[1])});
        EXPECT_EQ(reply.status, 405) << row[0] << " " << row[1];
        EXPECT_EQ(reply.allow, row[2]);
    }
}

TEST_F(HttpInterface, Hello_TellsWhatAClientNeeds) {
    files.setUptime("12345");
    const HttpReply reply = get("/zep/hello");
    EXPECT_EQ(reply.contentType, "application/json");
    EXPECT_EQ(reply.body,
              "{\"library\":\"b1.3.1\",\"protocol\":\"1.1\",\"spec\":\"1.1\",\"uptime\":12345,"
              "\"client\":\"127.0.0.1\"}\n");
}

TEST_F(HttpInterface, Head_AnswersWithoutABody) {
    Connection connection(host->port());
    connection.send("HEAD /zep/hello HTTP/1.1\r\nHost: device\r\nConnection: close\r\n\r\n");
    const std::string reply = connection.readAll();
    EXPECT_EQ(reply.find("HTTP/1.1 200 "), 0u) << reply;
    EXPECT_EQ(reply.find("\r\n\r\n") + 4, reply.size()) << reply;
}

TEST_F(HttpInterface, NoResultYet_Is404) {
    login();
    EXPECT_EQ(get("/zep/result").status, 404);
}

TEST_F(HttpInterface, BodyBeyondOneMebibyte_Is413) {
    login();
    const DeviceFiles::Snapshot before = files.snapshot();
    std::string document = example("setup.xml");
    document.resize(kMebibyte + 1, ' ');
    expectRefused(post("/zep/setup", document), 413, before);
    // Without "Expect", the body comes whether it is wanted or not.
    expectRefused(curl({"-H", "Expect:", "--data-binary", "@-", url("/zep/setup")}, document), 413, before);
    expectRefused(curl({"-H", "Transfer-Encoding: chunked", "--data-binary", "@-", url("/zep/setup")}, document), 413,
                  before);
    expectRefused(
        curl({"-H", "Expect:", "-H", "Transfer-Encoding: chunked", "--data-binary", "@-", url("/zep/setup")}, document),
        413, before);
}

TEST_F(HttpInterface, HugeDeclaredBody_Is413AtOnce) {
    login();
    Connection connection(host->port());
    connection.send("POST /zep/setup HTTP/1.1\r\nHost: device\r\nContent-Length: 99999999999\r\n\r\n<root>");
    EXPECT_EQ(connection.readUntil("\r\n\r\n").find("HTTP/1.1 413 "), 0u);
    awaitScripts();
}

TEST_F(HttpInterface, BodyOfExactlyOneMebibyte_IsApplied) {
    std::string document = example("setup.xml");
    document.resize(kMebibyte, ' ');
    expectResult(setUp(document), 0, "", 65);
    std::string other = nameDocument("Attic");
    other.resize(kMebibyte, ' ');
    login();
    const HttpReply chunked =
        curl({"-H", "Transfer-Encoding: chunked", "--data-binary", "@-", url("/zep/setup")}, other);
    expectResult(chunked, 0, "", 5);
    EXPECT_EQ(files.get("/sys/friendlyname"), "Attic");
}

TEST_F(HttpInterface, DocumentInSmallPieces_IsApplied) {
    login();
    const std::string request = httpPost("/zep/setup", nameDocument("Attic"));
    Connection connection(host->port());
    for (size_t start = 0; start < request.size(); start += 97) {
        connection.send(request.substr(start, 97));
    }
    EXPECT_NE(connection.readUntil("</root>\n").find(resultDocument(0, "", 5)), std::string::npos);
}

TEST_F(HttpInterface, EmptyBody_Is400) {
    login();
    const DeviceFiles::Snapshot before = files.snapshot();
    expectRefused(post("/zep/setup", ""), 400, before);
    expectRefused(post("/zep/stations", ""), 400, before);
}

TEST_F(HttpInterface, BodyWithANulByte_Is400) {
    login();
    const DeviceFiles::Snapshot before = files.snapshot();
    std::string document = example("setup.xml");
    document[document.find("Living")] = '\0';
    expectRefused(post("/zep/setup", document), 400, before);
}

TEST_F(HttpInterface, StationFormOutsideItsGrammar_Is400AndRunsNothing) {
    login();
    const DeviceFiles::Snapshot before = files.snapshot();
    for (const char* form : {"mac=02:a1:b2:c3:d4:e6", "ifname=ra0", "mac=02:a1:b2:c3:d4:e6&ifname=eth0",
                             "mac=02:a1:b2:c3:d4:e6;reboot&ifname=ra0", "mac=02-a1-b2-c3-d4-e6&ifname=ra0",
                             "mac=%2402:a1:b2:c3:d4:e&ifname=ra0", "mac=02:a1:b2:c3:d4:e6&ifname=ra0%0Areboot"}) {
        SCOPED_TRACE(form);
        expectRefused(curl({"-d", form, url("/zep/stations")}), 400, before);
    }
}

TEST_F(HttpInterface, BrokenRequests_DoNotStopTheHost) {
    for (const char* text :
         {"\r\n\r\n", "GET\r\n\r\n", "\x16\x03\x01\x02", "POST /zep/setup HTTP/1.1\r\nContent-Length: -5\r\n\r\n",
          "GET /zep/hello HTTP/9.9\r\n\r\n"}) {
        Connection connection(host->port());
        connection.send(text);
        connection.readUntil("\r\n\r\n", std::chrono::milliseconds(200));
    }
    EXPECT_EQ(get("/zep/hello").status, 200);
    EXPECT_TRUE(host->isRunning());
}

TEST_F(HttpInterface, ClientThatGoesAwayBeforeItsAnswer_StillGetsWhatItAskedFor) {
    login();
    {
        Connection connection(host->port());
        connection.send(httpPost("/zep/setup", nameDocument("Attic")));
    }
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (files.scriptsRun().empty() && std::chrono::steady_clock::now() < end) {
        awaitScripts();
    }
    EXPECT_EQ(files.scriptsRun(), std::vector<std::string>{"device_resync.sh"});
    EXPECT_EQ(files.get("/sys/friendlyname"), "Attic");
}

} // namespace
} // namespace pendra::test
