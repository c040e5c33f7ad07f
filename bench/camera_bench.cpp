// What a program feels: opening a camera, reading features, grabbing. Through the C interface alone, on the first simulated
// camera.
#include <Kiv_Factory.h>
#include <benchmark/benchmark.h>
#include <time.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

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

void NodeGetInt64Cached(benchmark::State& state) {
    auto width = node("Width");
    int64_t value = 0;
    for (auto _ : state) {
        CHECK(K_Node_GetValueInt64(width, false, &value));
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(NodeGetInt64Cached);

void CameraGetInt64Cached(benchmark::State& state) {
    auto camera = session().Camera();
    int64_t value = 0;
    for (auto _ : state) {
        CHECK(K_Camera_GetValueInt64(camera, "Width", &value));
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(CameraGetInt64Cached);

// The value is forgotten before each read: one register access through port, producer and device each time.
void NodeGetInt64Uncached(benchmark::State& state) {
    auto width = node("Width");
    int64_t value = 0;
    for (auto _ : state) {
        CHECK(K_Node_Invalidate(width));
        CHECK(K_Node_GetValueInt64(width, false, &value));
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(NodeGetInt64Uncached);

// The register access alone.
void CameraReadData(benchmark::State& state) {
    auto camera = session().Camera();
    uint32_t value = 0;
    for (auto _ : state) {
        uint32_t size = sizeof value;
        CHECK(K_Camera_ReadData(camera, 0, &value, &size));
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(CameraReadData);

void CameraSetEnumerationByText(benchmark::State& state) {
    auto camera = session().Camera();
    bool other = false;
    for (auto _ : state) {
        CHECK(K_Camera_SetValueString(camera, "TestPattern", other ? "Off" : "GreyHorizontalRamp"));
        other = !other;
    }
    CHECK(K_Camera_SetValueString(camera, "TestPattern", "Off"));
}
BENCHMARK(CameraSetEnumerationByText);

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
        benchmark::RunSpecifiedBenchmarks();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "camera_bench: %s\n", error.what());
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
