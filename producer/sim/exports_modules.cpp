// The exported functions of system, interface and device. No decision is taken here.

#include "device.h"
#include "interface.h"
#include "session.h"
#include "stream.h"
#include "system.h"

namespace GenTL {

using namespace kivsim;

namespace {

const std::string& at(const std::vector<std::string>& ids, uint32_t index) {
    if (index < ids.size()) return ids[index];
    fail(GC_ERR_INVALID_INDEX, "There is no index " + std::to_string(index) + " in a list of " + std::to_string(ids.size()));
}

}  // namespace

extern "C" {

GC_API TLOpen(TL_HANDLE* phTL) {
    return guarded(__func__, nullptr, [&] {
        const auto session = current_session();
        const std::scoped_lock guard(session->tree);
        TL_HANDLE& handle = mandatory(phTL, "phTL");
        handle = open_system(*session)->Handle();
    });
}

GC_API TLClose(TL_HANDLE hTL) {
    return guarded(__func__, hTL, [&] { Locked<System>(hTL)->Close(); });
}

GC_API TLGetInfo(TL_HANDLE hTL, TL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize) {
    return guarded(__func__, hTL, [&] {
        const Found<System> system(hTL);
        write_info(system_info(system.InSession(), iInfoCmd), piType, pBuffer, piSize);
    });
}

GC_API TLGetNumInterfaces(TL_HANDLE hTL, uint32_t* piNumIfaces) {
    return guarded(__func__, hTL, [&] {
        const Locked<System> system(hTL);
        mandatory(piNumIfaces, "piNumIfaces") = static_cast<uint32_t>(system->InterfaceIds().size());
    });
}

GC_API TLGetInterfaceID(TL_HANDLE hTL, uint32_t iIndex, char* sID, size_t* piSize) {
    return guarded(__func__, hTL, [&] {
        const Locked<System> system(hTL);
        write_text(at(system->InterfaceIds(), iIndex), sID, piSize);
    });
}

GC_API TLGetInterfaceInfo(TL_HANDLE hTL, const char* sIfaceID, INTERFACE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                          size_t* piSize) {
    return guarded(__func__, hTL, [&] {
        const Locked<System> system(hTL);
        const auto id = mandatory_text(sIfaceID, "sIfaceID");
        write_info(system->InterfaceInfo(id, iInfoCmd), piType, pBuffer, piSize);
    });
}

GC_API TLOpenInterface(TL_HANDLE hTL, const char* sIfaceID, IF_HANDLE* phIface) {
    return guarded(__func__, hTL, [&] {
        const Locked<System> system(hTL);
        const auto id = mandatory_text(sIfaceID, "sIfaceID");
        IF_HANDLE& handle = mandatory(phIface, "phIface");
        handle = system->OpenInterface(id)->Handle();
    });
}

GC_API TLUpdateInterfaceList(TL_HANDLE hTL, bool8_t* pbChanged, uint64_t) {
    return guarded(__func__, hTL, [&] {
        const Locked<System> system(hTL);
        check_pointer(pbChanged, "pbChanged", true);
        const bool changed = system->UpdateInterfaceList();
        if (pbChanged) *pbChanged = changed;
    });
}

GC_API IFClose(IF_HANDLE hIface) {
    return guarded(__func__, hIface, [&] { Locked<Interface>(hIface)->Close(); });
}

GC_API IFGetInfo(IF_HANDLE hIface, INTERFACE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize) {
    return guarded(__func__, hIface, [&] { write_info(Locked<Interface>(hIface)->GetInfo(iInfoCmd), piType, pBuffer, piSize); });
}

GC_API IFGetNumDevices(IF_HANDLE hIface, uint32_t* piNumDevices) {
    return guarded(__func__, hIface, [&] {
        const Locked<Interface> interface(hIface);
        mandatory(piNumDevices, "piNumDevices") = static_cast<uint32_t>(interface->DeviceIds().size());
    });
}

GC_API IFGetDeviceID(IF_HANDLE hIface, uint32_t iIndex, char* sIDeviceID, size_t* piSize) {
    return guarded(__func__, hIface, [&] {
        const Locked<Interface> interface(hIface);
        write_text(at(interface->DeviceIds(), iIndex), sIDeviceID, piSize);
    });
}

GC_API IFUpdateDeviceList(IF_HANDLE hIface, bool8_t* pbChanged, uint64_t) {
    return guarded(__func__, hIface, [&] {
        const Locked<Interface> interface(hIface);
        check_pointer(pbChanged, "pbChanged", true);
        const bool changed = interface->UpdateDeviceList();
        if (pbChanged) *pbChanged = changed;
    });
}

GC_API IFGetDeviceInfo(IF_HANDLE hIface, const char* sDeviceID, DEVICE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
                       size_t* piSize) {
    return guarded(__func__, hIface, [&] {
        const Locked<Interface> interface(hIface);
        const auto id = mandatory_text(sDeviceID, "sDeviceID");
        interface->MeetFaults("IFGetDeviceInfo", id);
        write_info(interface->DeviceInfo(id, iInfoCmd), piType, pBuffer, piSize);
    });
}

GC_API IFOpenDevice(IF_HANDLE hIface, const char* sDeviceID, DEVICE_ACCESS_FLAGS iOpenFlags, DEV_HANDLE* phDevice) {
    return guarded(__func__, hIface, [&] {
        const Locked<Interface> interface(hIface);
        const auto id = mandatory_text(sDeviceID, "sDeviceID");
        DEV_HANDLE& handle = mandatory(phDevice, "phDevice");
        interface->MeetFaults("IFOpenDevice", id);
        handle = interface->OpenDevice(id, iOpenFlags)->Handle();
    });
}

GC_API IFGetParentTL(IF_HANDLE hIface, TL_HANDLE* phSystem) {
    return guarded(__func__, hIface, [&] {
        const Locked<Interface> interface(hIface);
        mandatory(phSystem, "phSystem") = interface->Parent().Handle();
    });
}

GC_API DevGetPort(DEV_HANDLE hDevice, PORT_HANDLE* phRemoteDevice) {
    return guarded(__func__, hDevice, [&] {
        const Locked<Device> device(hDevice);
        mandatory(phRemoteDevice, "phRemoteDevice") = device->Remote()->Handle();
    });
}

GC_API DevGetNumDataStreams(DEV_HANDLE hDevice, uint32_t* piNumDataStreams) {
    return guarded(__func__, hDevice, [&] {
        const Locked<Device> device(hDevice);
        mandatory(piNumDataStreams, "piNumDataStreams") = 1;
    });
}

GC_API DevGetDataStreamID(DEV_HANDLE hDevice, uint32_t iIndex, char* sDataStreamID, size_t* piSize) {
    return guarded(__func__, hDevice, [&] {
        const Locked<Device> device(hDevice);
        write_text(at({device->StreamId()}, iIndex), sDataStreamID, piSize);
    });
}

GC_API DevOpenDataStream(DEV_HANDLE hDevice, const char* sDataStreamID, DS_HANDLE* phDataStream) {
    return guarded(__func__, hDevice, [&] {
        const Locked<Device> device(hDevice);
        const auto id = mandatory_text(sDataStreamID, "sDataStreamID");
        DS_HANDLE& handle = mandatory(phDataStream, "phDataStream");
        handle = device->OpenStream(id)->Handle();
    });
}

GC_API DevGetInfo(DEV_HANDLE hDevice, DEVICE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize) {
    return guarded(__func__, hDevice, [&] { write_info(Locked<Device>(hDevice)->GetInfo(iInfoCmd), piType, pBuffer, piSize); });
}

GC_API DevClose(DEV_HANDLE hDevice) {
    return guarded(__func__, hDevice, [&] { Locked<Device>(hDevice)->Close(); });
}

GC_API DevGetParentIF(DEV_HANDLE hDevice, IF_HANDLE* phIface) {
    return guarded(__func__, hDevice, [&] {
        const Locked<Device> device(hDevice);
        mandatory(phIface, "phIface") = device->Parent().Handle();
    });
}

}  // extern "C"
}  // namespace GenTL
