// The same work done with general XML parsers: parse a setup document and pick the values of the record out of it,
// entities decoded, texts cut to their fields, names of tables looked up.
#pragma once

#include <string>
#include <vector>

#include "pendra/setupdoc.h"

namespace pendra::bench {

// What a document gives the record.
struct Picked {
    ZepSpecVersion version;
    ZepDevice device;
};

// All return whether the document was well-formed and complete. The in-place parser changes the buffer.
[[nodiscard]] bool pickWithPugixml(std::vector<char>& document, Picked& picked);
[[nodiscard]] bool pickWithExpat(const std::string& document, Picked& picked);
[[nodiscard]] bool pickWithLibxml2(const std::string& document, Picked& picked);

// The library's own parse, without the device's tree, checks and writes; the record is zepXmlData.
[[nodiscard]] bool pickWithLibrary(char* document, ZepSpecVersion& version);

// Whether both hold the same values; tells the first difference on standard error.
[[nodiscard]] bool holdSameValues(const ZepDevice& expected, const ZepDevice& actual);

} // namespace pendra::bench
