// Mapping a text to its row in a name table.
#include "guarded_buffer.h"
#include "support/fake_device.h"

using pendra::test::DeviceTest;
using pendra::test::GuardedBuffer;

namespace {

constexpr const char* kTableEnd = "\0_";

constexpr const char* kColours[] = {"Red", "GREEN", "blue", "Red", kTableEnd};
constexpr const char* kWithEmptyRow[] = {"first", "\0", "last", kTableEnd};
constexpr const char* kEmptyTable[] = {kTableEnd};

struct Found {
    int32_t row;
    std::string text;
};

bool operator==(const Found& left, const Found& right) {
    return left.row == right.row && left.text == right.text;
}

void PrintTo(const Found& found, std::ostream* stream) {
    *stream << found.row << " \"" << found.text << '"';
}

Found search(const std::string& text, const char* const* table) {
    GuardedBuffer buffer(text.size() + 1, text);
    const int32_t row = SearchKeyArray(buffer.data(), table);
    EXPECT_TRUE(buffer.intact());
    return {row, buffer.text()};
}

class NameTable : public DeviceTest {};

TEST_F(NameTable, TextInAnyCase_GivesItsRowAndTheRowsSpelling) {
    EXPECT_EQ((Found{0, "Red"}), search("Red", kColours));
    EXPECT_EQ((Found{0, "Red"}), search("rED", kColours));
    EXPECT_EQ((Found{1, "GREEN"}), search("green", kColours));
    EXPECT_EQ((Found{2, "blue"}), search("BLUE", kColours));
}

TEST_F(NameTable, UnknownText_GivesMinusOneAndStays) {
    for (const char* text : {"bogus", "Re", "Reds", " Red", "Red ", "_"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ((Found{-1, text}), search(text, kColours));
    }
}

TEST_F(NameTable, EncryptionModes_TellAModeFromItsPrefix) {
    EXPECT_EQ((Found{3, "WPAWPA2"}), search("wpawpa2", WlanEncrypModeArray));
    EXPECT_EQ((Found{4, "WPA2"}), search("wpa2", WlanEncrypModeArray));
    EXPECT_EQ((Found{2, "WPA"}), search("Wpa", WlanEncrypModeArray));
    EXPECT_EQ((Found{-1, "bogus"}), search("bogus", WlanEncrypModeArray));
}

TEST_F(NameTable, EmptyText_MatchesOnlyARealEmptyRow) {
    EXPECT_EQ((Found{5, ""}), search("", WlanEncrypTypeArray));
    EXPECT_EQ((Found{-1, ""}), search("", ConnTypeArray));
    EXPECT_EQ((Found{1, ""}), search("", kWithEmptyRow));
    EXPECT_EQ((Found{-1, ""}), search("", kEmptyTable));
}

TEST_F(NameTable, RealEmptyRow_DoesNotEndTheTable) {
    EXPECT_EQ((Found{2, "last"}), search("LAST", kWithEmptyRow));
}

TEST_F(NameTable, EmptyTable_HoldsNothing) {
    EXPECT_EQ((Found{-1, "red"}), search("red", kEmptyTable));
}

TEST_F(NameTable, TextOfAMebibyte_IsNotFound) {
    EXPECT_EQ(-1, search(std::string(1048576, 'r'), kColours).row);
}

TEST_F(NameTable, NullArguments_GiveMinusOne) {
    char text[] = "red";
    EXPECT_EQ(-1, SearchKeyArray(nullptr, kColours));
    EXPECT_EQ(-1, SearchKeyArray(text, nullptr));
    EXPECT_STREQ("red", text);
}

} // namespace
