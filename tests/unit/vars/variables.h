// Calls of the variable interface as a host makes them: a value buffer of 128 bytes, which nothing may leave.
#pragma once

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include "support/fake_device.h"
#include "unit/common/guarded_buffer.h"

namespace pendra::test {

// A return code and what the value buffer holds afterwards.
struct Answer {
    int32_t code;
    std::string value;

    bool operator==(const Answer&) const = default;
};

inline void PrintTo(const Answer& answer, std::ostream* output) {
    *output << answer.code << " '" << answer.value << "'";
}

// A text longer than the buffer reaches beyond it, as a careless caller's would.
inline Answer call(const std::string& name, const std::string& value, uint32_t flags) {
    GuardedBuffer buffer(std::max<size_t>(ZEPVAR_VALUE_SIZE, value.size() + 1), value);
    const int32_t code = setget_ZepVar(name.c_str(), buffer.data(), flags);
    EXPECT_TRUE(buffer.intact()) << name;
    return {code, buffer.text()};
}

inline Answer getVariable(const std::string& name) {
    return call(name, "stale", ZEPVAR_GET);
}

inline Answer pathOf(const std::string& name) {
    return call(name, "stale", ZEPVAR_GET | ZEPVAR_PATH);
}

inline int32_t setVariable(const std::string& name, const std::string& value) {
    return call(name, value, ZEPVAR_SET).code;
}

inline int32_t validate(const std::string& name, const std::string& value) {
    return call(name, value, ZEPVAR_VALIDATE).code;
}

// The whole record, for "nothing else changed".
inline std::string recordBytes() {
    return {reinterpret_cast<const char*>(&zepXmlData), sizeof zepXmlData};
}

inline ZepUpLink& upLink() {
    return zepXmlData.device.upLink;
}

// A radio, its names and its node.
struct Radio {
    ZepWireless& record;
    std::string name; // "zep_Wl2_"
    std::string base; // "/lan/wireless2.4:1"
};

inline std::vector<Radio> radios() {
    return {{zepXmlData.device.wireless[0], "zep_Wl2_", "/lan/wireless2.4:1"},
            {zepXmlData.device.wireless[1], "zep_Wl5_", "/lan/wireless5:1"}};
}

template <size_t Capacity>
void fill(char (&field)[Capacity], const std::string& text) {
    ASSERT_LT(text.size(), Capacity);
    std::copy(text.begin(), text.end(), field);
    field[text.size()] = '\0';
}

// The commands that write the result document.
inline Events resultDocument(int32_t code, const std::string& message, int32_t waitSeconds) {
    const std::string file = std::string(zepXmlData.tmpPath) + "/zepset_result.xml";
    return {"run echo '<?xml version=\"1.0\" ?>' > " + file,
            "run echo '<root>' >> " + file,
            "run echo ' <ZepSetResult>" + std::to_string(code) + "</ZepSetResult>' >> " + file,
            "run echo ' <ZepSetMsg>" + message + "</ZepSetMsg>' >> " + file,
            "run echo ' <ZepGetWaitSec>" + std::to_string(waitSeconds) + "</ZepGetWaitSec>' >> " + file,
            "run echo '</root>' >> " + file};
}

} // namespace pendra::test
