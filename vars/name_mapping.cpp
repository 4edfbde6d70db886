// The two spellings of a setting: variable name and document path.
#include <cstring>
#include <iterator>

#include "common/bounded_text.h"
#include "pendra/vars.h"

namespace pendra {
namespace {

enum Side { kPath, kName };

// The same place in both spellings. "??" stands for the two characters of a list index.
struct Pair {
    const char* text[2];
};

struct Row {
    Pair prefix;
    const Pair* subPrefixes = nullptr;
    int count = 0;
};

constexpr Pair kUpLink[] = {{{"DSL/", "Dsl_"}}, {{"APN/", "Apn_"}}, {{"ExtenderSite/", "Ets_"}}};
// (A "?" is escaped where "??/" would read as a trigraph.) The order counts: an element before the list's count, and
// both before the plain section.
constexpr Pair kWireless[] = {{{"AccessControl/WlAcLists/AcRule:?\?/", "Acl_R??_"}},
                              {{"AccessControl/WlAcLists/AcRule#", "Acl_AcRuleNo"}},
                              {{"AccessControl/", "Acl_"}}};
constexpr Pair kSurvey[] = {{{"Site:?\?/", "S??_"}}, {{"Site#", "SiteNo"}}};

constexpr Row kRows[] = {
    {{{"/specVersion/", "Ver_"}}},
    {{{"/Device/UpLinkConnection/", "Upl_"}}, kUpLink, std::size(kUpLink)},
    {{{"/Device/Wireless2.4/", "Wl2_"}}, kWireless, std::size(kWireless)},
    {{{"/Device/Wireless5/", "Wl5_"}}, kWireless, std::size(kWireless)},
    {{{"/Device/SafetyWdn/", "Wdn_"}}},
    {{{"/FwUpgradeInfo/", "Ext_Fwu_"}}},
    {{{"/WirelessSiteSurvey/", "Ext_Ssv_"}}, kSurvey, std::size(kSurvey)},
    {{{"/APCloningInfo/", "Ext_Apc_"}}},
    {{{"/SafetyWdnInfo/", "Ext_Wdn_"}}},
    {{{"/DslIspList/", "Ext_Dsl_"}}},
    {{{"/ApnIspList/", "Ext_Apn_"}}},
    {{{"/Device/", ""}}}, // takes every name that no row above claims, so it stands last
};

constexpr const char* kNamePrefix = "zep_";
constexpr const char* kWhiteSpace = " \t\r\n";

// The one result buffer. A result that does not fit makes the whole conversion fail.
class Result {
  public:
    void start(const char* text) {
        length_ = 0;
        overflow_ = false;
        append(text, std::strlen(text));
    }
    void append(const char* text, size_t length) {
        overflow_ = overflow_ || length >= sizeof text_ - length_;
        if (overflow_) return;
        std::memcpy(text_ + length_, text, length);
        length_ += length;
    }
    void append(const char* text) { append(text, std::strlen(text)); }
    char* finish() {
        while (length_ > 0 && std::strchr(kWhiteSpace, text_[length_ - 1]) != nullptr)
            length_--;
        text_[length_] = '\0';
        return overflow_ ? nullptr : text_;
    }

  private:
    char text_[128] = {};
    size_t length_ = 0;
    bool overflow_ = false;
};

Result result;

const Row* findRow(const char* input, Side from) {
    for (const Row& row : kRows)
        if (std::strncmp(input, row.prefix.text[from], std::strlen(row.prefix.text[from])) == 0) return &row;
    return nullptr;
}

const Pair* findSubPrefix(const Row& row, const char* input, Side from) {
    for (int index = 0; index < row.count; index++) {
        const char* pattern = row.subPrefixes[index].text[from];
        if (strnWildcardCmp(input, pattern, static_cast<int32_t>(std::strlen(pattern))) == 0)
            return &row.subPrefixes[index];
    }
    return nullptr;
}

// Writes the other side of a pair; an index is copied from the input character for character.
void appendOtherSide(const Pair& pair, const char* input, Side from) {
    const char* other = pair.text[from == kPath ? kName : kPath];
    const char* indexHere = std::strstr(pair.text[from], "??");
    const char* indexThere = std::strstr(other, "??");
    if (indexHere == nullptr || indexThere == nullptr) {
        result.append(other);
        return;
    }
    result.append(other, static_cast<size_t>(indexThere - other));
    result.append(input + (indexHere - pair.text[from]), 2);
    result.append(indexThere + 2);
}

char* convert(const char* input, Side from) {
    input += std::strspn(input, kWhiteSpace);
    if (*input == '\0') return nullptr;
    const Row* row = findRow(input, from);
    if (row == nullptr) return nullptr;
    appendOtherSide(row->prefix, input, from);
    input += std::strlen(row->prefix.text[from]);
    if (const Pair* pair = findSubPrefix(*row, input, from)) {
        appendOtherSide(*pair, input, from);
        input += std::strlen(pair->text[from]);
    }
    // A path may have one level of tags at the most below its prefix.
    if (from == kPath && std::strchr(input, '/') != nullptr) return nullptr;
    result.append(input);
    return result.finish();
}

} // namespace
} // namespace pendra

using namespace pendra;

extern "C" char* cvtZep_XmlPathVsVarName(const char* text, int32_t direction) {
    if (text == nullptr) return nullptr;
    if (direction == 0) {
        result.start(kNamePrefix);
        return convert(text, kPath);
    }
    result.start("");
    const size_t prefixLength = std::strlen(kNamePrefix);
    return std::strncmp(text, kNamePrefix, prefixLength) == 0 ? convert(text + prefixLength, kName) : nullptr;
}
