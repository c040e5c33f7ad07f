// Saving and loading the settings of a camera, beside the register accesses that this cannot be done without: one read for each
// setting saved, one write for each loaded. First the simulated camera with all its selectors, then descriptions of 1,000 to
// 16,000 features on a producer that costs nothing.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "stub_session.h"

namespace {

using kiv::bench::StubControl;
using kiv::bench::StubSession;

/// The first simulated camera.
class SimSession {
public:
    SimSession() {
        CHECK(K_Factory_Open("", &factory_));
        bool changed = false;
        CHECK(K_Factory_UpdateCameraList(factory_, &changed));
        char id[1024];
        std::uint32_t size = sizeof id;
        CHECK(K_Factory_GetCameraIDByIndex(factory_, 0, id, &size));
        CHECK(K_Camera_Open_Proxy(factory_, id, &camera_));
    }
    ~SimSession() {
        K_Camera_Close(camera_);
        K_Factory_Close(factory_);
    }
    SimSession(const SimSession&) = delete;
    SimSession& operator=(const SimSession&) = delete;
    CAM_HANDLE Camera() const { return camera_; }

private:
    FACTORY_HANDLE factory_ = nullptr;
    CAM_HANDLE camera_ = nullptr;
};

/// Features of four kinds in turn, each over a register of its own, in categories of 50.
std::string features(std::size_t count) {
    std::string categories, list, nodes;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string number = std::to_string(i), name = "Feature" + number;
        if (i % 50 == 0) {
            categories += (i ? list + "</Category>" : "") + std::string("<Category Name=\"Group") + number + "\">";
            list.clear();
            nodes += "<pFeature>Group" + number + "</pFeature>";
        }
        list += "<pFeature>" + name + "</pFeature>";
    }
    std::string all = "<Category Name=\"Root\">" + nodes + "</Category>" + categories + list + "</Category>";
    for (std::size_t i = 0; i < count; ++i) {
        const std::string number = std::to_string(i), name = "Feature" + number;
        const std::string streamable = "<Streamable>Yes</Streamable>";
        const std::string place = "<Address>" + std::to_string(StubControl::register_base + 4 * i) +
                                  "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>";
        const std::string end = "<Endianess>LittleEndian</Endianess>";
        if (i % 4 == 0)
            all += "<Integer Name=\"" + name + "\">" + streamable + "<pValue>Reg" + number +
                   "</pValue><Min>0</Min><Max>100000</Max></Integer>";
        if (i % 4 == 1) all += "<Float Name=\"" + name + "\">" + streamable + "<pValue>Reg" + number + "</pValue></Float>";
        if (i % 4 == 2)
            all += "<Enumeration Name=\"" + name + "\">" + streamable +
                   "<EnumEntry Name=\"Off\"><Value>0</Value></EnumEntry><EnumEntry "
                   "Name=\"On\"><Value>1</Value></EnumEntry><pValue>Reg" +
                   number + "</pValue></Enumeration>";
        if (i % 4 == 3) all += "<Boolean Name=\"" + name + "\">" + streamable + "<pValue>Reg" + number + "</pValue></Boolean>";
        const std::string kind = i % 4 == 1 ? "FloatReg" : "IntReg";
        all += "<" + kind + " Name=\"Reg" + number + "\">" + place + (i % 4 == 1 ? "" : "<Sign>Unsigned</Sign>") + end + "</" +
               kind + ">";
    }
    return all;
}

std::string file() { return (std::filesystem::temp_directory_path() / "kiv_settings_bench.xml").string(); }

std::size_t commands_in_file() {
    std::ifstream in(file());
    std::size_t count = 0;
    for (std::string line; std::getline(in, line);) count += line.find("<FeatureName>") != line.npos;
    return count;
}

template <class Work>
void per_setting(benchmark::State& state, std::size_t count, Work work) {
    for (auto _ : state) work();
    state.counters["settings"] = static_cast<double>(count);
    state.counters["each"] = benchmark::Counter(static_cast<double>(count),
                                                benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void save(benchmark::State& state, CAM_HANDLE camera) {
    CHECK(K_Camera_SaveSettings(camera, file().c_str(), K_SAVE_ALL));
    const auto count = commands_in_file();
    per_setting(state, count, [&] {
        CHECK(K_Camera_InvalidateNodes(camera));
        CHECK(K_Camera_SaveSettings(camera, file().c_str(), K_SAVE_ALL));
    });
}

void load(benchmark::State& state, CAM_HANDLE camera, std::uint32_t mode) {
    CHECK(K_Camera_SaveSettings(camera, file().c_str(), K_SAVE_ALL));
    const auto count = commands_in_file();
    per_setting(state, count, [&] { CHECK(K_Camera_LoadSettings(camera, file().c_str(), mode)); });
}

/// The same number of bare transfers of four bytes.
void transfers(benchmark::State& state, CAM_HANDLE camera, std::uint64_t address, bool write) {
    CHECK(K_Camera_SaveSettings(camera, file().c_str(), K_SAVE_ALL));
    const auto count = commands_in_file();
    std::uint32_t value = 0, size = sizeof value;
    CHECK(K_Camera_ReadData(camera, address, &value, &size));
    per_setting(state, count, [&] {
        for (std::size_t i = 0; i < count; ++i)
            CHECK(write ? K_Camera_WriteData(camera, address, &value, &size) : K_Camera_ReadData(camera, address, &value, &size));
    });
}

/// Registers the five with a camera that is opened when the first of them runs.
template <class Open>
void add(const std::string& name, std::uint64_t address, Open open) {
    const auto add = [&](const char* work, auto body) {
        benchmark::RegisterBenchmark((name + "/" + work).c_str(), body)->Unit(benchmark::kMicrosecond);
    };
    add("save", [=](benchmark::State& state) { save(state, open()); });
    add("load", [=](benchmark::State& state) { load(state, open(), K_LOAD_AUTO); });
    add("load_only", [=](benchmark::State& state) { load(state, open(), K_LOAD_ONLY); });
    add("bare_reads", [=](benchmark::State& state) { transfers(state, open(), address, false); });
    add("bare_writes", [=](benchmark::State& state) { transfers(state, open(), address, true); });
}

}  // namespace

int main(int argc, char** argv) try {
    benchmark::Initialize(&argc, argv);
    constexpr std::uint64_t width = 0x20100;
    SimSession sim;
    add("simulated", width, [&sim] { return sim.Camera(); });
    StubSession stub;
    std::size_t described = 0;
    for (const std::size_t count : {1000, 4000, 16000})
        add(std::to_string(count), StubControl::register_base, [&stub, &described, count] {
            if (std::exchange(described, count) != count) stub.Describe(features(count));
            return stub.Camera();
        });
    benchmark::RunSpecifiedBenchmarks();
    std::filesystem::remove(file());
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "settings_bench: %s\n", error.what());
    return 1;
}
