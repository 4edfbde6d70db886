#include "bench/documents.h"

#include <cstdio>

namespace pendra::bench {
namespace {

class Writer {
  public:
    explicit Writer(int indent) : indent_(indent) {}

    void open(const std::string& tag) {
        line("<" + tag + ">");
        level_++;
    }
    void close(const std::string& tag) {
        level_--;
        line("</" + tag + ">");
    }
    void leaf(const std::string& tag, const std::string& value) { line("<" + tag + ">" + value + "</" + tag + ">"); }
    void raw(const std::string& text) { text_ += text; }
    [[nodiscard]] std::size_t size() const { return text_.size(); }
    [[nodiscard]] std::string text() const { return text_; }

  private:
    void line(const std::string& text) {
        text_.append(static_cast<std::size_t>(indent_ * level_), ' ');
        text_ += text + "\n";
    }

    int indent_;
    int level_ = 0;
    std::string text_;
};

std::string macOf(int number, bool other) {
    char text[32];
    std::snprintf(text, sizeof text, "02:%s:b2:c3:%02x:%02x", other ? "a2" : "a1",
                  static_cast<unsigned>(number) >> 8 & 0xFF, static_cast<unsigned>(number) & 0xFF);
    return text;
}

void writeAccessControl(Writer& writer, int rules, bool other) {
    writer.open("AccessControl");
    writer.leaf("WlAcEnbl", rules > 0 ? "1" : "0");
    if (rules > 0) writer.leaf("WlAcMode", other ? "1" : "0");
    for (int rule = 0; rule < rules; rule++) {
        writer.open("AcRule");
        writer.leaf("Active", other ? "0" : "1");
        writer.leaf("MAC", macOf(rule, other));
        writer.close("AcRule");
    }
    writer.close("AccessControl");
}

struct RadioPlan {
    const char* element;
    const char* address;
    const char* channel;
    std::string name;
    int rules;
};

void writeRadio(Writer& writer, const RadioPlan& plan, bool other) {
    writer.open(plan.element);
    writer.leaf("Configurable", "1");
    writer.leaf("WlEnbl", other ? "0" : "1");
    writer.leaf("WlSchedule", other ? "1" : "0");
    writer.leaf("WirelessBSSID", plan.address);
    writer.leaf("WirelessName", plan.name);
    writer.leaf("EncryptionMode", other ? "WPA2" : "WPAWPA2");
    writer.leaf("EncryptionKey", other ? "cherry-and-quince" : "apple-pear-plum");
    writer.leaf("EncryptionType", other ? "AES" : "AUTO");
    writer.leaf("Channel", plan.channel);
    writeAccessControl(writer, plan.rules, other);
    writer.close(plan.element);
}

void writeUpLink(Writer& writer, bool other) {
    writer.open("UpLinkConnection");
    writer.leaf("Configurable", "1");
    writer.leaf("HardwareType", other ? "VDSL" : "ADSL");
    writer.leaf("ConnType", other ? "PPPoA" : "PPPoE");
    writer.leaf("LoginUserName", other ? "user4711@line.example" : "user0815@line.example");
    writer.leaf("LoginPassword", other ? "Milk &amp; honey" : "Tea &amp; biscuits");
    writer.open("DSL");
    writer.leaf("CountryName", other ? "Germany" : "Austria");
    writer.leaf("IspName", other ? "Example Net" : "Alpine Example");
    writer.close("DSL");
    writer.close("UpLinkConnection");
}

void writeSafety(Writer& writer, bool other) {
    writer.open("SafetyWdn");
    writer.leaf("SafetyWdnEnbl", other ? "0" : "1");
    writer.leaf("UrlDetectEnbl", other ? "0" : "1");
    writer.leaf("SafetyNotifyEnbl", other ? "0" : "1");
    writer.leaf("ToolRecommendEnbl", other ? "1" : "0");
    writer.close("SafetyWdn");
}

void writeVersion(Writer& writer, const std::string& minor) {
    writer.open("specVersion");
    writer.leaf("major", "1");
    writer.leaf("minor", minor);
    writer.close("specVersion");
}

void writeDevice(Writer& writer, const DocumentPlan& plan, const std::string& filler) {
    const bool other = plan.other;
    writer.open("Device");
    writer.raw(filler);
    writer.leaf("Configurable", "1");
    writer.leaf("DeviceName", other ? "Study" : "Living Room");
    writer.leaf("DevicePwd", other ? "bramble-4321" : "bramble-1234");
    writer.leaf("RouterEnbl", other ? "0" : "1");
    writeUpLink(writer, other);
    writer.leaf("EasyRoaming", other ? "-70 3 10 5" : "-65 3 10 5");
    const std::string name = other ? "Meadow" : "Orchard";
    writeRadio(writer, {"Wireless2.4", "02:50:42:00:00:24", other ? "6" : "11", name, plan.rules24}, other);
    writeRadio(writer, {"Wireless5", "02:50:42:00:00:50", other ? "36" : "44", name + " 5G", plan.rules5}, other);
    writeSafety(writer, other);
    writer.close("Device");
}

std::string documentWith(const DocumentPlan& plan, const std::string& filler) {
    Writer writer(plan.indent);
    writer.raw("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    writer.open("root");
    writeVersion(writer, "1");
    writeDevice(writer, plan, filler);
    writer.close("root");
    return writer.text();
}

std::string repeated(const std::string& piece, std::size_t bytes) {
    std::string text;
    while (text.size() + piece.size() <= bytes)
        text += piece;
    return text;
}

} // namespace

std::string setupDocument(const DocumentPlan& plan) {
    const std::string document = documentWith(plan, "");
    if (document.size() >= plan.bytes) return document;
    return documentWith(plan, repeated("    <VendorNote>what only the maker's own tool reads</VendorNote>\n",
                                       plan.bytes - document.size()));
}

std::string smallDocument() {
    return setupDocument({.rules24 = 4});
}

std::string largeDocument() {
    return setupDocument({.rules24 = 40, .rules5 = 40, .indent = 4, .bytes = 14000});
}

std::string hostileDocument(const std::string& piece, std::size_t bytes) {
    return documentWith({}, repeated(piece, bytes) + "\n");
}

std::string firmwareList(int entries) {
    Writer writer(2);
    writer.open("root");
    writeVersion(writer, "0");
    writer.open("FirmwareList");
    for (int entry = 0; entry < entries; entry++) {
        writer.open("Firmware");
        writer.open("MacList");
        writer.leaf("MAC", macOf(entry, false));
        writer.close("MacList");
        writer.leaf("FwURL", "/PB100/PB100_FW1.4.0.bin");
        writer.leaf("NotesURL", "/PB100/PB100_FW1.4.0.txt");
        writer.close("Firmware");
    }
    writer.close("FirmwareList");
    writer.close("root");
    return writer.text();
}

std::string variableForm(int pairs) {
    constexpr const char* kPairs[] = {
        "zep_DeviceName=Living+Room",         "zep_Wl2_WirelessName=Orchard", "zep_Wl2_Channel=11",
        "zep_Wl5_EncryptionKey=apple%2Dpear", "zep_Upl_IP=198.51.100.20",
    };
    std::string form;
    for (int pair = 0; pair < pairs; pair++)
        form += std::string(pair == 0 ? "" : "&") + kPairs[pair % 5];
    return form;
}

} // namespace pendra::bench
