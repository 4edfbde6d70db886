#include "support/fake_device.h"

using pendra::test::device;
using pendra::test::DeviceTest;

namespace {

class Timers : public DeviceTest {};

void count(void* argument) { ++*static_cast<int*>(argument); }

TEST_F(Timers, CreationWithoutMemory_GivesNullAndLogs) {
    device().failNextAllocation = true;
    EXPECT_EQ(nullptr, create_timer(1, count, nullptr, nullptr, 0));
    EXPECT_EQ(std::vector<std::string>{"1000:create_timer fail !!!"}, logLines());
}

}  // namespace
