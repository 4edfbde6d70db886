// The order and the ends of the checks, their log lines, the device section and the safety section.
#include <functional>

#include "record.h"
#include "setupdoc/snapshot.h"

namespace pendra::test {
namespace {

class DeviceVerification : public VerificationTest {};

TEST_F(DeviceVerification, ValidRecord_IsAcceptedWithoutATrace) {
    expectAccepted();
    EXPECT_EQ("", logText());
}

TEST_F(DeviceVerification, Trace_ShowsEntryAndEndAtLevel7) {
    daemon_log_level = 7;
    expectAccepted();
    EXPECT_EQ("1000: 1000:Verify_ZepXml]\n1000: 1000:Verify_ZepXml]done, ret=1\n", logText());
}

TEST_F(DeviceVerification, Level6_HasNoTrace) {
    daemon_log_level = 6;
    expectAccepted();
    EXPECT_EQ("", logText());
}

TEST_F(DeviceVerification, Fault_HasAnEntryTraceAndNoEnd) {
    daemon_log_level = 7;
    recordRadio(kBand24).WlEnbl = 4;
    EXPECT_EQ(0, Verify_ZepXml());
    EXPECT_EQ(
        "1000: 1000:Verify_ZepXml]\n"
        "1000: Zep SetResult=3, SetMsg='Device/Wireless2.4/WlEnbl', GetWaitSec=0\n",
        logText());
}

TEST_F(DeviceVerification, EarlySuccess_HasAnEntryTraceAndNoEnd) {
    daemon_log_level = 7;
    recordDevice().Configurable = 0;
    expectAccepted();
    EXPECT_EQ("1000: 1000:Verify_ZepXml]\n", logText());
}

TEST_F(DeviceVerification, ClosedDevice_PassesAtOnceWithFaultyLaterSections) {
    recordDevice().Configurable = 0;
    setText(recordDevice().DeviceName, "");
    recordUpLink().hardwareTypeIdx = -1;
    recordRadio(kBand24).WlEnbl = 9;
    recordRadio(kBand5).encrypModeIdx = -1;
    recordDevice().safetyWdn.SafetyWdnEnbl = 7;
    expectAccepted();
}

TEST_F(DeviceVerification, ClosedDeviceWhenCloning_StillHasItsRadiosChecked) {
    zepXmlData.apCloningOnly = 1;
    recordDevice().Configurable = 0;
    recordRadio(kBand24).WlEnbl = 9;
    expectFault(3, "Device/Wireless2.4/WlEnbl");
}

TEST_F(DeviceVerification, Cloning_DoesNotLookAtDeviceUplinkAndSafety) {
    zepXmlData.apCloningOnly = 1;
    setText(recordDevice().DeviceName, "");
    setText(recordDevice().DevicePwd, "");
    recordUpLink().hardwareTypeIdx = -1;
    recordUpLink().connTypeIdx = -1;
    recordDevice().safetyWdn.SafetyWdnEnbl = 7;
    expectAccepted();
}

// Each code of the rules, for both fields of the section.
TEST_F(DeviceVerification, BrokenRule_IsReportedWithTheRulesCode) {
    const struct {
        const char* rule;
        const char* value;
        int code;
    } rows[] = {
        {"0,32,1", "", 10},           {"0,4,2", "a", 10},
        {"0,4,2", "abcde", 10},       {"0,32,1", "a\tb", 11},
        {"0,9,1", "\xC3\xA4", 11},    {"0,9,1,0,0,<,>", "a<", 11},
        {"0,9,1,0,1,a-z", "abC", 11}, {"1,100,1", "101", 20},
        {"1,100,1", "0", 21},         {"", "", 10},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.rule) + " / " + row.value);
        fillRecord();
        setText(recordDevice().DeviceNameRule, row.rule);
        setText(recordDevice().DeviceName, row.value);
        expectFault(row.code, "Device/DeviceName");
        fillRecord();
        setText(recordDevice().DevicePwdRule, row.rule);
        setText(recordDevice().DevicePwd, row.value);
        expectFault(row.code, "Device/DevicePwd");
    }
}

TEST_F(DeviceVerification, NameOfBlanks_IsEmptyOnceTrimmed) {
    setText(recordDevice().DeviceName, " \t ");
    EXPECT_EQ(0, Verify_ZepXml());
    EXPECT_EQ(resultDocument(10, "Device/DeviceName", 0), device().events);
}

TEST_F(DeviceVerification, Texts_AreTrimmedInPlace) {
    setText(recordDevice().DeviceName, "  My Router\t");
    setText(recordDevice().DevicePwd, " pass word ");
    expectAccepted();
    EXPECT_STREQ("My Router", recordDevice().DeviceName);
    EXPECT_STREQ("pass word", recordDevice().DevicePwd);
}

// 127 characters fill the field: all of them are checked.
TEST_F(DeviceVerification, FullNameField_IsMeasuredToItsLastCharacter) {
    setText(recordDevice().DeviceName, std::string(127, 'n'));
    setText(recordDevice().DeviceNameRule, "0,127,1");
    expectAccepted();
    setText(recordDevice().DeviceNameRule, "0,126,1");
    expectFault(10, "Device/DeviceName");
}

TEST_F(DeviceVerification, RuleOfAnUnknownType_AcceptsAnything) {
    setText(recordDevice().DeviceNameRule, "2,1,1");
    setText(recordDevice().DeviceName, "");
    expectAccepted();
}

TEST_F(DeviceVerification, EmptyRule_TakesTextsOfPrintableCharacters) {
    setText(recordDevice().DeviceNameRule, "");
    expectAccepted();
}

TEST_F(DeviceVerification, SectionWithoutPath_IsReportedByTheTagAlone) {
    setText(recordDevice().path, "");
    setText(recordDevice().DeviceName, "");
    expectFault(10, "DeviceName");
}

TEST_F(DeviceVerification, PathThatFillsTheMessage_IsCut) {
    setText(recordUpLink().path, std::string(127, 'p'));
    recordUpLink().connTypeIdx = -1;
    EXPECT_EQ(0, Verify_ZepXml());
    EXPECT_EQ(std::string(127, 'p'), zepXmlData.setMsg);
    ASSERT_EQ(6u, device().commands().size());
    EXPECT_EQ("echo ' <ZepSetMsg>" + std::string(127 - 18, 'p'), device().commands()[3]);
}

TEST_F(DeviceVerification, OneByteForTheTagLeft_CutsTheMessageBehindTheSlash) {
    setText(recordUpLink().path, std::string(125, 'p'));
    recordUpLink().connTypeIdx = -1;
    EXPECT_EQ(0, Verify_ZepXml());
    EXPECT_EQ(std::string(125, 'p') + "/C", zepXmlData.setMsg);
}

TEST_F(DeviceVerification, SeveralFaults_ReportTheFirstOnly) {
    const struct {
        const char* message;
        int code;
        std::function<void()> repair;
    } rows[] = {
        {"Device/DeviceName", 10, [] { setText(recordDevice().DeviceName, "Router"); }},
        {"Device/DevicePwd", 10, [] { setText(recordDevice().DevicePwd, "secret"); }},
        {"Device/UpLinkConnection/HardwareType", 3, [] { setHardware(kEthernet); }},
        {"Device/UpLinkConnection/ConnType", 3, [] { setConnection(kDhcp); }},
        {"Device/Wireless2.4/WlEnbl", 3, [] { recordRadio(kBand24).WlEnbl = 1; }},
        {"Device/Wireless5/WlSchedule", 3, [] { recordRadio(kBand5).WlSchedule = 0; }},
        {"Device/SafetyWdn/ToolRecommendEnbl", 3, [] { recordDevice().safetyWdn.ToolRecommendEnbl = 0; }},
    };
    setText(recordDevice().DeviceName, "");
    setText(recordDevice().DevicePwd, "");
    recordUpLink().hardwareTypeIdx = -1;
    recordUpLink().connTypeIdx = -1;
    recordRadio(kBand24).WlEnbl = -1;
    recordRadio(kBand5).WlSchedule = -1;
    recordDevice().safetyWdn.ToolRecommendEnbl = -1;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.message);
        expectFault(row.code, row.message);
        row.repair();
    }
    expectAccepted();
}

// The section paths of the record decide: a snapshot names the uplink otherwise than a document does.
TEST_F(DeviceVerification, AfterASnapshot_MessagesUseTheSnapshotsPaths) {
    restore_XmlZepStatus(kFull);
    setText(zepXmlData.tmpPath, "/tmp");
    setHardware(kAdsl);
    expectFault(3, "Device/Uplink/DSL/CountryName");
    setHardware(kWwanApn);
    expectFault(3, "Device/Uplink/APN/CountryName");
    setHardware(kWwan80211);
    expectFault(3, "Device/Uplink/ExtenderSite/ConnRefSiteBSSID");
    setHardware(kEthernet);
    recordUpLink().connTypeIdx = -1;
    expectFault(3, "Device/Uplink/ConnType");
}

class SafetyVerification : public VerificationTest {
  protected:
    const struct Row {
        const char* message;
        int32_t& value;
    } rows[4] = {
        {"Device/SafetyWdn/SafetyWdnEnbl", recordDevice().safetyWdn.SafetyWdnEnbl},
        {"Device/SafetyWdn/UrlDetectEnbl", recordDevice().safetyWdn.UrlDetectEnbl},
        {"Device/SafetyWdn/SafetyNotifyEnbl", recordDevice().safetyWdn.SafetyNotifyEnbl},
        {"Device/SafetyWdn/ToolRecommendEnbl", recordDevice().safetyWdn.ToolRecommendEnbl},
    };
};

TEST_F(SafetyVerification, Switches_AreZeroOrOne) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.message);
        row.value = -1;
        expectFault(3, row.message);
        row.value = 2;
        expectFault(3, row.message);
        row.value = 1;
        expectAccepted();
    }
}

TEST_F(SafetyVerification, Switches_AreCheckedInOrder) {
    for (const Row& row : rows)
        row.value = 2;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.message);
        expectFault(3, row.message);
        row.value = 0;
    }
}

TEST_F(SafetyVerification, WithoutTheFeature_IsNotChecked) {
    zepXmlData.safetyWdnFeature = 0;
    for (const Row& row : rows)
        row.value = 2;
    expectAccepted();
}

// The section has no gate of its own.
TEST_F(SafetyVerification, ClosedUplinkAndRadios_LeaveItChecked) {
    recordUpLink().Configurable = 0;
    recordRadio(kBand24).Configurable = 0;
    recordRadio(kBand5).Configurable = 0;
    rows[0].value = 2;
    expectFault(3, "Device/SafetyWdn/SafetyWdnEnbl");
}

} // namespace
} // namespace pendra::test
