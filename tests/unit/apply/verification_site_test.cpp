// The site that an extender connects to.
#include "record.h"

namespace pendra::test {
namespace {

const std::string kSite = "Device/UpLinkConnection/ExtenderSite/";

class SiteVerification : public VerificationTest {
  protected:
    SiteVerification() {
        setHardware(kWwan80211);
        useSite();
    }
    ZepExtenderSite& site = recordUpLink().extenderSite;
};

TEST_F(SiteVerification, ValidSite_IsAccepted) {
    expectAccepted();
}

TEST_F(SiteVerification, Survey_IsZeroOrOne) {
    for (const int32_t survey : {-1, 2}) {
        site.Survey = survey;
        expectFault(3, kSite + "Survey");
    }
}

TEST_F(SiteVerification, SurveyRequest_PassesAtOnceWithFaultyLaterSections) {
    daemon_log_level = 7;
    site.Survey = 1;
    setText(site.ConnRefSiteBSSID, "");
    site.wirelessTypeIdx = -1;
    recordRadio(kBand24).WlEnbl = 9;
    recordDevice().safetyWdn.SafetyWdnEnbl = 7;
    expectAccepted();
    EXPECT_EQ("1000: 1000:Verify_ZepXml]\n", logText());
}

TEST_F(SiteVerification, SurveyRequest_HasDeviceAndConnectionChecked) {
    site.Survey = 1;
    recordUpLink().connTypeIdx = -1;
    expectFault(3, "Device/UpLinkConnection/ConnType");
}

TEST_F(SiteVerification, Reference_MustNotBeEmpty) {
    for (const char* bssid : {"", "  "}) {
        setText(site.ConnRefSiteBSSID, bssid);
        device().forget();
        EXPECT_EQ(0, Verify_ZepXml());
        EXPECT_EQ(resultDocument(3, kSite + "ConnRefSiteBSSID", 0), device().events);
    }
}

TEST_F(SiteVerification, UnknownBand_Fails) {
    site.wirelessTypeIdx = -1;
    expectFault(3, kSite + "WirelessType");
}

// The rule belongs to the band that the site is on, whether or not that radio itself is being configured.
TEST_F(SiteVerification, Name_IsCheckedByTheRuleOfItsBand) {
    recordRadio(kBand24).Configurable = 0;
    recordRadio(kBand5).Configurable = 0;
    for (const int band : {kBand24, kBand5}) {
        SCOPED_TRACE(band);
        site.wirelessTypeIdx = band;
        setText(recordRadio(band).WirelessNameRule, "0,32,9");
        setText(recordRadio(1 - band).WirelessNameRule, "0,32,1");
        expectFault(10, kSite + "WirelessName");
        setText(recordRadio(band).WirelessNameRule, "0,32,8");
        setText(recordRadio(1 - band).WirelessNameRule, "0,3,1");
        expectAccepted();
    }
}

TEST_F(SiteVerification, KeyForms_AreThoseOfWpaAndWep) {
    const struct {
        std::string key;
        bool valid;
    } rows[] = {
        {"", true},
        {"abcd", false},
        {"abcde", true},
        {"abcdef", false},
        {"abcdefg", false},
        {"abcdefgh", true},
        {"0A1B2C3D4E", true},
        {"abcdefghijklm", true},
        {std::string(26, 'F'), true},
        {std::string(63, 'k'), true},
        {std::string(64, 'A'), true},
        {std::string(64, 'a'), false},
        {std::string(65, 'A'), false},
        {std::string(127, 'A'), false},
    };
    setText(recordRadio(kBand5).EncryptionKeyRule, "0,64,0");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.key);
        setText(site.EncryptionKey, row.key);
        if (row.valid)
            expectAccepted();
        else
            expectFault(3, kSite + "EncryptionKey");
    }
}

TEST_F(SiteVerification, Key_IsCheckedByTheRuleOfItsBandToo) {
    recordRadio(kBand24).Configurable = 0;
    recordRadio(kBand5).Configurable = 0;
    for (const int band : {kBand24, kBand5}) {
        SCOPED_TRACE(band);
        site.wirelessTypeIdx = band;
        setText(recordRadio(band).EncryptionKeyRule, "0,64,11");
        setText(recordRadio(1 - band).EncryptionKeyRule, "0,64,0");
        expectFault(10, kSite + "EncryptionKey");
        setText(recordRadio(band).EncryptionKeyRule, "0,64,10");
        expectAccepted();
    }
}

// No rule at all is a text rule with its defaults: at least one character.
TEST_F(SiteVerification, EmptyKeyUnderAnEmptyRule_IsTooShort) {
    recordRadio(kBand5).Configurable = 0;
    setText(recordRadio(kBand5).EncryptionKeyRule, "");
    setText(site.EncryptionKey, "");
    expectFault(10, kSite + "EncryptionKey");
}

TEST_F(SiteVerification, Texts_AreTrimmedInPlace) {
    setText(site.ConnRefSiteBSSID, " 02:aa:bb:cc:dd ");
    setText(site.WirelessName, " Upstairs ");
    setText(site.EncryptionKey, "\tabcde ");
    expectAccepted();
    EXPECT_STREQ("02:aa:bb:cc:dd", site.ConnRefSiteBSSID);
    EXPECT_STREQ("Upstairs", site.WirelessName);
    EXPECT_STREQ("abcde", site.EncryptionKey);
}

TEST_F(SiteVerification, Faults_AreReportedInOrder) {
    site.Survey = 2;
    setText(site.ConnRefSiteBSSID, "");
    site.wirelessTypeIdx = -1;
    setText(site.WirelessName, "");
    setText(site.EncryptionKey, "x");
    expectFault(3, kSite + "Survey");
    site.Survey = 0;
    expectFault(3, kSite + "ConnRefSiteBSSID");
    setText(site.ConnRefSiteBSSID, "02:aa:bb:cc:dd:ee");
    expectFault(3, kSite + "WirelessType");
    site.wirelessTypeIdx = kBand24;
    expectFault(10, kSite + "WirelessName");
    setText(site.WirelessName, "Upstairs");
    expectFault(3, kSite + "EncryptionKey");
}

// A first-generation router extends another network over Ethernet when ExtenderEnbl is 1 or 3.
TEST_F(SiteVerification, EthernetExtender_IsAnAffairOfVersion10) {
    const struct {
        bool version10;
        HardwareKind kind;
        int32_t extenderEnable;
        bool looksAtSite;
    } rows[] = {
        {true, kEthernet, 0, false},  {true, kEthernet, 1, true},  {true, kEthernet, 2, false},
        {true, kEthernet, 3, true},   {true, kEthernet, 4, false}, {false, kEthernet, 1, false},
        {false, kEthernet, 3, false}, {true, kWwan80211, 0, true}, {false, kWwan80211, 0, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.kind) + " " + std::to_string(row.extenderEnable));
        fillRecord();
        if (row.version10) useVersion10();
        setHardware(row.kind);
        recordDevice().ExtenderEnbl = row.extenderEnable;
        site.Survey = 5;
        if (row.looksAtSite)
            expectFault(3, kSite + "Survey");
        else
            expectAccepted();
    }
}

} // namespace
} // namespace pendra::test
