// The whole record as an indented tree in the log, at level 6.
#pragma once

namespace pendra {

void dumpRecord();

} // namespace pendra
