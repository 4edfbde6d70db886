// What the library takes from the heap. Only its own calls are counted: the C library may take memory for an open file
// or a command that it starts. That calloc() is the only one that the library has for it is what calls.map says, to
// which its symbols are compared.
#include <algorithm>
#include <set>

#include "fault_points.h"
#include "roads.h"

namespace pendra::test {
namespace {

// Entries of clients and timers; all else has its place in static memory or on the stack.
const std::set<std::string> kAllocating = {"KeyLogin", "ClientList", "ExpiredClient", "TracedDisconnect", "Timers"};

class HeapUse : public DeviceTest, public ::testing::WithParamInterface<Road> {
  protected:
    // The calls of one symbol on the road.
    long count(const char* symbol) {
        startRoad(GetParam(), directory());
        faults().start();
        const std::string answer = GetParam().walk(directory());
        faults().stop();
        EXPECT_EQ(GetParam().answer, answer);
        const auto& calls = faults().calls();
        return std::count_if(calls.begin(), calls.end(), [&](const Call& call) { return call.symbol == symbol; });
    }
};

TEST_P(HeapUse, Road_AllocatesForClientsAndTimersOnly) {
    const bool allocates = kAllocating.count(GetParam().name) != 0;
    EXPECT_EQ(allocates, count("calloc") > 0);
}

INSTANTIATE_TEST_SUITE_P(Roads, HeapUse, ::testing::ValuesIn(roads()),
                         [](const auto& tested) { return std::string(tested.param.name); });

} // namespace
} // namespace pendra::test
