// The logger: a message at each level, and one that the threshold stops.
#include <benchmark/benchmark.h>

#include "bench/fixture.h"
#include "common/trace.h"
#include "pendra/pendra.h"

namespace pendra::bench {
namespace {

// With everything let through: to the file, which rotates as it does on a device, and to the console.
void logMessage(benchmark::State& state) {
    prepareLibrary();
    daemon_log_level = 7;
    const auto level = static_cast<int32_t>(state.range(0));
    for (auto _ : state)
        logPrintf(level, "Zep SetResult=%d, SetMsg='%s', GetWaitSec=%d\n", 0, "Device/Wireless5/Channel", 65);
}

void logMessageWithoutFile(benchmark::State& state) {
    prepareLibrary();
    daemon_log_file_size_k = 0;
    for (auto _ : state)
        logPrintf(5, "Zep SetResult=%d, SetMsg='%s', GetWaitSec=%d\n", 0, "Device/Wireless5/Channel", 65);
}

void stopMessage(benchmark::State& state) {
    prepareLibrary();
    const auto level = static_cast<int32_t>(state.range(0));
    for (auto _ : state)
        logPrintf(level, "Zep SetResult=%d, SetMsg='%s', GetWaitSec=%d\n", 0, "Device/Wireless5/Channel", 65);
}

void stopEntryTrace(benchmark::State& state) {
    prepareLibrary();
    for (auto _ : state)
        traceEntry("clientAuthListAdd");
}

BENCHMARK(logMessage)->Name("log/written")->Arg(0)->Arg(4)->Arg(5)->Arg(6)->Arg(7);
BENCHMARK(logMessageWithoutFile)->Name("log/console");
BENCHMARK(stopMessage)->Name("log/stopped")->Arg(6)->Arg(7);
BENCHMARK(stopEntryTrace)->Name("log/trace-stopped");

} // namespace
} // namespace pendra::bench
