/// The interface module: one simulated bus and the list of the cameras on it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "configuration.h"
#include "module.h"

namespace kivsim {

class Device;
class System;

class Interface : public Module {
public:
    Interface(Session& session, System& parent, const InterfaceEntry& entry);

    System& Parent() const { return parent_; }
    Info GetInfo(GenTL::INTERFACE_INFO_CMD command) const;

    /// Publishes the list of the cameras that are there now; answers whether it changed.
    bool UpdateDeviceList();
    const std::vector<std::string>& DeviceIds() const { return published_; }
    Info DeviceInfo(std::string_view id, GenTL::DEVICE_INFO_CMD command);
    std::shared_ptr<Device> OpenDevice(std::string_view id, GenTL::DEVICE_ACCESS_FLAGS access, uint32_t multicast = 0);
    /// For the functions that name a camera instead of having its handle.
    void MeetFaults(const char* entry, std::string_view id) const;
    void DeviceClosed(const std::string& id) { open_.erase(id); }

    /// Whether UpdateDeviceList gives a camera whose address does not fit one that does.
    void SetForceIp(bool on) { force_ip_ = on; }
    void SendAction(uint32_t device_key, uint32_t group_key, uint32_t group_mask);

    void Close();

    PortIdentity Identity() override;

private:
    const CameraEntry& Entry(std::string_view id) const;
    int32_t AccessStatus(const CameraEntry& entry) const;
    /// Whether the address of the camera fits this interface; without a network it always does.
    bool Reaches(const CameraEntry& entry) const;
    void GiveAddresses();
    void ListFeatures();
    void ListDeviceFeatures();
    void ListNetworkFeatures();
    const CameraEntry& Selected() const;

    System& parent_;  // closes its children before it goes
    const InterfaceEntry& entry_;
    std::vector<std::string> published_;
    std::map<std::string, std::shared_ptr<Device>> open_;
    int64_t selected_ = 0;
    int64_t update_timeout_ms_ = 1000;
    bool force_ip_ = false;
};

}  // namespace kivsim
