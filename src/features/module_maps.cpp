#include "features/module_maps.h"

#include "camera/module_node_map.h"
#include "transport/open_devices.h"

namespace kiv {

using GenICam::Factory::own_node_map;

GenApi::INodeMap* system_node_map(GenICam::Factory::CTLWrapper& producer) noexcept {
    return own_node_map(producer.OwnModule(), producer, producer.TL(), "TLPort");
}

GenApi::INodeMap* interface_node_map(GenICam::Factory::CInterfaceClass& opened) noexcept {
    return own_node_map(opened.OwnModule(), opened.Producer(), opened.Handle(), "InterfacePort");
}

GenApi::INodeMap* device_node_map(GenTL::DEV_HANDLE device, bool& known) noexcept {
    auto entry = GenICam::Factory::open_devices().Find(device);
    known = entry != nullptr;
    return known ? own_node_map(entry->own_module, entry->producer, device, "DevicePort") : nullptr;
}

}  // namespace kiv
