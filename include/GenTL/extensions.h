/* Entry points beyond the GenTL standard that producers of the house may export: multicast, forced addresses, action commands,
 * stream parameters, a Camera Link probe. A producer without them is a good producer; a consumer resolves each by name and lives
 * without it.
 *
 * GENTL_EXTENSION_LIST(X) calls X(name, (arguments)) in the order in which a consumer resolves them. Only pointer types P<name>
 * are declared: nothing links against these functions. All return a GC_ERROR and follow the calling rules of the standard.
 *
 * ProbeCameraLinkDevices  Looks for cameras on the serial ports. Five texts come back, one item for each camera found and the
 * items separated by ';': port identifiers, device identifiers, model names, current baud rates, supported baud rates. Each text
 *                         holds up to iSize bytes with its terminator. sCancelEvent names an event that ends the probe; may be
 * null. TLOpenDeviceMc          IFOpenDevice with a multicast setting (0: unicast). Called on the interface, despite its name.
 * DevCreateDataStreamMc   Opens the stream of that index with a multicast mode (0: unicast).
 * TLSetForceIp            Whether the interface may give a valid address to a device that has none while it looks for devices.
 *                         Called on the interface, despite its name. iReserved is 0.
 * DevQueryCustomFeature   Reads the property iFeature of a device that no node shows; sized as in the standard's info calls.
 * DSGetStreamParam,
 * DSSetStreamParam        A parameter of the transport behind an open stream, by number; *piSize as in the standard's info calls.
 * TLSendActionCommand     Broadcasts an action command on all interfaces. The last two arguments go to the producer as they are.
 */
#ifndef GENTL_EXTENSIONS_H
#define GENTL_EXTENSIONS_H

#include "GenTL/enums.h"

/* clang-format off */
#define GENTL_EXTENSION_LIST(X) \
    X(ProbeCameraLinkDevices, (char* sPorts, char* sDeviceIDs, char* sModels, char* sBaudRates, char* sSupportedBaudRates, \
                               uint64_t iSize, const char* sCancelEvent)) \
    X(TLOpenDeviceMc, (IF_HANDLE hIface, const char* sDeviceID, DEVICE_ACCESS_FLAGS iOpenFlags, DEV_HANDLE* phDevice, uint32_t iMulticast)) \
    X(DevCreateDataStreamMc, (DEV_HANDLE hDevice, uint32_t iIndex, DS_HANDLE* phDataStream, uint32_t iMode)) \
    X(TLSetForceIp, (IF_HANDLE hIface, uint32_t iEnable, uint32_t iReserved)) \
    X(DevQueryCustomFeature, (DEV_HANDLE hDevice, int32_t iFeature, void* pBuffer, size_t* piSize)) \
    X(DSGetStreamParam, (DS_HANDLE hDataStream, int32_t iParam, void* pBuffer, size_t* piSize)) \
    X(DSSetStreamParam, (DS_HANDLE hDataStream, int32_t iParam, void* pBuffer, size_t* piSize)) \
    X(TLSendActionCommand, (TL_HANDLE hTL, uint32_t iDeviceKey, uint32_t iGroupKey, uint32_t iGroupMask, void* pArgument1, void* pArgument2))
/* clang-format on */

#ifdef __cplusplus
namespace GenTL {
extern "C" {
#endif

#define GENTL_DECLARE(name, arguments) typedef GC_ERROR(GC_CALLTYPE* P##name) arguments;
GENTL_EXTENSION_LIST(GENTL_DECLARE)
#undef GENTL_DECLARE

#ifdef __cplusplus
}  // extern "C"
}  // namespace GenTL
#endif

#endif
