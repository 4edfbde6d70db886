#include "bench/peers.h"

#include <expat.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <cstdio>
#include <cstring>
#include <pugixml.hpp>

#include "bench/picks.h"
#include "setupdoc/section_parsers.h"

namespace pendra::bench {
namespace {

// ---- parsers that build a tree: the same walk over two kinds of nodes ----

struct PugiNode {
    pugi::xml_node node;

    explicit operator bool() const { return !node.empty(); }
    [[nodiscard]] PugiNode child(const char* tag) const { return {node.child(tag)}; }
    [[nodiscard]] PugiNode next(const char* tag) const { return {node.next_sibling(tag)}; }
    [[nodiscard]] const char* text() const { return node.child_value(); }
};

struct LibxmlNode {
    xmlNode* node = nullptr;

    explicit operator bool() const { return node != nullptr; }
    [[nodiscard]] static LibxmlNode find(xmlNode* from, const char* tag) {
        for (; from != nullptr; from = from->next)
            if (from->type == XML_ELEMENT_NODE && xmlStrEqual(from->name, reinterpret_cast<const xmlChar*>(tag)))
                return {from};
        return {};
    }
    [[nodiscard]] LibxmlNode child(const char* tag) const { return find(node->children, tag); }
    [[nodiscard]] LibxmlNode next(const char* tag) const { return find(node->next, tag); }
    [[nodiscard]] const char* text() const {
        const xmlNode* content = node->children;
        return content == nullptr || content->content == nullptr ? "" : reinterpret_cast<const char*>(content->content);
    }
};

template <typename Node>
bool pickLeaves(const Node& element, const SectionPick& section, char* record) {
    for (const LeafPick& leaf : section.leaves) {
        const Node found = element.child(leaf.tag);
        if (found) storeLeaf(leaf, record, found.text());
    }
    return true;
}

template <typename Node>
bool pickSection(const Node& parent, const SectionPick& section, char* parentRecord) {
    Node element = parent.child(section.tag);
    if (!element) return section.isList;
    for (; element; element = section.isList ? element.next(section.tag) : Node{}) {
        char* record = openSection(section, parentRecord);
        if (record == nullptr) break;
        pickLeaves(element, section, record);
        for (const SectionPick& below : section.sections)
            if (!pickSection(element, below, record)) return false;
    }
    return true;
}

template <typename Node>
bool pickDocument(const Node& root, Picked& picked) {
    return pickSection(root, kVersionPick, reinterpret_cast<char*>(&picked.version)) &&
           pickSection(root, kDevicePick, reinterpret_cast<char*>(&picked.device));
}

// ---- a parser that reports what it meets ----

class Walk {
  public:
    explicit Walk(Picked& picked) : picked_(picked) {}

    void open(const char* tag) {
        textLength_ = 0;
        leaf_ = nullptr;
        if (unknown_ > 0 || !(depth_ <= 1 ? openTop(tag) : openBelow(tag))) unknown_++;
    }
    void close() {
        if (leaf_ != nullptr) {
            text_[textLength_] = '\0';
            storeLeaf(*leaf_, levels_[depth_ - 1].record, text_);
            leaf_ = nullptr;
        } else if (unknown_ > 0) {
            unknown_--;
        } else {
            depth_--;
        }
    }
    void addText(const char* text, int length) {
        if (leaf_ == nullptr) return;
        const std::size_t added = std::min(static_cast<std::size_t>(length), sizeof text_ - 1 - textLength_);
        std::memcpy(text_ + textLength_, text, added);
        textLength_ += added;
    }

  private:
    struct Level {
        const SectionPick* section;
        char* record;
    };

    bool openTop(const char* tag) {
        if (depth_ == 0) return enter(nullptr, nullptr);
        if (std::strcmp(tag, kVersionPick.tag) == 0)
            return enter(&kVersionPick, reinterpret_cast<char*>(&picked_.version));
        if (std::strcmp(tag, kDevicePick.tag) == 0)
            return enter(&kDevicePick, reinterpret_cast<char*>(&picked_.device));
        return false;
    }
    bool openBelow(const char* tag) {
        const Level& level = levels_[depth_ - 1];
        for (const LeafPick& leaf : level.section->leaves) {
            if (std::strcmp(leaf.tag, tag) != 0) continue;
            leaf_ = &leaf;
            return true;
        }
        for (const SectionPick& section : level.section->sections)
            if (std::strcmp(section.tag, tag) == 0) return enter(&section, openSection(section, level.record));
        return false;
    }
    bool enter(const SectionPick* section, char* record) {
        if (record == nullptr && section != nullptr) return false;
        levels_[depth_++] = {section, record};
        return true;
    }

    Picked& picked_;
    Level levels_[8] = {};
    int depth_ = 0;
    int unknown_ = 0;
    const LeafPick* leaf_ = nullptr;
    char text_[128];
    std::size_t textLength_ = 0;
};

void onOpen(void* walk, const XML_Char* tag, const XML_Char**) {
    static_cast<Walk*>(walk)->open(tag);
}

void onClose(void* walk, const XML_Char*) {
    static_cast<Walk*>(walk)->close();
}

void onText(void* walk, const XML_Char* text, int length) {
    static_cast<Walk*>(walk)->addText(text, length);
}

} // namespace

bool pickWithPugixml(std::vector<char>& document, Picked& picked) {
    pugi::xml_document tree;
    const auto parsed = tree.load_buffer_inplace(document.data(), document.size());
    return parsed && pickDocument(PugiNode{tree.child("root")}, picked);
}

bool pickWithExpat(const std::string& document, Picked& picked) {
    XML_Parser parser = XML_ParserCreate(nullptr);
    Walk walk(picked);
    XML_SetUserData(parser, &walk);
    XML_SetElementHandler(parser, onOpen, onClose);
    XML_SetCharacterDataHandler(parser, onText);
    const auto status = XML_Parse(parser, document.data(), static_cast<int>(document.size()), XML_TRUE);
    XML_ParserFree(parser);
    return status == XML_STATUS_OK;
}

bool pickWithLibxml2(const std::string& document, Picked& picked) {
    xmlDoc* tree = xmlReadMemory(document.data(), static_cast<int>(document.size()), nullptr, nullptr,
                                 XML_PARSE_NOBLANKS | XML_PARSE_NOENT | XML_PARSE_NONET | XML_PARSE_COMPACT);
    if (tree == nullptr) return false;
    const bool complete = pickDocument(LibxmlNode{xmlDocGetRootElement(tree)}, picked);
    xmlFreeDoc(tree);
    return complete;
}

bool pickWithLibrary(char* document, ZepSpecVersion& version) {
    int32_t length = 0;
    char* root = FindXmlKeyContain(document, -1, "root", &length);
    if (root == nullptr) return false;
    root[length] = '\0';
    return do_XmlSpecVersion_Parser("", root, length, &version, "specVersion") == 1 &&
           do_ZepDevice_Parser("", root, length, &zepXmlData.device, "Device") == 1;
}

namespace {

bool sameLeaf(const LeafPick& leaf, const char* expected, const char* actual) {
    expected += leaf.offset;
    actual += leaf.offset;
    const bool same =
        leaf.capacity == 0 ? std::memcmp(expected, actual, sizeof(int32_t)) == 0 : std::strcmp(expected, actual) == 0;
    if (!same) std::fprintf(stderr, "bench: %s differs\n", leaf.tag);
    return same;
}

bool sameSection(const SectionPick& section, const char* expected, const char* actual) {
    for (const LeafPick& leaf : section.leaves)
        if (!sameLeaf(leaf, expected, actual)) return false;
    for (const SectionPick& below : section.sections) {
        const int32_t elements =
            below.isList ? reinterpret_cast<const ZepAccessControl*>(expected)->acRuleCount : int32_t{1};
        for (int32_t element = 0; element < elements; element++) {
            const std::size_t offset = below.offset + static_cast<std::size_t>(element) * sizeof(ZepAcRule);
            if (!sameSection(below, expected + offset, actual + offset)) return false;
        }
    }
    return true;
}

} // namespace

bool holdSameValues(const ZepDevice& expected, const ZepDevice& actual) {
    for (int radio = 0; radio < 2; radio++)
        if (expected.wireless[radio].accessControl.acRuleCount != actual.wireless[radio].accessControl.acRuleCount)
            return false;
    return sameSection(kDevicePick, reinterpret_cast<const char*>(&expected), reinterpret_cast<const char*>(&actual));
}

} // namespace pendra::bench
