#include "camera/module_node_map.h"

#include <GenICam/exceptions.h>
#include <kiv/genapi/load_node_map.h>
#include <kiv/platform/debug_output.h>

#include <thread>

#include "camera/description.h"

namespace GenICam::Factory {

CModuleNodeMap::CModuleNodeMap() = default;
CModuleNodeMap::~CModuleNodeMap() = default;

void CModuleNodeMap::BuildNodeMap(const CTLWrapper& producer, GenTL::PORT_HANDLE port, const std::string& port_name) {
    auto url = kiv::description_url(producer, port);
    auto description = kiv::fetch_description(producer, port, url);
    auto map = kiv::genapi::load_node_map(std::move(description), port_name);
    auto implementation = std::make_unique<MyPortImp>(producer, port);
    if (!map->Connect(implementation.get(), port_name))
        throw RuntimeException("The description at " + url + " has no port named '" + port_name + "'.", "ModuleNodeMap",
                               __LINE__);
    if (node_map_) {
        auto former = std::make_unique<CModuleNodeMap>();
        former->former_ = std::move(former_);
        former->port_ = std::move(port_);
        former->node_map_ = std::move(node_map_);
        former_ = std::move(former);
    }
    port_ = std::move(implementation);
    node_map_ = std::move(map);
}

CModuleNodeMap::Occupant CModuleNodeMap::WaitUntilLeft(std::chrono::milliseconds longest) noexcept {
    auto former = former_ ? former_->WaitUntilLeft(longest) : Occupant::nobody;
    if (former != Occupant::nobody || !node_map_) return former;
    auto& lock = node_map_->GetLock();
    const auto deadline = std::chrono::steady_clock::now() + longest;
    while (!lock.TryLock()) {
        if (std::chrono::steady_clock::now() >= deadline) return Occupant::another;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    const bool was_inside = lock.Depth() > 1;
    lock.Unlock();
    return was_inside ? Occupant::caller : Occupant::nobody;
}

void read_own_node_map(CTLWrapper& producer) {
    auto system = std::make_unique<CProducerModule>();
    try {
        system->BuildNodeMap(producer, producer.TL(), "TLPort");
        producer.OwnModule().module = std::move(system);
    } catch (const kiv::StatusError& error) {
        kiv::platform::debug_print("read_own_node_map: the producer " + producer.Path() + " serves no description (status " +
                                   std::to_string(error.code) + ")\n");
    }
}

GenApi::INodeMap* own_node_map(ModuleSlot& slot, const CTLWrapper& producer, GenTL::PORT_HANDLE port,
                               const std::string& port_name) noexcept try {
    GEV::CAutoLock lock(slot.section);
    if (!slot.module) {
        auto module = std::make_unique<CProducerModule>();
        module->BuildNodeMap(producer, port, port_name);
        slot.module = std::move(module);
    }
    return static_cast<CProducerModule&>(*slot.module).GetNodeMap();
} catch (const std::exception& error) {
    kiv::platform::debug_print("own_node_map: " + port_name + ": " + error.what() + "\n");
    return nullptr;
} catch (...) {
    kiv::platform::debug_print("own_node_map: " + port_name + ": the module serves no description\n");
    return nullptr;
}

}  // namespace GenICam::Factory
