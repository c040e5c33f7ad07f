// What the image stream costs: beside a producer that costs nothing, beside a bare condition variable, and with simulated
// cameras. `stream_bench --soak FRAMES` runs long, with faults at random, and tells whether every frame is accounted for.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <thread>

#include "heap_use.h"
#include "stub_session.h"

namespace kiv::bench {
namespace {

using namespace std::chrono_literals;

constexpr std::uint32_t small_buffer = 64 * 1024;

/// Processor time of the stream thread per frame, the stub's calls and the empty callback included; with the chunks of each frame
/// under the camera's features, or without.
void OwnCost(benchmark::State& state, std::uint64_t layout) {
    static std::uint64_t the_layout;
    the_layout = layout;
    StubSession session;
    auto& control = session.Control();
    control.script = [](StubFrame& frame) { frame.layout = the_layout; };
    constexpr std::uint64_t warm_up = 1000, frames = 1000000;
    for (auto _ : state) {
        std::atomic<std::uint64_t> seen{0};
        double first = 0, last = 0, wall_first = 0, wall_last = 0;
        std::int64_t allocated_first = 0, allocated_last = 0;
        control.frames = warm_up + frames;
        {
            OpenStream stream(session.Camera(), small_buffer, [&](const K_IMAGE_INFO&) {
                auto count = ++seen;
                if (count == warm_up) first = thread_cpu_time(), wall_first = wall_time(), allocated_first = allocations();
                if (count == warm_up + frames) last = thread_cpu_time(), wall_last = wall_time(), allocated_last = allocations();
            });
            while (seen < warm_up + frames) std::this_thread::sleep_for(1ms);
        }
        state.SetIterationTime((last - first) / frames);
        state.counters["wall_us"] = (wall_last - wall_first) / frames * 1e6;
        state.counters["allocations"] = static_cast<double>(allocated_last - allocated_first) / frames;
    }
    control.script = nullptr;
}
BENCHMARK_CAPTURE(OwnCost, no_chunks, 0)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(5);
BENCHMARK_CAPTURE(OwnCost, chunks_same_layout, 7)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(5);

/// Sorted seconds between a signal and the moment when its receiver runs.
class Delays {
public:
    explicit Delays(std::size_t most) { all_.reserve(most); }
    void Add(double delay) { all_.push_back(delay); }
    std::size_t Count() const { return all_.size(); }
    double Quantile(double part) {
        std::ranges::sort(all_);
        return all_.empty() ? 0
                            : all_[std::min(all_.size() - 1, static_cast<std::size_t>(part * static_cast<double>(all_.size())))];
    }

private:
    std::vector<double> all_;
};

constexpr std::size_t rounds = 10, wake_ups_a_round = 500;
constexpr auto between = 500us;

/// A receiver that sleeps on a condition variable, as the stub's wait does: the machine's own time to wake a thread.
void wake_machine(Delays& delays) {
    std::mutex lock;
    std::condition_variable came;
    bool signal = false, end = false;
    std::atomic<double> sent{0};
    std::thread receiver([&] {
        std::unique_lock guard(lock);
        for (;;) {
            came.wait_for(guard, 1000ms, [&] { return signal || end; });
            if (end) return;
            if (std::exchange(signal, false)) delays.Add(wall_time() - sent);
        }
    });
    auto send = [&](bool& what) {
        std::this_thread::sleep_for(between);
        sent = wall_time();
        {
            std::lock_guard guard(lock);
            what = true;
        }
        came.notify_one();
    };
    for (std::size_t i = 0; i < wake_ups_a_round; ++i) send(signal);
    send(end);
    receiver.join();
}

void wake_stream(StubSession& session, Delays& delays) {
    std::atomic<double> sent{0};
    OpenStream stream(session.Camera(), small_buffer, [&](const K_IMAGE_INFO&) { delays.Add(wall_time() - sent); });
    for (std::size_t i = 0; i < wake_ups_a_round; ++i) {
        std::this_thread::sleep_for(between);
        sent = wall_time();
        session.Control().post();
    }
    std::this_thread::sleep_for(10ms);
}

/// From the producer's event to the callback, beside the machine's own wake-up in the same run.
void WakeUp(benchmark::State& state, void (*script)(StubFrame&)) {
    StubSession session;
    session.Control().frames = 0;
    session.Control().script = script;
    for (auto _ : state) {
        Delays machine(rounds * wake_ups_a_round), stream(rounds * wake_ups_a_round);
        for (std::size_t i = 0; i < rounds; ++i) {  // in turns: the machine may have other work, and not always the same
            wake_machine(machine);
            wake_stream(session, stream);
        }
        state.SetIterationTime(stream.Quantile(0.5));
        state.counters["p50_us"] = stream.Quantile(0.5) * 1e6;
        state.counters["machine_p50_us"] = machine.Quantile(0.5) * 1e6;
        state.counters["p50_ratio"] = stream.Quantile(0.5) / machine.Quantile(0.5);
        state.counters["p99_us"] = stream.Quantile(0.99) * 1e6;
        state.counters["p99_ratio"] = stream.Quantile(0.99) / machine.Quantile(0.99);
    }
    session.Control().script = nullptr;
}
BENCHMARK_CAPTURE(WakeUp, no_chunks, [](StubFrame& frame) { frame.layout = 0; })
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(1);
BENCHMARK_CAPTURE(WakeUp, chunks_same_layout, nullptr)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(3);

/// Simulated cameras of the registry that lies beside the library: eight small ones, and two of five megapixels.
class SimSession {
public:
    SimSession() { CHECK(K_Factory_Open("", &factory_)); }
    ~SimSession() { K_Factory_Close(factory_); }
    SimSession(const SimSession&) = delete;
    SimSession& operator=(const SimSession&) = delete;

    CAM_HANDLE Open(const std::string& device) {
        auto id = "TL=>KIV_SIM , INT=>SIM0 , DEV=>SIM0_" + device;
        CAM_HANDLE camera = nullptr;
        CHECK(K_Camera_Open_Proxy(factory_, id.c_str(), &camera));
        // As fast as the sensor is.
        CHECK(K_Camera_SetValueInt64(camera, "AcquisitionFrameRateEnable", 0));
        CHECK(K_Camera_SetValueDouble(camera, "ExposureTime", 1000));
        return camera;
    }

private:
    FACTORY_HANDLE factory_ = nullptr;
};

/// Into a folder of its own, where the cameras keep their state too: nobody else's cameras are met.
std::filesystem::path write_sim_configuration() {
    auto folder = std::filesystem::temp_directory_path() / ("kiv_stream_bench_" + std::to_string(wall_time()));
    std::filesystem::create_directories(folder);
    std::ofstream text(folder / "cameras.json");
    text << R"({"interfaces": [{"id": "SIM0", "cameras": [{"serial": "LARGE", "width": 2448, "height": 2048, "frame_rate": 35})";
    text << R"(, {"serial": "QUICK", "width": 2448, "height": 2048, "frame_rate": 10000})";
    for (int i = 0; i < 8; ++i) text << R"(, {"serial": "SMALL)" << i << R"(", "width": 256, "height": 256, "frame_rate": 200})";
    text << "]}]}";
    return folder;
}

std::uint32_t payload_of(CAM_HANDLE camera) {
    std::int64_t payload = 0;
    CHECK(K_Camera_GetValueInt64(camera, "PayloadSize", &payload));
    return static_cast<std::uint32_t>(payload);
}

/// Processor time of the stream thread per frame of 5 megapixels Mono8, copied out by the callback; the copy alone beside it.
void FiveMegapixels(benchmark::State& state) {
    SimSession session;
    auto camera = session.Open("LARGE");
    auto payload = payload_of(camera);
    std::vector<char> copy(payload), other(payload, 'x');
    constexpr std::uint64_t frames = 60;
    for (auto _ : state) {
        std::atomic<std::uint64_t> seen{0};
        double first = 0, last = 0, wall_first = 0, wall_last = 0;
        {
            OpenStream stream(camera, payload, [&](const K_IMAGE_INFO& image) {
                std::memcpy(copy.data(), image.image_data, payload);
                auto count = ++seen;
                if (count == 1) first = thread_cpu_time(), wall_first = wall_time();
                if (count == frames) last = thread_cpu_time(), wall_last = wall_time();
            });
            CHECK(K_Camera_ExecuteCommand(camera, "AcquisitionStart"));
            while (seen < frames) std::this_thread::sleep_for(1ms);
            CHECK(K_Camera_ExecuteCommand(camera, "AcquisitionStop"));
        }
        double copying = wall_time();
        for (std::uint64_t i = 0; i < frames; ++i) {
            std::memcpy(copy.data(), other.data(), payload);
            benchmark::ClobberMemory();
        }
        copying = (wall_time() - copying) / frames;
        double per_frame = (last - first) / (frames - 1);
        state.SetIterationTime(per_frame);
        state.counters["memcpy_us"] = copying * 1e6;
        state.counters["of_memcpy"] = per_frame / copying;
        state.counters["frames_per_s"] = (frames - 1) / (wall_last - wall_first);
    }
    CHECK(K_Camera_Close(camera));
}
BENCHMARK(FiveMegapixels)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(3);

/// A camera without a frame rate to speak of, which shows rendered frames again: how many of them arrive, and what one takes of
/// the time that copying it does.
void FiveMegapixelsWithoutPause(benchmark::State& state) {
    SimSession session;
    auto camera = session.Open("QUICK");
    constexpr std::uint64_t shown = 8, ring = 10;  // as much memory is touched by the copies beside it
    CHECK(K_Camera_SetValueInt64(camera, "SimFrameCache", shown));
    CHECK(K_Camera_SetValueDouble(camera, "ExposureTime", 10));
    auto payload = payload_of(camera);
    const std::vector<std::vector<char>> sources(shown, std::vector<char>(payload, 'x'));
    std::vector<std::vector<char>> copies(ring, std::vector<char>(payload));
    constexpr std::uint64_t rehearsal = 50, frames = 500;
    for (auto _ : state) {
        std::atomic<std::uint64_t> seen{0};
        std::atomic<bool> done{false};
        double first = 0, last = 0;
        K_STREAM_STATISTICS statistics{};
        {
            OpenStream stream(camera, payload, [&](const K_IMAGE_INFO&) {
                auto count = ++seen;
                if (count == rehearsal) first = wall_time();
                if (count == rehearsal + frames) last = wall_time(), done = true;
            });
            CHECK(K_Camera_ExecuteCommand(camera, "AcquisitionStart"));
            while (!done) std::this_thread::sleep_for(1ms);
            CHECK(K_Camera_ExecuteCommand(camera, "AcquisitionStop"));
            statistics = stream.Statistics();
        }
        double copying = wall_time();
        for (std::uint64_t i = 0; i < frames; ++i) {
            std::memcpy(copies[i % ring].data(), sources[i % shown].data(), payload);
            benchmark::ClobberMemory();
        }
        copying = (wall_time() - copying) / frames;
        const double per_frame = (last - first) / frames;
        state.SetIterationTime(per_frame);
        state.counters["memcpy_us"] = copying * 1e6;
        state.counters["of_memcpy"] = per_frame / copying;
        state.counters["frames_per_s"] = 1 / per_frame;
        state.counters["incomplete"] = static_cast<double>(statistics.incomplete);
    }
    CHECK(K_Camera_Close(camera));
}
BENCHMARK(FiveMegapixelsWithoutPause)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(3);

/// Eight cameras at 200 frames/s of 64 KB for five seconds: how many images come, and how many do not.
void EightCameras(benchmark::State& state) {
    SimSession session;
    std::vector<CAM_HANDLE> cameras;
    for (int i = 0; i < 8; ++i) cameras.push_back(session.Open("SMALL" + std::to_string(i)));
    for (auto _ : state) {
        std::atomic<std::uint64_t> seen{0};
        K_STREAM_STATISTICS total{};
        double seconds = 0;
        {
            std::vector<std::unique_ptr<OpenStream>> streams;
            for (auto camera : cameras)
                streams.push_back(std::make_unique<OpenStream>(camera, payload_of(camera), [&](const K_IMAGE_INFO&) { ++seen; }));
            const double began = wall_time();
            for (auto camera : cameras) CHECK(K_Camera_ExecuteCommand(camera, "AcquisitionStart"));
            std::this_thread::sleep_for(5s);
            for (auto camera : cameras) CHECK(K_Camera_ExecuteCommand(camera, "AcquisitionStop"));
            seconds = wall_time() - began;
            for (auto& stream : streams) {
                auto one = stream->Statistics();
                total.delivered += one.delivered, total.lost += one.lost, total.incomplete += one.incomplete;
                total.missing_ids += one.missing_ids, total.skipped += one.skipped;
            }
        }
        state.SetIterationTime(seconds);
        state.counters["frames_per_s"] = static_cast<double>(total.delivered) / seconds;
        state.counters["lost"] = static_cast<double>(total.lost);
        state.counters["missing_ids"] = static_cast<double>(total.missing_ids);
        state.counters["incomplete"] = static_cast<double>(total.incomplete);
        state.counters["skipped"] = static_cast<double>(total.skipped);
    }
    for (auto camera : cameras) CHECK(K_Camera_Close(camera));
}
BENCHMARK(EightCameras)->UseManualTime()->Unit(benchmark::kSecond)->Iterations(1);

}  // namespace
}  // namespace kiv::bench

int main(int argc, char** argv) {
    const auto folder = kiv::bench::write_sim_configuration();
    setenv("KIV_SIM_CONFIG", (folder / "cameras.json").c_str(), 1);
    setenv("KIV_SIM_STATE", folder.c_str(), 1);
    int result = EXIT_SUCCESS;
    try {
        if (argc == 3 && std::strcmp(argv[1], "--soak") == 0) {
            result = kiv::bench::soak(std::strtoull(argv[2], nullptr, 10));
        } else {
            benchmark::Initialize(&argc, argv);
            benchmark::RunSpecifiedBenchmarks();
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "stream_bench: %s\n", error.what());
        result = EXIT_FAILURE;
    }
    std::filesystem::remove_all(folder);
    return result;
}
