#include "camera/open_camera.h"

#include "camera/open_cameras.h"
#include "transport/camera_id.h"
#include "transport/open_interfaces.h"

namespace kiv {

namespace {

using GenICam::Factory::CCameraClass;
using GenICam::Factory::CFactory;
using GenICam::Factory::CInterfaceClass;
using GenICam::Factory::CTLWrapper;

// A producer's positive status still has to read as a failure; the standard's negative ones pass unchanged.
K_STATUS_CODES as_failure(K_STATUS_CODES status) {
    return status == K_ST_SUCCESS ? status : static_cast<K_STATUS_CODES>(static_cast<std::uint32_t>(status) | 0xFFFF0000u);
}

struct Place {
    CTLWrapper* producer = nullptr;
    CInterfaceClass* opened = nullptr;
    std::string device;
};

K_STATUS_CODES find_place(CFactory& factory, const char* camera_id, Place& place) {
    if (!camera_id) return K_ST_INVALID_ID;
    auto key = producer_part(camera_id);
    if (!key) return K_ST_INVALID_ID;
    // A program may keep an identifier from an earlier run and open it without listing cameras first.
    if (auto status = factory.EnsureListed(); status != K_ST_SUCCESS) return status;
    place.producer = factory.FindProducer(*key);
    auto interface_id = interface_part(camera_id);
    if (!place.producer) return interface_id && device_part(camera_id) ? K_ST_INVALID_HANDLE : K_ST_INVALID_ID;
    if (!interface_id) return K_ST_INVALID_ID;
    place.opened = place.producer->FindInterface(*interface_id);
    if (!place.opened || !place.opened->Handle()) return K_ST_INVALID_HANDLE;
    auto force_ip = factory.ForceIp();
    if (place.producer->TLSetForceIp && place.producer->IsGigE())
        place.producer->TLSetForceIp(place.opened->Handle(), force_ip.enable, force_ip.second);
    auto device = device_part(camera_id);
    if (!device) return K_ST_INVALID_ID;
    place.device = *device;
    return GenICam::Factory::open_interfaces().Find(place.opened->Handle()) ? K_ST_SUCCESS : K_ST_INVALID_HANDLE;
}

K_STATUS_CODES open_device(const Place& place, const OpenRequest& request, GenTL::DEV_HANDLE& device) {
    auto& producer = *place.producer;
    auto handle = place.opened->Handle();
    if (producer.IsGigE() && producer.TLOpenDeviceMc)
        return open_device_multicast(producer, handle, place.device.c_str(), request.access_mode, request.multicast, device);
    // GigE Vision producers of other makers have no multicast extension: the standard's way, with what the caller asked for.
    if (producer.IsGigE())
        return producer.IFOpenDevice(handle, place.device.c_str(), static_cast<GenTL::DEVICE_ACCESS_FLAGS>(request.access_mode),
                                     &device);
    // Whatever the caller asked for: elsewhere nobody else could make use of a shared device.
    return producer.IFOpenDevice(handle, place.device.c_str(), GenTL::DEVICE_ACCESS_EXCLUSIVE, &device);
}

}  // namespace

K_STATUS_CODES open_device_multicast(const CTLWrapper& producer, GenTL::IF_HANDLE interface_handle, const char* device_id,
                                     std::uint32_t access_mode, std::uint32_t multicast, GenTL::DEV_HANDLE& device) {
    if (!producer.TLOpenDeviceMc) return K_ST_NOT_IMPLEMENTED;
    return producer.TLOpenDeviceMc(interface_handle, device_id, static_cast<GenTL::DEVICE_ACCESS_FLAGS>(access_mode), &device,
                                   multicast);
}

K_STATUS_CODES open_camera(CFactory& factory, const OpenRequest& request, CCameraClass*& camera) {
    Place place;
    if (auto status = find_place(factory, request.camera_id, place); status != K_ST_SUCCESS) return status;
    GenTL::DEV_HANDLE device = nullptr;
    if (auto status = open_device(place, request, device); status != K_ST_SUCCESS) return as_failure(status);
    if (!device) return K_ST_INVALID_HANDLE;
    try {
        auto opened = std::make_unique<CCameraClass>(*place.producer, place.opened->Handle(), device);
        opened->RemoteDevice().Build(request.open_option);
        opened->SetFactory(factory);
        camera = GenICam::Factory::open_cameras().Enter(std::move(opened));
        return K_ST_SUCCESS;
    } catch (const StatusError& error) {
        return as_failure(error.code);
    }
}

}  // namespace kiv
