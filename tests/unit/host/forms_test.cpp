#include "host/forms.h"

#include <gtest/gtest.h>

namespace pendra::host {
namespace {

TEST(FormField, Present_IsReturned) {
    EXPECT_EQ(formField("mac=1&ifname=ra0&x=", "mac"), "1");
    EXPECT_EQ(formField("mac=1&ifname=ra0&x=", "ifname"), "ra0");
    EXPECT_EQ(formField("a=b=c", "a"), "b=c");
}

TEST(FormField, AbsentOrEmpty_IsEmpty) {
    EXPECT_EQ(formField("", "mac"), "");
    EXPECT_EQ(formField("mac=1", "ma"), "");
    EXPECT_EQ(formField("mac=1", "MAC"), "");
    EXPECT_EQ(formField("xmac=1", "mac"), "");
    EXPECT_EQ(formField("mac", "mac"), "");
    EXPECT_EQ(formField("mac=", "mac"), "");
    EXPECT_EQ(formField("&&=&", "mac"), "");
}

TEST(FormField, GivenTwice_TheFirstCounts) {
    EXPECT_EQ(formField("mac=1&mac=2", "mac"), "1");
    EXPECT_EQ(formField("mac=&mac=2", "mac"), "");
}

TEST(FormField, Escapes_AreDecoded) {
    EXPECT_EQ(formField("mac=02%3Aa1%3aB2", "mac"), "02:a1:B2");
    EXPECT_EQ(formField("name=a+b%2Bc%26d", "name"), "a b+c&d");
    EXPECT_EQ(formField("name=100%&x=1", "name"), "100%");
    EXPECT_EQ(formField("name=%4", "name"), "%4");
}

TEST(IsMac, SixPairs_AreOne) {
    EXPECT_TRUE(isMac("02:a1:b2:C3:D4:e5"));
    EXPECT_TRUE(isMac("00:00:00:00:00:00"));
}

TEST(IsMac, AnythingElse_IsNone) {
    for (const char* text :
         {"", "02:a1:b2:c3:d4", "02:a1:b2:c3:d4:e", "02:a1:b2:c3:d4:e5:", "02:a1:b2:c3:d4:e5 ", " 02:a1:b2:c3:d4:e5",
          "02-a1-b2-c3-d4-e5", "02:a1:b2:c3:d4:g5", "02a1:b2:c3:d4:e5:6", "0::a1:b2:c3:d4:e5", "02:a1:b2:c3:d4:$5"}) {
        EXPECT_FALSE(isMac(text)) << text;
    }
}

TEST(IsWirelessInterface, TheTwoOfTheDevice_AreAccepted) {
    EXPECT_TRUE(isWirelessInterface("ra0"));
    EXPECT_TRUE(isWirelessInterface("rai0"));
    for (const char* text : {"", "ra", "ra1", "RA0", "ra0 ", "ra0;reboot", "eth0"}) {
        EXPECT_FALSE(isWirelessInterface(text)) << text;
    }
}

} // namespace
} // namespace pendra::host
