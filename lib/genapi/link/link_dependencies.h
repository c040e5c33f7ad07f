/// Turns the references between nodes into the lists that are walked when something changes.
#pragma once

#include "runtime/engine.h"

namespace kiv::genapi {

/// All nodes are made and connected, so that the register locations are complete.
void link_dependencies(Engine& engine);

}  // namespace kiv::genapi
