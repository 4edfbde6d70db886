// A device that upgrades its firmware, and the commands that write its status document.
#pragma once

#include <unistd.h>

#include <cstring>
#include <string>

#include "list_document.h"

namespace pendra::test {

inline Events operator+(Events first, const Events& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

class UpgradeTest : public DeviceTest {
  protected:
    UpgradeTest() { load(); }

    // A device whose list names new firmware, and whose fetch command is short.
    void load() {
        auto& tree = device().tree;
        tree["/bramble/tempdirecory"] = directory();
        tree["/fwupgradeinfo/devicemac"] = kMac;
        tree["/fwupgradeinfo/currfwfilename"] = kRunning;
        tree["/fwupgradeinfo/fwupgradefn"] = "upld.bin";
        tree["/fwupgradeinfo/urlgetcmd"] = "get \"$savefn\" \"$url\"";
    }

    // What stands in the tree after a search that found something.
    void loadAddresses() {
        device().tree[kFileNode] = kImageAddress;
        device().tree[kNotesNode] = kNotesAddress;
    }

    static void loadTemplate(const std::string& command) { device().tree["/fwupgradeinfo/urlgetcmd"] = command; }
    static void setDirectory(const std::string& name) { snprintf(zepXmlData.tmpPath, 128, "%s", name.c_str()); }

    // The image in the temporary directory: so many bytes, whatever they are.
    void storeImage(size_t size) const {
        writeFile(path("upld.bin"), "");
        EXPECT_EQ(0, truncate(path("upld.bin").c_str(), static_cast<off_t>(size)));
    }

    static Events act(uint32_t action) {
        device().forget();
        do_FwUpgradeAction(action);
        return device().events;
    }
    static Events actIn(int32_t status, uint32_t action) {
        fwXmlData.status = status;
        return act(action);
    }

    std::string inQuotes(const std::string& name) const { return "\"" + path(name) + "\""; }

    // ---- The status document ----

    Events starting(const std::string& tag, const std::string& value, bool closes = false) const {
        return {"run echo '<?xml version=\"1.0\" ?><root>" + element(tag, value) + (closes ? "</root>" : "") + "' > " +
                path("zepcheckfw.xml")};
    }
    Events going(const std::string& tag, const std::string& value, bool closes = false) const {
        return {"run echo '" + element(tag, value) + (closes ? "</root>" : "") + "' >> " + path("zepcheckfw.xml")};
    }

    // The report below status 2 holds the status alone.
    Events shortReport(int32_t status) const { return starting("result", std::to_string(status), true); }

    Events imageReport(int32_t status, const std::string& size, const std::string& version) const {
        return starting("fwsize", size) + going("fwver", version) + going("result", std::to_string(status), true);
    }

    // Its version stands far behind any image path of these tests, which leaves it readable.
    const std::string kImageAddress = std::string(kServer) + "/PX/images/of/all/the/models/that/there/are/PX_FW2.0.bin";
    const std::string kNotesAddress = std::string(kServer) + "/PX/notes.txt";
    const std::string kList = listDocument(firmware(
        macList(mac(kMac)), addresses("/PX/images/of/all/the/models/that/there/are/PX_FW2.0.bin", "/PX/notes.txt")));
};

// The value of an element that the last action wrote, between its quotes of the shell.
inline std::string written(const std::string& tag) {
    for (const std::string& command : device().commands()) {
        const size_t start = command.find("<" + tag + ">");
        if (start != std::string::npos)
            return command.substr(start + tag.size() + 2, command.find("</" + tag + ">") - start - tag.size() - 2);
    }
    return "(not written)";
}

} // namespace pendra::test
