// K_GenTL_*: transport layers, interfaces, devices.
#include <kiv/gentl.h>

#include "api/adaptors.h"
#include "api/checks.h"
#include "camera/open_cameras.h"
#include "transport/open_devices.h"

using namespace kiv;
using namespace kiv::api;
using GenICam::Factory::CCameraClass;
using GenICam::Factory::CInterfaceClass;

K_API K_STATUS_CODES K_CALL K_GenTL_GetNumberOfTransportLayers(FACTORY_HANDLE hFactory, uint32_t* pCount) {
    return guarded([&] {
        auto& opened = factory(hFactory);
        auto& count = out(pCount);
        count = static_cast<uint32_t>(opened.Producers().size());
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_GenTL_GetTransportLayerByIndex(FACTORY_HANDLE hFactory, uint32_t index,
                                                             TRANSPORT_LAYER_HANDLE* phTransportLayer, char* name,
                                                             uint32_t size) {
    return guarded([&] {
        auto& opened = factory(hFactory);
        auto& result = out(phTransportLayer);
        auto producers = opened.Producers();
        require(index < producers.size());
        auto& [key, producer] = producers[index];
        if (name && size > 0) name[key.copy(name, size - 1)] = '\0';
        result = handle_to<TRANSPORT_LAYER_HANDLE>(producer);
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_GenTL_TLGetInfo(TRANSPORT_LAYER_HANDLE hTransportLayer, int32_t infoCmd, int32_t* pType,
                                              void* buffer, uint32_t* pSize) {
    return guarded([&] {
        auto& producer = transport_layer(hTransportLayer);
        auto get = entry(producer.TLGetInfo);
        auto& size = out(pSize);
        GenTL::INFO_DATATYPE type = 0;
        std::size_t wide = size;
        auto status = get(producer.TL(), infoCmd, &type, buffer, &wide);
        if (status == K_ST_SUCCESS) size = static_cast<uint32_t>(wide);
        if (status == K_ST_SUCCESS && pType) *pType = type;
        return status;
    });
}

K_API K_STATUS_CODES K_CALL K_Is_GigE_Transport_Layer(TRANSPORT_LAYER_HANDLE hTransportLayer, bool8_kiv* pIsGigE) {
    return guarded([&] {
        auto& producer = transport_layer(hTransportLayer);
        auto& result = out(pIsGigE);
        result = producer.IsGigE();
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_GenTL_GetTransportLayerByName(FACTORY_HANDLE hFactory, const char* key,
                                                            TRANSPORT_LAYER_HANDLE* phTransportLayer) {
    return guarded([&]() -> K_STATUS_CODES {
        auto& opened = factory(hFactory);
        out(key);
        auto& result = out(phTransportLayer);
        auto* producer = opened.FindProducer(key);
        if (!producer) return K_ST_NO_DATA;
        result = handle_to<TRANSPORT_LAYER_HANDLE>(producer);
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_GenTL_TLUpdateInterfaceList(TRANSPORT_LAYER_HANDLE hTransportLayer, bool8_kiv* pChanged,
                                                          uint64_t timeout) {
    return guarded([&] {
        auto& producer = transport_layer(hTransportLayer);
        return entry(producer.TLUpdateInterfaceList)(producer.TL(), pChanged, timeout);
    });
}

K_API K_STATUS_CODES K_CALL K_GenTL_TLGetNumInterfaces(TRANSPORT_LAYER_HANDLE hTransportLayer, uint32_t* pCount) {
    return guarded([&] {
        auto& producer = transport_layer(hTransportLayer);
        auto get = entry(producer.TLGetNumInterfaces);
        return get(producer.TL(), &out(pCount));
    });
}

K_API K_STATUS_CODES K_CALL K_GenTL_TLGetInterfaceID(TRANSPORT_LAYER_HANDLE hTransportLayer, uint32_t index, char* buffer,
                                                     uint32_t* pSize) {
    return guarded([&] {
        auto& producer = transport_layer(hTransportLayer);
        auto get = entry(producer.TLGetInterfaceID);
        auto& size = out(pSize);
        return get(producer.TL(), index, buffer, WideSize(size));
    });
}

K_API K_STATUS_CODES K_CALL K_GenTL_TLOpenInterface(TRANSPORT_LAYER_HANDLE hTransportLayer, const char* interfaceId,
                                                    INTERFACE_HANDLE* phInterface) {
    return guarded([&] {
        auto& producer = transport_layer(hTransportLayer);
        entry(producer.TLOpenInterface);
        out(interfaceId);
        auto& result = out(phInterface);
        CInterfaceClass* opened = nullptr;
        auto status = producer.OpenInterface(interfaceId, opened);
        if (status == K_ST_SUCCESS) result = handle_to<INTERFACE_HANDLE>(opened);
        return status;
    });
}

K_API K_STATUS_CODES K_CALL K_GenTL_GetInterfaceLayerByIndex(TRANSPORT_LAYER_HANDLE hTransportLayer, uint32_t index,
                                                             INTERFACE_HANDLE* phInterface) {
    return guarded([&] {
        auto& producer = transport_layer(hTransportLayer);
        auto& result = out(phInterface);
        auto* found = producer.InterfaceAt(index);
        require(found != nullptr);
        handle(found->Handle());
        result = handle_to<INTERFACE_HANDLE>(found);
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_GenTL_IFClose(INTERFACE_HANDLE hInterface) {
    return guarded([&]() -> K_STATUS_CODES {
        auto& closed = interface_object(hInterface);
        entry(closed.Producer().IFClose);
        if (!retire_handle(hInterface, HandleKind::interface)) return K_ST_INVALID_HANDLE;
        GenICam::Factory::open_cameras().CloseAllOf(closed.Handle());
        return closed.Producer().CloseInterface(closed);
    });
}

K_API K_STATUS_CODES K_CALL K_GenTL_IFGetNumDevices(INTERFACE_HANDLE hInterface, uint32_t* pCount) {
    return guarded([&] {
        auto& count = out(pCount);
        auto& opened = interface_object(hInterface);
        return entry(opened.Producer().IFGetNumDevices)(opened.Handle(), &count);
    });
}

K_API K_STATUS_CODES K_CALL K_GenTL_IFGetDeviceName(INTERFACE_HANDLE hInterface, uint32_t index, char* buffer, uint32_t* pSize) {
    return guarded([&] {
        auto& opened = interface_object(hInterface);
        auto get = entry(opened.Producer().IFGetDeviceID);
        auto& size = out(pSize);
        return get(opened.Handle(), index, buffer, WideSize(size));
    });
}

K_API K_STATUS_CODES K_CALL K_GenTL_IFUpdateDeviceList(INTERFACE_HANDLE hInterface, bool8_kiv* pChanged, uint64_t timeout) {
    return guarded([&] {
        auto& opened = interface_object(hInterface);
        return entry(opened.Producer().IFUpdateDeviceList)(opened.Handle(), pChanged, timeout);
    });
}

K_API K_STATUS_CODES K_CALL K_GenTL_IFGetDeviceInfoString(TRANSPORT_LAYER_HANDLE hTransportLayer, INTERFACE_HANDLE hInterface,
                                                          const char* deviceId, int32_t infoCmd, char* buffer, uint32_t* pSize) {
    return guarded([&] {
        auto& producer = transport_layer(hTransportLayer);
        auto& opened = interface_object(hInterface);
        auto get = entry(producer.IFGetDeviceInfo);
        out(deviceId);
        auto& size = out(pSize);
        return get(opened.Handle(), deviceId, infoCmd, Ignored<GenTL::INFO_DATATYPE>(), buffer, WideSize(size));
    });
}

K_API K_STATUS_CODES K_CALL K_GenTL_IFOpenDevice(INTERFACE_HANDLE hInterface, const char* deviceId, uint32_t accessMode,
                                                 void** phDevice) {
    return guarded([&] {
        auto& opened = interface_object(hInterface);
        auto open = entry(opened.Producer().IFOpenDevice);
        out(deviceId);
        auto& result = out(phDevice);
        GenTL::DEV_HANDLE device = nullptr;
        auto status = open(opened.Handle(), deviceId, static_cast<GenTL::DEVICE_ACCESS_FLAGS>(accessMode), &device);
        if (status != K_ST_SUCCESS) return status;
        GenICam::Factory::open_devices().Enter(device, opened.Producer(), opened.Handle());
        result = device;
        return status;
    });
}

K_API K_STATUS_CODES K_CALL K_GenTL_DevGetPort(void* hDevice, CAM_HANDLE* phPort) {
    return guarded([&]() -> K_STATUS_CODES {
        auto device = GenICam::Factory::open_devices().Find(hDevice);
        if (!device) return K_ST_INVALID_HANDLE;
        entry(device->producer.DevGetPort);
        auto& result = out(phPort);
        auto port =
            std::make_unique<CCameraClass>(device->producer, device->interface_handle, hDevice, CCameraClass::Device::borrowed);
        auto& cameras = GenICam::Factory::open_cameras();
        if (!cameras.Owns(hDevice)) port->TakeDevice();
        result = handle_to<CAM_HANDLE>(cameras.Enter(std::move(port)));
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_GenTL_GetPortURLInfo(CAM_HANDLE hPort, uint32_t openOption) {
    return guarded([&] {
        camera(hPort).RemoteDevice().Build(openOption);
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_GenTL_GetNumPortURLs(CAM_HANDLE hPort, uint32_t* pCount) {
    return guarded([&] {
        auto& opened = camera(hPort);
        auto get = entry(opened.Producer().GCGetNumPortURLs);
        return get(opened.RemoteDevice().Port(), &out(pCount));
    });
}
