#include <gtest/gtest.h>

#include <climits>

#include "pendra/platform.h"
#include "platform/device.h"
#include "scratch.h"

namespace {

using namespace pendra::test;

/** The tree as the library sees it. */
class DeviceNodes : public testing::Test {
  protected:
    void SetUp() override {
        std::string error;
        ASSERT_TRUE(pendra::device::openDevice({scratch.file("tree"), scratch.file("device")}, error)) << error;
    }
    void TearDown() override { pendra::device::closeDevice(); }
    static std::string get(const std::string& path) {
        char text[XNODE_TEXT_MAX] = "left over";
        const int result = xget_str(text, "%s", path.c_str());
        return result == 0 ? text : "(absent)" + std::string(text);
    }
    Scratch scratch;
};

TEST_F(DeviceNodes, StoredText_ReadsBack) {
    EXPECT_EQ(xset_str("Kitchen", "/sys/friendlyname"), 0);
    EXPECT_EQ(get("/sys/friendlyname"), "Kitchen");
}

TEST_F(DeviceNodes, AbsentNode_ReadsEmptyAndNegative) {
    EXPECT_EQ(get("/sys/friendlyname"), "(absent)");
    EXPECT_LT(xget_int("/sys/routerenbl"), 0);
}

TEST_F(DeviceNodes, PathFormat_TakesItsArguments) {
    ASSERT_EQ(xset_str("m", "/lan/wireless2.4:1/accesscontrol/acrule:12/mac"), 0);
    char text[XNODE_TEXT_MAX];
    EXPECT_EQ(xget_str(text, "/lan/wireless%s:1/accesscontrol/acrule:%d/mac", "2.4", 12), 0);
    EXPECT_STREQ(text, "m");
    EXPECT_EQ(xget_int("/lan/wireless%s:1/accesscontrol/acrule#", "2.4"), 1);
}

TEST_F(DeviceNodes, SetPath_IsTakenAsItStands) {
    EXPECT_EQ(xset_str("1", "/a%s%d"), 0);
    EXPECT_EQ(get("/a%s%d"), "1");
}

TEST_F(DeviceNodes, Number_IsStoredAsDecimalText) {
    for (const int value : {0, -70, 12, INT_MAX, INT_MIN}) {
        EXPECT_EQ(xset_int(value, "/n"), 0);
        EXPECT_EQ(get("/n"), std::to_string(value));
        EXPECT_EQ(xget_int("/n"), value);
    }
}

TEST_F(DeviceNodes, TextAsNumber_ReadsItsLeadingDecimal) {
    const std::pair<const char*, int> rows[] = {
        {" 7", 7}, {"+8", 8},  {"12abc", 12}, {"007", 7}, {"99999999999", INT_MAX}, {"-99999999999999999999", INT_MIN},
        {"", -1},  {"abc", -1}};
    for (const auto& [text, number] : rows) {
        ASSERT_EQ(xset_str(text, "/n"), 0);
        EXPECT_EQ(xget_int("/n"), number) << text;
    }
}

TEST_F(DeviceNodes, LongestText_FillsTheBufferAndNotMore) {
    const std::string longest(XNODE_TEXT_MAX - 1, 't');
    ASSERT_EQ(xset_str(longest.c_str(), "/t"), 0);
    char text[XNODE_TEXT_MAX + 1];
    text[XNODE_TEXT_MAX] = '!';
    EXPECT_EQ(xget_str(text, "/t"), 0);
    EXPECT_EQ(text, longest);
    EXPECT_EQ(text[XNODE_TEXT_MAX], '!');
    EXPECT_LT(xset_str((longest + "t").c_str(), "/t"), 0);
    EXPECT_EQ(get("/t"), longest);
}

TEST_F(DeviceNodes, LongestPath_IsFoundAndALongerOneIsAbsent) {
    const std::string path = "/" + std::string(254, 'p');
    ASSERT_EQ(xset_str("x", path.c_str()), 0);
    EXPECT_EQ(get(path), "x");
    EXPECT_EQ(get(path + "p"), "(absent)");
    EXPECT_LT(xget_int("%s", (path + "p").c_str()), 0);
    EXPECT_LT(xset_str("x", (path + "p").c_str()), 0);
}

TEST_F(DeviceNodes, Deleted_TakesTheSubtreeOnce) {
    ASSERT_EQ(xset_str("x", "/l/sta:1/mac"), 0);
    ASSERT_EQ(xset_str("x", "/l/sta:2/mac"), 0);
    EXPECT_EQ(xget_int("/l/sta#"), 2);
    EXPECT_EQ(xdel("/l"), 0);
    EXPECT_LT(xget_int("/l/sta#"), 0);
    EXPECT_LT(xdel("/l"), 0);
}

TEST_F(DeviceNodes, GuardedNode_KeepsItsTextWhenItRefuses) {
    EXPECT_EQ(xset_str("02:11:22:33:44:55", "/runtime/easyroaming/deauthsta/mac"), 0);
    EXPECT_LT(xset_str("x; reboot", "/runtime/easyroaming/deauthsta/mac"), 0);
    EXPECT_EQ(get("/runtime/easyroaming/deauthsta/mac"), "02:11:22:33:44:55");
    EXPECT_LT(xset_int(7, "/bramble/tempdirecory"), 0);
}

TEST_F(DeviceNodes, NullArguments_AreRefused) {
    EXPECT_LT(xset_str(nullptr, "/a"), 0);
    EXPECT_LT(xset_str("x", nullptr), 0);
    EXPECT_LT(xset_int(1, nullptr), 0);
    EXPECT_LT(xdel(nullptr), 0);
}

TEST(ClosedDeviceNodes, EveryCall_AnswersAbsentOrRefused) {
    char text[XNODE_TEXT_MAX] = "left over";
    EXPECT_LT(xget_str(text, "/a"), 0);
    EXPECT_STREQ(text, "");
    EXPECT_LT(xget_int("/a"), 0);
    EXPECT_LT(xset_str("x", "/a"), 0);
    EXPECT_LT(xset_int(1, "/a"), 0);
    EXPECT_LT(xdel("/a"), 0);
    EXPECT_NE(tcapi_set("System_Entry", "upgrade_fw", "1"), 0);
    EXPECT_NE(tcapi_commit("System_Entry"), 0);
}

} // namespace
