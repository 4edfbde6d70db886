// Writes what is to be known of every variable of the interface, from the tables that the library itself works with:
//
//   variable_list rows        rows of the host's table of variables
//   variable_list markdown    docs/variables.md
#include <cstdio>
#include <cstring>
#include <span>
#include <string>

#include "vars/variable_tables.h"

namespace {

using namespace pendra;

// "??" stands for the two digits of a list's index.
struct Section {
    const char* title;
    const char* prefix;
    const char* base; // of the configuration nodes; "" when every row names its own
    const VariableTable& variables;
};

constexpr Section kSections[] = {
    {"Device", "zep_", "", kDeviceVariables},
    {"Device: validation rules", "zep_", "", kDeviceRules},
    {"Texts for pages", "zep_Var_", "", kConstantVariables},
    {"Version of the documents", "zep_Ver_", "/specversion", kVersionVariables},
    {"Uplink", "zep_Upl_", "/uplink", kUpLinkVariables},
    {"Uplink: extender site", "zep_Upl_Ets_", "/uplink/extendersite", kExtenderVariables},
    {"Uplink: DSL provider", "zep_Upl_Dsl_", "/uplink/dsl", kIspVariables},
    {"Uplink: mobile provider", "zep_Upl_Apn_", "/uplink/asp", kIspVariables},
    {"2.4 GHz radio", "zep_Wl2_", "/lan/wireless2.4:1", kWirelessVariables},
    {"2.4 GHz radio: access control", "zep_Wl2_Acl_", "/lan/wireless2.4:1/accesscontrol", kAccessVariables},
    {"2.4 GHz radio: access rules", "zep_Wl2_Acl_R??_", "/acrule:N", kAcRuleVariables},
    {"5 GHz radio", "zep_Wl5_", "/lan/wireless5:1", kWirelessVariables},
    {"5 GHz radio: access control", "zep_Wl5_Acl_", "/lan/wireless5:1/accesscontrol", kAccessVariables},
    {"5 GHz radio: access rules", "zep_Wl5_Acl_R??_", "/acrule:N", kAcRuleVariables},
    {"Web safety", "zep_Wdn_", "/safetywdn", kSafetyVariables},
    {"Firmware information", "zep_Ext_Fwu_", "/fwupgradeinfo", kFirmwareVariables},
    {"Site survey", "zep_Ext_Ssv_", "", kSurveyVariables},
    {"Site survey: one site", "zep_Ext_Ssv_S??_", "/wirelesssitesurvey/site:N", kSurveySiteVariables},
};

struct CheckText {
    Check check;
    const char* word; // for programs
    const char* words;
};

constexpr CheckText kChecks[] = {
    {Check::none, "none", "anything that fits"},
    {Check::readOnly, "readOnly", "read only"},
    {Check::rule, "rule", "the rule of `..._Validate`"},
    {Check::name, "name", "one of: "},
    {Check::address, "address", "address of a computer"},
    {Check::netmask, "netmask", "netmask"},
    {Check::zeroOrOne, "zeroOrOne", "0 or 1"},
    {Check::locked, "locked", "any number, unless 2 or more is stored"},
    {Check::channel, "channel", "a channel of `ChannelList`"},
    {Check::roaming, "roaming", "four numbers: negative, at least 0, at least 1, at least 1"},
};

const CheckText& textOf(Check check) {
    for (const CheckText& row : kChecks) {
        if (row.check == check) return row;
    }
    return kChecks[0];
}

// A name table ends with a row whose second byte is an underscore; an empty row is a real one.
std::string namesOf(const char* const* table, const char* separator) {
    std::string names;
    for (; table != nullptr && (*table)[1] != '_'; ++table) {
        if (!names.empty()) names += separator;
        names += **table == '\0' ? "(empty)" : *table;
    }
    return names;
}

std::string checkInWords(const Variable& variable) {
    return textOf(variable.check).words + namesOf(variable.table, ", ");
}

std::string valueInWords(const Variable& variable) {
    const bool number = variable.kind == Kind::number || variable.kind == Kind::liveNumber;
    if (number) return "number";
    return variable.capacity == 0 ? "text" : "text, " + std::to_string(variable.capacity - 1);
}

// The path that the interface answers with. Asked for the path of a text for pages, it gives the text.
std::string pathInWords(const Section& section, const Variable& variable) {
    const char* leaf = variable.answer == nullptr ? variable.leaf : variable.answer;
    if (&section.variables == &kConstantVariables) return "as the value";
    if (*leaf == '/') return std::string("`") + leaf + "`";
    return std::string("`") + section.base + "/" + leaf + "`";
}

void printRow(const Section& section, const Variable& variable) {
    std::printf("{\"%s%s\", \"%s\", \"%s\"},\n", section.prefix, variable.leaf, textOf(variable.check).word,
                variable.table == nullptr ? "" : namesOf(variable.table, ", ").c_str());
}

void printMarkdownRow(const Section& section, const Variable& variable) {
    std::printf("| `%s%s` | %s | %s | %s |\n", section.prefix, variable.leaf, valueInWords(variable).c_str(),
                checkInWords(variable).c_str(), pathInWords(section, variable).c_str());
}

void printRows() {
    for (const Section& section : kSections) {
        for (const Variable& variable : section.variables) {
            printRow(section, variable);
        }
    }
}

constexpr const char* kIntroduction =
    "# Variables\n"
    "\n"
    "Made by `tools/variable_list.cpp` from the tables of the library; a test fails when this file differs. To renew "
    "it:\n"
    "`cmake --build BUILD --target variables_document`.\n"
    "\n"
    "How they are read, checked and set over the network is in [protocol.md](protocol.md). `??` stands for the two "
    "digits\n"
    "of a list's index, counted from 00; `N` for the number of the node, counted from 1 for access rules and from 2 "
    "for\n"
    "the sites of a survey. The path is what the interface answers when it is asked for one: it keeps the capitals of "
    "the\n"
    "name, and differs from the node that applying a form writes. Behind \"text\" stands the number of bytes that "
    "fit.\n"
    "\n"
    "A set of `Active` goes into the rule whose index the value is (0 into `R00`, 1 into `R01`), not into the named "
    "one.\n";

constexpr const char* kActions =
    "\n## Actions\n\n"
    "| Name | Does |\n|---|---|\n"
    "| `zep_Act_SiteSurvey` | asks for a survey of the wireless networks around; only with the uplink `WWan802.11` |\n"
    "| `zep_Act_VerifyAllZepVars` | checks everything that has been set |\n"
    "| `zep_Act_ApplyAllZepVars` | writes what differs into the configuration tree |\n"
    "| `zep_Act_CommitZepVars` | runs the scripts of what was changed, 2 seconds later |\n"
    "| `zep_Act_SetZepVars` | sets and checks the `name=value&name=value` list that is its value |\n";

void printMarkdown() {
    std::fputs(kIntroduction, stdout);
    for (const Section& section : kSections) {
        std::printf("\n## %s\n\n| Name | Value | Check | Path |\n|---|---|---|---|\n", section.title);
        for (const Variable& variable : section.variables) {
            printMarkdownRow(section, variable);
        }
    }
    std::fputs(kActions, stdout);
}

} // namespace

int main(int argc, char** argv) {
    const std::string wanted = argc == 2 ? argv[1] : "";
    if (wanted == "rows") {
        printRows();
    } else if (wanted == "markdown") {
        printMarkdown();
    } else {
        std::fputs("usage: variable_list rows|markdown\n", stderr);
        return 2;
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
}
