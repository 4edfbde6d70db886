/**
 * @file
 * A device as its clients know it: greeting, logging in, setup documents, stations, variables.
 */
#ifndef PENDRA_CLIENT_DEVICE_CLIENT_H
#define PENDRA_CLIENT_DEVICE_CLIENT_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "client/firmware_status.h"
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

struct Variable {
    std::string name;
    std::string value;
    bool settable = false;
};

/** What the device says to a form, or to one value. */
struct Verdict {
    int code = 0;
    std::string name; /**< the variable at fault */
    std::string words;
    int waitSeconds = 0;
};

/** Pairs of a form: names and values as a person writes them. */
using Assignments = std::vector<std::pair<std::string, std::string>>;

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

    /** One step of an upgrade: '0' start over, '1' search, '2' download, '4' install, '9' look. */
    FirmwareStatus firmwareAction(char action);
    FirmwareState firmwareState();
    /** @return the release notes of the firmware that was found; empty while there are none. */
    std::string releaseNotes();
    std::string variable(const std::string& name);
    /** @return where in the device's configuration tree a variable stands. */
    std::string variablePath(const std::string& name);
    std::vector<Variable> variables();
    Verdict set(const Assignments& assignments);
    std::vector<Verdict> validate(const Assignments& assignments);

  private:
    HttpReply admitted(const std::function<HttpReply()>& request);
    const std::string& password();
    std::string readVariable(const std::string& name, const std::string& field);
    HttpReply postForm(const std::string& path, const Assignments& assignments);

    HttpClient http_;
    PasswordSource passwordSource_;
    std::optional<std::string> password_;
    bool loginIsDue_;
};

} // namespace pendra::client

#endif
