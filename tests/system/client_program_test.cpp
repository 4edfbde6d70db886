/**
 * @file
 * zepctl as a program: how its commands end and what they say.
 */
#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <thread>

#include "running_device.h"

namespace pendra::test {
namespace {

Ended runClient(std::vector<std::string> arguments, std::vector<std::string> environment = {},
                const std::string& input = "") {
    arguments.insert(arguments.begin(), PENDRA_CLIENT);
    return run({.command = std::move(arguments), .environment = std::move(environment), .input = input});
}

/** Answers one connection with a given text, whatever is asked. */
class Impostor {
  public:
    explicit Impostor(std::string reply) : listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        void* raw = &address;
        socklen_t length = sizeof address;
        const bool listens = ::bind(listener_, static_cast<sockaddr*>(raw), length) == 0 &&
                             ::listen(listener_, 1) == 0 &&
                             ::getsockname(listener_, static_cast<sockaddr*>(raw), &length) == 0;
        if (!listens) throw std::runtime_error("cannot listen");
        url_ = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port));
        thread_ = std::thread([this, text = std::move(reply)] { answer(text); });
    }
    Impostor(const Impostor&) = delete;
    Impostor& operator=(const Impostor&) = delete;
    ~Impostor() {
        ::shutdown(listener_, SHUT_RDWR); // ends an accept that nobody came to
        thread_.join();
        ::close(listener_);
    }
    [[nodiscard]] const std::string& url() const { return url_; }

  private:
    void answer(const std::string& text) const {
        const int peer = ::accept(listener_, nullptr, nullptr);
        if (peer < 0) return;
        char request[4096];
        if (::recv(peer, request, sizeof request, 0) > 0) ::send(peer, text.data(), text.size(), MSG_NOSIGNAL);
        ::close(peer);
    }

    int listener_;
    std::string url_;
    std::thread thread_;
};

TEST(ClientOptions, VersionAndHelp_ArePrinted) {
    EXPECT_EQ(runClient({"--version"}).output, "zepctl 1.3.1\n");
    const Ended help = runClient({"--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* word : {"hello", "login", "setup", "result", "stations", "--device", "--password"}) {
        EXPECT_NE(help.output.find(word), std::string::npos) << word;
    }
}

TEST(ClientOptions, WrongUsage_EndsWith2) {
    const std::vector<std::vector<std::string>> rows = {{},
                                                        {"nonsense"},
                                                        {"setup"},
                                                        {"hello", "--nonsense"},
                                                        {"stations", "--json", "--disconnect", "02:a1:b2:c3:d4:e5"},
                                                        {"--device", "ftp://127.0.0.1", "hello"}};
    for (const std::vector<std::string>& row : rows) {
        const Ended ended = runClient(row);
        EXPECT_EQ(ended.status, 2) << (row.empty() ? "no command" : row.front());
        EXPECT_NE(ended.errors, "");
    }
}

TEST(ClientOptions, NobodyListens_EndsWith4) {
    std::string gone;
    {
        const Impostor impostor("");
        gone = impostor.url();
    }
    const Ended ended = runClient({"--device", gone, "hello"});
    EXPECT_EQ(ended.status, 4);
    EXPECT_EQ(ended.errors.find("zepctl: No answer from " + gone + ": "), 0u) << ended.errors;
}

TEST(ClientOptions, PeerThatIsNoDevice_EndsWith5) {
    for (const char* reply :
         {"HTTP/1.1 200 OK\r\nContent-Length: 7\r\n\r\n<html/>", "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}",
          "HTTP/1.1 500 No\r\nContent-Length: 0\r\n\r\n", "SSH-2.0-server\r\n"}) {
        const Impostor impostor(reply);
        EXPECT_EQ(runClient({"--device", impostor.url(), "hello"}).status, 5) << reply;
    }
}

TEST(ClientOptions, PeerThatClosesAtOnce_EndsWith4) {
    const Impostor impostor("");
    EXPECT_EQ(runClient({"--device", impostor.url(), "hello"}).status, 4);
}

class ClientProgram : public RunningDevice {
  protected:
    ClientProgram() { start(); }
    [[nodiscard]] std::string device() const { return "ZEPCTL_DEVICE=" + host->url(); }
};

TEST_F(ClientProgram, Hello_ShowsTheDevice) {
    files.setUptime("4711");
    EXPECT_EQ(zepctl({"hello"}).output,
              "Library version:   b1.3.1\nProtocol version:  1.1\nDocument version:  1.1\n"
              "Uptime:            4711 s\nYour address:      127.0.0.1\n");
}

TEST_F(ClientProgram, WrongPassword_EndsWith3AndChangesNothing) {
    const DeviceFiles::Snapshot before = files.snapshot();
    const Ended login = runClient({"login"}, {device(), "ZEPCTL_PASSWORD=wrong"});
    EXPECT_EQ(login.status, 3);
    EXPECT_EQ(login.errors, "zepctl: The device did not accept the password.\n");
    EXPECT_EQ(login.output, "");
    const Ended setup = runClient({"--password", "wrong", "setup", "-"}, {device()}, example("setup.xml"));
    EXPECT_EQ(setup.status, 3);
    EXPECT_EQ(files.changedFiles(before), std::vector<std::string>{});
}

TEST_F(ClientProgram, WrongPasswordWhileTheAddressIsAdmitted_IsNoticedAllTheSame) {
    login();
    EXPECT_EQ(runClient({"stations"}, {device(), "ZEPCTL_PASSWORD=wrong"}).status, 3);
}

TEST_F(ClientProgram, NoPasswordAndNoTerminal_EndsWith2) {
    const Ended ended = runClient({"login"}, {device()});
    EXPECT_EQ(ended.status, 2);
    EXPECT_EQ(ended.errors, "zepctl: No password: give --password or ZEPCTL_PASSWORD, or run this on a terminal.\n");
}

TEST_F(ClientProgram, NoPasswordWhileTheAddressIsAdmitted_NeedsNone) {
    login();
    EXPECT_EQ(runClient({"stations"}, {device()}).status, 0);
}

TEST_F(ClientProgram, FaultyDocument_EndsWith1AtOnceAndNamesTheElement) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"faulty-channel.xml", "A value is not valid: Device/Wireless5/Channel\n"},
        {"faulty-missing-element.xml", "The document lacks an element: Device/UpLinkConnection/LoginPassword\n"},
        {"faulty-name.xml", "A value has the wrong length: Device/DeviceName\n"},
        {"faulty-version.xml", "The document's version differs from the one the device speaks.\n"},
    };
    for (const auto& [name, words] : rows) {
        const Ended ended = zepctl({"setup", std::string(PENDRA_SOURCE) + "/examples/" + name});
        EXPECT_EQ(ended.status, 1) << name;
        EXPECT_EQ(ended.output, words);
        EXPECT_EQ(ended.errors, "");
        const Ended result = zepctl({"result"});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.output, words);
    }
}

TEST_F(ClientProgram, DocumentWithoutRoot_EndsWith1) {
    const Ended ended = zepctl({"setup", "-"}, "nothing");
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.errors, "zepctl: The device refused: This is no setup document: it has no <root> element.\n");
}

TEST_F(ClientProgram, NoResultYet_EndsWith1) {
    const Ended ended = zepctl({"result"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.errors, "zepctl: The device holds no result document.\n");
}

TEST_F(ClientProgram, FileThatCannotBeRead_EndsWith6) {
    const std::string absent = files.tmp() + "/none.xml";
    const Ended ended = zepctl({"setup", absent});
    EXPECT_EQ(ended.status, 6);
    EXPECT_EQ(ended.errors, "zepctl: Cannot open " + absent + ": No such file or directory.\n");
    EXPECT_EQ(zepctl({"setup", "-"}, "").status, 6);
}

TEST_F(ClientProgram, StationsAsJson_AreAList) {
    const Ended ended = zepctl({"stations", "--json"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.output.find(
                  "[\n  {\n    \"mac\": \"02:a1:b2:C3:D4:E5\",\n    \"ifname\": \"ra0\",\n    \"rssi\": -58\n  },"),
              0u)
        << ended.output;
}

} // namespace
} // namespace pendra::test
