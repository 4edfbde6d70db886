// A whole document run: parse, check, compare with the tree, write, report.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "bench/documents.h"
#include "bench/fixture.h"
#include "bench/memory_device.h"
#include "pendra/pendra.h"

namespace pendra::bench {
namespace {

void runDocument(benchmark::State& state, const std::string& document, std::vector<char>& buffer) {
    buffer.resize(document.size() + 1);
    std::memcpy(buffer.data(), document.c_str(), document.size() + 1);
    if (do_ZepXml_Parser(buffer.data()) != 1 || zepXmlData.setResult != 0) state.SkipWithError("refused");
}

// The first run settles what the document says; after it, two documents take turns, or one comes again and again.
void runDocuments(benchmark::State& state, bool changes, bool withShell) {
    const std::string document = setupDocument({.rules5 = 3});
    const std::string other = changes ? setupDocument({.rules5 = 3, .other = true}) : document;
    prepareLibrary();
    std::vector<char> buffer;
    runDocument(state, document, buffer);
    runDocument(state, other, buffer);
    runsCommands = withShell;
    deviceCounts = {};
    const long allocations = allocationsSoFar();
    bool turn = false;
    for (auto _ : state) {
        runDocument(state, turn ? other : document, buffer);
        turn = !turn;
    }
    runsCommands = false;
    const auto each = [](long count) {
        return benchmark::Counter(static_cast<double>(count), benchmark::Counter::kAvgIterations);
    };
    state.counters["reads"] = each(deviceCounts.reads);
    state.counters["writes"] = each(deviceCounts.writes);
    state.counters["commands"] = each(deviceCounts.commands);
    state.counters["allocations"] = each(allocationsSoFar() - allocations);
}

void changeNothing(benchmark::State& state) {
    runDocuments(state, false, state.range(0) != 0);
}

void changeEverything(benchmark::State& state) {
    runDocuments(state, true, state.range(0) != 0);
}

// Argument: whether the commands are run for real.
BENCHMARK(changeNothing)->Name("run/nothing")->Arg(0)->Arg(1)->UseRealTime();
BENCHMARK(changeEverything)->Name("run/everything")->Arg(0)->Arg(1)->UseRealTime();

} // namespace
} // namespace pendra::bench
