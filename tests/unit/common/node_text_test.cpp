// Fetching nodes of the configuration tree into bounded texts.
#include "common/tree_access.h"
#include "guarded_buffer.h"
#include "support/fake_device.h"

using pendra::test::device;
using pendra::test::DeviceTest;
using pendra::test::Events;
using pendra::test::GuardedBuffer;

namespace {

constexpr const char* kNode = "/sys/friendlyname";

std::string repeat(const std::string& text, size_t count) {
    std::string result;
    while (count-- > 0)
        result += text;
    return result;
}

class NodeText : public DeviceTest {
  protected:
    NodeText() {
        device().tree["/runtime/bramble/lanip"] = "192.168.1.1";
        device().tree["/bramble/zephttpport"] = "8080";
    }

    static std::string fetch(const char* defaultText, int32_t encode) {
        GuardedBuffer result(256);
        EXPECT_EQ(result.data(), getXNode_(result.data(), kNode, defaultText, encode));
        EXPECT_TRUE(result.intact());
        return result.text();
    }
};

TEST_F(NodeText, NodeWithText_GivesItAndIsNotWritten) {
    device().tree[kNode] = "Router <1>";
    EXPECT_EQ("Router <1>", fetch("default", 0));
    EXPECT_EQ("Router <1>", fetch(nullptr, 0));
    EXPECT_TRUE(device().events.empty());
}

TEST_F(NodeText, EmptyNodeWithDefault_GivesItAndIsSet) {
    device().tree[kNode] = "";
    EXPECT_EQ("x", fetch("x", 0));
    EXPECT_EQ(Events{"set /sys/friendlyname=x"}, device().events);
    EXPECT_EQ("x", device().node(kNode));
}

TEST_F(NodeText, AbsentNodeWithDefault_IsCreated) {
    EXPECT_EQ("x", fetch("x", 0));
    EXPECT_EQ("x", device().node(kNode));
}

TEST_F(NodeText, EmptyDefault_CountsAsGiven) {
    EXPECT_EQ("", fetch("", 0));
    EXPECT_EQ(Events{"set /sys/friendlyname="}, device().events);
}

TEST_F(NodeText, AbsentNodeWithoutDefault_IsEmptyAndNotWritten) {
    EXPECT_EQ("", fetch(nullptr, 0));
    EXPECT_EQ("", fetch(nullptr, 1));
    EXPECT_TRUE(device().events.empty());
}

TEST_F(NodeText, RefusedDefault_IsGivenAllTheSame) {
    device().refuseWrites = true;
    EXPECT_EQ("x", fetch("x", 0));
}

TEST_F(NodeText, Keywords_AreReplacedInTheResultOnly) {
    EXPECT_EQ("http://192.168.1.1:8080", fetch("http://$lanip:$zepport", 0));
    EXPECT_EQ("http://$lanip:$zepport", device().node(kNode));
    EXPECT_EQ("http://192.168.1.1:8080", fetch(nullptr, 0));
}

TEST_F(NodeText, EncodeFlag_EncodesTheResultOnly) {
    for (const int32_t flag : {1, -1, 256}) {
        device().tree[kNode] = "<$lanip&\"'>";
        EXPECT_EQ("&lt;192.168.1.1&amp;&quot;&#39;&gt;", fetch(nullptr, flag));
        EXPECT_EQ("<$lanip&\"'>", device().node(kNode));
    }
}

TEST_F(NodeText, LongNode_IsCutAt255) {
    for (const size_t length : {254U, 255U, 256U, 1023U}) {
        SCOPED_TRACE(length);
        device().tree[kNode] = repeat("n", length);
        const std::string expected = repeat("n", std::min<size_t>(length, 255));
        EXPECT_EQ(expected, fetch("default", 0));
        EXPECT_EQ(expected, fetch("default", 1));
    }
}

TEST_F(NodeText, LongEncodedText_IsCutAt255InsideAnEntity) {
    for (const size_t length : {63U, 64U, 255U, 1023U}) {
        SCOPED_TRACE(length);
        device().tree[kNode] = repeat("<", length);
        EXPECT_EQ(repeat("&lt;", length).substr(0, 255), fetch(nullptr, 1));
    }
}

TEST_F(NodeText, LongDefault_IsCutAt255AndStoredSo) {
    EXPECT_EQ(repeat("d", 255), fetch(repeat("d", 300).c_str(), 0));
    EXPECT_EQ(repeat("d", 255), device().node(kNode));
}

TEST_F(NodeText, LongExpansion_IsCutAt255) {
    device().tree[kNode] = repeat("$lanip", 42);
    EXPECT_EQ(repeat("192.168.1.1", 42).substr(0, 255), fetch(nullptr, 0));
}

TEST_F(NodeText, PathWithPercent_IsTakenAsItStands) {
    device().tree["/sys/%s%n/name"] = "odd";
    char result[256];
    EXPECT_STREQ("odd", getXNode(result, "/sys/%s%n/name", nullptr));
    EXPECT_STREQ("new", getXNode(result, "/sys/%d", "new"));
    EXPECT_EQ("new", device().node("/sys/%d"));
}

TEST_F(NodeText, ShortForm_DoesNotEncode) {
    device().tree[kNode] = "<&>";
    char result[256];
    EXPECT_EQ(result, getXNode(result, kNode, nullptr));
    EXPECT_STREQ("<&>", result);
    EXPECT_STREQ("a<b", getXNode(result, "/sys/absent", "a<b"));
    EXPECT_EQ("a<b", device().node("/sys/absent"));
}

TEST_F(NodeText, NullArguments_GiveNull) {
    char result[256] = "kept";
    EXPECT_EQ(nullptr, getXNode_(nullptr, kNode, "x", 0));
    EXPECT_EQ(nullptr, getXNode_(result, nullptr, "x", 1));
    EXPECT_EQ(nullptr, getXNode(nullptr, kNode, "x"));
    EXPECT_EQ(nullptr, getXNode(result, nullptr, "x"));
    EXPECT_STREQ("kept", result);
    EXPECT_TRUE(device().events.empty());
}

class NodeAccess : public DeviceTest {};

TEST_F(NodeAccess, TextOfEveryLength_IsCutToTheField) {
    for (const size_t capacity : {1U, 16U, 18U, 32U, 64U, 128U, 256U}) {
        for (const size_t length : {size_t{0}, capacity - 1, capacity, capacity + 1, size_t{1023}}) {
            SCOPED_TRACE(std::to_string(length) + " into " + std::to_string(capacity));
            device().tree[kNode] = repeat("n", length);
            GuardedBuffer field(capacity);
            pendra::readNodeBounded(field.data(), capacity, kNode);
            EXPECT_EQ(repeat("n", std::min(length, capacity - 1)), field.text());
            EXPECT_TRUE(field.intact());
        }
    }
}

TEST_F(NodeAccess, AbsentNode_EmptiesTheField) {
    char field[16] = "old";
    pendra::readNode(field, kNode);
    EXPECT_STREQ("", field);
}

TEST_F(NodeAccess, Number_IsTheNodesOrNegative) {
    device().tree["/a"] = "42";
    EXPECT_EQ(42, pendra::readNodeInt("/a"));
    EXPECT_GT(0, pendra::readNodeInt("/absent"));
    EXPECT_EQ(42, pendra::readNodeInt("/a", 7));
    EXPECT_EQ(7, pendra::readNodeInt("/absent", 7));
}

TEST_F(NodeAccess, Path_IsFormattedOnce) {
    EXPECT_STREQ("/lan/wireless5:1/acrule:3/mac", pendra::NodePath("/lan/wireless%s:1/acrule:%d/mac", "5", 3));
    EXPECT_STREQ("/100%", pendra::NodePath("/%s", "100%"));
}

} // namespace
