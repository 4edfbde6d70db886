// The uplink: hardware, connection, provider, site and DSL line.
#include <functional>

#include "record.h"

namespace pendra::test {
namespace {

class UpLinkVerification : public VerificationTest {
  protected:
    void useStatic() {
        setConnection(kStatic);
        setText(recordUpLink().IP, "192.168.1.10");
        setText(recordUpLink().NetMask, "255.255.255.0");
        setText(recordUpLink().Gateway, "192.168.1.1");
        setText(recordUpLink().DNS, "9.9.9.9");
    }
};

TEST_F(UpLinkVerification, ClosedUplink_IsNotLookedAt) {
    recordUpLink().Configurable = 0;
    recordUpLink().hardwareTypeIdx = -1;
    recordUpLink().connTypeIdx = -1;
    expectAccepted();
}

TEST_F(UpLinkVerification, ClosedUplink_LeavesTheRadiosChecked) {
    recordUpLink().Configurable = 0;
    recordRadio(kBand5).WlEnbl = 4;
    expectFault(3, "Device/Wireless5/WlEnbl");
}

TEST_F(UpLinkVerification, UnknownHardware_Fails) {
    recordUpLink().hardwareTypeIdx = -1;
    expectFault(3, "Device/UpLinkConnection/HardwareType");
}

TEST_F(UpLinkVerification, UnsupportedHardware_Fails) {
    setText(recordUpLink().HardwareSupport, "ADSL,VDSL");
    expectFault(3, "Device/UpLinkConnection/HardwareType");
    setText(recordUpLink().HardwareSupport, "");
    expectFault(3, "Device/UpLinkConnection/HardwareType");
}

TEST_F(UpLinkVerification, SupportedHardware_IsFoundInAnyCase) {
    setText(recordUpLink().HardwareSupport, "adsl ETHERNET");
    expectAccepted();
}

// The kinds are searched as a text, not word by word.
TEST_F(UpLinkVerification, HardwareInsideALongerKind_IsSupported) {
    setText(recordUpLink().HardwareSupport, "ADSL");
    setHardware(kDsl);
    expectAccepted();
}

TEST_F(UpLinkVerification, HardwareAtTheEndOfAFullList_IsSupported) {
    setText(recordUpLink().HardwareSupport, std::string(119, ',') + "Ethernet");
    expectAccepted();
    setText(recordUpLink().HardwareSupport, std::string(120, ',') + "Ethernet");
    expectFault(3, "Device/UpLinkConnection/HardwareType");
}

TEST_F(UpLinkVerification, HardwareText_IsTrimmedBeforeItIsSearched) {
    setText(recordUpLink().HardwareType, " Ethernet ");
    expectAccepted();
    EXPECT_STREQ("Ethernet", recordUpLink().HardwareType);
}

TEST_F(UpLinkVerification, Version10_DoesNotAskForSupport) {
    useVersion10();
    setText(recordUpLink().HardwareSupport, "");
    expectAccepted();
    recordUpLink().hardwareTypeIdx = -1;
    expectFault(3, "Device/UpLinkConnection/HardwareType");
}

// The combined number decides, whatever major and minor are.
TEST_F(UpLinkVerification, CombinedVersion_SelectsTheGeneration) {
    setText(recordUpLink().HardwareSupport, "");
    zepXmlData.specVersion = {1, 1, "specVersion", 100};
    expectAccepted();
    zepXmlData.specVersion = {1, 0, "specVersion", 101};
    expectFault(3, "Device/UpLinkConnection/HardwareType");
}

TEST_F(UpLinkVerification, UnknownConnection_Fails) {
    recordUpLink().connTypeIdx = -1;
    expectFault(3, "Device/UpLinkConnection/ConnType");
}

TEST_F(UpLinkVerification, Dhcp_NeedsNeitherLoginNorAddresses) {
    setText(recordUpLink().LoginUserNameRule, "0,9,9");
    setText(recordUpLink().IP, "nonsense");
    setText(recordUpLink().DNS, "nonsense");
    expectAccepted();
    EXPECT_STREQ("nonsense", recordUpLink().DNS);
}

TEST_F(UpLinkVerification, Login_IsCheckedByItsRules) {
    for (const ConnectionKind kind : {kPppoe, kPppoa}) {
        SCOPED_TRACE(kind);
        setConnection(kind);
        setText(recordUpLink().LoginUserName, "");
        setText(recordUpLink().LoginPassword, "\x7F");
        expectFault(10, "Device/UpLinkConnection/LoginUserName");
        setText(recordUpLink().LoginUserName, "user@isp");
        expectFault(11, "Device/UpLinkConnection/LoginPassword");
        setText(recordUpLink().LoginPassword, "word");
        expectAccepted();
    }
}

TEST_F(UpLinkVerification, Login_IsTrimmedInPlace) {
    setConnection(kPppoe);
    setText(recordUpLink().LoginUserName, " user ");
    setText(recordUpLink().LoginPassword, "\tword");
    expectAccepted();
    EXPECT_STREQ("user", recordUpLink().LoginUserName);
    EXPECT_STREQ("word", recordUpLink().LoginPassword);
}

TEST_F(UpLinkVerification, StaticAddresses_FailWithTheirTag) {
    const struct {
        const char* tag;
        char (&field)[16];
        std::vector<std::string> faulty;
    } rows[] = {
        {"IP", recordUpLink().IP, {"", " ", "127.0.0.1", "0.1.2.3", "224.0.0.1", "10.0.0.0", "10.0.0", "x"}},
        {"NetMask", recordUpLink().NetMask, {"", " ", "255.255.0.255", "256.0.0.0", "255.255.255"}},
        {"Gateway", recordUpLink().Gateway, {"", " ", "127.0.0.1", "192.168.1.0", "192.168.1.256", "1.2.3"}},
        {"DNS", recordUpLink().DNS, {"127.0.0.1", "8.8.8", "8.8.8.0", "0.0.0.0", "dns"}},
    };
    for (const auto& row : rows)
        for (const std::string& value : row.faulty) {
            SCOPED_TRACE(std::string(row.tag) + " '" + value + "'");
            useStatic();
            setText(row.field, value);
            device().forget();
            EXPECT_EQ(0, Verify_ZepXml());
            EXPECT_EQ(resultDocument(3, std::string("Device/UpLinkConnection/") + row.tag, 0), device().events);
        }
}

TEST_F(UpLinkVerification, StaticAddresses_AreCheckedInOrder) {
    useStatic();
    char(*const fields[])[16] = {&recordUpLink().IP, &recordUpLink().NetMask, &recordUpLink().Gateway,
                                 &recordUpLink().DNS};
    const char* const tags[] = {"IP", "NetMask", "Gateway", "DNS"};
    for (auto* field : fields)
        setText(*field, "999.0.0.0");
    const char* const good[] = {"10.1.2.3", "0.0.0.0", "10.1.2.255", "223.255.255.254"};
    for (size_t index = 0; index < 4; index++) {
        expectFault(3, std::string("Device/UpLinkConnection/") + tags[index]);
        setText(*fields[index], good[index]);
    }
    expectAccepted();
}

TEST_F(UpLinkVerification, LongestAddresses_Pass) {
    useStatic();
    for (auto* field : {&recordUpLink().IP, &recordUpLink().Gateway, &recordUpLink().DNS})
        setText(*field, "192.168.100.200");
    setText(recordUpLink().NetMask, "255.255.255.255");
    expectAccepted();
}

TEST_F(UpLinkVerification, StaticAddresses_AreTrimmedInPlace) {
    useStatic();
    setText(recordUpLink().IP, " 10.1.2.3 ");
    setText(recordUpLink().NetMask, "\t255.0.0.0");
    setText(recordUpLink().Gateway, "10.1.2.1 ");
    setText(recordUpLink().DNS, " 9.9.9.9");
    expectAccepted();
    EXPECT_STREQ("10.1.2.3", recordUpLink().IP);
    EXPECT_STREQ("255.0.0.0", recordUpLink().NetMask);
    EXPECT_STREQ("10.1.2.1", recordUpLink().Gateway);
    EXPECT_STREQ("9.9.9.9", recordUpLink().DNS);
}

TEST_F(UpLinkVerification, EmptyStaticDns_BecomesThePublicOne) {
    for (const char* dns : {"", "  \t"}) {
        useStatic();
        setText(recordUpLink().DNS, dns);
        expectAccepted();
        EXPECT_STREQ("8.8.8.8", recordUpLink().DNS);
    }
}

TEST_F(UpLinkVerification, DnsReplacement_StaysWhenALaterCheckFails) {
    useStatic();
    setText(recordUpLink().DNS, "");
    recordRadio(kBand24).WlEnbl = 4;
    EXPECT_EQ(0, Verify_ZepXml());
    EXPECT_STREQ("8.8.8.8", recordUpLink().DNS);
}

// ---- providers ----

TEST_F(UpLinkVerification, Provider_NeedsCountryAndName) {
    const struct {
        HardwareKind kind;
        ZepIsp& isp;
        const char* path;
    } rows[] = {{kAdsl, recordUpLink().dsl, "Device/UpLinkConnection/DSL"},
                {kVdsl, recordUpLink().dsl, "Device/UpLinkConnection/DSL"},
                {kWwanApn, recordUpLink().apn, "Device/UpLinkConnection/APN"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.kind);
        setHardware(row.kind);
        setText(row.isp.CountryName, "");
        setText(row.isp.IspName, "");
        expectFault(3, std::string(row.path) + "/CountryName");
        setText(row.isp.CountryName, "Utopia");
        expectFault(3, std::string(row.path) + "/IspName");
        setText(row.isp.IspName, "Net");
        expectAccepted();
    }
}

TEST_F(UpLinkVerification, ProviderOfBlanks_IsMissing) {
    setHardware(kAdsl);
    setText(recordUpLink().dsl.CountryName, " \t");
    EXPECT_EQ(0, Verify_ZepXml());
    EXPECT_EQ(resultDocument(3, "Device/UpLinkConnection/DSL/CountryName", 0), device().events);
}

TEST_F(UpLinkVerification, ProviderTexts_AreTrimmedInPlace) {
    setHardware(kWwanApn);
    setText(recordUpLink().apn.CountryName, " Utopia");
    setText(recordUpLink().apn.IspName, "Net ");
    expectAccepted();
    EXPECT_STREQ("Utopia", recordUpLink().apn.CountryName);
    EXPECT_STREQ("Net", recordUpLink().apn.IspName);
}

TEST_F(UpLinkVerification, Version10Provider_IsCheckedToo) {
    useVersion10();
    setHardware(kAdsl);
    expectFault(3, "Device/UpLinkConnection/DSL/CountryName");
}

// ---- the DSL line of first-generation devices ----

TEST_F(UpLinkVerification, DslLine_HasItsRanges) {
    useVersion10();
    setHardware(kDsl);
    const struct {
        int32_t& value;
        int32_t lowest;
        int32_t highest;
        const char* tag;
    } rows[] = {{recordUpLink().MTU, 1, 1492, "MTU"},
                {recordUpLink().dsl.VPI, 0, 8, "VPI"},
                {recordUpLink().dsl.VCI, 32, 32767, "VCI"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.tag);
        const std::string message = std::string("Device/UpLinkConnection/DSL/") + row.tag;
        row.value = row.lowest - 1;
        expectFault(3, message);
        row.value = row.highest + 1;
        expectFault(3, message);
        row.value = row.highest;
        expectAccepted();
        row.value = row.lowest;
        expectAccepted();
    }
}

// The limit of 1492 looks at the hardware: it holds for every connection.
TEST_F(UpLinkVerification, DslMtu_HasOneLimitForEveryConnection) {
    useVersion10();
    setHardware(kDsl);
    useStatic();
    setText(recordUpLink().LoginUserName, "user");
    setText(recordUpLink().LoginPassword, "word");
    for (const ConnectionKind kind : {kDhcp, kStatic, kPppoe, kPppoa}) {
        SCOPED_TRACE(kind);
        setConnection(kind);
        recordUpLink().MTU = 1492;
        expectAccepted();
        for (const int32_t mtu : {1493, 1500, 1501, -1, INT32_MIN, INT32_MAX}) {
            recordUpLink().MTU = mtu;
            expectFault(3, "Device/UpLinkConnection/DSL/MTU");
        }
    }
}

TEST_F(UpLinkVerification, UnknownEncapsulation_IsReportedAsEncryptionMode) {
    useVersion10();
    setHardware(kDsl);
    recordUpLink().dsl.encapModeIdx = -1;
    expectFault(3, "Device/UpLinkConnection/DSL/EncryptionMode");
    recordUpLink().dsl.encapModeIdx = 1;
    expectAccepted();
}

TEST_F(UpLinkVerification, DslLine_IsCheckedInOrder) {
    useVersion10();
    setHardware(kDsl);
    recordUpLink().MTU = 0;
    recordUpLink().dsl.VPI = 9;
    recordUpLink().dsl.VCI = 0;
    recordUpLink().dsl.encapModeIdx = -1;
    expectFault(3, "Device/UpLinkConnection/DSL/MTU");
    recordUpLink().MTU = 1;
    expectFault(3, "Device/UpLinkConnection/DSL/VPI");
    recordUpLink().dsl.VPI = 0;
    expectFault(3, "Device/UpLinkConnection/DSL/VCI");
    recordUpLink().dsl.VCI = 32;
    expectFault(3, "Device/UpLinkConnection/DSL/EncryptionMode");
}

TEST_F(UpLinkVerification, LaterVersionsDslLine_IsNotChecked) {
    setHardware(kDsl);
    recordUpLink().MTU = 0;
    recordUpLink().dsl.VPI = 9;
    recordUpLink().dsl.encapModeIdx = -1;
    expectAccepted();
}

TEST_F(UpLinkVerification, MtuOfOtherHardware_IsNotChecked) {
    useVersion10();
    recordUpLink().MTU = 9000;
    expectAccepted();
}

} // namespace
} // namespace pendra::test
