#include "support/sim_camera.h"

#include "support/scripted_factory.h"

namespace kiv_test {

std::string sim_producer() { return KIV_SIM_PRODUCER; }
std::string sim_gev_producer() { return KIV_SIM_GEV_PRODUCER; }

SimCamera::SimCamera(const char* registry_key, const std::string& file) : key(registry_key), producer(file) {
    Configure(R"({
  "interfaces": [
    {"id": "SIM0", "cameras": [
      {"serial": "T0001", "color": true, "width": 128, "height": 96, "frame_rate": 500, "url": "zip"},
      {"serial": "T0002", "model": "KivSim-Mono", "width": 128, "height": 96, "frame_rate": 500, "url": "plain", "unplug_file": "unplug"}]}
  ]
})");
}

SimGevCamera::SimGevCamera() : SimCamera("KIV_SIM_GEV", sim_gev_producer()) {
    Configure(R"({
  "interfaces": [
    {"id": "GEV0", "cameras": [
      {"serial": "G0001", "width": 128, "height": 96, "frame_rate": 500, "unplug_file": "unplug"},
      {"serial": "G0002", "color": true, "width": 128, "height": 96, "frame_rate": 500, "url": "plain"}]}
  ]
})");
}

void SimCamera::Configure(const std::string& json) { folder.Write("sim.json", json); }

void SimCamera::OpenFactory() {
    auto registry = write_registry(folder, "registry.xml", {{key, producer}});
    ASSERT_STATUS(K_ST_SUCCESS, K_Factory_Open(registry.c_str(), &factory));
    bool changed = false;
    ASSERT_STATUS(K_ST_SUCCESS, K_Factory_UpdateCameraList(factory, &changed));
}

void SimCamera::OpenCamera(const std::string& serial) {
    if (!factory) {
        ASSERT_NO_FATAL_FAILURE(OpenFactory());
    }
    std::uint32_t count = 0;
    ASSERT_STATUS(K_ST_SUCCESS, K_Factory_GetNumOfCameras(factory, &count));
    for (std::uint32_t i = 0; i < count; ++i) {
        auto id = camera_id_at(factory, i);
        if (!id.ends_with(serial)) continue;
        ASSERT_STATUS(K_ST_SUCCESS, K_Camera_Open_Proxy(factory, id.c_str(), &camera));
        return;
    }
    FAIL() << "no camera " << serial << " among " << count;
}

void SimCamera::CloseCamera() {
    if (camera) {
        EXPECT_STATUS(K_ST_SUCCESS, K_Camera_Close(camera));
    }
    camera = nullptr;
}

void SimCamera::CloseFactory() {
    if (factory) {
        EXPECT_STATUS(K_ST_SUCCESS, K_Factory_Close(factory));
    }
    factory = nullptr;
}

void SimCamera::TearDown() {
    CloseCamera();
    CloseFactory();
}

std::int64_t SimCamera::Integer(const char* feature) {
    std::int64_t value = -1;
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_GetValueInt64(camera, feature, &value)) << feature;
    return value;
}

std::string SimCamera::Text(const char* feature) {
    char text[256] = "";
    std::uint32_t size = sizeof text;
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_GetValueString(camera, feature, text, &size)) << feature;
    return text;
}

}  // namespace kiv_test
