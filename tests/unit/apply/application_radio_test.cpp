// The radios outside cloning runs: switches, network and access control.
#include "record.h"

namespace pendra::test {
namespace {

class RadioApplication : public ApplicationTest {};

const SwitchCase kEnables[] = {
    {"0", 0, kSame}, {"0", 1, kWritten},     {"0", 2, kRefused},     {"0", 3, kRefused},     {"1", 0, kWritten},
    {"1", 1, kSame}, {"1", 2, kRefused},     {"1", 3, kRefused},     {"2", 0, kRefused},     {"2", 1, kRefused},
    {"2", 2, kSame}, {"2", 3, kRefused},     {"3", 0, kRefused},     {"3", 1, kRefused},     {"3", 2, kRefused},
    {"3", 3, kSame}, {nullptr, 0, kWritten}, {nullptr, 1, kWritten}, {nullptr, 2, kRefused},
};

TEST_F(RadioApplication, Enable_ChangesOnlyWhereTheDeviceLeavesItOpen) {
    expectSwitch(kEnables, recordRadio(kBand5).WlEnbl, "/lan/wireless5:1/wlenbl", "Device/Wireless5/WlEnbl", "wlan5");
}

// A stored 3 does not fix a schedule.
const SwitchCase kSchedules[] = {
    {"0", 0, kSame},    {"0", 1, kWritten}, {"0", 2, kRefused},     {"1", 0, kWritten},     {"1", 1, kSame},
    {"1", 2, kRefused}, {"2", 0, kRefused}, {"2", 1, kRefused},     {"2", 2, kSame},        {"3", 0, kWritten},
    {"3", 1, kWritten}, {"3", 2, kRefused}, {nullptr, 0, kWritten}, {nullptr, 1, kWritten}, {nullptr, 2, kRefused},
};

TEST_F(RadioApplication, Schedule_ChangesOnlyWhereTheDeviceLeavesItOpen) {
    expectSwitch(kSchedules, recordRadio(kBand5).WlSchedule, "/lan/wireless5:1/wlschedule",
                 "Device/Wireless5/WlSchedule", "wlan5");
}

TEST_F(RadioApplication, RefusedEnable_EndsTheRun) {
    device().tree["/lan/wireless2.4:1/wlenbl"] = "3";
    setText(recordDevice().DeviceName, "New");
    setText(recordRadio(kBand24).WirelessName, "New");
    setText(recordRadio(kBand5).WirelessName, "New");
    recordDevice().safetyWdn.SafetyWdnEnbl = 1;
    expectRefusal("Device/Wireless2.4/WlEnbl", {"set /sys/friendlyname=New"});
    EXPECT_EQ("device", raisedFlags());
}

TEST_F(RadioApplication, RefusedSchedule_KeepsTheEnableThatWasWritten) {
    daemon_log_level = 6;
    device().tree["/lan/wireless2.4:1/wlschedule"] = "2";
    recordRadio(kBand24).WlEnbl = 0;
    setText(recordRadio(kBand24).WirelessName, "New");
    setText(recordRadio(kBand5).WirelessName, "New");
    expectRefusal("Device/Wireless2.4/WlSchedule", {"set /lan/wireless2.4:1/wlenbl=0"});
    EXPECT_EQ("wlan2.4", raisedFlags());
    EXPECT_EQ("1000: Zep SetResult=3, SetMsg='Device/Wireless2.4/WlSchedule', GetWaitSec=0\n", logText());
}

TEST_F(RadioApplication, SecondRadiosRefusal_KeepsTheFirstRadio) {
    device().tree["/lan/wireless5:1/wlenbl"] = "2";
    setText(recordRadio(kBand24).WirelessName, "New");
    expectRefusal("Device/Wireless5/WlEnbl", {"set /lan/wireless2.4:1/wirelessname=New"});
}

TEST_F(RadioApplication, Values_AreWrittenInOrder) {
    for (const int band : {kBand24, kBand5}) {
        ZepWireless& radio = recordRadio(band);
        const std::string base = band == kBand24 ? "set /lan/wireless2.4:1/" : "set /lan/wireless5:1/";
        SCOPED_TRACE(base);
        radio.WlEnbl = 0;
        radio.WlSchedule = 1;
        setText(radio.WirelessName, "New");
        setMode(radio, kWep);
        setType(radio, kShared);
        setText(radio.EncryptionKey, "abcde");
        setText(radio.Channel, "44");
        setText(radio.WirelessBSSID, "02:02:02:02:02:02");
        expectWrites({base + "wlenbl=0", base + "wlschedule=1", base + "wirelessname=New", base + "encryptionmode=WEP",
                      base + "encryptiontype=SHARED", base + "encryptionkey=abcde", base + "channel=44"},
                     band == kBand24 ? "wlan2.4" : "wlan5");
        expectNothing();
    }
}

TEST_F(RadioApplication, EmptyType_ReplacesAStoredOne) {
    setMode(recordRadio(kBand24), kNone);
    setType(recordRadio(kBand24), kNoType);
    expectWrites({"set /lan/wireless2.4:1/encryptionmode=None", "set /lan/wireless2.4:1/encryptiontype="}, "wlan2.4");
}

TEST_F(RadioApplication, BothRadios_AreWrittenWithBand24First) {
    setText(recordRadio(kBand24).Channel, "6");
    setText(recordRadio(kBand5).Channel, "36");
    expectWrites({"set /lan/wireless2.4:1/channel=6", "set /lan/wireless5:1/channel=36"}, "wlan2.4 wlan5");
}

TEST_F(RadioApplication, AbsentOrClosedRadio_IsSkipped) {
    setText(recordRadio(kBand24).WirelessName, "New");
    setText(recordRadio(kBand5).WirelessName, "New");
    device().tree["/lan/wireless2.4:1/wlenbl"] = "2";
    zepXmlData.wlan24Feature = 0;
    recordRadio(kBand5).Configurable = 0;
    expectNothing();
    recordRadio(kBand5).Configurable = 1;
    expectWrites({"set /lan/wireless5:1/wirelessname=New"}, "wlan5");
}

TEST_F(RadioApplication, Version10_WritesAutoForAnyType) {
    useVersion10();
    for (const TypeKind type : {kAuto, kOpen, kTkip, kAes, kNoType}) {
        SCOPED_TRACE(type);
        device().tree["/lan/wireless2.4:1/encryptiontype"] = "AES";
        device().tree["/lan/wireless5:1/encryptiontype"] = "AUTO";
        setType(recordRadio(kBand24), type);
        expectWrites({"set /lan/wireless2.4:1/encryptiontype=AUTO"}, "wlan2.4");
        expectNothing();
    }
}

TEST_F(RadioApplication, Version10_LeavesChannelAndAccessControlAlone) {
    useVersion10();
    device().tree["/lan/wireless2.4:1/encryptiontype"] = "AUTO";
    device().tree["/lan/wireless5:1/encryptiontype"] = "AUTO";
    ZepWireless& radio = recordRadio(kBand24);
    setText(radio.Channel, "11");
    radio.accessControl.WlAcEnbl = 1;
    fillRules(radio.accessControl, 2);
    device().tree["/lan/wireless2.4:1/accesscontrol/acrule:1/mac"] = "m";
    expectNothing();
}

// ---- access control ----

class AccessApplication : public RadioApplication {
  protected:
    // Access control on, both in the record and on the device.
    void switchOn() {
        access.WlAcEnbl = 1;
        device().tree[base + "wlacenbl"] = "1";
    }
    void storeRules(int count) {
        for (int number = 1; number <= count; number++) {
            device().tree[base + "acrule:" + std::to_string(number) + "/active"] = "0";
            device().tree[base + "acrule:" + std::to_string(number) + "/mac"] = "old";
        }
    }
    Events ruleWrites(int count) const {
        Events writes = {"set " + base + "wlacmode=0"};
        for (int index = 0; index < count; index++) {
            const std::string rule = "set " + base + "acrule:" + std::to_string(index + 1);
            writes.push_back(rule + "/active=1");
            writes.push_back(rule + "/mac=" + access.acRule[index].MAC);
        }
        return writes;
    }
    // Only the mode, which is written on every run with access control on.
    void expectModeOnly() {
        device().forget();
        EXPECT_EQ(1, Apply_ZepXmlToDevice());
        EXPECT_EQ(ruleWrites(0), device().events);
        EXPECT_EQ("", raisedFlags());
    }

    const std::string base = "/lan/wireless5:1/accesscontrol/";
    ZepAccessControl& access = recordRadio(kBand5).accessControl;
};

// An absent switch counts as 2, which fixes it; a switch has no maximum.
const SwitchCase kAccessSwitches[] = {
    {"0", 0, kSame},    {"0", 2, kWritten},  {"0", 3, kWritten},     {"1", 0, kWritten},     {"1", 2, kWritten},
    {"2", 0, kRefused}, {"2", 2, kSame},     {"3", 0, kWritten},     {"3", 2, kWritten},     {"3", 3, kSame},
    {"2", 1, kRefused}, {"-1", 0, kRefused}, {nullptr, 0, kRefused}, {nullptr, 1, kRefused}, {nullptr, 2, kSame},
};

TEST_F(AccessApplication, Switch_IsRefusedOverAStoredTwoOnly) {
    expectSwitch(kAccessSwitches, access.WlAcEnbl, base + "wlacenbl", "Device/Wireless5/AccessControl/WlAcEnbl",
                 "wlan5");
}

TEST_F(AccessApplication, SwitchedOn_WritesSwitchModeAndRules) {
    access.WlAcEnbl = 1;
    fillRules(access, 1);
    expectWrites({"set " + base + "wlacenbl=1", "set " + base + "wlacmode=0", "set " + base + "acrule:1/active=1",
                  "set " + base + "acrule:1/mac=02:00:00:00:00:01"},
                 "wlan5");
}

TEST_F(AccessApplication, Channel_IsWrittenBeforeARefusal) {
    device().tree[base + "wlacenbl"] = "2";
    setText(recordRadio(kBand5).Channel, "36");
    recordDevice().safetyWdn.SafetyWdnEnbl = 1;
    expectRefusal("Device/Wireless5/AccessControl/WlAcEnbl", {"set /lan/wireless5:1/channel=36"});
    EXPECT_EQ("wlan5", raisedFlags());
}

TEST_F(AccessApplication, FirstRadiosRefusal_LeavesTheSecondRadioAlone) {
    device().tree["/lan/wireless2.4:1/accesscontrol/wlacenbl"] = "2";
    setText(recordRadio(kBand5).WirelessName, "New");
    expectRefusal("Device/Wireless2.4/AccessControl/WlAcEnbl");
}

TEST_F(AccessApplication, EqualMode_IsWrittenWithoutAFlag) {
    switchOn();
    expectModeOnly();
    expectModeOnly();
    EXPECT_EQ("1", device().node("/sys/factorydefault"));
}

TEST_F(AccessApplication, AbsentMode_CountsAsZero) {
    switchOn();
    device().tree.erase(base + "wlacmode");
    expectModeOnly();
    device().tree[base + "wlacmode"] = "-3";
    expectModeOnly();
}

TEST_F(AccessApplication, OtherMode_RaisesTheRadio) {
    switchOn();
    access.WlAcMode = 1;
    expectWrites({"set " + base + "wlacmode=1"}, "wlan5");
}

TEST_F(AccessApplication, Off_WritesNeitherModeNorRules) {
    access.WlAcMode = 1;
    fillRules(access, 2);
    storeRules(3);
    expectNothing();
}

TEST_F(AccessApplication, Rules_AreComparedOneByOne) {
    switchOn();
    fillRules(access, 3);
    expectWrites(ruleWrites(3), "wlan5");
    setText(access.acRule[1].MAC, "02:00:00:00:00:99");
    access.acRule[2].Active = 0;
    expectWrites({"set " + base + "wlacmode=0", "set " + base + "acrule:2/mac=02:00:00:00:00:99",
                  "set " + base + "acrule:3/active=0"},
                 "wlan5");
    expectModeOnly();
}

TEST_F(AccessApplication, SurplusRules_AreDeletedFromTheHighestDown) {
    switchOn();
    fillRules(access, 2);
    storeRules(5);
    Events writes = ruleWrites(2);
    for (const char* rule : {"acrule:5", "acrule:4", "acrule:3"})
        writes.push_back("del " + base + rule);
    expectWrites(writes, "wlan5");
    EXPECT_FALSE(device().has(base + "acrule:3/mac"));
    EXPECT_EQ("02:00:00:00:00:02", device().node(base + "acrule:2/mac"));
    EXPECT_FALSE(device().wrote(base + "acrule#"));
    expectModeOnly();
}

TEST_F(AccessApplication, EqualNumberOfRules_DeletesNothing) {
    switchOn();
    fillRules(access, 2);
    storeRules(2);
    expectWrites(ruleWrites(2), "wlan5");
}

TEST_F(AccessApplication, NoRules_DeleteTheStoredOnes) {
    switchOn();
    storeRules(2);
    expectWrites({"set " + base + "wlacmode=0", "del " + base + "acrule:2", "del " + base + "acrule:1"}, "wlan5");
}

// The count of a record that was filled from the tree: every stored rule goes.
TEST_F(AccessApplication, CountThatCouldNotBeRead_DeletesEveryStoredRule) {
    switchOn();
    access.acRuleCount = -1;
    storeRules(2);
    expectWrites({"set " + base + "wlacmode=0", "del " + base + "acrule:2", "del " + base + "acrule:1",
                  "del " + base + "acrule:0"},
                 "wlan5");
    expectModeOnly();
}

TEST_F(AccessApplication, CountAbove40_NeverReachesPastTheRules) {
    switchOn();
    fillRules(access, 40);
    for (const int32_t count : {41, INT32_MAX}) {
        for (int number = 1; number <= 40; number++)
            device().tree.erase(base + "acrule:" + std::to_string(number) + "/active");
        access.acRuleCount = count;
        device().forget();
        EXPECT_EQ(1, Apply_ZepXmlToDevice());
        EXPECT_TRUE(device().wrote(base + "acrule:40/active"));
        EXPECT_FALSE(device().wrote(base + "acrule:41/active"));
        EXPECT_FALSE(device().wrote(base + "acrule:41/mac"));
    }
}

TEST_F(AccessApplication, FortyRules_AreAllWritten) {
    switchOn();
    fillRules(access, 40);
    expectWrites(ruleWrites(40), "wlan5");
    expectModeOnly();
}

} // namespace
} // namespace pendra::test
