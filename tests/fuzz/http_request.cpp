// Requests to the host: bytes as a client sends them on one connection, on the fake device; first from a client that is
// not admitted, then from one that is. The host answers or closes, its answers are well formed, and it goes on serving.
#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "fuzz/reference.h"
#include "fuzz/support.h"
#include "host/report.h"
#include "host/server.h"
#include "host/signals.h"
#include "platform/device.h"
#include "platform/vendor/upgrade.h"

using namespace pendra::fuzz;
using pendra::test::device;

// What the host needs of the reference device, on the fake one; and no lines on standard error.
namespace pendra::device {

namespace {

std::map<std::string, std::string> treeBefore;
bool isOpen = false;

} // namespace

bool beginRequest(std::string&) {
    pendra::fuzz::require(!isOpen, "one request at a time");
    isOpen = true;
    treeBefore = pendra::test::device().tree;
    return true;
}

bool commitRequest(std::string&) {
    isOpen = false;
    return true;
}

void abandonRequest() {
    if (isOpen) pendra::test::device().tree = treeBefore;
    isOpen = false;
}

const Upgrade& lastUpgrade() {
    static const Upgrade none = {};
    return none;
}

// The fake tree counts no changes: everything is read anew for each request.
std::size_t treeVersion() {
    return 0;
}

} // namespace pendra::device

namespace pendra::host {

void reportFault(const std::string&) {}
void logLine(int, const std::string&) {}

} // namespace pendra::host

namespace {

pendra::host::Server& server() {
    static pendra::host::Server instance;
    static const bool started = [] {
        pendra::host::installSignals();
        std::string error;
        const bool done = instance.start("127.0.0.1", 0, error);
        require(done, "the host starts", error);
        return done;
    }();
    static_cast<void>(started);
    return instance;
}

class Connection {
  public:
    Connection() {
        require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends_) == 0, "a pair of sockets");
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        sockaddr generic;
        std::memcpy(&generic, &address, sizeof generic);
        require(server().adopt(ends_[1], generic, sizeof address), "the host takes a client");
    }
    ~Connection() { close(ends_[0]); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Everything the host answers until it closes.
    std::string exchange(std::string_view request) {
        // More turns than any request needs: the host serves what has come in without waiting.
        constexpr int kTurnsMax = 20000;
        for (int turn = 0; turn < kTurnsMax; turn++) {
            send(request);
            server().serveOnce();
            if (receive()) return answer_;
        }
        require(false, "the host answers or closes");
        return answer_;
    }

  private:
    // The end comes by itself: the host's web server sees an end that comes along with bytes only when its time is up.
    void send(std::string_view& request) {
        if (request.empty()) {
            shutdown(ends_[0], SHUT_WR);
            return;
        }
        const ssize_t sent = ::send(ends_[0], request.data(), request.size(), MSG_NOSIGNAL);
        if (sent > 0) request.remove_prefix(static_cast<size_t>(sent));
        if (sent < 0 && errno == EPIPE) request = {};
    }

    // True when the host has closed.
    bool receive() {
        char buffer[8192];
        ssize_t count = 0;
        while ((count = recv(ends_[0], buffer, sizeof buffer, 0)) > 0)
            answer_.append(buffer, static_cast<size_t>(count));
        return count == 0 || (errno != EAGAIN && errno != EINTR);
    }

    int ends_[2];
    std::string answer_;
};

bool isStatusLine(std::string_view line) {
    return line.size() > 13 && line.rfind("HTTP/1.", 0) == 0 && (line[7] == '0' || line[7] == '1') && line[8] == ' ' &&
           line[9] >= '1' && line[9] <= '5' && std::isdigit(line[10]) != 0 && std::isdigit(line[11]) != 0 &&
           line[12] == ' ';
}

void checkHeaderLine(std::string_view line) {
    const size_t colon = line.find(": ");
    require(colon != std::string_view::npos && colon > 0, "a header has a name and a value", line);
    for (const char character : line)
        require(character >= ' ' || character == '\t', "a header has no control characters", line);
}

// The length of the body that a head announces; nothing where there is none to come.
size_t bodyLength(std::string_view head) {
    const std::string lower = lowerCase(head);
    const size_t found = lower.find("\r\ncontent-length: ");
    if (found == std::string::npos || head.substr(9, 1) == "1" || head.substr(9, 3) == "304") return 0;
    return std::strtoul(lower.c_str() + found + 18, nullptr, 10);
}

// Cuts the head of an answer off and checks it.
std::string takeHead(std::string_view& answer) {
    const size_t end = answer.find("\r\n\r\n");
    require(end != std::string_view::npos, "an answer has a whole head", answer);
    const std::string head(answer.substr(0, end));
    answer.remove_prefix(end + 4);
    size_t lineEnd = std::min(head.find("\r\n"), head.size());
    require(isStatusLine(head.substr(0, lineEnd)), "an answer begins with a status line", head);
    while (lineEnd < head.size()) {
        const size_t start = lineEnd + 2;
        lineEnd = std::min(head.find("\r\n", start), head.size());
        checkHeaderLine(std::string_view(head).substr(start, lineEnd - start));
    }
    return head;
}

// The answers of one connection in turn. The answer to a HEAD has no body, which the next answer shows.
void checkAnswers(std::string_view answer) {
    while (!answer.empty()) {
        const size_t length = bodyLength(takeHead(answer));
        const bool hasNoBody = answer.empty() || (length > 0 && isStatusLine(answer.substr(0, 20)));
        if (hasNoBody) continue;
        require(answer.size() >= length, "the body of an answer is as long as announced");
        answer.remove_prefix(length);
    }
}

bool carriesKey(std::string_view request) {
    return request.find("PendraKey=") != std::string_view::npos || request.find("DKey=") != std::string_view::npos;
}

void startHost(bool admitted) {
    startDevice();
    device().stations["ra0"] = {{{2, 0xA1, 0xB2, 0xC3, 0xD4, 0xE5}, {-50, -60, -70}}};
    device().stations["rai0"] = {};
    device().tree["/bramble/tempdirecory"] = "/nonexistent";
    guardRecord();
    init_ZepVar();
    if (admitted) clientAuthListAdd(&clientauthinfo, "127.0.0.1", "admin", "secret", nullptr, 1);
    device().forget();
}

void checkAlive() {
    const std::string answer = Connection().exchange("GET /zep/hello HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
    require(answer.rfind("HTTP/1.1 200 ", 0) == 0, "the host goes on serving", answer);
}

} // namespace

// Nothing that a client sends changes anything before it has shown a key.
void checkStranger(const std::string& request) {
    startHost(false);
    checkAnswers(Connection().exchange(request));
    if (carriesKey(request)) return;
    require(device().treeWrites().empty(), "a client that is not admitted changes nothing");
    require(device().commands().empty(), "a client that is not admitted runs nothing");
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string request = Input(data, size).bytes();
    checkStranger(request);
    startHost(true);
    checkAnswers(Connection().exchange(request));
    checkRecord();
    checkAlive();
    return 0;
}
