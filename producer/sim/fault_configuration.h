/// The "faults" of a configuration file: of a camera, or of the whole producer.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "entry_faults.h"
#include "simulation.h"

namespace kivsim {

/// `values`: null where only functions can be asked to fail. Throws std::runtime_error that names the place.
void read_faults(const nlohmann::json& object, const std::string& place, SimulationValues* values, EntryFaults& faults);

}  // namespace kivsim
