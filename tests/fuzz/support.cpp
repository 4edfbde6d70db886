#include "fuzz/support.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "pendra/pendra.h"

namespace pendra::fuzz {

std::string currentInput;

namespace {

constexpr char kReservedFill = 0x5A;

[[noreturn]] void report(std::string_view property, std::string_view detail) {
    std::fprintf(stderr, "property violated: %.*s\n%.*s\n", static_cast<int>(property.size()), property.data(),
                 static_cast<int>(detail.size()), detail.data());
    if (!currentInput.empty()) std::fprintf(stderr, "input: %s\n", currentInput.c_str());
    std::abort();
}

const std::map<std::string, std::string>& routerTree(int minor) {
    const auto load = [](int wanted) {
        test::FakeDevice device;
        test::loadRouter(device, wanted);
        return device.tree;
    };
    static const std::map<std::string, std::string> trees[] = {load(0), load(1)};
    return trees[minor];
}

bool isRewrittenAnyway(const std::string& event) {
    return event.find("/accesscontrol/wlacmode=") != std::string::npos ||
           event.rfind("set /runtime/apcloninginfo/extendersite/", 0) == 0;
}

template <size_t Capacity>
void checkText(const char (&field)[Capacity], const char* name) {
    require(std::memchr(field, '\0', Capacity) != nullptr, "a text of the record ends within its field", name);
}

#define CHECK_TEXT(field) checkText(field, #field)

void checkIsp(const ZepIsp& isp) {
    CHECK_TEXT(isp.CountryName);
    CHECK_TEXT(isp.IspName);
    CHECK_TEXT(isp.EncapsulationMode);
    CHECK_TEXT(isp.path);
    require(isp.encapModeIdx >= -1 && isp.encapModeIdx < 2, "encapModeIdx is a row");
}

void checkSite(const ZepExtenderSite& site) {
    CHECK_TEXT(site.ConnRefSiteBSSID);
    CHECK_TEXT(site.WirelessType);
    CHECK_TEXT(site.WirelessName);
    CHECK_TEXT(site.EncryptionKey);
    CHECK_TEXT(site.path);
    require(site.wirelessTypeIdx >= -1 && site.wirelessTypeIdx < 2, "wirelessTypeIdx is a row");
}

void checkUpLink(const ZepUpLink& upLink) {
    CHECK_TEXT(upLink.HardwareSupport);
    CHECK_TEXT(upLink.HardwareType);
    CHECK_TEXT(upLink.ConnType);
    CHECK_TEXT(upLink.LoginUserName);
    CHECK_TEXT(upLink.LoginPassword);
    CHECK_TEXT(upLink.IP);
    CHECK_TEXT(upLink.NetMask);
    CHECK_TEXT(upLink.Gateway);
    CHECK_TEXT(upLink.DNS);
    CHECK_TEXT(upLink.path);
    CHECK_TEXT(upLink.LoginUserNameRule);
    CHECK_TEXT(upLink.LoginPasswordRule);
    checkIsp(upLink.dsl);
    checkIsp(upLink.apn);
    checkSite(upLink.extenderSite);
    require(upLink.connTypeIdx >= -1 && upLink.connTypeIdx < 4, "connTypeIdx is a row");
    require(upLink.hardwareTypeIdx >= -1 && upLink.hardwareTypeIdx < 6, "hardwareTypeIdx is a row");
    const std::string_view reserved(upLink.reserved, sizeof upLink.reserved);
    require(reserved.find_first_not_of(kReservedFill) == std::string_view::npos, "the reserved area is left alone");
}

void checkRadio(const ZepWireless& radio) {
    CHECK_TEXT(radio.WirelessBSSID);
    CHECK_TEXT(radio.WirelessName);
    CHECK_TEXT(radio.EncryptionMode);
    CHECK_TEXT(radio.EncryptionType);
    CHECK_TEXT(radio.EncryptionKey);
    CHECK_TEXT(radio.Country);
    CHECK_TEXT(radio.ChannelList);
    CHECK_TEXT(radio.Channel);
    CHECK_TEXT(radio.path);
    CHECK_TEXT(radio.WirelessNameRule);
    CHECK_TEXT(radio.EncryptionKeyRule);
    CHECK_TEXT(radio.accessControl.path);
    require(radio.encrypModeIdx >= -1 && radio.encrypModeIdx < 5, "encrypModeIdx is a row");
    require(radio.encrypTypeIdx >= -1 && radio.encrypTypeIdx < 6, "encrypTypeIdx is a row");
    for (const ZepAcRule& rule : radio.accessControl.acRule) {
        CHECK_TEXT(rule.MAC);
        CHECK_TEXT(rule.path);
    }
}

void checkDevice(const ZepDevice& device) {
    CHECK_TEXT(device.DeviceName);
    CHECK_TEXT(device.DevicePwd);
    CHECK_TEXT(device.DeviceType);
    CHECK_TEXT(device.EasyRoaming);
    CHECK_TEXT(device.path);
    CHECK_TEXT(device.DeviceNameRule);
    CHECK_TEXT(device.DevicePwdRule);
    CHECK_TEXT(device.safetyWdn.path);
}

} // namespace

void require(bool holds, std::string_view property, std::string_view detail) {
    if (!holds) report(property, detail);
}

void requireEqual(int64_t actual, int64_t expected, std::string_view what) {
    if (actual != expected) report(what, std::to_string(actual) + " instead of " + std::to_string(expected));
}

void requireEqual(std::string_view actual, std::string_view expected, std::string_view what) {
    if (actual != expected)
        report(what, "\"" + std::string(actual) + "\" instead of \"" + std::string(expected) + "\"");
}

std::string_view Input::takeAll() {
    const std::string_view all = rest_;
    rest_ = {};
    return all;
}

std::string Input::line() {
    const size_t end = std::min(rest_.find('\n'), rest_.size());
    const std::string_view line = rest_.substr(0, end);
    rest_.remove_prefix(std::min(end + 1, rest_.size()));
    return std::string(line.substr(0, line.find('\0')));
}

int32_t Input::number() {
    const size_t end = std::min(rest_.find_first_of(" \n"), rest_.size());
    const std::string word(rest_.substr(0, end));
    rest_.remove_prefix(std::min(end + 1, rest_.size()));
    return static_cast<int32_t>(std::clamp<long>(std::strtol(word.c_str(), nullptr, 10), INT_MIN, INT_MAX));
}

bool Input::flag(char letter) {
    if (!beginsWith(letter)) return false;
    rest_.remove_prefix(1);
    return true;
}

std::string Input::text() {
    const std::string_view all = takeAll();
    return std::string(all.substr(0, all.find('\0')));
}

Buffer::Buffer(std::string_view text) : bytes_(text.begin(), text.end()) {
    bytes_.push_back('\0');
    bytes_.shrink_to_fit();
}

std::string Buffer::text() const {
    const size_t end = all().find('\0');
    require(end != std::string_view::npos, "a result text ends within its buffer");
    return std::string(all().substr(0, end));
}

int32_t clampTo(int32_t value, int32_t low, int32_t high) {
    return std::clamp(value, low, high);
}

void startDevice(int minor, bool trace) {
    test::resetLibrary();
    test::device() = {};
    test::device().tree = routerTree(minor);
    daemon_log_file_size_k = 0;
    daemon_log_level = trace ? 7 : 3;
}

void readTreeLines(Input& input) {
    while (input.beginsWith('/')) {
        const std::string line = input.line();
        const size_t equals = line.find('=');
        if (equals != std::string::npos) test::device().tree[line.substr(0, equals)] = line.substr(equals + 1);
    }
}

void guardRecord() {
    std::memset(zepXmlData.device.upLink.reserved, kReservedFill, sizeof zepXmlData.device.upLink.reserved);
}

void checkRecord() {
    CHECK_TEXT(zepXmlData.specVersion.path);
    CHECK_TEXT(zepXmlData.setMsg);
    CHECK_TEXT(zepXmlData.tmpPath);
    CHECK_TEXT(zepXmlData.scriptPath);
    checkDevice(zepXmlData.device);
    checkUpLink(zepXmlData.device.upLink);
    for (const ZepWireless& radio : zepXmlData.device.wireless)
        checkRadio(radio);
}

std::vector<std::string> unexpectedRewrites() {
    std::vector<std::string> writes = test::device().treeWrites();
    std::erase_if(writes, isRewrittenAnyway);
    return writes;
}

bool treeListsAreSound() {
    for (const char* band : {"2.4", "5"}) {
        const std::string list = "/lan/wireless" + std::string(band) + ":1/accesscontrol/acrule";
        const auto& tree = test::device().tree;
        if (tree.count(list + "#") != 0) return false;
        size_t listed = 0;
        for (const auto& [path, value] : tree)
            if (path.rfind(list + ":", 0) == 0) listed++;
        size_t numbered = 0;
        for (int rule = 1; tree.count(list + ":" + std::to_string(rule) + "/mac") != 0; rule++)
            numbered += 1 + tree.count(list + ":" + std::to_string(rule) + "/active");
        if (listed != numbered) return false;
    }
    return true;
}

} // namespace pendra::fuzz

// The fuzzer starts its merges by system(), before any input: those are run for real.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
    pendra::test::device().runShell = true;
    return 0;
}
