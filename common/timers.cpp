#include <cstdlib>

#include "common/trace.h"
#include "pendra/common.h"

namespace {

bool isArmed(const zep_timer* timer) {
    for (const zep_timer* armed = timer_list; armed != nullptr; armed = armed->next)
        if (armed == timer) return true;
    return false;
}

void fire(const zep_timer& timer) {
    if (timer.callback != nullptr) timer.callback(timer.argument);
}

// A record that stands at 0 already is left there: it has no period to count.
void tick(zep_timer& timer) {
    if (timer.remaining == 0 || --timer.remaining > 0) return;
    fire(timer);
    timer.remaining = timer.period;
}

} // namespace

extern "C" {

zep_timer* timer_list;

zep_timer* create_timer(uint32_t period, void (*callback)(void*), void* argument, void* argument2, uint32_t flags) {
    auto* timer = static_cast<zep_timer*>(std::calloc(1, sizeof(zep_timer)));
    if (timer == nullptr) {
        pendra::eventLine(pendra::kLogEvent, "create_timer fail !!!\n");
        return nullptr;
    }
    timer->remaining = period;
    timer->period = period;
    timer->flags = flags;
    timer->argument = argument;
    timer->argument2 = argument2;
    timer->callback = callback;
    return timer;
}

void add_timer(zep_timer* timer) {
    if (timer == nullptr || isArmed(timer)) return;
    if (timer->remaining == 0) {
        fire(*timer);
        return;
    }
    timer->next = timer_list;
    timer_list = timer;
}

void tick_timers(void) {
    for (zep_timer* timer = timer_list; timer != nullptr;) {
        zep_timer* next = timer->next;
        tick(*timer);
        timer = isArmed(timer) ? timer->next : next; // a callback may take its own timer or others out of the list
    }
}

} // extern "C"
