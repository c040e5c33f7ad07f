// The node map engine: how long a description takes to become a map, what the map costs, and how fast its nodes are. Where the
// aravis library is installed the same work is done with it, and the ratio is printed.

#include <benchmark/benchmark.h>

#include <functional>
#include <memory>
#include <optional>

#include "description.h"
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

/// The description of the simulated cameras, with its nodes counted as the map counts them.
const Description& simulated_camera() {
    static const Description made = [] {
        Description description;
        description.xml = kivsim::camera_description(kivsim::CameraConfig());
        description.nodes = static_cast<size_t>(genapi::load_node_map(description.xml)->GetNumNodes());
        return description;
    }();
    return made;
}

template <class Subject>
void build(benchmark::State& state, const Description& description) {
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
        heap = heap_in_use() - before - static_cast<int64_t>(BenchMemory::size);  // the device is no part of the map
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

/// A benchmark of one write after the other; what was written last is read at the end.
template <class Subject, class Node, class Value>
void set(benchmark::State& state, Node (Subject::*find)(const std::string&) const, const char* name,
         Value (*value_of)(uint64_t)) {
    Subject subject(description_of(usualSize).xml);
    Node node = (subject.*find)(name);
    uint64_t i = 0;
    for (auto _ : state) Subject::Set(node, value_of(++i));
    if (Subject::Read(node) != value_of(i)) state.SkipWithError("the value is wrong");
}

/// As somebody does who shows the value.
template <class Subject>
void set_integer_and_read(benchmark::State& state) {
    Subject subject(description_of(usualSize).xml);
    auto node = subject.FindInteger("CachedInteger");
    int64_t value = 0, read = 0;
    for (auto _ : state) {
        Subject::Set(node, ++value & 0xFFFF);
        read += Subject::Read(node) == (value & 0xFFFF);
    }
    if (read != value) state.SkipWithError("the value is wrong");
}

/// The worst case: everything that the integer decides has been asked for before it changes again.
template <class Subject>
void set_lock_and_ask(benchmark::State& state) {
    Subject subject(description_of(usualSize).xml);
    auto lock = subject.FindInteger("CachedInteger");
    std::vector<typename Subject::Integer> locked;
    for (const auto& name : description_of(usualSize).integers)
        if (name.starts_with("Level") && (name.back() - '0') % 2) locked.push_back(subject.FindInteger(name));
    int64_t value = 0;
    size_t count = 0;
    for (auto _ : state) {
        Subject::Set(lock, ++value & 1);
        for (auto node : locked) count += Subject::IsLocked(node);
    }
    state.counters["locked"] = static_cast<double>(locked.size());
    if (count != locked.size() * static_cast<size_t>((value + 1) / 2)) state.SkipWithError("the modes are wrong");
}

template <class Subject>
void execute(benchmark::State& state, const char* name) {
    Subject subject(description_of(usualSize).xml);
    auto node = subject.FindCommand(name);
    for (auto _ : state) Subject::Execute(node);
}

constexpr size_t registerSize = 16;

template <class Subject>
void read_register(benchmark::State& state, const char* name) {
    Subject subject(description_of(usualSize).xml);
    auto node = subject.FindRegister(name);
    uint8_t bytes[registerSize] = {};
    for (auto _ : state) {
        Subject::Read(node, bytes, registerSize);
        benchmark::DoNotOptimize(bytes[0]);
    }
}

template <class Subject>
void set_register(benchmark::State& state, const char* name) {
    Subject subject(description_of(usualSize).xml);
    auto node = subject.FindRegister(name);
    uint8_t bytes[registerSize] = {}, read[registerSize] = {};
    for (auto _ : state) {
        ++bytes[0];
        Subject::Set(node, bytes, registerSize);
    }
    Subject::Read(node, read, registerSize);
    if (read[0] != bytes[0]) state.SkipWithError("the value is wrong");
}

/// The formula has to be computed anew each time.
template <class Subject>
void set_variable_and_read(benchmark::State& state, const std::string& name) {
    Subject subject(description_of(usualSize).xml);
    auto variable = subject.FindInteger("VariableReg0");
    auto formula = subject.FindFloat(name);
    int64_t value = 0;
    double read = 0;
    for (auto _ : state) {
        Subject::Set(variable, ++value & 0xFF);
        read = Subject::Read(formula);
    }
    const auto last = static_cast<double>(value & 0xFF);
    if (read != (name == "OneVariable" ? last * 0.5 + 1 : last * (640.0 - 7) / 8)) state.SkipWithError("the value is wrong");
}

template <class Subject>
void set_string(benchmark::State& state, const std::string& name) {
    Subject subject(description_of(usualSize).xml);
    auto node = subject.FindString(name);
    static constexpr const char* texts[] = {"one", "camera in hall 7"};
    size_t i = 0;
    for (auto _ : state) Subject::Set(node, texts[++i % 2]);
    if (Subject::Read(node) != texts[i % 2]) state.SkipWithError("the value is wrong");
}

template <class Subject>
void set_enumeration(benchmark::State& state, const std::string& name) {
    Subject subject(description_of(usualSize).xml);
    auto node = subject.FindEnumeration(name);
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
void add_building() {
    using benchmark::State;
    add_sized<Subject>("build", [](State& s) { build<Subject>(s, description_of(static_cast<size_t>(s.range(0)))); });
    benchmark::RegisterBenchmark((std::string("build simulated camera/") + Subject::name).c_str(), [](State& s) {
        build<Subject>(s, simulated_camera());
    })->Unit(benchmark::kMillisecond);
    add_sized<Subject>("destroy", destroy<Subject>);
}

/// Each kind of node, over a register that is cached and over one that is not.
template <class Subject>
void add_kinds(bool cached) {
    using benchmark::State;
    const auto add_one = [cached](const char* work, auto body) {
        add<Subject>((std::string(work) + (cached ? "" : ", not cached")).c_str(), body);
    };
    const auto both = [&](const char* kind, auto find, const char* name, auto first, auto value_of) {
        const auto node = std::make_shared<std::string>(cached ? name : std::string("Uncached") + name);
        add_one((std::string("read ") + kind).c_str(), [=](State& s) { read(s, find, node->c_str(), first); });
        add_one((std::string("set ") + kind).c_str(), [=](State& s) { set(s, find, node->c_str(), value_of); });
    };
    const auto integer = cached ? "CachedInteger" : "UncachedInteger";
    const auto shown = cached ? BenchMemory::cachedInteger : BenchMemory::uncachedInteger;
    constexpr auto whole = +[](uint64_t i) { return static_cast<int64_t>(i & 0xFFFF); };
    add_one("read integer", [=](State& s) { read(s, &Subject::FindInteger, integer, shown); });
    add_one("set integer", [=](State& s) { set(s, &Subject::FindInteger, integer, whole); });
    both("field", &Subject::FindInteger, "Field", int64_t{0}, whole);
    both("integer converter", &Subject::FindInteger, "ConvertedInteger", int64_t{0}, whole);
    both(
        "float", &Subject::FindFloat, "Number", 0.0, +[](uint64_t i) { return static_cast<double>(i & 0xFF) + 0.5; });
    both(
        "converter", &Subject::FindFloat, "ConvertedFloat", cached ? BenchMemory::convertedFloat : 0.0,
        +[](uint64_t i) { return static_cast<double>(i & 0xFFFF); });
    both(
        "boolean", &Subject::FindBoolean, "Flag", false, +[](uint64_t i) { return i % 2 == 1; });
    const auto prefixed = [cached](const char* name) { return (cached ? "" : "Uncached") + std::string(name); };
    add_one("read enumeration", [=](State& s) { read(s, &Subject::FindEnumeration, prefixed("Mode").c_str(), int64_t{0}); });
    add_one("set enumeration by text", [=](State& s) { set_enumeration<Subject>(s, prefixed("Mode")); });
    add_one("read string", [=](State& s) { read(s, &Subject::FindString, prefixed("Text").c_str(), std::string()); });
    add_one("set string", [=](State& s) { set_string<Subject>(s, prefixed("Text")); });
    add_one("read register", [=](State& s) { read_register<Subject>(s, prefixed("Bytes").c_str()); });
    add_one("set register", [=](State& s) { set_register<Subject>(s, prefixed("Bytes").c_str()); });
    add_one("execute command", [=](State& s) { execute<Subject>(s, prefixed("Start").c_str()); });
}

template <class Subject>
void add_all() {
    using benchmark::State;
    add_building<Subject>();
    for (const bool cached : {true, false}) add_kinds<Subject>(cached);
    add<Subject>("read formula of 1", [](State& s) { read(s, &Subject::FindFloat, "OneVariable", BenchMemory::oneVariable); });
    add<Subject>("read formula of 4",
                 [](State& s) { read(s, &Subject::FindFloat, "FourVariables", BenchMemory::fourVariables); });
    add<Subject>("set variable, read formula of 1", [](State& s) { set_variable_and_read<Subject>(s, "OneVariable"); });
    add<Subject>("set variable, read formula of 4", [](State& s) { set_variable_and_read<Subject>(s, "FourVariables"); });
    add<Subject>("set integer, read it", set_integer_and_read<Subject>);
    add<Subject>("set lock, ask all it locks", set_lock_and_ask<Subject>);
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
