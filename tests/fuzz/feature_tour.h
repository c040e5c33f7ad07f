/// Uses every node of a map through each of its interfaces.
#pragma once

#include <functional>

#include "GenApi/i_node_map.h"
#include "fuzz_device.h"

namespace kiv::fuzz {

/// Errors that the interfaces announce are part of the tour. What else is thrown, goes on for ever, or comes back to a caller
/// that should not get it, is a fault. `isEnough` ends the tour early: some descriptions make every question long.
void tour(GenApi::INodeMap& map, Dice& dice, const std::function<bool()>& isEnough);

/// Of a map whose device changes nothing by itself: what is cached is what the device shows, whatever has been written before.
/// Aborts when it is not.
void require_true_caches(GenApi::INodeMap& map, Dice& dice, const std::function<bool()>& isEnough);

}  // namespace kiv::fuzz
