#include "interface.h"

#include <algorithm>

#include "device.h"
#include "flavour.h"
#include "session.h"
#include "system.h"

namespace kivsim {
namespace {

void check_access(GenTL::DEVICE_ACCESS_FLAGS access) {
    if (access >= GenTL::DEVICE_ACCESS_READONLY && access <= GenTL::DEVICE_ACCESS_EXCLUSIVE) return;
    if (access == GenTL::DEVICE_ACCESS_NONE) fail(GenTL::GC_ERR_NOT_IMPLEMENTED, "A device cannot be opened without access");
    fail(GenTL::GC_ERR_INVALID_PARAMETER, "There is no access mode " + std::to_string(access));
}

}  // namespace

Interface::Interface(Session& session, System& parent, const InterfaceEntry& entry)
    : Module(session, "InterfacePort", "Interface", {GenTL::EVENT_ERROR, GenTL::EVENT_MODULE},
             {"DeviceListChanged", "An update found other devices than the one before", 0x9101}),
      parent_(parent),
      entry_(entry) {
    ListFeatures();
    ListDeviceFeatures();
    FinishFeatures();
}

Info Interface::GetInfo(GenTL::INTERFACE_INFO_CMD command) const { return interface_info(session_, entry_, command); }

void Interface::ListFeatures() {
    features_.Category("InterfaceInformation");
    features_.Text("InterfaceID", "Identifier of the interface", 256, [this] { return entry_.id; });
    features_.Text("InterfaceDisplayName", "Name of the interface to show to people", 256,
                   [this] { return interface_display_name(entry_); });
    features_.Enumeration("InterfaceType", "Transport technology", transport_words(),
                          [this] { return transport_word_index(session_.configuration.tl_type); });
    features_.Integer("InterfaceTLVersionMajor", "Version of the transport technology", [] { return 1; });
    features_.Integer("InterfaceTLVersionMinor", "Version of the transport technology", [] { return 0; });
    if (!flavour.gige) return;
    const NetworkPort& network = entry_.network;
    features_.Integer("GevInterfaceMACAddress", "MAC address of the interface",
                      [&] { return static_cast<int64_t>(network.mac); });
    features_.Integer("GevInterfaceSubnetIPAddress", "IP address of the interface", [&] { return network.ip; });
    features_.Integer("GevInterfaceSubnetMask", "Subnet mask of the interface", [&] { return network.subnet_mask; });
}

void Interface::ListDeviceFeatures() {
    features_.Category("DeviceEnumeration");
    features_.Command("DeviceUpdateList", "Looks for devices", [this] { UpdateDeviceList(); });
    features_.Integer(
        "DeviceUpdateTimeout", "Longest time in ms for DeviceUpdateList", [this] { return update_timeout_ms_; },
        [this](int64_t value) {
            if (value < 0) fail(GenTL::GC_ERR_INVALID_VALUE, "DeviceUpdateTimeout cannot be negative");
            update_timeout_ms_ = value;
        });
    features_.Index(
        "DeviceSelector", "Index in the list of devices", [this] { return selected_; },
        [this](int64_t value) { selected_ = value; }, [this] { return static_cast<int64_t>(published_.size()); });
    features_.SelectedBy("DeviceSelector");
    const auto text = [this](GenTL::DEVICE_INFO_CMD command) {
        return [this, command] { return std::string(DeviceInfo(Selected().id, command).Content().c_str()); };
    };
    features_.Text("DeviceID", "Identifier of the device", 256, text(GenTL::DEVICE_INFO_ID));
    features_.Text("DeviceVendorName", "Maker of the device", 64, text(GenTL::DEVICE_INFO_VENDOR));
    features_.Text("DeviceModelName", "Model of the device", 64, text(GenTL::DEVICE_INFO_MODEL));
    features_.Enumeration("DeviceAccessStatus", "Who has the device", access_words(),
                          [this] { return AccessStatus(Selected()); });
    features_.Text("DeviceSerialNumber", "Serial number of the device", 64, text(GenTL::DEVICE_INFO_SERIAL_NUMBER));
    features_.Text("DeviceUserID", "Name that the user gave the device", 64, text(GenTL::DEVICE_INFO_USER_DEFINED_NAME));
    features_.Integer("DeviceTLVersionMajor", "Version of the transport technology", [] { return 1; });
    features_.Integer("DeviceTLVersionMinor", "Version of the transport technology", [] { return 0; });
    if (flavour.gige) ListNetworkFeatures();
    features_.SelectedBy({});
    features_.Category("SimulationControl");
    features_.Command("SimulationPlugIn", "Plugs in again what was unplugged on demand", [this] {
        for (const CameraEntry& entry : entry_.cameras) entry.state->PlugIn();
    });
}

void Interface::ListNetworkFeatures() {
    features_.Integer("GevDeviceMACAddress", "MAC address of the device",
                      [this] { return static_cast<int64_t>(Selected().network.mac); });
    features_.Integer("GevDeviceIPAddress", "Present IP address of the device", [this] { return Selected().state->Ip(); });
    features_.Integer("GevDeviceSubnetMask", "Present subnet mask of the device",
                      [this] { return Selected().network.subnet_mask; });
}

const CameraEntry& Interface::Selected() const {
    if (static_cast<size_t>(selected_) >= published_.size()) fail(GenTL::GC_ERR_NOT_AVAILABLE, "The list of devices is empty");
    return Entry(published_[static_cast<size_t>(selected_)]);
}

bool Interface::Reaches(const CameraEntry& entry) const { return !flavour.gige || entry_.network.Reaches(entry.state->Ip()); }

void Interface::GiveAddresses() {
    constexpr uint32_t first_host = 200;
    const uint32_t subnet = entry_.network.ip & entry_.network.subnet_mask;
    const auto taken = [&](uint32_t address) {
        const auto has_it = [&](const CameraEntry& entry) { return entry.state->Ip() == address; };
        return address == entry_.network.ip || std::any_of(entry_.cameras.begin(), entry_.cameras.end(), has_it);
    };
    for (const CameraEntry& entry : entry_.cameras) {
        if (Reaches(entry) || is_unplugged(entry)) continue;
        uint32_t address = subnet + first_host;
        while (taken(address)) ++address;
        entry.state->SetIp(address);
    }
}

void Interface::SendAction(uint32_t device_key, uint32_t group_key, uint32_t group_mask) {
    for (const auto& [id, device] : open_)
        if (!device->Vanished()) device->Hardware().Action(device_key, group_key, group_mask);
}

bool Interface::UpdateDeviceList() {
    if (force_ip_) GiveAddresses();
    std::vector<std::string> now;
    for (const CameraEntry& entry : entry_.cameras)
        if (!is_unplugged(entry)) now.push_back(entry.id);
    if (now == published_) return false;
    published_ = std::move(now);
    selected_ = 0;
    TellOwnEvent();
    return true;
}

const CameraEntry& Interface::Entry(std::string_view id) const {
    const auto is_published = [&](const CameraEntry& entry) {
        return std::find(published_.begin(), published_.end(), entry.id) != published_.end() || open_.contains(entry.id);
    };
    for (const CameraEntry& entry : entry_.cameras)
        if (entry.id == id && (!is_unplugged(entry) || is_published(entry))) return entry;
    fail(GenTL::GC_ERR_INVALID_ID, "There is no device \"" + std::string(id) + "\" on interface " + entry_.id);
}

int32_t Interface::AccessStatus(const CameraEntry& entry) const {
    const auto open = open_.find(entry.id);
    if (open != open_.end())
        return open->second->ReadOnly() ? GenTL::DEVICE_ACCESS_STATUS_OPEN_READONLY : GenTL::DEVICE_ACCESS_STATUS_OPEN_READWRITE;
    if (is_unplugged(entry) || !Reaches(entry)) return GenTL::DEVICE_ACCESS_STATUS_NOACCESS;
    return DeviceAccess::Status(session_.configuration.state_folder, entry.camera.serial);
}

Info Interface::DeviceInfo(std::string_view id, GenTL::DEVICE_INFO_CMD command) {
    const CameraEntry& entry = Entry(id);
    return device_info(session_, entry, camera_identity(entry), AccessStatus(entry), command);
}

void Interface::MeetFaults(const char* entry, std::string_view id) const {
    if (EntryFaults::Any()) Entry(id).state->Faults().Meet(entry);
}

std::shared_ptr<Device> Interface::OpenDevice(std::string_view id, GenTL::DEVICE_ACCESS_FLAGS access, uint32_t multicast) {
    const CameraEntry& entry = Entry(id);
    check_access(access);
    if (open_.contains(entry.id)) fail(GenTL::GC_ERR_RESOURCE_IN_USE, "Device " + entry.id + " is open already");
    if (is_unplugged(entry)) fail(GenTL::GC_ERR_IO, "Camera " + entry.id + " is no longer there");
    if (!Reaches(entry))
        fail(GenTL::GC_ERR_ACCESS_DENIED, "Camera " + entry.id + " at " + ip_text(entry.state->Ip()) +
                                              " is not in the network of interface " + entry_.id + " at " +
                                              ip_text(entry_.network.ip));
    auto device = std::make_shared<Device>(session_, *this, entry, access, multicast);
    session_.handles.Add(device);
    open_.emplace(entry.id, device);
    return device;
}

void Interface::Close() {
    while (!open_.empty()) {
        const auto device = open_.begin()->second;
        device->Close();
    }
    Retire();
    parent_.InterfaceClosed(entry_.id);
}

PortIdentity Interface::Identity() {
    PortIdentity identity;
    identity.id = entry_.id;
    identity.vendor = producer_vendor;
    identity.model = flavour.model;
    identity.tl_type = session_.configuration.tl_type;
    identity.module = "TLInterface";
    identity.version = producer_version;
    identity.name = "InterfacePort";
    return identity;
}

}  // namespace kivsim
