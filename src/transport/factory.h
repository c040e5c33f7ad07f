/// The factory: the producers that the registry lists, bound, and the list of their cameras.
///
/// Open -> (first update) -> bound. Closing it releases every producer. While it exists the system is asked not to fall asleep.
/// Threads: every member locks the factory; an update holds the lock while producers search their networks.
#pragma once

#include <kiv/factory.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "transport/live_handles.h"
#include "transport/lock.h"
#include "transport/producer_search.h"
#include "transport/tl_wrapper.h"

namespace GenICam::Factory {

/// What the interfaces of a GigE Vision producer are told about devices without a valid address.
struct ForceIpSettings {
    std::uint32_t enable = 1;
    std::uint32_t second = 0;
};

class CFactory {
public:
    /// Reads the own node map of a producer that was just bound, and lets the binding adopt it.
    using ReadOwnNodeMap = std::function<void(CTLWrapper&)>;

    CFactory(std::string registry_path, ReadOwnNodeMap read_own_node_map);
    ~CFactory();
    CFactory(const CFactory&) = delete;
    CFactory& operator=(const CFactory&) = delete;

    /// Whether the registry could be read and lists at least one producer.
    bool ListsProducers() const { return registry_.HasList() && registry_.Count() > 0; }

    /// Binds what is not bound yet and lists the cameras anew.
    K_STATUS_CODES Update(bool& changed);
    /// Update, unless it has been done before.
    K_STATUS_CODES EnsureListed();

    std::vector<std::string> Cameras() const;
    std::vector<std::pair<std::string, CTLWrapper*>> Producers() const;
    CTLWrapper* FindProducer(const std::string& key) const;

    K_STATUS_CODES CameraInfo(const char* camera_id, std::uint32_t command, char* buffer, std::uint32_t& size) const;
    /// The producer's DEVICE_ACCESS_STATUS of a camera that need not be open.
    K_STATUS_CODES CameraAccess(const char* camera_id, std::int32_t& access) const;
    bool Report(std::uint32_t index, K_PRODUCER_REPORT& report) const;

    ForceIpSettings ForceIp() const;
    /// What the interfaces are told from the next update on.
    void EnableForceIp(std::uint32_t enable);
    /// Broadcasts an action through every producer that can; what they answer is not looked at.
    void SendActionCommand(std::uint32_t device_key, std::uint32_t group_key, std::uint32_t group_mask, void* first,
                           void* second) const;

private:
    /// Where a camera of the list hangs.
    struct Place {
        CTLWrapper* producer = nullptr;
        CInterfaceClass* opened = nullptr;
        std::string device;
    };
    K_STATUS_CODES Locate(const char* camera_id, Place& place) const;
    K_STATUS_CODES Discover();
    K_STATUS_CODES Bind(const kiv::ProducerRegistry::Element& element, K_PRODUCER_REPORT& report);

    std::string registry_path_;
    ReadOwnNodeMap read_own_node_map_;
    kiv::ProducerRegistry registry_;
    mutable GEV::CCriticalSection section_;
    std::map<std::string, std::unique_ptr<CTLWrapper>> producers_;
    std::vector<K_PRODUCER_REPORT> reports_;
    std::vector<std::string> cameras_;
    bool listed_ = false;
    ForceIpSettings force_ip_;
    std::uint32_t keep_awake_count_;
    kiv::LiveHandle live_{this, kiv::HandleKind::factory};
};

/// The registry file that a factory opens for this path: itself, or the first of the two fixed files; empty when none can be
/// read.
std::string find_registry_file(const char* path);

}  // namespace GenICam::Factory
