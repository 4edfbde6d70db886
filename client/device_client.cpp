#include "client/device_client.h"

#include <nlohmann/json.hpp>

#include "client/access_key.h"
#include "client/failure.h"

namespace pendra::client {

namespace {

using nlohmann::json;

constexpr long kOk = 200;
constexpr long kUnauthorized = 401;
constexpr long kNotFound = 404;

// The statuses by which a device says that it understood and does not want to.
bool isRefusal(long status) {
    return status == 400 || status == 413 || status == 507;
}

[[noreturn]] void failWith(const HttpReply& reply) {
    const std::string line = printable(reply.body.substr(0, reply.body.find('\n')));
    if (reply.status == kUnauthorized) throw Failure(kNotAdmitted, "The device does not admit this client: " + line);
    if (isRefusal(reply.status)) throw Failure(kRefused, "The device refused: " + line);
    throw Failure(kUnexpected,
                  "The device answered unexpectedly, with status " + std::to_string(reply.status) + ": " + line);
}

void expectOk(const HttpReply& reply) {
    if (reply.status != kOk) failWith(reply);
}

/** Reads a JSON answer; whatever it lacks makes the answer an unexpected one. */
template <typename Reader>
auto readJson(const HttpReply& reply, Reader reader) {
    expectOk(reply);
    try {
        return reader(json::parse(reply.body));
    } catch (const json::exception&) {
        throw Failure(kUnexpected, "The device answered with something else than a device of this kind does.");
    }
}

ResultDocument readResult(const HttpReply& reply) {
    expectOk(reply);
    const auto result = parseResult(reply.body);
    if (!result) throw Failure(kUnexpected, "The device answered with something else than a result document.");
    return *result;
}

Station readStation(const json& entry) {
    const json& rssi = entry.at("rssi");
    return {entry.at("mac").get<std::string>(), entry.at("ifname").get<std::string>(),
            rssi.is_null() ? std::nullopt : std::optional<int>(rssi.get<int>())};
}

std::vector<Station> readStations(const json& answer) {
    std::vector<Station> stations;
    for (const json& entry : answer.at("stations")) {
        stations.push_back(readStation(entry));
    }
    return stations;
}

} // namespace

DeviceClient::DeviceClient(const std::string& url, PasswordSource password, Login login)
    : http_(url), passwordSource_(std::move(password)), loginIsDue_(login == Login::always) {}

const std::string& DeviceClient::password() {
    if (!password_) password_ = passwordSource_();
    return *password_;
}

Hello DeviceClient::hello() {
    return readJson(http_.get("/zep/hello"), [](const json& answer) {
        return Hello{answer.at("library").get<std::string>(), answer.at("protocol").get<std::string>(),
                     answer.at("spec").get<std::string>(), answer.at("uptime").get<uint32_t>(),
                     answer.at("client").get<std::string>()};
    });
}

Session DeviceClient::login() {
    const std::string& secret = password(); // before the greeting: typing takes time, and the key is short-lived
    const Hello greeting = hello();
    const std::string key = accessKey(greeting.uptime, greeting.client, secret);
    const HttpReply reply = http_.post("/zep/login", "application/x-www-form-urlencoded", "PendraKey=" + key);
    if (reply.status == kUnauthorized) throw Failure(kNotAdmitted, "The device did not accept the password.");
    loginIsDue_ = false;
    return readJson(reply, [](const json& answer) {
        return Session{answer.at("session").get<std::string>(), answer.at("seconds").get<int>()};
    });
}

HttpReply DeviceClient::admitted(const std::function<HttpReply()>& request) {
    if (loginIsDue_) login();
    HttpReply reply = request();
    if (reply.status != kUnauthorized) return reply;
    login();
    return request();
}

ResultDocument DeviceClient::setup(const std::string& document, bool cloning) {
    const std::string path = cloning ? "/zep/setup?apcloning=1" : "/zep/setup";
    return readResult(admitted([&] { return http_.post(path, "application/xml", document); }));
}

std::optional<ResultDocument> DeviceClient::result() {
    const HttpReply reply = admitted([&] { return http_.get("/zep/result"); });
    if (reply.status == kNotFound) return std::nullopt;
    return readResult(reply);
}

std::vector<Station> DeviceClient::stations() {
    return readJson(admitted([&] { return http_.get("/zep/stations"); }), readStations);
}

void DeviceClient::disconnect(const Station& station) {
    const std::string form = "mac=" + http_.escape(station.mac) + "&ifname=" + http_.escape(station.interface);
    expectOk(admitted([&] { return http_.post("/zep/stations", "application/x-www-form-urlencoded", form); }));
}

} // namespace pendra::client
