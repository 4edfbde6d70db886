#include "host/server.h"

#include <poll.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <exception>

#include "host/listener.h"
#include "host/report.h"
#include "host/routes.h"
#include "host/setup_run.h"
#include "host/signals.h"
#include "pendra/common.h"
#include "platform/device.h"

namespace pendra::host {

namespace {

using Clock = std::chrono::steady_clock;

constexpr unsigned kIdleSeconds = 15;

// Room for those that have been dismissed and not yet closed, so that new ones come in meanwhile.
constexpr size_t kLeaving = 64;

// What the host has open itself, with the scripts it starts.
constexpr size_t kOwnDescriptors = 64;

// Above 32 KiB the web server takes it from the kernel, page by page as it is needed, and gives it back with the
// connection. Less would stay in the allocator after a rush.
constexpr size_t kConnectionMemory = size_t{36} << 10;
constexpr auto kDrainTime = std::chrono::milliseconds(500);
// Milliseconds that the loop waits at most.
constexpr unsigned kWaitStep = 1000;
constexpr unsigned kDrainStep = 50;

// A refused body is read on up to here, so that the client sees the refusal and not a broken connection.
constexpr size_t kMaxDiscarded = size_t{16} << 20;

std::string_view headerOf(MHD_Connection* connection, const char* name) {
    const char* value = MHD_lookup_connection_value(connection, MHD_HEADER_KIND, name);
    return value == nullptr ? std::string_view{} : std::string_view{value};
}

size_t declaredLength(MHD_Connection* connection) {
    return std::strtoull(std::string(headerOf(connection, MHD_HTTP_HEADER_CONTENT_LENGTH)).c_str(), nullptr, 10);
}

std::string clientOf(MHD_Connection* connection) {
    const auto* info = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CLIENT_ADDRESS);
    return info == nullptr ? "" : addressText(info->client_addr);
}

Peer& peerOf(MHD_Connection* connection) {
    return *static_cast<Peer*>(MHD_get_connection_info(connection, MHD_CONNECTION_INFO_SOCKET_CONTEXT)->socket_context);
}

MHD_Result answer(MHD_Connection* connection, Request& request, const Answer& answer) {
    if (daemon_log_level >= 6) {
        const std::string path(request.route == nullptr ? "(no route)" : request.route->path);
        logLine(6, request.client + " " + path + " -> " + std::to_string(answer.status));
    }
    request.answered = true;
    return sendAnswer(connection, answer);
}

void readHeaders(MHD_Connection* connection, Request& request) {
    request.host = headerOf(connection, MHD_HTTP_HEADER_HOST);
    request.origin = headerOf(connection, MHD_HTTP_HEADER_ORIGIN);
    request.referer = headerOf(connection, MHD_HTTP_HEADER_REFERER);
    request.accept = headerOf(connection, MHD_HTTP_HEADER_ACCEPT);
    request.contentType = headerOf(connection, MHD_HTTP_HEADER_CONTENT_TYPE);
}

// A client that waits for "100 Continue" gets a refusal without having to send its body.
MHD_Result startRequest(MHD_Connection* connection, Request& request, const char* method, const char* path) {
    const size_t length = declaredLength(connection);
    request.started = true;
    request.client = peerOf(connection).address;
    readHeaders(connection, request);
    request.refusal = admitRequest(request, method, request.cutPath ? "" : path, length);
    if (!request.refusal) return MHD_YES;
    const bool bodyIsHeldBack = !headerOf(connection, MHD_HTTP_HEADER_EXPECT).empty();
    if (!bodyIsHeldBack && length <= kMaxDiscarded) return MHD_YES;
    return answer(connection, request, *request.refusal);
}

MHD_Result handle(MHD_Connection* connection, Request& request, const char* method, const char* path,
                  std::string_view stretch) {
    if (!request.started) return startRequest(connection, request, method, path);
    if (stretch.empty()) return answer(connection, request, answerRequest(request));
    receiveBody(request, stretch);
    return request.received <= kMaxDiscarded ? MHD_YES : MHD_NO;
}

void logDaemonLine(void*, const char* format, va_list arguments) {
    char line[512];
    std::vsnprintf(line, sizeof line, format, arguments);
    line[std::strcspn(line, "\n")] = '\0';
    logLine(6, line);
}

int openTicker() {
    const int ticker = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK);
    const itimerspec everySecond = {.it_interval = {.tv_sec = 1, .tv_nsec = 0},
                                    .it_value = {.tv_sec = 1, .tv_nsec = 0}};
    if (ticker >= 0) timerfd_settime(ticker, 0, &everySecond, nullptr);
    return ticker;
}

// Seconds that passed while a script ran are made up for.
void tick(int ticker) {
    uint64_t seconds = 0;
    if (read(ticker, &seconds, sizeof seconds) != sizeof seconds) return;
    for (; seconds > 0; --seconds) {
        tick_timers();
    }
}

} // namespace

Server::~Server() {
    // Once it runs, the web server owns the listening socket.
    if (daemon_ != nullptr) {
        MHD_stop_daemon(daemon_);
    } else if (listener_ >= 0) {
        close(listener_);
    }
    if (ticker_ >= 0) close(ticker_);
}

bool Server::start(const std::string& address, uint16_t port, std::string& error) {
    if (!allowDescriptors(most_ + kLeaving + kOwnDescriptors, error)) return false;
    listener_ = openListener(address, port, error);
    if (listener_ < 0) return false;
    ticker_ = openTicker();
    if (ticker_ >= 0 && startDaemon()) return true;
    error = std::string("cannot start the web server: ") + std::strerror(errno);
    return false;
}

bool Server::startDaemon() {
    // The logger comes first, so that it hears of faults in the options behind it.
    daemon_ = MHD_start_daemon(
        MHD_USE_EPOLL | MHD_USE_ERROR_LOG, 0, nullptr, nullptr, onRequest, this, MHD_OPTION_EXTERNAL_LOGGER,
        logDaemonLine, nullptr, MHD_OPTION_LISTEN_SOCKET, listener_, MHD_OPTION_URI_LOG_CALLBACK, onRequestLine, this,
        MHD_OPTION_NOTIFY_COMPLETED, onCompleted, this, MHD_OPTION_NOTIFY_CONNECTION, onConnection, this,
        MHD_OPTION_CONNECTION_LIMIT, static_cast<unsigned>(most_ + kLeaving), MHD_OPTION_CONNECTION_TIMEOUT,
        kIdleSeconds, MHD_OPTION_CONNECTION_MEMORY_LIMIT, kConnectionMemory, MHD_OPTION_END);
    if (daemon_ == nullptr) return false;
    const auto* info = MHD_get_daemon_info(daemon_, MHD_DAEMON_INFO_EPOLL_FD);
    if (info != nullptr) events_ = info->epoll_fd;
    return events_ >= 0;
}

std::string Server::url() const {
    return listenerUrl(listener_);
}

void Server::run() {
    while (!stopRequested()) {
        serveOnce();
        wait(kWaitStep);
    }
    drain();
}

bool Server::adopt(int client, const sockaddr& address, socklen_t length) {
    return MHD_add_connection(daemon_, client, &address, length) == MHD_YES;
}

void Server::serveOnce() {
    MHD_run(daemon_);
    commitAnswered();
}

void Server::wait(unsigned most) {
    pollfd sources[] = {{events_, POLLIN, 0}, {ticker_, POLLIN, 0}};
    MHD_UNSIGNED_LONG_LONG due = 0;
    const bool isDue = MHD_get_timeout(daemon_, &due) == MHD_YES && due < most;
    const long milliseconds = isDue ? static_cast<long>(due) : static_cast<long>(most);
    const timespec limit = {.tv_sec = milliseconds / 1000, .tv_nsec = milliseconds % 1000 * 1'000'000};
    if (ppoll(sources, 2, &limit, &waitMask()) <= 0 || sources[1].revents == 0) return;
    tick(ticker_);
    connections_.tick(); // once, however long a script ran: clients are not to pay for that
}

void Server::drain() {
    close(MHD_quiesce_daemon(daemon_));
    listener_ = -1;
    const auto end = Clock::now() + kDrainTime;
    while (active_ > 0 && Clock::now() < end) {
        serveOnce();
        wait(kDrainStep);
    }
    MHD_stop_daemon(daemon_);
    daemon_ = nullptr;
    commitAnswered();
}

// Called outside of the web server's own functions: the scripts may take their time, and every answer that could be
// sent has been sent.
void Server::commitAnswered() {
    for (const unsigned ticket : answered_) {
        commitSetup(ticket);
    }
    answered_.clear();
}

void Server::onConnection(void* self, MHD_Connection* connection, void** peer, MHD_ConnectionNotificationCode code) {
    auto& server = *static_cast<Server*>(self);
    if (code == MHD_CONNECTION_NOTIFY_CLOSED) {
        server.connections_.leave(*static_cast<Peer*>(*peer));
        return;
    }
    const int socket = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD)->connect_fd;
    *peer = &server.connections_.arrive(socket, clientOf(connection));
}

void* Server::onRequestLine(void* self, const char* uri, MHD_Connection* connection) {
    ++static_cast<Server*>(self)->active_;
    const std::string_view text = uri;
    const size_t mark = text.find('?');
    auto* request = new Request;
    if (mark != std::string_view::npos) request->query = text.substr(mark + 1);
    peerOf(connection).request = request;
    request->cutPath = text.substr(0, mark).find("%00") != std::string_view::npos;
    return request;
}

// Answers that are refused here are sent when the rest of the body has been read, as 413 is.
void Server::boundBodies(Peer& peer) {
    Peer* heaviest = connections_.holdBody(peer, peer.request->body.capacity());
    if (heaviest == nullptr) return;
    refuseBusy(*heaviest->request);
    connections_.holdBody(*heaviest, 0);
}

MHD_Result Server::onRequest(void* self, MHD_Connection* connection, const char* path, const char* method, const char*,
                             const char* upload, size_t* uploadSize, void** state) {
    auto& request = *static_cast<Request*>(*state);
    const std::string_view stretch(upload, *uploadSize);
    *uploadSize = 0;
    try {
        const MHD_Result result = handle(connection, request, method, path, stretch);
        static_cast<Server*>(self)->boundBodies(peerOf(connection));
        return result;
    } catch (const std::exception& fault) {
        // No exception may cross the web server's C code.
        device::abandonRequest();
        reportFault(std::string("a request failed: ") + fault.what());
        return MHD_NO;
    }
}

void Server::onCompleted(void* self, MHD_Connection* connection, void** state, MHD_RequestTerminationCode) {
    auto& server = *static_cast<Server*>(self);
    auto* request = static_cast<Request*>(*state);
    if (request == nullptr) return;
    --server.active_;
    server.connections_.answered(peerOf(connection));
    // A client that went away before its answer arrived does not undo what it asked for.
    if (request->commitTicket != 0) server.answered_.push_back(request->commitTicket);
    delete request;
    *state = nullptr;
}

} // namespace pendra::host
