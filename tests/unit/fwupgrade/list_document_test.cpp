// The firmware list document as a whole: its root, its version, its results and its log.
#include "list_document.h"

using namespace pendra::test;

namespace {

class FirmwareServer : public DeviceTest {};

TEST_F(FirmwareServer, Node_SelectsTheAddress) {
    EXPECT_STREQ(kServer, get_FwServerWebSite());
    const struct {
        std::string node;
        const char* address;
    } rows[] = {{"-1", kServer},
                {"0", kServer},
                {"", kServer},
                {"no", kServer},
                {"1", kEngineeringServer},
                {"2", kEngineeringServer},
                {"2147483647", kEngineeringServer}};
    for (const auto& [node, address] : rows) {
        device().tree["/fwupgradeinfo/isEngFwServer"] = node;
        EXPECT_STREQ(address, get_FwServerWebSite()) << node;
    }
    EXPECT_TRUE(device().events.empty());
}

class ListResult : public ListTest {};

TEST_F(ListResult, NewFirmware_IsStoredAndTold) {
    EXPECT_EQ(kNew, parse(matchingDocument()));
    EXPECT_EQ("http://fw.pendra.example/PX/PX_FW2.0.bin", fileUrl());
    EXPECT_EQ("http://fw.pendra.example/PX/notes.txt", notesUrl());
    EXPECT_EQ(storing(fileUrl(), notesUrl()), device().events);
}

TEST_F(ListResult, NoMatch_StoresNothingAndEmptiesTheOutputs) {
    EXPECT_EQ(kNone, parseLists(macList(mac("none"))));
    EXPECT_EQ("", fileUrl());
    EXPECT_EQ("", notesUrl());
    EXPECT_TRUE(device().events.empty());
}

TEST_F(ListResult, MalformedDocument_StoresNothingAndEmptiesTheOutputs) {
    EXPECT_EQ(kMalformed, parse("no document"));
    EXPECT_EQ("", fileUrl());
    EXPECT_EQ("", notesUrl());
    EXPECT_TRUE(device().events.empty());
}

TEST_F(ListResult, NullOutputs_AreLeftAlone) {
    std::string document = matchingDocument();
    EXPECT_EQ(kNew, do_FwXml_Parser(document.data(), nullptr, nullptr));
    EXPECT_EQ("http://fw.pendra.example/PX/PX_FW2.0.bin", device().node(kFileNode));
    document = "no document";
    EXPECT_EQ(kMalformed, do_FwXml_Parser(document.data(), nullptr, nullptr));
}

TEST_F(ListResult, OneNullOutput_LeavesTheOther) {
    char image[128] = "x";
    char notes[128] = "x";
    std::string document = matchingDocument();
    do_FwXml_Parser(document.data(), image, nullptr);
    EXPECT_STREQ("http://fw.pendra.example/PX/PX_FW2.0.bin", image);
    document = matchingDocument();
    do_FwXml_Parser(document.data(), nullptr, notes);
    EXPECT_STREQ("http://fw.pendra.example/PX/notes.txt", notes);
}

TEST_F(ListResult, NullDocument_IsMalformed) {
    char image[128] = "x";
    char notes[128] = "x";
    EXPECT_EQ(kMalformed, do_FwXml_Parser(nullptr, image, notes));
    EXPECT_STREQ("", image);
    EXPECT_STREQ("", notes);
    EXPECT_EQ(kMalformed, do_FwXml_Parser(nullptr, nullptr, nullptr));
    EXPECT_TRUE(device().events.empty());
}

TEST_F(ListResult, DeviceNodes_AreReadForEachDocument) {
    EXPECT_EQ(kNew, parse(matchingDocument()));
    EXPECT_STREQ(kMac, fwXmlData.deviceMac);
    EXPECT_STREQ(kRunning, fwXmlData.currFwFileName);
    device().tree["/fwupgradeinfo/devicemac"] = "00:11:22:aa:bb:cd";
    device().tree["/fwupgradeinfo/currfwfilename"] = "other";
    EXPECT_EQ(kNone, parse(matchingDocument()));
    EXPECT_STREQ("00:11:22:aa:bb:cd", fwXmlData.deviceMac);
    EXPECT_STREQ("other", fwXmlData.currFwFileName);
    device().tree.clear();
    EXPECT_EQ(kNone, parse(matchingDocument()));
    EXPECT_STREQ("", fwXmlData.deviceMac);
    EXPECT_STREQ("", fwXmlData.currFwFileName);
}

TEST_F(ListResult, LongDeviceNodes_AreCutToTheirFields) {
    device().tree["/fwupgradeinfo/devicemac"] = std::string(1023, 'm');
    device().tree["/fwupgradeinfo/currfwfilename"] = std::string(1023, 'f');
    parse(matchingDocument());
    EXPECT_EQ(std::string(17, 'm'), fwXmlData.deviceMac);
    EXPECT_EQ(std::string(127, 'f'), fwXmlData.currFwFileName);
}

TEST_F(ListResult, UpgradeState_IsLeftAlone) {
    fwXmlData.status = 4;
    std::strcpy(fwXmlData.downloadKey, "wget -O /tmp/px");
    parse(matchingDocument());
    parse("no document");
    EXPECT_EQ(4, fwXmlData.status);
    EXPECT_STREQ("wget -O /tmp/px", fwXmlData.downloadKey);
}

int lostKeys = 0;

int32_t countLostKey(const char*, const char*) {
    return ++lostKeys;
}

// A setup run's writer of result documents must not hear of a list document.
TEST_F(ListResult, LostKeyHook_IsTakenAwayFirst) {
    for (const std::string& document : {matchingDocument(), std::string("no document"),
                                        listDocument("", element("specVersion", "")), listDocument("", "")}) {
        XmlErrMsg_LostKey = countLostKey;
        parse(document);
        EXPECT_EQ(nullptr, XmlErrMsg_LostKey);
    }
    EXPECT_EQ(0, lostKeys);
}

class ListRoot : public ListTest {};

TEST_F(ListRoot, Document_IsCutAtTheEndOfItsRoot) {
    const std::string text = matchingDocument();
    EXPECT_EQ(kNew, parse(text + "<root>"));
    const size_t end = text.find("</root>");
    EXPECT_EQ(text.substr(0, end), document().substr(0, end));
    EXPECT_EQ('\0', document()[end]);
    EXPECT_EQ("/root>\n<root>", document().substr(end + 1));
}

TEST_F(ListRoot, ElementsBehindTheRoot_DoNotCount) {
    const std::string entries = element("FirmwareList", firmware(macList(mac(kMac))));
    EXPECT_EQ(kMalformed, parse(element("root", version("1", "0")) + entries));
    EXPECT_EQ(kMalformed, parse(element("root", entries) + version("1", "0")));
}

TEST_F(ListRoot, TextsAroundTheRoot_AreIgnored) {
    EXPECT_EQ(kNew, parse("garbage < > & \x01\xFF" + matchingDocument() + "\xFE garbage"));
}

TEST_F(ListRoot, OrderAndSpacing_AreFree) {
    const std::string entry = "\r\n\t<NotesURL>/n</NotesURL>\n <FwURL>/i</FwURL>\n" + matchList("\n" + match("PX*")) +
                              macList("\n\t" + mac("*") + "\n");
    const std::string list = element("FirmwareList", "\n  " + element("Firmware", entry) + "\n");
    EXPECT_EQ(kNew, parse(element(
                        "root", "\n" + list + "\n " + element("specVersion", "<minor> 0 </minor><major> 1 </major>"))));
    EXPECT_EQ("http://fw.pendra.example/i", fileUrl());
    EXPECT_EQ("http://fw.pendra.example/n", notesUrl());
}

TEST_F(ListRoot, Tags_MatchInAnyCase) {
    const std::string entry = "<firmware><MACLIST><mac>" + std::string(kMac) +
                              "</Mac></maclist><FWURL>/i</fwurl><notesurl>/n</NOTESURL></FIRMWARE>";
    EXPECT_EQ(kNew, parse("<ROOT><SPECVERSION><Major>1</major><MINOR>0</minor></specversion><firmwarelist>" + entry +
                          "</FIRMWARELIST></Root>"));
}

TEST_F(ListRoot, TagsWithAttributes_AreNotFound) {
    std::string document = matchingDocument();
    document.replace(document.find("<FirmwareList>"), 14, "<FirmwareList a=\"1\">");
    EXPECT_EQ(kMalformed, parse(document));
}

class ListVersion : public ListTest {
  protected:
    int32_t parseVersion(const std::string& specVersion) {
        return parse(listDocument(firmware(macList(mac(kMac))), specVersion));
    }
};

TEST_F(ListVersion, OneZero_IsAcceptedAndRecorded) {
    EXPECT_EQ(kNew, parseVersion(version("1", "0")));
    EXPECT_EQ(1, fwXmlData.specVersion.major);
    EXPECT_EQ(0, fwXmlData.specVersion.minor);
    EXPECT_EQ(100, fwXmlData.specVersion.version);
    EXPECT_STREQ("specVersion", fwXmlData.specVersion.path);
}

// The combined number decides.
TEST_F(ListVersion, OtherPairsOfTheSameNumber_AreAccepted) {
    for (const auto& [major, minor] : {std::pair{"0", "100"}, {"2", "-100"}, {"-1", "200"}, {"01", "00"}, {"1x", "y"}})
        EXPECT_EQ(kNew, parseVersion(version(major, minor))) << major << "." << minor;
}

TEST_F(ListVersion, OtherNumbers_AreRefusedWithAMessage) {
    daemon_log_level = 6;
    const struct {
        std::string major, minor, told;
    } rows[] = {{"1", "1", "1.1"},
                {"0", "99", "0.99"},
                {"1", "-1", "1.-1"},
                {"0", "0", "0.0"},
                {"2", "0", "2.0"},
                {"-1", "0", "-1.0"},
                {"", "0", "0.0"},
                {"x", "0", "0.0"},
                {"1", "100", "1.100"},
                {"10", "0", "10.0"},
                {"2147483647", "2147483647", "2147483647.2147483647"},
                {"-2147483648", "-1", "-2147483648.-1"}};
    for (const auto& [major, minor, told] : rows) {
        EXPECT_EQ(kMalformed, parseVersion(version(major, minor))) << told;
        EXPECT_EQ("wrong specVersion " + told, logLines().back());
        EXPECT_TRUE(device().events.empty());
    }
}

TEST_F(ListVersion, MissingParts_AreRefusedWithoutAMessage) {
    daemon_log_level = 6;
    for (const std::string& specVersion :
         {std::string(), element("specVersion", "<major>1</major>"), element("specVersion", "<minor>0</minor>"),
          element("specVersion", "x"), std::string("<specVersion/>"), std::string("<specVersion />")}) {
        EXPECT_EQ(kMalformed, parseVersion(specVersion)) << specVersion;
        EXPECT_EQ("---- Received FW XML Data End ----", logLines().back()) << specVersion;
        EXPECT_TRUE(device().events.empty());
    }
}

class ListLog : public ListTest {
  protected:
    static std::string received(const std::string& document) {
        return "1000: ---- Received FW XML Data Begin ----\n" + document + "\n---- Received FW XML Data End ----\n";
    }
    static std::string entry(const std::string& function) { return "1000: 1000:" + function + "]\n"; }
};

TEST_F(ListLog, BelowItsLevel_LeavesNoTrace) {
    for (const std::string& document :
         {matchingDocument(), std::string("no document"), listDocument("", version("1", "1")),
          listDocument(firmware(macList(mac(kMac)), "")), listDocument("")}) {
        parse(document);
        EXPECT_EQ("", logText());
        EXPECT_EQ("", device().console);
    }
}

TEST_F(ListLog, Document_IsLoggedWholeAsItCame) {
    daemon_log_level = 6;
    parse(matchingDocument());
    EXPECT_EQ(received(matchingDocument()), logText());
}

TEST_F(ListLog, WrongVersion_IsLoggedBehindTheDocument) {
    daemon_log_level = 6;
    const std::string document = listDocument("", version("1", "1"));
    parse(document);
    EXPECT_EQ(received(document) + "1000: wrong specVersion 1.1\n", logText());
}

TEST_F(ListLog, MalformedList_IsLogged) {
    daemon_log_level = 6;
    const std::string document = element("root", version("1", "0"));
    parse(document);
    EXPECT_EQ(received(document) + "1000: check FirmwareList fail\n", logText());
}

TEST_F(ListLog, MissingAddresses_AreLogged) {
    daemon_log_level = 6;
    for (const auto& [left, told] : {std::pair{element("NotesURL", "/n"), "FwURL not found"},
                                     {element("FwURL", "/i"), "NotesURL not found"},
                                     {std::string(), "FwURL not found"}}) {
        const std::string document = matchingDocument(left);
        const std::string before = logText();
        parse(document);
        EXPECT_EQ(before + received(document) + "1000: " + told + "\n1000: check FirmwareList fail\n", logText());
    }
}

TEST_F(ListLog, Match_IsTracedStepByStep) {
    daemon_log_level = 7;
    const std::string lists =
        macList(mac("none") + macs("00:11:22:aa:00:00", "00:11:22:aa:ff:ff")) + matchList(match("PX_FW1.*"));
    const std::string document = listDocument(firmware(lists, addresses("/PX/PX_FW2.0.bin?id=1/2", "/n")));
    EXPECT_EQ(kNew, parse(document));
    EXPECT_EQ(received(document) + entry("do_FwRoot_Parser") + entry("prepareXmlBlockData") +
                  entry("do_FwEntryList_Parser") + entry("do_FwFirmware_Parser") + entry("do_FwEntryList_Parser") +
                  "1000: Match 'none' with '00:11:22:aa:bb:cc'\n" + entry("do_FwEntryList_Parser") +
                  "1000: Match '00:11:22:aa:00:00'~'00:11:22:aa:ff:ff' with '00:11:22:aa:bb:cc'\n" +
                  entry("do_FwEntryList_Parser") + "1000: Match 'PX_FW1.*' with 'PX_FW1.0.bin'\n" +
                  "1000: done, ret=2\n1000: Final Match '2'(1) with 'PX_FW1.0.bin'\n1000: done, ret=2\n",
              logText());
}

TEST_F(ListLog, NoMatch_IsTracedWithItsResult) {
    daemon_log_level = 7;
    const std::string document = listDocument("");
    EXPECT_EQ(kNone, parse(document));
    EXPECT_EQ(received(document) + entry("do_FwRoot_Parser") + entry("prepareXmlBlockData") +
                  entry("do_FwEntryList_Parser") + "1000: done, ret=1\n1000: done, ret=1\n",
              logText());
}

TEST_F(ListLog, MalformedDocument_IsTracedWithItsResult) {
    daemon_log_level = 7;
    EXPECT_EQ(kMalformed, parse("x"));
    EXPECT_EQ(received("x") + entry("do_FwRoot_Parser") + "1000: done, ret=0\n", logText());
}

} // namespace
