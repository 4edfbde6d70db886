#include "setup_document.h"

using namespace pendra::test;

namespace {

using Lines = std::vector<std::string>;

constexpr const char* kStart = "echo '<?xml version=\"1.0\" ?><root>";

class TemporaryXml : public DeviceTest {
  protected:
    TemporaryXml() { setDirectory("/t"); }
    static void setDirectory(const std::string& path) {
        snprintf(zepXmlData.tmpPath, sizeof zepXmlData.tmpPath, "%s", path.c_str());
    }
};

TEST_F(TemporaryXml, OneElement_IsAWholeDocument) {
    write_ResultXmlFile("a.xml", "X", "1");
    write_ResultXmlFile("b.xml", "Y", "");
    EXPECT_EQ((Lines{"echo '<?xml version=\"1.0\" ?><root><X>1</X></root>' > /t/a.xml",
                     "echo '<?xml version=\"1.0\" ?><root><Y></Y></root>' > /t/b.xml"}),
              device().commands());
}

TEST_F(TemporaryXml, CloseFlag_EndsTheFileAndStartsTheNext) {
    write_TmpXmlFile("a.xml", "A", "a", 0);
    write_TmpXmlFile("a.xml", "B", "b", 0);
    write_TmpXmlFile("a.xml", "C", "c", 1);
    write_TmpXmlFile("a.xml", "D", "d", -1); // any other value but 0 closes too
    write_TmpXmlFile("a.xml", "E", "e", 0);
    EXPECT_EQ(
        (Lines{"echo '<?xml version=\"1.0\" ?><root><A>a</A>' > /t/a.xml", "echo '<B>b</B>' >> /t/a.xml",
               "echo '<C>c</C></root>' >> /t/a.xml", "echo '<?xml version=\"1.0\" ?><root><D>d</D></root>' > /t/a.xml",
               "echo '<?xml version=\"1.0\" ?><root><E>e</E>' > /t/a.xml"}),
        device().commands());
}

TEST_F(TemporaryXml, ResultBehindAnOpenFile_EndsThatFile) {
    write_TmpXmlFile("a.xml", "A", "a", 0);
    write_ResultXmlFile("a.xml", "B", "b");
    EXPECT_EQ("echo '<B>b</B></root>' >> /t/a.xml", device().commands()[1]);
}

TEST_F(TemporaryXml, StatusOfTheShell_IsReturned) {
    for (const int status : {0, 256, -1, 32512}) {
        device().shellStatus = status;
        EXPECT_EQ(status, write_TmpXmlFile("a.xml", "A", "a", 1));
        EXPECT_EQ(status, write_ResultXmlFile("a.xml", "A", "a"));
    }
}

TEST_F(TemporaryXml, FailingShell_ChangesNoState) {
    device().shellStatus = 256;
    write_TmpXmlFile("a.xml", "A", "a", 0);
    write_TmpXmlFile("a.xml", "B", "b", 1);
    EXPECT_EQ("echo '<B>b</B></root>' >> /t/a.xml", device().commands()[1]);
}

TEST_F(TemporaryXml, Values_AreNotEscaped) {
    write_ResultXmlFile("a.xml", "X", "<&'\"$(x)`");
    EXPECT_EQ(Lines{std::string(kStart) + "<X><&'\"$(x)`</X></root>' > /t/a.xml"}, device().commands());
}

// ---- The directory ----

TEST_F(TemporaryXml, EmptyDirectory_IsReadFromTheTreeAndKept) {
    setDirectory("");
    device().tree["/bramble/tempdirecory"] = "/tmp/pendra";
    write_ResultXmlFile("a.xml", "X", "1");
    EXPECT_STREQ("/tmp/pendra", zepXmlData.tmpPath);
    EXPECT_EQ(Lines{"echo '<?xml version=\"1.0\" ?><root><X>1</X></root>' > /tmp/pendra/a.xml"}, device().commands());
    EXPECT_EQ(Lines{"/bramble/tempdirecory"}, device().reads);
    write_ResultXmlFile("a.xml", "X", "1");
    EXPECT_EQ(1u, device().reads.size());
}

TEST_F(TemporaryXml, KnownDirectory_IsNotReadAgain) {
    device().tree["/bramble/tempdirecory"] = "/tmp/pendra";
    write_ResultXmlFile("a.xml", "X", "1");
    EXPECT_EQ(Lines{}, device().reads);
    EXPECT_STREQ("/t", zepXmlData.tmpPath);
}

TEST_F(TemporaryXml, DirectoryThatIsNowhere_IsTheRoot) {
    setDirectory("");
    write_ResultXmlFile("a.xml", "X", "1");
    EXPECT_EQ(Lines{"echo '<?xml version=\"1.0\" ?><root><X>1</X></root>' > /a.xml"}, device().commands());
}

TEST_F(TemporaryXml, DirectoryOf1023Bytes_IsCutToItsField) {
    setDirectory("");
    zepXmlData.scriptPath[0] = 's'; // right behind it
    device().tree["/bramble/tempdirecory"] = std::string(1023, 'd');
    write_ResultXmlFile("a.xml", "X", "1");
    EXPECT_EQ(std::string(127, 'd'), text(zepXmlData.tmpPath));
    EXPECT_EQ('s', zepXmlData.scriptPath[0]);
}

// ---- Long commands ----

TEST_F(TemporaryXml, CommandOfMoreThan255Characters_IsRunAsCut) {
    const std::string frame = std::string(kStart) + "<X></X></root>' > /t/a.xml";
    for (const size_t length : {254u, 255u, 256u, 1023u}) {
        SCOPED_TRACE(length);
        device().forget();
        const std::string value(length - frame.size(), 'v');
        write_ResultXmlFile("a.xml", "X", value.c_str());
        const std::string whole = std::string(kStart) + "<X>" + value + "</X></root>' > /t/a.xml";
        ASSERT_EQ(length, whole.size());
        EXPECT_EQ(Lines{whole.substr(0, 255)}, device().commands());
    }
}

TEST_F(TemporaryXml, CutCommand_StillEndsItsFile) {
    write_TmpXmlFile("a.xml", "A", std::string(1 << 20, 'a').c_str(), 1);
    write_ResultXmlFile("a.xml", "B", "b");
    EXPECT_EQ("echo '<?xml version=\"1.0\" ?><root><B>b</B></root>' > /t/a.xml", device().commands()[1]);
}

TEST_F(TemporaryXml, NullArguments_RunNothing) {
    write_TmpXmlFile(nullptr, "A", "a", 0);
    write_TmpXmlFile("a.xml", nullptr, "a", 0);
    write_TmpXmlFile("a.xml", "A", nullptr, 0);
    write_ResultXmlFile(nullptr, nullptr, nullptr);
    EXPECT_EQ(Events{}, device().events);
}

// ---- Traces ----

TEST_F(TemporaryXml, Level7_ShowsTheCommand) {
    daemon_log_level = 6;
    write_ResultXmlFile("a.xml", "X", "1");
    EXPECT_EQ("", logText());
    daemon_log_level = 7;
    write_ResultXmlFile("a.xml", "X", "1%d");
    EXPECT_EQ("1000: 1000:write_TmpXmlFile]echo '<?xml version=\"1.0\" ?><root><X>1%d</X></root>' > /t/a.xml\n",
              logText());
}

// ---- The file ----

TEST_F(TemporaryXml, File_HoldsTheElementsInOneRoot) {
    device().runShell = true;
    setDirectory(directory());
    EXPECT_EQ(0, write_TmpXmlFile("a.xml", "A", "a", 0));
    EXPECT_EQ(0, write_TmpXmlFile("a.xml", "B", "b", 0));
    EXPECT_EQ(0, write_TmpXmlFile("a.xml", "C", "c", 1));
    EXPECT_EQ("<?xml version=\"1.0\" ?><root><A>a</A>\n<B>b</B>\n<C>c</C></root>\n", readFile(path("a.xml")));
    EXPECT_EQ(0, write_ResultXmlFile("a.xml", "X", "1"));
    EXPECT_EQ("<?xml version=\"1.0\" ?><root><X>1</X></root>\n", readFile(path("a.xml")));
}

TEST_F(TemporaryXml, FileThatCannotBeWritten_GivesTheShellsStatus) {
    device().runShell = true;
    setDirectory(path("missing"));
    EXPECT_NE(0, write_ResultXmlFile("a.xml", "X", "1"));
}

} // namespace
