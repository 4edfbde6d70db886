#include "vars/form_intake.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "apply/application.h"
#include "apply/external_calls.h"
#include "apply/verification.h"
#include "common/bounded_text.h"
#include "common/trace.h"
#include "setupdoc/record_dump.h"
#include "setupdoc/result_document.h"
#include "setupdoc/snapshot.h"
#include "vars/variable_access.h"

namespace pendra {

VariableState variableState;

namespace {

constexpr size_t kNameSize = 32;

bool isWhiteSpace(char character) {
    return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

bool isLineEnd(char character) {
    return character == '\r' || character == '\n';
}

// Copies the first characters of a text that has no NUL of its own, cut to the buffer.
template <size_t Capacity>
void copyPart(char (&destination)[Capacity], const char* start, const char* end) {
    const size_t length = std::min(static_cast<size_t>(end - start), Capacity - 1);
    std::memcpy(destination, start, length);
    destination[length] = '\0';
}

// Walks over the pairs of a form.
class FormReader {
  public:
    FormReader(const char* text, char separator) : next_(text), separator_(separator) { skipGap(); }

    // Moves to the next pair; false when the list ends.
    bool read() {
        if (wasLast_) return false;
        const char* equals = std::strchr(next_, '=');
        if (equals == nullptr || equals == next_) return false;
        readName(equals);
        readValue(equals + 1);
        return true;
    }
    [[nodiscard]] const char* name() const { return name_; }
    char* value() { return value_; }

  private:
    [[nodiscard]] bool isGap(char character) const { return isWhiteSpace(character) || character == separator_; }

    // A NUL separator ends nothing but the text itself.
    void skipGap() {
        while (*next_ != '\0' && isGap(*next_))
            next_++;
    }

    // A longer name is cut and not refused: it then names no variable.
    void readName(const char* equals) {
        const char* end = equals;
        while (end > next_ && isWhiteSpace(end[-1]))
            end--;
        copyPart(name_, next_, end);
    }

    // A line end also ends a value, unless the separator is one itself.
    [[nodiscard]] bool endsValue(char character) const {
        return character == '\0' || character == separator_ || (!isLineEnd(separator_) && isLineEnd(character));
    }

    void readValue(const char* start) {
        while (*start == ' ' || *start == '\t')
            start++;
        const char* end = start;
        while (!endsValue(*end))
            end++;
        wasLast_ = *end == '\0';
        next_ = end;
        skipGap();
        while (end > start && isGap(end[-1]))
            end--;
        decode(start, end);
    }

    void decode(const char* start, const char* end) {
        std::memset(value_, 0, sizeof value_);
        const auto length = static_cast<int32_t>(std::min<std::ptrdiff_t>(end - start, INT32_MAX));
        if (length > 0) strncpy_HtmlDecode_(value_, start, sizeof value_ - 1, length);
        value_[sizeof value_ - 1] = '\0';
    }

    const char* next_;
    char separator_;
    bool wasLast_ = false;
    char name_[kNameSize] = "";
    char value_[ZEPVAR_VALUE_SIZE] = "";
};

void tell(char* errorText, const char* text) {
    if (errorText != nullptr) copyTextBounded(errorText, ZEPVAR_VALUE_SIZE, text);
}

int32_t setPairs(const char* text, char separator, char* errorText) {
    FormReader form(text, separator);
    while (form.read()) {
        if (isEmpty(form.name())) return kRefused;
        const int32_t code = set_ZepVar(form.name(), form.value());
        if (code == kDone) continue;
        write_ZepXml_ResultXml(code, form.name(), 0);
        tell(errorText, form.name());
        return code;
    }
    return kDone;
}

void verifyAndApply(bool apply) {
    if (Verify_ZepXml() != 1) return;
    int32_t waitSeconds = 0;
    if (apply) {
        if (Apply_ZepXmlToDevice() != 1) return;
        compute_ExeFlag();
        waitSeconds = zepXmlData.exeWaitSec;
    }
    write_ZepXml_ResultXml(kResultDone, "", waitSeconds);
}

void traceCall(const char* function, const char* name, const char* value, int32_t code) {
    traceLine(function, "'%s'='%.127s', ret=%d\n", name == nullptr ? "" : name, value == nullptr ? "" : value, code);
}

} // namespace
} // namespace pendra

using namespace pendra;

extern "C" {

void init_ZepVar(void) {
    if (variableState.firstInit) zepXmlData.pre_exeflag = 0;
    variableState.firstInit = false;
    restore_XmlZepStatus(kFull);
}

int32_t do_ZepVar_Commit(void) {
    return do_ZepXml_Commit();
}

int32_t set_ZepVar(const char* name, char* value) {
    return setget_ZepVar(name, value, ZEPVAR_SET);
}

int32_t get_ZepVar(const char* name, char* buffer, int32_t wantPath) {
    const int32_t code = setget_ZepVar(name, buffer, ZEPVAR_GET | (wantPath != 0 ? ZEPVAR_PATH : 0));
    traceCall("get_ZepVar", name, buffer, code);
    return code;
}

// For pages: it never fails, the marker stands where a variable could not be read.
char* getZepVar(const char* name) {
    char* answer = variableState.answer;
    const int32_t code = setget_ZepVar(name, answer, ZEPVAR_GET);
    if (code != kDone) copyText(variableState.answer, "**ERROR**");
    traceCall("getZepVar", name, answer, code);
    return answer;
}

int32_t validate_ZepVar(const char* name, char* value) {
    traceLine("validate_ZepVar", "'%s'='%.127s'\n", name == nullptr ? "" : name, value == nullptr ? "" : value);
    const int32_t code = setget_ZepVar(name, value, ZEPVAR_VALIDATE);
    traceLine("validate_ZepVar", "ret=%d\n", code);
    return code;
}

int32_t validate_ZepVar2(char* pair) {
    const char* equals = pair == nullptr ? nullptr : std::strchr(pair, '=');
    if (equals == nullptr) {
        traceLine("validate_ZepVar2", "Invalid data='%s'\n", pair == nullptr ? "" : pair);
        return kMalformed;
    }
    if (static_cast<size_t>(equals - pair) >= kNameSize) return kMalformed;
    char name[kNameSize];
    copyPart(name, pair, equals);
    // A pair need not have the room of a value buffer, and an action answers into it. One byte more keeps a value that
    // is too long from fitting.
    char value[ZEPVAR_VALUE_SIZE + 1];
    copyText(value, equals + 1);
    return validate_ZepVar(name, value);
}

int32_t do_ZepVar_Parser(const char* text, char separator, char* errorText, int32_t apply) {
    if (text == nullptr) text = "";
    traceEntry("do_ZepVar_Parser");
    logPrintf(kLogInfo, "---- Received Zep Var Data Begin ----\n%s\n---- Received Zep Var Data End ----\n", text);
    const int32_t code = setPairs(text, separator, errorText);
    if (code != kDone) return code;
    XmlErrMsg_LostKey = reportMissingElement;
    verifyAndApply(apply != 0);
    dumpRecord();
    logPrintf(kLogTrace, "done, ret=%d\n", zepXmlData.setResult);
    tell(errorText, zepXmlData.setMsg);
    return zepXmlData.setResult;
}

} // extern "C"
