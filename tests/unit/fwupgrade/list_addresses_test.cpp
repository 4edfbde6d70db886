// The addresses of a matching entry, and whether the device runs its image already.
#include "list_document.h"

using namespace pendra::test;

namespace {

class ListAddresses : public ListTest {};

TEST_F(ListAddresses, EngineeringServer_GivesTheBase) {
    device().tree["/fwupgradeinfo/isEngFwServer"] = "1";
    EXPECT_EQ(kNew, parse(matchingDocument()));
    EXPECT_EQ("http://127.0.0.1:8481/PX/PX_FW2.0.bin", fileUrl());
    EXPECT_EQ("http://127.0.0.1:8481/PX/notes.txt", notesUrl());
    EXPECT_EQ(storing(fileUrl(), notesUrl()), device().events);
}

TEST_F(ListAddresses, Record_HoldsThem) {
    parse(matchingDocument());
    EXPECT_EQ(fileUrl(), fwXmlData.fileUrl);
    EXPECT_EQ(notesUrl(), fwXmlData.notesUrl);
}

// 128 bytes for base, path and NUL.
TEST_F(ListAddresses, LongPaths_AreCutToTheirFields) {
    for (const std::string base : {kServer, kEngineeringServer}) {
        device().tree["/fwupgradeinfo/isEngFwServer"] = base == kServer ? "0" : "1";
        const size_t room = 127 - base.size();
        for (const size_t length : {room - 1, room, room + 1, size_t{200}, size_t{4000}}) {
            SCOPED_TRACE(base + " " + std::to_string(length));
            const std::string image = "/" + std::string(length - 1, 'i');
            const std::string notes = "/" + std::string(length - 1, 'n');
            EXPECT_EQ(kNew, parse(matchingDocument(addresses(image, notes))));
            EXPECT_EQ(base + image.substr(0, room), fileUrl());
            EXPECT_EQ(base + notes.substr(0, room), notesUrl());
            EXPECT_EQ(storing(fileUrl(), notesUrl()), device().events);
        }
    }
}

TEST_F(ListAddresses, Paths_AreDecodedAndNotTrimmed) {
    EXPECT_EQ(kNew, parse(matchingDocument(addresses(" /i?a=1&amp;b=2 ", "\n/n&lt;&#62;\t"))));
    EXPECT_EQ("http://fw.pendra.example /i?a=1&b=2 ", fileUrl());
    EXPECT_EQ("http://fw.pendra.example\n/n<>\t", notesUrl());
}

// Decoding shortens a text; what the field held before must not show behind it.
TEST_F(ListAddresses, EarlierAddresses_LeaveNothingBehind) {
    parse(matchingDocument(addresses("/" + std::string(100, 'i'), "/" + std::string(100, 'n'))));
    EXPECT_EQ(kNew, parse(matchingDocument(addresses("/a&amp;b&amp;c&amp;d", "/&quot;&quot;"))));
    EXPECT_EQ("http://fw.pendra.example/a&b&c&d", fileUrl());
    EXPECT_EQ("http://fw.pendra.example/\"\"", notesUrl());
}

TEST_F(ListAddresses, EmptyPaths_LeaveTheBase) {
    for (const std::string& where : {addresses("", ""), std::string("<FwURL/><NotesURL />")}) {
        EXPECT_EQ(kNew, parse(matchingDocument(where)));
        EXPECT_EQ(kServer, fileUrl());
        EXPECT_EQ(kServer, notesUrl());
    }
}

TEST_F(ListAddresses, MissingAddresses_AreMalformed) {
    for (const std::string& where : {std::string(), element("FwURL", "/i"), element("NotesURL", "/n")}) {
        EXPECT_EQ(kMalformed, parse(matchingDocument(where))) << where;
        EXPECT_TRUE(device().events.empty());
    }
}

TEST_F(ListAddresses, AddressesOfAnotherEntry_DoNotCount) {
    EXPECT_EQ(kMalformed, parse(listDocument(firmware(macList(mac(kMac)), "") + firmware(macList(mac(kMac))))));
}

TEST_F(ListAddresses, EntryThatDoesNotMatch_NeedsNone) {
    EXPECT_EQ(kNew, parse(listDocument(firmware(macList(mac("none")), "") + firmware(macList(mac(kMac))))));
}

// A guard of the tree may refuse an address; the result stays what the document says.
TEST_F(ListAddresses, RefusedWrites_DoNotChangeTheResult) {
    device().refuseWrites = true;
    EXPECT_EQ(kNew, parse(matchingDocument()));
    EXPECT_FALSE(device().has(kFileNode));
}

class RunningFirmware : public ListTest {
  protected:
    void expect(const std::string& running, const std::string& image, bool runs) {
        SCOPED_TRACE(running + " " + image);
        device().tree["/fwupgradeinfo/currfwfilename"] = running;
        EXPECT_EQ(runs ? kNone : kNew, parse(matchingDocument(addresses(image, "/n"))));
        EXPECT_EQ(runs ? "" : kServer + image, fileUrl());
        EXPECT_EQ(runs, notesUrl().empty());
        EXPECT_EQ(runs ? Events() : storing(kServer + image, std::string(kServer) + "/n"), device().events);
    }
};

TEST_F(RunningFirmware, SameFileName_IsNothingNew) {
    expect(kRunning, "/PX_FW1.0.bin", true);
    expect(kRunning, "/PX/beta/PX_FW1.0.bin", true);
    expect(kRunning, "/PX_FW1.0.bin?", true);
    expect(kRunning, "/PX_FW1.0.bin?id=1&x=?", true);
}

TEST_F(RunningFirmware, OtherFileName_IsNew) {
    expect(kRunning, "/PX_FW1.1.bin", false);
    expect(kRunning, "/px_fw1.0.bin", false);
    expect(kRunning, "/PX_FW1.0.bin/x", false);
    expect(kRunning, "/PX_FW1.0.bin2", false);
    expect(kRunning, "/PX_FW1.0.bin#1", false);
    expect(kRunning, "/PX_FW1.1.bin?PX_FW1.0.bin", false);
    expect("", "/PX_FW1.0.bin", false);
}

// As many characters as the address names are compared.
TEST_F(RunningFirmware, NameThatBeginsWithTheAddresss_IsNothingNew) {
    expect("PX_FW1.0.bin.old", "/PX_FW1.0.bin", true);
    expect(kRunning, "/PX", true);
    expect(kRunning, "/P?X", true);
    expect(kRunning, "/PX/", true);
    expect(kRunning, "/PX/?PY", true);
}

// The last slash counts, even in a query.
TEST_F(RunningFirmware, SlashInAQuery_StartsTheName) {
    expect(kRunning, "/PX_FW1.0.bin?from=/PX_FW1.1.bin", false);
    expect(kRunning, "/PX_FW1.1.bin?from=/PX_FW1.0.bin", true);
    expect(kRunning, "/PX_FW1.1.bin?from=/PX_FW1.0.bin?x", true);
}

TEST_F(RunningFirmware, FirstMatchThatRuns_EndsTheSearch) {
    EXPECT_EQ(kNone, parse(listDocument(firmware(macList(mac(kMac)), addresses("/PX_FW1.0.bin", "/n")) +
                                        firmware(macList(mac(kMac)), addresses("/PX_FW2.0.bin", "/n")))));
    EXPECT_TRUE(device().events.empty());
}

TEST_F(RunningFirmware, EarlierStoredAddresses_Stay) {
    device().tree[kFileNode] = "earlier";
    expect(kRunning, "/PX_FW1.0.bin", true);
    EXPECT_EQ("earlier", device().node(kFileNode));
}

TEST_F(RunningFirmware, FinalMatch_TracesTheNameToItsEnd) {
    daemon_log_level = 7;
    parse(matchingDocument(addresses("/PX/PX_FW1.0.bin?id=1", "/n")));
    const auto lines = logLines();
    ASSERT_GE(lines.size(), 2U);
    EXPECT_EQ("Final Match 'PX_FW1.0.bin?id=1'(12) with 'PX_FW1.0.bin'", lines[lines.size() - 2]);
    EXPECT_EQ("done, ret=1", lines.back());
}

} // namespace
