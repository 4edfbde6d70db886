// Turning restart flags into sync ids.
#pragma once

namespace pendra {

// Fills exeflag and exeWaitSec of the record from its restart flags; a set that is still there becomes pre_exeflag.
void compute_ExeFlag();

} // namespace pendra
