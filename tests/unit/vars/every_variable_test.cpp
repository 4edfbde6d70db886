// What holds for every variable: reading, paths, setting, checking, and what each refuses.
#include <cctype>

#include "variable_rows.h"

using pendra::test::Answer;
using pendra::test::call;
using pendra::test::device;
using pendra::test::DeviceTest;
using pendra::test::Events;
using pendra::test::getVariable;
using pendra::test::pathOf;
using pendra::test::ReadOnlyRow;
using pendra::test::recordBytes;
using pendra::test::rowsThat;
using pendra::test::setVariable;
using pendra::test::StoredRow;
using pendra::test::validate;

namespace {

template <typename Row>
std::string nameOf(const ::testing::TestParamInfo<Row>& info) {
    return info.param.name;
}

// The record without the fields of a variable.
std::string without(const StoredRow& row, std::string bytes) {
    const auto clear = [&bytes](const void* field, size_t size) {
        const auto offset = static_cast<const char*>(field) - reinterpret_cast<const char*>(&zepXmlData);
        if (field != nullptr) bytes.replace(static_cast<size_t>(offset), size, size, '\0');
    };
    clear(row.text, row.capacity);
    clear(row.number, sizeof *row.number);
    return bytes;
}

// A value of a wanted length that the variable's check takes.
std::string padded(const StoredRow& row, size_t length) {
    return row.good + std::string(length - row.good.size(), 'x');
}

class StoredVariable : public DeviceTest, public ::testing::WithParamInterface<StoredRow> {
  protected:
    StoredVariable() { pendra::test::prepareRecord(); }

    std::string name() const { return "zep_" + GetParam().name; }

    void expectStored(const std::string& value) const {
        const StoredRow& row = GetParam();
        if (row.text != nullptr) {
            EXPECT_EQ(value, row.text);
        }
        if (row.number != nullptr) {
            EXPECT_EQ(row.goodNumber, *row.number);
        }
    }
};

class CheckedVariable : public StoredVariable {};
class TextVariable : public StoredVariable {};
class EnumeratedVariable : public StoredVariable {};
class GatedVariable : public StoredVariable {};

TEST_P(StoredVariable, Set_StoresInItsFieldAndNowhereElse) {
    const StoredRow& row = GetParam();
    const std::string before = recordBytes();
    EXPECT_EQ((Answer{0, row.good}), call(name(), row.good, ZEPVAR_SET));
    expectStored(row.good);
    EXPECT_EQ(without(row, before), without(row, recordBytes()));
    EXPECT_EQ(Events{}, device().events);
}

TEST_P(StoredVariable, Get_GivesTheField) {
    const StoredRow& row = GetParam();
    ASSERT_EQ(0, setVariable(name(), row.good));
    const std::string before = recordBytes();
    EXPECT_EQ((Answer{0, row.good}), getVariable(name()));
    EXPECT_EQ(before, recordBytes());
    EXPECT_EQ(Events{}, device().events);
}

TEST_P(StoredVariable, Path_IsGivenInsteadOfTheValue) {
    const std::string before = recordBytes();
    EXPECT_EQ((Answer{0, GetParam().path}), pathOf(name()));
    EXPECT_EQ(before, recordBytes());
    EXPECT_EQ(Events{}, device().events);
}

TEST_P(StoredVariable, DocumentPath_NamesTheSameVariable) {
    const StoredRow& row = GetParam();
    const std::string path = cvtZep_XmlPathVsVarName(name().c_str(), 1);
    EXPECT_EQ(0, setVariable(path, row.good));
    expectStored(row.good);
    EXPECT_EQ((Answer{0, row.good}), getVariable(path));
    EXPECT_EQ((Answer{0, row.path}), pathOf(path));
    EXPECT_EQ(row.isEnumerated() ? 2 : 0, validate(path, row.good));
}

// Enumerated variables alone answer 2 for a value that is in their table.
TEST_P(StoredVariable, Validate_ChecksAndStoresNothing) {
    const StoredRow& row = GetParam();
    const std::string before = recordBytes();
    EXPECT_EQ((Answer{row.isEnumerated() ? 2 : 0, row.good}), call(name(), row.good, ZEPVAR_VALIDATE));
    EXPECT_EQ(before, recordBytes());
}

TEST_P(CheckedVariable, RefusedValue_GivesItsCodeAndStoresNothing) {
    const StoredRow& row = GetParam();
    const std::string before = recordBytes();
    EXPECT_EQ(row.badCode, setVariable(name(), row.bad));
    EXPECT_EQ(row.badCode, validate(name(), row.bad));
    EXPECT_EQ(row.badCode, call(name(), row.bad, ZEPVAR_SET | ZEPVAR_VALIDATE).code);
    EXPECT_EQ(before, recordBytes());
}

TEST_P(TextVariable, TextOfItsCapacity_IsRefusedAndOneShorterIsStored) {
    const StoredRow& row = GetParam();
    if (row.rule != nullptr) *row.rule = '\0'; // takes every length
    for (const size_t length : {row.capacity - 2, row.capacity - 1}) {
        const std::string value = padded(row, length);
        EXPECT_EQ(0, validate(name(), value)) << length;
        EXPECT_EQ(0, setVariable(name(), value)) << length;
        EXPECT_EQ((Answer{0, value}), getVariable(name()));
    }
    const std::string before = recordBytes();
    for (const size_t length : {row.capacity, row.capacity + 1, size_t{128}, size_t{129}, size_t{4096}}) {
        EXPECT_EQ(2, validate(name(), padded(row, length))) << length;
        EXPECT_EQ(2, setVariable(name(), padded(row, length))) << length;
    }
    EXPECT_EQ(before, recordBytes());
}

TEST_P(EnumeratedVariable, OverlongText_IsNotInTheTable) {
    const StoredRow& row = GetParam();
    const std::string before = recordBytes();
    for (const size_t length : {row.capacity - 1, row.capacity, size_t{127}, size_t{128}, size_t{4096}}) {
        EXPECT_EQ(10, validate(name(), padded(row, length))) << length;
        EXPECT_EQ(10, setVariable(name(), padded(row, length))) << length;
    }
    EXPECT_EQ(before, recordBytes());
}

// Exactly the caller's 128 bytes on the heap, where a sanitizer sees a step beyond them.
TEST_P(StoredVariable, ValueWithoutTerminator_IsReadWithinItsBytes) {
    const StoredRow& row = GetParam();
    for (const uint32_t flags : {ZEPVAR_SET, ZEPVAR_VALIDATE}) {
        std::vector<char> value(ZEPVAR_VALUE_SIZE, '1');
        const std::string before = recordBytes();
        setget_ZepVar(name().c_str(), value.data(), flags);
        EXPECT_EQ(std::string(ZEPVAR_VALUE_SIZE, '1'), std::string(value.begin(), value.end()));
        if (row.text != nullptr) {
            EXPECT_EQ(before, recordBytes());
        }
    }
}

TEST_P(GatedVariable, SectionThatIsNotConfigurable_RefusesASetAndNothingElse) {
    const StoredRow& row = GetParam();
    *row.gate = 0;
    const std::string before = recordBytes();
    EXPECT_EQ((Answer{1, row.good}), call(name(), row.good, ZEPVAR_SET));
    EXPECT_EQ(1, call(name(), row.bad, ZEPVAR_SET | ZEPVAR_VALIDATE).code);
    EXPECT_EQ((Answer{1, ""}), call(name(), row.good, ZEPVAR_SET | ZEPVAR_GET));
    EXPECT_EQ(row.badCode, validate(name(), row.bad));
    EXPECT_EQ(0, getVariable(name()).code);
    EXPECT_EQ((Answer{0, row.path}), pathOf(name()));
    EXPECT_EQ(before, recordBytes());
}

// Of an enumerated variable only a set or a get completes with 0.
TEST_P(StoredVariable, NeitherGetNorSetNorValidate_DoesNothing) {
    const int32_t code = GetParam().isEnumerated() ? 2 : 0;
    const std::string before = recordBytes();
    for (const uint32_t flags : {0U, ZEPVAR_PATH, 0x800U})
        EXPECT_EQ((Answer{code, "stale"}), call(name(), "stale", flags)) << flags;
    EXPECT_EQ(before, recordBytes());
}

TEST_P(StoredVariable, PathFlagOnASet_ChangesNothingOfIt) {
    const StoredRow& row = GetParam();
    EXPECT_EQ((Answer{0, row.good}), call(name(), row.good, ZEPVAR_SET | ZEPVAR_PATH));
    expectStored(row.good);
}

TEST_P(StoredVariable, NameThatGoesOn_IsUnknown) {
    for (const char* end : {"_X", "_", "X", " ", "_Validate_X"}) {
        SCOPED_TRACE(end);
        EXPECT_EQ((Answer{2, ""}), getVariable(name() + end));
        EXPECT_EQ(2, setVariable(name() + end, GetParam().good));
        EXPECT_EQ(2, validate(name() + end, GetParam().good));
    }
}

TEST_P(StoredVariable, LeafInOtherCase_IsUnknown) {
    std::string other = name();
    other.back() = static_cast<char>(std::islower(static_cast<unsigned char>(other.back())) != 0
                                         ? std::toupper(static_cast<unsigned char>(other.back()))
                                         : std::tolower(static_cast<unsigned char>(other.back())));
    EXPECT_EQ((Answer{2, ""}), getVariable(other));
    EXPECT_EQ(2, setVariable(other, GetParam().good));
}

INSTANTIATE_TEST_SUITE_P(All, StoredVariable, ::testing::ValuesIn(pendra::test::storedRows()), nameOf<StoredRow>);
INSTANTIATE_TEST_SUITE_P(All, CheckedVariable,
                         ::testing::ValuesIn(rowsThat(&StoredRow::isChecked, pendra::test::storedRows())),
                         nameOf<StoredRow>);
INSTANTIATE_TEST_SUITE_P(All, TextVariable,
                         ::testing::ValuesIn(rowsThat(&StoredRow::isPlainText, pendra::test::storedRows())),
                         nameOf<StoredRow>);
INSTANTIATE_TEST_SUITE_P(All, EnumeratedVariable,
                         ::testing::ValuesIn(rowsThat(&StoredRow::isEnumerated, pendra::test::storedRows())),
                         nameOf<StoredRow>);
INSTANTIATE_TEST_SUITE_P(All, GatedVariable,
                         ::testing::ValuesIn(rowsThat(&StoredRow::isGated, pendra::test::storedRows())),
                         nameOf<StoredRow>);

class ReadOnlyVariable : public DeviceTest, public ::testing::WithParamInterface<ReadOnlyRow> {
  protected:
    ReadOnlyVariable() {
        pendra::test::prepareRecord();
        pendra::test::provide(GetParam());
    }

    std::string name() const { return "zep_" + GetParam().name; }
};

class GatedReadOnlyVariable : public ReadOnlyVariable {};
class LiveVariable : public ReadOnlyVariable {};

TEST_P(ReadOnlyVariable, Get_GivesTheValue) {
    const std::string before = recordBytes();
    EXPECT_EQ((Answer{0, GetParam().value}), getVariable(name()));
    EXPECT_EQ(before, recordBytes());
    EXPECT_EQ(Events{}, device().events);
}

TEST_P(ReadOnlyVariable, Path_IsGivenInsteadOfTheValue) {
    EXPECT_EQ((Answer{0, GetParam().path}), pathOf(name()));
    EXPECT_EQ(Events{}, device().events);
}

TEST_P(ReadOnlyVariable, AnyModeWithoutGet_IsRefused) {
    const std::string before = recordBytes();
    for (const uint32_t flags : {0U, ZEPVAR_SET, ZEPVAR_VALIDATE, ZEPVAR_PATH, ZEPVAR_SET | ZEPVAR_VALIDATE,
                                 ZEPVAR_SET | ZEPVAR_PATH, ZEPVAR_VALIDATE | ZEPVAR_PATH})
        EXPECT_EQ((Answer{2, "1"}), call(name(), "1", flags)) << flags;
    EXPECT_EQ(before, recordBytes());
    EXPECT_EQ(Events{}, device().events);
}

TEST_P(GatedReadOnlyVariable, SectionThatIsNotConfigurable_RefusesASetWithItsOwnCode) {
    const ReadOnlyRow& row = GetParam();
    *row.gate = 0;
    EXPECT_EQ((Answer{1, "1"}), call(name(), "1", ZEPVAR_SET));
    EXPECT_EQ((Answer{2, "1"}), call(name(), "1", ZEPVAR_VALIDATE));
    EXPECT_EQ((Answer{0, row.path}), pathOf(name()));
}

TEST_P(LiveVariable, LongNode_IsCutTo127Characters) {
    const ReadOnlyRow& row = GetParam();
    for (const size_t length : {126, 127, 128, 1023, 2000}) {
        device().tree[row.node] = std::string(length, 'n');
        EXPECT_EQ((Answer{0, std::string(std::min<size_t>(length, 127), 'n')}), getVariable(name())) << length;
    }
}

TEST_P(LiveVariable, AbsentNode_IsEmpty) {
    const ReadOnlyRow& row = GetParam();
    device().tree.erase(row.node);
    EXPECT_EQ((Answer{0, ""}), getVariable(name()));
}

INSTANTIATE_TEST_SUITE_P(All, ReadOnlyVariable, ::testing::ValuesIn(pendra::test::readOnlyRows()), nameOf<ReadOnlyRow>);
INSTANTIATE_TEST_SUITE_P(All, GatedReadOnlyVariable,
                         ::testing::ValuesIn(rowsThat(&ReadOnlyRow::isGated, pendra::test::readOnlyRows())),
                         nameOf<ReadOnlyRow>);
INSTANTIATE_TEST_SUITE_P(All, LiveVariable,
                         ::testing::ValuesIn(rowsThat(&ReadOnlyRow::isLiveText, pendra::test::readOnlyRows())),
                         nameOf<ReadOnlyRow>);

} // namespace
