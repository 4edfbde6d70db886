// What the client list writes to the log.
#include "clients.h"

using namespace pendra::test;

namespace {

class ClientListLog : public DeviceTest {
  protected:
    ClientListLog() { daemon_log_level = 7; }

    // Clients of the sessions "aaaaaaaa", "bbbbbbbb" ..., made without leaving anything in the log.
    static void fill(int count) {
        const int32_t level = daemon_log_level;
        daemon_log_level = 4;
        for (int i = 0; i < count; i++) {
            const std::string ip = "10.0.0." + std::to_string(i + 1);
            addClientWithSession(ip.c_str(), std::string(8, static_cast<char>('a' + i)).c_str());
        }
        daemon_log_level = level;
    }
};

TEST_F(ClientListLog, NewClient_IsAnnouncedAndTheListDumped) {
    addClient("10.0.0.9");
    const std::string id = clientauthinfo->sessionid;
    EXPECT_EQ(
        "1000: 1000:clientAuthListAdd]\n"
        "1000: Add new node ip=10.0.0.9\n"
        "1000: 1000:printList]The Auth list is:\n"
        "1000: ip=10.0.0.9,username=admin, sessionid=" +
            id + "-->NULL \n\n",
        logText());
}

TEST_F(ClientListLog, NewClientAtLevel6_LeavesOutTheTraces) {
    daemon_log_level = 6;
    addClient("10.0.0.9");
    const std::string id = clientauthinfo->sessionid;
    EXPECT_EQ(
        "1000: Add new node ip=10.0.0.9\n"
        "1000: ip=10.0.0.9,username=admin, sessionid=" +
            id + "-->NULL \n\n",
        logText());
}

TEST_F(ClientListLog, RefreshedClient_LeavesTheEntryTraceOnly) {
    fill(1);
    addClient("10.0.0.1");
    addClient("10.0.0.1", 2, "aaaaaaaa");
    EXPECT_EQ("1000: 1000:clientAuthListAdd]\n1000: 1000:clientAuthListAdd]\n", logText());
}

TEST_F(ClientListLog, NoMemory_LeavesTheEntryTraceOnly) {
    device().failNextAllocation = true;
    addClient("10.0.0.1");
    EXPECT_EQ("1000: 1000:clientAuthListAdd]\n", logText());
}

TEST_F(ClientListLog, Search_LeavesTheEntryTraceOnly) {
    fill(1);
    checkClientAuthIp(&clientauthinfo, "10.0.0.1", nullptr, 1);
    checkClientAuthIp(&clientauthinfo, "10.0.0.2", "x", 2);
    EXPECT_EQ("1000: 1000:checkClientAuthIp]\n1000: 1000:checkClientAuthIp]\n", logText());
}

TEST_F(ClientListLog, Dump_ShowsAllEntriesOnOneLine) {
    fill(3);
    printList(&clientauthinfo);
    EXPECT_EQ(
        "1000: 1000:printList]The Auth list is:\n"
        "1000: ip=10.0.0.1,username=admin, sessionid=aaaaaaaa-->"
        "ip=10.0.0.2,username=admin, sessionid=bbbbbbbb-->"
        "ip=10.0.0.3,username=admin, sessionid=cccccccc-->NULL \n\n",
        logText());
    EXPECT_EQ((std::vector<std::string>{"DL> 1000:printList]", "The Auth list is:\n",
                                        "DL> ip=10.0.0.1,username=admin, sessionid=aaaaaaaa-->",
                                        "ip=10.0.0.2,username=admin, sessionid=bbbbbbbb-->",
                                        "ip=10.0.0.3,username=admin, sessionid=cccccccc-->", "NULL \n\n"}),
              device().consoleCalls);
}

TEST_F(ClientListLog, DumpAtLevel6_LeavesOutTheHeading) {
    fill(1);
    daemon_log_level = 6;
    EXPECT_EQ(0, printList(&clientauthinfo));
    EXPECT_EQ("1000: ip=10.0.0.1,username=admin, sessionid=aaaaaaaa-->NULL \n\n", logText());
}

TEST_F(ClientListLog, DumpOfAnEmptyList_SaysSo) {
    EXPECT_EQ(0, printList(&clientauthinfo));
    EXPECT_EQ(0, printList(nullptr));
    EXPECT_EQ("1000: 1000:printList]Auth list is empty.\n1000: 1000:printList]Auth list is empty.\n", logText());
}

TEST_F(ClientListLog, DumpOfAnEmptyListAtLevel6_WritesNothing) {
    daemon_log_level = 6;
    printList(&clientauthinfo);
    EXPECT_EQ("", logText());
}

TEST_F(ClientListLog, AdmittedClient_LogsTheNewLogout) {
    fill(1);
    device().uptime = 1100;
    check_PendraAuthIP("10.0.0.1", nullptr);
    EXPECT_EQ(
        "1100: 1100:check_PendraAuthIP]\n"
        "1100: 1100:checkClientAuthIp]\n"
        "1100: Auth Client IP, logout=1400\n",
        logText());
}

TEST_F(ClientListLog, UnknownClient_LogsTheRefusal) {
    check_PendraAuthIP("10.0.0.1", nullptr);
    EXPECT_EQ(
        "1000: 1000:check_PendraAuthIP]\n"
        "1000: 1000:checkClientAuthIp]\n"
        "1000: UnAuth Zep Client IP!\n",
        logText());
}

TEST_F(ClientListLog, ExpiredClient_LogsItsRemovalAndTheRefusal) {
    fill(2);
    device().uptime = 1300;
    check_PendraAuthIP("10.0.0.2", "aaaaaaaa");
    EXPECT_EQ(
        "1300: 1300:check_PendraAuthIP]\n"
        "1300: 1300:checkClientAuthIp]\n"
        "1300: 1300:clientAuthListDel]\n"
        "1300: 2 Delete IP 10.0.0.2 from list.\n"
        "1300: UnAuth Zep Client IP!\n",
        logText());
}

TEST_F(ClientListLog, ChecksAtLevel6_WriteNothing) {
    fill(1);
    daemon_log_level = 6;
    check_PendraAuthIP("10.0.0.1", nullptr);
    check_PendraAuthIP("10.0.0.2", nullptr);
    device().uptime = 2000;
    check_PendraAuthIP("10.0.0.1", nullptr);
    EXPECT_EQ("", logText());
}

struct RemovalCase {
    const char* ip;
    const char* session;
    uint32_t mode;
    const char* line;
};

// Behind the head the line shows the address that was asked for, and the session id of the entry that goes.
TEST_F(ClientListLog, Removal_NamesThePlaceAndTheClient) {
    const RemovalCase cases[] = {
        {"10.0.0.1", nullptr, 1, "1 Delete IP 10.0.0.1 from list."},
        {"10.0.0.2", nullptr, 1, "2 Delete IP 10.0.0.2 from list."},
        {"10.0.0.3", "aaaaaaaa", 1, "2 Delete IP 10.0.0.3 from list."},
        {"10.0.0.1", "sid=aaaaaaaa", 2, "1 Delete IP 10.0.0.1(aaaaaaaa) from list."},
        {"10.0.0.1", "aaaaaaaa", 0, "1 Delete IP 10.0.0.1(aaaaaaaa) from list."},
        {"10.0.0.2", "bbbbbbbb", 2, "2 Delete IP 10.0.0.2(bbbbbbbb) from list."},
        {"192.168.1.77", nullptr, 2, "2 Delete IP 192.168.1.77(bbbbbbbb) from list."},
        {"192.168.1.77", "bbbbbbbb", 0, "2 Delete IP 192.168.1.77(cccccccc) from list."},
    };
    for (const RemovalCase& row : cases) {
        SCOPED_TRACE(row.line);
        daemon_log_level = 4;
        clientAuthListDel(&clientauthinfo, nullptr, nullptr, 1);
        fill(3);
        writeFile(logFile(), "");
        daemon_log_level = 7;
        EXPECT_EQ(1, clientAuthListDel(&clientauthinfo, row.ip, row.session, row.mode));
        EXPECT_EQ(std::string("1000: 1000:clientAuthListDel]\n1000: ") + row.line + "\n", logText());
    }
}

TEST_F(ClientListLog, RemovalThatFindsNothing_LeavesTheEntryTraceOnly) {
    fill(1);
    clientAuthListDel(&clientauthinfo, "10.0.0.2", nullptr, 1);
    clientAuthListDel(&clientauthinfo, "10.0.0.1", "x", 2);
    EXPECT_EQ("1000: 1000:clientAuthListDel]\n1000: 1000:clientAuthListDel]\n", logText());
}

TEST_F(ClientListLog, RemovalAtLevel6_WritesNothing) {
    fill(2);
    daemon_log_level = 6;
    clientAuthListDel(&clientauthinfo, "10.0.0.1", nullptr, 1);
    EXPECT_EQ("", logText());
}

TEST_F(ClientListLog, RemovalFromAnEmptyList_SaysSo) {
    clientAuthListDel(&clientauthinfo, "10.0.0.1", nullptr, 1);
    EXPECT_EQ("1000: 1000:clientAuthListDel]\n1000: No IP to be deleted.\n", logText());
}

TEST_F(ClientListLog, RemovalFromAnEmptyListByLevel_ShowsFrom6On) {
    daemon_log_level = 5;
    clientAuthListDel(&clientauthinfo, nullptr, nullptr, 1);
    EXPECT_EQ("", logText());
    daemon_log_level = 6;
    clientAuthListDel(&clientauthinfo, nullptr, nullptr, 2);
    EXPECT_EQ("1000: No IP to be deleted.\n", logText());
}

// One dump for each entry; each shows what is still there.
TEST_F(ClientListLog, EmptyingTheList_DumpsItBeforeEachRemoval) {
    fill(3);
    daemon_log_level = 6;
    clientAuthListDel(&clientauthinfo, nullptr, nullptr, 1);
    const std::string first = "ip=10.0.0.1,username=admin, sessionid=aaaaaaaa-->";
    const std::string second = "ip=10.0.0.2,username=admin, sessionid=bbbbbbbb-->";
    const std::string third = "ip=10.0.0.3,username=admin, sessionid=cccccccc-->";
    const std::string end = "NULL \n\n";
    std::string expected;
    expected += "1000: " + first + second + third + end;
    expected += "1000: " + second + third + end;
    expected += "1000: " + third + end;
    EXPECT_EQ(expected, logText());
}

TEST_F(ClientListLog, EmptyingTheListAtLevel7_TracesEachDump) {
    fill(1);
    clientAuthListDel(&clientauthinfo, nullptr, nullptr, 1);
    EXPECT_EQ(
        "1000: 1000:clientAuthListDel]\n"
        "1000: 1000:printList]The Auth list is:\n"
        "1000: ip=10.0.0.1,username=admin, sessionid=aaaaaaaa-->NULL \n\n",
        logText());
}

TEST_F(ClientListLog, EveryOperationAtLevel5_WritesNothing) {
    daemon_log_level = 5;
    addClient("10.0.0.1");
    addClient("10.0.0.2");
    addClient("10.0.0.1");
    checkClientAuthIp(&clientauthinfo, "10.0.0.1", nullptr, 1);
    check_PendraAuthIP("10.0.0.1", nullptr);
    check_PendraAuthIP("10.0.0.9", nullptr);
    printList(&clientauthinfo);
    clientAuthListDel(&clientauthinfo, "10.0.0.1", nullptr, 1);
    clientAuthListDel(&clientauthinfo, nullptr, nullptr, 1);
    EXPECT_EQ("", logText());
    EXPECT_TRUE(device().consoleCalls.empty());
}

TEST_F(ClientListLog, LongAddresses_DoNoHarm) {
    const std::string ip(4000, '1');
    fill(1);
    addClient(ip.c_str());
    EXPECT_EQ(1, clientAuthListDel(&clientauthinfo, ip.substr(0, 127).c_str(), nullptr, 1));
    EXPECT_EQ(0, clientAuthListDel(&clientauthinfo, ip.c_str(), nullptr, 1));
    EXPECT_EQ(std::vector<std::string>{"10.0.0.1"}, clientAddresses());
}

} // namespace
