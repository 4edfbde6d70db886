// Firmware lists: lines "/path=value" for the device's tree, then the document. The answer is the reference's, and
// nothing is stored but the addresses of a match.
#include <algorithm>
#include <cstring>

#include "fuzz/reference.h"
#include "fuzz/support.h"

using namespace pendra::fuzz;
using pendra::test::device;

namespace {

constexpr size_t kAddressSize = 128;
constexpr int kEntriesMax = 100;

enum Result { kMalformed, kNoMatch, kMatched };

// A stretch of the document.
struct Range {
    size_t start = 0;
    size_t length = 0;
};

class Reference {
  public:
    explicit Reference(std::string document) : text_(std::move(document)) {}
    Result run();
    std::string fileAddress;
    std::string notesAddress;

  private:
    std::string_view view(Range range) const { return std::string_view(text_).substr(range.start, range.length); }
    // To the scanner a length of 0 is "to the end of the text".
    Range whole(Range range) const { return range.length > 0 ? range : Range{range.start, text_.size() - range.start}; }
    bool holds(Range range, const char* tag) const { return findElement(view(range), tag).has_value(); }
    std::optional<Range> find(Range range, const char* tag) const;
    std::optional<std::string> value(Range range, const char* tag, size_t capacity) const;
    bool hasVersion(Range root) const;
    template <typename Match>
    Result walk(Range range, const char* list, const char* entry, Match match);
    Result matchMacs(Range range);
    Result matchDevice(Range range);
    Result matchFirmware(Range range);

    std::string text_;
    std::string mac_;
    std::string running_;
    std::string base_ = get_FwServerWebSite();
};

std::optional<Range> Reference::find(Range range, const char* tag) const {
    const auto element = findElement(view(range), tag);
    if (!element || !element->complete) return std::nullopt;
    return Range{range.start + element->start, element->length};
}

std::optional<std::string> Reference::value(Range range, const char* tag, size_t capacity) const {
    const auto content = find(range, tag);
    if (!content) return std::nullopt;
    return decodedContent(std::string_view(text_).substr(content->start), content->length, capacity);
}

bool Reference::hasVersion(Range root) const {
    const auto block = find(whole(root), "specVersion");
    if (!block) return false;
    const auto major = value(whole(*block), "major", 128);
    const auto minor = value(whole(*block), "minor", 128);
    if (!major || !minor) return false;
    return int64_t{referenceNumber(*major).value_or(-1)} * 100 + referenceNumber(*minor).value_or(-1) == 100;
}

template <typename Match>
Result Reference::walk(Range range, const char* list, const char* entry, Match match) {
    const auto found = find(range, list);
    if (!found) return kMalformed;
    Range rest = *found;
    for (int count = 0; count < kEntriesMax && rest.length > 0; count++) {
        const auto next = find(rest, entry);
        if (!next || next->length == 0) break;
        const Result result = match(*next);
        if (result != kNoMatch) return result;
        const size_t behind = next->start + next->length;
        rest = {behind, rest.start + rest.length - behind};
    }
    return kNoMatch;
}

Result Reference::matchMacs(Range range) {
    const Result single = walk(range, "MacList", "MAC", [&](Range entry) {
        return referenceWildcard(mac_, view(entry).substr(0, 17), 32767) == 0 ? kMatched : kNoMatch;
    });
    if (single != kNoMatch) return single;
    return walk(range, "MacList", "MACs", [&](Range entry) {
        const auto first = value(entry, "Start", 18);
        const auto last = value(entry, "End", 18);
        if (!first || !last) return kMalformed;
        const bool inside = referenceWildcard(mac_, *first, 32767) >= 0 && referenceWildcard(mac_, *last, 32767) <= 0;
        return inside ? kMatched : kNoMatch;
    });
}

Result Reference::matchDevice(Range range) {
    const bool hasMacs = holds(range, "MacList");
    const bool hasNames = holds(range, "MatchList");
    if (hasMacs) {
        const Result result = matchMacs(range);
        if (result != kMatched || !hasNames) return result;
    }
    if (!hasNames) return kNoMatch;
    return walk(range, "MatchList", "Match", [&](Range entry) {
        return referenceWildcard(running_, view(entry).substr(0, 127), 32767) == 0 ? kMatched : kNoMatch;
    });
}

Result Reference::matchFirmware(Range range) {
    const Result result = matchDevice(range);
    if (result != kMatched) return result;
    const auto file = value(range, "FwURL", kAddressSize - base_.size());
    const auto notes = value(range, "NotesURL", kAddressSize - base_.size());
    if (!file || !notes) return kMalformed;
    fileAddress = base_ + *file;
    notesAddress = base_ + *notes;
    return kMatched;
}

Result Reference::run() {
    mac_ = device().node("/fwupgradeinfo/devicemac").substr(0, 17);
    running_ = device().node("/fwupgradeinfo/currfwfilename").substr(0, 127);
    const auto root = find({0, text_.size()}, "root");
    if (!root) return kMalformed;
    text_.resize(root->start + root->length);
    if (!hasVersion(*root)) return kMalformed;
    const Result result =
        walk(whole(*root), "FirmwareList", "Firmware", [&](Range entry) { return matchFirmware(entry); });
    if (result != kMatched) return result;
    std::string name = fileAddress.substr(fileAddress.rfind('/') + 1);
    name.resize(std::min(name.find('?'), name.size()));
    return running_.substr(0, name.size()) == name ? kNoMatch : kMatched;
}

void checkStored(Result result, const Reference& reference) {
    const std::vector<std::string> writes = device().treeWrites();
    requireEqual(static_cast<int64_t>(writes.size()), result == kMatched ? 2 : 0, "only a match is stored");
    if (result != kMatched) return;
    requireEqual(writes[0], "set /fwupgradeinfo/newfw/fileurl=" + reference.fileAddress, "the image's address");
    requireEqual(writes[1], "set /fwupgradeinfo/newfw/notesurl=" + reference.notesAddress, "the notes' address");
}

void checkList(const std::string& document) {
    Reference reference(document);
    const Result expected = reference.run();
    Buffer buffer(document);
    Buffer file(kAddressSize, '*');
    Buffer notes(kAddressSize, '*');
    device().forget();
    const int32_t result = do_FwXml_Parser(buffer.data(), file.data(), notes.data());
    requireEqual(result, expected, "the result of a list");
    requireEqual(file.text(), expected == kMatched ? reference.fileAddress : "", "the image's address");
    requireEqual(notes.text(), expected == kMatched ? reference.notesAddress : "", "the notes' address");
    require(document.compare(0, buffer.text().size(), buffer.text()) == 0, "a document is only cut");
    checkStored(expected, reference);
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const bool trace = input.flag('l');
    startDevice(1, trace);
    device().tree["/fwupgradeinfo/devicemac"] = "02:50:42:00:00:01";
    device().tree["/fwupgradeinfo/currfwfilename"] = "PB100_FW1.3.0.bin";
    readTreeLines(input);
    checkList(input.text());
    return 0;
}
