// Keyword substitution, in general and of the device's address and port.
#include "common/keywords.h"

#include "guarded_buffer.h"
#include "support/fake_device.h"

using pendra::test::device;
using pendra::test::DeviceTest;
using pendra::test::GuardedBuffer;

namespace {

std::string repeat(char character, size_t count) {
    return std::string(count, character);
}

class Keyword : public DeviceTest {};

TEST_F(Keyword, EveryOccurrence_IsReplaced) {
    struct Case {
        const char* source;
        const char* keyword;
        const char* replacement;
        const char* result;
    };
    const Case cases[] = {
        {"ip=$lanip;gw=$lanip", "$lanip", "10.0.0.1", "ip=10.0.0.1;gw=10.0.0.1"},
        {"ip=$lanip", "$absent", "10.0.0.1", "ip=$lanip"},
        {"ip=$LANIP", "$lanip", "10.0.0.1", "ip=$LANIP"},
        {"$lanip$lanip", "$lanip", "x", "xx"},
        {"a$lanipb", "$lanip", "", "ab"},
        {"$lani", "$lanip", "x", "$lani"},
        {"aaa", "aa", "X", "Xa"},
        {"k", "k", "kk", "kk"},
        {"", "k", "x", ""},
        {"source", "", "x", "source"},
        {"", "", "x", ""},
        {"$$lanip", "$lanip", "x", "$x"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.source);
        GuardedBuffer result(std::string(row.result).size() + 1);
        EXPECT_EQ(result.data(), strChgKeyword(result.data(), row.source, row.keyword, row.replacement));
        EXPECT_EQ(row.result, result.text());
        EXPECT_TRUE(result.intact());
    }
}

TEST_F(Keyword, SourceOfAMebibyte_IsReplacedToItsEnd) {
    std::string source;
    std::string expected;
    for (int i = 0; i < 64; i++) {
        source += repeat('t', 16384) + "<key>";
        expected += repeat('t', 16384) + "value!";
    }
    GuardedBuffer result(expected.size() + 1);
    strChgKeyword(result.data(), source.c_str(), "<key>", "value!");
    EXPECT_EQ(expected, result.text());
    EXPECT_TRUE(result.intact());
}

TEST_F(Keyword, NullArguments_GiveNull) {
    char result[8] = "kept";
    EXPECT_EQ(nullptr, strChgKeyword(nullptr, "a", "b", "c"));
    EXPECT_EQ(nullptr, strChgKeyword(result, nullptr, "b", "c"));
    EXPECT_EQ(nullptr, strChgKeyword(result, "a", nullptr, "c"));
    EXPECT_EQ(nullptr, strChgKeyword(result, "a", "b", nullptr));
    EXPECT_STREQ("kept", result);
}

class DeviceKeywords : public DeviceTest {
  protected:
    DeviceKeywords() {
        device().tree["/runtime/bramble/lanip"] = "192.168.1.1";
        device().tree["/bramble/zephttpport"] = "8080";
    }

    static std::string change(const std::string& text) {
        GuardedBuffer buffer(std::max<size_t>(256, text.size() + 1), text);
        EXPECT_EQ(buffer.data(), strChgZepKeywords(buffer.data()));
        EXPECT_TRUE(buffer.intact());
        return buffer.text();
    }
};

TEST_F(DeviceKeywords, AddressAndPort_AreReplacedEverywhere) {
    EXPECT_EQ("http://192.168.1.1:8080/", change("http://$lanip:$zepport/"));
    EXPECT_EQ("8080192.168.1.1192.168.1.18080", change("$zepport$lanip$lanip$zepport"));
    EXPECT_EQ("no keyword, $lan, $LANIP", change("no keyword, $lan, $LANIP"));
}

TEST_F(DeviceKeywords, Nodes_AreReadAddressFirstAndNeverWritten) {
    change("x");
    EXPECT_EQ((std::vector<std::string>{"/runtime/bramble/lanip", "/bramble/zephttpport"}), device().reads);
    EXPECT_TRUE(device().events.empty());
}

TEST_F(DeviceKeywords, EmptyText_StaysAndReadsNothing) {
    EXPECT_EQ("", change(""));
    EXPECT_TRUE(device().reads.empty());
}

TEST_F(DeviceKeywords, AbsentNodes_ReplaceByNothing) {
    device().tree.clear();
    EXPECT_EQ("http://:/", change("http://$lanip:$zepport/"));
}

TEST_F(DeviceKeywords, AbsentPort_DoesNotTakeTheAddress) {
    device().tree.erase("/bramble/zephttpport");
    EXPECT_EQ("192.168.1.1:", change("$lanip:$zepport"));
}

TEST_F(DeviceKeywords, PortInsideTheAddress_IsReplacedToo) {
    device().tree["/runtime/bramble/lanip"] = "[$zepport]";
    EXPECT_EQ("[8080]", change("$lanip"));
    device().tree["/bramble/zephttpport"] = "$lanip";
    EXPECT_EQ("$lanip", change("$zepport"));
}

TEST_F(DeviceKeywords, NodeTexts_AreCutTo63) {
    for (const size_t length : {62U, 63U, 64U, 1023U}) {
        SCOPED_TRACE(length);
        device().tree["/runtime/bramble/lanip"] = repeat('i', length);
        device().tree["/bramble/zephttpport"] = repeat('p', length);
        const size_t kept = std::min<size_t>(length, 63);
        std::string expected = repeat('i', kept);
        expected += ":" + repeat('p', kept);
        EXPECT_EQ(expected, change("$lanip:$zepport"));
    }
}

TEST_F(DeviceKeywords, TextWithoutKeyword_IsCutAt255) {
    for (const size_t length : {254U, 255U, 256U, 1023U}) {
        SCOPED_TRACE(length);
        EXPECT_EQ(repeat('t', std::min<size_t>(length, 255)), change(repeat('t', length)));
    }
}

TEST_F(DeviceKeywords, ExpandedAddress_IsCutAt255) {
    for (const size_t before : {243U, 244U, 245U, 249U}) {
        SCOPED_TRACE(before);
        const std::string whole = repeat('t', before) + "192.168.1.1";
        EXPECT_EQ(whole.substr(0, 255), change(repeat('t', before) + "$lanip"));
    }
}

TEST_F(DeviceKeywords, ExpandedPort_IsCutAt255) {
    device().tree["/bramble/zephttpport"] = "1234567890";
    for (const size_t before : {244U, 245U, 246U, 247U}) {
        SCOPED_TRACE(before);
        const std::string whole = repeat('t', before) + "1234567890";
        EXPECT_EQ(whole.substr(0, 255), change(repeat('t', before) + "$zepport"));
    }
}

TEST_F(DeviceKeywords, KeywordCutByTheFirstReplacement_IsNotReplaced) {
    EXPECT_EQ(repeat('t', 250) + "$zepp", change(repeat('t', 250) + "$zepport"));
}

TEST_F(DeviceKeywords, SmallerBufferInsideTheLibrary_BoundsTheCopyBack) {
    for (const size_t capacity : {9U, 31U, 32U, 33U, 255U, 256U}) {
        SCOPED_TRACE(capacity);
        GuardedBuffer buffer(capacity, "$lanip");
        pendra::changeZepKeywordsBounded(buffer.data(), capacity);
        EXPECT_EQ(std::string("192.168.1.1").substr(0, capacity - 1), buffer.text());
        EXPECT_TRUE(buffer.intact());
    }
}

TEST_F(DeviceKeywords, LargerBufferInsideTheLibrary_IsCutAt255AllTheSame) {
    const std::string whole = repeat('t', 240) + repeat('8', 63);
    device().tree["/bramble/zephttpport"] = repeat('8', 63);
    GuardedBuffer buffer(1024, repeat('t', 240) + "$zepport");
    pendra::changeZepKeywordsBounded(buffer.data(), 1024);
    EXPECT_EQ(whole.substr(0, 255), buffer.text());
}

TEST_F(DeviceKeywords, BoundedReplacement_IsCutInTheMiddleOfAReplacement) {
    GuardedBuffer buffer(6);
    pendra::changeKeywordBounded(buffer.data(), 6, "a$kb$k", "$k", "123");
    EXPECT_EQ("a123b", buffer.text());
    pendra::changeKeywordBounded(buffer.data(), 6, "a$k$kb", "$k", "123");
    EXPECT_EQ("a1231", buffer.text());
    EXPECT_TRUE(buffer.intact());
}

TEST_F(DeviceKeywords, NullText_GivesNull) {
    EXPECT_EQ(nullptr, strChgZepKeywords(nullptr));
    EXPECT_TRUE(device().reads.empty());
}

} // namespace
