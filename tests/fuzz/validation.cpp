// Validation: a rule and a value on two lines. Codes are the reference's; the other validators see the value too.
#include "fuzz/reference.h"
#include "fuzz/support.h"

using namespace pendra::fuzz;

namespace {

void checkRule(Buffer& value, Buffer& rule) {
    const std::string valueBefore = value.text();
    const std::string ruleBefore = rule.text();
    requireEqual(validate_ZepData(value.data(), rule.data()), referenceValidate(valueBefore, ruleBefore), "a code");
    requireEqual(value.text(), valueBefore, "the value is as before");
    requireEqual(rule.text(), ruleBefore, "the rule is as before");
    requireEqual(validate_ZepData(value.data(), nullptr), valueBefore.empty() ? 3 : 0, "without a rule");
    requireEqual(validate_ZepData(nullptr, rule.data()), 3, "without a value");
}

void checkAddresses(const std::string& value, const std::string& mask) {
    const auto isAddress = referenceIsAddress(value);
    const auto isMask = referenceIsNetmask(mask);
    if (!isAddress || !isMask) return;
    requireEqual(is_Valid_IP(value.c_str()), *isAddress, "an address");
    requireEqual(is_Valid_Netmask(mask.c_str()), *isMask, "a netmask");
    requireEqual(is_Valid_IP_CheckMask(mask.c_str(), value.c_str(), value.c_str()), *isAddress && *isMask,
                 "an address is in its own subnet");
}

void checkKeys(const std::string& value) {
    requireEqual(is_Valid_WpaPskKey(value.c_str()), referenceIsWpaKey(value), "a WPA key");
    for (const unsigned length : {5U, 13U})
        requireEqual(is_Valid_WepKey(value.c_str(), length), referenceIsWepKey(value, length), "a WEP key");
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    Buffer rule(input.line());
    Buffer value(input.text());
    checkRule(value, rule);
    checkAddresses(value.text(), rule.text());
    checkKeys(value.text());
    return 0;
}
