/// A module with a node map of its own: a camera's remote device, a stream, a producer's system.
///
/// Owns the map and the port that it reaches the module through. The map is built once; its description comes from the module's
/// port.
#pragma once

#include <GenApi/i_node_map.h>

#include <chrono>
#include <memory>
#include <string>

#include "camera/port.h"

namespace GenICam::Factory {

class CModuleNodeMap {
public:
    CModuleNodeMap();
    virtual ~CModuleNodeMap();
    CModuleNodeMap(const CModuleNodeMap&) = delete;
    CModuleNodeMap& operator=(const CModuleNodeMap&) = delete;

    /// Null when there is none; never throws.
    virtual GenApi::INodeMap* GetNodeMap() noexcept { return node_map_.get(); }

    /// Fetches the description behind `port`, builds the map and connects it at the port node `port_name`. Throws GenICam
    /// exceptions and StatusError.
    virtual void BuildNodeMap(const CTLWrapper& producer, GenTL::PORT_HANDLE port, const std::string& port_name);

    /// Ends all access to the module, which is about to close; the map stays for those who are inside it.
    void Disconnect() noexcept {
        if (port_) port_->Disconnect();
        if (former_) former_->Disconnect();
    }

    enum class Occupant { nobody, caller, another };
    /// Who is inside the map. Waits for other threads to leave it, at most so long. The caller is inside when a callback of a
    /// node closes the camera.
    Occupant WaitUntilLeft(std::chrono::milliseconds longest) noexcept;

protected:
    std::unique_ptr<MyPortImp> port_;  // before the map, which borrows it
    std::unique_ptr<GenApi::INodeMap> node_map_;

private:
    // A map that was built anew: callers have its nodes, and adapters their ports in it.
    std::unique_ptr<CModuleNodeMap> former_;
};

/// The own node map of a producer's module (system, interface, local device), kept in its module's slot.
class CProducerModule final : public CProducerChild, public CModuleNodeMap {};

/// Reads the own node map of a producer that was just bound and lets the binding keep it. A producer without a description of its
/// own is none the worse: only GenICam exceptions leave.
void read_own_node_map(CTLWrapper& producer);

/// The node map in a slot, built when first asked for. Null when the module has none; never throws.
GenApi::INodeMap* own_node_map(ModuleSlot& slot, const CTLWrapper& producer, GenTL::PORT_HANDLE port,
                               const std::string& port_name) noexcept;

}  // namespace GenICam::Factory
