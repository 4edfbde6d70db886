// Making access keys on the device's side, and the two versions.
#include "clients.h"

using namespace pendra::test;

namespace {

class AccessKey : public DeviceTest {
  protected:
    AccessKey() { device().tree["/sys/user:1/password"] = "secret"; }

    static void setPassword(const std::string& password) { device().tree["/sys/user:1/password"] = password; }
    static std::string keyAt(long uptime, const char* ip) {
        device().uptime = uptime;
        return generate_PendraKey(ip);
    }
    static std::string digestOf(const std::string& input) { return MD5Encryption(input.c_str()); }
};

// The digests of "5010.0.0.2adminsecret" and its like, worked out elsewhere.
TEST_F(AccessKey, FullKey_IsTheDigestOfSlotAddressUserAndPassword) {
    EXPECT_EQ("2cacb7625ed22a3f2cce1fa716689ca2", keyAt(1000, "10.0.0.2"));
    EXPECT_EQ("3cfe47b95d9bd332bdbe3b9c450b85ed", keyAt(0, "10.0.0.2"));
    device().tree.clear();
    EXPECT_EQ("ddc4c9733cbee08185af7ab4ae13745e", keyAt(1000, "10.0.0.2"));
}

TEST_F(AccessKey, Slot_IsTheUptimeDividedBy20) {
    for (const long uptime : {0L, 1L, 19L, 20L, 39L, 40L, 999L, 1000L, 86400L, 2147483647L}) {
        SCOPED_TRACE(uptime);
        EXPECT_EQ(digestOf(std::to_string(uptime / 20) + "10.0.0.2adminsecret"), keyAt(uptime, "10.0.0.2"));
    }
}

TEST_F(AccessKey, Key_DependsOnAddressAndPassword) {
    const std::string key = keyAt(1000, "10.0.0.2");
    EXPECT_NE(key, keyAt(1000, "10.0.0.3"));
    setPassword("Secret");
    EXPECT_NE(key, keyAt(1000, "10.0.0.2"));
    EXPECT_EQ(digestOf("5010.0.0.2adminSecret"), keyAt(1000, "10.0.0.2"));
}

TEST_F(AccessKey, Password_IsReadAtEachCall) {
    keyAt(1000, "10.0.0.2");
    keyAt(1000, "10.0.0.2");
    EXPECT_EQ((std::vector<std::string>{"/sys/user:1/password", "/sys/user:1/password"}), device().reads);
    EXPECT_TRUE(device().events.empty());
}

TEST_F(AccessKey, LongPassword_IsCutAt63) {
    for (const size_t length : {62U, 63U, 64U, 1023U}) {
        SCOPED_TRACE(length);
        setPassword(std::string(length, 'p'));
        EXPECT_EQ(digestOf("5010.0.0.2admin" + std::string(std::min<size_t>(length, 63), 'p')),
                  keyAt(1000, "10.0.0.2"));
    }
}

TEST_F(AccessKey, KeyInput_IsCutAt127Characters) {
    for (const size_t length : {113U, 114U, 115U, 119U, 120U, 121U, 200U, 4000U}) {
        SCOPED_TRACE(length);
        const std::string ip(length, 'i');
        EXPECT_EQ(digestOf(("50" + ip + "adminsecret").substr(0, 127)), keyAt(1000, ip.c_str()));
    }
    EXPECT_EQ("e650d34d77380656fd4f807d5c75ef28", keyAt(1000, std::string(200, 'i').c_str()));
}

TEST_F(AccessKey, KeyInputFullBeforeThePassword_DropsThePassword) {
    const std::string ip(120, 'i');
    const std::string key = keyAt(1000, ip.c_str());
    EXPECT_EQ("8bc7742536b9e3d266262e2935e6f7a7", key);
    setPassword("another");
    EXPECT_EQ(key, keyAt(1000, ip.c_str()));
    EXPECT_NE(keyAt(1000, std::string(119, 'i').c_str()), key);
}

TEST_F(AccessKey, ShortKey_IsTheFirstEightDigits) {
    device().uptime = 1000;
    EXPECT_STREQ("2cacb762", generate_DKey("10.0.0.2"));
}

TEST_F(AccessKey, Keys_ShareTheResultBuffer) {
    device().uptime = 1000;
    const char* shortKey = generate_DKey("10.0.0.2");
    EXPECT_EQ(string, shortKey);
    EXPECT_EQ(string, generate_PendraKey("10.0.0.2"));
    EXPECT_STREQ("2cacb7625ed22a3f2cce1fa716689ca2", shortKey);
    EXPECT_EQ(string, generate_DKey("10.0.0.2"));
    EXPECT_STREQ("2cacb762", shortKey);
}

TEST_F(AccessKey, NullAddress_CountsAsEmpty) {
    EXPECT_EQ("801df807522caf7e3a559fe7c7252e48", std::string(generate_PendraKey(nullptr)));
    EXPECT_EQ("801df807", std::string(generate_DKey(nullptr)));
}

TEST_F(AccessKey, FullKeyAtLevel7_TracesItsEntry) {
    daemon_log_level = 7;
    generate_PendraKey("10.0.0.2");
    EXPECT_EQ("1000: 1000:generate_PendraKey]\n", logText());
}

TEST_F(AccessKey, ShortKeyAtLevel7_TracesBothEntries) {
    daemon_log_level = 7;
    generate_DKey("10.0.0.2");
    EXPECT_EQ("1000: 1000:generate_DKey]\n1000: 1000:generate_PendraKey]\n", logText());
}

TEST_F(AccessKey, KeysAtLevel6_WriteNothing) {
    daemon_log_level = 6;
    generate_DKey("10.0.0.2");
    EXPECT_EQ("", logText());
}

class Versions : public DeviceTest {};

TEST_F(Versions, LibraryAndProtocol_AreReportedWithoutATrace) {
    daemon_log_level = 7;
    EXPECT_STREQ("b1.3.1", pendraLibVersion());
    EXPECT_STREQ("1.1", zepSpecVersion());
    EXPECT_EQ("", logText());
}

} // namespace
