// Interval timers and their tick.
#include <cstdlib>
#include <memory>

#include "support/fake_device.h"

using pendra::test::device;
using pendra::test::DeviceTest;

namespace {

struct Freed {
    void operator()(zep_timer* timer) const { std::free(timer); }
};
using Timer = std::unique_ptr<zep_timer, Freed>;

void count(void* argument) {
    ++*static_cast<int*>(argument);
}

Timer counting(uint32_t period, int& calls, uint32_t flags = 0) {
    return Timer(create_timer(period, count, &calls, nullptr, flags));
}

void tick(int times) {
    while (times-- > 0)
        tick_timers();
}

std::vector<const zep_timer*> armed() {
    std::vector<const zep_timer*> timers;
    for (const zep_timer* timer = timer_list; timer != nullptr; timer = timer->next)
        timers.push_back(timer);
    return timers;
}

class TimerCreation : public DeviceTest {};

TEST_F(TimerCreation, Record_HoldsWhatWasGivenAndIsNotArmed) {
    int first = 0;
    int second = 0;
    const Timer timer(create_timer(7, count, &first, &second, 0xFFFFFFFF));
    ASSERT_NE(nullptr, timer);
    EXPECT_EQ(nullptr, timer->next);
    EXPECT_EQ(7U, timer->remaining);
    EXPECT_EQ(7U, timer->period);
    EXPECT_EQ(0xFFFFFFFFU, timer->flags);
    EXPECT_EQ(&first, timer->argument);
    EXPECT_EQ(&second, timer->argument2);
    EXPECT_EQ(&count, timer->callback);
    EXPECT_EQ(nullptr, timer_list);
    EXPECT_EQ(0, first);
}

TEST_F(TimerCreation, NoMemory_GivesNullAndLogs) {
    device().failNextAllocation = true;
    EXPECT_EQ(nullptr, create_timer(1, count, nullptr, nullptr, 0));
    EXPECT_EQ("1000: 1000:create_timer fail !!!\n", logText());
    EXPECT_EQ((std::vector<std::string>{"DL> 1000:", "create_timer fail !!!\n"}), device().consoleCalls);
}

TEST_F(TimerCreation, NoMemoryBelowTheThreshold_GivesNullSilently) {
    daemon_log_level = 4;
    device().failNextAllocation = true;
    EXPECT_EQ(nullptr, create_timer(1, count, nullptr, nullptr, 0));
    EXPECT_EQ("", logText());
}

class Arming : public DeviceTest {};

TEST_F(Arming, SeveralTimers_StandInReverseOrder) {
    int calls = 0;
    const Timer first = counting(1, calls), second = counting(2, calls), third = counting(3, calls);
    add_timer(first.get());
    add_timer(second.get());
    add_timer(third.get());
    EXPECT_EQ((std::vector<const zep_timer*>{third.get(), second.get(), first.get()}), armed());
    EXPECT_EQ(0, calls);
}

TEST_F(Arming, NoPeriod_FiresAtOnceAndIsNotLinked) {
    int calls = 0;
    const Timer other = counting(5, calls), timer = counting(0, calls);
    add_timer(other.get());
    add_timer(timer.get());
    EXPECT_EQ(1, calls);
    EXPECT_EQ(std::vector<const zep_timer*>{other.get()}, armed());
}

TEST_F(Arming, NoPeriodAndNoCallback_DoesNothing) {
    const Timer timer(create_timer(0, nullptr, nullptr, nullptr, 0));
    add_timer(timer.get());
    EXPECT_EQ(nullptr, timer_list);
}

// The count decides, not the period.
TEST_F(Arming, CountOfZeroWithAPeriod_FiresAtOnceAndIsNotLinked) {
    int calls = 0;
    const Timer timer = counting(5, calls);
    timer->remaining = 0;
    add_timer(timer.get());
    EXPECT_EQ(1, calls);
    EXPECT_EQ(nullptr, timer_list);
}

TEST_F(Arming, ArmedTimer_IsIgnored) {
    int calls = 0;
    const Timer first = counting(1, calls), second = counting(2, calls), third = counting(3, calls);
    for (const Timer* timer : {&first, &second, &third})
        add_timer(timer->get());
    for (const Timer* timer : {&first, &second, &third}) {
        add_timer(timer->get());
        EXPECT_EQ((std::vector<const zep_timer*>{third.get(), second.get(), first.get()}), armed());
    }
    tick(1);
    EXPECT_EQ(1, calls);
}

TEST_F(Arming, Null_IsIgnored) {
    add_timer(nullptr);
    EXPECT_EQ(nullptr, timer_list);
}

class Ticking : public DeviceTest {};

TEST_F(Ticking, NoTimers_DoesNothing) {
    tick(3);
    EXPECT_EQ(nullptr, timer_list);
}

TEST_F(Ticking, Timer_FiresEveryPeriodAndStaysArmed) {
    int calls = 0;
    const Timer timer = counting(3, calls);
    add_timer(timer.get());
    const int expected[] = {0, 0, 1, 1, 1, 2, 2, 2, 3};
    const uint32_t remaining[] = {2, 1, 3, 2, 1, 3, 2, 1, 3};
    for (size_t i = 0; i < std::size(expected); i++) {
        SCOPED_TRACE(i);
        tick(1);
        EXPECT_EQ(expected[i], calls);
        EXPECT_EQ(remaining[i], timer->remaining);
    }
    EXPECT_EQ(std::vector<const zep_timer*>{timer.get()}, armed());
}

TEST_F(Ticking, EveryTimer_IsCountedOnItsOwn) {
    int fast = 0;
    int slow = 0;
    const Timer one = counting(1, fast), four = counting(4, slow);
    add_timer(one.get());
    add_timer(four.get());
    tick(9);
    EXPECT_EQ(9, fast);
    EXPECT_EQ(2, slow);
}

TEST_F(Ticking, TimerThatIsNotArmed_IsNotCounted) {
    int calls = 0;
    const Timer timer = counting(2, calls);
    tick(5);
    EXPECT_EQ(2U, timer->remaining);
    EXPECT_EQ(0, calls);
}

TEST_F(Ticking, NullCallback_OnlyReloads) {
    const Timer timer(create_timer(2, nullptr, nullptr, nullptr, 0));
    add_timer(timer.get());
    tick(2);
    EXPECT_EQ(2U, timer->remaining);
}

TEST_F(Ticking, Callback_RunsBeforeTheReload) {
    struct Seen {
        Timer timer;
        uint32_t remaining = 99;
    } seen;
    const auto look = [](void* argument) {
        auto* at = static_cast<Seen*>(argument);
        at->remaining = at->timer->remaining;
    };
    seen.timer.reset(create_timer(2, look, &seen, nullptr, 0));
    add_timer(seen.timer.get());
    tick(2);
    EXPECT_EQ(0U, seen.remaining);
    EXPECT_EQ(2U, seen.timer->remaining);
}

TEST_F(Ticking, ChangedPeriod_HoldsFromTheNextReload) {
    int calls = 0;
    const Timer timer = counting(2, calls);
    add_timer(timer.get());
    timer->period = 5;
    tick(2);
    EXPECT_EQ(1, calls);
    EXPECT_EQ(5U, timer->remaining);
}

TEST_F(Ticking, ArmedRecordAtZero_StaysThere) {
    int calls = 0;
    const Timer timer = counting(3, calls);
    add_timer(timer.get());
    timer->remaining = 0;
    tick(2);
    EXPECT_EQ(0U, timer->remaining);
    EXPECT_EQ(0, calls);
}

TEST_F(Ticking, FlagsWord_SelectsNothing) {
    for (const uint32_t flags : {0U, 1U, 2U, 0x80000000U, 0xFFFFFFFFU}) {
        SCOPED_TRACE(flags);
        int calls = 0;
        const Timer timer = counting(2, calls, flags);
        add_timer(timer.get());
        tick(4);
        EXPECT_EQ(2, calls);
        EXPECT_EQ(std::vector<const zep_timer*>{timer.get()}, armed());
        timer_list = nullptr;
    }
}

TEST_F(Ticking, LongestPeriod_IsCountedDown) {
    int calls = 0;
    const Timer timer = counting(UINT32_MAX, calls);
    add_timer(timer.get());
    tick(1);
    EXPECT_EQ(UINT32_MAX - 1, timer->remaining);
    EXPECT_EQ(0, calls);
}

TEST_F(Ticking, TimerArmedByACallback_IsCountedFromTheNextTick) {
    int calls = 0;
    const Timer late = counting(1, calls);
    const auto arm = [](void* argument) { add_timer(static_cast<zep_timer*>(argument)); };
    const Timer arming(create_timer(1, arm, late.get(), nullptr, 0));
    add_timer(arming.get());
    tick(1);
    EXPECT_EQ((std::vector<const zep_timer*>{late.get(), arming.get()}), armed());
    EXPECT_EQ(0, calls);
    tick(1);
    EXPECT_EQ(1, calls);
}

TEST_F(Ticking, TimerTakenOutByACallback_IsNotCounted) {
    int taken = 0;
    int kept = 0;
    const Timer last = counting(1, kept), next = counting(1, taken);
    const auto takeNextOut = [](void*) { timer_list->next = timer_list->next->next; };
    const Timer first(create_timer(2, takeNextOut, nullptr, nullptr, 0));
    for (const Timer* timer : {&last, &next, &first})
        add_timer(timer->get());
    tick(1);
    EXPECT_EQ(1, taken);
    tick(1);
    EXPECT_EQ(1, taken);
    EXPECT_EQ(2, kept);
}

TEST_F(Ticking, TimerThatTakesItselfOut_LeavesTheOthersCounted) {
    int calls = 0;
    const Timer other = counting(1, calls);
    const auto takeOut = [](void*) {
        zep_timer* const own = timer_list;
        timer_list = own->next;
        own->next = nullptr;
    };
    const Timer once(create_timer(1, takeOut, nullptr, nullptr, 0));
    add_timer(other.get());
    add_timer(once.get());
    tick(1);
    EXPECT_EQ(1, calls);
    EXPECT_EQ(std::vector<const zep_timer*>{other.get()}, armed());
}

} // namespace
