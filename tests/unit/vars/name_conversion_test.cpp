// Variable names and document paths.
#include <optional>

#include "support/fake_device.h"

using pendra::test::DeviceTest;

namespace {

using Text = std::optional<std::string>; // nothing when it cannot be converted

Text convert(const std::string& text, int32_t direction) {
    const char* result = cvtZep_XmlPathVsVarName(text.c_str(), direction);
    return result == nullptr ? Text() : Text(result);
}

Text toPath(const std::string& name) {
    return convert(name, 1);
}

Text toName(const std::string& path) {
    return convert(path, 0);
}

struct Spelling {
    const char* path;
    const char* name;
};

void PrintTo(const Spelling& spelling, std::ostream* output) {
    *output << spelling.path;
}

// Every row and every sub-row of the prefix table.
constexpr Spelling kPrefixes[] = {
    {"/specVersion/", "zep_Ver_"},
    {"/Device/UpLinkConnection/", "zep_Upl_"},
    {"/Device/UpLinkConnection/DSL/", "zep_Upl_Dsl_"},
    {"/Device/UpLinkConnection/APN/", "zep_Upl_Apn_"},
    {"/Device/UpLinkConnection/ExtenderSite/", "zep_Upl_Ets_"},
    {"/Device/Wireless2.4/", "zep_Wl2_"},
    {"/Device/Wireless2.4/AccessControl/WlAcLists/AcRule:03/", "zep_Wl2_Acl_R03_"},
    {"/Device/Wireless2.4/AccessControl/WlAcLists/AcRule#", "zep_Wl2_Acl_AcRuleNo"},
    {"/Device/Wireless2.4/AccessControl/", "zep_Wl2_Acl_"},
    {"/Device/Wireless5/", "zep_Wl5_"},
    {"/Device/Wireless5/AccessControl/WlAcLists/AcRule:39/", "zep_Wl5_Acl_R39_"},
    {"/Device/Wireless5/AccessControl/WlAcLists/AcRule#", "zep_Wl5_Acl_AcRuleNo"},
    {"/Device/Wireless5/AccessControl/", "zep_Wl5_Acl_"},
    {"/Device/SafetyWdn/", "zep_Wdn_"},
    {"/FwUpgradeInfo/", "zep_Ext_Fwu_"},
    {"/WirelessSiteSurvey/", "zep_Ext_Ssv_"},
    {"/WirelessSiteSurvey/Site:12/", "zep_Ext_Ssv_S12_"},
    {"/WirelessSiteSurvey/Site#", "zep_Ext_Ssv_SiteNo"},
    {"/APCloningInfo/", "zep_Ext_Apc_"},
    {"/SafetyWdnInfo/", "zep_Ext_Wdn_"},
    {"/DslIspList/", "zep_Ext_Dsl_"},
    {"/ApnIspList/", "zep_Ext_Apn_"},
};

class NamePrefix : public DeviceTest, public ::testing::WithParamInterface<Spelling> {};

TEST_P(NamePrefix, Alone_ConvertsBothWays) {
    EXPECT_EQ(GetParam().path, toPath(GetParam().name));
    EXPECT_EQ(GetParam().name, toName(GetParam().path));
}

TEST_P(NamePrefix, WithALeaf_ConvertsBothWays) {
    for (const std::string leaf : {"X", "WirelessName", "A_B", "a b", "\xc3\xbc"}) {
        SCOPED_TRACE(leaf);
        EXPECT_EQ(GetParam().path + leaf, toPath(GetParam().name + leaf));
        EXPECT_EQ(GetParam().name + leaf, toName(GetParam().path + leaf));
    }
}

TEST_P(NamePrefix, WithTwoLevelsOfTags_IsAPathWithoutAName) {
    EXPECT_EQ(std::nullopt, toName(GetParam().path + std::string("Extra/Leaf")));
    EXPECT_EQ(std::nullopt, toName(GetParam().path + std::string("Extra/")));
    EXPECT_EQ(std::nullopt, toName(GetParam().path + std::string("/")));
}

TEST_P(NamePrefix, InOtherCase_IsNotRecognised) {
    std::string name = GetParam().name;
    name[4] = static_cast<char>(name[4] + ('a' - 'A'));
    EXPECT_EQ("/Device/" + name.substr(4) + "X", toPath(name + "X"));
    std::string path = GetParam().path;
    path[1] = static_cast<char>(path[1] ^ ('a' - 'A'));
    EXPECT_EQ(std::nullopt, toName(path + "X"));
}

INSTANTIATE_TEST_SUITE_P(Table, NamePrefix, ::testing::ValuesIn(kPrefixes));

class NameConversion : public DeviceTest {};

TEST_F(NameConversion, KnownSettings_ConvertBothWays) {
    const Spelling cases[] = {
        {"/Device/Wireless2.4/WirelessName", "zep_Wl2_WirelessName"},
        {"/Device/Wireless2.4/AccessControl/WlAcLists/AcRule:03/MAC", "zep_Wl2_Acl_R03_MAC"},
        {"/Device/Wireless5/AccessControl/WlAcLists/AcRule:07/Active", "zep_Wl5_Acl_R07_Active"},
        {"/Device/Wireless5/AccessControl/WlAcMode", "zep_Wl5_Acl_WlAcMode"},
        {"/Device/UpLinkConnection/DSL/CountryName", "zep_Upl_Dsl_CountryName"},
        {"/Device/UpLinkConnection/APN/IspName", "zep_Upl_Apn_IspName"},
        {"/Device/UpLinkConnection/ConnType", "zep_Upl_ConnType"},
        {"/WirelessSiteSurvey/Site:01/BSSID", "zep_Ext_Ssv_S01_BSSID"},
        {"/Device/DeviceName", "zep_DeviceName"},
        {"/Device/Foo", "zep_Foo"},
        {"/specVersion/major", "zep_Ver_major"},
    };
    for (const Spelling& row : cases) {
        EXPECT_EQ(row.path, toPath(row.name));
        EXPECT_EQ(row.name, toName(row.path));
    }
}

TEST_F(NameConversion, NamesThatNoSectionClaims_LieUnderTheDevice) {
    const Spelling cases[] = {
        {"/Device/Upl", "zep_Upl"},
        {"/Device/Uplink", "zep_Uplink"},
        {"/Device/Ext_Foo", "zep_Ext_Foo"},
        {"/Device/Act_SiteSurvey", "zep_Act_SiteSurvey"},
        {"/Device/_", "zep__"},
        {"/Device/Wireless2.4", "zep_Wireless2.4"},
    };
    for (const Spelling& row : cases) {
        EXPECT_EQ(row.path, toPath(row.name));
        EXPECT_EQ(row.name, toName(row.path));
    }
    EXPECT_EQ("/Device/Foo/Bar", toPath("zep_Foo/Bar")); // the rest of a name is taken as it stands
    EXPECT_EQ("zep_", toName("/Device/"));
}

TEST_F(NameConversion, SubPrefixes_AreTriedInOrder) {
    EXPECT_EQ("/Device/Wireless2.4/AccessControl/WlAcLists/AcRule#X", toPath("zep_Wl2_Acl_AcRuleNoX"));
    EXPECT_EQ("/Device/Wireless2.4/AccessControl/AcRuleN", toPath("zep_Wl2_Acl_AcRuleN"));
    EXPECT_EQ("zep_Wl2_Acl_AcRuleNox", toName("/Device/Wireless2.4/AccessControl/WlAcLists/AcRule#x"));
    EXPECT_EQ("zep_Wl2_Acl_AcRule", toName("/Device/Wireless2.4/AccessControl/AcRule"));
    EXPECT_EQ("/WirelessSiteSurvey/Site:No/X", toPath("zep_Ext_Ssv_SNo_X"));
    EXPECT_EQ("/WirelessSiteSurvey/Site#_X", toPath("zep_Ext_Ssv_SiteNo_X"));
    EXPECT_EQ("/Device/UpLinkConnection/Foo_X", toPath("zep_Upl_Foo_X")); // none matches: nothing is put in
}

TEST_F(NameConversion, ListIndex_IsAnyTwoCharacters) {
    const Spelling cases[] = {
        {"/Device/Wireless2.4/AccessControl/WlAcLists/AcRule:zz/MAC", "zep_Wl2_Acl_Rzz_MAC"},
        {"/Device/Wireless5/AccessControl/WlAcLists/AcRule:-1/MAC", "zep_Wl5_Acl_R-1_MAC"},
        {"/WirelessSiteSurvey/Site:?\?/BSSID", "zep_Ext_Ssv_S??_BSSID"},
        {"/WirelessSiteSurvey/Site:__/BSSID", "zep_Ext_Ssv_S___BSSID"},
        {"/WirelessSiteSurvey/Site:\xff\x01/BSSID", "zep_Ext_Ssv_S\xff\x01_BSSID"},
    };
    for (const Spelling& row : cases) {
        EXPECT_EQ(row.path, toPath(row.name));
        EXPECT_EQ(row.name, toName(row.path));
    }
}

TEST_F(NameConversion, ListIndexOfAnotherLength_IsNoElement) {
    const char* paths[] = {
        "/Device/Wireless2.4/AccessControl/WlAcLists/AcRule:3/Active",
        "/Device/Wireless2.4/AccessControl/WlAcLists/AcRule:003/Active",
        "/Device/Wireless2.4/AccessControl/WlAcLists/AcRule:/Active",
        "/WirelessSiteSurvey/Site:1/BSSID",
        "/WirelessSiteSurvey/Site:001/BSSID",
    };
    for (const char* path : paths)
        EXPECT_EQ(std::nullopt, toName(path)) << path;
    EXPECT_EQ("/Device/Wireless2.4/AccessControl/R3_MAC", toPath("zep_Wl2_Acl_R3_MAC"));
    EXPECT_EQ("/Device/Wireless2.4/AccessControl/R003_MAC", toPath("zep_Wl2_Acl_R003_MAC"));
    EXPECT_EQ("/WirelessSiteSurvey/S1_BSSID", toPath("zep_Ext_Ssv_S1_BSSID"));
}

TEST_F(NameConversion, PatternBeyondTheEndOfTheText_IsAMismatch) {
    for (const std::string end : {"R", "R0", "R00"})
        EXPECT_EQ("/Device/Wireless2.4/AccessControl/" + end, toPath("zep_Wl2_Acl_" + end));
    for (const std::string end : {"S", "S0", "S00"})
        EXPECT_EQ("/WirelessSiteSurvey/" + end, toPath("zep_Ext_Ssv_" + end));
    for (const std::string end : {"Site:", "Site:0", "Site:00"})
        EXPECT_EQ("zep_Ext_Ssv_" + end, toName("/WirelessSiteSurvey/" + end));
}

TEST_F(NameConversion, WhatIsNoName_Fails) {
    const char* names[] = {"",        "zep",        "zep_",           "zep_ ",    "zep_ \t\r\n",
                           "Zep_Foo", "ZEP_Foo",    "foo_DeviceName", " zep_Foo", "zepFoo",
                           "_Foo",    "/Device/Foo"};
    for (const char* name : names)
        EXPECT_EQ(std::nullopt, toPath(name)) << name;
}

TEST_F(NameConversion, WhatIsNoPath_Fails) {
    const char* paths[] = {"",
                           " \t\r\n",
                           "/",
                           "/Other/x",
                           "/specVersion",
                           "/Device",
                           "Device/Foo",
                           "zep_Foo",
                           "/device/Foo",
                           "/Device/a/b",
                           "//Device/Foo",
                           "/FwUpgradeInfo",
                           "/DslIspList",
                           "/Device/Wireless2.4/a/b",
                           "/Device/UpLinkConnection/DSL/Extra/CountryName",
                           "/Device/UpLinkConnection/Foo/Bar"};
    for (const char* path : paths)
        EXPECT_EQ(std::nullopt, toName(path)) << path;
}

TEST_F(NameConversion, Null_Fails) {
    for (const int32_t direction : {0, 1})
        EXPECT_EQ(nullptr, cvtZep_XmlPathVsVarName(nullptr, direction));
}

TEST_F(NameConversion, WhiteSpaceAtTheEnds_IsCut) {
    for (const std::string blank : {" ", "\t", "\r", "\n", " \t\r\n \n"}) {
        EXPECT_EQ("/Device/Foo", toPath("zep_Foo" + blank));
        EXPECT_EQ("/Device/Foo", toPath("zep_" + blank + "Foo" + blank));
        EXPECT_EQ("/Device/Wireless2.4/X", toPath("zep_" + blank + "Wl2_X" + blank));
        EXPECT_EQ("zep_Foo", toName("/Device/Foo" + blank));
        EXPECT_EQ("zep_Wl2_X", toName(blank + "/Device/Wireless2.4/X" + blank));
        EXPECT_EQ("/Device/UpLinkConnection/", toPath("zep_Upl_" + blank));
        EXPECT_EQ("zep_Upl_", toName("/Device/UpLinkConnection/" + blank));
    }
}

TEST_F(NameConversion, OtherBlanks_AreKept) {
    EXPECT_EQ("/Device/\vFoo\f", toPath("zep_\vFoo\f"));
    EXPECT_EQ("/Device/F o\to", toPath("zep_F o\to"));
    EXPECT_EQ("/Device/Wireless2.4/ X", toPath("zep_Wl2_ X"));
    EXPECT_EQ("zep_Foo\v", toName("/Device/Foo\v"));
}

TEST_F(NameConversion, Direction_IsZeroOrNot) {
    for (const int32_t direction : {1, 2, -1, INT32_MIN})
        EXPECT_EQ("/Device/Foo", convert("zep_Foo", direction));
    EXPECT_EQ(std::nullopt, convert("zep_Foo", 0));
}

TEST_F(NameConversion, ResultOf127Characters_IsTheLongest) {
    for (const Spelling& row : kPrefixes)
        for (const auto& [from, to, direction] :
             {std::tuple(row.name, row.path, 1), std::tuple(row.path, row.name, 0)}) {
            SCOPED_TRACE(from);
            const std::string input = from;
            const std::string prefix = to;
            for (const size_t length : {126U, 127U}) {
                const std::string leaf(length - prefix.size(), 'x');
                EXPECT_EQ(prefix + leaf, convert(input + leaf, direction)) << length;
            }
            for (const size_t length : {128U, 129U, 4096U, 1U << 20})
                EXPECT_EQ(std::nullopt, convert(input + std::string(length - prefix.size(), 'x'), direction)) << length;
        }
}

// White space is cut from the result, which must hold it first.
TEST_F(NameConversion, WhiteSpaceThatWillBeCut_CountsTowardTheLength) {
    EXPECT_EQ("/Device/Foo", toPath("zep_Foo" + std::string(127 - 11, ' ')));
    EXPECT_EQ(std::nullopt, toPath("zep_Foo" + std::string(128 - 11, ' ')));
    EXPECT_EQ("zep_Foo", toName("/Device/Foo" + std::string(127 - 7, '\n')));
    EXPECT_EQ(std::nullopt, toName("/Device/Foo" + std::string(128 - 7, '\n')));
    EXPECT_EQ("/Device/Foo", toPath("zep_" + std::string(1000, ' ') + "Foo")); // in front it is skipped before
    EXPECT_EQ("zep_Foo", toName(std::string(1000, ' ') + "/Device/Foo"));
}

TEST_F(NameConversion, Result_StandsInOneBuffer) {
    const char* first = cvtZep_XmlPathVsVarName("zep_Foo", 1);
    const char* second = cvtZep_XmlPathVsVarName("/Device/Wireless5/X", 0);
    EXPECT_EQ(first, second);
    EXPECT_STREQ("zep_Wl5_X", first);
}

TEST_F(NameConversion, AfterAFailure_ConvertsAgain) {
    for (const char* bad : {"", "zep_", "/Other/x"}) {
        EXPECT_EQ(std::nullopt, toPath(bad));
        EXPECT_EQ("/Device/Foo", toPath("zep_Foo"));
    }
    EXPECT_EQ(std::nullopt, toPath("zep_" + std::string(500, 'x')));
    EXPECT_EQ("/Device/Foo", toPath("zep_Foo"));
}

TEST_F(NameConversion, EveryByteOfALeaf_IsTakenAsItStands) {
    const std::string cut = " \t\r\n";
    for (int byte = 1; byte < 256; byte++) {
        const std::string leaf(1, static_cast<char>(byte));
        const bool isCut = cut.find(leaf) != std::string::npos;
        EXPECT_EQ("/Device/Wireless5/" + (isCut ? "" : leaf), toPath("zep_Wl5_" + leaf)) << byte;
        EXPECT_EQ("/Device/Wireless5/" + leaf + "x", toPath("zep_Wl5_" + leaf + "x")) << byte;
        EXPECT_EQ(byte == '/' ? Text() : Text("zep_Wl5_" + leaf + "x"), toName("/Device/Wireless5/" + leaf + "x"))
            << byte;
    }
}

TEST_F(NameConversion, AnyOutcome_LeavesNoTrace) {
    daemon_log_level = 7;
    toPath("zep_Foo");
    toName("/Device/Foo");
    toPath("zep_");
    toName("/Other/x");
    EXPECT_EQ("", logText());
    EXPECT_TRUE(pendra::test::device().consoleCalls.empty());
    EXPECT_TRUE(pendra::test::device().reads.empty());
}

} // namespace
