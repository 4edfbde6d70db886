// Firmware list documents with something missing, and texts that are none.
#include <random>

#include "list_document.h"

using namespace pendra::test;

namespace {

class ListFaults : public ListTest {
  protected:
    // What is left when one tag is taken out.
    static std::string without(std::string document, const std::string& tag) {
        return document.erase(document.find(tag), tag.size());
    }
    void expectSane(int32_t result) {
        EXPECT_TRUE(result == kMalformed || result == kNone || result == kNew) << result;
        EXPECT_EQ(result == kNew ? 2U : 0U, device().events.size());
        EXPECT_EQ(result == kNew, !fileUrl().empty());
    }
};

// Named by address and by file name, so that every kind of element is there.
const std::string kByAddress = listDocument(firmware(macList(mac(kMac)) + matchList(match("PX*"))));
const std::string kByRange = listDocument(firmware(macList(macs(kMac, kMac)) + matchList(match("PX*"))));

struct MissingTag {
    std::string tag;
    int32_t withoutOpening;
    int32_t withoutClosing;
};

TEST_F(ListFaults, EachMissingTag_GivesItsResult) {
    const MissingTag rows[] = {
        {"root", kMalformed, kMalformed},
        {"specVersion", kMalformed, kMalformed},
        {"major", kMalformed, kMalformed},
        {"minor", kMalformed, kMalformed},
        {"FirmwareList", kMalformed, kMalformed},
        {"Firmware", kNone, kNone},
        {"MacList", kNew, kMalformed}, // without its opening tag it is not there: the file name decides alone
        {"MAC", kNone, kNone},
        {"MatchList", kNew, kMalformed}, // likewise
        {"Match", kNone, kNone},
        {"FwURL", kMalformed, kMalformed},
        {"NotesURL", kMalformed, kMalformed},
    };
    ASSERT_EQ(kNew, parse(kByAddress));
    for (const auto& [tag, withoutOpening, withoutClosing] : rows) {
        EXPECT_EQ(withoutOpening, parse(without(kByAddress, "<" + tag + ">"))) << tag;
        EXPECT_EQ(withoutClosing, parse(without(kByAddress, "</" + tag + ">"))) << tag;
    }
}

TEST_F(ListFaults, EachMissingTagOfARange_GivesItsResult) {
    const MissingTag rows[] = {
        {"MACs", kNone, kNone},
        {"Start", kMalformed, kMalformed},
        {"End", kMalformed, kMalformed},
    };
    ASSERT_EQ(kNew, parse(kByRange));
    for (const auto& [tag, withoutOpening, withoutClosing] : rows) {
        EXPECT_EQ(withoutOpening, parse(without(kByRange, "<" + tag + ">"))) << tag;
        EXPECT_EQ(withoutClosing, parse(without(kByRange, "</" + tag + ">"))) << tag;
    }
}

// No result 2 can come from a document that breaks off: its root has no end.
TEST_F(ListFaults, DocumentCutAnywhere_IsMalformed) {
    const size_t end = kByRange.find("</root>") + 7;
    for (size_t length = 0; length < end; length++) {
        ASSERT_EQ(kMalformed, parse(kByRange.substr(0, length))) << length;
        ASSERT_TRUE(device().events.empty()) << length;
    }
    EXPECT_EQ(kNew, parse(kByRange.substr(0, end)));
}

TEST_F(ListFaults, TextsThatAreNoDocument_AreMalformed) {
    for (const std::string& text :
         {std::string(), std::string("<"), std::string("<root"), std::string("<root>"), std::string("</root>"),
          std::string("<root/>"), std::string("<root />"), std::string("<root></root>"), std::string("</root><root>"),
          std::string("<html><body>404 Not Found</body></html>"), std::string(100000, '<'), std::string(4095, 'x'),
          std::string("\0<root>", 7)}) {
        EXPECT_EQ(kMalformed, parse(text)) << text.substr(0, 40);
        EXPECT_TRUE(device().events.empty());
    }
}

TEST_F(ListFaults, SelfClosingElements_AreThereAndEmpty) {
    const struct {
        std::string document;
        int32_t result;
    } rows[] = {
        {listDocument(firmware(macList(mac(kMac))), "<specVersion/>"), kMalformed},
        {listDocument(firmware(macList(mac(kMac))), element("specVersion", "<major/><minor>100</minor>")), kNew},
        {listDocument(firmware(macList(mac(kMac))), element("specVersion", "<major>1</major><minor/>")), kNew},
        {listDocument("<Firmware/>"), kNone},
        {element("root", version("1", "0") + "<FirmwareList/>"), kNone},
    };
    for (const auto& [document, result] : rows)
        EXPECT_EQ(result, parse(document)) << document;
}

TEST_F(ListFaults, RandomBytes_DoNoHarm) {
    std::mt19937 random(1);
    for (int round = 0; round < 300; round++) {
        std::string text(random() % 5000, ' ');
        for (char& byte : text)
            byte = static_cast<char>(random());
        expectSane(parse(text));
    }
}

TEST_F(ListFaults, DamagedDocuments_DoNoHarm) {
    std::mt19937 random(2);
    const std::string whole = listDocument(firmware(macList(mac("none") + macs("none", "none"))) +
                                           firmware(macList(mac(kMac)) + matchList(match("PX*"))));
    for (int round = 0; round < 2000; round++) {
        std::string text = whole;
        for (unsigned change = random() % 4 + 1; change > 0; change--) {
            const size_t position = random() % text.size();
            const size_t length = random() % 8;
            if (random() % 2 == 0)
                text.erase(position, length);
            else
                text[position] = static_cast<char>(random());
        }
        expectSane(parse(text));
    }
}

// The parser itself sets no bound to a document.
TEST_F(ListFaults, DocumentOfAMebibyte_IsParsed) {
    const std::string filler(1 << 20, 'x');
    EXPECT_EQ(kNew, parse(filler + kByRange + filler));
    EXPECT_EQ(kNew, parse(listDocument(filler + firmware(macList(mac(kMac))) + filler)));
    EXPECT_EQ(kNone, parse(listDocument(firmware(macList(mac(filler))))));
    EXPECT_EQ(kNone, parse(listDocument(firmware(matchList(match(filler))))));
    EXPECT_EQ(kNew, parse(matchingDocument(addresses("/" + filler, "/" + filler))));
}

} // namespace
