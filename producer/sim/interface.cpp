#include "interface.h"

#include <algorithm>

#include "device.h"
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
    : Module(session, "InterfacePort", "Interface", {GenTL::EVENT_ERROR}), parent_(parent), entry_(entry) {
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
        return [this, command] {
            if (static_cast<size_t>(selected_) >= published_.size())
                fail(GenTL::GC_ERR_NOT_AVAILABLE, "The list of devices is empty");
            return std::string(DeviceInfo(published_[static_cast<size_t>(selected_)], command).Content().c_str());
        };
    };
    features_.Text("DeviceID", "Identifier of the device", 256, text(GenTL::DEVICE_INFO_ID));
    features_.Text("DeviceVendorName", "Maker of the device", 64, text(GenTL::DEVICE_INFO_VENDOR));
    features_.Text("DeviceModelName", "Model of the device", 64, text(GenTL::DEVICE_INFO_MODEL));
    features_.Enumeration("DeviceAccessStatus", "Who has the device", access_words(), [this] {
        if (static_cast<size_t>(selected_) >= published_.size())
            fail(GenTL::GC_ERR_NOT_AVAILABLE, "The list of devices is empty");
        return AccessStatus(Entry(published_[static_cast<size_t>(selected_)]));
    });
    features_.Text("DeviceSerialNumber", "Serial number of the device", 64, text(GenTL::DEVICE_INFO_SERIAL_NUMBER));
    features_.Text("DeviceUserID", "Name that the user gave the device", 64, text(GenTL::DEVICE_INFO_USER_DEFINED_NAME));
    features_.Integer("DeviceTLVersionMajor", "Version of the transport technology", [] { return 1; });
    features_.Integer("DeviceTLVersionMinor", "Version of the transport technology", [] { return 0; });
    features_.SelectedBy({});
}

bool Interface::UpdateDeviceList() {
    std::vector<std::string> now;
    for (const CameraEntry& entry : entry_.cameras)
        if (!is_unplugged(entry)) now.push_back(entry.id);
    if (now == published_) return false;
    published_ = std::move(now);
    selected_ = 0;
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
    if (is_unplugged(entry)) return GenTL::DEVICE_ACCESS_STATUS_NOACCESS;
    return DeviceAccess::Status(session_.configuration.state_folder, entry.camera.serial);
}

Info Interface::DeviceInfo(std::string_view id, GenTL::DEVICE_INFO_CMD command) {
    const CameraEntry& entry = Entry(id);
    return device_info(session_, entry, camera_identity(entry), AccessStatus(entry), command);
}

std::shared_ptr<Device> Interface::OpenDevice(std::string_view id, GenTL::DEVICE_ACCESS_FLAGS access) {
    const CameraEntry& entry = Entry(id);
    check_access(access);
    if (open_.contains(entry.id)) fail(GenTL::GC_ERR_RESOURCE_IN_USE, "Device " + entry.id + " is open already");
    if (is_unplugged(entry)) fail(GenTL::GC_ERR_IO, "Camera " + entry.id + " is no longer there");
    auto device = std::make_shared<Device>(session_, *this, entry, access);
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
    identity.model = "KivSim";
    identity.tl_type = session_.configuration.tl_type;
    identity.module = "TLInterface";
    identity.version = producer_version;
    identity.name = "InterfacePort";
    return identity;
}

}  // namespace kivsim
