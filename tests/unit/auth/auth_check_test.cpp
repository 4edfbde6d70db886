// The check of a received key.
#include <cctype>

#include "clients.h"

using namespace pendra::test;

namespace {

constexpr const char* kIp = "10.0.0.2";

std::string keyOf(long slot, const std::string& ip = kIp, const std::string& password = "secret") {
    const std::string input = std::to_string(slot) + ip + "admin" + password;
    return MD5Encryption(input.c_str());
}

std::string fullRequest(long slot) {
    return "PendraKey=" + keyOf(slot);
}

std::string shortRequest(long slot) {
    return "DKey=" + keyOf(slot).substr(0, 8);
}

class AuthCheck : public DeviceTest {
  protected:
    AuthCheck() { device().tree["/sys/user:1/password"] = "secret"; }

    // A check on an empty list; the list is left as the check made it.
    static int32_t check(const std::string& request, const char* ip = kIp, const char* session = nullptr) {
        clientAuthListDel(&clientauthinfo, nullptr, nullptr, 1);
        return pendra_auth_check(request.c_str(), ip, session);
    }
};

TEST_F(AuthCheck, ValidKey_AdmitsTheClient) {
    EXPECT_EQ(0, check("PendraKey=2cacb7625ed22a3f2cce1fa716689ca2"));
    ASSERT_EQ(std::vector<std::string>{kIp}, clientAddresses());
    EXPECT_STREQ("admin", clientauthinfo->username);
    EXPECT_STREQ("secret", clientauthinfo->password);
    EXPECT_EQ(1300U, clientauthinfo->logout);
    EXPECT_EQ(clientauthinfo, cur_authinfo);
    EXPECT_EQ(0, check_PendraAuthIP(kIp, nullptr));
}

TEST_F(AuthCheck, ShortKey_AdmitsTheClient) {
    EXPECT_EQ(0, check("DKey=2cacb762"));
    EXPECT_EQ(std::vector<std::string>{kIp}, clientAddresses());
}

TEST_F(AuthCheck, Slots_AreAcceptedFromThePreviousToTheThirdNext) {
    for (const long uptime : {20L, 39L, 1000L, 1019L, 2147483600L}) {
        device().uptime = uptime;
        const long current = uptime / 20;
        for (long slot = current - 3; slot <= current + 6; slot++) {
            SCOPED_TRACE(std::to_string(slot) + " at " + std::to_string(uptime));
            const int32_t expected = slot >= current - 1 && slot <= current + 3 ? 0 : -1;
            EXPECT_EQ(expected, check(fullRequest(slot)));
            EXPECT_EQ(expected, check(shortRequest(slot)));
        }
    }
}

TEST_F(AuthCheck, SlotOneAtItsEnd_AcceptsZeroToFour) {
    device().uptime = 39;
    for (const long slot : {0L, 1L, 2L, 3L, 4L})
        EXPECT_EQ(0, check(fullRequest(slot))) << slot;
    EXPECT_EQ(-1, check(fullRequest(5)));
    EXPECT_EQ(-1, check(fullRequest(-1)));
}

TEST_F(AuthCheck, FirstSlot_HasAPreviousOneOfMinusOne) {
    for (const long uptime : {0L, 19L}) {
        device().uptime = uptime;
        EXPECT_EQ(0, check("PendraKey=44b7edb73d3eef8de51f7d7d1f70ea1a"));
        EXPECT_EQ(0, check(fullRequest(3)));
        EXPECT_EQ(-1, check(fullRequest(4)));
        EXPECT_EQ(-1, check(fullRequest(-2)));
    }
    device().uptime = 20;
    EXPECT_EQ(-1, check(fullRequest(-1)));
}

TEST_F(AuthCheck, KeyAnywhereInTheRequest_IsFound) {
    const std::string key = keyOf(50);
    for (const std::string& request :
         {"GET /login?PendraKey=" + key + " HTTP/1.1\r\n", "a=b&PendraKey=" + key + "&c=d", "PendraKey=" + key + "0",
          "DKey=" + key, "DKey=" + key.substr(0, 8) + "&more=1", "x=1;DKey=" + key.substr(0, 8) + "zzzz"}) {
        SCOPED_TRACE(request);
        EXPECT_EQ(0, check(request));
    }
}

TEST_F(AuthCheck, IncompleteOrMisspeltKey_IsRefused) {
    const std::string key = keyOf(50);
    for (const std::string& request :
         {std::string(), std::string("PendraKey="), std::string("DKey="), "PendraKey=" + key.substr(0, 31),
          "PendraKey=" + key.substr(0, 8), "DKey=" + key.substr(0, 7), "PendraKey= " + key, "PendraKey" + key,
          "pendrakey=" + key, "dkey=" + key, "Key=" + key, key, "PendraKey=" + key.substr(1),
          "PendraKey=" + key.substr(0, 31) + "&"}) {
        SCOPED_TRACE(request);
        EXPECT_EQ(-1, check(request));
        EXPECT_EQ(nullptr, clientauthinfo);
    }
}

TEST_F(AuthCheck, UpperCaseDigits_AreRefused) {
    std::string key = keyOf(50);
    for (char& digit : key)
        digit = static_cast<char>(std::toupper(digit));
    EXPECT_EQ(-1, check("PendraKey=" + key));
    EXPECT_EQ(-1, check("DKey=" + key));
}

TEST_F(AuthCheck, WrongDigitAnywhere_IsRefused) {
    for (size_t place = 0; place < 32; place++) {
        SCOPED_TRACE(place);
        std::string key = keyOf(50);
        key[place] = key[place] == '0' ? '1' : '0';
        EXPECT_EQ(-1, check("PendraKey=" + key));
        EXPECT_EQ(place < 8 ? -1 : 0, check("DKey=" + key));
    }
}

TEST_F(AuthCheck, FullKeyword_WinsOverTheShortOne) {
    const std::string wrong(32, '0');
    const std::string valid = keyOf(50);
    EXPECT_EQ(-1, check("DKey=" + valid + "&PendraKey=" + wrong));
    EXPECT_EQ(-1, check("PendraKey=" + wrong + "&DKey=" + valid));
    EXPECT_EQ(0, check("DKey=" + wrong + "&PendraKey=" + valid));
    EXPECT_EQ(0, check("PendraKey=" + valid + "&DKey=" + wrong));
    EXPECT_EQ(-1, check("DKey=" + valid + "&PendraKey="));
}

TEST_F(AuthCheck, RepeatedKeyword_CountsAtItsFirstPlace) {
    const std::string wrong(32, '0');
    EXPECT_EQ(-1, check("PendraKey=" + wrong + "&" + fullRequest(50)));
    EXPECT_EQ(0, check(fullRequest(50) + "&PendraKey=" + wrong));
}

TEST_F(AuthCheck, Key_IsBoundToTheAddress) {
    EXPECT_EQ(-1, check(fullRequest(50), "10.0.0.3"));
    EXPECT_EQ(0, check("PendraKey=" + keyOf(50, "10.0.0.3"), "10.0.0.3"));
}

TEST_F(AuthCheck, Key_IsBoundToThePasswordOfTheMoment) {
    const std::string request = fullRequest(50);
    device().tree["/sys/user:1/password"] = "changed";
    EXPECT_EQ(-1, check(request));
    EXPECT_EQ(0, check("PendraKey=" + keyOf(50, kIp, "changed")));
    EXPECT_STREQ("changed", clientauthinfo->password);
}

TEST_F(AuthCheck, MissingPassword_ReadsAsEmpty) {
    device().tree.clear();
    EXPECT_EQ(0, check("PendraKey=ddc4c9733cbee08185af7ab4ae13745e"));
    EXPECT_STREQ("", clientauthinfo->password);
}

TEST_F(AuthCheck, LongPassword_IsCutAt63) {
    for (const size_t length : {62U, 63U, 64U, 1023U}) {
        SCOPED_TRACE(length);
        device().tree["/sys/user:1/password"] = std::string(length, 'p');
        const std::string used(std::min<size_t>(length, 63), 'p');
        EXPECT_EQ(0, check("PendraKey=" + keyOf(50, kIp, used)));
        EXPECT_EQ(used, clientauthinfo->password);
    }
}

TEST_F(AuthCheck, LongAddress_IsCutInTheKeyAndInTheList) {
    const std::string ip(200, 'i');
    const std::string input = "50" + ip;
    const std::string request = std::string("PendraKey=") + MD5Encryption(input.substr(0, 127).c_str());
    EXPECT_EQ(0, check(request, ip.c_str()));
    EXPECT_EQ(ip.substr(0, 127), clientauthinfo->ip);
}

TEST_F(AuthCheck, ValidKeyOfTheDevice_IsAccepted) {
    EXPECT_EQ(0, check(std::string("PendraKey=") + generate_PendraKey(kIp)));
    EXPECT_EQ(0, check(std::string("DKey=") + generate_DKey(kIp)));
}

TEST_F(AuthCheck, SecondCheckOfAnAddress_KeepsEntryAndSession) {
    EXPECT_EQ(0, check(fullRequest(50)));
    std::strcpy(clientauthinfo->sessionid, "0badcafe");
    const clientAuthEntry* entry = clientauthinfo;
    cur_authinfo = nullptr;
    device().uptime = 1020;
    EXPECT_EQ(0, pendra_auth_check(shortRequest(51).c_str(), kIp, "other"));
    EXPECT_EQ(entry, clientauthinfo);
    EXPECT_EQ(nullptr, entry->next);
    EXPECT_STREQ("0badcafe", entry->sessionid);
    EXPECT_EQ(1320U, entry->logout);
    EXPECT_EQ(nullptr, cur_authinfo);
}

TEST_F(AuthCheck, RefusedKey_LeavesTheListAlone) {
    check(fullRequest(50));
    device().uptime = 1100;
    EXPECT_EQ(-1, pendra_auth_check(fullRequest(40).c_str(), kIp, nullptr));
    EXPECT_EQ(1300U, clientauthinfo->logout);
}

TEST_F(AuthCheck, AnyCheck_WritesNothingToTheDevice) {
    check(fullRequest(50));
    check(fullRequest(40));
    check("nothing");
    EXPECT_TRUE(device().events.empty());
    EXPECT_EQ(std::vector<std::string>(device().reads.size(), "/sys/user:1/password"), device().reads);
}

TEST_F(AuthCheck, NullArguments_AreRefused) {
    EXPECT_EQ(-1, pendra_auth_check(nullptr, kIp, nullptr));
    EXPECT_EQ(-1, pendra_auth_check(fullRequest(50).c_str(), nullptr, nullptr));
    EXPECT_EQ(-1, pendra_auth_check(("PendraKey=" + keyOf(50, "")).c_str(), nullptr, nullptr));
    EXPECT_EQ(nullptr, clientauthinfo);
}

class AuthCheckLog : public AuthCheck {
  protected:
    std::string logOf(int32_t level, const std::string& request) const {
        writeFile(logFile(), "");
        daemon_log_level = level;
        pendra_auth_check(request.c_str(), kIp, nullptr);
        return logText();
    }
};

TEST_F(AuthCheckLog, AcceptedKey_IsANotableEvent) {
    for (const std::string& request : {fullRequest(50), shortRequest(50)}) {
        device().forget();
        EXPECT_EQ("1000: 1000:PendraKey success, logout=1300\n", logOf(5, request));
        EXPECT_EQ((std::vector<std::string>{"DL> 1000:", "PendraKey success, logout=1300\n"}), device().consoleCalls);
    }
}

TEST_F(AuthCheckLog, AcceptedKeyAtLevel4_WritesNothing) {
    EXPECT_EQ("", logOf(4, fullRequest(50)));
}

TEST_F(AuthCheckLog, AcceptedKeyAtLevel7_ShowsTheWholeRoad) {
    const std::string request = "x=1&" + fullRequest(50) + "&y=2";
    const std::string log = logOf(7, request);
    const std::string id = clientauthinfo->sessionid;
    EXPECT_EQ(
        "1000: 1000:pendra_auth_check]\n"
        "1000: match_buff = " +
            keyOf(50) +
            "&y=2, ip=10.0.0.2, time=1000\n"
            "1000: 1000:PendraKey success, logout=1300\n"
            "1000: 1000:clientAuthListAdd]\n"
            "1000: Add new node ip=10.0.0.2\n"
            "1000: 1000:printList]The Auth list is:\n"
            "1000: ip=10.0.0.2,username=admin, sessionid=" +
            id + "-->NULL \n\n",
        log);
}

TEST_F(AuthCheckLog, RefusedKey_LeavesTheReceivedTextAtLevel7Only) {
    EXPECT_EQ("1000: 1000:pendra_auth_check]\n1000: match_buff = 01234567, ip=10.0.0.2, time=1000\n",
              logOf(7, "DKey=01234567"));
    EXPECT_EQ("", logOf(6, "DKey=01234567"));
}

TEST_F(AuthCheckLog, RequestWithoutKey_LeavesTheEntryTraceOnly) {
    EXPECT_EQ("1000: 1000:pendra_auth_check]\n", logOf(7, "GET /"));
    EXPECT_EQ("", logOf(6, "GET /"));
}

TEST_F(AuthCheckLog, LongKey_IsShownAsFarAsAMessageGoes) {
    const std::string key(4000, 'k');
    EXPECT_EQ("1000: 1000:pendra_auth_check]\n1000: match_buff = " + key + ", ip=10.0.0.2, time=1000\n",
              logOf(7, "PendraKey=" + key));
    const std::string huge(1048576, 'k');
    EXPECT_EQ("1000: 1000:pendra_auth_check]\n1000: " + ("match_buff = " + huge).substr(0, 5119),
              logOf(7, "PendraKey=" + huge));
}

} // namespace
