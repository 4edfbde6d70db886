#include "host/page_parts.h"

#include <algorithm>
#include <vector>

#include "common/number.h"
#include "host/record.h"
#include "host/stations.h"
#include "host/templates.h"
#include "host/variable_info.h"
#include "host/words.h"
#include "host/www_files.h"
#include "pendra/auth.h"

namespace pendra::host {

namespace {

using Words = std::vector<std::string>;

std::string expandText(const PageView& view, std::string_view text);

std::string wordAt(const Words& words, size_t index) {
    return index < words.size() ? words[index] : "";
}

std::string attribute(const char* name, std::string_view value) {
    return std::string(" ") + name + "=\"" + escapeHtml(value) + "\"";
}

// ---- fields ----

const std::string* typedText(const PageView& view, const std::string& name) {
    const auto typed = view.typed.find(name);
    return typed == view.typed.end() ? nullptr : &typed->second;
}

std::string fieldText(const PageView& view, const std::string& name) {
    const std::string* typed = typedText(view, name);
    return typed == nullptr ? variableText(name) : *typed;
}

std::string hintOf(const std::string& name) {
    const VariableInfo* variable = findVariable(name);
    if (variable == nullptr || variable->isChoice()) return {};
    std::string hint = hintInWords(*variable, variable->check == "rule" ? variableText(name + "_Validate") : "");
    if (hint.empty()) return {};
    if (hint[0] >= 'a' && hint[0] <= 'z') hint[0] = static_cast<char>(hint[0] - 'a' + 'A');
    return hint + ".";
}

std::string faultOf(const PageView& view, const std::string& name) {
    const auto fault = view.faults.find(name);
    return fault == view.faults.end() ? "" : fault->second;
}

// Ties a control to its label, hint and fault, for those who do not see where they stand.
std::string controlAttributes(const PageView& view, const std::string& name, const std::string& hint) {
    std::string text = attribute("id", name) + attribute("name", name);
    const bool wrong = !faultOf(view, name).empty();
    std::string described = hint.empty() ? "" : name + "-hint";
    if (wrong) described += (described.empty() ? "" : " ") + name + "-fault";
    if (!described.empty()) text += attribute("aria-describedby", described);
    return wrong ? text + attribute("aria-invalid", "true") : text;
}

std::string line(const char* kind, const std::string& name, const std::string& text) {
    if (text.empty()) return {};
    return std::string("<p class=\"") + kind + "\"" + attribute("id", name + "-" + kind) + ">" + escapeHtml(text) +
           "</p>\n";
}

std::string field(const PageView& view, const Words& words, const std::string& control, const std::string& hint) {
    const std::string& name = words[1];
    const std::string fault = faultOf(view, name);
    return std::string("<div class=\"field") + (fault.empty() ? "" : " wrong") + "\">\n<label" +
           attribute("for", name) + ">" + escapeHtml(wordAt(words, 2)) + "</label>\n" + control + "\n" +
           line("hint", name, hint) + line("fault", name, fault) + "</div>\n";
}

std::string textField(const PageView& view, const Words& words) {
    const std::string hint = hintOf(words[1]);
    const std::string control = "<input type=\"text\" autocomplete=\"off\" spellcheck=\"false\"" +
                                controlAttributes(view, words[1], hint) +
                                attribute("value", fieldText(view, words[1])) + ">";
    return field(view, words, control, hint);
}

// The page does not hold the secret: it is fetched when it is asked for, and an empty field leaves it as it is.
std::string secretField(const PageView& view, const Words& words) {
    const std::string& name = words[1];
    const std::string* typed = typedText(view, name);
    const bool isSet = !variableText(name).empty();
    const std::string hint = hintOf(name) + " Leave it empty to keep the present one.";
    const std::string control =
        "<div class=\"secret\"><input type=\"password\" autocomplete=\"new-password\"" +
        controlAttributes(view, name, hint) + attribute("value", typed == nullptr ? "" : *typed) +
        attribute("placeholder", isSet ? "\u2022\u2022\u2022\u2022\u2022\u2022\u2022\u2022" : "not set") +
        ">\n<button type=\"button\" class=\"show\" hidden" + attribute("data-for", name) +
        attribute("aria-label", "Show " + wordAt(words, 2)) + ">Show</button></div>";
    return field(view, words, control, hint);
}

std::string option(const std::string& value, const std::string& label, bool selected) {
    return "<option" + attribute("value", value) + (selected ? " selected" : "") + ">" + escapeHtml(label) +
           "</option>\n";
}

Words listItems(std::string_view list) {
    Words items;
    while (!list.empty()) {
        const size_t comma = std::min(list.find(','), list.size());
        std::string_view item = list.substr(0, comma);
        list.remove_prefix(std::min(list.size(), comma + 1));
        item.remove_prefix(std::min(item.size(), item.find_first_not_of(' ')));
        items.emplace_back(item);
    }
    return items;
}

std::string selectField(const PageView& view, const Words& words, Words items, const Words& labels) {
    const std::string now = fieldText(view, words[1]);
    std::string options;
    // A value that is none of the choices stays what it is until somebody chooses.
    if (std::find(items.begin(), items.end(), now) == items.end()) options += option(now, now, true);
    for (size_t i = 0; i < items.size(); ++i) {
        options += option(items[i], wordAt(labels, i), items[i] == now);
    }
    const std::string hint = wordAt(words, 4);
    return field(view, words, "<select" + controlAttributes(view, words[1], hint) + ">\n" + options + "</select>",
                 hint);
}

// {{choice|VARIABLE|LABEL|LIST}}: the list, or the variable that holds it.
std::string choiceField(const PageView& view, const Words& words) {
    const std::string list = wordAt(words, 3);
    const Words items = listItems(list.starts_with("zep_") ? variableText(list) : list);
    return selectField(view, words, items, items);
}

std::string channelField(const PageView& view, const Words& words) {
    const Words items = listItems(variableText(wordAt(words, 3)));
    Words labels = items;
    std::replace(labels.begin(), labels.end(), std::string("0"), std::string("automatic"));
    return selectField(view, words, items, labels);
}

std::string modeField(const PageView& view, const Words& words) {
    return selectField(view, words, {"0", "1"}, {"0", "1"});
}

// A box that is not ticked is not posted, so an unticked one says so before.
std::string switchField(const PageView& view, const Words& words) {
    const std::string& name = words[1];
    const std::string now = fieldText(view, name);
    if (parseInt(variableText(name).c_str()) > 1) {
        return "<p class=\"fixed\">" + escapeHtml(wordAt(words, 2)) + ": fixed by the device</p>\n";
    }
    return std::string("<div class=\"field switch\">\n<input type=\"hidden\"") + attribute("name", name) +
           " value=\"0\">\n<input type=\"checkbox\" value=\"1\"" + controlAttributes(view, name, "") +
           (now == "1" ? " checked" : "") + ">\n<label" + attribute("for", name) + ">" + escapeHtml(wordAt(words, 2)) +
           "</label>\n" + line("fault", name, faultOf(view, name)) + "</div>\n";
}

// ---- access rules ----

std::string ruleButton(const char* action, const char* label, const std::string& mac) {
    return std::string("<button name=\"do\"") + attribute("value", action) +
           attribute("aria-label", std::string(label) + " " + mac) + ">" + label + "</button>\n";
}

std::string ruleItem(const std::string& radio, size_t index, const AccessRule& rule) {
    return "<li><form method=\"post\" action=\"/wireless\">\n<input type=\"hidden\" name=\"radio\"" +
           attribute("value", radio) + ">\n<input type=\"hidden\" name=\"rule\"" +
           attribute("value", std::to_string(index)) + ">\n<input type=\"hidden\"" + attribute("name", "mac-" + radio) +
           attribute("value", rule.mac) + ">\n<span class=\"mac\">" + escapeHtml(rule.mac) +
           "</span> <span class=\"state\">" + (rule.active ? "active" : "off") + "</span>\n" +
           (rule.active ? ruleButton("off", "Turn off", rule.mac) : ruleButton("on", "Turn on", rule.mac)) +
           ruleButton("remove", "Remove", rule.mac) + "</form></li>\n";
}

std::string addRuleForm(const PageView& view, const std::string& radio) {
    const Words words = {"rule", "mac-" + radio, "New rule: address of the station"};
    const std::string hint = "Six pairs of hex digits with colons between, like 02:a1:b2:c3:d4:e5.";
    const std::string* typed = typedText(view, words[1]);
    const std::string control = "<input type=\"text\" autocomplete=\"off\" spellcheck=\"false\"" +
                                controlAttributes(view, words[1], hint) +
                                attribute("value", typed == nullptr ? "" : *typed) + ">";
    return "<form method=\"post\" action=\"/wireless\">\n<input type=\"hidden\" name=\"radio\"" +
           attribute("value", radio) + ">\n" + field(view, words, control, hint) +
           "<button name=\"do\" value=\"add\">Add the rule</button>\n</form>\n";
}

// Rules are stored only while access control is on.
std::string accessRuleList(const PageView& view, const Words& words) {
    const std::string& radio = words[1];
    const std::vector<AccessRule> rules = accessRules(radio == "Wl2" ? 0 : 1);
    if (variableText("zep_" + radio + "_Acl_WlAcEnbl") != "1") {
        return "<p class=\"hint\">Turn access control on to see and change its rules.</p>\n";
    }
    std::string items;
    for (size_t i = 0; i < rules.size(); ++i) {
        items += ruleItem(radio, i, rules[i]);
    }
    const std::string list =
        items.empty() ? "<p>There is no rule.</p>\n" : "<ul class=\"rules\">\n" + items + "</ul>\n";
    return list + addRuleForm(view, radio);
}

// ---- status ----

int barsOf(int signal) {
    constexpr int kBarFrom[] = {-80, -72, -64, -56};
    return static_cast<int>(
        std::count_if(std::begin(kBarFrom), std::end(kBarFrom), [&](int from) { return signal >= from; }));
}

std::string signalBars(const Station& station) {
    const int bars = station.signal ? barsOf(*station.signal) : 0;
    const std::string words = station.signal ? std::to_string(*station.signal) + " dBm" : "no signal";
    const std::string label = words + ", " + std::to_string(bars) + " of 4 bars";
    return "<span class=\"bars bars-" + std::to_string(bars) + "\" role=\"img\"" + attribute("aria-label", label) +
           "><i></i><i></i><i></i><i></i></span> " + words;
}

std::string stationTable(const PageView&, const Words&) {
    std::string error;
    std::string rows;
    for (const Station& station : currentStations(error)) {
        rows += "<tr><td class=\"mac\">" + escapeHtml(station.mac) + "</td><td>" +
                (station.interface == "ra0" ? "2.4 GHz" : "5 GHz") + "</td><td>" + signalBars(station) + "</td></tr>\n";
    }
    if (!error.empty()) return "<p class=\"fault\">The list cannot be read: " + escapeHtml(error) + "</p>\n";
    if (rows.empty()) return "<p>No station is connected.</p>\n";
    return "<table>\n<thead><tr><th scope=\"col\">Address</th><th scope=\"col\">Radio</th>"
           "<th scope=\"col\">Signal</th></tr></thead>\n<tbody>\n" +
           rows + "</tbody>\n</table>\n";
}

std::string uptimeInWords(const PageView&, const Words&) {
    const uint32_t seconds = sys_uptime_seconds();
    constexpr uint32_t kMinute = 60;
    constexpr uint32_t kHour = 3600;
    constexpr uint32_t kDay = 86400;
    std::string words;
    if (seconds >= kDay) words = std::to_string(seconds / kDay) + " d ";
    return words + std::to_string(seconds % kDay / kHour) + " h " + std::to_string(seconds % kHour / kMinute) + " min";
}

std::string onOrOff(const PageView&, const Words& words) {
    return parseInt(variableText(words[1]).c_str()) % 2 == 1 ? "on" : "off"; // 3 is an "on" that is fixed
}

// ---- the frame of every page ----

std::string messages(const PageView& view, const Words&) {
    std::string text;
    if (!view.notice.empty()) {
        text += "<p class=\"message good\" role=\"status\">" + escapeHtml(view.notice) + "</p>\n";
    }
    if (!view.fault.empty()) {
        text += "<p class=\"message bad\" role=\"alert\">" + escapeHtml(view.fault) + "</p>\n";
    }
    return text;
}

std::string navigationLink(const PageView& view, const Words& words) {
    const bool here = view.path == words[1];
    return "<a" + attribute("href", words[1]) + (here ? " aria-current=\"page\"" : "") + ">" + words[2] + "</a>";
}

// {{radio|FILE|Wl2}}: a file in which "@" stands for the radio.
std::string radioPart(const PageView& view, const Words& words) {
    const std::string& radio = words[2];
    if (variableText("zep_" + radio + "_WlEnbl") == "2") return "<p>This device has no such radio.</p>\n";
    std::string text(wwwFile(words[1]));
    for (size_t at = text.find('@'); at != std::string::npos; at = text.find('@', at)) {
        text.replace(at, 1, radio);
    }
    return expandText(view, text);
}

std::string pageTitle(const PageView& view, const Words&) {
    return escapeHtml(view.title);
}

std::string libraryVersion(const PageView&, const Words&) {
    return pendraLibVersion();
}

struct Part {
    std::string_view word;
    size_t arguments;
    std::string (*make)(const PageView& view, const Words& words);
};

constexpr Part kParts[] = {
    {"text", 2, textField},       {"secret", 2, secretField},    {"choice", 3, choiceField},
    {"channel", 3, channelField}, {"mode", 2, modeField},        {"switch", 2, switchField},
    {"rules", 1, accessRuleList}, {"stations", 0, stationTable}, {"uptime", 0, uptimeInWords},
    {"onoff", 1, onOrOff},        {"messages", 0, messages},     {"link", 2, navigationLink},
    {"radio", 2, radioPart},      {"title", 0, pageTitle},       {"version", 0, libraryVersion},
};

// A word that is no part is a variable.
std::string resolvePart(const PageView& view, const Words& words) {
    for (const Part& part : kParts) {
        if (part.word == words[0] && words.size() > part.arguments) return part.make(view, words);
    }
    return escapeHtml(variableText(words[0]));
}

std::string expandText(const PageView& view, std::string_view text) {
    return expandTemplate(text, [&](const Words& words) { return resolvePart(view, words); });
}

} // namespace

std::string expandPage(const PageView& view, std::string_view file) {
    return expandText(view, wwwFile(file));
}

} // namespace pendra::host
