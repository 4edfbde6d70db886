#include "setupdoc/result_document.h"
#include "setup_document.h"

using namespace pendra;
using namespace pendra::test;

namespace {

class ResultDocument : public DeviceTest {
  protected:
    static void setDirectory(const std::string& path) {
        snprintf(zepXmlData.tmpPath, sizeof zepXmlData.tmpPath, "%s", path.c_str());
    }
    void useRealShell() {
        device().runShell = true;
        setDirectory(directory());
    }
    std::string document() const { return readFile(path("zepset_result.xml")); }
};

std::vector<std::string> commandsOf(int code, const std::string& message, int wait, const std::string& file) {
    return {"echo '<?xml version=\"1.0\" ?>' > " + file,
            "echo '<root>' >> " + file,
            "echo ' <ZepSetResult>" + std::to_string(code) + "</ZepSetResult>' >> " + file,
            "echo ' <ZepSetMsg>" + message + "</ZepSetMsg>' >> " + file,
            "echo ' <ZepGetWaitSec>" + std::to_string(wait) + "</ZepGetWaitSec>' >> " + file,
            "echo '</root>' >> " + file};
}

// ---- Commands ----

TEST_F(ResultDocument, SixCommands_AreRunInOrder) {
    setDirectory("/tmp/pendra");
    write_ZepXml_ResultXml(3, "Device/Wireless5/Channel", 0);
    EXPECT_EQ(commandsOf(3, "Device/Wireless5/Channel", 0, "/tmp/pendra/zepset_result.xml"), device().commands());
    EXPECT_EQ(6u, device().events.size());
}

TEST_F(ResultDocument, EachCode_IsWrittenWithItsWait) {
    setDirectory("/t");
    for (const auto& [code, wait] : std::vector<std::pair<int, int>>{
             {0, 60}, {1, 0}, {2, 0}, {3, 0}, {10, 0}, {11, 0}, {20, 0}, {21, 0}, {-1, -5}, {2147483647, 180}}) {
        device().forget();
        write_ZepXml_ResultXml(code, "m", wait);
        EXPECT_EQ(commandsOf(code, "m", wait, "/t/zepset_result.xml"), device().commands());
        EXPECT_EQ(code, zepXmlData.setResult);
    }
}

TEST_F(ResultDocument, StatusOfTheShell_IsIgnored) {
    device().shellStatus = 256;
    setDirectory("/t");
    write_ZepXml_ResultXml(0, "", 5);
    EXPECT_EQ(commandsOf(0, "", 5, "/t/zepset_result.xml"), device().commands());
}

TEST_F(ResultDocument, EmptyDirectory_IsTheRootAndTheTreeIsNotAsked) {
    device().tree["/bramble/tempdirecory"] = "/tmp/pendra";
    write_ZepXml_ResultXml(0, "", 0);
    EXPECT_EQ(commandsOf(0, "", 0, "/zepset_result.xml"), device().commands());
    EXPECT_EQ(std::vector<std::string>{}, device().reads);
    EXPECT_STREQ("", zepXmlData.tmpPath);
}

TEST_F(ResultDocument, Message_IsNotEscaped) {
    setDirectory("/t");
    write_ZepXml_ResultXml(3, "a'b<c>&\"$(d)`", 0);
    EXPECT_EQ(commandsOf(3, "a'b<c>&\"$(d)`", 0, "/t/zepset_result.xml"), device().commands());
}

TEST_F(ResultDocument, CommandLongerThan127Characters_IsRunAsCut) {
    setDirectory("/t");
    const std::string frame = "echo ' <ZepSetMsg></ZepSetMsg>' >> /t/zepset_result.xml";
    for (const size_t length : {126u, 127u, 128u, 300u}) {
        SCOPED_TRACE(length);
        device().forget();
        const std::string message(length - frame.size(), 'm');
        write_ZepXml_ResultXml(3, message.c_str(), 0);
        std::vector<std::string> expected = commandsOf(3, message, 0, "/t/zepset_result.xml");
        ASSERT_EQ(length, expected[3].size());
        expected[3].resize(std::min<size_t>(length, 127));
        EXPECT_EQ(expected, device().commands());
    }
}

TEST_F(ResultDocument, EveryCommandWithALongDirectory_IsRunAsCut) {
    const std::string longest(127, 'd');
    setDirectory(longest);
    write_ZepXml_ResultXml(0, "", 0);
    std::vector<std::string> expected = commandsOf(0, "", 0, longest); // the file name is cut at 127 characters too
    for (std::string& command : expected)
        command.resize(127);
    EXPECT_EQ(expected, device().commands());
}

// ---- What is kept ----

TEST_F(ResultDocument, CodeAndMessage_AreKeptInTheRecord) {
    write_ZepXml_ResultXml(2, "Device/DeviceName", 0);
    EXPECT_EQ(2, zepXmlData.setResult);
    EXPECT_STREQ("Device/DeviceName", zepXmlData.setMsg);
    write_ZepXml_ResultXml(0, "", 60);
    EXPECT_EQ(0, zepXmlData.setResult);
    EXPECT_STREQ("", zepXmlData.setMsg);
}

TEST_F(ResultDocument, MessageKeptInTheRecord_IsCutAt127Characters) {
    for (const size_t length : {126u, 127u, 128u, 4000u}) {
        zepXmlData.apCloningOnly = 1; // right behind the message
        write_ZepXml_ResultXml(3, std::string(length, 'm').c_str(), 0);
        EXPECT_EQ(std::string(std::min<size_t>(length, 127), 'm'), text(zepXmlData.setMsg));
        EXPECT_EQ(1, zepXmlData.apCloningOnly);
    }
}

TEST_F(ResultDocument, MessageOfTheRecordItself_IsTolerated) {
    setDirectory("/t");
    write_ZepXml_ResultXml(3, "Device/DeviceName", 0);
    device().forget();
    write_ZepXml_ResultXml(2, zepXmlData.setMsg, 0);
    EXPECT_STREQ("Device/DeviceName", zepXmlData.setMsg);
    EXPECT_EQ(commandsOf(2, "Device/DeviceName", 0, "/t/zepset_result.xml"), device().commands());
}

TEST_F(ResultDocument, NullMessage_CountsAsEmpty) {
    write_ZepXml_ResultXml(3, nullptr, 0);
    EXPECT_EQ(3, zepXmlData.setResult);
    EXPECT_STREQ("", zepXmlData.setMsg);
    EXPECT_EQ(commandsOf(3, "", 0, "/zepset_result.xml"), device().commands());
}

// ---- Log ----

TEST_F(ResultDocument, Level5_ShowsTheResultWithoutAPrefix) {
    write_ZepXml_ResultXml(0, "", 60);
    write_ZepXml_ResultXml(2, "Device/DeviceName", 0);
    EXPECT_EQ(
        "1000: Zep SetResult=0, SetMsg='', GetWaitSec=60\n"
        "1000: Zep SetResult=2, SetMsg='Device/DeviceName', GetWaitSec=0\n",
        logText());
}

TEST_F(ResultDocument, Level4_ShowsNothing) {
    daemon_log_level = 4;
    write_ZepXml_ResultXml(2, "Device/DeviceName", 0);
    EXPECT_EQ("", logText());
    EXPECT_EQ(6u, device().commands().size());
}

TEST_F(ResultDocument, Level7_AddsNoTrace) {
    daemon_log_level = 7;
    write_ZepXml_ResultXml(0, "", 1);
    EXPECT_EQ("1000: Zep SetResult=0, SetMsg='', GetWaitSec=1\n", logText());
}

// ---- Reporters ----

TEST_F(ResultDocument, MissingElement_IsResult2WithItsPath) {
    setDirectory("/t");
    reportMissingElement("Device/UpLinkConnection", "ConnType");
    EXPECT_EQ(commandsOf(2, "Device/UpLinkConnection/ConnType", 0, "/t/zepset_result.xml"), device().commands());
}

TEST_F(ResultDocument, InvalidValue_IsResult3WithItsPath) {
    setDirectory("/t");
    reportInvalidValue("Device/Wireless5", "Channel");
    EXPECT_EQ(commandsOf(3, "Device/Wireless5/Channel", 0, "/t/zepset_result.xml"), device().commands());
}

TEST_F(ResultDocument, WithoutParentPath_TheTagAloneIsReported) {
    for (const char* parentPath : {"", static_cast<const char*>(nullptr)}) {
        reportMissingElement(parentPath, "Device");
        EXPECT_EQ(2, zepXmlData.setResult);
        EXPECT_STREQ("Device", zepXmlData.setMsg);
        reportInvalidValue(parentPath, "Channel");
        EXPECT_EQ(3, zepXmlData.setResult);
        EXPECT_STREQ("Channel", zepXmlData.setMsg);
    }
}

TEST_F(ResultDocument, NullTag_CrashesNothing) {
    reportMissingElement("Device", nullptr);
    EXPECT_STREQ("Device/", zepXmlData.setMsg);
    reportMissingElement(nullptr, nullptr);
    EXPECT_STREQ("", zepXmlData.setMsg);
    EXPECT_EQ(2, zepXmlData.setResult);
}

TEST_F(ResultDocument, ReportedPath_IsCutAt127Characters) {
    const std::string parent(121, 'p');
    reportMissingElement(parent.c_str(), "Leave");
    EXPECT_EQ(parent + "/Leave", text(zepXmlData.setMsg));
    reportMissingElement(parent.c_str(), "Leaves");
    EXPECT_EQ(parent + "/Leave", text(zepXmlData.setMsg));
    reportInvalidValue(nullptr, std::string(300, 't').c_str());
    EXPECT_EQ(std::string(127, 't'), text(zepXmlData.setMsg));
    EXPECT_EQ("1000: Zep SetResult=3, SetMsg='" + std::string(127, 't') + "', GetWaitSec=0\n",
              logText().substr(logText().rfind("1000:")));
}

// ---- The file ----

TEST_F(ResultDocument, File_HoldsTheDocument) {
    useRealShell();
    write_ZepXml_ResultXml(0, "", 60);
    EXPECT_EQ(
        "<?xml version=\"1.0\" ?>\n<root>\n <ZepSetResult>0</ZepSetResult>\n <ZepSetMsg></ZepSetMsg>\n"
        " <ZepGetWaitSec>60</ZepGetWaitSec>\n</root>\n",
        document());
}

TEST_F(ResultDocument, File_HoldsTheLastReport) {
    useRealShell();
    reportMissingElement("Device", "DeviceName");
    reportMissingElement("Device/UpLinkConnection", "ConnType");
    EXPECT_EQ(
        "<?xml version=\"1.0\" ?>\n<root>\n <ZepSetResult>2</ZepSetResult>\n"
        " <ZepSetMsg>Device/UpLinkConnection/ConnType</ZepSetMsg>\n"
        " <ZepGetWaitSec>0</ZepGetWaitSec>\n</root>\n",
        document());
}

TEST_F(ResultDocument, SingleQuoteInTheMessage_BreaksItsCommand) {
    useRealShell();
    write_ZepXml_ResultXml(3, "it's", 0);
    EXPECT_EQ(
        "<?xml version=\"1.0\" ?>\n<root>\n <ZepSetResult>3</ZepSetResult>\n"
        " <ZepGetWaitSec>0</ZepGetWaitSec>\n</root>\n",
        document());
}

TEST_F(ResultDocument, CommandCutInsideItsQuotes_LeavesItsLineOut) {
    useRealShell();
    write_ZepXml_ResultXml(3, std::string(127, 'm').c_str(), 0);
    EXPECT_EQ(
        "<?xml version=\"1.0\" ?>\n<root>\n <ZepSetResult>3</ZepSetResult>\n"
        " <ZepGetWaitSec>0</ZepGetWaitSec>\n</root>\n",
        document());
}

TEST_F(ResultDocument, DirectoryThatIsNotThere_CrashesNothing) {
    useRealShell();
    setDirectory(path("missing"));
    write_ZepXml_ResultXml(0, "", 5);
    EXPECT_EQ(6u, device().commands().size());
    EXPECT_EQ("", readFile(path("missing/zepset_result.xml")));
}

} // namespace
