#include "vars/variable_access.h"

#include <cstring>

#include "apply/channel_list.h"
#include "common/bounded_text.h"
#include "common/keywords.h"
#include "common/number.h"
#include "common/trace.h"
#include "common/tree_access.h"

namespace pendra {
namespace {

// What a caller handed in, read within its 128 bytes.
struct GivenValue {
    explicit GivenValue(const char* value) : fits(strnlen(value, ZEPVAR_VALUE_SIZE) < ZEPVAR_VALUE_SIZE) {
        copyText(text, value);
        number = parseInt(text);
    }
    char text[ZEPVAR_VALUE_SIZE];
    int32_t number = 0;
    bool fits;
    int32_t row = -1; // in the name table of an enumerated variable
};

char* fieldOf(const Section& section, uint16_t offset) {
    return static_cast<char*>(section.record) + offset;
}

int32_t numberOf(const Section& section, const Variable& variable) {
    int32_t number = 0;
    std::memcpy(&number, fieldOf(section, variable.offset), sizeof number);
    return number;
}

void storeNumber(const Section& section, uint16_t offset, int32_t number) {
    std::memcpy(fieldOf(section, offset), &number, sizeof number);
}

// ---- checks ----

int32_t refuseUnless(bool valid) {
    return valid ? kDone : kRefused;
}

// The trace names two of the enumerations shorter than their variables.
const char* traceNameOf(const Variable& variable) {
    if (variable.table == WlanEncrypModeArray) return "EncrypMode";
    if (variable.table == WlanEncrypTypeArray) return "EncrypType";
    return variable.leaf;
}

int32_t checkName(const Variable& variable, GivenValue& given) {
    given.row = SearchKeyArray(given.text, variable.table);
    logPrintf(kLogTrace, "Zep %s='%s' -> %d\n", traceNameOf(variable), given.text, given.row);
    return given.row < 0 ? kNotInTable : kDone;
}

// A stored 2 or more marks the setting as fixed; any number may replace a stored 0 or 1.
bool isUnlocked(int32_t stored, int32_t wanted) {
    return stored < 2 || stored == wanted;
}

// The numbers' meaning belongs to the roaming controller; what follows the fourth is not looked at.
bool isRoaming(const char* text) {
    constexpr int kNumbers = 4;
    int32_t numbers[kNumbers] = {};
    for (int32_t& number : numbers) {
        char* end = nullptr;
        number = clampToInt(std::strtol(text, &end, 10));
        if (end == text) return false;
        text = end;
    }
    return numbers[0] < 0 && numbers[1] >= 0 && numbers[2] >= 1 && numbers[3] >= 1;
}

bool isChannelOf(const char* channel, const char* channelList) {
    char list[128];
    copyText(list, channelList);
    return isChannelInList(channel, trim(list));
}

int32_t checkKind(const Section& section, const Variable& variable, GivenValue& given) {
    const char* partner = fieldOf(section, variable.partnerOffset);
    switch (variable.check) {
        case Check::rule:
            return validate_ZepData(given.text, partner);
        case Check::name:
            return checkName(variable, given);
        case Check::address:
            return refuseUnless(is_Valid_IP(given.text) == 1);
        case Check::netmask:
            return refuseUnless(is_Valid_Netmask(given.text) == 1);
        case Check::zeroOrOne:
            return refuseUnless(is_in_range(given.number, 0, 1) == 1);
        case Check::locked:
            return refuseUnless(isUnlocked(numberOf(section, variable), given.number));
        case Check::channel:
            return refuseUnless(isChannelOf(given.text, partner));
        case Check::roaming:
            return refuseUnless(isRoaming(given.text));
        default:
            return kDone;
    }
}

// The kind's own code first; then the value must fit the field of a text.
int32_t checkValue(const Section& section, const Variable& variable, GivenValue& given) {
    const int32_t code = checkKind(section, variable, given);
    if (code != kDone || variable.kind == Kind::number) return code;
    return refuseUnless(given.fits && std::strlen(given.text) < variable.capacity);
}

// ---- storing and reading ----

void store(const Section& section, const Variable& variable, const GivenValue& given) {
    if (variable.kind == Kind::number) {
        storeNumber(section, variable.offset, given.number);
        return;
    }
    copyTextBounded(fieldOf(section, variable.offset), variable.capacity, given.text);
    if (variable.kind == Kind::name) storeNumber(section, variable.partnerOffset, given.row);
}

bool isLive(Kind kind) {
    return kind == Kind::liveText || kind == Kind::liveNumber || kind == Kind::expandedText;
}

NodePath pathAnswer(const Section& section, const Variable& variable) {
    const char* leaf = variable.answer == nullptr ? variable.leaf : variable.answer;
    return *leaf == '/' ? NodePath("%s", leaf) : NodePath("%s/%s", section.base, leaf);
}

int32_t answerNumber(const Request& request, int32_t number) {
    char text[16];
    formatText(text, "%d", number);
    return request.answer(text);
}

// The text of a node, with the device's keywords replaced where that is asked for.
int32_t answerNode(const Request& request, const char* path, bool expand) {
    char text[kKeywordTextSize];
    readNode(text, path);
    return request.answer(expand ? changeZepKeywordsBounded(text, sizeof text) : text);
}

// A path is put together only where it is the answer or leads to it.
int32_t get(const Section& section, const Variable& variable, const Request& request) {
    if (!request.asksForPath()) {
        if (variable.kind == Kind::number) return answerNumber(request, numberOf(section, variable));
        if (!isLive(variable.kind)) return request.answer(fieldOf(section, variable.offset));
    }
    const NodePath answer = pathAnswer(section, variable);
    if (request.asksForPath()) return request.answer(answer);
    const char* source = variable.source == nullptr ? static_cast<const char*>(answer) : variable.source;
    if (variable.kind == Kind::liveNumber) return answerNumber(request, readNodeInt(source, variable.whenAbsent));
    return answerNode(request, source, variable.kind == Kind::expandedText);
}

int32_t access(const Section& section, const Variable& variable, const Request& request) {
    if (variable.check == Check::readOnly) return request.gets() ? get(section, variable, request) : kRefused;
    if (request.checks()) {
        GivenValue given(request.value);
        const int32_t code = checkValue(section, variable, given);
        if (code != kDone) return code;
        if (request.sets()) {
            store(section, variable, given);
            return kDone;
        }
    }
    if (request.gets()) return get(section, variable, request);
    // An enumerated value that is only validated answers 2 when it is in its table, 10 when not.
    return variable.kind == Kind::name ? kRefused : kDone;
}

} // namespace

int32_t Request::answer(const char* text) const {
    copyTextBounded(value, ZEPVAR_VALUE_SIZE, text);
    return kDone;
}

int32_t accessVariable(const Section& section, const char* leaf, const Request& request) {
    for (const Variable& variable : section.variables)
        if (std::strcmp(variable.leaf, leaf) == 0) return access(section, variable, request);
    return kRefused;
}

} // namespace pendra
