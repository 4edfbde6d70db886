// Setup documents put together element by element, and what the parsers report about them.
#pragma once

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "support/fake_device.h"

namespace pendra::test {

// A writable text of exactly its own size: a sanitizer sees the first byte beyond it.
class Buffer {
  public:
    explicit Buffer(const std::string& text) : bytes_(text.c_str(), text.c_str() + text.size() + 1) {}
    char* text() { return bytes_.data(); }
    int32_t length() const { return static_cast<int32_t>(bytes_.size() - 1); }
    std::string whole() const { return std::string(bytes_.data(), bytes_.size() - 1); } // beyond any NUL inside

  private:
    std::vector<char> bytes_;
};

// An element: its leaves and children in document order, each named by its tag.
class Element {
  public:
    using Child = std::pair<std::string, std::string>;

    Element(std::string tag, std::vector<Child> children) : tag_(std::move(tag)), children_(std::move(children)) {}

    const std::string& tag() const { return tag_; }

    // Replaces the first child of that tag, or appends one.
    Element& set(const std::string& tag, const std::string& content) {
        const auto found = find(tag);
        if (found == children_.end()) return add(tag, content);
        found->second = content;
        return *this;
    }
    Element& set(const Element& child) { return set(child.tag(), child.content()); }

    Element& add(const std::string& tag, const std::string& content) {
        children_.emplace_back(tag, content);
        return *this;
    }
    Element& add(const Element& child) { return add(child.tag(), child.content()); }

    Element& putFirst(const std::string& tag, const std::string& content) {
        children_.insert(children_.begin(), {tag, content});
        return *this;
    }

    Element& drop(const std::string& tag) {
        children_.erase(find(tag));
        return *this;
    }

    Element without(const std::string& tag) const { return Element(*this).drop(tag); }
    Element with(const std::string& tag, const std::string& content) const { return Element(*this).set(tag, content); }

    std::string content() const {
        std::string joined;
        for (const auto& [tag, content] : children_)
            joined += "<" + tag + ">" + content + "</" + tag + ">";
        return joined;
    }
    std::string text() const { return "<" + tag_ + ">" + content() + "</" + tag_ + ">"; }

  private:
    std::vector<Child>::iterator find(const std::string& tag) {
        return std::find_if(children_.begin(), children_.end(),
                            [&tag](const Child& child) { return child.first == tag; });
    }

    std::string tag_;
    std::vector<Child> children_;
};

// ---- Documents that say what loadRouter() stored, so that they change nothing ----

inline Element ispElement(const std::string& tag) {
    return {tag, {{"CountryName", "Germany"}, {"IspName", "Provider"}}};
}

inline Element dslLineElement() {
    return {"DSL", {{"VPI", "8"}, {"VCI", "35"}, {"EncapsulationMode", "LLC"}}};
}

inline Element extenderElement() {
    return {"ExtenderSite",
            {{"Survey", "0"},
             {"ConnRefSiteBSSID", "00:aa:bb:cc:dd:ee"},
             {"WirelessType", "5"},
             {"WirelessName", "Upstairs"},
             {"EncryptionKey", "12345678"}}};
}

inline Element upLinkElement() {
    return {"UpLinkConnection", {{"HardwareType", "Ethernet"}, {"ConnType", "DHCP"}}};
}

inline Element accessElement() {
    return {"AccessControl", {{"WlAcEnbl", "0"}}};
}

inline Element ruleElement(const std::string& mac, const std::string& active = "1") {
    return {"AcRule", {{"Active", active}, {"MAC", mac}}};
}

inline Element radioElement(const std::string& band) {
    return {"Wireless" + band,
            {{"WlEnbl", "1"},
             {"WlSchedule", "0"},
             {"WirelessBSSID", "00:11:22:33:44:0" + band.substr(0, 1)},
             {"WirelessName", "Home" + band},
             {"EncryptionMode", "WPA2"},
             {"EncryptionKey", "0ldSecret" + band},
             {"EncryptionType", "AES"},
             {"Channel", "0"},
             {"AccessControl", accessElement().content()}}};
}

inline Element safetyElement() {
    return {"SafetyWdn",
            {{"SafetyWdnEnbl", "0"}, {"UrlDetectEnbl", "0"}, {"SafetyNotifyEnbl", "0"}, {"ToolRecommendEnbl", "0"}}};
}

inline Element deviceElement() {
    Element device("Device", {{"DeviceName", "Router"}, {"DevicePwd", "secret"}, {"RouterEnbl", "1"}});
    device.add(upLinkElement()).add("EasyRoaming", "-75 2 10 3");
    return device.add(radioElement("2.4")).add(radioElement("5")).add(safetyElement());
}

// The layout of first-generation clients.
inline Element firstGenerationRadio(const std::string& band) {
    return radioElement(band).drop("WirelessBSSID").drop("EncryptionType").drop("Channel").drop("AccessControl");
}

inline Element firstGenerationDevice() {
    Element device("Device", {{"DeviceName", "Router"}, {"DevicePwd", "secret"}, {"RouterEnbl", "1"}});
    device.add(upLinkElement().add("MTU", "1492")).add("ExtenderEnbl", "0");
    return device.add(firstGenerationRadio("2.4")).add(firstGenerationRadio("5")).add(safetyElement());
}

inline Element versionElement(int major, int minor) {
    return {"specVersion", {{"major", std::to_string(major)}, {"minor", std::to_string(minor)}}};
}

inline Element rootElement(const Element& device, int major = 1, int minor = 1) {
    Element root("root", {});
    return root.add(versionElement(major, minor)).add(device);
}

inline std::string documentText(const Element& device, int major = 1, int minor = 1) {
    return "<?xml version=\"1.0\"?>\n" + rootElement(device, major, minor).text() + "\n";
}

// ---- Required elements that were missed ----

struct LostKey {
    std::string parentPath; // "(null)" for none
    std::string tag;
    bool operator==(const LostKey& other) const { return parentPath == other.parentPath && tag == other.tag; }
};

inline void PrintTo(const LostKey& lost, std::ostream* out) {
    *out << lost.parentPath << " | " << lost.tag;
}

// A device whose lost-key hook is the test's own.
class ScannerTest : public DeviceTest {
  protected:
    ScannerTest() {
        forgetLostKeys();
        XmlErrMsg_LostKey = record;
    }
    static const std::vector<LostKey>& lostKeys() { return lost(); }
    static void forgetLostKeys() { lost().clear(); }

  private:
    static std::vector<LostKey>& lost() {
        static std::vector<LostKey> keys;
        return keys;
    }
    static int32_t record(const char* parentPath, const char* tag) {
        lost().push_back({parentPath == nullptr ? "(null)" : parentPath, tag == nullptr ? "(null)" : tag});
        return 1; // what the hook returns must not matter
    }
};

// ---- The record ----

template <size_t Capacity>
std::string text(const char (&field)[Capacity]) {
    return std::string(field, strnlen(field, Capacity));
}

// Whether two states of the record agree everywhere but in the stretch [begin, begin + size) of the first.
inline bool sameOutside(const ZepXmlData& first, const ZepXmlData& second, size_t begin, size_t size) {
    const auto* a = reinterpret_cast<const unsigned char*>(&first);
    const auto* b = reinterpret_cast<const unsigned char*>(&second);
    const size_t end = begin + size;
    return std::memcmp(a, b, begin) == 0 && std::memcmp(a + end, b + end, sizeof first - end) == 0;
}

inline size_t offsetInRecord(const void* field) {
    return static_cast<size_t>(static_cast<const char*>(field) - reinterpret_cast<const char*>(&zepXmlData));
}

} // namespace pendra::test
