// The search for new firmware: fetching the list, reading it, fetching the notes.
#include "upgrade.h"

using namespace pendra::test;

namespace {

class UpgradeSearch : public UpgradeTest {
  protected:
    // Searches with a list document in place.
    Events search(const std::string& document, const std::string& prefix = "PX") {
        writeFile(path(prefix + ".xml"), document);
        return actIn(0, '1');
    }
    std::string fetchList(const std::string& prefix = "PX") const {
        return "run get " + inQuotes(prefix + ".xml") + " \"" + kServer + "/" + prefix + "/" + prefix + ".xml\"";
    }
};

TEST_F(UpgradeSearch, ModelPrefix_EndsAtTheFirstUnderscore) {
    const std::pair<const char*, const char*> rows[] = {{"PX_FW1.0.bin", "PX"}, {"PX100_EU_FW1.0.bin", "PX100"},
                                                        {"PX.bin", "PX.bin"},   {"PX-1 b", "PX-1 b"},
                                                        {"_FW1.0.bin", ""},     {"", ""}};
    for (const auto& [running, prefix] : rows) {
        device().tree["/fwupgradeinfo/currfwfilename"] = running;
        EXPECT_EQ(fetchList(prefix), actIn(0, '1')[0]) << running;
        EXPECT_EQ(-5, fwXmlData.status);
    }
}

TEST_F(UpgradeSearch, ListOfAPrefix_IsRead) {
    device().tree["/fwupgradeinfo/currfwfilename"] = "PY100_FW1";
    search(kList, "PY100");
    EXPECT_EQ(2, fwXmlData.status);
}

TEST_F(UpgradeSearch, EngineeringServer_IsAsked) {
    device().tree["/fwupgradeinfo/isEngFwServer"] = "1";
    EXPECT_EQ("run get " + inQuotes("PX.xml") + " \"http://127.0.0.1:8481/PX/PX.xml\"", act('1')[0]);
}

TEST_F(UpgradeSearch, MissingFile_IsNotFetched) {
    EXPECT_EQ(Events{fetchList()} + shortReport(-5), act('1'));
    EXPECT_EQ(-5, fwXmlData.status);
}

TEST_F(UpgradeSearch, StatusOfTheCommand_DoesNotCount) {
    device().shellStatus = 256;
    search(kList);
    EXPECT_EQ(2, fwXmlData.status);
}

TEST_F(UpgradeSearch, MalformedList_FetchesNoNotes) {
    for (const std::string& document : {std::string(), std::string("<html>"), listDocument("", version("1", "1"))}) {
        EXPECT_EQ(Events{fetchList()} + shortReport(-1), search(document));
        EXPECT_EQ(-1, fwXmlData.status);
    }
}

TEST_F(UpgradeSearch, NothingNew_FetchesNoNotes) {
    const std::string other = listDocument(firmware(macList(mac("none"))));
    const std::string running = listDocument(firmware(macList(mac(kMac)), addresses("/PX_FW1.0.bin", "/n")));
    for (const std::string& document : {other, running, listDocument("")}) {
        EXPECT_EQ(Events{fetchList()} + shortReport(1), search(document));
        EXPECT_EQ(1, fwXmlData.status);
    }
}

TEST_F(UpgradeSearch, NewFirmware_FetchesTheNotesInTheBackground) {
    EXPECT_EQ((Events{fetchList(), std::string("set ") + kFileNode + "=" + kImageAddress,
                      std::string("set ") + kNotesNode + "=" + kNotesAddress,
                      "run get " + inQuotes("zepfwnotes.xml") + " \"" + kNotesAddress + "\" &"}) +
                  imageReport(2, "0", "2.0."),
              search(kList));
    EXPECT_EQ(2, fwXmlData.status);
}

// What the tree's guards refuse does not reach a command.
TEST_F(UpgradeSearch, RefusedAddresses_AreNotFetched) {
    device().refuseWrites = true;
    search(listDocument(firmware(macList(mac(kMac)), addresses("/$(reboot)", "/\"; reboot; \""))));
    EXPECT_EQ("run get " + inQuotes("zepfwnotes.xml") + " \"\" &", device().events[3]);
    for (const std::string& command : device().commands())
        EXPECT_EQ(std::string::npos, command.find("reboot")) << command;
    EXPECT_EQ(2, fwXmlData.status);
}

TEST_F(UpgradeSearch, UnsetTemplate_IsTheDefaultAndIsStored) {
    device().tree.erase("/fwupgradeinfo/urlgetcmd");
    const Events events = search(kList);
    EXPECT_EQ("set /fwupgradeinfo/urlgetcmd=wget -O \"$savefn\" \"$url\"", events[0]);
    EXPECT_EQ("run wget -O " + inQuotes("PX.xml") + " \"" + kServer + "/PX/PX.xml\"", events[1]);
    EXPECT_EQ("run wget -O " + inQuotes("zepfwnotes.xml") + " \"" + kNotesAddress + "\" &", events[4]);
}

TEST_F(UpgradeSearch, Template_IsFilledEverywhereAndNotTrimmed) {
    const std::string file = path("PX.xml");
    const std::string address = std::string(kServer) + "/PX/PX.xml";
    device().tree["/runtime/bramble/lanip"] = "192.168.1.1";
    device().tree["/bramble/zephttpport"] = "8080";
    const std::pair<std::string, std::string> rows[] = {
        {" get $url\t", " get " + address + "\t"},
        {"$url$savefn$url$savefn", address + file + address + file},
        {"nothing", "nothing"},
        {"$URL $SaveFn", "$URL $SaveFn"},
        {"get -b $lanip:$zepport $url", "get -b 192.168.1.1:8080 " + address},
    };
    for (const auto& [pattern, command] : rows) {
        loadTemplate(pattern);
        EXPECT_EQ("run " + command, actIn(0, '1')[0]);
    }
}

// Both the template and the command have 256 bytes, the NUL included.
TEST_F(UpgradeSearch, LongCommand_IsCut) {
    const std::string address = std::string(kServer) + "/PX/PX.xml";
    for (const size_t length : {254U, 255U, 256U, 300U}) {
        SCOPED_TRACE(length);
        const std::string padding(length - 1 - address.size(), 'p');
        loadTemplate(padding + " $url");
        EXPECT_EQ("run " + (padding + " " + address).substr(0, 255), actIn(0, '1')[0]);
    }
    loadTemplate(std::string(1023, 'p'));
    EXPECT_EQ("run " + std::string(255, 'p'), actIn(0, '1')[0]);
}

TEST_F(UpgradeSearch, LongBackgroundCommand_IsCutAndStaysInTheBackground) {
    for (const size_t length : {252U, 253U, 254U, 255U, 256U, 300U}) {
        SCOPED_TRACE(length);
        const std::string padding(length - 1 - kNotesAddress.size(), 'p');
        loadTemplate(padding + " $url");
        EXPECT_EQ("run " + (padding + " " + kNotesAddress).substr(0, 253) + " &", search(kList)[3]);
    }
}

TEST_F(UpgradeSearch, LongFileName_IsCutToThePaths) {
    const std::string prefix(127, 'f');
    loadTemplate("$savefn $url");
    for (const std::string& running : {prefix, std::string(1023, 'f')}) {
        device().tree["/fwupgradeinfo/currfwfilename"] = running;
        EXPECT_EQ("run " + path(prefix).substr(0, 127) + " " + (kServer + ("/" + prefix)).substr(0, 127),
                  actIn(0, '1')[0]);
    }
}

class ListFile : public UpgradeTest {
  protected:
    // A list document of a given size whose root ends with its last byte.
    std::string documentOf(size_t size) const {
        std::string document = kList.substr(0, kList.find("</root>"));
        document.append(size - document.size() - 7, ' ');
        return document + "</root>";
    }
    int32_t statusOf(const std::string& document) {
        writeFile(path("PX.xml"), document);
        actIn(0, '1');
        return fwXmlData.status;
    }
};

// 4096 bytes, the NUL included.
TEST_F(ListFile, LongDocument_IsParsedAsCut) {
    EXPECT_EQ(2, statusOf(documentOf(4094)));
    EXPECT_EQ(2, statusOf(documentOf(4095)));
    EXPECT_EQ(-1, statusOf(documentOf(4096)));
    EXPECT_EQ(-1, statusOf(documentOf(4097)));
    EXPECT_EQ(-1, statusOf(documentOf(100000)));
}

TEST_F(ListFile, TextBehindTheFirst4095Bytes_IsNotRead) {
    EXPECT_EQ(2, statusOf(kList + std::string(100000, 'x')));
    EXPECT_EQ(2, statusOf(documentOf(4095) + documentOf(4095)));
}

TEST_F(ListFile, BytesThatAreNoText_AreMalformed) {
    EXPECT_EQ(-1, statusOf(std::string(5000, '\0')));
    EXPECT_EQ(-1, statusOf(std::string("\0", 1) + kList));
    EXPECT_EQ(-1, statusOf(std::string(5000, '\xFF')));
}

class SearchTrace : public UpgradeTest {};

TEST_F(SearchTrace, MissingFile_IsTracedToTheLetter) {
    daemon_log_level = 7;
    const Events events = act('1');
    EXPECT_EQ((std::vector<std::string>{"1000:do_FwUpgradeAction]",
                                        "===FWUPGRADE_ACT_SEARCH===", "cmd=" + events[0].substr(4),
                                        "1000:write_TmpXmlFile]" + events[1].substr(4), "zepcheckfw.xml done"}),
              logLines());
}

TEST_F(SearchTrace, NewFirmware_TracesTheSearchAlone) {
    daemon_log_level = 7;
    writeFile(path("PX.xml"), kList);
    const Events events = act('1');
    const auto lines = logLines();
    ASSERT_GE(lines.size(), 8U);
    EXPECT_EQ("cmd=" + events[0].substr(4), lines[2]);
    EXPECT_EQ("---- Received FW XML Data Begin ----", lines[3]);
    const std::vector<std::string> end(lines.end() - 5, lines.end());
    EXPECT_EQ((std::vector<std::string>{"done, ret=2", "1000:write_TmpXmlFile]" + events[4].substr(4),
                                        "1000:write_TmpXmlFile]" + events[5].substr(4),
                                        "1000:write_TmpXmlFile]" + events[6].substr(4), "zepcheckfw.xml done"}),
              end);
}

TEST_F(SearchTrace, InformationLevel_HoldsTheDocumentAlone) {
    daemon_log_level = 6;
    writeFile(path("PX.xml"), "<x>");
    act('1');
    EXPECT_EQ("1000: ---- Received FW XML Data Begin ----\n<x>\n---- Received FW XML Data End ----\n", logText());
}

// The longest document there can be is logged whole.
TEST_F(SearchTrace, LongDocument_IsLoggedAsItWasRead) {
    daemon_log_level = 6;
    writeFile(path("PX.xml"), std::string(5000, 'x'));
    act('1');
    EXPECT_EQ("1000: ---- Received FW XML Data Begin ----\n" + std::string(4095, 'x') +
                  "\n---- Received FW XML Data End ----\n",
              logText());
}

} // namespace
