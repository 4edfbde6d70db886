// The root of a document, and what every run logs and remembers.
#include "setup_document.h"
#include "setupdoc/document_run.h"

using namespace pendra;
using namespace pendra::test;

namespace {

using Lines = std::vector<std::string>;

const char* const kNoRoot = "<specVersion><major>1</major></specVersion><Device></Device>";

class RootParser : public DeviceTest {
  protected:
    RootParser() { loadRouter(device()); }

    static int32_t run(const std::string& text) {
        device().forget();
        Buffer buffer(text);
        return do_ZepXml_Parser(buffer.text());
    }
    Lines linesWith(const std::string& part) const {
        Lines found;
        for (const std::string& line : logLines())
            if (line.find(part) != std::string::npos) found.push_back(line);
        return found;
    }
};

// ---- Root ----

TEST_F(RootParser, DeviceTree_IsParsed) {
    Buffer buffer(documentText(deviceElement().set("DeviceName", "Attic")));
    EXPECT_EQ(1, do_ZepRoot_Parser(buffer.text()));
    EXPECT_STREQ("Attic", zepXmlData.device.DeviceName);
    EXPECT_EQ(Lines{}, device().commands()); // parsing alone reports and writes nothing
}

TEST_F(RootParser, FailingDevice_GivesZero) {
    Buffer buffer(documentText(deviceElement().drop("DevicePwd")));
    EXPECT_EQ(0, do_ZepRoot_Parser(buffer.text()));
}

TEST_F(RootParser, MissingOrOtherVersion_GivesZero) {
    for (const int minor : {0, 2}) {
        Buffer buffer(documentText(deviceElement(), 1, minor));
        EXPECT_EQ(0, do_ZepRoot_Parser(buffer.text())) << minor;
    }
    Buffer buffer("<root>" + deviceElement().text() + "</root>");
    EXPECT_EQ(0, do_ZepRoot_Parser(buffer.text()));
}

TEST_F(RootParser, Document_IsCutForGoodAtTheEndOfTheRoot) {
    const std::string whole = documentText(deviceElement()) + "<Other>behind</Other>";
    Buffer buffer(whole);
    EXPECT_EQ(1, do_ZepRoot_Parser(buffer.text()));
    std::string expected = whole;
    expected[whole.find("</root>")] = '\0';
    EXPECT_EQ(expected, buffer.whole());
}

TEST_F(RootParser, TextBehindTheRoot_IsNeverSeen) {
    EXPECT_EQ(0, run(documentText(deviceElement().drop("SafetyWdn")) + safetyElement().text()));
    EXPECT_STREQ("SafetyWdn", zepXmlData.setMsg);
    EXPECT_EQ(0, run(documentText(deviceElement().set("SafetyWdn", "")) + safetyElement().content()));
    EXPECT_STREQ("Device/SafetyWdn/SafetyWdnEnbl", zepXmlData.setMsg);
}

TEST_F(RootParser, TextBeforeTheRoot_IsNotSeenEither) {
    EXPECT_EQ(0, run(versionElement(1, 1).text() + "<root>" + deviceElement().text() + "</root>"));
    EXPECT_STREQ("specVersion", zepXmlData.setMsg);
}

TEST_F(RootParser, RootInAnyCase_IsFound) {
    const std::string content = rootElement(deviceElement()).content();
    EXPECT_EQ(1, run("<ROOT>" + content + "</Root>"));
}

TEST_F(RootParser, EmptyRoots_MissTheVersion) {
    for (const char* text : {"<root></root>", "<root/>", "<root />"}) {
        SCOPED_TRACE(text);
        zepXmlData.setMsg[0] = '\0';
        EXPECT_EQ(0, run(text));
        EXPECT_EQ(2, zepXmlData.setResult);
        EXPECT_STREQ("specVersion", zepXmlData.setMsg);
    }
}

// ---- Without a root ----

TEST_F(RootParser, WithoutRoot_NothingIsReadOrWritten) {
    zepXmlData.setResult = 7;
    std::strcpy(zepXmlData.setMsg, "before");
    for (const char* text : {kNoRoot, "", "<root>", "<root a=\"1\"></root>", "</root>"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(0, run(text));
        EXPECT_EQ(Events{}, device().events);
        EXPECT_EQ(Lines{}, device().reads);
    }
    EXPECT_EQ(7, zepXmlData.setResult);
    EXPECT_STREQ("before", zepXmlData.setMsg);
}

TEST_F(RootParser, WithoutRoot_ThePreviousResultFileStays) {
    device().runShell = true;
    device().tree["/bramble/tempdirecory"] = directory();
    run(documentText(deviceElement(), 3, 0));
    const std::string before = readFile(path("zepset_result.xml"));
    EXPECT_NE(std::string::npos, before.find("<ZepSetResult>1</ZepSetResult>"));
    run(kNoRoot);
    EXPECT_EQ(before, readFile(path("zepset_result.xml")));
}

// ---- The first run ----

TEST_F(RootParser, FirstRun_ClearsThePreviousSyncIdsOnce) {
    zepXmlData.pre_exeflag = 5;
    run(documentText(deviceElement()));
    EXPECT_EQ(0, zepXmlData.pre_exeflag);
    zepXmlData.pre_exeflag = 5;
    run(documentText(deviceElement()));
    EXPECT_EQ(5, zepXmlData.pre_exeflag);
}

TEST_F(RootParser, FirstRunThatFails_IsTheFirstAllTheSame) {
    zepXmlData.pre_exeflag = 5;
    run(documentText(deviceElement(), 3, 0));
    EXPECT_EQ(0, zepXmlData.pre_exeflag);
    zepXmlData.pre_exeflag = 5;
    run(documentText(deviceElement()));
    EXPECT_EQ(5, zepXmlData.pre_exeflag);
}

TEST_F(RootParser, RunWithoutRoot_IsNotTheFirst) {
    zepXmlData.pre_exeflag = 5;
    run(kNoRoot);
    EXPECT_EQ(5, zepXmlData.pre_exeflag);
    run(documentText(deviceElement()));
    EXPECT_EQ(0, zepXmlData.pre_exeflag);
}

// ---- The hook ----

TEST_F(RootParser, EachRun_PointsTheHookAtTheReporter) {
    for (const std::string& text : {documentText(deviceElement()), std::string(kNoRoot)}) {
        XmlErrMsg_LostKey = nullptr;
        run(text);
        ASSERT_NE(nullptr, XmlErrMsg_LostKey);
        device().forget();
        XmlErrMsg_LostKey("Device", "DeviceName");
        EXPECT_EQ(2, zepXmlData.setResult);
        EXPECT_STREQ("Device/DeviceName", zepXmlData.setMsg);
        EXPECT_EQ(6u, device().commands().size());
    }
}

// ---- Logs ----

TEST_F(RootParser, Level6_ShowsTheWholeDocumentFirst) {
    daemon_log_level = 6;
    const std::string document = documentText(deviceElement());
    run(document);
    EXPECT_EQ(0u, logText().find("1000: ---- Received Zep XML Data Begin ----\n" + document +
                                 "\n---- Received Zep XML Data End ----\n1000: "));
}

TEST_F(RootParser, DocumentLine_IsOneMessageCutAt5119Characters) {
    daemon_log_level = 6;
    const std::string begin = "---- Received Zep XML Data Begin ----\n";
    const std::string document(10000, 'd');
    run(document);
    // Cut before its line end, so that the dump goes on in the same line.
    EXPECT_EQ(0u, logText().find("1000: " + begin + document.substr(0, 5119 - begin.size()) + "----ZEPXML_BGN----\n"));
}

TEST_F(RootParser, EveryRun_DumpsTheRecordOnce) {
    daemon_log_level = 6;
    const std::vector<std::string> documents = {documentText(deviceElement()), documentText(deviceElement(), 3, 0),
                                                documentText(deviceElement().drop("DeviceName")),
                                                documentText(deviceElement().set("DeviceName", "")), kNoRoot};
    for (const std::string& document : documents) {
        std::remove(logFile().c_str());
        run(document);
        EXPECT_EQ(1u, linesWith("----ZEPXML_BGN----").size());
        EXPECT_EQ("----ZEPXML_END----", logLines().back());
    }
}

TEST_F(RootParser, Dump_ComesBehindTheResult) {
    daemon_log_level = 6;
    run(documentText(deviceElement().drop("DeviceName")));
    EXPECT_LT(logText().find("Zep SetResult=2, SetMsg='Device/DeviceName', GetWaitSec=0\n"),
              logText().find("----ZEPXML_BGN----"));
}

TEST_F(RootParser, Level7_TracesARunWithoutRoot) {
    daemon_log_level = 7;
    run(kNoRoot);
    const Lines lines = logLines();
    ASSERT_LT(5u, lines.size());
    EXPECT_EQ((Lines{"1000:do_ZepXml_Parser_]", "---- Received Zep XML Data Begin ----", kNoRoot,
                     "---- Received Zep XML Data End ----", "1000:do_ZepRoot_Parser]", "----ZEPXML_BGN----"}),
              Lines(lines.begin(), lines.begin() + 6));
    EXPECT_EQ("done, ret=0", lines.back());
}

TEST_F(RootParser, Level7_TracesTheStepsOfARun) {
    daemon_log_level = 7;
    run(documentText(Element("Device", {{"Configurable", "0"}})));
    EXPECT_EQ((Lines{"1000:do_ZepXml_Parser_]", "1000:do_ZepRoot_Parser]", "1000:restore_XmlZepStatus]",
                     "1000:prepareXmlBlockData]", "1000:do_ZepDevice_Parser]", "1000:prepareXmlBlockData]",
                     "1000:Verify_ZepXml]", "1000:Apply_ZepXmlToDevice]"}),
              linesWith("]"));
    EXPECT_EQ("done, ret=1", logLines().back());
}

TEST_F(RootParser, Level5_ShowsTheResultOnly) {
    run(documentText(deviceElement()));
    run(kNoRoot);
    EXPECT_EQ("1000: Zep SetResult=0, SetMsg='', GetWaitSec=0\n", logText());
}

TEST_F(RootParser, Level4_ShowsNothingOfASuccess) {
    daemon_log_level = 4;
    run(documentText(deviceElement().set("DeviceName", "Attic")));
    run(documentText(deviceElement().drop("DeviceName")));
    EXPECT_EQ("", logText());
}

} // namespace
