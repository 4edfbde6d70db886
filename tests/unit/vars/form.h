// Posting a form to a device whose record is filled.
#pragma once

#include "variables.h"

namespace pendra::test {

struct Posted {
    int32_t code;
    std::string errorText;

    bool operator==(const Posted&) const = default;
};

inline void PrintTo(const Posted& posted, std::ostream* output) {
    *output << posted.code << " '" << posted.errorText << "'";
}

// The text lies in memory of exactly its size.
inline Posted post(const std::string& text, char separator = '&', int32_t apply = 0) {
    const std::vector<char> exact(text.c_str(), text.c_str() + text.size() + 1);
    GuardedBuffer errorText(128, "stale");
    const int32_t code = do_ZepVar_Parser(exact.data(), separator, errorText.data(), apply);
    EXPECT_TRUE(errorText.intact());
    return {code, errorText.text()};
}

class FormTest : public DeviceTest {
  protected:
    FormTest() {
        loadRouter(device());
        init_ZepVar();
        device().forget();
    }

    static std::string ispName() { return upLink().dsl.IspName; }
    static std::string countryName() { return upLink().dsl.CountryName; }
    static void clearProvider() { upLink().dsl = {}; }
};

// Short names for two variables that take every text.
inline const std::string kIsp = "zep_Upl_Dsl_IspName";
inline const std::string kCountry = "zep_Upl_Dsl_CountryName";
inline const Posted kAccepted = {0, ""};

} // namespace pendra::test
