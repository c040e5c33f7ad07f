/* The 57 functions of the GenTL 1.5 C interface, as one list.
 *
 * GENTL_FUNCTION_LIST(X) calls X(name, (arguments)) once for each of them. From it come the prototypes (a producer defines them),
 * the pointer types P<name> (a consumer resolves them), and whatever else needs all names: binding tables, export checks.
 *
 * Texts and infos are asked for twice: with a null buffer *piSize becomes the number of bytes that are needed, then with a
 * buffer of *piSize bytes. EventGetData has no such query. Timeouts are milliseconds.
 */
#ifndef GENTL_FUNCTIONS_H
#define GENTL_FUNCTIONS_H

#include "GenTL/enums.h"

/* clang-format off */
#define GENTL_FUNCTION_LIST(X) \
    /* Library */ \
    X(GCInitLib, (void)) \
    X(GCCloseLib, (void)) \
    X(GCGetInfo, (TL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)) \
    X(GCGetLastError, (GC_ERROR* piErrorCode, char* sErrText, size_t* piSize)) \
    /* Ports; the handle is any module's, or the one from DevGetPort */ \
    X(GCReadPort, (PORT_HANDLE hPort, uint64_t iAddress, void* pBuffer, size_t* piSize)) \
    X(GCWritePort, (PORT_HANDLE hPort, uint64_t iAddress, const void* pBuffer, size_t* piSize)) \
    X(GCGetPortURL, (PORT_HANDLE hPort, char* sURL, size_t* piSize)) \
    X(GCGetPortInfo, (PORT_HANDLE hPort, PORT_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)) \
    X(GCGetNumPortURLs, (PORT_HANDLE hPort, uint32_t* piNumURLs)) \
    X(GCGetPortURLInfo, (PORT_HANDLE hPort, uint32_t iURLIndex, URL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, \
       void* pBuffer, size_t* piSize)) \
    X(GCReadPortStacked, (PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* pEntries, size_t* piNumEntries)) \
    X(GCWritePortStacked, (PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* pEntries, size_t* piNumEntries)) \
    /* Events */ \
    X(GCRegisterEvent, (EVENTSRC_HANDLE hEventSrc, EVENT_TYPE iEventID, EVENT_HANDLE* phEvent)) \
    X(GCUnregisterEvent, (EVENTSRC_HANDLE hEventSrc, EVENT_TYPE iEventID)) \
    X(EventGetData, (EVENT_HANDLE hEvent, void* pBuffer, size_t* piSize, uint64_t iTimeout)) \
    X(EventGetDataInfo, (EVENT_HANDLE hEvent, const void* pInBuffer, size_t iInSize, EVENT_DATA_INFO_CMD iInfoCmd, \
       INFO_DATATYPE* piType, void* pOutBuffer, size_t* piOutSize)) \
    X(EventGetInfo, (EVENT_HANDLE hEvent, EVENT_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)) \
    X(EventFlush, (EVENT_HANDLE hEvent)) \
    X(EventKill, (EVENT_HANDLE hEvent)) \
    /* System */ \
    X(TLOpen, (TL_HANDLE* phTL)) \
    X(TLClose, (TL_HANDLE hTL)) \
    X(TLGetInfo, (TL_HANDLE hTL, TL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)) \
    X(TLGetNumInterfaces, (TL_HANDLE hTL, uint32_t* piNumIfaces)) \
    X(TLGetInterfaceID, (TL_HANDLE hTL, uint32_t iIndex, char* sID, size_t* piSize)) \
    X(TLGetInterfaceInfo, (TL_HANDLE hTL, const char* sIfaceID, INTERFACE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, \
       void* pBuffer, size_t* piSize)) \
    X(TLOpenInterface, (TL_HANDLE hTL, const char* sIfaceID, IF_HANDLE* phIface)) \
    X(TLUpdateInterfaceList, (TL_HANDLE hTL, bool8_t* pbChanged, uint64_t iTimeout)) \
    /* Interface */ \
    X(IFClose, (IF_HANDLE hIface)) \
    X(IFGetInfo, (IF_HANDLE hIface, INTERFACE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)) \
    X(IFGetNumDevices, (IF_HANDLE hIface, uint32_t* piNumDevices)) \
    X(IFGetDeviceID, (IF_HANDLE hIface, uint32_t iIndex, char* sIDeviceID, size_t* piSize)) \
    X(IFUpdateDeviceList, (IF_HANDLE hIface, bool8_t* pbChanged, uint64_t iTimeout)) \
    X(IFGetDeviceInfo, (IF_HANDLE hIface, const char* sDeviceID, DEVICE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, \
       void* pBuffer, size_t* piSize)) \
    X(IFOpenDevice, (IF_HANDLE hIface, const char* sDeviceID, DEVICE_ACCESS_FLAGS iOpenFlags, DEV_HANDLE* phDevice)) \
    X(IFGetParentTL, (IF_HANDLE hIface, TL_HANDLE* phSystem)) \
    /* Device */ \
    X(DevGetPort, (DEV_HANDLE hDevice, PORT_HANDLE* phRemoteDevice)) \
    X(DevGetNumDataStreams, (DEV_HANDLE hDevice, uint32_t* piNumDataStreams)) \
    X(DevGetDataStreamID, (DEV_HANDLE hDevice, uint32_t iIndex, char* sDataStreamID, size_t* piSize)) \
    X(DevOpenDataStream, (DEV_HANDLE hDevice, const char* sDataStreamID, DS_HANDLE* phDataStream)) \
    X(DevGetInfo, (DEV_HANDLE hDevice, DEVICE_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)) \
    X(DevClose, (DEV_HANDLE hDevice)) \
    X(DevGetParentIF, (DEV_HANDLE hDevice, IF_HANDLE* phIface)) \
    /* Data stream and buffers */ \
    X(DSAnnounceBuffer, (DS_HANDLE hDataStream, void* pBuffer, size_t iSize, void* pPrivate, BUFFER_HANDLE* phBuffer)) \
    X(DSAllocAndAnnounceBuffer, (DS_HANDLE hDataStream, size_t iSize, void* pPrivate, BUFFER_HANDLE* phBuffer)) \
    X(DSFlushQueue, (DS_HANDLE hDataStream, ACQ_QUEUE_TYPE iOperation)) \
    X(DSStartAcquisition, (DS_HANDLE hDataStream, ACQ_START_FLAGS iStartFlags, uint64_t iNumToAcquire)) \
    X(DSStopAcquisition, (DS_HANDLE hDataStream, ACQ_STOP_FLAGS iStopFlags)) \
    X(DSGetInfo, (DS_HANDLE hDataStream, STREAM_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)) \
    X(DSGetBufferID, (DS_HANDLE hDataStream, uint32_t iIndex, BUFFER_HANDLE* phBuffer)) \
    X(DSClose, (DS_HANDLE hDataStream)) \
    X(DSRevokeBuffer, (DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, void** pBuffer, void** pPrivate)) \
    X(DSQueueBuffer, (DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer)) \
    X(DSGetBufferInfo, (DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, BUFFER_INFO_CMD iInfoCmd, \
       INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)) \
    X(DSGetBufferChunkData, (DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, SINGLE_CHUNK_DATA* pChunkData, size_t* piNumChunks)) \
    X(DSGetParentDev, (DS_HANDLE hDataStream, DEV_HANDLE* phDevice)) \
    X(DSGetNumBufferParts, (DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t* piNumParts)) \
    X(DSGetBufferPartInfo, (DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t iPartIndex, \
       BUFFER_PART_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize))
/* clang-format on */

#ifdef __cplusplus
namespace GenTL {
extern "C" {
#endif

#define GENTL_DECLARE(name, arguments)                    \
    GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE name arguments; \
    typedef GC_ERROR(GC_CALLTYPE* P##name) arguments;
GENTL_FUNCTION_LIST(GENTL_DECLARE)
#undef GENTL_DECLARE

#ifdef __cplusplus
}  // extern "C"
}  // namespace GenTL
#endif

#endif
