// Removing clients from the list.
#include "clients.h"

using namespace pendra::test;

namespace {

using Texts = std::vector<std::string>;

class ClientDeletion : public DeviceTest {
  protected:
    // Three clients of known sessions.
    static void fill() {
        clientAuthListDel(&clientauthinfo, nullptr, nullptr, 1);
        addClientWithSession("10.0.0.1", "aaaaaaaa");
        addClientWithSession("10.0.0.2", "bbbbbbbb");
        addClientWithSession("10.0.0.3", "cccccccc");
    }
    static int32_t remove(const char* ip, const char* session, uint32_t mode) {
        return clientAuthListDel(&clientauthinfo, ip, session, mode);
    }
};

struct DeletionCase {
    const char* ip;
    const char* session;
    int32_t result;
    Texts left;
};

TEST_F(ClientDeletion, ByAddress_TakesTheEntryOfThatAddress) {
    const DeletionCase cases[] = {
        {"10.0.0.1", nullptr, 1, {"bbbbbbbb", "cccccccc"}},
        {"10.0.0.2", nullptr, 1, {"aaaaaaaa", "cccccccc"}},
        {"10.0.0.3", nullptr, 1, {"aaaaaaaa", "bbbbbbbb"}},
        {"10.0.0.3", "aaaaaaaa", 1, {"aaaaaaaa", "bbbbbbbb"}},
        {"10.0.0.4", nullptr, 0, {"aaaaaaaa", "bbbbbbbb", "cccccccc"}},
        {"10.0.0.4", "aaaaaaaa", 0, {"aaaaaaaa", "bbbbbbbb", "cccccccc"}},
        {"10.0.0.", nullptr, 0, {"aaaaaaaa", "bbbbbbbb", "cccccccc"}},
        {"", nullptr, 0, {"aaaaaaaa", "bbbbbbbb", "cccccccc"}},
    };
    for (const DeletionCase& row : cases) {
        SCOPED_TRACE(row.ip);
        fill();
        EXPECT_EQ(row.result, remove(row.ip, row.session, 1));
        EXPECT_EQ(row.left, clientSessions());
    }
}

TEST_F(ClientDeletion, ByAddressWithSeveralEntries_TakesTheFirst) {
    addClientWithSession("10.0.0.9", "aaaaaaaa");
    addClientWithSession("10.0.0.2", "bbbbbbbb");
    addClientWithSession("10.0.0.2", "cccccccc");
    EXPECT_EQ(1, remove("10.0.0.2", nullptr, 1));
    EXPECT_EQ((Texts{"aaaaaaaa", "cccccccc"}), clientSessions());
}

// Behind the head, one of three conditions is enough: the address equals, no session text, its id is not in the text.
TEST_F(ClientDeletion, BySession_FollowsTheStopRuleBehindTheHead) {
    const DeletionCase cases[] = {
        {"10.0.0.1", "x aaaaaaaa y", 1, {"bbbbbbbb", "cccccccc"}},
        {"10.0.0.1", "aaaaaaaa bbbbbbbb cccccccc", 1, {"bbbbbbbb", "cccccccc"}},
        {"10.0.0.9", "aaaaaaaa", 1, {"aaaaaaaa", "cccccccc"}},
        {"10.0.0.9", "bbbbbbbb", 1, {"aaaaaaaa", "bbbbbbbb"}},
        {"10.0.0.9", "bbbbbbbb cccccccc", 0, {"aaaaaaaa", "bbbbbbbb", "cccccccc"}},
        {"10.0.0.9", "aaaaaaaa bbbbbbbb cccccccc", 0, {"aaaaaaaa", "bbbbbbbb", "cccccccc"}},
        {"10.0.0.2", "bbbbbbbb", 1, {"aaaaaaaa", "cccccccc"}},
        {"10.0.0.2", "bbbbbbbb cccccccc", 1, {"aaaaaaaa", "cccccccc"}},
        {"10.0.0.3", "bbbbbbbb cccccccc", 1, {"aaaaaaaa", "bbbbbbbb"}},
        {"10.0.0.3", "bbbbbbbb", 1, {"aaaaaaaa", "bbbbbbbb"}},
        {"10.0.0.3", "cccccccc", 1, {"aaaaaaaa", "cccccccc"}},
        {"10.0.0.1", "bbbbbbbb", 1, {"aaaaaaaa", "bbbbbbbb"}},
        {"10.0.0.1", "bbbbbbbb cccccccc", 0, {"aaaaaaaa", "bbbbbbbb", "cccccccc"}},
        {"10.0.0.9", "", 1, {"aaaaaaaa", "cccccccc"}},
    };
    for (const uint32_t mode : {0U, 2U, 0xFFFFFFFFU}) {
        for (const DeletionCase& row : cases) {
            SCOPED_TRACE(std::string(row.ip) + " with " + row.session);
            fill();
            EXPECT_EQ(row.result, remove(row.ip, row.session, mode));
            EXPECT_EQ(row.left, clientSessions());
        }
    }
}

TEST_F(ClientDeletion, BySessionWithoutText_TakesTheSecondEntryAndNeverTheHead) {
    for (const char* ip : {"10.0.0.1", "10.0.0.2", "10.0.0.3", "10.0.0.9"}) {
        SCOPED_TRACE(ip);
        fill();
        EXPECT_EQ(1, remove(ip, nullptr, 2));
        EXPECT_EQ((Texts{"aaaaaaaa", "cccccccc"}), clientSessions());
        EXPECT_EQ(1, remove(ip, nullptr, 2));
        EXPECT_EQ(0, remove(ip, nullptr, 2));
        EXPECT_EQ(Texts{"aaaaaaaa"}, clientSessions());
    }
}

TEST_F(ClientDeletion, NullAddress_EmptiesTheList) {
    for (const uint32_t mode : {0U, 1U, 2U}) {
        fill();
        EXPECT_EQ(0, remove(nullptr, "aaaaaaaa", mode));
        EXPECT_EQ(nullptr, clientauthinfo);
    }
}

TEST_F(ClientDeletion, EmptyList_GivesZero) {
    EXPECT_EQ(0, remove("10.0.0.1", nullptr, 1));
    EXPECT_EQ(0, remove(nullptr, nullptr, 1));
    EXPECT_EQ(0, clientAuthListDel(nullptr, "10.0.0.1", nullptr, 1));
}

TEST_F(ClientDeletion, LastEntry_EmptiesTheList) {
    addClient("10.0.0.1");
    EXPECT_EQ(1, remove("10.0.0.1", nullptr, 1));
    EXPECT_EQ(nullptr, clientauthinfo);
    EXPECT_EQ(1, addClient("10.0.0.2"));
    EXPECT_EQ(Texts{"10.0.0.2"}, clientAddresses());
}

TEST_F(ClientDeletion, RemovedTail_IsFollowedByTheNextAdd) {
    fill();
    EXPECT_EQ(1, remove("10.0.0.3", nullptr, 1));
    addClient("10.0.0.4");
    EXPECT_EQ((Texts{"10.0.0.1", "10.0.0.2", "10.0.0.4"}), clientAddresses());
}

TEST_F(ClientDeletion, CurrentPointer_IsLeftAlone) {
    fill();
    const clientAuthEntry* current = cur_authinfo;
    remove("10.0.0.3", nullptr, 1);
    EXPECT_EQ(current, cur_authinfo);
    remove(nullptr, nullptr, 1);
    EXPECT_EQ(current, cur_authinfo);
}

} // namespace
