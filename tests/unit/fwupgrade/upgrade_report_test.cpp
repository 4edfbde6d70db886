// The report of an image: its size and its version.
#include "upgrade.h"

using namespace pendra::test;

namespace {

class ReportedSize : public UpgradeTest {};

TEST_F(ReportedSize, Image_IsMeasuredInItsUnit) {
    const std::pair<size_t, const char*> rows[] = {
        {0, "0"},
        {1, "1"},
        {999, "999"},
        {1000, "0.98 K"},
        {1001, "0.98 K"},
        {1023, "1.00 K"},
        {1024, "1.00 K"},
        {1536, "1.50 K"},
        {1023999, "1000.00 K"},
        {1024000, "0.98 M"},
        {1048576, "1.00 M"},
        {3670016, "3.50 M"},
        {19999999, "19.07 M"},
        {20000000, "19.07 M"},
        {20000001, "0"},
        {100000000, "0"},
    };
    for (const auto& [size, text] : rows) {
        storeImage(size);
        EXPECT_EQ(imageReport(4, text, ""), actIn(4, '9')) << size;
    }
}

TEST_F(ReportedSize, MissingImage_CountsAsNothing) {
    EXPECT_EQ(imageReport(4, "0", ""), actIn(4, '9'));
}

TEST_F(ReportedSize, ImageName_IsItsNodeOrTheDefault) {
    storeImage(7);
    device().tree["/fwupgradeinfo/fwupgradefn"] = "px.img";
    actIn(4, '9');
    EXPECT_EQ("0", written("fwsize"));
    device().tree.erase("/fwupgradeinfo/fwupgradefn");
    EXPECT_EQ(Events{"set /fwupgradeinfo/fwupgradefn=upld.bin"} + imageReport(4, "7", ""), actIn(4, '9'));
}

TEST_F(ReportedSize, StatusBelowTwo_LooksAtNoImage) {
    device().tree.erase("/fwupgradeinfo/fwupgradefn");
    for (const int32_t status : {1, 0, -1, -2, -5})
        EXPECT_EQ(shortReport(status), actIn(status, '9'));
}

struct VersionRow {
    std::string address;
    std::string version;
};

class ReportedVersion : public UpgradeTest {
  protected:
    // Of an image whose path is that short that no version of a table stands inside it.
    static std::string versionOf(const std::string& address, const std::string& image = "u") {
        setDirectory("/t");
        device().tree["/fwupgradeinfo/fwupgradefn"] = image;
        device().tree[kFileNode] = address;
        actIn(2, '9');
        return written("fwver");
    }
};

TEST_F(ReportedVersion, LastComponent_HoldsIt) {
    const VersionRow rows[] = {
        {"http://s/PX_FW1.2.3", "1.2.3"},
        {"http://s/PX_FW1.2.bin", "1.2."}, // the run may end in a dot
        {"http://s/PX_FW12", "12"},
        {"http://s/PX_FW...", "..."},
        {"http://s/PX_FW1a2", "1"},
        {"http://s/PX_FW1,2", "1"},
        {"http://s/PX_FW", ""},
        {"http://s/PX_FWv1", ""},
        {"http://s/_FW1.2", "1.2"},
        {"http://s/PX__FW1", "1"},
        {"http://s/PX_F_FW1", "1"},
        {"http://s/PX_FW1_FW2", "1"}, // the first one counts
        {"http://s/PX_FWx_FW2", ""},
        {"http://s/PX_fw1.2", ""},
        {"http://s/PX_Fw1.2", ""},
        {"http://s/PX_F W1.2", ""},
        {"http://s/PXFW1.2", ""},
        {"http://s/PX-1.2.bin", ""},
        {"http://s/", ""},
        {"", ""},
        {"PX_FW7", "7"},
    };
    for (const auto& [address, version] : rows)
        EXPECT_EQ(version, versionOf(address)) << address;
}

TEST_F(ReportedVersion, QueriesAndDirectories_DoNotCount) {
    const VersionRow rows[] = {
        {"http://s/PX_FW1.2?v=_FW9", "1.2"},
        {"http://s/PX_FW1.2?a/b_FW9", "1.2"},
        {"http://s/PX.bin?_FW9", ""},
        {"http://s/PX.bin?x/_FW9", ""},
        {"http://s/PX_FW9/image.bin", ""},
        {"http://s/PX_FW9/", ""},
        {"http://s/PX_FW9/PX_FW1", "1"},
        {"http://s/PX_FW1?", "1"},
        {"?http://s/PX_FW1", ""},
    };
    for (const auto& [address, version] : rows)
        EXPECT_EQ(version, versionOf(address)) << address;
}

// The image's path is written over the address; what stands where the version began is reported.
TEST_F(ReportedVersion, ImagePath_ShowsFromWhereTheVersionBegan) {
    const struct {
        std::string address, image, version;
    } rows[] = {
        {"PX_FW7.8", "u", "7.8"},           // "/t/u" ends before position 5
        {"PX_FW7.8", "up", ""},             // "/t/up" ends right there
        {"PX_FW7.8", "upl", "l"},           // "/t/upl" reaches one character into it
        {"PX_FW7.8", "upld.bin", "ld.bin"}, // and this one goes far beyond
        {"http://s/PX_FW1.2.bin", "0123456789", "1.2."},
        {"http://s/PX_FW1.2.bin", "0123456789a", ""},
        {"http://s/PX_FW1.2.bin", "0123456789ab", "b"},
        {"http://s/PX_FW1.2.bin", "0123456789abcde", "bcde"},
        {"http://s/PX_FW1.2.bin", "0123456789abcdefgh", "bcdefgh"},
        {"PX_FWx", "upld.bin", "ld.bin"}, // a version of no characters has a place too
        {"PX.bin", "upld.bin", ""},       // no version has none
    };
    for (const auto& [address, image, version] : rows)
        EXPECT_EQ(version, versionOf(address, image)) << address << " " << image;
}

// The buffer of address and path has 128 bytes.
TEST_F(ReportedVersion, LongAddress_IsCut) {
    for (const size_t digits : {1U, 2U, 3U, 4U}) {
        const std::string start = std::string(122, 'a') + "_FW";
        EXPECT_EQ(std::string("1234").substr(0, std::min(digits, size_t{2})),
                  versionOf(start + std::string("1234").substr(0, digits)))
            << digits;
    }
    EXPECT_EQ("", versionOf(std::string(124, 'a') + "_FW1"));
    EXPECT_EQ("", versionOf(std::string(125, 'a') + "_FW1"));
    EXPECT_EQ("", versionOf(std::string(1020, 'a') + "_FW"));
}

TEST_F(ReportedVersion, LongImageName_IsCutToTheBuffer) {
    EXPECT_EQ(std::string(122, 'n'), versionOf("PX_FW7", std::string(124, 'n')));
    EXPECT_EQ(std::string(122, 'n'), versionOf("PX_FW7", std::string(125, 'n')));
    EXPECT_EQ(std::string(122, 'n'), versionOf("PX_FW7", std::string(1023, 'n')));
}

TEST_F(ReportedVersion, Trace_HoldsEveryWrite) {
    daemon_log_level = 7;
    const Events events = actIn(2, '9');
    ASSERT_EQ(3U, events.size());
    EXPECT_EQ((std::vector<std::string>{"1000:do_FwUpgradeAction]", "1000:write_TmpXmlFile]" + events[0].substr(4),
                                        "1000:write_TmpXmlFile]" + events[1].substr(4),
                                        "1000:write_TmpXmlFile]" + events[2].substr(4), "zepcheckfw.xml done"}),
              logLines());
}

} // namespace
