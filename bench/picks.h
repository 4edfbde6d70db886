// Which leaf of a setup document goes into which field of the record: the schema that every peer works from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "pendra/setupdoc.h"

namespace pendra::bench {

struct LeafPick {
    const char* tag;
    std::size_t offset;
    std::size_t capacity; // of a text; 0 for a number
    const char* const* table = nullptr;
    std::size_t rowOffset = 0;
};

struct SectionPick {
    const char* tag;
    std::size_t offset; // of the section's record in that of its parent
    std::span<const LeafPick> leaves;
    std::span<const SectionPick> sections = {};
    bool isList = false; // elements of ZepAcRule, counted in ZepAccessControl
};

extern const SectionPick kDevicePick;  // its record is a ZepDevice
extern const SectionPick kVersionPick; // its record is a ZepSpecVersion

// Puts a decoded text into a field of a section's record.
void storeLeaf(const LeafPick& leaf, char* section, const char* text);

// The record of a section within that of its parent; null for more rules than a radio takes.
[[nodiscard]] char* openSection(const SectionPick& section, char* parent);

} // namespace pendra::bench
