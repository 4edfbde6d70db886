#include "client/access_key.h"

#include <gtest/gtest.h>

namespace pendra::client {
namespace {

// The keys were made with md5sum: slot, address, "admin", password.
TEST(AccessKey, SlotAddressUserAndPassword_AreDigested) {
    EXPECT_EQ(accessKey(10000, "192.168.1.33", "bramble-1234"), "61e89326b05598d4249ed7fec93d2a7b");
    EXPECT_EQ(accessKey(0, "127.0.0.1", ""), "228e5b8462c6b8a93b21a21557adcbb2");
}

TEST(AccessKey, WithinASlotOf20Seconds_IsTheSame) {
    const auto key = [](uint32_t uptime) { return accessKey(uptime, "127.0.0.1", "pw"); };
    EXPECT_EQ(key(20), key(39));
    EXPECT_NE(key(19), key(20));
    EXPECT_NE(key(39), key(40));
}

TEST(AccessKey, LongPassword_IsCutAsTheDeviceCutsIt) {
    EXPECT_EQ(accessKey(20, "127.0.0.1", std::string(100, 'p')), "ccb6fda6d336eaf89515804c2d2d2105");
}

TEST(AccessKey, LongText_IsCutAsTheDeviceCutsIt) {
    EXPECT_EQ(accessKey(4294967295u, std::string(120, 'a'), "pw"), "6ef4e33ae3edf3e3287f66f3908e1746");
}

} // namespace
} // namespace pendra::client
