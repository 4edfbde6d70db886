#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "common/bounded_text.h"
#include "common/number.h"
#include "pendra/common.h"

namespace {

enum RuleResult : int32_t { kValid = 0, kMissing = 3, kLength = 10, kCharacter = 11, kAboveMax = 20, kBelowMin = 21 };

constexpr int kFieldsMax = 32;

// Characters are signed on every target, so that bytes of 128 and above count as control characters.
int signedCharacter(char character) {
    return static_cast<signed char>(character);
}

// A rule split into its fields. A field that is present but empty reads as 0; one that is absent has its default.
class Rule {
  public:
    explicit Rule(const char* text) {
        pendra::copyText(text_, text);
        split();
    }

    [[nodiscard]] int count() const { return count_; }
    [[nodiscard]] const char* field(int index) const { return fields_[index]; }

    [[nodiscard]] int integer(int index, int whenAbsent) const {
        return index < count_ ? pendra::parseInt(fields_[index]) : whenAbsent;
    }
    [[nodiscard]] float real(int index, float whenAbsent) const {
        return index < count_ ? toReal(fields_[index]) : whenAbsent;
    }

    // Read as a real number and narrowed to single precision, as the limits are stored; a text that is no number reads
    // as 0, "nan" too.
    static float toReal(const char* text) {
        const auto value = static_cast<float>(std::strtod(text, nullptr));
        return std::isnan(value) ? 0.0F : value;
    }

  private:
    // In place: a comma ends a field; "\\" and "\," stand for the character behind the backslash.
    void split() {
        fields_[count_++] = text_;
        char* write = text_;
        for (const char* read = text_; *read != '\0'; read++) {
            if (*read == ',') {
                if (count_ == kFieldsMax) break; // the rest of the rule is ignored
                *write++ = '\0';
                fields_[count_++] = write;
                continue;
            }
            if (read[0] == '\\' && (read[1] == '\\' || read[1] == ',')) read++;
            *write++ = *read;
        }
        *write = '\0';
    }

    char text_[256];
    const char* fields_[kFieldsMax];
    int count_ = 0;
};

int32_t checkNumber(const char* value, const Rule& rule) {
    const float maximum = rule.real(1, 1e38F);
    const float minimum = rule.real(2, -1e38F);
    const float number = Rule::toReal(value);
    if (number > maximum) return kAboveMax;
    return number < minimum ? kBelowMin : kValid;
}

bool hasControlCharacter(const char* value) {
    for (; *value != '\0'; value++)
        if (signedCharacter(*value) < 32 || signedCharacter(*value) == 127) return true;
    return false;
}

// "a-z" is a range; any other text means its first character alone, and an empty one nothing.
bool isInRangeField(char character, const char* field) {
    if (*field == '\0') return false;
    const bool isRange = field[1] == '-';
    const int first = signedCharacter(field[0]);
    const int last = isRange ? signedCharacter(field[2]) : first;
    return is_in_range(signedCharacter(character), first, last) == 1;
}

bool isInAnyRange(char character, const Rule& rule) {
    for (int index = 5; index < rule.count(); index++)
        if (isInRangeField(character, rule.field(index))) return true;
    return false;
}

int32_t checkText(const char* value, const Rule& rule) {
    const size_t length = std::strlen(value);
    const int measured = length > INT_MAX ? INT_MAX : static_cast<int>(length);
    if (measured > rule.integer(1, 9999) || measured < rule.integer(2, 1)) return kLength;
    if (rule.integer(3, 0) == 0 && hasControlCharacter(value)) return kCharacter;
    // With an allow list every character must be in a range, with a deny list none may be.
    const bool allowList = rule.integer(4, 0) != 0;
    for (; *value != '\0'; value++)
        if (isInAnyRange(*value, rule) != allowList) return kCharacter;
    return kValid;
}

} // namespace

extern "C" int32_t validate_ZepData(const char* value, const char* rule) {
    if (value == nullptr) return kMissing;
    if (rule == nullptr) return *value == '\0' ? kMissing : kValid;
    const Rule fields(rule);
    switch (fields.integer(0, 0)) {
        case 0:
            return checkText(value, fields);
        case 1:
            return checkNumber(value, fields);
        default:
            return kValid;
    }
}
