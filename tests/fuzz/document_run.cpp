// A whole document run. A line of letters (0 first-generation device, c cloning, l everything logged), lines
// "/path=value" for the device's tree, then the document. The document is run twice.
#include "fuzz/support.h"

using namespace pendra::fuzz;
using pendra::test::device;

namespace {

struct Options {
    bool firstGeneration = false;
    bool cloning = false;
    bool trace = false;
};

Options readOptions(const std::string& letters) {
    const auto has = [&](char letter) { return letters.find(letter) != std::string::npos; };
    return {.firstGeneration = has('0'), .cloning = has('c'), .trace = has('l')};
}

// The one change that a run may make to the document: a NUL in the place of "</root>".
void checkCut(const Buffer& buffer, const std::string& document) {
    const size_t cut = buffer.text().size();
    require(buffer.all().substr(0, cut) == std::string_view(document).substr(0, cut), "the document's text stays");
    if (cut == document.size()) return;
    require(document[cut] == '<' &&
                buffer.all().substr(cut + 1, document.size() - cut - 1) == std::string_view(document).substr(cut + 1),
            "a document is cut at one place");
}

// A message is made of the library's own words, so nothing of a document reaches the shell.
void checkCommands() {
    const std::vector<std::string> commands = device().commands();
    require(commands.size() % 6 == 0, "a result document is six commands");
    for (const std::string& command : commands) {
        require(command.rfind("echo '", 0) == 0 && command.size() < 128, "a run only writes its result", command);
        const size_t close = command.find('\'', 6);
        require(close != std::string::npos && command.find('\'', close + 1) == std::string::npos,
                "no text of a document ends the quotes", command);
    }
}

bool mayBeRefusedWhileApplying(const std::string& message) {
    for (const char* tag : {"RouterEnbl", "WlEnbl", "WlSchedule", "WlAcEnbl"})
        if (message.ends_with(std::string("/") + tag)) return true;
    return false;
}

int32_t runOnce(const std::string& document, bool cloning) {
    Buffer buffer(document);
    device().forget();
    const int32_t result = cloning ? do_ZepXml_Parser_for_ApCloning(buffer.data()) : do_ZepXml_Parser(buffer.data());
    require(result == 0 || result == 1, "a run's result is 0 or 1");
    checkCut(buffer, document);
    checkRecord();
    return result;
}

// Of a document that does not get through its check, nothing is written.
void checkRefused() {
    if (mayBeRefusedWhileApplying(zepXmlData.setMsg)) return;
    require(device().treeWrites().empty(), "a refused document writes nothing", zepXmlData.setMsg);
}

// An entity may leave old text behind it in the field, which the next run sees again.
bool mayDifferTheSecondTime(const std::string& document) {
    return document.find('&') != std::string::npos || !treeListsAreSound();
}

// Both radios of a cloned extender write the one site that it connects to, in turn. Access control that a clone fixes
// (2) is switched off on every run.
bool writesEveryTime(bool cloning) {
    constexpr int32_t kWwan80211 = 3;
    if (!cloning) return false;
    for (const ZepWireless& radio : zepXmlData.device.wireless)
        if (radio.accessControl.WlAcEnbl == 2) return true;
    return zepXmlData.device.upLink.hardwareTypeIdx == kWwan80211;
}

void checkSecondRun(const std::string& document, bool cloning) {
    const auto tree = device().tree;
    requireEqual(runOnce(document, cloning), 1, "a document that was applied is applied again");
    if (mayDifferTheSecondTime(document)) return;
    require(device().tree == tree, "the second run leaves the tree as it is");
    if (writesEveryTime(cloning)) return;
    const auto writes = unexpectedRewrites();
    require(writes.empty(), "a document run twice writes nothing the second time", writes.empty() ? "" : writes[0]);
    requireEqual(zepXmlData.exeflag, 0, "the second run asks for nothing");
}

void checkCommit() {
    device().forget();
    do_ZepXml_Commit();
    for (const std::string& command : device().commands())
        require(command.rfind("/userfs/bramble/", 0) == 0, "a commit runs the device's scripts", command);
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const Options options = readOptions(input.line());
    startDevice(options.firstGeneration ? 0 : 1, options.trace);
    readTreeLines(input);
    // Directories come from the firmware's maker.
    device().tree["/bramble/tempdirecory"] = "/tmp/pendra";
    device().tree["/bramble/scriptdirecory"] = "/userfs/bramble";
    const std::string document = input.text();
    guardRecord();
    const bool sound = treeListsAreSound();
    const int32_t result = runOnce(document, options.cloning);
    checkCommands();
    if (result == 0) checkRefused();
    if (result == 1 && sound) checkSecondRun(document, options.cloning);
    checkCommit();
    return 0;
}
