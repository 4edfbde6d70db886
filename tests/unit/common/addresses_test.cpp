// Dotted texts: host addresses, netmasks and subnets.
#include "support/fake_device.h"

namespace {

struct DottedCase {
    const char* text;
    int32_t valid;
};

TEST(NumberRange, Bounds_BelongToTheRange) {
    EXPECT_EQ(1, is_in_range(1, 1, 3));
    EXPECT_EQ(1, is_in_range(3, 1, 3));
    EXPECT_EQ(1, is_in_range(2, 2, 2));
    EXPECT_EQ(0, is_in_range(0, 1, 3));
    EXPECT_EQ(0, is_in_range(4, 1, 3));
    EXPECT_EQ(0, is_in_range(2, 3, 1));
    EXPECT_EQ(1, is_in_range(INT32_MIN, INT32_MIN, INT32_MAX));
    EXPECT_EQ(1, is_in_range(-1, -2, 0));
    EXPECT_EQ(0, is_in_range(INT32_MAX, INT32_MIN, 0));
}

TEST(HostAddress, EveryNumber_HasItsRange) {
    const DottedCase cases[] = {
        {"127.0.0.1", 0},  {"0.1.2.3", 0},    {"224.0.0.1", 0},       {"10.0.0.0", 0},        {"10.0.0.255", 1},
        {"1.0.0.1", 1},    {"126.0.0.1", 1},  {"128.0.0.1", 1},       {"223.255.255.255", 1}, {"223.255.255.254", 1},
        {"255.1.1.1", 0},  {"256.1.1.1", 0},  {"-1.1.1.1", 0},        {"10.255.0.1", 1},      {"10.256.0.1", 0},
        {"10.-1.0.1", 0},  {"10.0.255.1", 1}, {"10.0.256.1", 0},      {"10.0.-1.1", 0},       {"10.0.0.1", 1},
        {"10.0.0.256", 0}, {"10.0.0.-1", 0},  {"127.255.255.255", 0}, {"192.168.1.1", 1},     {"240.0.0.1", 0},
    };
    for (const DottedCase& row : cases) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(row.valid, is_Valid_IP(row.text));
    }
}

TEST(HostAddress, LooseSpelling_IsReadLikeADecimalConversion) {
    const DottedCase cases[] = {
        {"192.168.1.1xyz", 1}, {"192.168.1.1.5", 1},   {"192.168.1.1 ", 1}, {" 192.168.1.1", 1},  {"\t192.168.1.1", 1},
        {"192. 168. 1. 1", 1}, {"+192.+168.+1.+1", 1}, {"192.-0.1.1", 1},   {"010.01.001.09", 1}, {"192 .168.1.1", 0},
        {"x192.168.1.1", 0},   {"192,168,1,1", 0},     {"192..1.1", 0},     {"0x0a.0.0.1", 0},    {"+ 1.2.3.4", 0},
        {".1.2.3.4", 0},       {"--1.2.3.4", 0},       {"a.b.c.d", 0},
    };
    for (const DottedCase& row : cases) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(row.valid, is_Valid_IP(row.text));
    }
}

TEST(HostAddress, FewerThanFourNumbers_AreInvalid) {
    for (const char* text : {"", " ", ".", "10", "10.", "10.0", "10.0.", "10.0.0", "10.0.0.", "10.0.0.x", "10.0.0. "}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(0, is_Valid_IP(text));
        EXPECT_EQ(0, is_Valid_Netmask(text));
    }
}

// 4294967306 is 10, 4294967297 is 1 and 4294967551 is 255 in 32 bits.
TEST(HostAddress, NumbersBeyondAnInt_AreOutOfRange) {
    for (const char* text : {"4294967306.0.0.1", "10.4294967297.0.1", "10.0.4294967297.1", "10.0.0.4294967297",
                             "-4294967286.0.0.1", "2147483648.0.0.1", "18446744073709551626.0.0.1",
                             "99999999999999999999999.1.1.1", "10.0.0.-99999999999999999999999"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(0, is_Valid_IP(text));
    }
}

TEST(HostAddress, LongTexts_AreReadToTheFourthNumber) {
    const std::string zeros(4000, '0');
    EXPECT_EQ(1, is_Valid_IP((zeros + "10.0.0.1").c_str()));
    EXPECT_EQ(0, is_Valid_IP(std::string(4000, '9').c_str()));
    EXPECT_EQ(1, is_Valid_IP(("10.0.0.1" + std::string(1048576, '.')).c_str()));
}

TEST(HostAddress, Null_IsInvalid) {
    EXPECT_EQ(0, is_Valid_IP(nullptr));
}

std::string dotted(uint32_t bits) {
    return std::to_string(bits >> 24) + "." + std::to_string(bits >> 16 & 255) + "." + std::to_string(bits >> 8 & 255) +
           "." + std::to_string(bits & 255);
}

uint32_t maskOf(int ones) {
    return ones == 0 ? 0 : UINT32_MAX << (32 - ones);
}

TEST(Netmask, EveryPrefixLength_IsValid) {
    for (int ones = 0; ones <= 32; ones++) {
        const std::string text = dotted(maskOf(ones));
        SCOPED_TRACE(text);
        EXPECT_EQ(1, is_Valid_Netmask(text.c_str()));
    }
}

TEST(Netmask, EveryPrefixWithOneBitFlippedInside_IsInvalid) {
    for (int ones = 0; ones <= 32; ones++) {
        for (int bit = 0; bit < 32; bit++) {
            const uint32_t flipped = maskOf(ones) ^ (UINT32_C(1) << bit);
            if (bit == 31 - ones || bit == 32 - ones) continue; // the neighbouring prefix lengths
            SCOPED_TRACE(dotted(flipped));
            EXPECT_EQ(0, is_Valid_Netmask(dotted(flipped).c_str()));
        }
    }
}

TEST(Netmask, Numbers_MustBeBytes) {
    const DottedCase cases[] = {
        {"0.0.0.0", 1},          {"255.255.255.255", 1},  {"255.255.255.254", 1}, {"255.0.255.0", 0},
        {"255.255.0.255", 0},    {"256.0.0.0", 0},        {"255.256.0.0", 0},     {"255.255.256.0", 0},
        {"255.255.255.256", 0},  {"-1.0.0.0", 0},         {"255.-1.0.0", 0},      {"255.255.255.0/24", 1},
        {"4294967295.0.0.0", 0}, {"4294967551.0.0.0", 0}, {" 255.255.255.0", 1},  {"+255.+255.+0.+0", 1},
    };
    for (const DottedCase& row : cases) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(row.valid, is_Valid_Netmask(row.text));
    }
}

TEST(Netmask, Null_IsInvalid) {
    EXPECT_EQ(0, is_Valid_Netmask(nullptr));
}

struct SubnetCase {
    const char* mask;
    const char* first;
    const char* second;
    int32_t same;
};

TEST(Subnet, AddressesUnderAMask_AreComparedWhereTheMaskHasOnes) {
    const SubnetCase cases[] = {
        {"255.255.255.0", "192.168.1.10", "192.168.1.200", 1},
        {"255.255.255.0", "192.168.1.10", "192.168.2.1", 0},
        {"255.255.0.0", "192.168.1.10", "192.168.2.1", 1},
        {"255.0.0.0", "10.1.2.3", "11.1.2.3", 0},
        {"255.255.0.0", "10.1.2.3", "10.2.2.3", 0},
        {"255.255.255.255", "10.1.2.3", "10.1.2.3", 1},
        {"255.255.255.255", "10.1.2.3", "10.1.2.4", 0},
        {"255.255.255.254", "10.1.2.2", "10.1.2.3", 1},
        {"255.255.255.254", "10.1.2.1", "10.1.2.2", 0},
        {"0.0.0.0", "10.1.2.3", "223.4.5.6", 1},
        {"255.255.255.0", "192.168.1.10", "192.168.1.10", 1},
        {"240.0.0.0", "16.0.0.1", "31.255.255.255", 1},
        {"240.0.0.0", "16.0.0.1", "32.0.0.1", 0},
    };
    for (const SubnetCase& row : cases) {
        SCOPED_TRACE(std::string(row.mask) + " " + row.first + " " + row.second);
        EXPECT_EQ(row.same, is_Valid_IP_CheckMask(row.mask, row.first, row.second));
        EXPECT_EQ(row.same, is_Valid_IP_CheckMask(row.mask, row.second, row.first));
    }
}

TEST(Subnet, AnyInvalidText_MakesItInvalid) {
    const SubnetCase cases[] = {
        {"255.0.255.0", "192.168.1.10", "192.168.1.11", 0},
        {"255.255.255.0", "192.168.1.0", "192.168.1.11", 0},
        {"255.255.255.0", "192.168.1.10", "192.168.1.0", 0},
        {"0.0.0.0", "127.0.0.1", "10.0.0.1", 0},
        {"0.0.0.0", "10.0.0.1", "224.0.0.1", 0},
        {"255.255.255", "192.168.1.10", "192.168.1.11", 0},
        {"", "192.168.1.10", "192.168.1.11", 0},
        {"0.0.0.0", "", "10.0.0.1", 0},
        {"0.0.0.0", "10.0.0.1", "10.0.0", 0},
        {nullptr, "192.168.1.10", "192.168.1.11", 0},
        {"255.255.255.0", nullptr, "192.168.1.11", 0},
        {"255.255.255.0", "192.168.1.10", nullptr, 0},
        {"192.168.1.10", "192.168.1.10", "255.255.255.0", 0},
    };
    for (const SubnetCase& row : cases)
        EXPECT_EQ(0, is_Valid_IP_CheckMask(row.mask, row.first, row.second)) << (row.mask == nullptr ? "" : row.mask);
}

} // namespace
