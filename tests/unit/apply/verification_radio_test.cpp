// The radios: switches, name, encryption and channel.
#include "record.h"

namespace pendra::test {
namespace {

class RadioVerification : public VerificationTest {
  protected:
    // A key that fits the mode.
    void useMode(ZepWireless& target, ModeKind mode) {
        setMode(target, mode);
        setType(target, kAuto);
        setText(target.EncryptionKey, mode == kWep ? "abcde" : "abcdefgh");
    }

    ZepWireless& radio = recordRadio(kBand24);
};

TEST_F(RadioVerification, Switches_HaveTheirRanges) {
    for (const int band : {kBand24, kBand5}) {
        ZepWireless& target = recordRadio(band);
        const std::string path = std::string("Device/Wireless") + (band == kBand24 ? "2.4" : "5");
        SCOPED_TRACE(path);
        for (const int32_t value : {-1, 4}) {
            target.WlEnbl = value;
            expectFault(3, path + "/WlEnbl");
        }
        for (const int32_t value : {0, 1, 2, 3}) {
            target.WlEnbl = value;
            expectAccepted();
        }
        for (const int32_t value : {-1, 3}) {
            target.WlSchedule = value;
            expectFault(3, path + "/WlSchedule");
        }
        for (const int32_t value : {0, 1, 2}) {
            target.WlSchedule = value;
            expectAccepted();
        }
    }
}

TEST_F(RadioVerification, AbsentRadio_IsSkipped) {
    recordRadio(kBand24).WlEnbl = 9;
    recordRadio(kBand5).WlEnbl = 9;
    zepXmlData.wlan24Feature = 0;
    expectFault(3, "Device/Wireless5/WlEnbl");
    zepXmlData.wlan5Feature = 0;
    expectAccepted();
}

TEST_F(RadioVerification, ClosedRadio_IsSkipped) {
    recordRadio(kBand24).WlEnbl = 9;
    recordRadio(kBand5).WlEnbl = 9;
    recordRadio(kBand24).Configurable = 0;
    expectFault(3, "Device/Wireless5/WlEnbl");
    recordRadio(kBand5).Configurable = 0;
    expectAccepted();
}

TEST_F(RadioVerification, Band24_ComesFirst) {
    recordRadio(kBand24).encrypModeIdx = -1;
    recordRadio(kBand5).WlEnbl = 9;
    expectFault(3, "Device/Wireless2.4/EncryptionMode");
}

TEST_F(RadioVerification, Bssid_MustNotBeEmpty) {
    setText(recordRadio(kBand5).WirelessBSSID, "");
    expectFault(3, "Device/Wireless5/WirelessBSSID");
    setText(recordRadio(kBand5).WirelessBSSID, " ");
    EXPECT_EQ(0, Verify_ZepXml());
    setText(recordRadio(kBand5).WirelessBSSID, " 02:00 ");
    expectAccepted();
    EXPECT_STREQ("02:00", recordRadio(kBand5).WirelessBSSID);
}

TEST_F(RadioVerification, Name_IsCheckedByTheRuleOfItsRadio) {
    for (const int band : {kBand24, kBand5}) {
        SCOPED_TRACE(band);
        fillRecord();
        setText(recordRadio(band).WirelessNameRule, "0,3,1");
        expectFault(10, std::string("Device/Wireless") + (band == kBand24 ? "2.4" : "5") + "/WirelessName");
    }
}

TEST_F(RadioVerification, UnknownMode_Fails) {
    radio.encrypModeIdx = -1;
    expectFault(3, "Device/Wireless2.4/EncryptionMode");
}

// Which types fit which mode; -1 is a type that no table knows.
TEST_F(RadioVerification, Types_MustFitTheMode) {
    const struct {
        ModeKind mode;
        std::vector<int32_t> fitting;
    } rows[] = {
        {kNone, {kAuto, kNoType}},        {kWep, {kAuto, kOpen, kShared}}, {kWpa, {kAuto, kTkip, kAes}},
        {kWpaWpa2, {kAuto, kTkip, kAes}}, {kWpa2, {kAuto, kTkip, kAes}},
    };
    for (const auto& row : rows)
        for (int32_t type = -1; type <= kNoType; type++) {
            SCOPED_TRACE(std::to_string(row.mode) + " with " + std::to_string(type));
            useMode(radio, row.mode);
            radio.encrypTypeIdx = type;
            bool fits = false;
            for (const int32_t fitting : row.fitting)
                fits = fits || fitting == type;
            if (fits)
                expectAccepted();
            else
                expectFault(3, "Device/Wireless2.4/EncryptionType");
        }
}

TEST_F(RadioVerification, Keys_MustFitTheMode) {
    const struct {
        std::string key;
        bool wep;
        bool wpa;
    } rows[] = {
        {"", false, false},
        {"abcd", false, false},
        {"abcde", true, false},
        {"abcdef", false, false},
        {"abcdefg", false, false},
        {"abcdefgh", false, true},
        {"0A1B2C3D4E", true, true},
        {"0a1b2c3d4e", false, true},
        {"abcdefghijklm", true, true},
        {std::string(26, '9'), true, true},
        {std::string(26, 'g'), false, true},
        {std::string(63, '!'), false, true},
        {std::string(64, 'F'), false, true},
        {std::string(64, 'f'), false, false},
        {std::string(65, 'F'), false, false},
    };
    setText(radio.EncryptionKeyRule, "2");
    for (const ModeKind mode : {kNone, kWep, kWpa, kWpaWpa2, kWpa2})
        for (const auto& row : rows) {
            SCOPED_TRACE(std::to_string(mode) + " " + row.key);
            useMode(radio, mode);
            setText(radio.EncryptionKey, row.key);
            if (mode == kNone || (mode == kWep ? row.wep : row.wpa))
                expectAccepted();
            else
                expectFault(3, "Device/Wireless2.4/EncryptionKey");
        }
}

TEST_F(RadioVerification, Key_IsCheckedByTheRuleForEveryMode) {
    for (const ModeKind mode : {kNone, kWep, kWpa, kWpaWpa2, kWpa2}) {
        SCOPED_TRACE(mode);
        useMode(radio, mode);
        setText(radio.EncryptionKeyRule, "0,64,9");
        expectFault(10, "Device/Wireless2.4/EncryptionKey");
        setText(radio.EncryptionKeyRule, "0,64,0");
        expectAccepted();
    }
}

TEST_F(RadioVerification, EmptyKeyUnderAnEmptyRule_IsTooShort) {
    useMode(radio, kNone);
    setText(radio.EncryptionKey, "");
    setText(radio.EncryptionKeyRule, "");
    expectFault(10, "Device/Wireless2.4/EncryptionKey");
}

TEST_F(RadioVerification, Texts_AreTrimmedInPlace) {
    setText(radio.WirelessName, " Home ");
    setText(radio.EncryptionKey, " abcdefgh\t");
    setText(radio.Channel, " 11 ");
    expectAccepted();
    EXPECT_STREQ("Home", radio.WirelessName);
    EXPECT_STREQ("abcdefgh", radio.EncryptionKey);
    EXPECT_STREQ("11", radio.Channel);
}

TEST_F(RadioVerification, KeyThatFitsOnlyWithItsBlanks_Fails) {
    setText(radio.EncryptionKey, " abcdefg");
    EXPECT_EQ(0, Verify_ZepXml());
    EXPECT_EQ(resultDocument(3, "Device/Wireless2.4/EncryptionKey", 0), device().events);
}

TEST_F(RadioVerification, Faults_AreReportedInOrder) {
    radio.WlEnbl = 9;
    radio.WlSchedule = 9;
    setText(radio.WirelessBSSID, "");
    setText(radio.WirelessName, "");
    radio.encrypModeIdx = -1;
    radio.encrypTypeIdx = -1;
    setText(radio.EncryptionKey, "x");
    setText(radio.Channel, "99");
    radio.accessControl.WlAcEnbl = 9;
    const std::string path = "Device/Wireless2.4/";
    expectFault(3, path + "WlEnbl");
    radio.WlEnbl = 0;
    expectFault(3, path + "WlSchedule");
    radio.WlSchedule = 0;
    expectFault(3, path + "WirelessBSSID");
    setText(radio.WirelessBSSID, "b");
    expectFault(10, path + "WirelessName");
    setText(radio.WirelessName, "n");
    expectFault(3, path + "EncryptionMode");
    setMode(radio, kWpa);
    expectFault(3, path + "EncryptionType");
    setType(radio, kTkip);
    expectFault(3, path + "EncryptionKey");
    setText(radio.EncryptionKey, "abcdefgh");
    expectFault(3, path + "Channel");
    setText(radio.Channel, "1");
    expectFault(3, path + "AccessControl/WlEnbl");
}

// ---- first-generation devices ----

TEST_F(RadioVerification, Version10_NeedsNeitherBssidNorFittingType) {
    useVersion10();
    setText(radio.WirelessBSSID, "");
    setType(radio, kOpen);
    expectAccepted();
    radio.encrypTypeIdx = -1;
    expectAccepted();
}

TEST_F(RadioVerification, Version10_EndsBehindTheKey) {
    useVersion10();
    setText(radio.Channel, "-1");
    radio.accessControl.WlAcEnbl = 9;
    expectAccepted();
    EXPECT_STREQ("-1", radio.Channel);
}

TEST_F(RadioVerification, Version10_ChecksNameModeAndKey) {
    useVersion10();
    setText(radio.WirelessName, "");
    expectFault(10, "Device/Wireless2.4/WirelessName");
    setText(radio.WirelessName, "Home");
    radio.encrypModeIdx = -1;
    expectFault(3, "Device/Wireless2.4/EncryptionMode");
    setMode(radio, kWep);
    expectFault(3, "Device/Wireless2.4/EncryptionKey");
}

// ---- channels ----

struct ChannelCase {
    std::string channel;
    std::string list;
    bool acceptable;
};

const ChannelCase kChannels[] = {
    {"11", "1,2,3,4,5,6,7,8,9,10,11", true},
    {"1", "1,2,3", true},
    {"2", "1,2,3", true},
    {"1", "10,11", false},
    {"36", "1,2,3", false},
    {"0", "1,2,3", false},
    {"0", "0,1,2,3", true},
    {"-1", "1,2,3", false},
    {"-1", "-1,1", false},
    {"", "1,,3", false},
    {"", "", false},
    {"1", "", false},
    {"100", "36,100", true},
    {"1004", "36,100", true}, // three characters count
    {"1004", "36,1004", false},
    {"10", "36,100", false},
    {"auto", "AUT,1", true}, // a text that is no number reads as 0
    {"1", std::string(124, ',') + "1", true},
    {"1", std::string(125, ',') + "1", true},
    {"149", std::string(123, ',') + "149", true},
};

TEST_F(RadioVerification, Channel_MustStandInTheList) {
    for (const ChannelCase& row : kChannels) {
        SCOPED_TRACE("'" + row.channel + "' in '" + row.list + "'");
        setText(radio.Channel, row.channel);
        setText(radio.ChannelList, row.list);
        if (row.acceptable)
            expectAccepted();
        else
            expectFault(3, "Device/Wireless2.4/Channel");
    }
}

TEST_F(RadioVerification, ClonedChannelThatIsNotThere_BecomesAutomatic) {
    zepXmlData.apCloningOnly = 1;
    for (const ChannelCase& row : kChannels) {
        SCOPED_TRACE("'" + row.channel + "' in '" + row.list + "'");
        setText(radio.Channel, row.channel);
        setText(radio.ChannelList, row.list);
        expectAccepted();
        EXPECT_EQ(row.acceptable ? row.channel : "0", radio.Channel);
    }
}

TEST_F(RadioVerification, ClonedChannel_IsReplacedAndCheckingGoesOn) {
    zepXmlData.apCloningOnly = 1;
    setText(radio.Channel, "99");
    radio.accessControl.WlAcEnbl = 9;
    EXPECT_EQ(0, Verify_ZepXml());
    EXPECT_EQ(resultDocument(3, "Device/Wireless2.4/AccessControl/WlEnbl", 0), device().events);
    EXPECT_STREQ("0", radio.Channel);
}

TEST_F(RadioVerification, FullChannelList_IsSearchedFromItsFirstChannel) {
    setText(radio.ChannelList, "13" + std::string(125, ','));
    setText(radio.Channel, "13");
    expectAccepted();
    setText(radio.Channel, "14");
    expectFault(3, "Device/Wireless2.4/Channel");
}

TEST_F(RadioVerification, LongestChannelText_CountsItsFirstThreeCharacters) {
    setText(radio.Channel, "11" + std::string(29, '0'));
    setText(radio.ChannelList, "110");
    expectAccepted();
}

} // namespace
} // namespace pendra::test
