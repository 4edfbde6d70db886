// How cost grows with what a client sends. Each family is run at sizes far apart; the time for a byte must not grow.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "bench/documents.h"
#include "bench/fixture.h"
#include "pendra/pendra.h"

namespace pendra::bench {
namespace {

void runText(benchmark::State& state, const std::string& document, int32_t (*run)(char*)) {
    prepareLibrary();
    std::vector<char> buffer(document.size() + 1);
    for (auto _ : state) {
        std::memcpy(buffer.data(), document.c_str(), document.size() + 1);
        benchmark::DoNotOptimize(run(buffer.data()));
    }
    state.counters["bytes"] = static_cast<double>(document.size());
    state.counters["result"] = zepXmlData.setResult;
}

void growRules(benchmark::State& state) {
    const auto rules = static_cast<int>(state.range(0));
    runText(state, setupDocument({.rules24 = rules, .rules5 = rules}), do_ZepXml_Parser);
}

void growDocument(benchmark::State& state) {
    runText(state, setupDocument({.bytes = static_cast<size_t>(state.range(0))}), do_ZepXml_Parser);
}

void growHostile(benchmark::State& state, const char* piece) {
    runText(state, hostileDocument(piece, static_cast<size_t>(state.range(0))), do_ZepXml_Parser);
}

// Without a single element that the library looks for.
void growUnclosed(benchmark::State& state, const char* piece) {
    std::string document = "<root>";
    while (document.size() < static_cast<size_t>(state.range(0)))
        document += piece;
    runText(state, document, do_ZepXml_Parser);
}

int32_t parseList(char* document) {
    char image[128];
    char notes[128];
    return do_FwXml_Parser(document, image, notes);
}

void growFirmwareList(benchmark::State& state) {
    runText(state, firmwareList(static_cast<int>(state.range(0))), parseList);
}

void growHostileList(benchmark::State& state) {
    std::string list = "<root><specVersion><major>1</major><minor>0</minor></specVersion><FirmwareList>";
    while (list.size() < static_cast<size_t>(state.range(0)))
        list += "<Firmware>x</Firmware><Firmware><MacList><MAC>";
    runText(state, list + "</FirmwareList></root>", parseList);
}

void growForm(benchmark::State& state) {
    const std::string form = variableForm(static_cast<int>(state.range(0)));
    prepareLibrary();
    char fault[ZEPVAR_VALUE_SIZE];
    for (auto _ : state)
        benchmark::DoNotOptimize(do_ZepVar_Parser(form.c_str(), '&', fault, 0));
    state.counters["bytes"] = static_cast<double>(form.size());
}

void sizes(benchmark::internal::Benchmark* family) {
    family->Arg(1 << 10)->Arg(16 << 10)->Arg(128 << 10)->Arg(1 << 20);
}

BENCHMARK(growRules)->Name("growth/rules")->Arg(1)->Arg(10)->Arg(40);
BENCHMARK(growDocument)->Name("growth/document")->Apply(sizes);
BENCHMARK_CAPTURE(growHostile, less, "<")->Name("growth/hostile/less")->Apply(sizes);
BENCHMARK_CAPTURE(growHostile, slash, "</")->Name("growth/hostile/closing")->Apply(sizes);
BENCHMARK_CAPTURE(growHostile, tags, "<Wireless2.4>")->Name("growth/hostile/sections")->Apply(sizes);
BENCHMARK_CAPTURE(growHostile, rules, "<AcRule>")->Name("growth/hostile/rules")->Apply(sizes);
BENCHMARK_CAPTURE(growHostile, entities, "&lt;")->Name("growth/hostile/entities")->Apply(sizes);
BENCHMARK_CAPTURE(growUnclosed, tags, "<Device>")->Name("growth/unclosed/section")->Apply(sizes);
BENCHMARK_CAPTURE(growUnclosed, roots, "<root>")->Name("growth/unclosed/root")->Apply(sizes);
BENCHMARK(growFirmwareList)->Name("growth/list")->Arg(10)->Arg(100)->Arg(1000)->Arg(5000);
BENCHMARK(growHostileList)->Name("growth/hostile/list")->Apply(sizes);
BENCHMARK(growForm)->Name("growth/form")->Arg(10)->Arg(100)->Arg(1000)->Arg(10000);

} // namespace
} // namespace pendra::bench
