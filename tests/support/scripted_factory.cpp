#include "support/scripted_factory.h"

#include <cstring>

namespace kiv_test {

std::string scripted_gev() { return KIV_SCRIPTED_GEV; }
std::string scripted_u3v() { return KIV_SCRIPTED_U3V; }
std::string scripted_no_chunk_data() { return KIV_SCRIPTED_NO_CHUNK_DATA; }
std::string scripted_gap() { return KIV_SCRIPTED_GAP; }

ScriptedFactory::ScriptedFactory(const std::string& producer_path) : producer(producer_path) {}

void ScriptedFactory::OpenFactory() {
    auto registry = write_registry(folder, "registry.xml", {{key, producer.Path()}});
    ASSERT_STATUS(K_ST_SUCCESS, K_Factory_Open(registry.c_str(), &factory));
    ASSERT_NE(nullptr, factory);
    bool changed = false;
    ASSERT_STATUS(K_ST_SUCCESS, K_Factory_UpdateCameraList(factory, &changed));
}

void ScriptedFactory::OpenCamera() {
    if (!factory) {
        ASSERT_NO_FATAL_FAILURE(OpenFactory());
    }
    ASSERT_STATUS(K_ST_SUCCESS, K_Camera_Open_Proxy(factory, camera_id.c_str(), &camera));
    ASSERT_NE(nullptr, camera);
}

void ScriptedFactory::CloseCamera() {
    if (camera) {
        EXPECT_STATUS(K_ST_SUCCESS, K_Camera_Close(camera));
    }
    camera = nullptr;
}

void ScriptedFactory::CloseFactory() {
    if (factory) {
        EXPECT_STATUS(K_ST_SUCCESS, K_Factory_Close(factory));
    }
    factory = nullptr;
}

void ScriptedFactory::TearDown() {
    CloseCamera();
    CloseFactory();
    if (!expect_clean_end) return;
    EXPECT_THAT(producer->Misuse(), ::testing::IsEmpty());
    EXPECT_THAT(producer->OpenModules(), ::testing::IsEmpty());
    EXPECT_FALSE(producer->initialised) << "GCCloseLib was not called";
}

NODE_HANDLE ScriptedFactory::Node(const std::string& name) {
    NODE_HANDLE node = nullptr;
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_GetNodeByName(camera, name.c_str(), &node)) << name;
    return node;
}

std::string ScriptedFactory::Text(const std::string& feature) {
    char text[256] = "";
    std::uint32_t size = sizeof text;
    EXPECT_STATUS(K_ST_SUCCESS, K_Camera_GetValueString(camera, feature.c_str(), text, &size)) << feature;
    return text;
}

std::uint32_t ScriptedFactory::Register(std::uint64_t address) {
    std::lock_guard guard(producer->lock);
    std::uint32_t value = 0;
    std::memcpy(&value, producer->FirstDevice().remote.Find(address, sizeof value), sizeof value);
    return value;
}

void ScriptedFactory::SetRegister(std::uint64_t address, std::uint32_t value) {
    std::lock_guard guard(producer->lock);
    std::memcpy(producer->FirstDevice().remote.Find(address, sizeof value), &value, sizeof value);
}

std::string camera_id_at(FACTORY_HANDLE factory, std::uint32_t index) {
    return text_of([&](char* text, std::uint32_t* size) { return K_Factory_GetCameraIDByIndex(factory, index, text, size); });
}

}  // namespace kiv_test
