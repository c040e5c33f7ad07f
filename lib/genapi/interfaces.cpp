#include "GenApi/i_node_map.h"
#include "GenApi/node_callback.h"
#include "GenApi/pointer.h"

namespace GenApi {

// Defined here so that the interfaces have one home for their virtual tables.
IBase::~IBase() = default;
INodeMap::~INodeMap() = default;
IDeviceInfo::~IDeviceInfo() = default;
CNodeCallback::~CNodeCallback() = default;

}  // namespace GenApi
