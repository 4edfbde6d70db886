#include "client/device_client.h"

#include <nlohmann/json.hpp>

#include "client/access_key.h"
#include "client/failure.h"

namespace pendra::client {

namespace {

using nlohmann::json;

constexpr const char* kForm = "application/x-www-form-urlencoded";

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

Variable readVariableEntry(const json& entry) {
    return {entry.at("name").get<std::string>(), entry.at("value").get<std::string>(),
            entry.at("settable").get<bool>()};
}

// A check of one value has no wait.
Verdict readVerdict(const json& entry) {
    return {entry.at("code").get<int>(), entry.at("name").get<std::string>(), entry.at("words").get<std::string>(),
            entry.value("wait", 0)};
}

template <typename Reader>
auto readList(const HttpReply& reply, Reader reader) {
    return readJson(reply, [&](const json& answer) {
        std::vector<decltype(reader(answer))> list;
        for (const json& entry : answer) {
            list.push_back(reader(entry));
        }
        return list;
    });
}

// What the device does not know is null.
std::optional<int64_t> optionalNumber(const json& value) {
    return value.is_null() ? std::nullopt : std::optional<int64_t>(value.get<int64_t>());
}

FirmwareState readFirmwareState(const json& answer) {
    return {.image = answer.at("image").get<std::string>(),
            .listBytes = optionalNumber(answer.at("list")).value_or(0),
            .bytes = optionalNumber(answer.at("bytes")).value_or(0),
            .total = optionalNumber(answer.at("total")),
            .upgrade = answer.at("upgrade").get<std::string>(),
            .reason = answer.at("reason").get<std::string>()};
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
    const HttpReply reply = http_.post("/zep/login", kForm, "PendraKey=" + key);
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
    expectOk(admitted([&] { return http_.post("/zep/stations", kForm, form); }));
}

std::string DeviceClient::readVariable(const std::string& name, const std::string& field) {
    const std::string query = "/zep/var?name=" + http_.escape(name) + (field == "path" ? "&path=1" : "");
    const HttpReply reply = admitted([&] { return http_.get(query); });
    if (reply.status == kNotFound) throw Failure(kRefused, "The device has no variable " + printable(name) + ".");
    return readJson(reply, [&](const json& answer) { return answer.at(field).get<std::string>(); });
}

std::string DeviceClient::variable(const std::string& name) {
    return readVariable(name, "value");
}

std::string DeviceClient::variablePath(const std::string& name) {
    return readVariable(name, "path");
}

std::vector<Variable> DeviceClient::variables() {
    return readList(admitted([&] { return http_.get("/zep/vars"); }), readVariableEntry);
}

HttpReply DeviceClient::postForm(const std::string& path, const Assignments& assignments) {
    std::string form;
    for (const auto& [name, value] : assignments) {
        form += (form.empty() ? "" : "&") + name + "=" + http_.escape(value);
    }
    return admitted([&] { return http_.post(path, kForm, form); });
}

Verdict DeviceClient::set(const Assignments& assignments) {
    return readJson(postForm("/zep/var", assignments), readVerdict);
}

std::vector<Verdict> DeviceClient::validate(const Assignments& assignments) {
    return readList(postForm("/zep/validate", assignments), readVerdict);
}

FirmwareStatus DeviceClient::firmwareAction(char action) {
    const std::string path = std::string("/zep/fw?act=") + action;
    const HttpReply reply = admitted([&] { return http_.post(path, "application/x-www-form-urlencoded", ""); });
    expectOk(reply);
    const auto status = parseFirmwareStatus(reply.body);
    if (!status) throw Failure(kUnexpected, "The device answered with something else than an upgrade status.");
    return *status;
}

FirmwareState DeviceClient::firmwareState() {
    return readJson(admitted([&] { return http_.get("/zep/fwstate"); }), readFirmwareState);
}

std::string DeviceClient::releaseNotes() {
    const HttpReply reply = admitted([&] { return http_.get("/zep/fwnotes"); });
    if (reply.status == kNotFound) return "";
    expectOk(reply);
    return reply.body;
}

} // namespace pendra::client
