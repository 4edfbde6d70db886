#include <climits>

#include "setup_document.h"

using pendra::test::Buffer;
using pendra::test::LostKey;
using pendra::test::ScannerTest;
using pendra::test::text;

namespace {

using LostKeys = std::vector<LostKey>;

class XmlTextValue : public ScannerTest {
  protected:
    // The bytes of a destination of that capacity, which held 'x' everywhere, after the value was read into it.
    static std::string read(const std::string& document, int32_t capacity, int32_t expectedResult = 1) {
        Buffer buffer(document);
        std::vector<char> destination(static_cast<size_t>(capacity), 'x');
        EXPECT_EQ(expectedResult, GetXmlKeyStrValue_(buffer.text(), -1, "Key", destination.data(), capacity));
        EXPECT_EQ(document, buffer.whole());
        return std::string(destination.data(), destination.size());
    }
};

TEST_F(XmlTextValue, Element_GivesItsText) {
    EXPECT_EQ(std::string("abc\0xxxx", 8), read("<Key>abc</Key>", 8));
    EXPECT_EQ(std::string(" a \r\n\0x", 7), read("<key> a \r\n</KEY>", 7)); // nothing is trimmed
}

TEST_F(XmlTextValue, EmptyAndSelfClosingElements_AreFoundWithAnEmptyText) {
    for (const char* document : {"<Key></Key>", "<Key/>", "<Key />"}) {
        SCOPED_TRACE(document);
        EXPECT_EQ(std::string("\0xxx", 4), read(document, 4));
    }
}

TEST_F(XmlTextValue, Miss_EmptiesTheDestination) {
    for (const char* document : {"<Other>abc</Other>", "<Key>abc", "<Key a=\"1\">abc</Key>", ""}) {
        SCOPED_TRACE(document);
        EXPECT_EQ(std::string("\0xxx", 4), read(document, 4, 0));
    }
}

TEST_F(XmlTextValue, TextOfCapacityMinusOne_IsKeptWholeAndALongerOneIsCut) {
    for (const int32_t capacity : {1, 2, 16, 18, 32, 64, 128, 256}) {
        SCOPED_TRACE(capacity);
        const auto fits = static_cast<size_t>(capacity - 1);
        const std::string longest = std::string(fits, 'a') + '\0';
        EXPECT_EQ(longest, read("<Key>" + std::string(fits, 'a') + "</Key>", capacity));
        EXPECT_EQ(longest, read("<Key>" + std::string(fits + 1, 'a') + "</Key>", capacity));
        EXPECT_EQ(longest, read("<Key>" + std::string(1 << 20, 'a') + "</Key>", capacity));
        if (capacity == 1) continue;
        const std::string shorter(fits - 1, 'a');
        EXPECT_EQ(shorter + '\0' + 'x', read("<Key>" + shorter + "</Key>", capacity));
    }
}

TEST_F(XmlTextValue, CapacityBelowOne_WritesNothing) {
    for (const int32_t capacity : {0, -1, INT_MIN}) {
        SCOPED_TRACE(capacity);
        char destination[] = "xy";
        Buffer hit("<Key>abc</Key>");
        Buffer miss("<Other>");
        EXPECT_EQ(0, GetXmlKeyStrValue_(hit.text(), -1, "Key", destination, capacity));
        EXPECT_EQ(0, GetXmlKeyStrValue_(miss.text(), -1, "Key", destination, capacity));
        EXPECT_STREQ("xy", destination);
    }
}

TEST_F(XmlTextValue, NullArguments_GiveZeroAndTouchNothing) {
    Buffer buffer("<Key>abc</Key>");
    char destination[] = "xy";
    EXPECT_EQ(0, GetXmlKeyStrValue_(nullptr, -1, "Key", destination, 3));
    EXPECT_EQ(0, GetXmlKeyStrValue_(buffer.text(), -1, nullptr, destination, 3));
    EXPECT_EQ(0, GetXmlKeyStrValue_(buffer.text(), -1, "Key", nullptr, 3));
    EXPECT_STREQ("xy", destination);
}

TEST_F(XmlTextValue, Stretch_BoundsTheSearch) {
    Buffer buffer("<Key>abc</Key>");
    char destination[8] = "xy";
    EXPECT_EQ(0, GetXmlKeyStrValue_(buffer.text(), 13, "Key", destination, sizeof destination));
    EXPECT_STREQ("", destination);
    EXPECT_EQ(1, GetXmlKeyStrValue_(buffer.text(), 14, "Key", destination, sizeof destination));
    EXPECT_STREQ("abc", destination);
}

TEST_F(XmlTextValue, ShortenedByEntities_KeepsStaleBytesUpToTheEncodedLength) {
    Buffer buffer("<Key>a&amp;b</Key>");
    char destination[16] = "xxxxxxxx";
    EXPECT_EQ(1, GetXmlKeyStrValue_(buffer.text(), -1, "Key", destination, sizeof destination));
    EXPECT_STREQ("a&bxxxx", destination);
}

TEST_F(XmlTextValue, EachEntity_IsDecoded) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"nbsp;", " "}, {"lt;", "<"},  {"gt;", ">"},  {"amp;", "&"}, {"quot;", "\""}, {"apos;", "'"}, {"#32;", " "},
        {"#160;", " "}, {"#60;", "<"}, {"#62;", ">"}, {"#38;", "&"}, {"#34;", "\""},  {"#39;", "'"}};
    for (const auto& [entity, character] : rows) {
        SCOPED_TRACE(entity);
        Buffer buffer("<Key>1&" + entity + "2</Key>");
        char destination[32] = "";
        EXPECT_EQ(1, GetXmlKeyStrValue_(buffer.text(), -1, "Key", destination, sizeof destination));
        EXPECT_EQ("1" + character + "2", std::string(destination));
    }
}

TEST_F(XmlTextValue, UnknownEntities_StayAsTheyAre) {
    EXPECT_EQ(std::string("&LT;&foo;&&\0x", 13), read("<Key>&LT;&foo;&&</Key>", 13));
}

TEST_F(XmlTextValue, EntityThatCrossesTheCut_IsMatchedWhole) {
    // 4 encoded bytes fit: "ab&a"; the entity is decoded although its end lies beyond.
    EXPECT_EQ(std::string("ab&x\0", 5), read("<Key>ab&amp;c</Key>", 5));
    EXPECT_EQ(std::string("abc&\0", 5), read("<Key>abc&amp;</Key>", 5));
}

// ---- Integers ----

class XmlIntValue : public ScannerTest {
  protected:
    static constexpr int32_t kUntouched = -77;

    static int32_t read(const std::string& content) {
        Buffer buffer("<Key>" + content + "</Key>");
        int32_t value = kUntouched;
        EXPECT_EQ(1, GetXmlKeyIntValue_(buffer.text(), -1, "Key", &value));
        return value;
    }
};

TEST_F(XmlIntValue, Text_IsConvertedLikeAtoi) {
    const std::vector<std::pair<const char*, int32_t>> rows = {{"0", 0},
                                                               {"42", 42},
                                                               {"-7", -7},
                                                               {"+5", 5},
                                                               {" \t\r\n9", 9},
                                                               {"12abc", 12},
                                                               {"3 4", 3},
                                                               {"007", 7},
                                                               {"abc", 0},
                                                               {"", 0},
                                                               {"-", 0},
                                                               {"0x10", 0},
                                                               {"1.9", 1},
                                                               {"- 3", 0},
                                                               {"2147483647", 2147483647},
                                                               {"1&amp;2", 1},
                                                               {"-2147483648", INT_MIN},
                                                               {"&#32;6", 6}};
    for (const auto& [content, value] : rows) {
        SCOPED_TRACE(content);
        EXPECT_EQ(value, read(content));
    }
}

TEST_F(XmlIntValue, SelfClosingElement_StoresZero) {
    for (const char* document : {"<Key/>", "<Key />"}) {
        Buffer buffer(document);
        int32_t value = kUntouched;
        EXPECT_EQ(1, GetXmlKeyIntValue_(buffer.text(), -1, "Key", &value));
        EXPECT_EQ(0, value);
    }
}

TEST_F(XmlIntValue, Text_IsCutAt127Characters) {
    EXPECT_EQ(1, read(std::string(126, '0') + "12"));
    EXPECT_EQ(12, read(std::string(125, '0') + "12"));
    EXPECT_EQ(0, read(std::string(1 << 20, '0') + "12"));
}

TEST_F(XmlIntValue, NoStaleDigits_ComeBehindAnEntity) {
    EXPECT_EQ(123456789, read("123456789"));
    EXPECT_EQ(7, read("&#32;7"));
}

TEST_F(XmlIntValue, NumberBeyondAnInt_CrashesNothing) {
    read("99999999999999999999999999");
    read("-99999999999999999999999999");
}

TEST_F(XmlIntValue, MissAndNullArguments_LeaveTheIntegerUntouched) {
    Buffer buffer("<Key>5</Key>");
    int32_t value = kUntouched;
    EXPECT_EQ(0, GetXmlKeyIntValue_(buffer.text(), -1, "Other", &value));
    EXPECT_EQ(0, GetXmlKeyIntValue_(nullptr, -1, "Key", &value));
    EXPECT_EQ(0, GetXmlKeyIntValue_(buffer.text(), -1, nullptr, &value));
    EXPECT_EQ(0, GetXmlKeyIntValue_(buffer.text(), -1, "Key", nullptr));
    EXPECT_EQ(kUntouched, value);
}

// ---- Misses that are reported ----

class LostKeyHook : public ScannerTest {
  protected:
    Buffer buffer{"<Key>5</Key>"};
    char destination[16] = "x";
    int32_t value = 9;
};

TEST_F(LostKeyHook, MissedTextAndInteger_AreReportedOnceEach) {
    EXPECT_EQ(0, GetXmlKeyStrValue(buffer.text(), -1, "Device/DSL", "IspName", destination, sizeof destination));
    EXPECT_EQ((LostKeys{{"Device/DSL", "IspName"}}), lostKeys());
    EXPECT_EQ(0, GetXmlKeyIntValue(buffer.text(), -1, "Device", "VPI", &value));
    EXPECT_EQ((LostKeys{{"Device/DSL", "IspName"}, {"Device", "VPI"}}), lostKeys());
    EXPECT_STREQ("", destination);
    EXPECT_EQ(9, value);
}

TEST_F(LostKeyHook, ElementWithoutClosingTag_IsReported) {
    Buffer open("<Name>abc");
    EXPECT_EQ(0, GetXmlKeyStrValue(open.text(), -1, "Device", "Name", destination, sizeof destination));
    EXPECT_EQ((LostKeys{{"Device", "Name"}}), lostKeys());
}

TEST_F(LostKeyHook, Hits_AreNotReported) {
    EXPECT_EQ(1, GetXmlKeyStrValue(buffer.text(), -1, "Device", "Key", destination, sizeof destination));
    EXPECT_EQ(1, GetXmlKeyIntValue(buffer.text(), -1, "Device", "Key", &value));
    EXPECT_STREQ("5", destination);
    EXPECT_EQ(5, value);
    EXPECT_EQ(LostKeys{}, lostKeys());
}

TEST_F(LostKeyHook, PlainLookups_AreSilent) {
    FindXmlKeyContain(buffer.text(), -1, "Other", nullptr);
    SearchXmlKeyHeader(buffer.text(), -1, "Other");
    GetXmlKeyStrValue_(buffer.text(), -1, "Other", destination, sizeof destination);
    GetXmlKeyIntValue_(buffer.text(), -1, "Other", &value);
    EXPECT_EQ(LostKeys{}, lostKeys());
}

TEST_F(LostKeyHook, WithoutHook_MissesAreSilent) {
    XmlErrMsg_LostKey = nullptr;
    int32_t length = 0;
    char path[128] = "x";
    EXPECT_EQ(0, GetXmlKeyStrValue(buffer.text(), -1, "Device", "Other", destination, sizeof destination));
    EXPECT_EQ(0, GetXmlKeyIntValue(buffer.text(), -1, "Device", "Other", &value));
    EXPECT_EQ(nullptr, prepareXmlBlockData("Device", buffer.text(), -1, "Other", path, &length));
    EXPECT_EQ(LostKeys{}, lostKeys());
}

TEST_F(LostKeyHook, NullParentPath_IsHandedOnAsItIs) {
    GetXmlKeyStrValue(buffer.text(), -1, nullptr, "Other", destination, sizeof destination);
    GetXmlKeyIntValue(buffer.text(), -1, "", "Other", &value);
    EXPECT_EQ((LostKeys{{"(null)", "Other"}, {"", "Other"}}), lostKeys());
}

TEST_F(LostKeyHook, NullArguments_CrashNothing) {
    EXPECT_EQ(0, GetXmlKeyStrValue(nullptr, -1, "Device", "Key", destination, sizeof destination));
    EXPECT_EQ(0, GetXmlKeyStrValue(buffer.text(), -1, "Device", nullptr, destination, sizeof destination));
    EXPECT_EQ(0, GetXmlKeyStrValue(buffer.text(), -1, "Device", "Key", nullptr, 16));
    EXPECT_EQ(0, GetXmlKeyIntValue(nullptr, -1, "Device", "Key", &value));
    EXPECT_EQ(0, GetXmlKeyIntValue(buffer.text(), -1, "Device", nullptr, &value));
    EXPECT_EQ(0, GetXmlKeyIntValue(buffer.text(), -1, "Device", "Key", nullptr));
}

// ---- Blocks ----

class XmlBlock : public ScannerTest {
  protected:
    Buffer buffer{"..<Block>content</Block>"};
    char path[128] = "untouched";
    int32_t length = -77;

    const char* prepare(const char* parentPath, const char* tag) {
        return prepareXmlBlockData(parentPath, buffer.text(), -1, tag, path, &length);
    }
};

TEST_F(XmlBlock, Found_GivesContentLengthAndPath) {
    EXPECT_EQ(buffer.text() + 9, prepare("Device", "block"));
    EXPECT_EQ(7, length);
    EXPECT_STREQ("Device/block", path); // the tag as asked for
    EXPECT_EQ(LostKeys{}, lostKeys());
}

TEST_F(XmlBlock, WithoutParentPath_IsNamedByItsTag) {
    for (const char* parentPath : {"", static_cast<const char*>(nullptr)}) {
        prepare(parentPath, "Block");
        EXPECT_STREQ("Block", path);
    }
}

TEST_F(XmlBlock, Path_IsCutAt127Characters) {
    const std::string parent121(121, 'p');
    prepare(parent121.c_str(), "Block");
    EXPECT_EQ(parent121 + "/Block", path);
    prepare((parent121 + "p").c_str(), "Block");
    EXPECT_EQ(parent121 + "p/Bloc", path);
    prepare(std::string(1023, 'p').c_str(), "Block");
    EXPECT_EQ(std::string(127, 'p'), path);
}

TEST_F(XmlBlock, Missing_IsReportedWithoutParentPath) {
    EXPECT_EQ(nullptr, prepare("Device", "Other"));
    EXPECT_EQ((LostKeys{{"(null)", "Other"}}), lostKeys());
    EXPECT_STREQ("untouched", path);
    EXPECT_EQ(0, length);
}

TEST_F(XmlBlock, SelfClosing_HasLengthZero) {
    Buffer empty("<Block/>");
    EXPECT_EQ(empty.text(), prepareXmlBlockData("Device", empty.text(), -1, "Block", path, &length));
    EXPECT_EQ(0, length);
    EXPECT_STREQ("Device/Block", path);
}

TEST_F(XmlBlock, NullArguments_CrashNothing) {
    EXPECT_EQ(nullptr, prepareXmlBlockData("Device", nullptr, -1, "Block", path, &length));
    EXPECT_EQ(nullptr, prepareXmlBlockData("Device", buffer.text(), -1, nullptr, path, &length));
    EXPECT_EQ(-77, length);
    EXPECT_STREQ("untouched", path);
    EXPECT_EQ(buffer.text() + 9, prepareXmlBlockData("Device", buffer.text(), -1, "Block", nullptr, nullptr));
}

TEST_F(XmlBlock, Entry_IsTracedAtLevel7) {
    daemon_log_level = 6;
    prepare("Device", "Block");
    EXPECT_EQ("", logText());
    daemon_log_level = 7;
    prepare("Device", "Block");
    prepare("Device", "Other");
    EXPECT_EQ("1000: 1000:prepareXmlBlockData]\n1000: 1000:prepareXmlBlockData]\n", logText());
}

TEST_F(XmlBlock, Lookups_AreNotTraced) {
    daemon_log_level = 7;
    GetXmlKeyStrValue(buffer.text(), -1, "Device", "Block", path, sizeof path);
    GetXmlKeyIntValue(buffer.text(), -1, "Device", "Other", &length);
    SearchXmlKeyHeader(buffer.text(), -1, "Block");
    EXPECT_EQ("", logText());
}

// ---- Spec version ----

class XmlSpecVersion : public ScannerTest {
  protected:
    ZepSpecVersion version = {11, 12, "old", 13};

    int32_t parse(const std::string& document, const char* parentPath = "", const char* tag = "specVersion") {
        Buffer buffer(document);
        return do_XmlSpecVersion_Parser(parentPath, buffer.text(), -1, &version, tag);
    }
};

TEST_F(XmlSpecVersion, MajorAndMinor_AreCombined) {
    EXPECT_EQ(1, parse("<specVersion><major>1</major><minor>2</minor></specVersion>"));
    EXPECT_EQ(1, version.major);
    EXPECT_EQ(2, version.minor);
    EXPECT_EQ(102, version.version);
    EXPECT_STREQ("specVersion", version.path);
    EXPECT_EQ(LostKeys{}, lostKeys());
}

TEST_F(XmlSpecVersion, OtherTagAndOrder_AreRead) {
    EXPECT_EQ(1, parse("<ver><MINOR>-1</MINOR><MAJOR>2</MAJOR></ver>", "root", "ver"));
    EXPECT_EQ(199, version.version);
    EXPECT_STREQ("root/ver", version.path);
}

TEST_F(XmlSpecVersion, MissingElement_ChangesNothing) {
    EXPECT_EQ(0, parse("<major>1</major><minor>2</minor>", "root"));
    EXPECT_EQ((LostKeys{{"(null)", "specVersion"}}), lostKeys());
    EXPECT_STREQ("old", version.path);
    EXPECT_EQ(11, version.major);
    EXPECT_EQ(13, version.version);
}

TEST_F(XmlSpecVersion, MissingMajor_StopsBeforeMinor) {
    EXPECT_EQ(0, parse("<specVersion><minor>2</minor></specVersion>"));
    EXPECT_EQ((LostKeys{{"specVersion", "major"}}), lostKeys());
    EXPECT_EQ(11, version.major);
    EXPECT_EQ(12, version.minor);
    EXPECT_EQ(13, version.version);
}

TEST_F(XmlSpecVersion, MissingMinor_KeepsMajorAndLeavesTheVersion) {
    EXPECT_EQ(0, parse("<specVersion><major>4</major></specVersion>", "root"));
    EXPECT_EQ((LostKeys{{"root/specVersion", "minor"}}), lostKeys());
    EXPECT_EQ(4, version.major);
    EXPECT_EQ(12, version.minor);
    EXPECT_EQ(13, version.version);
}

TEST_F(XmlSpecVersion, Path_IsCutAt31Characters) {
    const std::string parent19(19, 'p');
    const std::string document = "<specVersion><major>1</major></specVersion>";
    parse(document, parent19.c_str());
    EXPECT_EQ(parent19 + "/specVersion", text(version.path));
    parse(document, (parent19 + "p").c_str());
    EXPECT_EQ(parent19 + "p/specVersio", text(version.path));
    parse(document, std::string(1023, 'p').c_str());
    EXPECT_EQ(std::string(31, 'p'), text(version.path));
    EXPECT_EQ((LostKey{std::string(31, 'p'), "minor"}), lostKeys().back());
    EXPECT_EQ(13, version.version); // right behind the path
}

TEST_F(XmlSpecVersion, HostileNumbersAndNullArguments_CrashNothing) {
    EXPECT_EQ(1, parse("<specVersion><major>2147483647</major><minor>2147483647</minor></specVersion>"));
    EXPECT_EQ(1, parse("<specVersion><major>-2147483648</major><minor>-2147483648</minor></specVersion>"));
    Buffer buffer("<specVersion></specVersion>");
    EXPECT_EQ(0, do_XmlSpecVersion_Parser(nullptr, nullptr, -1, &version, "specVersion"));
    EXPECT_EQ(0, do_XmlSpecVersion_Parser(nullptr, buffer.text(), -1, &version, nullptr));
    EXPECT_EQ(0, do_XmlSpecVersion_Parser(nullptr, buffer.text(), -1, nullptr, "specVersion"));
}

} // namespace
