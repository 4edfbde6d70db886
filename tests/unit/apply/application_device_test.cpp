// The frame of an application, the device section, easy roaming and safety.
#include "record.h"

namespace pendra::test {
namespace {

class DeviceApplication : public ApplicationTest {
  protected:
    void raiseAllFlags() {
        recordDevice().deviceChanged = 1;
        recordUpLink().restart = 1;
        recordRadio(kBand24).restart = 1;
        recordRadio(kBand5).restart = 1;
        recordDevice().safetyWdn.restart = 1;
        recordDevice().wlanSurveyRestart = 1;
        recordDevice().roamingRestart = 1;
        zepXmlData.saveflag = 1;
    }
};

TEST_F(DeviceApplication, NothingNew_WritesNothing) {
    expectNothing();
    EXPECT_EQ("", logText());
    EXPECT_EQ("1", device().node("/sys/factorydefault"));
}

TEST_F(DeviceApplication, FlagsOfAnEarlierRun_AreCleared) {
    raiseAllFlags();
    expectNothing();
}

TEST_F(DeviceApplication, ClosedDevice_ClearsTheFlagsAndAppliesNothing) {
    for (const int8_t cloning : {int8_t{0}, int8_t{1}}) {
        raiseAllFlags();
        zepXmlData.apCloningOnly = cloning;
        recordDevice().Configurable = 0;
        recordUpLink().extenderSite.Survey = 1;
        setHardware(kWwan80211);
        setText(recordDevice().DeviceName, "New");
        setText(recordRadio(kBand24).WirelessName, "New");
        recordDevice().safetyWdn.SafetyWdnEnbl = 1;
        expectNothing();
    }
}

TEST_F(DeviceApplication, SecondApplication_WritesNothing) {
    setText(recordDevice().DeviceName, "New");
    setText(recordRadio(kBand5).Channel, "36");
    expectWrites({"set /sys/friendlyname=New", "set /lan/wireless5:1/channel=36"}, "device wlan5");
    device().tree["/sys/factorydefault"] = "1";
    expectNothing();
    EXPECT_EQ("1", device().node("/sys/factorydefault"));
}

TEST_F(DeviceApplication, FactoryDefault_IsWrittenOnEveryChange) {
    device().tree["/sys/factorydefault"] = "0";
    setText(recordDevice().DevicePwd, "other");
    expectWrites({"set /sys/user:1/password=other"}, "device");
}

// ---- log ----

TEST_F(DeviceApplication, Trace_ShowsEntryAtLevel7) {
    daemon_log_level = 7;
    expectNothing();
    EXPECT_EQ(
        "1000: 1000:Apply_ZepXmlToDevice]\n"
        "1000: done,ret=1,Restart:wlan2.4=0,wlan5=0,uplink=0,survey=0,roaming=0\n",
        logText());
}

TEST_F(DeviceApplication, End_IsLoggedAtLevel6) {
    daemon_log_level = 6;
    setText(recordRadio(kBand24).WirelessName, "New");
    EXPECT_EQ(1, Apply_ZepXmlToDevice());
    EXPECT_EQ("1000: done,ret=1,Restart:wlan2.4=1,wlan5=0,uplink=0,survey=0,roaming=0\n", logText());
}

TEST_F(DeviceApplication, End_ShowsEachRadioAndTheUplink) {
    daemon_log_level = 6;
    setText(recordRadio(kBand5).WirelessName, "New");
    setConnection(kPppoe);
    EXPECT_EQ(1, Apply_ZepXmlToDevice());
    EXPECT_EQ("1000: done,ret=1,Restart:wlan2.4=0,wlan5=1,uplink=1,survey=0,roaming=0\n", logText());
}

TEST_F(DeviceApplication, ClosedDevice_HasNoEndLine) {
    daemon_log_level = 7;
    recordDevice().Configurable = 0;
    expectNothing();
    EXPECT_EQ("1000: 1000:Apply_ZepXmlToDevice]\n", logText());
}

TEST_F(DeviceApplication, Level5_HasNoLine) {
    setText(recordDevice().DeviceName, "New");
    EXPECT_EQ(1, Apply_ZepXmlToDevice());
    EXPECT_EQ("", logText());
}

// ---- device ----

TEST_F(DeviceApplication, NameAndPassword_RaiseDevice) {
    setText(recordDevice().DeviceName, "New");
    setText(recordDevice().DevicePwd, "newer");
    expectWrites({"set /sys/friendlyname=New", "set /sys/user:1/password=newer"}, "device");
}

TEST_F(DeviceApplication, TextsThatFillTheirField_AreWrittenWhole) {
    const std::string name(127, 'n');
    setText(recordDevice().DeviceName, name);
    expectWrites({"set /sys/friendlyname=" + name}, "device");
    expectNothing();
}

const SwitchCase kRouterModes[] = {
    {"0", 0, kSame},        {"0", 1, kWritten},     {"0", 2, kRefused},     {"0", 3, kRefused},  {"1", 0, kWritten},
    {"1", 1, kSame},        {"1", 2, kRefused},     {"1", 3, kRefused},     {"2", 0, kRefused},  {"2", 1, kRefused},
    {"2", 2, kSame},        {"2", 3, kRefused},     {"3", 0, kRefused},     {"3", 1, kRefused},  {"3", 2, kRefused},
    {"3", 3, kSame},        {"4", 0, kWritten},     {"4", 1, kWritten},     {"4", 5, kRefused},  {"4", 4, kSame},
    {nullptr, 0, kWritten}, {nullptr, 1, kWritten}, {nullptr, 2, kRefused}, {"0", -2, kWritten},
};

TEST_F(DeviceApplication, RouterMode_ChangesOnlyWhereTheDeviceLeavesItOpen) {
    expectSwitch(kRouterModes, recordDevice().RouterEnbl, "/sys/routerenbl", "Device/RouterEnbl", "device");
}

TEST_F(DeviceApplication, RefusedRouterMode_KeepsWhatWasWrittenAndEndsTheRun) {
    daemon_log_level = 6;
    device().tree["/sys/routerenbl"] = "2";
    setText(recordDevice().DeviceName, "New");
    setConnection(kPppoe);
    setText(recordDevice().EasyRoaming, "other");
    setText(recordRadio(kBand24).WirelessName, "New");
    recordDevice().safetyWdn.SafetyWdnEnbl = 1;
    expectRefusal("Device/RouterEnbl", {"set /sys/friendlyname=New"});
    EXPECT_EQ("New", device().node("/sys/friendlyname"));
    EXPECT_EQ("device", raisedFlags());
    EXPECT_EQ("1000: Zep SetResult=3, SetMsg='Device/RouterEnbl', GetWaitSec=0\n", logText());
}

TEST_F(DeviceApplication, RefusalWithoutPath_IsReportedByTheTagAlone) {
    device().tree["/sys/routerenbl"] = "3";
    setText(recordDevice().path, "");
    expectRefusal("RouterEnbl");
}

// ---- easy roaming ----

TEST_F(DeviceApplication, EasyRoaming_RaisesDevice) {
    setText(recordDevice().EasyRoaming, "-60 1 5 2");
    expectWrites({"set /bramble/easyroaminginfo=-60 1 5 2"}, "device");
}

TEST_F(DeviceApplication, EasyRoamingWithoutTheFeature_IsNotWritten) {
    zepXmlData.easyRoamingFeature = 0;
    setText(recordDevice().EasyRoaming, "other");
    expectNothing();
}

TEST_F(DeviceApplication, EasyRoamingOfVersion10_IsNotWritten) {
    device().tree["/lan/wireless2.4:1/encryptiontype"] = "AUTO";
    device().tree["/lan/wireless5:1/encryptiontype"] = "AUTO";
    useVersion10();
    setText(recordDevice().EasyRoaming, "other");
    expectNothing();
}

TEST_F(DeviceApplication, Cloning_WritesEasyRoamingButNoDeviceValue) {
    zepXmlData.apCloningOnly = 1;
    setText(recordDevice().DeviceName, "New");
    setText(recordDevice().DevicePwd, "newer");
    recordDevice().RouterEnbl = 0;
    setConnection(kPppoe);
    setText(recordDevice().EasyRoaming, "other");
    expectWrites({"set /bramble/easyroaminginfo=other"}, "device");
}

// ---- safety ----

class SafetyApplication : public ApplicationTest {
  protected:
    ZepSafetyWdn& safety = recordDevice().safetyWdn;
};

TEST_F(SafetyApplication, EachSwitch_HasItsNode) {
    const struct {
        int32_t& value;
        const char* path;
    } rows[] = {{safety.SafetyWdnEnbl, "/safetywdn/safetywdnenbl"},
                {safety.UrlDetectEnbl, "/safetywdn/urldetectenbl"},
                {safety.SafetyNotifyEnbl, "/safetywdn/safetynotifyenbl"},
                {safety.ToolRecommendEnbl, "/safetywdn/toolrecommendenbl"}};
    for (const auto& row : rows) {
        row.value = 1;
        expectWrites({std::string("set ") + row.path + "=1"}, "safety");
        expectNothing();
    }
}

TEST_F(SafetyApplication, AllSwitches_AreWrittenInOrder) {
    safety.SafetyWdnEnbl = safety.UrlDetectEnbl = safety.SafetyNotifyEnbl = safety.ToolRecommendEnbl = 1;
    expectWrites({"set /safetywdn/safetywdnenbl=1", "set /safetywdn/urldetectenbl=1",
                  "set /safetywdn/safetynotifyenbl=1", "set /safetywdn/toolrecommendenbl=1"},
                 "safety");
}

TEST_F(SafetyApplication, AbsentSwitch_CountsAsZero) {
    device().tree.erase("/safetywdn/safetywdnenbl");
    expectNothing();
}

TEST_F(SafetyApplication, WithoutTheFeature_IsNotWritten) {
    zepXmlData.safetyWdnFeature = 0;
    safety.SafetyWdnEnbl = 1;
    expectNothing();
}

TEST_F(SafetyApplication, Cloning_DoesNotWriteIt) {
    zepXmlData.apCloningOnly = 1;
    safety.SafetyWdnEnbl = 1;
    expectNothing();
}

} // namespace
} // namespace pendra::test
