// K_Camera_*: open, close, raw registers, where a camera hangs.
#include <kiv/camera.h>

#include "acquisition/gige_event_thread.h"
#include "api/adaptors.h"
#include "api/checks.h"
#include "camera/open_camera.h"
#include "camera/open_cameras.h"
#include "transport/open_interfaces.h"

using namespace kiv;
using namespace kiv::api;
using GenICam::Factory::CCameraClass;

K_API K_STATUS_CODES K_CALL K_Camera_OpenEx(FACTORY_HANDLE hFactory, const char* cameraId, CAM_HANDLE* phCamera,
                                            uint32_t accessMode, uint32_t multicast, uint32_t openOption) {
    return guarded([&]() -> K_STATUS_CODES {
        auto& opened_factory = factory(hFactory);
        auto& result = out(phCamera);
        CCameraClass* opened = nullptr;
        auto status = open_camera(opened_factory, {cameraId, accessMode, multicast, openOption}, opened);
        if (status != K_ST_SUCCESS) return status;
        require(opened != nullptr);
        if (opened->Producer().IsGigE()) start_gige_events(*opened);
        result = handle_to<CAM_HANDLE>(opened);
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Camera_Open(FACTORY_HANDLE hFactory, const char* cameraId, CAM_HANDLE* phCamera,
                                          uint32_t openOption) {
    return K_Camera_OpenEx(hFactory, cameraId, phCamera, GenTL::DEVICE_ACCESS_CONTROL, 0, openOption);
}

K_API K_STATUS_CODES K_CALL K_Camera_OpenMc(FACTORY_HANDLE hFactory, const char* cameraId, CAM_HANDLE* phCamera,
                                            uint32_t accessMode, uint32_t multicast) {
    return K_Camera_OpenEx(hFactory, cameraId, phCamera, accessMode, multicast, 0);
}

K_API K_STATUS_CODES K_CALL K_Camera_Open_Proxy(FACTORY_HANDLE hFactory, const char* cameraId, CAM_HANDLE* phCamera) {
    return K_Camera_OpenEx(hFactory, cameraId, phCamera, GenTL::DEVICE_ACCESS_CONTROL, 0, 0);
}

K_API K_STATUS_CODES K_CALL K_Camera_IFOpenDeviceMc(TRANSPORT_LAYER_HANDLE hTransportLayer, INTERFACE_HANDLE hInterface,
                                                    const char* deviceId, uint32_t accessMode, void** phDevice,
                                                    uint32_t multicast) {
    return guarded([&] {
        auto& producer = transport_layer(hTransportLayer);
        auto& opened = interface_object(hInterface);
        entry(producer.TLOpenDeviceMc);
        out(deviceId);
        return open_device_multicast(producer, opened.Handle(), deviceId, accessMode, multicast, out(phDevice));
    });
}

K_API K_STATUS_CODES K_CALL K_Camera_Close(CAM_HANDLE hCamera) {
    return guarded_as(K_ST_INVALID_HANDLE, [&] { return GenICam::Factory::open_cameras().Close(hCamera); });
}

// The remote device's port, asked of the producer anew; the checks are those of the raw register calls.
static GenTL::PORT_HANDLE remote_port(const CCameraClass& opened) {
    auto get = entry(opened.Producer().DevGetPort);
    GenTL::PORT_HANDLE port = nullptr;
    require_success(get(opened.DeviceHandle(), &port));
    return port;
}

K_API K_STATUS_CODES K_CALL K_Camera_ReadData(CAM_HANDLE hCamera, uint64_t address, void* buffer, uint32_t* pSize) {
    return guarded([&] {
        auto& opened = camera(hCamera);
        auto port = remote_port(opened);
        auto& size = out(pSize);
        auto read = entry(opened.Producer().GCReadPort);
        out(buffer);
        return read(port, address, buffer, WideSize(size));
    });
}

K_API K_STATUS_CODES K_CALL K_Camera_WriteData(CAM_HANDLE hCamera, uint64_t address, const void* buffer, uint32_t* pSize) {
    return guarded([&] {
        auto& opened = camera(hCamera);
        auto port = remote_port(opened);
        auto& size = out(pSize);
        auto write = entry(opened.Producer().GCWritePort);
        out(buffer);
        return write(port, address, buffer, WideSize(size));
    });
}

// Here a missing result pointer counts as a bad handle, too.
K_API K_STATUS_CODES K_CALL K_Camera_GetTLHandle(CAM_HANDLE hCamera, TRANSPORT_LAYER_HANDLE* phTransportLayer) {
    return guarded([&] {
        auto& opened = camera(hCamera);
        handle(phTransportLayer);
        *phTransportLayer = handle_to<TRANSPORT_LAYER_HANDLE>(&opened.Producer());
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Camera_GetInterfaceHandle(CAM_HANDLE hCamera, INTERFACE_HANDLE* phInterface) {
    return guarded([&]() -> K_STATUS_CODES {
        auto& opened = camera(hCamera);
        handle(phInterface);
        auto* found = GenICam::Factory::open_interfaces().Find(opened.Interface());
        if (!found) return K_ST_INVALID_HANDLE;
        *phInterface = handle_to<INTERFACE_HANDLE>(found);
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Camera_GetLocalDeviceHandle(CAM_HANDLE hCamera, void** phDevice) {
    return guarded([&] {
        auto& opened = camera(hCamera);
        handle(phDevice);
        *phDevice = opened.DeviceHandle();
        return K_ST_SUCCESS;
    });
}

// Here a null camera is a bad parameter, and only what hangs above it a bad handle.
K_API K_STATUS_CODES K_CALL K_Camera_GetTransportLayerName(CAM_HANDLE hCamera, char* buffer, uint32_t* pSize) {
    return guarded([&] {
        require(hCamera != nullptr);
        auto& opened = camera(hCamera);
        auto get = entry(opened.Producer().TLGetInfo);
        auto& size = out(pSize);
        return get(opened.Producer().TL(), GenTL::TL_INFO_TLTYPE, Ignored<GenTL::INFO_DATATYPE>(), buffer, WideSize(size));
    });
}
