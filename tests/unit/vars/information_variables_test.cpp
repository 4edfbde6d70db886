// The read-only information variables: spec version, firmware upgrade and site survey.
#include <cstdio>

#include "variables.h"

using pendra::test::Answer;
using pendra::test::call;
using pendra::test::device;
using pendra::test::DeviceTest;
using pendra::test::Events;
using pendra::test::getVariable;
using pendra::test::pathOf;

namespace {

using Paths = std::vector<std::string>;

class FirmwareVariables : public DeviceTest {};

TEST_F(FirmwareVariables, ModelName_IsReadElsewhere) {
    device().tree = {{"/sys/modelnumber", "PX-100"}, {"/fwupgradeinfo/ModelName", "no"}};
    EXPECT_EQ((Answer{0, "PX-100"}), getVariable("zep_Ext_Fwu_ModelName"));
    EXPECT_EQ((Answer{0, "/fwupgradeinfo/ModelName"}), pathOf("zep_Ext_Fwu_ModelName"));
    EXPECT_EQ(Paths{"/sys/modelnumber"}, device().reads);
}

TEST_F(FirmwareVariables, UpgradeAddress_HasItsKeywordsReplaced) {
    device().tree = {{"/runtime/bramble/lanip", "192.168.1.1"}, {"/bramble/zephttpport", "8080"}};
    const std::pair<const char*, const char*> cases[] = {
        {"http://$lanip:$zepport/fw", "http://192.168.1.1:8080/fw"},
        {"$lanip$lanip", "192.168.1.1192.168.1.1"},
        {"http://fw.example/", "http://fw.example/"},
        {"$LANIP $zep", "$LANIP $zep"},
        {"", ""},
    };
    for (const auto& [node, value] : cases) {
        device().tree["/fwupgradeinfo/FwUpgradeURL"] = node;
        EXPECT_EQ((Answer{0, value}), getVariable("zep_Ext_Fwu_FwUpgradeURL"));
    }
    EXPECT_EQ((Answer{0, "/fwupgradeinfo/FwUpgradeURL"}), pathOf("zep_Ext_Fwu_FwUpgradeURL"));
}

// First expanded, then cut: a text beyond 127 characters may come to fit, and the other way round.
TEST_F(FirmwareVariables, UpgradeAddress_IsExpandedBeforeItIsCut) {
    device().tree = {{"/runtime/bramble/lanip", "1.1.1.1"}, {"/bramble/zephttpport", "8"}};
    std::string node;
    std::string expanded;
    for (int i = 0; i < 20; i++) {
        node += "$zepport";
        expanded += "8";
    }
    device().tree["/fwupgradeinfo/FwUpgradeURL"] = node + "/end";
    EXPECT_EQ((Answer{0, expanded + "/end"}), getVariable("zep_Ext_Fwu_FwUpgradeURL"));
    device().tree["/fwupgradeinfo/FwUpgradeURL"] = std::string(120, 'x') + "$lanip/end";
    EXPECT_EQ((Answer{0, std::string(120, 'x') + "1.1.1.1"}), getVariable("zep_Ext_Fwu_FwUpgradeURL"));
    for (const size_t length : {126U, 127U, 128U, 255U, 256U, 1023U}) {
        device().tree["/fwupgradeinfo/FwUpgradeURL"] = std::string(length, 'x');
        EXPECT_EQ((Answer{0, std::string(std::min<size_t>(length, 127), 'x')}),
                  getVariable("zep_Ext_Fwu_FwUpgradeURL"));
    }
}

TEST_F(FirmwareVariables, OtherNames_AreUnknown) {
    for (const char* name : {"zep_Ext_Fwu", "zep_Ext_Fwu_", "zep_Ext_Fwu_Foo", "zep_Ext_Fwu_vendor",
                             "zep_Ext_Fwu_Vendor_X", "zep_Ext_Fwu_Vendor_Validate", "zep_Ext_Vendor"})
        EXPECT_EQ((Answer{2, ""}), getVariable(name)) << name;
    EXPECT_TRUE(device().reads.empty());
}

class InformationVariables : public DeviceTest {};

TEST_F(InformationVariables, OtherDocuments_HaveNoVariables) {
    for (const char* section : {"Apc", "Wdn", "Dsl", "Apn", "Foo", ""})
        for (const char* leaf : {"", "_", "_Vendor", "_SiteNo", "_IspName", "_S00_BSSID"}) {
            const std::string name = std::string("zep_Ext_") + section + leaf;
            EXPECT_EQ((Answer{2, ""}), getVariable(name)) << name;
            EXPECT_EQ((Answer{2, ""}), pathOf(name)) << name;
        }
}

TEST_F(InformationVariables, ModesWithoutGet_ReadNothing) {
    device().tree["/wirelesssitesurvey/site#"] = "3";
    for (const char* name : {"zep_Ext_Fwu_Vendor", "zep_Ext_Ssv_SiteNo", "zep_Ext_Ssv_S00_BSSID"})
        for (const uint32_t flags : {0U, ZEPVAR_SET, ZEPVAR_VALIDATE, ZEPVAR_PATH})
            EXPECT_EQ((Answer{2, "x"}), call(name, "x", flags)) << name;
    EXPECT_TRUE(device().reads.empty());
    EXPECT_EQ(Events{}, device().events);
}

TEST_F(InformationVariables, Version_HasTwoNumbers) {
    zepXmlData.specVersion = {1, 12, "specVersion", 112};
    EXPECT_EQ((Answer{0, "1"}), getVariable("zep_Ver_major"));
    EXPECT_EQ((Answer{0, "12"}), getVariable("zep_Ver_minor"));
    EXPECT_EQ((Answer{0, "12"}), getVariable("/specVersion/minor"));
    EXPECT_EQ((Answer{0, "/specversion/minor"}), pathOf("zep_Ver_minor"));
    for (const char* name :
         {"zep_Ver", "zep_Ver_", "zep_Ver_version", "zep_Ver_major_X", "zep_Ver_Major", "zep_Ver_path"})
        EXPECT_EQ((Answer{2, ""}), getVariable(name)) << name;
}

class SiteSurveyVariables : public DeviceTest {
  protected:
    static void setSites(const char* count) { device().tree["/wirelesssitesurvey/site#"] = count; }

    static constexpr const char* kLeaves[] = {"WirelessType", "BSSID", "WirelessName", "EncryptionMode",
                                              "WirelessStrength"};
};

TEST_F(SiteSurveyVariables, NumberOfSites_IsReadFromTheTree) {
    for (const char* count : {"0", "1", "40", "-1"}) {
        setSites(count);
        EXPECT_EQ((Answer{0, count}), getVariable("zep_Ext_Ssv_SiteNo"));
        EXPECT_EQ((Answer{0, count}), getVariable("/WirelessSiteSurvey/Site#"));
    }
    EXPECT_EQ((Answer{0, "/wirelesssitesurvey/site#"}), pathOf("zep_Ext_Ssv_SiteNo"));
}

// Two above the index, unlike access rules.
TEST_F(SiteSurveyVariables, EverySite_IsReadTwoAboveItsIndex) {
    setSites("100");
    for (int index = 0; index < 100; index++)
        for (const std::string leaf : kLeaves) {
            char name[64];
            snprintf(name, sizeof name, "zep_Ext_Ssv_S%02d_%s", index, leaf.c_str());
            const std::string path = "/wirelesssitesurvey/site:" + std::to_string(index + 2) + "/" + leaf;
            device().tree[path] = "value of " + path;
            EXPECT_EQ((Answer{0, "value of " + path}), getVariable(name));
            EXPECT_EQ((Answer{0, path}), pathOf(name));
        }
}

TEST_F(SiteSurveyVariables, IndexAtOrAboveTheNumberOfSites_IsRefused) {
    for (const std::string leaf : kLeaves) {
        setSites("0");
        EXPECT_EQ((Answer{2, ""}), getVariable("zep_Ext_Ssv_S00_" + leaf));
        setSites("1");
        EXPECT_EQ((Answer{0, ""}), getVariable("zep_Ext_Ssv_S00_" + leaf));
        EXPECT_EQ((Answer{2, ""}), getVariable("zep_Ext_Ssv_S01_" + leaf));
        EXPECT_EQ((Answer{2, ""}), pathOf("zep_Ext_Ssv_S01_" + leaf));
        setSites("99");
        EXPECT_EQ((Answer{0, ""}), getVariable("zep_Ext_Ssv_S98_" + leaf));
        EXPECT_EQ((Answer{2, ""}), getVariable("zep_Ext_Ssv_S99_" + leaf));
        device().tree.clear();
        EXPECT_EQ((Answer{2, ""}), getVariable("zep_Ext_Ssv_S00_" + leaf));
    }
}

TEST_F(SiteSurveyVariables, OtherNames_AreUnknown) {
    setSites("99");
    for (const char* end : {"",           "_",          "_SiteNo_X",    "_siteno",    "_S00",        "_S00_",
                            "_S00_Foo",   "_S00_bssid", "_S00_BSSID_X", "_S1_BSSID",  "_S001_BSSID", "_S_BSSID",
                            "_S0a_BSSID", "_Sa0_BSSID", "_R00_BSSID",   "_s00_BSSID", "_S-1_BSSID",  "_S00x_BSSID",
                            "_BSSID",     "_S00_MAC"}) {
        EXPECT_EQ((Answer{2, ""}), getVariable(std::string("zep_Ext_Ssv") + end)) << end;
        EXPECT_EQ((Answer{2, ""}), pathOf(std::string("zep_Ext_Ssv") + end)) << end;
    }
}

TEST_F(SiteSurveyVariables, DocumentPath_ReadsTheSame) {
    setSites("1");
    device().tree["/wirelesssitesurvey/site:2/BSSID"] = "00:11:22:33:44:55";
    EXPECT_EQ((Answer{0, "00:11:22:33:44:55"}), getVariable("zep_Ext_Ssv_S00_BSSID"));
    EXPECT_EQ((Answer{0, "00:11:22:33:44:55"}), getVariable("/WirelessSiteSurvey/Site:00/BSSID"));
}

} // namespace
