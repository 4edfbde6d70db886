// A request to look for wireless networks around.
#pragma once

namespace pendra {

// Notes the request in the tree, unless one stands there already, and forgets the result of the last cloning. True when
// the request is new.
bool requestSiteSurvey();

} // namespace pendra
