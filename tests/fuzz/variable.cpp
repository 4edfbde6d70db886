// Variables: lines "/path=value" for the device's tree, then lines "FLAGS NAME=VALUE", one call each.
#include <cstring>

#include "fuzz/reference.h"
#include "fuzz/support.h"

using namespace pendra::fuzz;
using pendra::test::device;

namespace {

struct Call {
    std::string name;
    std::string value;
    uint32_t flags;
    bool gets() const { return (flags & ZEPVAR_GET) != 0; }
    bool sets() const { return (flags & ZEPVAR_SET) != 0; }
};

struct Outcome {
    int32_t code;
    std::string value;
};

std::string converted(const std::string& text, int32_t direction) {
    const char* result = cvtZep_XmlPathVsVarName(text.c_str(), direction);
    return result == nullptr ? "" : result;
}

// Actions answer to a path as well.
bool isAction(const std::string& name) {
    const std::string plain = name.rfind('/', 0) == 0 ? converted(name, 0) : name;
    return plain.rfind("zep_Act", 0) == 0;
}

Outcome perform(const std::string& name, const std::string& value, uint32_t flags) {
    Buffer buffer(ZEPVAR_VALUE_SIZE, '\0');
    std::memcpy(buffer.data(), value.data(), std::min<size_t>(value.size(), ZEPVAR_VALUE_SIZE - 1));
    Buffer nameText(name);
    const int32_t code = setget_ZepVar(nameText.data(), buffer.data(), flags);
    return {code, buffer.text()};
}

bool isKnownCode(int32_t code) {
    for (const int32_t known : {0, 1, 2, 3, 10, 11, 20, 21})
        if (code == known) return true;
    return false;
}

bool equalsRecord(const ZepXmlData& before) {
    return std::memcmp(&before, &zepXmlData, sizeof before) == 0;
}

// A set and a check of the same value agree: an enumerated value that is only checked answers 2, and a section that
// cannot be set answers 1 before anything else.
void checkAgreement(int32_t set, int32_t checked) {
    if (set == 0) return require(checked == 0 || checked == 2, "what can be set is valid");
    if (set != 1) requireEqual(checked, set, "a check and a set give the same code");
}

// The code of a set, from the rules and validators alone; nothing for the names that are not listed.
std::optional<int32_t> expectedCode(const Call& call) {
    const ZepDevice& device = zepXmlData.device;
    const ZepUpLink& upLink = device.upLink;
    const auto needs = [&](bool configurable, int32_t code) { return configurable ? code : 1; };
    const auto rule = [&](const char* text) { return referenceValidate(call.value, text); };
    if (call.name == "zep_DeviceName") return rule(device.DeviceNameRule);
    if (call.name == "zep_DevicePwd") return rule(device.DevicePwdRule);
    if (call.name == "zep_Upl_LoginUserName") return needs(upLink.Configurable != 0, rule(upLink.LoginUserNameRule));
    if (call.name == "zep_Upl_LoginPassword") return needs(upLink.Configurable != 0, rule(upLink.LoginPasswordRule));
    for (const auto& [prefix, radio] : {std::pair<std::string, const ZepWireless&>{"zep_Wl2_", device.wireless[0]},
                                        {"zep_Wl5_", device.wireless[1]}}) {
        const bool configurable = radio.Configurable != 0;
        if (call.name == prefix + "WirelessName") return needs(configurable, rule(radio.WirelessNameRule));
        if (call.name == prefix + "EncryptionKey") return needs(configurable, rule(radio.EncryptionKeyRule));
    }
    return std::nullopt;
}

// Addresses must be valid and fit their fields, flags be 0 or 1.
void checkRefusals(const Call& call, int32_t code) {
    if (const auto expected = expectedCode(call)) return requireEqual(code, *expected, "a rule decides");
    if (code != 0) return;
    const bool fits = call.value.size() < 16;
    for (const char* name : {"zep_Upl_IP", "zep_Upl_Gateway", "zep_Upl_DNS"})
        if (call.name == name) require(fits && referenceIsAddress(call.value).value_or(true), "an address", call.value);
    if (call.name == "zep_Upl_NetMask")
        require(fits && referenceIsNetmask(call.value).value_or(true), "a netmask", call.value);
    const bool isFlag = call.name.rfind("zep_Wdn_", 0) == 0 || call.name == "zep_Upl_Ets_Survey";
    const auto number = referenceNumber(call.value);
    if (isFlag) require(!number || *number == 0 || *number == 1, "a flag", call.value);
}

// The text comes back; a number in its own spelling, a name in the table's. A rule's Active goes into another rule.
void checkStored(const Call& call) {
    const Outcome stored = perform(call.name, "", ZEPVAR_GET);
    requireEqual(stored.code, 0, "what can be set can be read");
    if (call.name.ends_with("Active")) return;
    const auto number = referenceNumber(call.value);
    const bool isSame = lowerCase(stored.value) == lowerCase(call.value);
    require(isSame || !number || stored.value == std::to_string(*number), "a value that was set is read back",
            call.name + "=" + call.value + " gives " + stored.value);
}

// A name and its document path are two spellings of one variable.
void checkSpellings(const Call& call, const Outcome& outcome) {
    if (call.name.find('/') != std::string::npos || call.name.size() > 48) return;
    const std::string path = converted(call.name, 1);
    requireEqual(converted(path, 0), call.name, "a name survives its path");
    const Outcome byPath = perform(path, "", call.flags);
    requireEqual(byPath.code, 0, "a variable is found by its path");
    requireEqual(byPath.value, outcome.value, "a variable has one value by either spelling");
}

void checkGet(const Call& call, const Outcome& outcome) {
    if (outcome.code == 0) return checkSpellings(call, outcome);
    const bool isName = call.name.rfind("zep_", 0) == 0;
    if (isName) requireEqual(outcome.value, "", "a get that is refused leaves nothing in the buffer");
}

void checkCall(const Call& call) {
    const ZepXmlData before = zepXmlData;
    device().forget();
    const Outcome check = perform(call.name, call.value, ZEPVAR_VALIDATE);
    require(equalsRecord(before), "a check leaves the record as it was", call.name);
    const Outcome outcome = perform(call.name, call.value, call.flags);
    require(isKnownCode(outcome.code), "a code of the list", std::to_string(outcome.code));
    require(device().events.empty(), "a variable writes and runs nothing", call.name);
    if (call.sets() && !call.gets()) checkRefusals(call, outcome.code);
    const bool stores = call.sets() && outcome.code == 0;
    if (!stores) require(equalsRecord(before), "a refused value leaves the record as it was", call.name);
    if (call.sets() && !call.gets()) checkAgreement(outcome.code, check.code);
    if (stores && !call.gets()) checkStored(call);
    if (call.gets() && !call.sets()) checkGet(call, outcome);
}

void readCall(Input& input) {
    Call call;
    call.flags = static_cast<uint32_t>(input.number());
    const std::string pair = input.line();
    call.name = pair.substr(0, pair.find('='));
    if (call.name.size() < pair.size()) call.value = pair.substr(call.name.size() + 1, ZEPVAR_VALUE_SIZE - 1);
    if (isAction(call.name))
        perform(call.name, call.value, call.flags);
    else
        checkCall(call);
    Buffer wholePair(pair);
    validate_ZepVar2(wholePair.data());
    checkRecord();
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const bool trace = input.flag('l');
    startDevice(1, trace);
    readTreeLines(input);
    guardRecord();
    init_ZepVar();
    for (int call = 0; call < 8 && !input.empty(); call++)
        readCall(input);
    return 0;
}
