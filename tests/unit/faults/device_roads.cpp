// Keys, clients, stations, channels and timers.
#include <unistd.h>

#include "fault_points.h"
#include "roads.h"

namespace pendra::test {
namespace {

constexpr const char* kClient = "10.0.0.2";
constexpr const char* kOther = "10.0.0.3";

void preparePassword(const std::string&) {
    device().tree["/sys/user:1/password"] = "secret";
}

std::string addresses() {
    std::string list;
    for (const clientAuthEntry* entry = clientauthinfo; entry != nullptr; entry = entry->next)
        list += (list.empty() ? "" : ",") + std::string(entry->ip);
    return list;
}

void forgetClients() {
    clientAuthListDel(&clientauthinfo, nullptr, nullptr, 1);
}

// At an uptime of 1000 seconds, slot 50.
std::string validKey() {
    return MD5Encryption("5010.0.0.2adminsecret");
}

std::string walkLogin(const std::string&) {
    const std::string request = "PendraKey=" + validKey() + "&more=1";
    std::string answer = "check=" + std::to_string(pendra_auth_check(request.c_str(), kClient, ""));
    answer += " clients=" + addresses();
    answer += " admitted=" + std::to_string(check_PendraAuthIP(kClient, ""));
    forgetClients();
    return answer;
}

std::string walkWrongLogin(const std::string&) {
    const std::string request = "DKey=" + validKey().replace(7, 1, "x");
    std::string answer = "check=" + std::to_string(pendra_auth_check(request.c_str(), kClient, ""));
    answer += " clients=" + addresses();
    return answer + " admitted=" + std::to_string(check_PendraAuthIP(kClient, ""));
}

std::string walkKeys(const std::string&) {
    const std::string whole = generate_PendraKey(kClient);
    return whole + " " + generate_DKey(kClient);
}

std::string walkClients(const std::string&) {
    std::string answer;
    for (const char* address : {kClient, kOther, kClient})
        answer += std::to_string(clientAuthListAdd(&clientauthinfo, address, "admin", "secret", nullptr, 1)) + " ";
    answer += addresses();
    answer += " found=" + std::to_string(checkClientAuthIp(&clientauthinfo, kOther, nullptr, 1) != nullptr);
    answer += " deleted=" + std::to_string(clientAuthListDel(&clientauthinfo, kClient, nullptr, 1));
    answer += " left=" + addresses();
    forgetClients();
    return answer;
}

// A client whose time is over, whatever the clock says then.
std::string walkExpired(const std::string&) {
    clientAuthListAdd(&clientauthinfo, kClient, "admin", "secret", nullptr, 1);
    if (clientauthinfo != nullptr) clientauthinfo->logout = 900;
    std::string answer = "admitted=" + std::to_string(check_PendraAuthIP(kClient, ""));
    answer += " left=" + addresses();
    forgetClients();
    return answer;
}

void prepareStations(const std::string&) {
    device().stations["ra0"] = {{{2, 0, 0, 0, 0, 1}, {-50, -60, 0}}, {{2, 0, 0, 0, 0, 2}, {0, 0, 0}}};
    device().stations["rai0"] = {{{2, 0, 0, 0, 0, 3}, {-40, 0, -45}}};
    device().tree["/runtime/easyroaming/connstainfo/sta:1/mac"] = "02:00:00:00:00:99";
}

std::string walkStations(const std::string&) {
    return std::to_string(exe_ExternalCall(256));
}

void prepareDeauth(const std::string&) {
    device().tree["/runtime/easyroaming/deauthsta/ifname"] = "ra0";
    device().tree["/runtime/easyroaming/deauthsta/mac"] = "02:00:00:00:00:01";
}

std::string walkDeauth(const std::string& directory) {
    do_deauthsta();
    const std::string request = "/runtime/easyroaming/deauthsta/";
    const bool handled = !device().has(request + "mac") && !device().has(request + "ifname");
    prepareDeauth(directory); // the next request
    return handled ? "handled" : "not handled";
}

std::string walkTracedDeauth(const std::string& directory) {
    daemon_log_level = 7;
    std::string answer = walkDeauth(directory);
    clientAuthListAdd(&clientauthinfo, kClient, "admin", "secret", nullptr, 1);
    forgetClients();
    return answer;
}

void prepareChannels(const std::string&) {
    loadRouter(device());
    device().tree["/lan/wireless5:1/channel"] = "36";
}

// One radio changes its channel, the other has a fixed one.
std::string walkChannels(const std::string&) {
    std::string answer;
    for (const char* channel : {"6", "11"}) {
        device().tree["/lan/wireless2.4:1/channelusing"] = channel;
        answer += std::to_string(checkWlanChannelUsing());
    }
    return answer;
}

void prepareNothing(const std::string&) {}

void count(void* argument) {
    ++*static_cast<int*>(argument);
}

std::string walkTimers(const std::string&) {
    int fired[2] = {};
    zep_timer* const fast = create_timer(1, count, &fired[0], nullptr, 0);
    zep_timer* const slow = create_timer(2, count, &fired[1], nullptr, 0);
    add_timer(fast);
    add_timer(slow);
    for (int second = 0; second < 4; second++)
        tick_timers();
    timer_list = nullptr;
    freeBlock(fast);
    freeBlock(slow);
    return std::to_string(fired[0]) + " " + std::to_string(fired[1]);
}

} // namespace

std::vector<Road> deviceRoads() {
    return {
        {"KeyLogin", preparePassword, walkLogin, "check=0 clients=10.0.0.2 admitted=0"},
        {"WrongKey", preparePassword, walkWrongLogin, "check=-1 clients= admitted=-1"},
        {"KeyMaking", preparePassword, walkKeys, "2cacb7625ed22a3f2cce1fa716689ca2 2cacb762"},
        {"ClientList", preparePassword, walkClients, "1 1 0 10.0.0.2,10.0.0.3 found=1 deleted=1 left=10.0.0.3"},
        {"ExpiredClient", preparePassword, walkExpired, "admitted=-1 left="},
        {"Stations", prepareStations, walkStations, "0"},
        {"Disconnect", prepareDeauth, walkDeauth, "handled"},
        {"TracedDisconnect", prepareDeauth, walkTracedDeauth, "handled"},
        {"ChannelWatch", prepareChannels, walkChannels, "11"},
        {"Timers", prepareNothing, walkTimers, "4 2"},
    };
}

} // namespace pendra::test
