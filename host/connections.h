/**
 * @file
 * Who is connected: which connection yields when there are too many, which one has taken too long, and which body is
 * dropped when the bodies of all requests need too much memory.
 */
#ifndef PENDRA_HOST_CONNECTIONS_H
#define PENDRA_HOST_CONNECTIONS_H

#include <cstddef>
#include <list>
#include <map>
#include <string>

#include "host/request.h"

namespace pendra::host {

/** One connection. */
struct Peer {
    int socket;
    std::string address;
    unsigned since;             /**< second of the arrival, the last answer, or the dismissal */
    bool leaving = false;       /**< dismissed; the web server has not closed it yet */
    Request* request = nullptr; /**< the one under way */
    size_t held = 0;            /**< bytes that its body takes */
    std::list<Peer>::iterator place = {};
};

class Connections {
  public:
    /** @param most connections that may stay; one more arrival makes another one yield. */
    explicit Connections(size_t most) : most_(most) {}

    /** Adds one. The longest idle one of the address that has the most connections yields when there are too many. */
    Peer& arrive(int socket, std::string address);

    void leave(Peer& peer);

    /** An answer has been sent: nobody has been idle for a shorter time. */
    void answered(Peer& peer);

    /** A second of serving has passed. Who has hung up, or been without an answer for too long, is dismissed. */
    void tick();

    /**
     * Notes how much memory the body of a request takes.
     *
     * @return the peer whose request holds the most when all of them hold too much, else null. It has to give it up.
     */
    Peer* holdBody(Peer& peer, size_t bytes);

  private:
    [[nodiscard]] Peer* longestIdle();
    void dismiss(Peer& peer);
    void forget(const Peer& peer);

    size_t most_;
    std::list<Peer> peers_; // the longest idle first
    std::map<std::string, size_t> staying_;
    size_t stayingInAll_ = 0;
    size_t held_ = 0;
    unsigned now_ = 0;
};

} // namespace pendra::host

#endif
