/**
 * @file
 * The web server and its event loop: one thread, one request handled at a time, signals only inside the wait.
 */
#ifndef PENDRA_HOST_SERVER_H
#define PENDRA_HOST_SERVER_H

#include <microhttpd.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/connections.h"
#include "host/options.h"
#include "host/request.h"

namespace pendra::host {

class Server {
  public:
    /** @param connections that may stay at a time. */
    explicit Server(size_t connections = kDefaultConnections) : connections_(connections), most_(connections) {}
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    ~Server();

    /**
     * Listens; requests are answered from run() on.
     *
     * @param error receives one line for a person when that fails.
     */
    [[nodiscard]] bool start(const std::string& address, uint16_t port, std::string& error);

    /** @return the "http://address:port" the server listens on. */
    [[nodiscard]] std::string url() const;

    /** Serves until SIGTERM or SIGINT arrives; then ends what is under way, bounded in time. */
    void run();

    /** Takes over a connected socket, as if its client had come in by the listening one. */
    [[nodiscard]] bool adopt(int client, const sockaddr& address, socklen_t length);

    /** Answers what has come in, and commits what has been answered; does not wait. */
    void serveOnce();

  private:
    static void onConnection(void* self, MHD_Connection* connection, void** peer, MHD_ConnectionNotificationCode code);
    static void* onRequestLine(void* self, const char* uri, MHD_Connection* connection);
    static MHD_Result onRequest(void* self, MHD_Connection* connection, const char* path, const char* method,
                                const char* version, const char* upload, size_t* uploadSize, void** state);
    static void onCompleted(void* self, MHD_Connection* connection, void** state, MHD_RequestTerminationCode reason);

    bool startDaemon();
    void boundBodies(Peer& peer);
    void wait(unsigned most);
    void drain();
    void commitAnswered();

    Connections connections_;
    size_t most_;
    MHD_Daemon* daemon_ = nullptr;
    int listener_ = -1;
    int ticker_ = -1;
    int events_ = -1;
    int active_ = 0;                 // requests whose answer has not been sent yet
    std::vector<unsigned> answered_; // tickets of commits that are due
};

} // namespace pendra::host

#endif
