/// A simulated camera through the real producer: its own configuration, its own state folder, a factory on a registry with it.
#pragma once

#include <Kiv_Factory.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "support/expect_status.h"
#include "support/temp_folder.h"

namespace kiv_test {

/// The files of the simulated producers: the plain one, and the one of GigE Vision cameras.
std::string sim_producer();
std::string sim_gev_producer();

class SimCamera : public ::testing::Test {
protected:
    SimCamera() : SimCamera("KIV_SIM", sim_producer()) {}
    SimCamera(const char* key, const std::string& producer);
    void TearDown() override;

    /// Writes the configuration; to be called before the factory opens. The first one has a colour camera "T0001" whose
    /// description is zipped and a monochrome camera "T0002" with a plain one, both of 128 x 96 pixels.
    void Configure(const std::string& json);
    void OpenFactory();
    /// Opens the camera whose device id ends in `serial`.
    void OpenCamera(const std::string& serial = "T0001");
    void CloseCamera();
    void CloseFactory();

    std::int64_t Integer(const char* feature);
    std::string Text(const char* feature);

    const std::string key, producer;  ///< in the registry
    TempFolder folder;
    ScopedEnvironment cache{"KIVSDK_ROOT", folder.Path() + "/cache/"};
    ScopedEnvironment config{key + "_CONFIG", folder.In("sim.json")};
    ScopedEnvironment state{"KIV_SIM_STATE", folder.In("state")};
    FACTORY_HANDLE factory = nullptr;
    CAM_HANDLE camera = nullptr;
};

/// The same with the cameras of KivSimGev.cti: "G0001" and "G0002" on the interface "GEV0".
class SimGevCamera : public SimCamera {
protected:
    SimGevCamera();
};

}  // namespace kiv_test
