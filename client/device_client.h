/**
 * @file
 * A device as its clients know it: greeting, logging in, setup documents, stations.
 */
#ifndef PENDRA_CLIENT_DEVICE_CLIENT_H
#define PENDRA_CLIENT_DEVICE_CLIENT_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "client/http.h"
#include "client/result_document.h"

namespace pendra::client {

struct Hello {
    std::string library;
    std::string protocol;
    std::string spec; /**< version of the documents that the device takes */
    uint32_t uptime = 0;
    std::string client; /**< this client's address, as the device sees it */
};

struct Session {
    std::string id;
    int seconds = 0;
};

struct Station {
    std::string mac;
    std::string interface;
    std::optional<int> rssi; /**< dBm */
};

/** Every call throws Failure when it does not get what it is for. Calls that need admission log in by themselves. */
class DeviceClient {
  public:
    using PasswordSource = std::function<std::string()>;

    enum class Login {
        whenNeeded, /**< an address that is still admitted needs none */
        always,     /**< before the first request that needs admission */
    };

    /** @param password asked once, and only for a login. */
    DeviceClient(const std::string& url, PasswordSource password, Login login);

    Hello hello();
    Session login();
    ResultDocument setup(const std::string& document, bool cloning);
    /** @return nothing when the device holds no result document. */
    std::optional<ResultDocument> result();
    std::vector<Station> stations();
    void disconnect(const Station& station);

  private:
    HttpReply admitted(const std::function<HttpReply()>& request);
    const std::string& password();

    HttpClient http_;
    PasswordSource passwordSource_;
    std::optional<std::string> password_;
    bool loginIsDue_;
};

} // namespace pendra::client

#endif
