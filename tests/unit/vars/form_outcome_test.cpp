// What a form leads to: verification, application, result document, log.
#include <cstdio>

#include "form.h"

using pendra::test::device;
using pendra::test::Events;
using pendra::test::fill;
using pendra::test::FormTest;
using pendra::test::kAccepted;
using pendra::test::kCountry;
using pendra::test::kIsp;
using pendra::test::post;
using pendra::test::Posted;
using pendra::test::recordBytes;
using pendra::test::resultDocument;
using pendra::test::upLink;

namespace {

constexpr int32_t kApply = 1;

Events operator+(Events first, const Events& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

class FormOutcome : public FormTest {
  protected:
    bool logged(const std::string& line) const {
        const std::vector<std::string> lines = logLines();
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    }
};

// ---- refused pairs ----

TEST_F(FormOutcome, RefusedPair_GivesItsCodeAndName) {
    upLink().Configurable = 0;
    const std::tuple<std::string, std::string, int32_t> cases[] = {
        {"zep_Foo", "1", 2},
        {"zep_DeviceName", "", 10},
        {"zep_DeviceName", "a\tb", 11},
        {"zep_Upl_IP", "10.0.0.1", 1},
        {"zep_Wl2_EncryptionMode", "WPA3", 10},
        {"zep_Wl2_Channel", "99", 2},
        {"foo", "1", 2},
        {"zep_FactoryDefault", "1", 2},
    };
    for (const auto& [name, value, code] : cases) {
        device().forget();
        EXPECT_EQ((Posted{code, name}), post(name + "=" + value)) << name;
        EXPECT_EQ(resultDocument(code, name, 0), device().events) << name;
        EXPECT_EQ(code, zepXmlData.setResult);
        EXPECT_EQ(name, zepXmlData.setMsg);
    }
}

TEST_F(FormOutcome, RefusedPair_EndsTheIntakeAndLeavesEarlierSets) {
    EXPECT_EQ((Posted{2, "zep_Foo"}), post(kIsp + "=1&zep_Foo=2&" + kCountry + "=3", '&', kApply));
    EXPECT_EQ("1", ispName());
    EXPECT_EQ("", countryName());
    EXPECT_EQ(resultDocument(2, "zep_Foo", 0), device().events);
}

TEST_F(FormOutcome, RefusedPair_IsNeitherVerifiedNorDumped) {
    daemon_log_level = 7;
    post("zep_Foo=1");
    EXPECT_EQ((std::vector<std::string>{"1000:do_ZepVar_Parser]", "---- Received Zep Var Data Begin ----", "zep_Foo=1",
                                        "---- Received Zep Var Data End ----",
                                        "Zep SetResult=2, SetMsg='zep_Foo', GetWaitSec=0"}),
              logLines());
    EXPECT_EQ(nullptr, XmlErrMsg_LostKey);
}

TEST_F(FormOutcome, ErrorTextLeftOut_IsNotNeeded) {
    EXPECT_EQ(2, do_ZepVar_Parser("zep_Foo=1", '&', nullptr, 0));
    EXPECT_EQ(3, do_ZepVar_Parser("zep_Upl_ConnType=Static", '&', nullptr, 0));
    EXPECT_EQ(0, do_ZepVar_Parser("zep_Upl_ConnType=DHCP", '&', nullptr, 0));
}

TEST_F(FormOutcome, NullText_CountsAsEmpty) {
    const std::string before = recordBytes();
    char errorText[128] = "stale";
    EXPECT_EQ(0, do_ZepVar_Parser(nullptr, '&', errorText, 0));
    EXPECT_STREQ("", errorText);
    EXPECT_EQ(before, recordBytes());
    EXPECT_EQ(resultDocument(0, "", 0), device().events);
}

// ---- verification ----

TEST_F(FormOutcome, VerifiedForm_WritesAnEmptyResultAndNothingElse) {
    zepXmlData.exeWaitSec = 77;
    EXPECT_EQ(kAccepted, post("zep_DeviceName=New"));
    EXPECT_EQ(resultDocument(0, "", 0), device().events);
    EXPECT_EQ(0, zepXmlData.exeflag);
    EXPECT_EQ(77, zepXmlData.exeWaitSec);
}

TEST_F(FormOutcome, FailedVerification_GivesTheRecordsCodeAndMessage) {
    for (const int32_t apply : {0, kApply}) {
        device().forget();
        EXPECT_EQ((Posted{3, "Device/Uplink/IP"}), post("zep_Upl_ConnType=Static&zep_DeviceName=New", '&', apply));
        EXPECT_EQ(resultDocument(3, "Device/Uplink/IP", 0), device().events);
    }
    fill(zepXmlData.device.DevicePwd, "\x01");
    EXPECT_EQ((Posted{11, "Device/DevicePwd"}), post(""));
}

TEST_F(FormOutcome, EarlierFault_IsForgottenByAGoodForm) {
    post("zep_Upl_ConnType=Static");
    EXPECT_EQ(kAccepted, post("zep_Upl_ConnType=DHCP"));
    EXPECT_EQ(0, zepXmlData.setResult);
    EXPECT_STREQ("", zepXmlData.setMsg);
}

// ---- application ----

TEST_F(FormOutcome, AppliedForm_WritesTheChangeAndTellsItsWait) {
    EXPECT_EQ(kAccepted, post("zep_DeviceName=New", '&', kApply));
    EXPECT_EQ((Events{"set /sys/friendlyname=New", "set /sys/factorydefault=0"} + resultDocument(0, "", 5)),
              device().events);
    EXPECT_EQ(48, zepXmlData.exeflag);
    EXPECT_EQ(5, zepXmlData.exeWaitSec);
}

TEST_F(FormOutcome, AnyNonZeroApply_Applies) {
    for (const int32_t apply : {1, 2, -1}) {
        const std::string name = "Name " + std::to_string(apply);
        EXPECT_EQ(kAccepted, post("zep_DeviceName=" + name, '&', apply));
        EXPECT_EQ(name, device().node("/sys/friendlyname"));
    }
}

TEST_F(FormOutcome, AppliedTwice_WritesNothingTheSecondTime) {
    EXPECT_EQ(kAccepted, post("zep_Wl2_WirelessName=Attic&zep_Wl5_WirelessName=Attic", '&', kApply));
    EXPECT_EQ(40, zepXmlData.exeWaitSec);
    device().forget();
    EXPECT_EQ(kAccepted, post("zep_Wl2_WirelessName=Attic&zep_Wl5_WirelessName=Attic", '&', kApply));
    EXPECT_EQ(resultDocument(0, "", 0), device().events);
    EXPECT_EQ(0, zepXmlData.exeflag);
    EXPECT_EQ(44, zepXmlData.pre_exeflag);
}

TEST_F(FormOutcome, RefusedApplication_GivesTheRecordsCodeAndMessage) {
    device().tree["/sys/routerenbl"] = "2";
    zepXmlData.exeflag = 5;
    zepXmlData.exeWaitSec = 77;
    EXPECT_EQ((Posted{3, "Device/RouterEnbl"}), post("zep_RouterEnbl=0", '&', kApply));
    EXPECT_EQ(resultDocument(3, "Device/RouterEnbl", 0), device().events);
    EXPECT_EQ(5, zepXmlData.exeflag);
    EXPECT_EQ(77, zepXmlData.exeWaitSec);
}

TEST_F(FormOutcome, AppliedForm_RunsNoScript) {
    post("zep_Wl2_WirelessName=Attic", '&', kApply);
    for (const std::string& command : device().commands())
        EXPECT_EQ(0U, command.find("echo ")) << command;
}

// ---- the missing-element hook ----

TEST_F(FormOutcome, EndOfTheList_PointsTheHookAtTheReporter) {
    XmlErrMsg_LostKey = nullptr;
    for (const char* text : {"", "zep_DeviceName=New", "zep_Upl_ConnType=Static"}) {
        XmlErrMsg_LostKey = nullptr;
        post(text);
        ASSERT_NE(nullptr, XmlErrMsg_LostKey) << text;
    }
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"Device/Uplink", "Key", "Device/Uplink/Key"}, {"", "Key", "Key"}, {nullptr, "Key", "Key"}};
    for (const auto& [path, key, message] : cases) {
        device().forget();
        XmlErrMsg_LostKey(path, key);
        EXPECT_EQ(resultDocument(2, message, 0), device().events);
    }
}

// ---- the log ----

TEST_F(FormOutcome, VerifiedForm_IsTraced) {
    daemon_log_level = 7;
    post("zep_DeviceName=New");
    const std::vector<std::string> lines = logLines();
    const std::vector<std::string> start = {"1000:do_ZepVar_Parser]",
                                            "---- Received Zep Var Data Begin ----",
                                            "zep_DeviceName=New",
                                            "---- Received Zep Var Data End ----",
                                            "1000:Verify_ZepXml]",
                                            "1000:Verify_ZepXml]done, ret=1",
                                            "Zep SetResult=0, SetMsg='', GetWaitSec=0",
                                            "----ZEPXML_BGN----"};
    ASSERT_LT(start.size() + 2, lines.size());
    EXPECT_TRUE(std::equal(start.begin(), start.end(), lines.begin())) << logText();
    EXPECT_EQ("----ZEPXML_END----", lines[lines.size() - 2]);
    EXPECT_EQ("done, ret=0", lines.back());
}

TEST_F(FormOutcome, AppliedForm_IsLoggedInTheOrderOfItsSteps) {
    daemon_log_level = 7;
    post("zep_DeviceName=New", '&', kApply);
    const std::vector<std::string> lines = logLines();
    auto next = lines.begin();
    for (const char* line : {"1000:Verify_ZepXml]done, ret=1", "1000:Apply_ZepXmlToDevice]",
                             "1000:exeflag=48, exeWaitSec=5", "Zep SetResult=0, SetMsg='', GetWaitSec=5",
                             "----ZEPXML_BGN----", " +- DeviceName='New'", "----ZEPXML_END----", "done, ret=0"}) {
        next = std::find(next, lines.end(), line);
        EXPECT_NE(lines.end(), next) << line;
    }
}

TEST_F(FormOutcome, WhateverTheOutcome_TheRecordIsDumped) {
    daemon_log_level = 7;
    post("zep_Upl_ConnType=Static");
    EXPECT_TRUE(logged("----ZEPXML_END----"));
    EXPECT_EQ("done, ret=3", logLines().back());
    std::remove(logFile().c_str());
    device().tree["/sys/routerenbl"] = "2";
    post("zep_Upl_ConnType=DHCP", '&', kApply);
    EXPECT_TRUE(logged("----ZEPXML_END----"));
    EXPECT_EQ("done, ret=3", logLines().back());
}

TEST_F(FormOutcome, AtLevel6_TextResultAndDumpAreLogged) {
    daemon_log_level = 6;
    post("zep_DeviceName=New");
    const std::vector<std::string> lines = logLines();
    EXPECT_EQ("---- Received Zep Var Data Begin ----", lines.front());
    EXPECT_TRUE(logged("Zep SetResult=0, SetMsg='', GetWaitSec=0"));
    EXPECT_EQ("----ZEPXML_END----", lines.back());
    EXPECT_FALSE(logged("1000:do_ZepVar_Parser]"));
    EXPECT_FALSE(logged("done, ret=0"));
}

TEST_F(FormOutcome, AtLevel5_OnlyTheResultIsLogged) {
    daemon_log_level = 5;
    post("zep_DeviceName=New");
    EXPECT_EQ("1000: Zep SetResult=0, SetMsg='', GetWaitSec=0\n", logText());
}

TEST_F(FormOutcome, AtLevel4_NothingIsLogged) {
    daemon_log_level = 4;
    post("zep_Foo=1");
    post("zep_DeviceName=New");
    EXPECT_EQ("", logText());
}

TEST_F(FormOutcome, ReceivedText_IsLoggedAsItIs) {
    daemon_log_level = 6;
    post(" a%25s%s%n = 1 \n");
    EXPECT_EQ("1000: ---- Received Zep Var Data Begin ----\n a%25s%s%n = 1 \n\n---- Received Zep Var Data End ----\n",
              logText().substr(0, logText().find("1000: Zep")));
}

} // namespace
