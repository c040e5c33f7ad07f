/// Which interfaces and cameras exist: the JSON file that the environment names, or what is built in when it names none.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "camera/camera.h"
#include "camera_state.h"
#include "network.h"
#include "simulation.h"

namespace kivsim {

struct CameraEntry {
    std::string id;  ///< of the device: "<interface>_<serial>" unless the file says otherwise
    CameraConfig camera;
    std::string unplug_file;          ///< while this file exists the camera is gone; empty: never
    double megabytes_per_second = 0;  ///< speed of the link; 0: a frame arrives at once
    NetworkPort network;              ///< of a GigE Vision camera when it is switched on
    SimulationValues simulation;      ///< of its registers, whenever it is opened
    std::shared_ptr<CameraState> state;
};

struct InterfaceEntry {
    std::string id;
    NetworkPort network;  ///< GigE Vision only
    std::vector<CameraEntry> cameras;
};

struct Configuration {
    std::string tl_type;
    std::filesystem::path state_folder;  ///< where cameras keep their registers and locks
    std::vector<InterfaceEntry> interfaces;
    std::shared_ptr<EntryFaults> faults = std::make_shared<EntryFaults>();  ///< of all calls, whatever camera they are about
};

/// Reads the environment. Throws std::runtime_error that names the file and what is wrong in it.
Configuration load_configuration();

}  // namespace kivsim
