/* Cameras: open and close, features by name, raw registers.
 *
 * The value calls by name always verify (range, access). Work that touches features raises K_ST_GC_ERROR with the GenICam error
 * record filled; K_ST_NO_DATA says that the camera has no node map.
 *
 * Threads. Any, on one camera or several. Calls on features of one camera come one after the other (node.h says what holds the
 * lock); raw registers pass by that lock, so that only the producer orders them. Cameras do not wait for each other, nor for one
 * that does not answer. Opening waits for a camera-list update that is under way; closing waits for the camera's own threads and
 * for nothing else, and must not be done while another thread is inside a call on that camera.
 */
#ifndef KIV_CAMERA_API_H
#define KIV_CAMERA_API_H

#include <kiv/types.h>

/** Opens a camera of the list. accessMode: GenTL's (3 control). openOption: reserved, handed to the description retrieval.
 *  A producer that is not GigE Vision is always asked for exclusive access. */
K_API K_STATUS_CODES K_CALL K_Camera_OpenEx(FACTORY_HANDLE hFactory, const char* cameraId, CAM_HANDLE* phCamera,
                                            uint32_t accessMode, uint32_t multicast, uint32_t openOption);
/** K_Camera_OpenEx with access mode 3 and multicast 0. */
K_API K_STATUS_CODES K_CALL K_Camera_Open(FACTORY_HANDLE hFactory, const char* cameraId, CAM_HANDLE* phCamera,
                                          uint32_t openOption);
/** K_Camera_OpenEx with open option 0. */
K_API K_STATUS_CODES K_CALL K_Camera_OpenMc(FACTORY_HANDLE hFactory, const char* cameraId, CAM_HANDLE* phCamera,
                                            uint32_t accessMode, uint32_t multicast);
/** K_Camera_OpenEx with access mode 3, multicast 0, open option 0. */
K_API K_STATUS_CODES K_CALL K_Camera_Open_Proxy(FACTORY_HANDLE hFactory, const char* cameraId, CAM_HANDLE* phCamera);
/** Opens a device through the producer's multicast extension. phDevice receives the producer's device handle. */
K_API K_STATUS_CODES K_CALL K_Camera_IFOpenDeviceMc(TRANSPORT_LAYER_HANDLE hTransportLayer, INTERFACE_HANDLE hInterface,
                                                    const char* deviceId, uint32_t accessMode, void** phDevice,
                                                    uint32_t multicast);
/** Closes a camera. With no camera open at all the call is a success that does nothing.
 * May be called while another thread's call is held up in a register access that the producer does not end: the close waits five
 * seconds for it, and five for a stream that is held up with it, and goes on; what that call is inside of stays in memory. */
K_API K_STATUS_CODES K_CALL K_Camera_Close(CAM_HANDLE hCamera);

/** Reads device memory without the node map. *pSize: bytes wanted; on return what the producer reports. */
K_API K_STATUS_CODES K_CALL K_Camera_ReadData(CAM_HANDLE hCamera, uint64_t address, void* buffer, uint32_t* pSize);
/** Writes device memory without the node map; caches of the node map do not notice (K_Camera_InvalidateNodes). */
K_API K_STATUS_CODES K_CALL K_Camera_WriteData(CAM_HANDLE hCamera, uint64_t address, const void* buffer, uint32_t* pSize);

/** All nodes of the map, in the description's order, implementation nodes and enumeration entries included. */
K_API K_STATUS_CODES K_CALL K_Camera_GetNumOfNodes(CAM_HANDLE hCamera, uint32_t* pCount);
K_API K_STATUS_CODES K_CALL K_Camera_GetNodeByIndex(CAM_HANDLE hCamera, uint32_t index, NODE_HANDLE* phNode);
/** A node by name. An unknown name gives K_ST_INVALID_PARAMETER and a null handle. */
K_API K_STATUS_CODES K_CALL K_Camera_GetNodeByName(CAM_HANDLE hCamera, const char* name, NODE_HANDLE* phNode);
K_API K_STATUS_CODES K_CALL K_Camera_GetFeatureByName(CAM_HANDLE hCamera, const char* name, NODE_HANDLE* phNode);
/** The direct features of a category, sub-categories included, unfiltered. A name that is no category sets the count to 0. */
K_API K_STATUS_CODES K_CALL K_Camera_GetNumOfSubFeatures(CAM_HANDLE hCamera, const char* category, uint32_t* pCount);
K_API K_STATUS_CODES K_CALL K_Camera_GetSubFeatureByIndex(CAM_HANDLE hCamera, const char* category, uint32_t index,
                                                          NODE_HANDLE* phNode);

/* Shortcuts: the look-up, then the function of node.h with verification. */
K_API K_STATUS_CODES K_CALL K_Camera_GetValueInt64(CAM_HANDLE hCamera, const char* name, int64_t* pValue);
K_API K_STATUS_CODES K_CALL K_Camera_SetValueInt64(CAM_HANDLE hCamera, const char* name, int64_t value);
K_API K_STATUS_CODES K_CALL K_Camera_GetValueDouble(CAM_HANDLE hCamera, const char* name, double* pValue);
K_API K_STATUS_CODES K_CALL K_Camera_SetValueDouble(CAM_HANDLE hCamera, const char* name, double value);
K_API K_STATUS_CODES K_CALL K_Camera_GetValueString(CAM_HANDLE hCamera, const char* name, char* buffer, uint32_t* pSize);
K_API K_STATUS_CODES K_CALL K_Camera_SetValueString(CAM_HANDLE hCamera, const char* name, const char* text);
K_API K_STATUS_CODES K_CALL K_Camera_ExecuteCommand(CAM_HANDLE hCamera, const char* name);

/** What K_Camera_GetConfigInfo can tell: the identity that the device description states. */
enum {
    K_CONFIG_INFO_MODEL_NAME = 0,
    K_CONFIG_INFO_VENDOR_NAME = 1,
    K_CONFIG_INFO_TOOL_TIP = 2,
    K_CONFIG_INFO_STANDARD_NAME_SPACE = 3,
    K_CONFIG_INFO_GENAPI_VERSION = 4, /* "major.minor.subminor build n" */
    K_CONFIG_INFO_SCHEMA_VERSION = 5,
    K_CONFIG_INFO_DEVICE_VERSION = 6,
    K_CONFIG_INFO_PRODUCT_GUID = 7,
    K_CONFIG_INFO_VERSION_GUID = 8
};
/** One of the above as a text, by the rule of node texts (node.h). */
K_API K_STATUS_CODES K_CALL K_Camera_GetConfigInfo(CAM_HANDLE hCamera, uint32_t info, char* buffer, uint32_t* pSize);
/** Forgets every cached value of the node map. */
K_API K_STATUS_CODES K_CALL K_Camera_InvalidateNodes(CAM_HANDLE hCamera);

/* Where a camera hangs. */
K_API K_STATUS_CODES K_CALL K_Camera_GetTLHandle(CAM_HANDLE hCamera, TRANSPORT_LAYER_HANDLE* phTransportLayer);
K_API K_STATUS_CODES K_CALL K_Camera_GetInterfaceHandle(CAM_HANDLE hCamera, INTERFACE_HANDLE* phInterface);
/** The transport type of the camera's producer, by the producer's text convention. Unlike the rule, a null camera is
 *  K_ST_INVALID_PARAMETER. */
K_API K_STATUS_CODES K_CALL K_Camera_GetTransportLayerName(CAM_HANDLE hCamera, char* buffer, uint32_t* pSize);
/** The producer's own DEV_HANDLE. */
K_API K_STATUS_CODES K_CALL K_Camera_GetLocalDeviceHandle(CAM_HANDLE hCamera, void** phDevice);

#endif
