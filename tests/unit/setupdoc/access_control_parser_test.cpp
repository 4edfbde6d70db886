// Access control of a radio, its rules, and the safety section.
#include "parser_test.h"

using namespace pendra;
using namespace pendra::test;

namespace {

constexpr const char* kPath = "Device/Wireless5/AccessControl";

std::string macOf(int number) {
    char mac[32];
    snprintf(mac, sizeof mac, "00:11:22:33:44:%02x", static_cast<unsigned>(number));
    return mac;
}

Element withRules(int count) {
    Element element("AccessControl", {{"WlAcEnbl", "1"}, {"WlAcMode", "1"}});
    for (int number = 1; number <= count; number++)
        element.add(ruleElement(macOf(number), std::to_string(number % 2)));
    return element;
}

class AccessControlParser : public ParserTest {
  protected:
    ZepAccessControl& access = zepXmlData.device.wireless[1].accessControl;

    static int32_t parse(const Element& element) { return parseText(element.text()); }
    static int32_t parseText(const std::string& text) {
        Buffer buffer(text);
        return do_ZepAccessCtl_Parser("Device/Wireless5", buffer.text(), buffer.length(),
                                      &zepXmlData.device.wireless[1].accessControl, "AccessControl");
    }
};

TEST_F(AccessControlParser, EnableOtherThanOne_ClearsTheRuleCountAndReadsNoMore) {
    for (const char* enable : {"0", "2", "-1", "off"}) {
        SCOPED_TRACE(enable);
        access.acRuleCount = 7;
        EXPECT_EQ(1, parse(withRules(2).set("WlAcEnbl", enable).set("WlAcMode", "5")));
        EXPECT_EQ(std::atoi(enable), access.WlAcEnbl);
        EXPECT_EQ(0, access.acRuleCount);
        EXPECT_EQ(0, access.WlAcMode);
        EXPECT_STREQ("", access.acRule[0].MAC);
        EXPECT_STREQ(kPath, access.path);
    }
}

TEST_F(AccessControlParser, Leaves_AreRequired) {
    expectRequiredLeaves(withRules(1), {"WlAcEnbl", "WlAcMode"}, kPath, parse);
    expectRequiredLeaves(accessElement(), {"WlAcEnbl"}, kPath, parse);
}

TEST_F(AccessControlParser, MissingElement_IsReportedByItsNameAlone) {
    EXPECT_EQ(0, parseText("<Other/>"));
    EXPECT_EQ((LostKeys{{"(null)", "AccessControl"}}), lostKeys());
    EXPECT_STREQ("", access.path);
}

TEST_F(AccessControlParser, OneRule_GivesOneWhenItIsWhole) {
    const auto parseRule = [this](const Element& element) {
        Buffer buffer(element.text());
        return do_ZepAcRule_Parser(kPath, buffer.text(), buffer.length(), &access.acRule[0], "AcRule");
    };
    EXPECT_EQ(1, parseRule(ruleElement(macOf(1))));
    EXPECT_EQ(0, parseRule(ruleElement(macOf(1)).drop("MAC")));
    EXPECT_EQ(0, parseRule(ruleElement(macOf(1)).drop("Active")));
}

TEST_F(AccessControlParser, EveryNumberOfRulesUpTo40_IsKept) {
    for (const int count : {0, 1, 2, 39, 40}) {
        SCOPED_TRACE(count);
        access = {};
        EXPECT_EQ(1, parse(withRules(count)));
        EXPECT_EQ(count, access.acRuleCount);
        EXPECT_EQ(1, access.WlAcMode);
        for (int number = 1; number <= count; number++) {
            const ZepAcRule& rule = access.acRule[number - 1];
            EXPECT_EQ(number % 2, rule.Active);
            EXPECT_EQ(macOf(number), text(rule.MAC));
            EXPECT_STREQ("Device/Wireless5/AccessControl/AcRule", rule.path);
        }
        EXPECT_EQ(0, count == 40 ? 0 : access.acRule[count].MAC[0]);
    }
}

TEST_F(AccessControlParser, RulesBeyondThe40th_AreIgnored) {
    for (const int count : {41, 100, 1000}) {
        SCOPED_TRACE(count);
        access = {};
        EXPECT_EQ(1, parse(withRules(count)));
        EXPECT_EQ(40, access.acRuleCount);
        EXPECT_EQ(macOf(40), text(access.acRule[39].MAC));
        EXPECT_STREQ(kPath, access.path); // right behind the 40th
        EXPECT_EQ(LostKeys{}, lostKeys());
    }
}

TEST_F(AccessControlParser, FaultyRuleBeyondThe40th_IsNotLookedAt) {
    EXPECT_EQ(1, parse(withRules(40).add(Element("AcRule", {}))));
    EXPECT_EQ(40, access.acRuleCount);
}

TEST_F(AccessControlParser, FaultyRule_FailsTheSectionAndStoresNoCount) {
    for (const char* leaf : {"Active", "MAC"}) {
        SCOPED_TRACE(leaf);
        forgetLostKeys();
        access = {};
        access.acRuleCount = 9;
        EXPECT_EQ(0, parse(withRules(2).add(ruleElement(macOf(3)).drop(leaf)).add(ruleElement(macOf(4)))));
        EXPECT_EQ((LostKeys{{"Device/Wireless5/AccessControl/AcRule", leaf}}), lostKeys());
        EXPECT_EQ(9, access.acRuleCount);
        EXPECT_EQ(macOf(2), text(access.acRule[1].MAC));
        EXPECT_STREQ("", access.acRule[3].MAC);
    }
}

TEST_F(AccessControlParser, RuleWithoutClosingTag_FailsTheSection) {
    EXPECT_EQ(0, parse(withRules(1).add("Unrelated", "<AcRule><Active>1</Active>")));
    EXPECT_EQ((LostKeys{{"(null)", "AcRule"}}), lostKeys());
}

TEST_F(AccessControlParser, RulesOutsideTheBlock_AreNotTaken) {
    EXPECT_EQ(1, parseText(ruleElement(macOf(8)).text() + withRules(1).text() + ruleElement(macOf(9)).text()));
    EXPECT_EQ(1, access.acRuleCount);
    EXPECT_EQ(macOf(1), text(access.acRule[0].MAC));
}

// The search goes on right behind the opening tag, whatever the rule holds.
TEST_F(AccessControlParser, RuleInsideARule_CountsToo) {
    EXPECT_EQ(1, parse(withRules(0).add("AcRule", ruleElement(macOf(1)).text())));
    EXPECT_EQ(2, access.acRuleCount);
    EXPECT_EQ(macOf(1), text(access.acRule[0].MAC));
    EXPECT_EQ(macOf(1), text(access.acRule[1].MAC));
}

TEST_F(AccessControlParser, OtherElementsBetweenRules_AreSkipped) {
    EXPECT_EQ(1, parse(withRules(1).add("AcRuleName", "x").add("Note", "y").add(ruleElement(macOf(2)))));
    EXPECT_EQ(2, access.acRuleCount);
    EXPECT_EQ(macOf(2), text(access.acRule[1].MAC));
}

// An empty block has length 0, and that means up to the end of the text.
TEST_F(AccessControlParser, EmptyBlock_TakesItsLeavesFromWhatFollows) {
    EXPECT_EQ(1, parseText("<AccessControl></AccessControl><WlAcEnbl>1</WlAcEnbl><WlAcMode>1</WlAcMode>" +
                           ruleElement(macOf(5)).text()));
    EXPECT_EQ(1, access.acRuleCount);
    EXPECT_EQ(macOf(5), text(access.acRule[0].MAC));
    EXPECT_EQ(1, parseText("<AccessControl/><WlAcEnbl>2</WlAcEnbl>"));
    EXPECT_EQ(2, access.WlAcEnbl);
    EXPECT_EQ(0, parseText("<WlAcEnbl>1</WlAcEnbl><AccessControl></AccessControl>"));
    EXPECT_EQ((LostKeys{{kPath, "WlAcEnbl"}}), lostKeys());
}

TEST_F(AccessControlParser, SelfClosingRule_TakesItsLeavesFromWhatFollows) {
    const std::string inside = "<WlAcEnbl>1</WlAcEnbl><WlAcMode>0</WlAcMode><AcRule/>";
    const std::string behind = "<Active>1</Active><MAC>" + macOf(6) + "</MAC>";
    EXPECT_EQ(1, parseText("<AccessControl>" + inside + "</AccessControl>" + behind));
    EXPECT_EQ(1, access.acRuleCount);
    EXPECT_EQ(macOf(6), text(access.acRule[0].MAC));
    EXPECT_EQ(0, parseText("<AccessControl>" + inside + "</AccessControl>"));
    EXPECT_EQ((LostKeys{{"Device/Wireless5/AccessControl/AcRule", "Active"}}), lostKeys());
}

TEST_F(AccessControlParser, MacsOfARule_AreCutAt17Characters) {
    for (const size_t length : {size_t{16}, size_t{17}, size_t{18}, size_t{1023}}) {
        SCOPED_TRACE(length);
        EXPECT_EQ(1, parse(withRules(0).add(ruleElement(std::string(length, 'm')))));
        EXPECT_EQ(std::string(std::min(length, size_t{17}), 'm'), text(access.acRule[0].MAC));
        EXPECT_STREQ("Device/Wireless5/AccessControl/AcRule", access.acRule[0].path); // right behind the MAC
    }
}

TEST_F(AccessControlParser, Level7_ShowsParsersAndRuleCount) {
    daemon_log_level = 6;
    parse(withRules(1));
    EXPECT_EQ("", logText());
    daemon_log_level = 7;
    parse(withRules(2));
    EXPECT_EQ((std::vector<std::string>{
                  "1000:do_ZepAccessCtl_Parser]Device/Wireless5",
                  "1000:prepareXmlBlockData]",
                  "1000:do_ZepAcRule_Parser]Device/Wireless5/AccessControl",
                  "1000:prepareXmlBlockData]",
                  "1000:do_ZepAcRule_Parser]Device/Wireless5/AccessControl",
                  "1000:prepareXmlBlockData]",
                  "WlAcRuleNo=2",
              }),
              logLines());
}

// ---- Safety ----

class SafetyParser : public ParserTest {
  protected:
    ZepSafetyWdn& safety = zepXmlData.device.safetyWdn;

    static int32_t parse(const Element& element) {
        Buffer buffer(element.text());
        return do_ZepSafetyWdn_Parser("Device", buffer.text(), buffer.length(), &zepXmlData.device.safetyWdn,
                                      "SafetyWdn");
    }
};

TEST_F(SafetyParser, AllFourLeaves_AreRequired) {
    for (const int32_t version : {100, 101}) {
        setVersion(version);
        expectRequiredLeaves(safetyElement(),
                             {"SafetyWdnEnbl", "UrlDetectEnbl", "SafetyNotifyEnbl", "ToolRecommendEnbl"},
                             "Device/SafetyWdn", parse);
    }
}

TEST_F(SafetyParser, Leaves_AreStored) {
    EXPECT_EQ(1, parse({"SafetyWdn",
                        {{"SafetyWdnEnbl", "1"},
                         {"UrlDetectEnbl", "2"},
                         {"SafetyNotifyEnbl", "3"},
                         {"ToolRecommendEnbl", "-4"}}}));
    EXPECT_EQ(1, safety.SafetyWdnEnbl);
    EXPECT_EQ(2, safety.UrlDetectEnbl);
    EXPECT_EQ(3, safety.SafetyNotifyEnbl);
    EXPECT_EQ(-4, safety.ToolRecommendEnbl);
    EXPECT_STREQ("Device/SafetyWdn", safety.path);
}

TEST_F(SafetyParser, MissingElement_IsReportedByItsNameAlone) {
    EXPECT_EQ(0, parse(Element("Other", {})));
    EXPECT_EQ((LostKeys{{"(null)", "SafetyWdn"}}), lostKeys());
    EXPECT_STREQ("", safety.path);
}

TEST_F(SafetyParser, Level7_ShowsTheParser) {
    daemon_log_level = 6;
    parse(safetyElement());
    EXPECT_EQ("", logText());
    daemon_log_level = 7;
    parse(safetyElement());
    EXPECT_EQ((std::vector<std::string>{"1000:do_ZepSafetyWdn_Parser]Device", "1000:prepareXmlBlockData]"}),
              logLines());
}

} // namespace
