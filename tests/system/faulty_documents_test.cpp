/**
 * @file
 * Documents that a device does not apply: another version, something missing, a value that is not valid, a value that
 * the device refuses.
 */
#include "running_device.h"

namespace pendra::test {
namespace {

class FaultyDocument : public RunningDevice {
  protected:
    FaultyDocument() { start({.logLevel = 4}); }

    /** Expects a result, a tree as it was, and no script. */
    void expectRejected(const std::string& document, int code, const std::string& message) const {
        SCOPED_TRACE(message);
        const std::string before = files.dump();
        expectResult(setUp(document), code, message, 0);
        awaitScripts();
        EXPECT_EQ(files.changesSince(before), "");
        EXPECT_EQ(files.journal(), "");
    }
};

TEST_F(FaultyDocument, OtherVersion_IsResult1) {
    expectRejected(example("faulty-version.xml"), 1, "");
    EXPECT_NE(readFile(files.logFile()).find("Wrong Spec Version! Device=1.1, XML=2.1\n"), std::string::npos);
    expectRejected(withElement(example("setup.xml"), "specVersion/minor", "0"), 1, "");
}

TEST_F(FaultyDocument, SameCombinedVersion_IsApplied) {
    const std::string document = withElement(nameDocument("Attic"), "specVersion/major", "0");
    expectResult(setUp(withElement(document, "specVersion/minor", "101")), 0, "", 5);
}

TEST_F(FaultyDocument, NoRoot_IsRefusedAndTheOldResultStays) {
    expectRejected(example("faulty-name.xml"), 10, "Device/DeviceName");
    const DeviceFiles::Snapshot before = files.snapshot();
    EXPECT_EQ(setUp(withoutElement(example("setup.xml"), "root")).status, 400);
    EXPECT_EQ(setUp("no document at all").status, 400);
    EXPECT_EQ(files.changedFiles(before), std::vector<std::string>{});
    EXPECT_EQ(get("/zep/result").body, resultDocument(10, "Device/DeviceName", 0));
}

struct Row {
    const char* element;
    const char* message;
};

// A block that is missing is named alone, a leaf with its ancestors.
const std::vector<Row> kMissing = {
    {"specVersion", "specVersion"},
    {"specVersion/major", "specVersion/major"},
    {"specVersion/minor", "specVersion/minor"},
    {"Device", "Device"},
    {"DeviceName", "Device/DeviceName"},
    {"DevicePwd", "Device/DevicePwd"},
    {"RouterEnbl", "Device/RouterEnbl"},
    {"UpLinkConnection", "UpLinkConnection"},
    {"UpLinkConnection/HardwareType", "Device/UpLinkConnection/HardwareType"},
    {"UpLinkConnection/ConnType", "Device/UpLinkConnection/ConnType"},
    {"UpLinkConnection/LoginUserName", "Device/UpLinkConnection/LoginUserName"},
    {"UpLinkConnection/LoginPassword", "Device/UpLinkConnection/LoginPassword"},
    {"UpLinkConnection/DSL", "DSL"},
    {"DSL/CountryName", "Device/UpLinkConnection/DSL/CountryName"},
    {"DSL/IspName", "Device/UpLinkConnection/DSL/IspName"},
    {"EasyRoaming", "Device/EasyRoaming"},
    {"Wireless2.4", "Wireless2.4"},
    {"Wireless2.4/WlEnbl", "Device/Wireless2.4/WlEnbl"},
    {"Wireless2.4/WlSchedule", "Device/Wireless2.4/WlSchedule"},
    {"Wireless2.4/WirelessBSSID", "Device/Wireless2.4/WirelessBSSID"},
    {"Wireless2.4/WirelessName", "Device/Wireless2.4/WirelessName"},
    {"Wireless2.4/EncryptionMode", "Device/Wireless2.4/EncryptionMode"},
    {"Wireless2.4/EncryptionKey", "Device/Wireless2.4/EncryptionKey"},
    {"Wireless2.4/EncryptionType", "Device/Wireless2.4/EncryptionType"},
    {"Wireless2.4/Channel", "Device/Wireless2.4/Channel"},
    {"Wireless2.4/AccessControl", "AccessControl"},
    {"Wireless2.4/AccessControl/WlAcEnbl", "Device/Wireless2.4/AccessControl/WlAcEnbl"},
    {"Wireless2.4/AccessControl/WlAcMode", "Device/Wireless2.4/AccessControl/WlAcMode"},
    {"Wireless2.4/AcRule/Active", "Device/Wireless2.4/AccessControl/AcRule/Active"},
    {"Wireless2.4/AcRule/MAC", "Device/Wireless2.4/AccessControl/AcRule/MAC"},
    {"Wireless5", "Wireless5"},
    {"Wireless5/Channel", "Device/Wireless5/Channel"},
    {"SafetyWdn", "SafetyWdn"},
    {"SafetyWdn/SafetyWdnEnbl", "Device/SafetyWdn/SafetyWdnEnbl"},
    {"SafetyWdn/UrlDetectEnbl", "Device/SafetyWdn/UrlDetectEnbl"},
    {"SafetyWdn/SafetyNotifyEnbl", "Device/SafetyWdn/SafetyNotifyEnbl"},
    {"SafetyWdn/ToolRecommendEnbl", "Device/SafetyWdn/ToolRecommendEnbl"},
};

TEST_F(FaultyDocument, MissingElement_IsResult2WithItsPath) {
    for (const Row& row : kMissing) {
        expectRejected(withoutElement(example("setup.xml"), row.element), 2, row.message);
    }
    expectRejected(example("faulty-missing-element.xml"), 2, "Device/UpLinkConnection/LoginPassword");
}

TEST_F(FaultyDocument, MissingElementOfAnotherUplink_IsResult2WithItsPath) {
    const std::string uplink = "Device/UpLinkConnection/";
    const std::string isStatic = withElement(example("setup.xml"), "ConnType", "Static");
    expectRejected(isStatic, 2, uplink + "IP");
    const std::string isApn = withElement(example("setup.xml"), "HardwareType", "WWanAPN");
    expectRejected(isApn, 2, "APN");
    for (const char* leaf : {"Survey", "WirelessType"}) {
        expectRejected(withoutElement(example("survey.xml"), std::string("ExtenderSite/") + leaf), 2,
                       uplink + "ExtenderSite/" + leaf);
    }
    expectRejected(withoutElement(example("survey.xml"), "ExtenderSite"), 2, "ExtenderSite");
}

struct ValueRow {
    const char* element;
    const char* value;
    const char* message;
};

const std::vector<ValueRow> kInvalid = {
    {"HardwareType", "LTE", "Device/UpLinkConnection/HardwareType"},
    {"ConnType", "L2TP", "Device/UpLinkConnection/ConnType"},
    {"DSL/CountryName", " ", "Device/UpLinkConnection/DSL/CountryName"},
    {"DSL/IspName", " ", "Device/UpLinkConnection/DSL/IspName"},
    {"Wireless2.4/WlEnbl", "4", "Device/Wireless2.4/WlEnbl"},
    {"Wireless2.4/WlSchedule", "3", "Device/Wireless2.4/WlSchedule"},
    {"Wireless2.4/WirelessBSSID", " ", "Device/Wireless2.4/WirelessBSSID"},
    {"Wireless2.4/EncryptionMode", "WPA3", "Device/Wireless2.4/EncryptionMode"},
    {"Wireless2.4/EncryptionType", "OPEN", "Device/Wireless2.4/EncryptionType"}, // not with WPA2
    {"Wireless2.4/EncryptionKey", "seven77", "Device/Wireless2.4/EncryptionKey"},
    {"Wireless2.4/Channel", "36", "Device/Wireless2.4/Channel"},
    {"Wireless2.4/AccessControl/WlAcEnbl", "3",
     "Device/Wireless2.4/AccessControl/WlEnbl"}, // names the radio's, so meant
    {"Wireless2.4/AccessControl/WlAcMode", "2", "Device/Wireless2.4/AccessControl/WlAcMode"},
    {"Wireless2.4/AcRule/Active", "2", "Device/Wireless2.4/AccessControl/AcRule/Active"},
    {"Wireless2.4/AcRule/MAC", " ", "Device/Wireless2.4/AccessControl/AcRule/MAC"},
    {"SafetyWdn/SafetyWdnEnbl", "2", "Device/SafetyWdn/SafetyWdnEnbl"},
    {"SafetyWdn/ToolRecommendEnbl", "-1", "Device/SafetyWdn/ToolRecommendEnbl"},
};

TEST_F(FaultyDocument, InvalidValue_IsResult3WithItsPath) {
    for (const ValueRow& row : kInvalid) {
        expectRejected(withElement(example("setup.xml"), row.element, row.value), 3, row.message);
    }
    expectRejected(example("faulty-channel.xml"), 3, "Device/Wireless5/Channel");
}

TEST_F(FaultyDocument, KindOfUplinkThatTheDeviceLacks_IsResult3) {
    files.set("/uplink/hardwaresupport", "Ethernet,WWanAPN");
    expectRejected(example("setup.xml"), 3, "Device/UpLinkConnection/HardwareType");
}

TEST_F(FaultyDocument, WrongLength_IsResult10) {
    expectRejected(example("faulty-name.xml"), 10, "Device/DeviceName");
    expectRejected(withElement(example("setup.xml"), "DevicePwd", "four"), 10, "Device/DevicePwd");
    expectRejected(withElement(example("setup.xml"), "LoginUserName", " "), 10,
                   "Device/UpLinkConnection/LoginUserName");
}

TEST_F(FaultyDocument, ForbiddenCharacter_IsResult11) {
    expectRejected(withElement(example("setup.xml"), "DeviceName", "Living &lt;Room"), 11, "Device/DeviceName");
    expectRejected(withElement(example("setup.xml"), "DeviceName", "Caf\xc3\xa9"), 11, "Device/DeviceName");
    expectRejected(withElement(example("setup.xml"), "Wireless2.4/WirelessName", "a\tb"), 11,
                   "Device/Wireless2.4/WirelessName");
}

TEST_F(FaultyDocument, NumberRuleOfTheTree_IsResult20Or21) {
    files.set("/sys/friendlyname_validate", "1,13,1");
    expectRejected(nameDocument("14"), 20, "Device/DeviceName");
    expectRejected(nameDocument("0"), 21, "Device/DeviceName");
    expectResult(setUp(nameDocument("13")), 0, "", 5);
}

TEST_F(FaultyDocument, FirstFault_IsTheOneReported) {
    const std::string two = withElement(example("faulty-channel.xml"), "Wireless2.4/EncryptionKey", "seven77");
    expectRejected(two, 3, "Device/Wireless2.4/EncryptionKey");
}

struct Refusal {
    const char* node;
    const char* stored;
    const char* element;
    const char* value;
    const char* message;
};

const std::vector<Refusal> kRefused = {
    {"/sys/routerenbl", "2", "RouterEnbl", "1", "Device/RouterEnbl"},
    {"/sys/routerenbl", "3", "RouterEnbl", "0", "Device/RouterEnbl"},
    {"/sys/routerenbl", "1", "RouterEnbl", "2", "Device/RouterEnbl"},
    {"/lan/wireless2.4:1/wlenbl", "3", "Wireless2.4/WlEnbl", "1", "Device/Wireless2.4/WlEnbl"},
    {"/lan/wireless2.4:1/wlenbl", "1", "Wireless2.4/WlEnbl", "2", "Device/Wireless2.4/WlEnbl"},
    {"/lan/wireless2.4:1/wlschedule", "2", "Wireless2.4/WlSchedule", "0", "Device/Wireless2.4/WlSchedule"},
    {"/lan/wireless2.4:1/wlschedule", "1", "Wireless2.4/WlSchedule", "2", "Device/Wireless2.4/WlSchedule"},
    {"/lan/wireless2.4:1/accesscontrol/wlacenbl", "2", "Wireless2.4/AccessControl/WlAcEnbl", "1",
     "Device/Wireless2.4/AccessControl/WlAcEnbl"},
};

class RefusedValue : public RunningDevice, public testing::WithParamInterface<Refusal> {};

TEST_P(RefusedValue, Applied_EndsTheRunAndKeepsWhatWasWritten) {
    const Refusal& row = GetParam();
    files.set(row.node, row.stored);
    start();
    const std::string before = files.dump();
    expectResult(setUp(withElement(example("setup.xml"), row.element, row.value)), 3, row.message, 0);
    awaitScripts();
    EXPECT_EQ(files.get(row.node), row.stored);
    // The device's name comes before every refusal, the other radio and the web safety behind it. Nothing is taken
    // back.
    EXPECT_EQ(files.get("/sys/friendlyname"), "Living Room");
    const std::string changes = files.changesSince(before);
    EXPECT_EQ(changes.find("/lan/wireless5:1"), std::string::npos) << changes;
    EXPECT_EQ(changes.find("/safetywdn"), std::string::npos) << changes;
    EXPECT_EQ(files.get("/sys/factorydefault"), "1");
    EXPECT_EQ(files.journal(), "");
}

/** "WlEnblFrom3To1" */
std::string nameOfRow(const testing::TestParamInfo<Refusal>& row) {
    const std::string element = row.param.element;
    return element.substr(element.rfind('/') + 1) + "From" + row.param.stored + "To" + row.param.value;
}

INSTANTIATE_TEST_SUITE_P(Nodes, RefusedValue, testing::ValuesIn(kRefused), nameOfRow);

} // namespace
} // namespace pendra::test
