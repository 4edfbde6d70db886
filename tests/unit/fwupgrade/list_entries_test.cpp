// Which entries of a firmware list name this device.
#include "list_document.h"

using namespace pendra::test;

namespace {

struct ListsRow {
    std::string lists;
    int32_t result;
};

class EntryLists : public ListTest {
  protected:
    template <size_t Rows>
    void expect(const ListsRow (&rows)[Rows]) {
        for (const auto& [lists, result] : rows) {
            EXPECT_EQ(result, parseLists(lists)) << lists;
            EXPECT_EQ(result == kNew ? 2U : 0U, device().events.size()) << lists;
        }
    }
};

TEST_F(EntryLists, SingleAddresses_AreComparedAsPatterns) {
    const ListsRow rows[] = {
        {macList(mac(kMac)), kNew},
        {macList(mac("00:11:22:aa:bb:cd")), kNone},
        {macList(mac("00:11:22:AA:BB:CC")), kNone},
        {macList(mac("*")), kNew},
        {macList(mac("00:11:22:*")), kNew},
        {macList(mac("00:11:23:*")), kNone},
        {macList(mac("00:11:22:aa:bb:cc*")), kNew},
        {macList(mac("00:11:22:aa:bb:??")), kNew},
        {macList(mac("??:??:??:??:??:??")), kNew},
        {macList(mac("00:11:22:aa:bb:?")), kNone},
        {macList(mac("00:11:22:aa:bb:c")), kNone},
        {macList(mac("00*:cc")), kNew}, // what stands behind the star does not count
        {macList(mac(" 00:11:22:aa:bb:cc")), kNone},
        {macList(mac("none") + mac("other") + mac(kMac)), kNew},
        {macList(mac(kMac) + mac("none")), kNew},
        {macList("\n  " + mac("none") + "\n  " + mac(kMac) + "\n"), kNew},
    };
    expect(rows);
}

TEST_F(EntryLists, LongAddress_IsCutTo17Characters) {
    const ListsRow rows[] = {
        {macList(mac("00:11:22:aa:bb:c")), kNone},
        {macList(mac(std::string(kMac) + "x")), kNew},
        {macList(mac(kMac + std::string(1000, 'x'))), kNew},
        {macList(mac(kMac + std::string(" "))), kNew},
    };
    expect(rows);
}

TEST_F(EntryLists, AddressPattern_IsTakenRaw) {
    device().tree["/fwupgradeinfo/devicemac"] = "1&2";
    EXPECT_EQ(kNone, parseLists(macList(mac("1&amp;2"))));
    EXPECT_EQ(kNew, parseLists(macList(mac("1&2"))));
    device().tree["/fwupgradeinfo/devicemac"] = "1&amp;2";
    EXPECT_EQ(kNew, parseLists(macList(mac("1&amp;2"))));
}

TEST_F(EntryLists, Ranges_HoldBothTheirBounds) {
    const ListsRow rows[] = {
        {macList(macs(kMac, kMac)), kNew},
        {macList(macs(kMac, "ff:ff:ff:ff:ff:ff")), kNew},
        {macList(macs("00:00:00:00:00:00", kMac)), kNew},
        {macList(macs("00:11:22:aa:bb:cd", "ff:ff:ff:ff:ff:ff")), kNone},
        {macList(macs("00:00:00:00:00:00", "00:11:22:aa:bb:cb")), kNone},
        {macList(macs("00:11:22:aa:00:00", "00:11:22:aa:ff:ff")), kNew},
        {macList(macs("ff:ff:ff:ff:ff:ff", "00:00:00:00:00:00")), kNone},
        {macList(macs("00:11:22:aa:bb:c", kMac)), kNew},
        {macList(macs("00:11:22:aa:bb:c", "00:11:22:aa:bb:c")), kNone},
        {macList(macs("00:11:22:AA:00:00", "00:11:22:AA:ff:ff")), kNone}, // small letters stand behind capitals
        {macList(macs("none", "none") + macs(kMac, kMac)), kNew},
        {macList(macs("", kMac)), kNew},
        {macList(macs("", "")), kNone},
    };
    expect(rows);
}

TEST_F(EntryLists, Ranges_MayHoldWildcards) {
    const ListsRow rows[] = {
        {macList(macs("*", "*")), kNew},
        {macList(macs("00:11:22:*", "00:11:22:*")), kNew},
        {macList(macs("00:11:23:*", "00:11:24:*")), kNone},
        {macList(macs("00:11:20:*", "00:11:21:*")), kNone},
        {macList(macs("00:11:21:*", "00:11:23:*")), kNew},
        {macList(macs("??:11:22:aa:bb:cc", "??:11:22:aa:bb:cc")), kNew},
        {macList(macs("??:11:22:aa:bb:cd", "*")), kNone},
    };
    expect(rows);
}

TEST_F(EntryLists, LongBounds_AreCutTo17Characters) {
    const ListsRow rows[] = {
        {macList(macs(kMac + std::string("x"), kMac + std::string("x"))), kNew},
        {macList(macs(kMac + std::string(1000, 'x'), kMac + std::string(1000, ' '))), kNew},
    };
    expect(rows);
}

TEST_F(EntryLists, Bounds_AreDecodedAndNotTrimmed) {
    device().tree["/fwupgradeinfo/devicemac"] = "a&b<c";
    EXPECT_EQ(kNew, parseLists(macList(macs("a&amp;b&lt;c", "a&#38;b&#60;c"))));
    EXPECT_EQ(kNone, parseLists(macList(macs("a&amp;b&lt;d", "z"))));
    EXPECT_EQ(kNone, parseLists(macList(macs("a", " a&amp;b&lt;c"))));
}

TEST_F(EntryLists, RangesFollowSingleAddresses_OfTheSameList) {
    const ListsRow rows[] = {
        {macList(mac("none") + macs(kMac, kMac)), kNew},
        {macList(macs(kMac, kMac) + mac("none")), kNew},
        {macList(mac(kMac) + macs("none", "none")), kNew},
        {macList(macs("none", "none") + mac(kMac)), kNew},
        {macList(mac("none") + macs("none", "none")), kNone},
        {macList(mac(kMac) + element("MACs", "broken")), kNew}, // never looked at
        {macList(mac("none") + element("MACs", "broken")), kMalformed},
    };
    expect(rows);
}

TEST_F(EntryLists, RangeWithoutABound_IsMalformed) {
    const std::string start = element("Start", kMac);
    const std::string end = element("End", kMac);
    const ListsRow rows[] = {
        {macList(element("MACs", start)), kMalformed},
        {macList(element("MACs", end)), kMalformed},
        {macList(element("MACs", "x")), kMalformed},
        {macList(element("MACs", "<Start>" + end)), kMalformed},
        {macList(element("MACs", start + "<End>")), kMalformed},
        {macList(macs("none", "none") + element("MACs", start)), kMalformed},
        {macList(macs(kMac, kMac) + element("MACs", start)), kNew},
        {macList(element("MACs", "<Start/>" + end)), kNew},
        {macList(element("MACs", start + "<End/>")), kNone},
        {macList(element("MACs", end + start)), kNew},
    };
    expect(rows);
}

TEST_F(EntryLists, FileNames_AreComparedAsPatterns) {
    const ListsRow rows[] = {
        {matchList(match(kRunning)), kNew},
        {matchList(match("px_fw1.0.bin")), kNone},
        {matchList(match("PX_FW1.0.bi")), kNone},
        {matchList(match("PX_FW1.0.bin2")), kNone},
        {matchList(match(" PX_FW1.0.bin")), kNone},
        {matchList(match("*")), kNew},
        {matchList(match("PX_*")), kNew},
        {matchList(match("PY_*")), kNone},
        {matchList(match("PX_FW?.?.bin")), kNew},
        {matchList(match("PX_FW??.?.bin")), kNone},
        {matchList(match("PY*") + match("PX*")), kNew},
    };
    expect(rows);
}

TEST_F(EntryLists, FileNamePattern_IsTakenRaw) {
    device().tree["/fwupgradeinfo/currfwfilename"] = "P&X.bin";
    EXPECT_EQ(kNone, parseLists(matchList(match("P&amp;X.bin"))));
    EXPECT_EQ(kNew, parseLists(matchList(match("P&X.bin"))));
}

TEST_F(EntryLists, LongFileName_IsComparedUpTo127Characters) {
    const std::string name(127, 'f');
    device().tree["/fwupgradeinfo/currfwfilename"] = name;
    const ListsRow rows[] = {
        {matchList(match(std::string(126, 'f'))), kNone},
        {matchList(match(name)), kNew},
        {matchList(match(name + "x")), kNew},
        {matchList(match(name + std::string(2000, 'x'))), kNew},
        {matchList(match(std::string(126, 'f') + "x")), kNone},
    };
    expect(rows);
}

TEST_F(EntryLists, TwoLists_MustBothMatch) {
    const ListsRow rows[] = {
        {macList(mac(kMac)) + matchList(match(kRunning)), kNew},
        {matchList(match(kRunning)) + macList(mac(kMac)), kNew},
        {macList(mac(kMac)) + matchList(match("none")), kNone},
        {macList(mac("none")) + matchList(match(kRunning)), kNone},
        {macList(macs(kMac, kMac)) + matchList(match(kRunning)), kNew},
        {macList(macs(kMac, kMac)) + matchList(match("none")), kNone},
        {macList(element("MACs", "x")) + matchList(match(kRunning)), kMalformed},
    };
    expect(rows);
}

TEST_F(EntryLists, NoList_NamesNoDevice) {
    EXPECT_EQ(kNone, parseLists("x"));
    EXPECT_EQ(kNone, parseLists(mac(kMac) + match(kRunning) + macs(kMac, kMac)));
}

TEST_F(EntryLists, EmptyLists_HaveNoEntries) {
    const ListsRow rows[] = {
        {macList(""), kNone},
        {"<MacList/>", kNone},
        {"<MacList />", kNone},
        {macList("x"), kNone},
        {matchList(""), kNone},
        {"<MatchList/>", kNone},
        {"<MatchList />", kNone},
        {matchList("x"), kNone},
        {macList(mac(kMac)) + matchList(""), kNone},
        {macList(mac(kMac)) + "<MatchList/>", kNone},
        {macList("") + matchList(match(kRunning)), kNone},
    };
    expect(rows);
}

// What stands behind an empty list is none of its entries.
TEST_F(EntryLists, EntriesBehindAnEmptyList_DoNotCount) {
    const ListsRow rows[] = {
        {macList("") + mac(kMac) + macs(kMac, kMac), kNone},
        {"<MacList/>" + mac(kMac) + macs(kMac, kMac), kNone},
        {matchList("") + match(kRunning), kNone},
        {"<MatchList/>" + match(kRunning), kNone},
    };
    expect(rows);
    EXPECT_EQ(kNone, parse(element(
                         "root", version("1", "0") + "<FirmwareList></FirmwareList>" + firmware(macList(mac(kMac))))));
    EXPECT_EQ(kNone, parse(element("root", version("1", "0") + "<FirmwareList/>" + firmware(macList(mac(kMac))))));
}

TEST_F(EntryLists, EmptyEntry_EndsItsList) {
    const ListsRow rows[] = {
        {macList(mac("") + mac(kMac)), kNone},
        {macList(mac("none") + mac("") + mac(kMac)), kNone},
        {macList(mac("") + macs(kMac, kMac)), kNew}, // the ranges are another walk
        {macList(element("MACs", "") + macs(kMac, kMac)), kNone},
        {matchList(match("") + match(kRunning)), kNone},
        {macList("<MAC/>"), kNone},
        {macList("<MACs/>"), kNone},
        {matchList("<Match/>"), kNone},
    };
    expect(rows);
    const std::string matching = firmware(macList(mac(kMac)));
    EXPECT_EQ(kNone, parse(listDocument(element("Firmware", "") + matching)));
    EXPECT_EQ(kNone, parse(listDocument("<Firmware/>")));
}

// An empty pattern in a device without a name must not count as a match.
TEST_F(EntryLists, EmptyEntryOfADeviceWithoutNames_IsNoMatch) {
    device().tree.clear();
    EXPECT_EQ(kNone, parseLists(macList(mac(""))));
    EXPECT_EQ(kNone, parseLists(matchList(match(""))));
    EXPECT_EQ(kNew, parseLists(macList(mac("*"))));
}

class FirmwareEntries : public ListTest {
  protected:
    const std::string other = firmware(macList(mac("none")), addresses("/other", "/other"));
    const std::string mine = firmware(macList(mac(kMac)));
};

TEST_F(FirmwareEntries, FirstMatch_Wins) {
    EXPECT_EQ(kNew, parse(listDocument(other + firmware(macList(mac(kMac)), addresses("/1", "/n1")) +
                                       firmware(macList(mac(kMac)), addresses("/2", "/n2")))));
    EXPECT_EQ("http://fw.pendra.example/1", fileUrl());
    EXPECT_EQ("http://fw.pendra.example/n1", notesUrl());
}

TEST_F(FirmwareEntries, MalformedEntry_StopsTheWalk) {
    const std::string malformed = firmware(macList(element("MACs", "x")));
    EXPECT_EQ(kMalformed, parse(listDocument(other + malformed + mine)));
    EXPECT_EQ(kNew, parse(listDocument(other + mine + malformed)));
    EXPECT_EQ(kMalformed, parse(listDocument(firmware("<MacList>") + mine)));
}

TEST_F(FirmwareEntries, TheHundredthEntry_IsTheLastLookedAt) {
    for (const int before : {0, 1, 98, 99, 100, 101, 500}) {
        const bool seen = before < 100;
        EXPECT_EQ(seen ? kNew : kNone, parse(listDocument(repeated(other, before) + mine))) << before;
        EXPECT_EQ(seen ? kNew : kNone, parseLists(macList(repeated(mac("none"), before) + mac(kMac)))) << before;
        EXPECT_EQ(seen ? kNew : kNone, parseLists(macList(repeated(macs("none", "none"), before) + macs(kMac, kMac))))
            << before;
        EXPECT_EQ(seen ? kNew : kNone, parseLists(matchList(repeated(match("none"), before) + match(kRunning))))
            << before;
    }
}

// Single addresses and ranges are counted apart.
TEST_F(FirmwareEntries, HundredAddressesBeforeARange_LeaveTheRange) {
    EXPECT_EQ(kNew,
              parseLists(macList(repeated(mac("none"), 150) + repeated(macs("none", "none"), 99) + macs(kMac, kMac))));
}

TEST_F(FirmwareEntries, ListsWithoutAMatch_GiveNone) {
    for (const int entries : {0, 1, 99, 100, 101})
        EXPECT_EQ(kNone, parse(listDocument(repeated(other, entries)))) << entries;
}

TEST_F(FirmwareEntries, MalformedEntryBehindTheHundredth_IsNeverLookedAt) {
    const std::string malformed = firmware("<MacList>");
    EXPECT_EQ(kMalformed, parse(listDocument(repeated(other, 99) + malformed)));
    EXPECT_EQ(kNone, parse(listDocument(repeated(other, 100) + malformed)));
}

} // namespace
