// The exported functions beyond the standard; linked into KivSimGev.cti only. No decision is taken here.

#include "GenTL/extensions.h"

#include <cstring>

#include "device.h"
#include "interface.h"
#include "session.h"
#include "stream.h"
#include "system.h"

namespace GenTL {

using namespace kivsim;

extern "C" {

GC_API TLOpenDeviceMc(IF_HANDLE hIface, const char* sDeviceID, DEVICE_ACCESS_FLAGS iOpenFlags, DEV_HANDLE* phDevice,
                      uint32_t iMulticast) {
    return guarded(__func__, hIface, [&] {
        const Locked<Interface> interface(hIface);
        const auto id = mandatory_text(sDeviceID, "sDeviceID");
        DEV_HANDLE& handle = mandatory(phDevice, "phDevice");
        interface->MeetFaults("TLOpenDeviceMc", id);
        handle = interface->OpenDevice(id, iOpenFlags, iMulticast)->Handle();
    });
}

GC_API DevCreateDataStreamMc(DEV_HANDLE hDevice, uint32_t iIndex, DS_HANDLE* phDataStream, uint32_t iMode) {
    return guarded(__func__, hDevice, [&] {
        const Locked<Device> device(hDevice);
        DS_HANDLE& handle = mandatory(phDataStream, "phDataStream");
        if (iIndex != 0) fail(GC_ERR_INVALID_INDEX, "There is one stream, not one of index " + std::to_string(iIndex));
        handle = device->OpenStream(device->StreamId(), iMode)->Handle();
    });
}

GC_API TLSetForceIp(IF_HANDLE hIface, uint32_t iEnable, uint32_t iReserved) {
    return guarded(__func__, hIface, [&] {
        const Locked<Interface> interface(hIface);
        if (iReserved != 0) fail(GC_ERR_INVALID_PARAMETER, "Argument iReserved is " + std::to_string(iReserved) + ", not 0");
        interface->SetForceIp(iEnable != 0);
    });
}

GC_API DevQueryCustomFeature(DEV_HANDLE hDevice, int32_t iFeature, void* pBuffer, size_t* piSize) {
    return guarded(__func__, hDevice,
                   [&] { write_bytes(Locked<Device>(hDevice)->CustomFeature(iFeature).Content(), pBuffer, piSize); });
}

GC_API DSGetStreamParam(DS_HANDLE hDataStream, int32_t iParam, void* pBuffer, size_t* piSize) {
    return guarded(__func__, hDataStream,
                   [&] { write_bytes(Found<Stream>(hDataStream)->Parameter(iParam).Content(), pBuffer, piSize); });
}

GC_API DSSetStreamParam(DS_HANDLE hDataStream, int32_t iParam, void* pBuffer, size_t* piSize) {
    return guarded(__func__, hDataStream, [&] {
        const Found<Stream> stream(hDataStream);
        check_pointer(pBuffer, "pBuffer", false);
        uint32_t value = 0;
        if (mandatory(piSize, "piSize") != sizeof value)
            fail(GC_ERR_INVALID_PARAMETER, "A stream parameter is set with 4 bytes, not with " + std::to_string(*piSize));
        std::memcpy(&value, pBuffer, sizeof value);
        stream->SetParameter(iParam, value);
    });
}

// The last two arguments mean nothing here.
GC_API TLSendActionCommand(TL_HANDLE hTL, uint32_t iDeviceKey, uint32_t iGroupKey, uint32_t iGroupMask, void*, void*) {
    return guarded(__func__, hTL, [&] { Locked<System>(hTL)->SendAction(iDeviceKey, iGroupKey, iGroupMask); });
}

}  // extern "C"
}  // namespace GenTL
