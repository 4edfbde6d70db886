// A document into the record: the library against general XML parsers that pick out the same values.
#include <benchmark/benchmark.h>

#include <cstring>

#include "bench/documents.h"
#include "bench/fixture.h"
#include "bench/peers.h"

namespace pendra::bench {
namespace {

std::string documentOf(const benchmark::State& state) {
    return state.range(0) == 0 ? smallDocument() : largeDocument();
}

void report(benchmark::State& state, const std::string& document) {
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(document.size()));
    state.counters["bytes"] = static_cast<double>(document.size());
}

// The peers must have done the same work, or the comparison is worth nothing.
void requireSame(benchmark::State& state, const Picked& picked, const std::string& document) {
    prepareLibrary();
    std::vector<char> buffer(document.c_str(), document.c_str() + document.size() + 1);
    ZepSpecVersion version = {};
    if (!pickWithLibrary(buffer.data(), version) || version.minor != picked.version.minor ||
        !holdSameValues(zepXmlData.device, picked.device))
        state.SkipWithError("the peers pick different values");
}

void parseWithLibrary(benchmark::State& state) {
    const std::string document = documentOf(state);
    prepareLibrary();
    std::vector<char> buffer(document.size() + 1);
    ZepSpecVersion version = {};
    for (auto _ : state) {
        std::memcpy(buffer.data(), document.c_str(), document.size() + 1);
        if (!pickWithLibrary(buffer.data(), version)) state.SkipWithError("not parsed");
        benchmark::ClobberMemory();
    }
    report(state, document);
}

// In place, as fast as it goes: only what the record needs, which is entities.
void parseWithPugixml(benchmark::State& state) {
    const std::string document = documentOf(state);
    static Picked picked;
    std::vector<char> buffer(document.size());
    for (auto _ : state) {
        std::memcpy(buffer.data(), document.data(), document.size());
        picked.device.wireless[0].accessControl.acRuleCount = 0;
        picked.device.wireless[1].accessControl.acRuleCount = 0;
        if (!pickWithPugixml(buffer, picked)) state.SkipWithError("not parsed");
        benchmark::ClobberMemory();
    }
    report(state, document);
    requireSame(state, picked, document);
}

template <bool (*Pick)(const std::string&, Picked&)>
void parseWithPeer(benchmark::State& state) {
    const std::string document = documentOf(state);
    static Picked picked;
    for (auto _ : state) {
        picked.device.wireless[0].accessControl.acRuleCount = 0;
        picked.device.wireless[1].accessControl.acRuleCount = 0;
        if (!Pick(document, picked)) state.SkipWithError("not parsed");
        benchmark::ClobberMemory();
    }
    report(state, document);
    requireSame(state, picked, document);
}

BENCHMARK(parseWithLibrary)->Name("parse/library")->Arg(0)->Arg(1);
BENCHMARK(parseWithPugixml)->Name("parse/pugixml")->Arg(0)->Arg(1);
BENCHMARK(parseWithPeer<pickWithExpat>)->Name("parse/expat")->Arg(0)->Arg(1);
BENCHMARK(parseWithPeer<pickWithLibxml2>)->Name("parse/libxml2")->Arg(0)->Arg(1);

} // namespace
} // namespace pendra::bench
