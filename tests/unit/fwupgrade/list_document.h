// Firmware list documents put together element by element, and a device to match them with.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "support/fake_device.h"

namespace pendra::test {

constexpr const char* kServer = "http://fw.pendra.example";
constexpr const char* kEngineeringServer = "http://127.0.0.1:8481";
constexpr const char* kFileNode = "/fwupgradeinfo/newfw/fileurl";
constexpr const char* kNotesNode = "/fwupgradeinfo/newfw/notesurl";

// The device of these tests.
constexpr const char* kMac = "00:11:22:aa:bb:cc";
constexpr const char* kRunning = "PX_FW1.0.bin";

enum ListAnswer : int32_t { kMalformed = 0, kNone = 1, kNew = 2 };

inline std::string element(const std::string& tag, const std::string& content) {
    return "<" + tag + ">" + content + "</" + tag + ">";
}

inline std::string macList(const std::string& entries) {
    return element("MacList", entries);
}

inline std::string mac(const std::string& pattern) {
    return element("MAC", pattern);
}

inline std::string macs(const std::string& first, const std::string& last) {
    return element("MACs", element("Start", first) + element("End", last));
}

inline std::string matchList(const std::string& entries) {
    return element("MatchList", entries);
}

inline std::string match(const std::string& pattern) {
    return element("Match", pattern);
}

inline std::string addresses(const std::string& image = "/PX/PX_FW2.0.bin",
                             const std::string& notes = "/PX/notes.txt") {
    return element("FwURL", image) + element("NotesURL", notes);
}

// An entry for the devices that its lists name.
inline std::string firmware(const std::string& lists, const std::string& where = addresses()) {
    return element("Firmware", lists + where);
}

inline std::string version(const std::string& major, const std::string& minor) {
    return element("specVersion", element("major", major) + element("minor", minor));
}

inline std::string listDocument(const std::string& entries, const std::string& specVersion = version("1", "0")) {
    return "<?xml version=\"1.0\"?>\n" + element("root", specVersion + element("FirmwareList", entries)) + "\n";
}

inline std::string repeated(const std::string& text, int times) {
    std::string all;
    while (times-- > 0)
        all += text;
    return all;
}

// A document of one entry that matches this device.
inline std::string matchingDocument(const std::string& where = addresses()) {
    return listDocument(firmware(macList(mac(kMac)), where));
}

class ListTest : public DeviceTest {
  protected:
    ListTest() {
        device().tree["/fwupgradeinfo/devicemac"] = kMac;
        device().tree["/fwupgradeinfo/currfwfilename"] = kRunning;
    }

    // The text that is handed in is of exactly its own size, and so are both outputs.
    int32_t parse(const std::string& document) {
        std::vector<char> bytes(document.c_str(), document.c_str() + document.size() + 1);
        std::vector<char> image(128, '#');
        std::vector<char> notes(128, '#');
        device().forget();
        const int32_t result = do_FwXml_Parser(bytes.data(), image.data(), notes.data());
        document_.assign(bytes.data(), document.size());
        fileUrl_ = image.data();
        notesUrl_ = notes.data();
        return result;
    }

    // What the lists of a single entry give.
    int32_t parseLists(const std::string& lists) { return parse(listDocument(firmware(lists))); }

    const std::string& document() const { return document_; } // as it was left
    const std::string& fileUrl() const { return fileUrl_; }
    const std::string& notesUrl() const { return notesUrl_; }

    static Events storing(const std::string& image, const std::string& notes) {
        return {std::string("set ") + kFileNode + "=" + image, std::string("set ") + kNotesNode + "=" + notes};
    }

  private:
    std::string document_, fileUrl_, notesUrl_;
};

} // namespace pendra::test
