/* The GenTL module tree itself: transport layers (bound producers), interfaces, descriptions.
 *
 * Threads. Any. Forwarders call the producer on the caller's thread and take no lock of the library on the way; GenTL demands of
 * producers that they bear that. A module's own node map is built by the first call that needs it, for which other calls on the
 * same module wait, and has a lock of its own (node.h). An interface must not be closed while another thread uses it or a camera
 * on it.
 */
#ifndef KIV_GENTL_API_H
#define KIV_GENTL_API_H

#include <kiv/types.h>

/** The number of bound producers; producers are bound by the first camera-list update. */
K_API K_STATUS_CODES K_CALL K_GenTL_GetNumberOfTransportLayers(FACTORY_HANDLE hFactory, uint32_t* pCount);
/** One bound producer and its key; `name` receives at most `size` bytes, always terminated. */
K_API K_STATUS_CODES K_CALL K_GenTL_GetTransportLayerByIndex(FACTORY_HANDLE hFactory, uint32_t index,
                                                             TRANSPORT_LAYER_HANDLE* phTransportLayer, char* name, uint32_t size);
/** GenTL's TL_INFO_CMD. *pSize is written back on success only. */
K_API K_STATUS_CODES K_CALL K_GenTL_TLGetInfo(TRANSPORT_LAYER_HANDLE hTransportLayer, int32_t infoCmd, int32_t* pType,
                                              void* buffer, uint32_t* pSize);
/** One bound producer by its key. With no producer bound, or none of that key, K_ST_NO_DATA. */
K_API K_STATUS_CODES K_CALL K_GenTL_GetTransportLayerByName(FACTORY_HANDLE hFactory, const char* key,
                                                            TRANSPORT_LAYER_HANDLE* phTransportLayer);
/** Whether the producer's transport type is GigE Vision. */
K_API K_STATUS_CODES K_CALL K_Is_GigE_Transport_Layer(TRANSPORT_LAYER_HANDLE hTransportLayer, bool8_kiv* pIsGigE);

/* Forwarders. Each hands its arguments to the producer's function of that name and returns the producer's status. A size is the
   producer's: a null buffer asks for it; it is written back whatever the result. Timeouts are milliseconds. */

K_API K_STATUS_CODES K_CALL K_GenTL_TLUpdateInterfaceList(TRANSPORT_LAYER_HANDLE hTransportLayer, bool8_kiv* pChanged,
                                                          uint64_t timeout);
K_API K_STATUS_CODES K_CALL K_GenTL_TLGetNumInterfaces(TRANSPORT_LAYER_HANDLE hTransportLayer, uint32_t* pCount);
K_API K_STATUS_CODES K_CALL K_GenTL_TLGetInterfaceID(TRANSPORT_LAYER_HANDLE hTransportLayer, uint32_t index, char* buffer,
                                                     uint32_t* pSize);
/** Opens an interface. The camera list opens those that it finds: for them this is the producer's RESOURCE_IN_USE, and
 *  K_GenTL_GetInterfaceLayerByIndex gives the handle. */
K_API K_STATUS_CODES K_CALL K_GenTL_TLOpenInterface(TRANSPORT_LAYER_HANDLE hTransportLayer, const char* interfaceId,
                                                    INTERFACE_HANDLE* phInterface);
/** An opened interface by its place in the order of identifiers. */
K_API K_STATUS_CODES K_CALL K_GenTL_GetInterfaceLayerByIndex(TRANSPORT_LAYER_HANDLE hTransportLayer, uint32_t index,
                                                             INTERFACE_HANDLE* phInterface);
/** Closes the interface and every camera on it. */
K_API K_STATUS_CODES K_CALL K_GenTL_IFClose(INTERFACE_HANDLE hInterface);
/** Unlike the rule, the null result pointer is what is tested first. */
K_API K_STATUS_CODES K_CALL K_GenTL_IFGetNumDevices(INTERFACE_HANDLE hInterface, uint32_t* pCount);
K_API K_STATUS_CODES K_CALL K_GenTL_IFGetDeviceName(INTERFACE_HANDLE hInterface, uint32_t index, char* buffer, uint32_t* pSize);
K_API K_STATUS_CODES K_CALL K_GenTL_IFUpdateDeviceList(INTERFACE_HANDLE hInterface, bool8_kiv* pChanged, uint64_t timeout);
/** GenTL's DEVICE_INFO_CMD, for those that are texts. */
K_API K_STATUS_CODES K_CALL K_GenTL_IFGetDeviceInfoString(TRANSPORT_LAYER_HANDLE hTransportLayer, INTERFACE_HANDLE hInterface,
                                                          const char* deviceId, int32_t infoCmd, char* buffer, uint32_t* pSize);
/** Opens a device. phDevice receives the producer's DEV_HANDLE; K_GenTL_DevGetPort makes a camera of it, whose close closes it.
 */
K_API K_STATUS_CODES K_CALL K_GenTL_IFOpenDevice(INTERFACE_HANDLE hInterface, const char* deviceId, uint32_t accessMode,
                                                 void** phDevice);
/** The camera object on a device that K_GenTL_IFOpenDevice or a camera opened. It has no node map before K_GenTL_GetPortURLInfo.
 *  K_Camera_Close on it closes the device and every camera object on it. */
K_API K_STATUS_CODES K_CALL K_GenTL_DevGetPort(void* hDevice, CAM_HANDLE* phPort);
/** Reads the port's description URL and builds the node map. openOption as in K_Camera_OpenEx. */
K_API K_STATUS_CODES K_CALL K_GenTL_GetPortURLInfo(CAM_HANDLE hPort, uint32_t openOption);
K_API K_STATUS_CODES K_CALL K_GenTL_GetNumPortURLs(CAM_HANDLE hPort, uint32_t* pCount);

/* Events of the modules, without a thread of the library's and without a target: the producer's own EVENT_HANDLEs, for programs
   that pull the data themselves. They end with their module. event.h has the comfortable way. */

/**
 * Registers an event of a stream. hStream is the producer's DS_HANDLE, or a STREAM_HANDLE, or a THRD_HANDLE, which stand for
 * theirs. kind as in event.h; *phEvent receives the producer's EVENT_HANDLE.
 */
K_API K_STATUS_CODES K_CALL K_GenTL_DataStream_RegisterEvent(TRANSPORT_LAYER_HANDLE hTransportLayer, void* hStream, uint32_t kind,
                                                             void** phEvent);
/** Waits for up to timeoutMs milliseconds and takes the data of the oldest event. A null buffer throws them away. */
K_API K_STATUS_CODES K_CALL K_GenTL_Event_GetData(TRANSPORT_LAYER_HANDLE hTransportLayer, void* hEvent, void* buffer,
                                                  uint32_t* pSize, uint64_t timeoutMs);
/**
 * Registers what a GigE Vision producer of the house tells about a device: events[0] is kind 1000 (event messages), events[1]
 * 1001, events[2] 1004. hDevice is the producer's DEV_HANDLE or a camera. A kind that the producer refuses is null; when it
 * refuses all, its first status is returned and nothing is written. Any other producer: K_ST_NOT_IMPLEMENTED.
 */
K_API K_STATUS_CODES K_CALL K_GenTL_GigE_CreateEvents(TRANSPORT_LAYER_HANDLE hTransportLayer, void* hDevice, void* events[3]);

/* The node maps of modules. hModule is a transport layer, an interface, a DEV_HANDLE (the local device module), a camera, a data
   stream, or an image stream. The maps are built when first asked for. K_ST_NO_DATA: the module has none, or there is no such
   node, category or feature; names and results are otherwise as in camera.h, except that sub-features are INode handles. */

K_API K_STATUS_CODES K_CALL K_GenTL_GetNumOfNodes(void* hModule, uint32_t* pCount);
K_API K_STATUS_CODES K_CALL K_GenTL_GetNodeByName(void* hModule, const char* name, NODE_HANDLE* phNode);
K_API K_STATUS_CODES K_CALL K_GenTL_GetNumOfSubFeatures(void* hModule, const char* category, uint32_t* pCount);
K_API K_STATUS_CODES K_CALL K_GenTL_GetSubFeatureByIndex(void* hModule, const char* category, uint32_t index,
                                                         NODE_HANDLE* phNode);

/**
 * The GenICam description (XML) of a module as a text.
 *
 * hModule: the transport layer itself, an interface, a camera (its remote device), a data stream, an image stream, or a
 *          producer's own module handle such as a DEV_HANDLE. It is not checked beforehand: the producer refuses what it does not
 *          know. An object of another transport layer, or an image stream without a stream, gives K_ST_INVALID_HANDLE.
 * hOther:  must not be null; otherwise unused.
 * buffer:  null asks for the size, which then does NOT count the terminator; a copy needs one byte more and follows the rule of
 *          node texts (node.h). This off-by-one is kept: callers rely on it.
 */
K_API K_STATUS_CODES K_CALL K_GenTL_Module_GetXmlString(TRANSPORT_LAYER_HANDLE hTransportLayer, void* hModule, void* hOther,
                                                        char* buffer, uint32_t* pSize);

#endif
