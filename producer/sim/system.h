/// The system module: the producer itself and the list of its interfaces.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "configuration.h"
#include "module.h"

namespace kivsim {

class Interface;

/// TL_INFO_..., the same before and after TLOpen.
Info system_info(const Session& session, GenTL::TL_INFO_CMD command);

class System : public Module {
public:
    explicit System(Session& session);

    /// Publishes the list anew; answers whether it changed.
    bool UpdateInterfaceList();
    const std::vector<std::string>& InterfaceIds() const { return published_; }
    /// Throws INVALID_ID for a name that no interface has.
    Info InterfaceInfo(std::string_view id, GenTL::INTERFACE_INFO_CMD command) const;
    std::shared_ptr<Interface> OpenInterface(std::string_view id);
    void InterfaceClosed(const std::string& id) { open_.erase(id); }

    /// An action command to every camera that is open here.
    void SendAction(uint32_t device_key, uint32_t group_key, uint32_t group_mask);

    void Close();

    PortIdentity Identity() override;

private:
    const InterfaceEntry& Entry(std::string_view id) const;
    std::string Text(GenTL::TL_INFO_CMD command) const;
    void ListFeatures();
    void ListInterfaceFeatures();

    std::vector<std::string> published_;
    std::map<std::string, std::shared_ptr<Interface>> open_;
    int64_t selected_ = 0;
    int64_t update_timeout_ms_ = 1000;
};

/// TLOpen. Throws RESOURCE_IN_USE on a second one, ERROR when the configuration is bad.
std::shared_ptr<System> open_system(Session& session);

/// INTERFACE_INFO_..., the same for an open interface and for one in the list.
Info interface_info(const Session& session, const InterfaceEntry& entry, GenTL::INTERFACE_INFO_CMD command);
std::string interface_display_name(const InterfaceEntry& entry);

}  // namespace kivsim
