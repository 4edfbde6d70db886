/**
 * @file
 * The clients of the tests: curl, zepctl, and a bare connection for requests that neither of them would send.
 */
#ifndef PENDRA_TESTS_SYSTEM_CLIENTS_H
#define PENDRA_TESTS_SYSTEM_CLIENTS_H

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "process.h"

namespace pendra::test {

struct HttpReply {
    int status = 0; /**< 0: there was no reply */
    std::string contentType;
    std::string allow;
    std::string challenge; /**< WWW-Authenticate */
    std::string body;
};

/** Runs curl with these arguments, the address among them. */
HttpReply curl(std::vector<std::string> arguments, const std::string& input = "");

/** @return lower-case hex digits, made by md5sum. */
std::string md5(const std::string& text);

/** @return the key of a client, made as clients make it: slot, address, user name and password. */
std::string accessKey(long slot, const std::string& address, const std::string& password);

/** A connection of this process. */
class Connection {
  public:
    explicit Connection(uint16_t port);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection();

    void send(std::string_view text) const;
    /** Reads until the text is there. @return everything read so far; without it when the peer or the time ended. */
    std::string readUntil(std::string_view text, std::chrono::milliseconds limit = std::chrono::seconds(20));
    /** Reads what comes until the peer closes. */
    std::string readAll();

  private:
    bool readMore(std::chrono::milliseconds limit);

    int socket_;
    std::string received_;
};

/** @return a request as it goes over a connection. */
std::string httpPost(const std::string& path, const std::string& body);

} // namespace pendra::test

#endif
