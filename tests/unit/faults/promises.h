// What must come of a walk in which one call has failed.
#pragma once

#include <string>

#include "fault_points.h"
#include "roads.h"

namespace pendra::test {

// The call that failed: the number-th (from 1) of those with the same symbol and detail.
struct Hit {
    Call call;
    long number;
    std::string directory;
};

// What else a promise may look at.
class Walker {
  public:
    virtual ~Walker() = default;
    // A walk on a device that does not have that node, and how often it reads it.
    virtual Outcome walkWithout(const std::string& node, long& reads) = 0;
};

// Expects the promise of a road about a call. A call that nothing is written down about is a failure of its own.
void expectPromise(const Road& road, const Hit& hit, const Outcome& undisturbed, const Outcome& got, Walker& walker);

// Two outcomes are the same, to the letter; but for the record, where bytes behind the end of a text may stand.
void expectSame(const Outcome& expected, const Outcome& got);

} // namespace pendra::test
