// Partition sizes, the boot loader's and the firmware's partition, and the kernel's version line.
#include <climits>

#include "support/fake_device.h"

using namespace pendra::test;

namespace {

class PartitionTable : public DeviceTest {
  protected:
    PartitionTable() { device().redirectedFiles["/proc/mtd"] = path("mtd"); }
    void table(const std::string& lines) { writeFile(path("mtd"), lines); }
};

constexpr const char* kTable =
    "dev:    size   erasesize  name\n"
    "mtd0: 00020000 00020000 \"Bootloader\"\n"
    "mtd1: 00140000 00020000 \"kernel\"\n"
    "mtd2: 00e80000 00020000 \"rootfs\"\n"
    "mtd3: 01000000 00020000 \"kernel\"\n";

TEST_F(PartitionTable, NamesWithTheirQuotes_GiveTheirSizes) {
    table(kTable);
    EXPECT_EQ(0x20000, getMTDPartSize("\"Bootloader\""));
    EXPECT_EQ(0xE80000, getMTDPartSize("\"rootfs\""));
}

TEST_F(PartitionTable, SeveralLinesOfAName_GiveTheFirst) {
    table(kTable);
    EXPECT_EQ(0x140000, getMTDPartSize("\"kernel\""));
}

TEST_F(PartitionTable, FirstLineOfANameWithSizeZero_Counts) {
    table("mtd0: 00000000 00010000 \"a\"\nmtd1: 00040000 00010000 \"a\"\n");
    EXPECT_EQ(0, getMTDPartSize("\"a\""));
}

TEST_F(PartitionTable, OtherNames_GiveNothing) {
    table(kTable);
    testing::internal::CaptureStderr();
    for (const char* name : {"Bootloader", "\"bootloader\"", "\"Bootloader", "\"Boot\"", "\"Bootloader2\"", "", " "})
        EXPECT_EQ(0, getMTDPartSize(name)) << name;
    EXPECT_EQ(0, getMTDPartSize(nullptr));
    EXPECT_EQ("", testing::internal::GetCapturedStderr());
}

TEST_F(PartitionTable, TableWithoutQuotes_IsComparedAsItStands) {
    table("mtd0: 00020000 00020000 Bootloader\n");
    EXPECT_EQ(0x20000, getMTDPartSize("Bootloader"));
    EXPECT_EQ(0, getMTDPartSize("\"Bootloader\""));
}

TEST_F(PartitionTable, SizeWord_IsReadAsHexadecimal) {
    const struct {
        std::string word;
        int32_t size;
    } rows[] = {
        {"10", 16}, {"0", 0}, {"ABCDEF", 0xABCDEF}, {"0x1000", 0x1000}, {"20000x", 0x20000}, {"7fffffff", INT_MAX},
        {"size", 0}};
    for (const auto& [word, size] : rows) {
        table("mtd0: " + word + " 00020000 \"a\"\n");
        EXPECT_EQ(size, getMTDPartSize("\"a\"")) << word;
    }
}

TEST_F(PartitionTable, TabsAndManyBlanks_SplitWordsToo) {
    table("  mtd0:\t 00020000 \t00010000\t\"a\"  \n");
    EXPECT_EQ(0x20000, getMTDPartSize("\"a\""));
}

TEST_F(PartitionTable, FurtherWords_AreNotLookedAt) {
    table("mtd0: 00020000 00010000 \"a\" \"b\"\n");
    EXPECT_EQ(0x20000, getMTDPartSize("\"a\""));
    EXPECT_EQ(0, getMTDPartSize("\"b\""));
}

TEST_F(PartitionTable, LinesOfFewerWords_MatchNothingAndStopNothing) {
    table("\n\"a\"\nmtd0: 00020000 \"a\"\nmtd1: 00030000 00010000\n   \nmtd2: 00040000 00010000 \"a\"\n");
    EXPECT_EQ(0x40000, getMTDPartSize("\"a\""));
}

// A line's four words are its own: a short line does not take the name of a line that was read earlier.
TEST_F(PartitionTable, ShortLineAfterAMatch_StaysWithoutAName) {
    table("mtd0: 00020000 00010000 \"a\"\n");
    EXPECT_EQ(0x20000, getMTDPartSize("\"a\""));
    table("mtd1: 00030000 00010000\n");
    EXPECT_EQ(0, getMTDPartSize("\"a\""));
}

TEST_F(PartitionTable, LastLineWithoutALineEnd_Counts) {
    table("mtd0: 00020000 00010000 \"a\"\nmtd1: 00030000 00010000 \"b\"");
    EXPECT_EQ(0x30000, getMTDPartSize("\"b\""));
}

std::string lineOf(size_t length, const std::string& size) {
    std::string line = "mtd0: " + size + " 00010000 \"a\"";
    return line.insert(5, length - line.size(), ' ') + "\n";
}

// A line is read into 128 bytes, its line end and a NUL included.
TEST_F(PartitionTable, LineAtTheBuffersEnd_StillCounts) {
    for (const size_t length : {125U, 126U}) {
        table(lineOf(length, "00020000") + lineOf(40, "00030000"));
        EXPECT_EQ(0x20000, getMTDPartSize("\"a\"")) << length;
    }
}

TEST_F(PartitionTable, LongerLine_MatchesNothingAndStopsNothing) {
    for (const size_t length : {127U, 128U, 129U, 254U, 255U, 256U, 1000U, 100000U}) {
        table(lineOf(length, "00020000") + lineOf(40, "00030000"));
        EXPECT_EQ(0x30000, getMTDPartSize("\"a\"")) << length;
    }
}

// What stands behind the first 127 bytes of a long line is no line of its own.
TEST_F(PartitionTable, TailOfALongLine_IsNoLine) {
    table(std::string(127, 'x') + "mtd0: 00020000 00010000 \"a\"\nmtd1: 00030000 00010000 \"a\"\n");
    EXPECT_EQ(0x30000, getMTDPartSize("\"a\""));
    table(std::string(127, 'x') + "mtd0: 00020000 00010000 \"a\"");
    EXPECT_EQ(0, getMTDPartSize("\"a\""));
}

TEST_F(PartitionTable, LongestName_IsFoundWhole) {
    const std::string name(90, 'n');
    table("mtd0: 00020000 00010000 " + name + "\n");
    EXPECT_EQ(0x20000, getMTDPartSize(name.c_str()));
    EXPECT_EQ(0, getMTDPartSize((name + "n").c_str()));
    EXPECT_EQ(0, getMTDPartSize(std::string(4000, 'n').c_str()));
}

TEST_F(PartitionTable, EmptyTable_GivesNothing) {
    table("");
    EXPECT_EQ(0, getMTDPartSize("\"a\""));
}

TEST_F(PartitionTable, NoTable_IsToldWithoutALineEnd) {
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    EXPECT_EQ(0, getMTDPartSize("\"a\""));
    EXPECT_EQ("mtd support not enable?", testing::internal::GetCapturedStderr());
    EXPECT_EQ("", testing::internal::GetCapturedStdout());
    EXPECT_TRUE(device().events.empty());
}

class BootLoader : public DeviceTest {
  protected:
    int32_t write(const char* image, int32_t offset, int32_t length) {
        testing::internal::CaptureStdout();
        const int32_t result = mtd_write_bootloader(image, offset, length);
        printed_ = testing::internal::GetCapturedStdout();
        return result;
    }
    const std::string& printed() const { return printed_; }

  private:
    std::string printed_;
};

TEST_F(BootLoader, Write_RunsTheWriterToolAndSaysSo) {
    EXPECT_EQ(0, write("/tmp/upld.bin", 64, 131072));
    EXPECT_EQ(Events{"run /bin/mtd_write -o 64 -l 131072 write /tmp/upld.bin Bootloader"}, device().events);
    EXPECT_EQ("write bootloader", printed());
}

TEST_F(BootLoader, OffsetsAndLengthsAtTheirEdges_AreHandedOnAsTheyAre) {
    write("a", INT_MIN, INT_MAX);
    write("a", -1, 0);
    EXPECT_EQ((Events{"run /bin/mtd_write -o -2147483648 -l 2147483647 write a Bootloader",
                      "run /bin/mtd_write -o -1 -l 0 write a Bootloader"}),
              device().events);
}

TEST_F(BootLoader, StatusOfTheTool_IsPassedThrough) {
    for (const int status : {0, 1, 256, 32512, -1}) {
        device().shellStatus = status;
        EXPECT_EQ(status, write("a", 0, 0));
    }
}

// The command has 512 bytes, its NUL included.
TEST_F(BootLoader, LongPath_CutsTheCommand) {
    const std::string start = "/bin/mtd_write -o 0 -l 1 write ";
    const std::string end = " Bootloader";
    for (const size_t size : {510U, 511U, 512U, 4000U}) {
        SCOPED_TRACE(size);
        device().forget();
        const std::string image(size - start.size() - end.size(), 'p');
        write(image.c_str(), 0, 1);
        EXPECT_EQ(Events{"run " + (start + image + end).substr(0, 511)}, device().events);
    }
}

TEST_F(BootLoader, NoPath_RunsNothing) {
    EXPECT_EQ(-1, write(nullptr, 0, 64));
    EXPECT_TRUE(device().events.empty());
}

class FirmwarePartition : public DeviceTest {};

TEST_F(FirmwarePartition, Write_IsRefusedWithAMessageAndRunsNothing) {
    for (const char* image : {static_cast<const char*>(nullptr), "", "/tmp/upld.bin"}) {
        testing::internal::CaptureStderr();
        testing::internal::CaptureStdout();
        EXPECT_EQ(-1, mtd_write_firmware(image, 0, 64));
        EXPECT_EQ("goahead: no CONFIG_RT2880_ROOTFS defined!", testing::internal::GetCapturedStderr());
        EXPECT_EQ("", testing::internal::GetCapturedStdout());
    }
    EXPECT_TRUE(device().events.empty());
}

class KernelVersion : public DeviceTest {
  protected:
    KernelVersion() { device().redirectedFiles["/proc/version"] = path("version"); }
    void version(const std::string& text) { writeFile(path("version"), text); }
    static Events keeping(const std::string& line) { return {"run nvram_set 2860 old_firmware \"" + line + "\""}; }
};

TEST_F(KernelVersion, FirstLine_IsKeptWithItsLineEnd) {
    version("Linux version 2.6.36 (root@build) #1 SMP\nsecond line\n");
    EXPECT_EQ(0, write_flash_kernel_version());
    EXPECT_EQ(keeping("Linux version 2.6.36 (root@build) #1 SMP\n"), device().events);
}

TEST_F(KernelVersion, LineWithoutALineEnd_IsKeptAsItIs) {
    version("Linux");
    write_flash_kernel_version();
    EXPECT_EQ(keeping("Linux"), device().events);
}

TEST_F(KernelVersion, EmptyLine_IsKept) {
    version("\nsecond\n");
    write_flash_kernel_version();
    EXPECT_EQ(keeping("\n"), device().events);
}

// 512 bytes, the NUL included; the command holds all of them.
TEST_F(KernelVersion, LongLine_IsCut) {
    for (const size_t length : {509U, 510U, 511U, 512U, 4000U}) {
        SCOPED_TRACE(length);
        device().forget();
        const std::string text = std::string(length, 'v') + "\n";
        version(text);
        write_flash_kernel_version();
        EXPECT_EQ(keeping(text.substr(0, 511)), device().events);
    }
}

TEST_F(KernelVersion, StatusOfTheTool_IsPassedThrough) {
    version("Linux\n");
    for (const int status : {0, 1, 256, 32512, -1}) {
        device().shellStatus = status;
        EXPECT_EQ(status, write_flash_kernel_version());
    }
}

TEST_F(KernelVersion, UnreadableFile_RunsNothing) {
    EXPECT_EQ(-1, write_flash_kernel_version());
    version("");
    EXPECT_EQ(-1, write_flash_kernel_version());
    device().redirectedFiles["/proc/version"] = directory();
    EXPECT_EQ(-1, write_flash_kernel_version());
    EXPECT_TRUE(device().events.empty());
}

} // namespace
