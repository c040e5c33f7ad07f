// What a program feels: opening a camera, reading features, grabbing. Through the C interface alone, on the first simulated
// camera. Where the aravis library is installed its node map does the same work on the same description, over a copy of the
// camera's registers in plain memory: no producer stands between it and the device, as one does here.
#include <Kiv_Factory.h>
#include <benchmark/benchmark.h>
#include <time.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>

#include "heap_use.h"
#include "ratio_reporter.h"
#if defined(KIV_BENCH_ARAVIS)
#include "aravis_subject.h"
#endif

namespace {

void check(const char* call, K_STATUS_CODES status) {
    if (status == K_ST_SUCCESS) return;
    K_GC_ERROR_INFO info{};
    K_Factory_GetGenICamErrorInfo(&info);
    throw std::runtime_error(std::string(call) + " failed with " + std::to_string(status) + " " + info.sDescription);
}
#define CHECK(call) check(#call, call)

// One factory for the whole run: a producer can be opened once in a process.
class Session {
public:
    Session() {
        CHECK(K_Factory_Open("", &factory_));
        char id[1024];
        uint32_t size = sizeof id;
        CHECK(K_Factory_GetCameraIDByIndex(factory_, 0, id, &size));
        id_ = id;
    }
    ~Session() {
        Close();
        K_Factory_Close(factory_);
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    CAM_HANDLE Camera() {
        if (!camera_) CHECK(K_Camera_Open_Proxy(factory_, id_.c_str(), &camera_));
        return camera_;
    }
    void Close() {
        if (camera_) K_Camera_Close(camera_);
        camera_ = nullptr;
    }

private:
    FACTORY_HANDLE factory_ = nullptr;
    CAM_HANDLE camera_ = nullptr;
    std::string id_;
};

Session& session() {
    static Session the_session;
    return the_session;
}

NODE_HANDLE node(const char* name) {
    NODE_HANDLE found = nullptr;
    CHECK(K_Camera_GetNodeByName(session().Camera(), name, &found));
    return found;
}

// Identifier to usable node map: device open, description fetched and unpacked, map built.
void OpenCamera(benchmark::State& state) {
    for (auto _ : state) {
        session().Close();
        session().Camera();
    }
}
BENCHMARK(OpenCamera)->Unit(benchmark::kMillisecond);

// ---- features ----------------------------------------------------------------------------------------------------------------

/// Times `work`, which is done some thousand times before: what is made when it is first needed is there then. Tells what one of
/// them takes from the heap.
void repeat(benchmark::State& state, const std::function<void()>& work) {
    constexpr int64_t rehearsals = 2000;
    for (int64_t i = 0; i < rehearsals; ++i) work();
    const int64_t before = kiv::bench::allocations();
    for (int64_t i = 0; i < rehearsals; ++i) work();
    state.counters["new"] = static_cast<double>(kiv::bench::allocations() - before) / static_cast<double>(rehearsals);
    for (auto _ : state) work();
}

constexpr const char* patterns[] = {"Off", "GreyHorizontalRamp"};

void node_get_int64(benchmark::State& state) {
    const auto width = node("Width");
    int64_t value = 0;
    repeat(state, [&] {
        CHECK(K_Node_GetValueInt64(width, false, &value));
        benchmark::DoNotOptimize(value);
    });
}

void camera_get_int64(benchmark::State& state) {
    const auto camera = session().Camera();
    int64_t value = 0;
    repeat(state, [&] {
        CHECK(K_Camera_GetValueInt64(camera, "Width", &value));
        benchmark::DoNotOptimize(value);
    });
}

void camera_set_enumeration(benchmark::State& state) {
    const auto camera = session().Camera();
    size_t i = 0;
    repeat(state, [&] { CHECK(K_Camera_SetValueString(camera, "TestPattern", patterns[++i % 2])); });
    CHECK(K_Camera_SetValueString(camera, "TestPattern", patterns[0]));
}

void camera_get_enumeration(benchmark::State& state) {
    const auto camera = session().Camera();
    char text[64];
    repeat(state, [&] {
        uint32_t size = sizeof text;
        CHECK(K_Camera_GetValueString(camera, "TestPattern", text, &size));
    });
}

// The value is forgotten before each read: one register access through port, producer and device each time.
void NodeGetInt64Uncached(benchmark::State& state) {
    const auto width = node("Width");
    int64_t value = 0;
    repeat(state, [&] {
        CHECK(K_Node_Invalidate(width));
        CHECK(K_Node_GetValueInt64(width, false, &value));
        benchmark::DoNotOptimize(value);
    });
}
BENCHMARK(NodeGetInt64Uncached);

// The register access alone.
void CameraReadData(benchmark::State& state) {
    const auto camera = session().Camera();
    uint32_t value = 0;
    repeat(state, [&] {
        uint32_t size = sizeof value;
        CHECK(K_Camera_ReadData(camera, 0, &value, &size));
        benchmark::DoNotOptimize(value);
    });
}
BENCHMARK(CameraReadData);

#if defined(KIV_BENCH_ARAVIS)

using kiv::bench::AravisSubject;

std::string description() {
    TRANSPORT_LAYER_HANDLE layer = nullptr;
    const auto camera = session().Camera();
    CHECK(K_Camera_GetTLHandle(camera, &layer));
    uint32_t size = 0;
    CHECK(K_GenTL_Module_GetXmlString(layer, camera, camera, nullptr, &size));
    std::string text(++size, '\0');
    CHECK(K_GenTL_Module_GetXmlString(layer, camera, camera, text.data(), &size));
    text.pop_back();
    return text;
}

/// All registers of the camera; the description lies behind them.
kiv::bench::BenchMemory registers() {
    kiv::bench::BenchMemory memory;
    const auto camera = session().Camera();
    for (uint64_t address = 0; address < 0x100000; address += 4) {
        uint32_t word = 0, size = sizeof word;
        if (K_Camera_ReadData(camera, address, &word, &size) != K_ST_SUCCESS) word = 0;
        memory.Write(address, &word, sizeof word);
    }
    return memory;
}

AravisSubject& aravis() {
    static AravisSubject subject(description(), registers());
    return subject;
}

void aravis_node_get(benchmark::State& state) {
    const auto width = aravis().FindInteger("Width");
    int64_t expected = 0;
    CHECK(K_Camera_GetValueInt64(session().Camera(), "Width", &expected));
    if (AravisSubject::Read(width) != expected) return state.SkipWithError("the value is wrong");
    repeat(state, [&] { benchmark::DoNotOptimize(AravisSubject::Read(width)); });
}

void aravis_get_by_name(benchmark::State& state) {
    repeat(state, [] { benchmark::DoNotOptimize(aravis().ReadByName("Width")); });
}

void aravis_set_enumeration(benchmark::State& state) {
    size_t i = 0;
    repeat(state, [&] { aravis().SetByName("TestPattern", patterns[++i % 2]); });
    int64_t expected = 0;
    CHECK(K_Camera_SetValueString(session().Camera(), "TestPattern", patterns[i % 2]));
    CHECK(K_Camera_GetValueInt64(session().Camera(), "TestPattern", &expected));
    if (AravisSubject::Read(aravis().FindEnumeration("TestPattern")) != expected) state.SkipWithError("the value is wrong");
}

#endif

// The same work under one name: the ratio is printed below the table.
void add_comparisons() {
    benchmark::RegisterBenchmark("read integer, cached/kiv", node_get_int64);
    benchmark::RegisterBenchmark("read integer by name/kiv", camera_get_int64);
    benchmark::RegisterBenchmark("set enumeration by name/kiv", camera_set_enumeration);
    benchmark::RegisterBenchmark("read enumeration's text by name", camera_get_enumeration);
#if defined(KIV_BENCH_ARAVIS)
    benchmark::RegisterBenchmark("read integer, cached/aravis", aravis_node_get);
    benchmark::RegisterBenchmark("read integer by name/aravis", aravis_get_by_name);
    benchmark::RegisterBenchmark("set enumeration by name/aravis", aravis_set_enumeration);
#endif
}

// ---- images ------------------------------------------------------------------------------------------------------------------

double thread_seconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

struct Grab {
    std::atomic<int64_t> frames{0};
    double first = 0, last = 0;  // processor time of the stream thread
};

void K_CALL on_image(void* context, K_IMAGE_INFO*) {
    auto& grab = *static_cast<Grab*>(context);
    grab.last = thread_seconds();
    if (grab.frames == 0) grab.first = grab.last;
    ++grab.frames;
}

// Processor time that the stream thread spends per frame, producer calls included, image rendering not: what delivering costs.
void GrabOverheadPerFrame(benchmark::State& state) {
    auto camera = session().Camera();
    CHECK(K_Camera_SetValueInt64(camera, "Width", 64));
    CHECK(K_Camera_SetValueInt64(camera, "Height", 64));
    int64_t payload = 0;
    CHECK(K_Camera_GetValueInt64(camera, "PayloadSize", &payload));
    constexpr int64_t frames = 100;
    for (auto _ : state) {
        Grab grab;
        THRD_HANDLE thread = nullptr;
        CHECK(K_Image_OpenStream(camera, 0, &grab, reinterpret_cast<void (*)(void)>(on_image), &thread,
                                 static_cast<uint32_t>(payload), 0));
        CHECK(K_Camera_ExecuteCommand(camera, "AcquisitionStart"));
        timespec pause{0, 1'000'000};
        while (grab.frames < frames) nanosleep(&pause, nullptr);
        CHECK(K_Camera_ExecuteCommand(camera, "AcquisitionStop"));
        CHECK(K_Image_CloseStream(thread));
        state.SetIterationTime((grab.last - grab.first) / static_cast<double>(grab.frames - 1));
    }
    CHECK(K_Camera_ExecuteCommand(camera, "DeviceReset"));
}
BENCHMARK(GrabOverheadPerFrame)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(3);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    try {
        add_comparisons();
        kiv::bench::RatioReporter reporter("kiv", "aravis");
        benchmark::RunSpecifiedBenchmarks(&reporter);
        reporter.PrintRatios();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "camera_bench: %s\n", error.what());
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
