// Single variables and forms.
#include <benchmark/benchmark.h>

#include <cstring>

#include "bench/documents.h"
#include "bench/fixture.h"
#include "bench/memory_device.h"
#include "pendra/pendra.h"

namespace pendra::bench {
namespace {

void readVariable(benchmark::State& state, const char* name) {
    prepareLibrary();
    char value[ZEPVAR_VALUE_SIZE] = "";
    deviceCounts = {};
    for (auto _ : state) {
        if (get_ZepVar(name, value, 0) != 0) state.SkipWithError("not read");
        benchmark::DoNotOptimize(value[0]);
    }
    state.counters["reads"] =
        benchmark::Counter(static_cast<double>(deviceCounts.reads), benchmark::Counter::kAvgIterations);
}

template <int32_t (*Hand)(const char*, char*)>
void handVariable(benchmark::State& state, const char* name, const char* text) {
    prepareLibrary();
    char value[ZEPVAR_VALUE_SIZE];
    std::strcpy(value, text);
    for (auto _ : state) {
        if (Hand(name, value) != 0) state.SkipWithError("refused");
        benchmark::ClobberMemory();
    }
}

void setFor(benchmark::State& state, const char* name, const char* text) {
    handVariable<set_ZepVar>(state, name, text);
}

void validateFor(benchmark::State& state, const char* name, const char* text) {
    handVariable<validate_ZepVar>(state, name, text);
}

// What a read of a node costs on this device: a variable that is read from the tree costs this on top.
void readNodeAlone(benchmark::State& state) {
    prepareLibrary();
    char text[XNODE_TEXT_MAX];
    for (auto _ : state) {
        xget_str(text, "%s", "/fwupgradeinfo/currfwfilename");
        benchmark::DoNotOptimize(text[0]);
    }
}

// 0: checked only; 1: applied, of which the first time writes.
void runForm(benchmark::State& state) {
    prepareLibrary();
    const std::string form = variableForm(50);
    char fault[ZEPVAR_VALUE_SIZE];
    const auto apply = static_cast<int32_t>(state.range(0));
    const long allocations = allocationsSoFar();
    for (auto _ : state) {
        if (do_ZepVar_Parser(form.c_str(), '&', fault, apply) != 0) state.SkipWithError("refused");
    }
    state.counters["allocations"] =
        benchmark::Counter(static_cast<double>(allocationsSoFar() - allocations), benchmark::Counter::kAvgIterations);
}

BENCHMARK_CAPTURE(readVariable, text, "zep_Wl2_WirelessName")->Name("variable/read/text");
BENCHMARK_CAPTURE(readVariable, number, "zep_RouterEnbl")->Name("variable/read/number");
BENCHMARK_CAPTURE(readVariable, last, "zep_Wl5_Acl_AcRuleNo")->Name("variable/read/deep");
BENCHMARK_CAPTURE(readVariable, live, "zep_Ext_Fwu_CurrFwFileName")->Name("variable/read/live");
BENCHMARK(readNodeAlone)->Name("variable/node");
BENCHMARK_CAPTURE(setFor, text, "zep_Wl2_WirelessName", "Orchard")->Name("variable/set/text");
BENCHMARK_CAPTURE(setFor, channel, "zep_Wl2_Channel", "11")->Name("variable/set/channel");
BENCHMARK_CAPTURE(validateFor, text, "zep_Wl2_WirelessName", "Orchard")->Name("variable/validate/text");
BENCHMARK_CAPTURE(validateFor, address, "zep_Upl_IP", "198.51.100.20")->Name("variable/validate/address");
BENCHMARK(runForm)->Name("variable/form")->Arg(0)->Arg(1);

} // namespace
} // namespace pendra::bench
