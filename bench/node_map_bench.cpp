// The node map engine: how long a description takes to become a map, what the map costs, and how fast its nodes are. Where the
// aravis library is installed the same work is done with it, and the ratio is printed.

#include <benchmark/benchmark.h>

#include <functional>
#include <optional>

#include "description_generator.h"
#include "heap_use.h"
#include "kiv_subject.h"
#include "ratio_reporter.h"
#if defined(KIV_BENCH_ARAVIS)
#include "aravis_subject.h"
#endif

namespace kiv::bench {
namespace {

const Description& description_of(size_t nodes) {
    static std::map<size_t, Description> made;
    auto found = made.find(nodes);
    return found != made.end() ? found->second : made.emplace(nodes, generate_description(nodes)).first->second;
}

// ---- building ----------------------------------------------------------------------------------------------------------------

template <class Subject>
void build(benchmark::State& state) {
    const Description& description = description_of(static_cast<size_t>(state.range(0)));
    std::optional<Subject> subject;
    int64_t heap = 0, calls = 0;
    for (auto _ : state) {
        state.PauseTiming();
        subject.reset();
        const int64_t before = heap_in_use();
        std::string xml = description.xml;
        calls = allocations();
        state.ResumeTiming();
        subject.emplace(std::move(xml));
        state.PauseTiming();
        calls = allocations() - calls;
        heap = heap_in_use() - before;
        state.ResumeTiming();
    }
    const auto nodes = static_cast<double>(description.nodes);
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(description.xml.size()));
    state.counters["heap/node"] = static_cast<double>(heap) / nodes;
    state.counters["new/node"] = static_cast<double>(calls) / nodes;
    state.counters["xml/node"] = static_cast<double>(description.xml.size()) / nodes;
}

template <class Subject>
void destroy(benchmark::State& state) {
    const Description& description = description_of(static_cast<size_t>(state.range(0)));
    std::optional<Subject> subject;
    for (auto _ : state) {
        state.PauseTiming();
        subject.emplace(description.xml);
        state.ResumeTiming();
        subject.reset();
    }
}

// ---- single nodes -------------------------------------------------------------------------------------------------------------

constexpr size_t usualSize = 5000;

/// A benchmark of one read; what is read is checked first.
template <class Subject, class Node, class Value>
void read(benchmark::State& state, Node (Subject::*find)(const std::string&) const, const char* name, Value expected) {
    Subject subject(description_of(usualSize).xml);
    Node node = (subject.*find)(name);
    if (Subject::Read(node) != expected) return state.SkipWithError("the value is wrong");
    for (auto _ : state) benchmark::DoNotOptimize(Subject::Read(node));
}

template <class Subject>
void set_integer(benchmark::State& state) {
    Subject subject(description_of(usualSize).xml);
    auto node = subject.FindInteger("CachedInteger");
    int64_t value = 0;
    for (auto _ : state) Subject::Set(node, ++value & 0xFFFF);
    if (Subject::Read(node) != (value & 0xFFFF)) state.SkipWithError("the value is wrong");
}

/// The formula has to be computed anew each time.
template <class Subject>
void set_variable_and_read(benchmark::State& state) {
    Subject subject(description_of(usualSize).xml);
    auto variable = subject.FindInteger("VariableReg0");
    auto formula = subject.FindFloat("FourVariables");
    int64_t value = 0;
    double read = 0;
    for (auto _ : state) {
        Subject::Set(variable, ++value & 0xFF);
        read = Subject::Read(formula);
    }
    if (read != (value & 0xFF) * (640.0 - 7) / 8) state.SkipWithError("the value is wrong");
}

template <class Subject>
void set_enumeration(benchmark::State& state) {
    Subject subject(description_of(usualSize).xml);
    auto node = subject.FindEnumeration("Mode");
    static constexpr const char* symbolics[] = {"Mode6", "Mode1", "Mode7", "Mode3"};
    static constexpr int64_t values[] = {6, 1, 7, 3};
    size_t i = 0;
    for (auto _ : state) Subject::Set(node, symbolics[++i % 4]);
    if (Subject::Read(node) != values[i % 4]) state.SkipWithError("the value is wrong");
}

/// A selector that ten formulas, the places of a dozen registers, and invalidators depend on.
template <class Subject>
void set_selector_and_read(benchmark::State& state) {
    Subject subject(description_of(usualSize).xml);
    auto selector = subject.FindEnumeration("Selector3");
    auto level = subject.FindInteger("Level3_1");
    static constexpr const char* symbolics[] = {"Source1", "Source5"};
    size_t i = 0;
    for (auto _ : state) {
        Subject::Set(selector, symbolics[++i % 2]);
        benchmark::DoNotOptimize(Subject::Read(level));
    }
}

/// What an image with eight chunks costs beside the image.
void attach_chunks_and_read(benchmark::State& state) {
    constexpr size_t chunks = 8;
    KivSubject subject(description_of(usualSize).xml);
    GenApi::CChunkAdapterGeneric adapter(&subject.Map());
    std::vector<uint8_t> buffer(4 * chunks);
    std::vector<GenApi::SingleChunkData_t> list;
    std::vector<KivSubject::Integer> features;
    for (size_t i = 0; i < chunks; ++i) {
        list.push_back({chunk_id_of_module(i), static_cast<int64_t>(4 * i), 4});
        features.push_back(subject.FindInteger("Chunk" + std::to_string(i)));
    }
    for (auto _ : state) {
        ++buffer[0];
        adapter.AttachBuffer(buffer.data(), list.data(), chunks);
        for (auto node : features) benchmark::DoNotOptimize(KivSubject::Read(node));
    }
    if (KivSubject::Read(features[0]) != buffer[0]) state.SkipWithError("the value is wrong");
}

// ---- everything ---------------------------------------------------------------------------------------------------------------

template <class Subject>
void invalidate_and_read_all(benchmark::State& state) {
    const Description& description = description_of(static_cast<size_t>(state.range(0)));
    Subject subject(description.xml);
    std::vector<typename Subject::Integer> integers;
    std::vector<typename Subject::Float> floats;
    std::vector<typename Subject::Enumeration> enumerations;
    std::vector<typename Subject::Boolean> booleans;
    for (const auto& name : description.integers) integers.push_back(subject.FindInteger(name));
    for (const auto& name : description.floats) floats.push_back(subject.FindFloat(name));
    for (const auto& name : description.enumerations) enumerations.push_back(subject.FindEnumeration(name));
    for (const auto& name : description.booleans) booleans.push_back(subject.FindBoolean(name));
    for (auto _ : state) {
        subject.InvalidateAll();
        for (auto node : integers) benchmark::DoNotOptimize(Subject::Read(node));
        for (auto node : floats) benchmark::DoNotOptimize(Subject::Read(node));
        for (auto node : enumerations) benchmark::DoNotOptimize(Subject::Read(node));
        for (auto node : booleans) benchmark::DoNotOptimize(Subject::Read(node));
    }
    state.counters["features"] = static_cast<double>(integers.size() + floats.size() + enumerations.size() + booleans.size());
}

// ---- the list -----------------------------------------------------------------------------------------------------------------

template <class Subject>
void add(const char* name, std::function<void(benchmark::State&)> body) {
    benchmark::RegisterBenchmark((std::string(name) + "/" + Subject::name).c_str(), [body](benchmark::State& state) {
        try {
            body(state);
        } catch (const std::exception& e) {
            state.SkipWithError(e.what());
        }
    });
}

template <class Subject>
void add_sized(const char* name, void (*body)(benchmark::State&)) {
    benchmark::RegisterBenchmark((std::string(name) + "/" + Subject::name).c_str(), body)
        ->Arg(1000)
        ->Arg(5000)
        ->Arg(20000)
        ->Unit(benchmark::kMillisecond);
}

template <class Subject>
void add_all() {
    using benchmark::State;
    add_sized<Subject>("build", build<Subject>);
    add_sized<Subject>("destroy", destroy<Subject>);
    add<Subject>("read cached integer",
                 [](State& s) { read(s, &Subject::FindInteger, "CachedInteger", BenchMemory::cachedInteger); });
    add<Subject>("read uncached integer",
                 [](State& s) { read(s, &Subject::FindInteger, "UncachedInteger", BenchMemory::uncachedInteger); });
    add<Subject>("read converter", [](State& s) { read(s, &Subject::FindFloat, "ConvertedFloat", BenchMemory::convertedFloat); });
    add<Subject>("read formula of 1", [](State& s) { read(s, &Subject::FindFloat, "OneVariable", BenchMemory::oneVariable); });
    add<Subject>("read formula of 4",
                 [](State& s) { read(s, &Subject::FindFloat, "FourVariables", BenchMemory::fourVariables); });
    add<Subject>("set integer", set_integer<Subject>);
    add<Subject>("set variable, read formula", set_variable_and_read<Subject>);
    add<Subject>("set enumeration", set_enumeration<Subject>);
    add<Subject>("set selector, read", set_selector_and_read<Subject>);
    add_sized<Subject>("read all anew", invalidate_and_read_all<Subject>);
}

}  // namespace
}  // namespace kiv::bench

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    kiv::bench::add_all<kiv::bench::KivSubject>();
    benchmark::RegisterBenchmark("attach 8 chunks, read", kiv::bench::attach_chunks_and_read);
#if defined(KIV_BENCH_ARAVIS)
    kiv::bench::add_all<kiv::bench::AravisSubject>();
#endif
    kiv::bench::RatioReporter reporter("kiv", "aravis");
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.PrintRatios();
    return 0;
}
