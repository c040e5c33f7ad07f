/// The remote device: the camera as its own description shows it.
///
/// A camera shares it with the threads that run callbacks inside its node map: when one of those callbacks closes the camera the
/// map lives until it has returned, disconnected.
#pragma once

#include "camera/chunk_ports.h"
#include "camera/module_node_map.h"

namespace GenICam::Factory {

class CRemoteDeviceClass final : public CModuleNodeMap {
public:
    CRemoteDeviceClass(const CTLWrapper& producer, GenTL::PORT_HANDLE port);

    /// The node map from the port's URL; `open_option` is reserved for how the description is to be found.
    void Build(std::uint32_t open_option);
    GenTL::PORT_HANDLE Port() const { return remote_port_; }
    CChunkPorts& Chunks() { return chunks_; }

private:
    const CTLWrapper& producer_;
    GenTL::PORT_HANDLE remote_port_;
    CChunkPorts chunks_{*this};
};

}  // namespace GenICam::Factory
