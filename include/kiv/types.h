/* The types and the calling rules that all functions of Kiv_Factory share.
 *
 * Status. Every function returns a K_STATUS_CODES; 0 is success. The values -1001 and below are those of the GenTL standard:
 * a producer's own status is handed on unchanged. Values from -10001 downward are the library's own.
 *
 * Handles are pointers to objects that the library owns. A handle that is null, closed, or of another kind gives
 * K_ST_INVALID_HANDLE. It is released only by the close call of its kind. NODE_HANDLEs are borrowed: they live as long as the
 * node map that they came from and are never released.
 *
 * Order of checks. Handles first (K_ST_INVALID_HANDLE), then the producer's entry point that the call needs
 * (K_ST_NOT_IMPLEMENTED), then result pointers and other arguments (K_ST_INVALID_PARAMETER). A function that departs from this
 * order says so. Results are written on success only, unless a function says otherwise.
 *
 * Texts. `buffer` and `size`: on entry *size is the capacity of the buffer in bytes, on return it is the length of the text
 * plus one. A buffer that is null or too small gives K_ST_INVALID_BUFFER_SIZE and the size that is needed; nothing is copied.
 * Texts of nodes (K_Node_...) follow a variant: see node.h.
 *
 * Errors. K_ST_GC_ERROR means that the GenICam layer raised an error; K_Factory_GetGenICamErrorInfo tells its text and node.
 *
 * Threads. Any function may be called from any thread, also from callbacks. What two calls on one camera's features have in
 * common is the lock of its node map, which each holds until it is done; a slow camera never delays another one. A handle must
 * not be closed while another thread is inside a call on it, unless its close says that it may. Each header says more.
 */
#ifndef KIV_TYPES_H
#define KIV_TYPES_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#define K_CALL __stdcall
#if defined(KIV_FACTORY_BUILD)
#define K_EXPORT __declspec(dllexport)
#else
#define K_EXPORT __declspec(dllimport)
#endif
#else
#define K_CALL
#define K_EXPORT __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
#define K_API extern "C" K_EXPORT
typedef bool bool8_kiv;
#else
#define K_API extern K_EXPORT
typedef uint8_t bool8_kiv;
#endif

typedef int32_t K_STATUS_CODES;

enum {
    K_ST_SUCCESS = 0,
    K_ST_ERROR = -1001, /* unspecified failure */
    K_ST_NOT_INITIALIZED = -1002,
    K_ST_NOT_IMPLEMENTED = -1003, /* the producer lacks the entry point, or could not be bound */
    K_ST_RESOURCE_IN_USE = -1004,
    K_ST_ACCESS_DENIED = -1005,
    K_ST_INVALID_HANDLE = -1006,
    K_ST_INVALID_ID = -1007, /* a camera identifier that is null or lacks one of its parts */
    K_ST_NO_DATA = -1008,
    K_ST_INVALID_PARAMETER = -1009,
    K_ST_IO = -1010,
    K_ST_TIMEOUT = -1011,
    K_ST_ABORT = -1012,
    K_ST_INVALID_BUFFER_SIZE = -1013, /* the caller's buffer is too small */
    K_ST_NOT_AVAILABLE = -1014,
    K_ST_INVALID_ADDRESS = -1015,
    K_ST_SETTINGS_FILE_ERROR = -10001,
    K_ST_GC_ERROR = -10002, /* a GenICam error; its text is in the error record */
    K_ST_VALIDATION_ERROR = -10003,
    K_ST_VALIDATION_WARNING = -10004,
    /* never returned; recognised when a register transfer reports them */
    K_ST_INVALID_FILENAME = -9,
    K_ST_FILE_IO = -11
};

typedef struct K_FACTORY* FACTORY_HANDLE;                 /* K_Factory_Open ... K_Factory_Close */
typedef struct K_CAMERA* CAM_HANDLE;                      /* K_Camera_Open... ... K_Camera_Close */
typedef struct K_NODE* NODE_HANDLE;                       /* borrowed from a node map */
typedef struct K_STREAM* STREAM_HANDLE;                   /* K_Camera_CreateDataStream ... K_DataStream_Close */
typedef struct K_EVENT* EVT_HANDLE;                       /* K_..._RegisterEvent ... K_Event_Close */
typedef struct K_CONDITION* EVT_CONDITION_HANDLE;         /* K_Event_CreateCondition ... K_Event_CloseCondition */
typedef void* BUF_HANDLE;                                 /* the producer's own buffer handle */
typedef struct K_THREAD* THRD_HANDLE;                     /* K_Image_OpenStream... ... K_Image_CloseStream */
typedef struct K_VIEW* VIEW_HANDLE;                       /* K_Image_OpenViewWindow... ... K_Image_CloseViewWindow */
typedef struct K_TRANSPORT_LAYER* TRANSPORT_LAYER_HANDLE; /* a bound producer; belongs to the factory */
typedef struct K_INTERFACE* INTERFACE_HANDLE;             /* an opened interface; belongs to its producer */

/** The last GenICam error of the process, of whatever thread. */
typedef struct K_GC_ERROR_INFO {
    char sDescription[1024]; /**< what went wrong */
    char sNodeName[128];     /**< the node that was involved, or an empty text */
} K_GC_ERROR_INFO;

#endif
