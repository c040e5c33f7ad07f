/// What the registers of the category SimulationControl ask of the producer: read by it, and heard of when they are written.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "camera/camera.h"
#include "camera/frame_faults.h"
#include "camera/registers.h"
#include "camera_state.h"

namespace kivsim {

/// Values that the configuration gives registers of the category.
using SimulationValues = std::vector<std::pair<Reg, uint64_t>>;

/// All as delivered, but for these.
void reset_simulation(Camera& camera, const SimulationValues& values);
/// To be called when an access met Camera::kFaultDue: waits as long, and throws what, the registers ask for.
void meet_register_fault(Camera& camera, CameraState& state);
/// Does what a write of these addresses means beyond the registers.
void simulation_written(Camera& camera, CameraState& state, uint64_t address, size_t size);

}  // namespace kivsim
