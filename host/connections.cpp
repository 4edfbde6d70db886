#include "host/connections.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <utility>

namespace pendra::host {

namespace {

// A client that sends or takes a byte now and then is never idle; this is what it has for one request and its answer.
constexpr unsigned kRequestSeconds = 60;

// What a dismissed one has to take its last answer.
constexpr unsigned kLeaveSeconds = 2;

// All bodies together. One of the longest kind fits several times, so an honest client alone is never refused.
constexpr size_t kMostHeld = size_t{4} << 20;

bool hasHungUp(int socket) {
    pollfd source{socket, POLLRDHUP, 0};
    return poll(&source, 1, 0) > 0;
}

} // namespace

Peer& Connections::arrive(int socket, std::string address) {
    Peer& peer = peers_.emplace_back(Peer{.socket = socket, .address = std::move(address), .since = now_});
    peer.place = std::prev(peers_.end());
    ++staying_[peer.address];
    if (++stayingInAll_ > most_) dismiss(*longestIdle());
    return peer;
}

// The address that has the most pays, so nobody can crowd out others by connecting more often. A request that is not
// complete counts as idling: a byte now and then would otherwise hold a place for good.
Peer* Connections::longestIdle() {
    size_t most = 0;
    for (const auto& [address, count] : staying_) {
        most = std::max(most, count);
    }
    const auto found = std::find_if(peers_.begin(), peers_.end(), [&](const Peer& peer) {
        return !peer.leaving && staying_.at(peer.address) == most;
    });
    return &*found;
}

// With its reading side closed, a connection is still served what has already come in, also while a script ran; then
// the web server sees its end. One whose answer is stuck would never come to that.
void Connections::dismiss(Peer& peer) {
    const bool isStuck = peer.request != nullptr && peer.request->answered;
    shutdown(peer.socket, isStuck ? SHUT_RDWR : SHUT_RD);
    peer.leaving = true;
    peer.since = now_;
    forget(peer);
}

void Connections::forget(const Peer& peer) {
    --stayingInAll_;
    const auto count = staying_.find(peer.address);
    if (--count->second == 0) staying_.erase(count);
}

void Connections::leave(Peer& peer) {
    if (!peer.leaving) forget(peer);
    held_ -= peer.held;
    peers_.erase(peer.place);
}

void Connections::answered(Peer& peer) {
    holdBody(peer, 0);
    peer.request = nullptr;
    if (!peer.leaving) peer.since = now_;
    peers_.splice(peers_.end(), peers_, peer.place);
}

// The end of a client that came together with its last bytes has escaped the web server: to it, all that was there has
// been read. A dismissal makes it look again.
void Connections::tick() {
    ++now_;
    for (Peer& peer : peers_) {
        const unsigned seconds = now_ - peer.since;
        if (peer.leaving) {
            if (seconds >= kLeaveSeconds) shutdown(peer.socket, SHUT_RDWR);
        } else if (seconds >= kRequestSeconds || hasHungUp(peer.socket)) {
            dismiss(peer);
        }
    }
}

Peer* Connections::holdBody(Peer& peer, size_t bytes) {
    held_ += bytes - peer.held;
    peer.held = bytes;
    if (held_ <= kMostHeld) return nullptr;
    const auto heaviest =
        std::max_element(peers_.begin(), peers_.end(), [](const Peer& a, const Peer& b) { return a.held < b.held; });
    return &*heaviest;
}

} // namespace pendra::host
