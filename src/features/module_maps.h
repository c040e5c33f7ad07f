/// The node maps of the modules that a producer itself consists of: system, interface, local device. Built when first asked for;
/// null when the module has none.
#pragma once

#include <GenApi/i_node_map.h>

#include "transport/interface.h"

namespace kiv {

GenApi::INodeMap* system_node_map(GenICam::Factory::CTLWrapper& producer) noexcept;
GenApi::INodeMap* interface_node_map(GenICam::Factory::CInterfaceClass& opened) noexcept;
/// Of a device that was opened through this library. `known` tells whether it was.
GenApi::INodeMap* device_node_map(GenTL::DEV_HANDLE device, bool& known) noexcept;

}  // namespace kiv
