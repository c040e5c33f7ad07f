/// The usual set-up: a scripted producer in a registry file, a factory on it, its first camera.
#pragma once

#include <Kiv_Factory.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "support/debug_recorder.h"
#include "support/expect_status.h"
#include "support/scripted_descriptions.h"
#include "support/scripted_producer.h"
#include "support/temp_folder.h"

namespace kiv_test {

/// Each step is made by its own call, so that a test can prepare the producer between them. Whatever is open is closed at the
/// end, and then the producer has nothing left open and was never misused.
class ScriptedFactory : public ::testing::Test {
protected:
    explicit ScriptedFactory(const std::string& producer_path = scripted_u3v());
    void TearDown() override;

    void OpenFactory();
    /// Opens the factory too, unless it is open.
    void OpenCamera();
    void CloseCamera();
    void CloseFactory();

    /// A node of the camera by name, or a test failure.
    NODE_HANDLE Node(const std::string& name);
    std::string Text(const std::string& feature);
    std::uint32_t Register(std::uint64_t address);
    void SetRegister(std::uint64_t address, std::uint32_t value);

    static constexpr const char* key = "SCRIPTED";
    const std::string camera_id = "TL=>SCRIPTED , INT=>IF0 , DEV=>CAM0";

    TempFolder folder;
    ScopedEnvironment cache{"KIVSDK_ROOT", folder.Path() + "/cache/"};
    ScopedEnvironment search{"GENICAM_GENTL64_PATH", ""};
    DebugRecorder debug;
    ScriptedProducer producer;
    bool expect_clean_end = true;  ///< a test that breaks the producer on purpose clears it
    FACTORY_HANDLE factory = nullptr;
    CAM_HANDLE camera = nullptr;
};

/// The text of a function that follows the general text rule: size first, then the text.
template <class Get>
std::string text_of(Get get) {
    std::uint32_t size = 0;
    EXPECT_STATUS(K_ST_INVALID_BUFFER_SIZE, get(nullptr, &size));
    std::string text(size, '?');
    EXPECT_STATUS(K_ST_SUCCESS, get(text.data(), &size));
    EXPECT_EQ('\0', text.back());
    text.pop_back();
    return text;
}

std::string camera_id_at(FACTORY_HANDLE factory, std::uint32_t index);

}  // namespace kiv_test
