// The parsers of a setup document's elements. Each reads the leaves of one element into its section of the record and
// calls the parsers of its children; it returns 1, or 0 when a required element is missing (which the lost-key hook has
// then reported).
#pragma once

#include "pendra/setupdoc.h"

namespace pendra {

int32_t do_ZepDevice_Parser(const char* parentPath, char* start, int32_t length, ZepDevice* device,
                            const char* element);
int32_t do_ZepUpLink_Parser(const char* parentPath, char* start, int32_t length, ZepUpLink* upLink,
                            const char* element);
int32_t do_ZepISP_Parser(const char* parentPath, char* start, int32_t length, ZepIsp* isp, const char* element);
int32_t do_ZepExtender_Parser(const char* parentPath, char* start, int32_t length, ZepExtenderSite* site,
                              const char* element);
int32_t do_ZepWireless_Parser(const char* parentPath, char* start, int32_t length, ZepWireless* radio,
                              const char* element);
int32_t do_ZepAccessCtl_Parser(const char* parentPath, char* start, int32_t length, ZepAccessControl* access,
                               const char* element);
int32_t do_ZepAcRule_Parser(const char* parentPath, char* start, int32_t length, ZepAcRule* rule, const char* element);
int32_t do_ZepSafetyWdn_Parser(const char* parentPath, char* start, int32_t length, ZepSafetyWdn* safety,
                               const char* element);

} // namespace pendra
