// The three compare-then-write operations.
#include "record.h"

namespace pendra::test {
namespace {

constexpr const char* kPath = "/test/node";

class CompareWrite : public DeviceTest {
  protected:
    void store(const std::string& text) {
        device().forget();
        device().tree[kPath] = text;
    }
    const Events noEvents{};
};

// ---- texts ----

TEST_F(CompareWrite, EqualText_WritesNothing) {
    store("same");
    EXPECT_EQ(0, StrCmpWithXStr("same", kPath, 0));
    EXPECT_EQ(noEvents, device().events);
}

TEST_F(CompareWrite, DifferentText_IsWritten) {
    store("old");
    EXPECT_EQ(1, StrCmpWithXStr("new", kPath, 0));
    EXPECT_EQ(Events{"set /test/node=new"}, device().events);
}

TEST_F(CompareWrite, DifferentText_IsOnlyComparedOnRequest) {
    for (const int32_t compareOnly : {1, -1, 2}) {
        store("old");
        EXPECT_EQ(1, StrCmpWithXStr("new", kPath, compareOnly));
        EXPECT_EQ(0, StrCmpWithXStr("old", kPath, compareOnly));
        EXPECT_EQ(noEvents, device().events);
    }
}

TEST_F(CompareWrite, Case_Differs) {
    store("Text");
    EXPECT_EQ(1, StrCmpWithXStr("text", kPath, 0));
    EXPECT_EQ("text", device().node(kPath));
}

TEST_F(CompareWrite, AbsentText_IsEmpty) {
    EXPECT_EQ(0, StrCmpWithXStr("", kPath, 0));
    EXPECT_FALSE(device().has(kPath));
    EXPECT_EQ(1, StrCmpWithXStr("x", kPath, 0));
    EXPECT_EQ("x", device().node(kPath));
}

TEST_F(CompareWrite, EmptyText_ReplacesAStoredOne) {
    store("old");
    EXPECT_EQ(1, StrCmpWithXStr("", kPath, 0));
    EXPECT_EQ(Events{"set /test/node="}, device().events);
}

// 127 bytes of the stored text count.
TEST_F(CompareWrite, StoredText_IsComparedAsCutTo127Bytes) {
    const struct {
        size_t stored;
        size_t given;
        int32_t differs;
    } rows[] = {{126, 126, 0}, {126, 127, 1},  {127, 127, 0},   {127, 126, 1}, {128, 127, 0},
                {128, 128, 1}, {1023, 127, 0}, {1023, 1023, 1}, {2000, 127, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.stored) + " " + std::to_string(row.given));
        store(std::string(row.stored, 'a'));
        EXPECT_EQ(row.differs, StrCmpWithXStr(std::string(row.given, 'a').c_str(), kPath, 1));
    }
}

TEST_F(CompareWrite, LongText_IsWrittenWhole) {
    const std::string text(1023, 'v');
    EXPECT_EQ(1, StrCmpWithXStr(text.c_str(), kPath, 0));
    EXPECT_EQ(text, device().node(kPath));
}

TEST_F(CompareWrite, PercentSigns_AreNoFormat) {
    const std::string path = "/test/%s%n%d";
    device().tree[path] = "%s%n";
    EXPECT_EQ(0, StrCmpWithXStr("%s%n", path.c_str(), 0));
    EXPECT_EQ(1, StrCmpWithXStr("%d", path.c_str(), 0));
    EXPECT_EQ("%d", device().node(path));
}

TEST_F(CompareWrite, RefusedWrite_StillDiffers) {
    device().refuseWrites = true;
    EXPECT_EQ(1, StrCmpWithXStr("new", kPath, 0));
    EXPECT_EQ(1, IntCmpWithXStr(3, kPath, 0));
}

// ---- numbers ----

TEST_F(CompareWrite, Number_IsReadFromTheStoredText) {
    const struct {
        const char* stored;
        int32_t value;
        int32_t differs;
    } rows[] = {{"5", 5, 0},
                {"5", 6, 1},
                {" 5", 5, 0},
                {"5x", 5, 0},
                {"-5", -5, 0},
                {"+5", 5, 0},
                {"005", 5, 0},
                {"x", 0, 0},
                {"x", 1, 1},
                {"", 0, 0},
                {"", 1, 1},
                {"5.9", 5, 0},
                {"0x10", 0, 0},
                {"2147483647", INT32_MAX, 0},
                {"-2147483648", INT32_MIN, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.stored) + " " + std::to_string(row.value));
        store(row.stored);
        EXPECT_EQ(row.differs, IntCmpWithXStr(row.value, kPath, 1));
        EXPECT_EQ(noEvents, device().events);
        EXPECT_EQ(row.differs, IntCmpWithXStr(row.value, kPath, 0));
        const Events written = {"set /test/node=" + std::to_string(row.value)};
        EXPECT_EQ(row.differs == 0 ? noEvents : written, device().events);
    }
}

TEST_F(CompareWrite, AbsentNumber_IsZero) {
    EXPECT_EQ(0, IntCmpWithXStr(0, kPath, 0));
    EXPECT_FALSE(device().has(kPath));
    EXPECT_EQ(1, IntCmpWithXStr(-1, kPath, 0));
    EXPECT_EQ("-1", device().node(kPath));
}

TEST_F(CompareWrite, NumberBehind127Bytes_IsNotSeen) {
    store(std::string(127, ' ') + "7");
    EXPECT_EQ(0, IntCmpWithXStr(0, kPath, 1));
    store(std::string(126, ' ') + "7");
    EXPECT_EQ(0, IntCmpWithXStr(7, kPath, 1));
    store(std::string(1022, ' ') + "7");
    EXPECT_EQ(1, IntCmpWithXStr(7, kPath, 1));
}

// ---- numbers under a maximum ----

struct MaximumCase {
    const char* stored; // null: absent, which reads as a negative number
    int32_t value;
    int32_t maximum;
    int32_t differs;
    int32_t overflow;
};

const MaximumCase kMaxima[] = {
    {"1", 1, 1, 0, 0},
    {"0", 1, 1, 1, 0},
    {"1", 0, 1, 1, 0},
    {"0", 2, 1, 0, 1},
    {"2", 2, 1, 0, 0}, // equality comes before the maximum
    {"9", 9, 8, 0, 0},
    {nullptr, 0, 1, 1, 0},
    {nullptr, 1, 1, 1, 0},
    {nullptr, 2, 1, 0, 1},
    {"0", -5, 1, 1, 0},
    {"0", INT32_MAX, INT32_MAX, 1, 0},
    {"0", INT32_MAX, INT32_MAX - 1, 0, 1},
};

TEST_F(CompareWrite, Maximum_BoundsWhatIsWritten) {
    for (const MaximumCase& row : kMaxima) {
        SCOPED_TRACE(std::to_string(row.value) + " over " + (row.stored == nullptr ? "none" : row.stored));
        device() = {};
        if (row.stored != nullptr) store(row.stored);
        int32_t overflow = 7;
        EXPECT_EQ(row.differs, IntMaxCmpWithXStr(row.value, kPath, 1, row.maximum, &overflow));
        EXPECT_EQ(row.overflow, overflow);
        EXPECT_EQ(noEvents, device().events);
        overflow = 7;
        EXPECT_EQ(row.differs, IntMaxCmpWithXStr(row.value, kPath, 0, row.maximum, &overflow));
        EXPECT_EQ(row.overflow, overflow);
        const Events written = {"set /test/node=" + std::to_string(row.value)};
        EXPECT_EQ(row.differs == 0 ? noEvents : written, device().events);
    }
}

TEST_F(CompareWrite, NullIndicator_IsTolerated) {
    store("0");
    EXPECT_EQ(0, IntMaxCmpWithXStr(0, kPath, 0, 1, nullptr));
    EXPECT_EQ(0, IntMaxCmpWithXStr(2, kPath, 0, 1, nullptr));
    EXPECT_EQ(noEvents, device().events);
    EXPECT_EQ(1, IntMaxCmpWithXStr(1, kPath, 0, 1, nullptr));
    EXPECT_EQ("1", device().node(kPath));
}

TEST_F(CompareWrite, NullArguments_DoNothing) {
    int32_t overflow = 7;
    EXPECT_EQ(0, StrCmpWithXStr(nullptr, kPath, 0));
    EXPECT_EQ(0, StrCmpWithXStr("x", nullptr, 0));
    EXPECT_EQ(0, StrCmpWithXStr(nullptr, nullptr, 0));
    EXPECT_EQ(0, IntCmpWithXStr(1, nullptr, 0));
    EXPECT_EQ(0, IntMaxCmpWithXStr(1, nullptr, 0, 1, &overflow));
    EXPECT_EQ(0, overflow);
    EXPECT_EQ(0, IntMaxCmpWithXStr(1, nullptr, 0, 1, nullptr));
    EXPECT_EQ(noEvents, device().events);
}

} // namespace
} // namespace pendra::test
