/// Which interfaces and cameras exist: the JSON file that KIV_SIM_CONFIG names, or two cameras when it names none.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "camera/camera.h"

namespace kivsim {

struct CameraEntry {
    std::string id;  ///< of the device: "<interface>_<serial>" unless the file says otherwise
    CameraConfig camera;
    std::string unplug_file;          ///< while this file exists the camera is gone; empty: never
    double megabytes_per_second = 0;  ///< speed of the link; 0: a frame arrives at once
};

struct InterfaceEntry {
    std::string id;
    std::vector<CameraEntry> cameras;
};

struct Configuration {
    std::string tl_type = "Custom";
    std::filesystem::path state_folder;  ///< where cameras keep their registers and locks
    std::vector<InterfaceEntry> interfaces;
};

/// Reads the environment. Throws std::runtime_error that names the file and what is wrong in it.
Configuration load_configuration();

}  // namespace kivsim
