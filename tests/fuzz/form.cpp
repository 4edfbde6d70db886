// A posted form: its separator and letters (a applied, l everything logged) on a line, lines "/path=value" for the
// device's tree, then the form. It must do what its pairs do one by one.
#include <algorithm>
#include <cstring>

#include "fuzz/reference.h"
#include "fuzz/support.h"

using namespace pendra::fuzz;
using pendra::test::device;

namespace {

constexpr std::string_view kWhiteSpace = " \t\r\n";

struct Form {
    char separator = '&';
    int32_t apply = 0;
    std::map<std::string, std::string> tree;
    std::string text;
};

struct Outcome {
    int32_t code = 0;
    std::string errorText;
    std::vector<std::string> events;
    ZepXmlData record = {};
};

struct Pair {
    std::string name;
    std::string value;
};

struct Pairs {
    std::vector<Pair> list;
    bool namelessEnd = false; // the list ends at a pair without a name
};

std::string_view cutEnd(std::string_view text, std::string_view characters) {
    return text.substr(0, text.find_last_not_of(characters) + 1);
}

std::string_view cutFront(std::string_view text, std::string_view characters) {
    return text.substr(std::min(text.find_first_not_of(characters), text.size()));
}

Pair makePair(std::string_view name, std::string_view value) {
    const std::string decoded = decodeForm(value).substr(0, ZEPVAR_VALUE_SIZE - 1);
    return {std::string(name.substr(0, 31)), decoded.c_str()};
}

Pairs splitForm(std::string_view text, char separator) {
    std::string gap(kWhiteSpace);
    std::string ends;
    if (separator != '\0') gap += separator, ends += separator;
    if (separator != '\r' && separator != '\n') ends += "\r\n";
    Pairs pairs;
    text = cutFront(text, gap);
    for (size_t equals = text.find('='); equals != std::string_view::npos && equals > 0; equals = text.find('=')) {
        const std::string_view name = cutEnd(text.substr(0, equals), kWhiteSpace);
        if ((pairs.namelessEnd = name.empty())) break;
        text = cutFront(text.substr(equals + 1), " \t");
        const size_t end = std::min(text.find_first_of(ends), text.size());
        pairs.list.push_back(makePair(name, cutEnd(text.substr(0, end), gap)));
        if (end == text.size()) break;
        text = cutFront(text.substr(end), gap);
    }
    return pairs;
}

void prepare(const std::map<std::string, std::string>& tree, bool trace = false) {
    startDevice(1, trace);
    for (const auto& [path, value] : tree)
        device().tree[path] = value;
    guardRecord();
    init_ZepVar();
    device().forget();
}

Outcome outcomeNow(int32_t code, const std::string& errorText) {
    return {.code = code, .errorText = errorText, .events = device().events, .record = zepXmlData};
}

Outcome runParser(const Form& form, const std::string& text) {
    Buffer buffer(text);
    Buffer errorText(ZEPVAR_VALUE_SIZE, '\0');
    const int32_t code = do_ZepVar_Parser(buffer.data(), form.separator, errorText.data(), form.apply);
    requireEqual(buffer.text(), text, "the form is as before");
    checkRecord();
    return outcomeNow(code, errorText.text());
}

Outcome refuse(int32_t code, const std::string& name) {
    write_ZepXml_ResultXml(code, name.c_str(), 0);
    return outcomeNow(code, name);
}

// Each pair by a call of its own, then the check and the application of a form that has none.
Outcome runByPairs(const Form& form) {
    const Pairs pairs = splitForm(form.text, form.separator);
    for (const Pair& pair : pairs.list) {
        char value[ZEPVAR_VALUE_SIZE] = "";
        std::memcpy(value, pair.value.c_str(), pair.value.size());
        const int32_t code = set_ZepVar(pair.name.c_str(), value);
        if (code != 0) return refuse(code, pair.name);
    }
    if (pairs.namelessEnd) return outcomeNow(2, "");
    return runParser(form, "");
}

void compare(const Outcome& actual, const Outcome& expected) {
    requireEqual(actual.code, expected.code, "a form's code");
    requireEqual(actual.errorText, expected.errorText, "a form's error text");
    requireEqual(static_cast<int64_t>(actual.events.size()), static_cast<int64_t>(expected.events.size()),
                 "what a form writes and runs, in number");
    for (size_t index = 0; index < actual.events.size(); index++)
        requireEqual(actual.events[index], expected.events[index], "what a form writes and runs");
    require(std::memcmp(&actual.record, &expected.record, sizeof actual.record) == 0,
            "what a form leaves in the record");
}

void checkSecondRun(const Form& form) {
    if (form.text.find("Act") != std::string::npos || !treeListsAreSound()) return;
    const auto tree = device().tree;
    prepare(tree);
    requireEqual(runParser(form, form.text).code, 0, "a form that was applied is applied again");
    const auto writes = unexpectedRewrites();
    require(writes.empty(), "a form applied twice writes nothing the second time", writes.empty() ? "" : writes[0]);
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    Form form;
    const std::string options = input.line();
    if (!options.empty()) form.separator = options[0] == '0' ? '\0' : options[0] == 'n' ? '\n' : options[0];
    form.apply = options.find('a', 1) == std::string::npos ? 0 : 1;
    device().tree.clear();
    readTreeLines(input);
    form.tree = device().tree;
    form.text = input.text();
    prepare(form.tree);
    const Outcome expected = runByPairs(form);
    prepare(form.tree, options.find('l', 1) != std::string::npos);
    const bool sound = treeListsAreSound();
    const Outcome actual = runParser(form, form.text);
    compare(actual, expected);
    if (actual.code == 0 && form.apply != 0 && sound) checkSecondRun(form);
    return 0;
}
