/* The factory: finds the producers that the registry file lists, binds them, and keeps the list of cameras.
 *
 * One factory at a time is the normal use: a GenTL producer can be opened once in a process.
 *
 * Threads. Any. An update of the camera list holds the factory while producers search (up to 200 ms for each interface): other
 * calls on the factory, and the opening of cameras, wait for it; cameras that are open go on. K_Factory_Close must not be called
 * while another thread uses the factory or anything that came from it. The error record is one for the process: what a thread
 * reads there is whole, but may be a later error of another thread.
 */
#ifndef KIV_FACTORY_API_H
#define KIV_FACTORY_API_H

#include <kiv/types.h>

/**
 * Opens the factory on a registry file. Producers are bound later, by the first camera-list update.
 *
 * registryPath: macros such as $(KIV_SDK_DATA) are expanded from the environment. A path that is null, empty or cannot be opened
 * falls back to "$(KIV_SDK_DATA)\Registry_64.xml", then "$(KIV_SDK_BIN_64)\Registry.xml"; unset, these name the data and program
 * folders beside this library. phFactory:    set to null first. Also filled with K_ST_NO_DATA: the caller then still closes it.
 * Returns K_ST_INVALID_PARAMETER (no registry file opens), K_ST_NO_DATA (the registry lists no producer or cannot be read),
 * K_ST_INVALID_ADDRESS (no factory could be made).
 */
K_API K_STATUS_CODES K_CALL K_Factory_Open(const char* registryPath, FACTORY_HANDLE* phFactory);

/** Closes the factory and with it every producer. Cameras must be closed before: their handles are dead afterwards. */
K_API K_STATUS_CODES K_CALL K_Factory_Close(FACTORY_HANDLE hFactory);

/**
 * A fixed fact: 0 product version, 1 build date, 2 build time, 3 maker tag. Another number writes nothing.
 * Unlike other texts: no capacity check (the buffer must hold the text), and a null buffer is a success that reports the size.
 */
K_API K_STATUS_CODES K_CALL K_Factory_GetInfo(uint32_t infoId, char* buffer, uint32_t* pSize);

/** Binds producers that are not bound yet and lists their cameras anew. *pChanged tells whether the list differs. */
K_API K_STATUS_CODES K_CALL K_Factory_UpdateCameraList(FACTORY_HANDLE hFactory, bool8_kiv* pChanged);

/** The number of cameras in the list; the first call makes the list. */
K_API K_STATUS_CODES K_CALL K_Factory_GetNumOfCameras(FACTORY_HANDLE hFactory, uint32_t* pNum);

/** The identifier of one camera: "TL=>" producer key " , INT=>" interface id " , DEV=>" device id. */
K_API K_STATUS_CODES K_CALL K_Factory_GetCameraIDByIndex(FACTORY_HANDLE hFactory, uint32_t index, char* buffer, uint32_t* pSize);

/**
 * One fact about a camera that need not be open, asked of its producer.
 *
 * infoCmd: 1 vendor, 2 model, 6 and 7 GenTL's numbers 6 (user defined name) and 7 (serial number), 1001 and 1002
 * producer-specific, 1003 the device part of the identifier (copied without a capacity check), anything else the device id. Texts
 * follow the producer's own convention: a null buffer asks for the size.
 */
K_API K_STATUS_CODES K_CALL K_Factory_GetCameraInfo(FACTORY_HANDLE hFactory, const char* cameraId, uint32_t infoCmd, char* buffer,
                                                    uint32_t* pSize);

/**
 * Whether a camera that need not be open could be opened now: GenTL's DEVICE_ACCESS_STATUS, 1 free, 2 free for reading only, 3
 * not reachable, 4 open elsewhere, 5 and 6 open in this process, 0 not known. The producer's status when it does not tell.
 */
K_API K_STATUS_CODES K_CALL K_Factory_GetCameraAccess(FACTORY_HANDLE hFactory, const char* cameraId, int32_t* pAccess);

/** Copies the record of the last GenICam error of the process. It is not cleared. */
K_API K_STATUS_CODES K_CALL K_Factory_GetGenICamErrorInfo(K_GC_ERROR_INFO* pInfo);

/** Whether GigE Vision interfaces are told, with every update, to force valid addresses onto devices (1 at first, 0 not). */
K_API K_STATUS_CODES K_CALL K_Factory_EnableForceIp(FACTORY_HANDLE hFactory, uint32_t enable);

/** Broadcasts an action command through every producer that has the extension; the last two arguments are the producer's. What
 * the producers answer is not looked at. */
K_API K_STATUS_CODES K_CALL K_Factory_SendActionCommand(FACTORY_HANDLE hFactory, uint32_t deviceKey, uint32_t groupKey,
                                                        uint32_t groupMask, void* argument1, void* argument2);

/** What became of one producer that the registry lists. */
typedef struct K_PRODUCER_REPORT {
    char sKey[512];        /**< the key in camera identifiers */
    char sPath[4096];      /**< the file, as far as it was found */
    char sVendor[256];     /**< empty unless bound */
    char sTLType[256];     /**< transport type, empty unless bound */
    K_STATUS_CODES status; /**< 0: bound */
    uint32_t disabled;     /**< 1: the registry switches it off */
    char sReason[1024];    /**< why it was refused or skipped */
} K_PRODUCER_REPORT;

/** The report of the last discovery about registry element `index`; K_ST_INVALID_PARAMETER past the last one. */
K_API K_STATUS_CODES K_CALL K_Factory_GetProducerReport(FACTORY_HANDLE hFactory, uint32_t index, K_PRODUCER_REPORT* pReport);

#endif
