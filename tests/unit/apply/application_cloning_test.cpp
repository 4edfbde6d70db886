// Applying an access-point cloning document.
#include "record.h"

namespace pendra::test {
namespace {

class CloningApplication : public ApplicationTest {
  protected:
    CloningApplication() { zepXmlData.apCloningOnly = 1; }

    ZepWireless& radio = recordRadio(kBand24);
};

// A stored 2 or 3, and a new 2, end the radios without an error; a new 3 is written as 1. Any other value, which only a
// refused document leaves in the record, is written as it stands.
TEST_F(CloningApplication, Enable_IsSetOrStopsTheRadios) {
    const struct {
        const char* stored; // null: absent
        int32_t value;
        SwitchOutcome outcome;
        int32_t written;
    } rows[] = {
        {"0", 0, kSame, 0},        {"0", 1, kWritten, 1},
        {"0", 2, kStopped, 0},     {"0", 3, kWritten, 1},
        {"1", 0, kWritten, 0},     {"1", 1, kSame, 0},
        {"1", 2, kStopped, 0},     {"1", 3, kSame, 0},
        {"2", 0, kStopped, 0},     {"2", 1, kStopped, 0},
        {"2", 2, kSame, 0},        {"2", 3, kStopped, 0},
        {"3", 0, kStopped, 0},     {"3", 1, kStopped, 0},
        {"3", 2, kStopped, 0},     {"3", 3, kSame, 0},
        {nullptr, 1, kWritten, 1}, {nullptr, 2, kStopped, 0},
        {nullptr, 3, kWritten, 1}, {"1", 4, kWritten, 4},
        {"1", -1, kWritten, -1},   {"1", INT32_MIN, kWritten, INT32_MIN},
        {"2", 4, kStopped, 0},
    };
    const auto tree = device().tree;
    for (const auto& row : rows) {
        SCOPED_TRACE(describe({row.stored, row.value, row.outcome}));
        device().tree = tree;
        store("/lan/wireless2.4:1/wlenbl", row.stored);
        radio.WlEnbl = row.value;
        setText(radio.WirelessName, "New");
        setText(recordRadio(kBand5).WirelessName, "New");
        if (row.outcome == kStopped) {
            expectNothing();
            continue;
        }
        Events writes = {"set /lan/wireless2.4:1/wirelessname=New", "set /lan/wireless5:1/wirelessname=New"};
        const std::string enable = "set /lan/wireless2.4:1/wlenbl=" + std::to_string(row.written);
        if (row.outcome == kWritten) writes.insert(writes.begin(), enable);
        expectWrites(writes, "wlan2.4 wlan5");
        EXPECT_EQ(row.value, radio.WlEnbl) << "the record keeps the document's value";
    }
}

TEST_F(CloningApplication, StoppedRadios_LeaveTheRestGoingOn) {
    daemon_log_level = 6;
    device().tree["/lan/wireless2.4:1/wlenbl"] = "2";
    setText(recordDevice().EasyRoaming, "other");
    setText(recordRadio(kBand5).WirelessName, "New");
    expectWrites({"set /bramble/easyroaminginfo=other"}, "device");
    EXPECT_EQ("1000: done,ret=1,Restart:wlan2.4=0,wlan5=0,uplink=0,survey=0,roaming=0\n", logText());
}

TEST_F(CloningApplication, SecondRadioStopped_KeepsTheFirst) {
    device().tree["/lan/wireless5:1/wlenbl"] = "2";
    setText(radio.WirelessName, "New");
    setText(recordRadio(kBand5).WirelessName, "New");
    expectWrites({"set /lan/wireless2.4:1/wirelessname=New"}, "wlan2.4");
}

TEST_F(CloningApplication, Schedule_IsWrittenUnlessTheDeviceFixesIt) {
    const struct {
        const char* stored; // null: absent, which reads as 0 where it is compared as a number
        int32_t value;
        SwitchOutcome outcome;
        int32_t written;
    } rows[] = {
        {"0", 0, kSame, 0},     {"0", 1, kWritten, 1}, {"0", 2, kSame, 0},
        {"1", 0, kWritten, 0},  {"1", 1, kSame, 0},    {"1", 2, kWritten, 0},
        {"2", 0, kSame, 0},     {"2", 1, kSame, 0},    {"2", 2, kSame, 0},
        {"3", 2, kWritten, 0},  {"3", 1, kWritten, 1}, {nullptr, 1, kWritten, 1},
        {nullptr, 0, kSame, 0}, {"0", 3, kWritten, 3}, {"0", INT32_MIN, kWritten, INT32_MIN},
        {"2", 3, kSame, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(describe({row.stored, row.value, row.outcome}));
        store("/lan/wireless2.4:1/wlschedule", row.stored);
        radio.WlSchedule = row.value;
        if (row.outcome == kSame)
            expectNothing();
        else
            expectWrites({"set /lan/wireless2.4:1/wlschedule=" + std::to_string(row.written)}, "wlan2.4");
        EXPECT_EQ(row.value, radio.WlSchedule) << "the record keeps the document's value";
    }
}

TEST_F(CloningApplication, FixedSchedule_LeavesTheNetworkWritten) {
    device().tree["/lan/wireless2.4:1/wlschedule"] = "2";
    setText(radio.EncryptionKey, "abcdefgh");
    expectWrites({"set /lan/wireless2.4:1/encryptionkey=abcdefgh"}, "wlan2.4");
}

// ---- access control ----

TEST_F(CloningApplication, AccessSwitch_IsWrittenUnlessTheDeviceFixesIt) {
    const std::string node = "/lan/wireless2.4:1/accesscontrol/wlacenbl";
    const struct {
        const char* stored; // null: absent, which counts as 2
        int32_t value;
        SwitchOutcome outcome;
        int32_t written;
    } rows[] = {
        {"0", 0, kSame, 0},     {"0", 2, kWritten, 0}, {"1", 0, kWritten, 0}, {"1", 2, kWritten, 0},
        {"2", 0, kSame, 0},     {"2", 2, kSame, 0},    {"2", 1, kSame, 0},    {nullptr, 0, kSame, 0},
        {nullptr, 1, kSame, 0}, {"3", 0, kWritten, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(describe({row.stored, row.value, row.outcome}));
        store(node, row.stored);
        radio.accessControl.WlAcEnbl = row.value;
        if (row.outcome == kSame)
            expectNothing();
        else
            expectWrites({"set " + node + "=" + std::to_string(row.written)}, "wlan2.4");
        EXPECT_EQ(row.value, radio.accessControl.WlAcEnbl) << "the record keeps the document's value";
    }
}

TEST_F(CloningApplication, AccessControlSwitchedOn_WritesItsRules) {
    const std::string base = "set /lan/wireless2.4:1/accesscontrol/";
    radio.accessControl.WlAcEnbl = 1;
    radio.accessControl.WlAcMode = 1;
    fillRules(radio.accessControl, 1);
    expectWrites(
        {base + "wlacenbl=1", base + "wlacmode=1", base + "acrule:1/active=1", base + "acrule:1/mac=02:00:00:00:00:01"},
        "wlan2.4");
}

TEST_F(CloningApplication, AccessControlThatIsOn_HasItsRulesWrittenToo) {
    const std::string base = "set /lan/wireless2.4:1/accesscontrol/";
    device().tree["/lan/wireless2.4:1/accesscontrol/wlacenbl"] = "1";
    radio.accessControl.WlAcEnbl = 1;
    fillRules(radio.accessControl, 1);
    expectWrites({base + "wlacmode=0", base + "acrule:1/active=1", base + "acrule:1/mac=02:00:00:00:00:01"}, "wlan2.4");
}

TEST_F(CloningApplication, FixedAccessControl_HasItsChannelWrittenOnly) {
    device().tree["/lan/wireless2.4:1/accesscontrol/wlacenbl"] = "2";
    setText(radio.Channel, "6");
    radio.accessControl.WlAcEnbl = 1;
    fillRules(radio.accessControl, 1);
    expectWrites({"set /lan/wireless2.4:1/channel=6"}, "wlan2.4");
}

// ---- an extender clones the site that it connects to ----

class SiteCloning : public CloningApplication {
  protected:
    SiteCloning() {
        setHardware(kWwan80211);
        device().tree["/uplink/extendersite/connrefsitebssid"] = "00:11:22:33:44:02";
        zepXmlData.wlan5Feature = 0;
    }

    // What every run writes for a radio.
    static Events publication(const ZepWireless& source, const std::string& band) {
        const std::string node = "set /runtime/apcloninginfo/extendersite/";
        return {node + "wirelesstype=" + band,
                node + "wirelessbssid=" + source.WirelessBSSID,
                node + "wirelessname=" + source.WirelessName,
                node + "encryptionmode=" + source.EncryptionMode,
                node + "encryptiontype=" + source.EncryptionType,
                node + "encryptionkey=" + source.EncryptionKey,
                node + "channel=" + source.Channel};
    }
    static Events siteWrites(const ZepWireless& source, const std::string& band) {
        const std::string node = "set /uplink/extendersite/";
        Events writes = {node + "wirelesstype=" + band, node + "wirelessname=" + source.WirelessName,
                         node + "encryptionkey=" + source.EncryptionKey};
        for (const std::string& write : publication(source, band))
            writes.push_back(write);
        return writes;
    }
};

TEST_F(SiteCloning, ConnectedSite_IsTakenOver) {
    recordUpLink().extenderSite.wirelessTypeIdx = -1;
    expectWrites(siteWrites(radio, "2.4"), "uplink");
    EXPECT_EQ(kBand24, recordUpLink().extenderSite.wirelessTypeIdx);
}

TEST_F(SiteCloning, SecondRun_PublishesWithoutAFlag) {
    expectWrites(siteWrites(radio, "2.4"), "uplink");
    device().forget();
    EXPECT_EQ(1, Apply_ZepXmlToDevice());
    EXPECT_EQ(publication(radio, "2.4"), device().events);
    EXPECT_EQ("", raisedFlags());
}

TEST_F(SiteCloning, OneDifferingNode_RestartsTheUplink) {
    device().tree["/uplink/extendersite/connrefsitebssid"] = "02:ff:ff:ff:ff:ff";
    EXPECT_EQ(1, Apply_ZepXmlToDevice());
    const auto applied = device().tree;
    for (const char* leaf : {"failoverbssid", "wirelesstype", "wirelessname", "encryptionkey"}) {
        SCOPED_TRACE(leaf);
        device().forget();
        device().tree = applied;
        device().tree[std::string("/uplink/extendersite/") + leaf] = "other";
        EXPECT_EQ(1, Apply_ZepXmlToDevice());
        EXPECT_EQ("uplink save", raisedFlags());
    }
}

TEST_F(SiteCloning, OtherSite_BecomesTheFailOver) {
    device().tree["/uplink/extendersite/connrefsitebssid"] = "02:ff:ff:ff:ff:ff";
    Events writes = siteWrites(radio, "2.4");
    writes.insert(writes.begin(), "set /uplink/extendersite/failoverbssid=00:11:22:33:44:02");
    expectWrites(writes, "uplink");
    EXPECT_EQ("02:ff:ff:ff:ff:ff", device().node("/uplink/extendersite/connrefsitebssid"));
}

TEST_F(SiteCloning, CaseOfTheConnectedSite_DoesNotMatter) {
    setText(radio.WirelessBSSID, "02:aa:bb:cc:dd:ee");
    device().tree["/uplink/extendersite/connrefsitebssid"] = "02:AA:BB:CC:DD:EE";
    expectWrites(siteWrites(radio, "2.4"), "uplink");
    EXPECT_FALSE(device().has("/uplink/extendersite/failoverbssid"));
}

TEST_F(SiteCloning, EqualFailOver_IsNotWritten) {
    device().tree["/uplink/extendersite/connrefsitebssid"] = "";
    device().tree["/uplink/extendersite/failoverbssid"] = "00:11:22:33:44:02";
    expectWrites(siteWrites(radio, "2.4"), "uplink");
}

TEST_F(SiteCloning, LongConnectedSite_IsAnotherSite) {
    device().tree["/uplink/extendersite/connrefsitebssid"] = std::string(1023, '0');
    EXPECT_EQ(1, Apply_ZepXmlToDevice());
    EXPECT_TRUE(device().wrote("/uplink/extendersite/failoverbssid"));
}

TEST_F(SiteCloning, BothRadios_LeaveTheSecondOne) {
    zepXmlData.wlan5Feature = 1;
    Events writes = siteWrites(radio, "2.4");
    const ZepWireless& second = recordRadio(kBand5);
    writes.push_back("set /uplink/extendersite/failoverbssid=00:11:22:33:44:05");
    for (const std::string& write : siteWrites(second, "5"))
        writes.push_back(write);
    expectWrites(writes, "uplink");
    EXPECT_EQ(kBand5, recordUpLink().extenderSite.wirelessTypeIdx);
}

TEST_F(SiteCloning, FixedAccessControl_DoesNotStopIt) {
    device().tree["/lan/wireless2.4:1/accesscontrol/wlacenbl"] = "2";
    expectWrites(siteWrites(radio, "2.4"), "uplink");
}

TEST_F(SiteCloning, StoppedRadio_IsNotTakenOver) {
    device().tree["/lan/wireless2.4:1/wlenbl"] = "3";
    expectNothing();
}

TEST_F(SiteCloning, Version10_TakesTheSiteOverToo) {
    useVersion10();
    device().tree["/lan/wireless2.4:1/encryptiontype"] = "AUTO";
    expectWrites(siteWrites(radio, "2.4"), "uplink");
    EXPECT_EQ("AES", device().node("/runtime/apcloninginfo/extendersite/encryptiontype"));
}

TEST_F(SiteCloning, OtherHardware_TakesNothingOver) {
    for (const HardwareKind kind : {kEthernet, kAdsl, kVdsl, kWwanApn, kDsl}) {
        setHardware(kind);
        expectNothing();
    }
}

TEST_F(SiteCloning, OutsideCloning_TakesNothingOver) {
    zepXmlData.apCloningOnly = 0;
    device().tree["/uplink/hardwaretype"] = "WWan802.11";
    setText(recordUpLink().extenderSite.ConnRefSiteBSSID, "00:11:22:33:44:02");
    expectNothing();
}

} // namespace
} // namespace pendra::test
