#include <cstring>

#include "device.h"

namespace kivsim {
namespace {

/// The one entry of the camera's manifest, which says what its description is.
constexpr uint64_t file_version_address = 0x10008, schema_address = 0x1000C, hash_address = 0x10020;

void check(int32_t status, const std::string& device, const char* doing, uint64_t address, size_t size) {
    if (status == GenTL::GC_ERR_SUCCESS) return;
    char place[64];
    std::snprintf(place, sizeof place, "%zu bytes at 0x%llx", size, static_cast<unsigned long long>(address));
    const char* reason = status == GenTL::GC_ERR_INVALID_ADDRESS ? "no register there"
                         : status == GenTL::GC_ERR_ACCESS_DENIED ? "the camera does not allow it now"
                         : status == GenTL::GC_ERR_INVALID_VALUE ? "the camera does not take this value"
                                                                 : "the camera failed";
    fail(status, std::string("Camera ") + device + ": cannot " + doing + " " + place + ": " + reason);
}

uint32_t read_number(Camera& camera, uint64_t address) {
    uint32_t value = 0;
    camera.Read(address, &value, sizeof value);
    return value;
}

}  // namespace

std::shared_ptr<Device> RemotePort::Owner() const {
    auto device = device_.lock();
    if (!device) fail(GenTL::GC_ERR_INVALID_HANDLE, "The device was closed");
    return device;
}

void RemotePort::Read(uint64_t address, std::span<std::byte> out) {
    const auto device = Owner();
    Camera& camera = device->Present();
    int32_t status = camera.ReadFromOutside(address, out.data(), out.size());
    if (status == Camera::kFaultDue) {
        meet_register_fault(camera, *device->Entry().state);
        status = device->Present().Read(address, out.data(), out.size());
    }
    check(status, device->Entry().id, "read", address, out.size());
    if (CallLog::TellsTransfers()) [[unlikely]]
        CallLog::Transfer(device->Entry().id, "read", address, out);
}

void RemotePort::Write(uint64_t address, std::span<const std::byte> in) {
    const auto device = Owner();
    Camera& camera = device->Present();
    if (device->ReadOnly()) fail(GenTL::GC_ERR_ACCESS_DENIED, "Device " + device->Entry().id + " is opened for reading only");
    int32_t status = camera.WriteFromOutside(address, in.data(), in.size());
    if (status == Camera::kFaultDue) {
        meet_register_fault(camera, *device->Entry().state);
        status = device->Present().Write(address, in.data(), in.size());
    }
    if (CallLog::TellsTransfers()) [[unlikely]]
        CallLog::Transfer(device->Entry().id, "write", address, in);
    check(status, device->Entry().id, "write", address, in.size());
    device->RegistersWritten(address, in.size());
}

PortIdentity RemotePort::Identity() {
    const auto device = Owner();
    PortIdentity identity = device->Identity();
    identity.module = "Device";
    identity.name = "Device";
    identity.version = device->GetInfo(GenTL::DEVICE_INFO_VERSION).Content().c_str();
    identity.writable = !device->ReadOnly();
    identity.reachable = !device->Vanished();
    return identity;
}

DescriptionInfo RemotePort::Description() {
    const auto device = Owner();
    Camera& camera = device->Present();
    DescriptionInfo info;
    info.url = camera.Url();
    const uint32_t version = read_number(camera, file_version_address), schema = read_number(camera, schema_address);
    info.file_major = static_cast<int32_t>(version >> 24);
    info.file_minor = static_cast<int32_t>(version >> 16 & 0xFF);
    info.file_subminor = static_cast<int32_t>(version & 0xFFFF);
    info.schema_major = static_cast<int32_t>(schema >> 24);
    info.schema_minor = static_cast<int32_t>(schema >> 16 & 0xFF);
    std::string hash(20, '\0');
    if (camera.Read(hash_address, hash.data(), hash.size()) == GenTL::GC_ERR_SUCCESS && hash.find_first_not_of('\0') != hash.npos)
        info.sha1 = hash;
    return info;
}

}  // namespace kivsim
