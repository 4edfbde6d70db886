// What the tests of all section parsers share.
#pragma once

#include "setup_document.h"
#include "setupdoc/section_parsers.h"

namespace pendra::test {

using LostKeys = std::vector<LostKey>;

// A text leaf: how many bytes of which field of the record it may fill.
struct TextLeaf {
    const char* tag;
    size_t capacity;
    const char* field;
};

// A record as the snapshot of a later-generation device leaves it, with every section open and every feature there.
class ParserTest : public ScannerTest {
  protected:
    ParserTest() {
        setVersion(101);
        ZepDevice& device = zepXmlData.device;
        device.Configurable = device.upLink.Configurable = 1;
        device.wireless[0].Configurable = device.wireless[1].Configurable = 1;
        zepXmlData.easyRoamingFeature = zepXmlData.safetyWdnFeature = 1;
        zepXmlData.wlan24Feature = zepXmlData.wlan5Feature = 1;
    }

    static void setVersion(int32_t version) { zepXmlData.specVersion.version = version; }

    // Without any of these leaves the parser gives 0 and reports the leaf, and nothing else, under the path; with all
    // of them it gives 1.
    template <typename Parse>
    static void expectRequiredLeaves(const Element& whole, const std::vector<const char*>& tags,
                                     const std::string& path, Parse parse) {
        for (const char* tag : tags) {
            SCOPED_TRACE(tag);
            forgetLostKeys();
            EXPECT_EQ(0, parse(whole.without(tag)));
            EXPECT_EQ((LostKeys{{path, tag}}), lostKeys());
        }
        forgetLostKeys();
        EXPECT_EQ(1, parse(whole));
        EXPECT_EQ(LostKeys{}, lostKeys());
    }

    // The same for child elements, which are reported by their name alone.
    template <typename Parse>
    static void expectRequiredBlocks(const Element& whole, const std::vector<const char*>& tags, Parse parse) {
        expectRequiredLeaves(whole, tags, "(null)", parse);
    }

    // A value one byte below the limit, at it and beyond it is stored up to capacity - 1 characters, and no byte of the
    // record outside those of the leaf depends on it.
    template <typename Parse>
    static void expectCapacities(const Element& whole, const std::vector<TextLeaf>& leaves, Parse parse) {
        const ZepXmlData before = zepXmlData;
        for (const TextLeaf& leaf : leaves) {
            zepXmlData = before;
            parse(whole.with(leaf.tag, "z"));
            const ZepXmlData shortest = zepXmlData;
            for (const size_t length : {leaf.capacity - 2, leaf.capacity - 1, leaf.capacity, size_t{1023}}) {
                SCOPED_TRACE(std::string(leaf.tag) + " of " + std::to_string(length));
                zepXmlData = before;
                EXPECT_EQ(1, parse(whole.with(leaf.tag, std::string(length, 'z'))));
                EXPECT_EQ(std::string(std::min(length, leaf.capacity - 1), 'z'), leaf.field);
                EXPECT_TRUE(sameOutside(shortest, zepXmlData, offsetInRecord(leaf.field), leaf.capacity));
            }
        }
        zepXmlData = before;
    }
};

} // namespace pendra::test
