// Adding clients to the list, and asking it for them.
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "clients.h"

using namespace pendra::test;

namespace {

using Addresses = std::vector<std::string>;

class ClientAdding : public DeviceTest {};

TEST_F(ClientAdding, FirstClient_BecomesTheHead) {
    EXPECT_EQ(1, clientAuthListAdd(&clientauthinfo, "10.0.0.2", "admin", "secret", nullptr, 1));
    ASSERT_NE(nullptr, clientauthinfo);
    EXPECT_EQ(nullptr, clientauthinfo->next);
    EXPECT_STREQ("10.0.0.2", clientauthinfo->ip);
    EXPECT_STREQ("admin", clientauthinfo->username);
    EXPECT_STREQ("secret", clientauthinfo->password);
    EXPECT_EQ(1300U, clientauthinfo->logout);
    EXPECT_EQ(clientauthinfo, cur_authinfo);
}

TEST_F(ClientAdding, FurtherClients_AreAppended) {
    for (const char* ip : {"10.0.0.2", "10.0.0.3", "10.0.0.1"})
        EXPECT_EQ(1, addClient(ip));
    EXPECT_EQ((Addresses{"10.0.0.2", "10.0.0.3", "10.0.0.1"}), clientAddresses());
    EXPECT_STREQ("10.0.0.1", cur_authinfo->ip);
}

TEST_F(ClientAdding, OwnHead_IsFilledInsteadOfTheGlobalOne) {
    clientAuthEntry* head = nullptr;
    EXPECT_EQ(1, clientAuthListAdd(&head, "10.0.0.2", "admin", "secret", nullptr, 1));
    EXPECT_EQ(nullptr, clientauthinfo);
    EXPECT_EQ(head, cur_authinfo);
    clientAuthListDel(&head, nullptr, nullptr, 1);
    EXPECT_EQ(nullptr, head);
}

TEST_F(ClientAdding, KnownAddress_OnlyMovesTheLogout) {
    addClientWithSession("10.0.0.2", "0badcafe");
    addClient("10.0.0.3");
    cur_authinfo = nullptr;
    device().uptime = 1100;
    EXPECT_EQ(0, clientAuthListAdd(&clientauthinfo, "10.0.0.2", "other", "changed", "text", 1));
    EXPECT_EQ((Addresses{"10.0.0.2", "10.0.0.3"}), clientAddresses());
    EXPECT_EQ(1400U, clientauthinfo->logout);
    EXPECT_STREQ("admin", clientauthinfo->username);
    EXPECT_STREQ("secret", clientauthinfo->password);
    EXPECT_STREQ("0badcafe", clientauthinfo->sessionid);
    EXPECT_EQ(1300U, clientauthinfo->next->logout);
    EXPECT_EQ(nullptr, cur_authinfo);
}

TEST_F(ClientAdding, ExpiredAddress_IsRefreshedToo) {
    addClient("10.0.0.2");
    device().uptime = 9000;
    EXPECT_EQ(0, addClient("10.0.0.2"));
    EXPECT_EQ(9300U, clientauthinfo->logout);
}

TEST_F(ClientAdding, SimilarAddress_IsAnotherClient) {
    for (const char* ip : {"10.0.0.2", "10.0.0.20", "10.0.0.", "", "10.0.0.2 ", "fe80::A", "fe80::a"})
        EXPECT_EQ(1, addClient(ip)) << ip;
    EXPECT_EQ(7U, clientAddresses().size());
}

TEST_F(ClientAdding, KnownSession_ChangesNothing) {
    for (const uint32_t mode : {0U, 2U, 0xFFFFFFFFU}) {
        SCOPED_TRACE(mode);
        clientAuthListDel(&clientauthinfo, nullptr, nullptr, 1);
        device().uptime = 1000;
        addClientWithSession("10.0.0.2", "0badcafe");
        cur_authinfo = nullptr;
        device().uptime = 1100;
        EXPECT_EQ(0, addClient("10.0.0.2", mode, "GET /?sid=0badcafe&x=1"));
        EXPECT_EQ(Addresses{"10.0.0.2"}, clientAddresses());
        EXPECT_EQ(1300U, clientauthinfo->logout);
        EXPECT_EQ(nullptr, cur_authinfo);
    }
}

TEST_F(ClientAdding, SessionThatDoesNotMatch_MakesASecondEntry) {
    struct Case {
        const char* ip;
        const char* session;
    };
    const Case cases[] = {
        {"10.0.0.2", "sid=0badcaff"}, {"10.0.0.2", nullptr},        {"10.0.0.2", ""},
        {"10.0.0.2", "0BADCAFE"},     {"10.0.0.3", "sid=0badcafe"}, {"10.0.0.2", "0badcaf"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(std::string(row.ip) + " " + (row.session == nullptr ? "null" : row.session));
        clientAuthListDel(&clientauthinfo, nullptr, nullptr, 1);
        addClientWithSession("10.0.0.2", "0badcafe");
        EXPECT_EQ(1, addClient(row.ip, 2, row.session));
        EXPECT_EQ((Addresses{"10.0.0.2", row.ip}), clientAddresses());
    }
}

TEST_F(ClientAdding, Mode_DecidesTheLogout) {
    addClient("10.0.0.1", 0);
    addClient("10.0.0.2", 1);
    addClient("10.0.0.3", 2);
    EXPECT_EQ(0U, clientauthinfo->logout);
    EXPECT_EQ(1300U, clientauthinfo->next->logout);
    EXPECT_EQ(1300U, clientauthinfo->next->next->logout);
}

TEST_F(ClientAdding, NoMemory_GivesOneAndMakesNoEntry) {
    daemon_log_level = 6;
    device().failNextAllocation = true;
    EXPECT_EQ(1, addClient("10.0.0.2"));
    EXPECT_EQ(nullptr, clientauthinfo);
    EXPECT_EQ(nullptr, cur_authinfo);
    EXPECT_EQ("", logText());
}

TEST_F(ClientAdding, Texts_AreCutToTheirFields) {
    for (const size_t length : {0U, 62U, 63U, 64U, 126U, 127U, 128U, 200U, 4000U}) {
        SCOPED_TRACE(length);
        clientAuthListDel(&clientauthinfo, nullptr, nullptr, 1);
        const std::string ip(length, 'i');
        const std::string user(length, 'u');
        const std::string password(length, 'p');
        clientAuthListAdd(&clientauthinfo, ip.c_str(), user.c_str(), password.c_str(), nullptr, 1);
        EXPECT_EQ(ip.substr(0, 127), clientauthinfo->ip);
        EXPECT_EQ(user.substr(0, 63), clientauthinfo->username);
        EXPECT_EQ(password.substr(0, 63), clientauthinfo->password);
        EXPECT_EQ(8U, std::string(clientauthinfo->sessionid).size());
        EXPECT_EQ(1300U, clientauthinfo->logout);
    }
}

TEST_F(ClientAdding, NullArguments_MatchNothing) {
    EXPECT_EQ(1, clientAuthListAdd(nullptr, "10.0.0.2", "admin", "secret", nullptr, 1));
    EXPECT_EQ(nullptr, cur_authinfo);
    addClient("");
    for (const uint32_t mode : {0U, 1U, 2U})
        EXPECT_EQ(1, clientAuthListAdd(&clientauthinfo, nullptr, nullptr, nullptr, nullptr, mode));
    EXPECT_EQ(1300U, clientauthinfo->logout);
}

class SessionId : public DeviceTest {
  protected:
    // The ids of entries made within one wall-clock second.
    static std::vector<std::string> idsOfOneSecond(time_t& second) {
        for (;;) {
            clientAuthListDel(&clientauthinfo, nullptr, nullptr, 1);
            second = std::time(nullptr);
            for (const char* ip : {"10.0.0.1", "10.0.0.2", "10.0.0.3"})
                addClient(ip);
            if (std::time(nullptr) == second) return clientSessions();
        }
    }
};

TEST_F(SessionId, EntriesOfOneSecond_HaveTheSameId) {
    time_t second = 0;
    const std::vector<std::string> ids = idsOfOneSecond(second);
    EXPECT_EQ(std::vector<std::string>(3, ids[0]), ids);
}

TEST_F(SessionId, Id_IsOneRandomNumberSeededWithTheTime) {
    time_t second = 0;
    const std::vector<std::string> ids = idsOfOneSecond(second);
    std::srand(static_cast<unsigned>(second));
    char expected[16];
    std::snprintf(expected, sizeof expected, "%.8x", static_cast<unsigned>(std::rand()));
    EXPECT_EQ(expected, ids[0]);
}

class ClientSearch : public DeviceTest {
  protected:
    ClientSearch() {
        first_ = addClientWithSession("10.0.0.2", "aaaaaaaa");
        second_ = addClientWithSession("10.0.0.3", "bbbbbbbb");
        third_ = addClientWithSession("10.0.0.2", "cccccccc");
        cur_authinfo = nullptr;
    }
    static const clientAuthEntry* search(const char* ip, const char* session, uint32_t mode) {
        return checkClientAuthIp(&clientauthinfo, ip, session, mode);
    }

    const clientAuthEntry* first_;
    const clientAuthEntry* second_;
    const clientAuthEntry* third_;
};

TEST_F(ClientSearch, ByAddress_GivesTheFirstOfThatAddress) {
    EXPECT_EQ(first_, search("10.0.0.2", nullptr, 1));
    EXPECT_EQ(second_, search("10.0.0.3", nullptr, 1));
    EXPECT_EQ(first_, search("10.0.0.2", "cccccccc", 1));
    EXPECT_EQ(nullptr, search("10.0.0.4", "aaaaaaaa", 1));
    EXPECT_EQ(nullptr, search("10.0.0.", nullptr, 1));
    EXPECT_EQ(nullptr, search("10.0.0.22", nullptr, 1));
}

TEST_F(ClientSearch, BySession_WantsAddressAndSession) {
    for (const uint32_t mode : {0U, 2U, 3U}) {
        SCOPED_TRACE(mode);
        EXPECT_EQ(first_, search("10.0.0.2", "aaaaaaaa", mode));
        EXPECT_EQ(third_, search("10.0.0.2", "sid=cccccccc;x", mode));
        EXPECT_EQ(first_, search("10.0.0.2", "ccccccccaaaaaaaa", mode));
        EXPECT_EQ(nullptr, search("10.0.0.2", "bbbbbbbb", mode));
        EXPECT_EQ(nullptr, search("10.0.0.3", "aaaaaaaa", mode));
        EXPECT_EQ(nullptr, search("10.0.0.2", "AAAAAAAA", mode));
        EXPECT_EQ(nullptr, search("10.0.0.2", "", mode));
        EXPECT_EQ(nullptr, search("10.0.0.2", nullptr, mode));
    }
}

TEST_F(ClientSearch, AnySearch_ChangesNothing) {
    device().uptime = 9999;
    search("10.0.0.2", nullptr, 1);
    search("10.0.0.9", "x", 2);
    EXPECT_EQ(nullptr, cur_authinfo);
    EXPECT_EQ(1300U, first_->logout);
    EXPECT_EQ(3U, clientAddresses().size());
}

TEST_F(ClientSearch, NullArguments_MatchNothing) {
    clientAuthEntry* empty = nullptr;
    EXPECT_EQ(nullptr, checkClientAuthIp(nullptr, "10.0.0.2", nullptr, 1));
    EXPECT_EQ(nullptr, checkClientAuthIp(&empty, "10.0.0.2", nullptr, 1));
    EXPECT_EQ(nullptr, search(nullptr, nullptr, 1));
    EXPECT_EQ(nullptr, search(nullptr, "aaaaaaaa", 2));
}

class Admission : public DeviceTest {
  protected:
    static int32_t checkAt(long uptime, const char* ip, const char* session = nullptr) {
        device().uptime = uptime;
        return check_PendraAuthIP(ip, session);
    }
};

TEST_F(Admission, KnownAddress_IsAdmittedAndRefreshed) {
    addClient("10.0.0.1");
    addClient("10.0.0.2");
    cur_authinfo = nullptr;
    EXPECT_EQ(0, checkAt(1100, "10.0.0.2"));
    ASSERT_EQ(clientauthinfo->next, cur_authinfo);
    EXPECT_EQ(1400U, cur_authinfo->logout);
    EXPECT_EQ(1300U, clientauthinfo->logout);
}

TEST_F(Admission, SecondBeforeTheLogout_IsTheLastOne) {
    addClient("10.0.0.2");
    EXPECT_EQ(0, checkAt(1299, "10.0.0.2"));
    EXPECT_EQ(0, checkAt(1598, "10.0.0.2"));
    EXPECT_EQ(-1, checkAt(1898, "10.0.0.2"));
    EXPECT_TRUE(clientAddresses().empty());
}

TEST_F(Admission, LogoutSecond_FailsAndRemovesTheEntry) {
    addClient("10.0.0.1");
    addClient("10.0.0.2");
    EXPECT_EQ(-1, checkAt(1300, "10.0.0.2"));
    EXPECT_EQ(Addresses{"10.0.0.1"}, clientAddresses());
    EXPECT_EQ(-1, checkAt(1300, "10.0.0.2"));
}

// The pointer stays, although what it pointed at is freed.
TEST_F(Admission, ExpiredEntry_KeepsTheCurrentPointer) {
    const clientAuthEntry* entry = addClientWithSession("10.0.0.2", "aaaaaaaa");
    cur_authinfo = nullptr;
    EXPECT_EQ(-1, checkAt(5000, "10.0.0.2"));
    EXPECT_EQ(entry, cur_authinfo);
    EXPECT_EQ(-1, checkAt(5000, "10.0.0.2"));
    EXPECT_EQ(nullptr, cur_authinfo);
}

TEST_F(Admission, UnknownAddress_FailsAndClearsTheCurrentPointer) {
    addClient("10.0.0.2");
    EXPECT_EQ(-1, checkAt(1000, "10.0.0.3"));
    EXPECT_EQ(nullptr, cur_authinfo);
    EXPECT_EQ(Addresses{"10.0.0.2"}, clientAddresses());
}

TEST_F(Admission, ExpiredEntryOfAnotherAddress_Stays) {
    addClient("10.0.0.2");
    EXPECT_EQ(-1, checkAt(5000, "10.0.0.3"));
    EXPECT_EQ(Addresses{"10.0.0.2"}, clientAddresses());
}

TEST_F(Admission, SessionText_IsNotLookedAt) {
    addClientWithSession("10.0.0.2", "aaaaaaaa");
    EXPECT_EQ(0, checkAt(1000, "10.0.0.2", "bbbbbbbb"));
    EXPECT_EQ(-1, checkAt(1000, "10.0.0.3", "aaaaaaaa"));
    EXPECT_EQ(-1, checkAt(2000, "10.0.0.2", "bbbbbbbb"));
    EXPECT_TRUE(clientAddresses().empty());
}

TEST_F(Admission, SeveralEntriesOfAnAddress_AreAskedOldestFirst) {
    addClientWithSession("10.0.0.2", "aaaaaaaa");
    device().uptime = 1200;
    addClientWithSession("10.0.0.2", "bbbbbbbb");
    EXPECT_EQ(-1, checkAt(1400, "10.0.0.2"));
    EXPECT_EQ(std::vector<std::string>{"bbbbbbbb"}, clientSessions());
    EXPECT_EQ(0, checkAt(1400, "10.0.0.2"));
}

TEST_F(Admission, EntryWithoutExpiry_IsNeverAcceptedAndRemovedByItsFirstCheck) {
    for (const long uptime : {0L, 1L, 1000L}) {
        SCOPED_TRACE(uptime);
        addClient("10.0.0.2", 0);
        EXPECT_EQ(-1, checkAt(uptime, "10.0.0.2"));
        EXPECT_TRUE(clientAddresses().empty());
    }
}

TEST_F(Admission, NullAddress_FailsAndClearsTheCurrentPointer) {
    addClient("");
    EXPECT_EQ(-1, checkAt(1000, nullptr));
    EXPECT_EQ(nullptr, cur_authinfo);
    EXPECT_EQ(Addresses{""}, clientAddresses());
}

// The stored address is cut, and the comparison is exact.
TEST_F(Admission, AddressLongerThanItsField_IsNotRecognised) {
    const std::string fits(127, '1');
    const std::string longer(200, '2');
    addClient(fits.c_str());
    addClient(longer.c_str());
    EXPECT_EQ(0, checkAt(1000, fits.c_str()));
    EXPECT_EQ(-1, checkAt(1000, longer.c_str()));
    EXPECT_EQ(0, checkAt(1000, longer.substr(0, 127).c_str()));
}

} // namespace
