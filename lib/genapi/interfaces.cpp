#include "GenApi/i_node_map.h"
#include "GenApi/node_callback.h"
#include "GenApi/pointer.h"

namespace GenApi {

// Defined here so that the interfaces have one home for their virtual tables.
IBase::~IBase() = default;
INodeMap::~INodeMap() = default;
IDeviceInfo::~IDeviceInfo() = default;
CNodeCallback::~CNodeCallback() = default;

void Deregister(CallbackHandleType handle) {
    if (const auto* callback = reinterpret_cast<const CNodeCallback*>(handle)) callback->GetNode()->DeregisterCallback(handle);
}

}  // namespace GenApi
