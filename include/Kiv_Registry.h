/* The registry of GenTL producers: which producers are known on this machine, and where their files are.
 *
 * A registry is an XML file that a person can write; docs/registry-file.md describes it. This library reads it and answers
 * questions about it by number. It never writes.
 *
 * Status. 0 is success; the other numbers are those of kiv/types.h. What went wrong in words, with file and line, is told by
 * K_Registry_GetLastError.
 *
 * Handles. A handle that is null, closed or of another kind gives K_ST_INVALID_HANDLE, never a crash. Each is released by its own
 * close call, in any order: an element list stays valid when its registry is closed before it.
 *
 * Texts are UTF-8 and follow the rule of kiv/types.h: on entry *pSize is the capacity of the buffer in bytes, on return the
 * length of the text plus one. A buffer that is null or too small gives K_ST_INVALID_BUFFER_SIZE and the size that is needed.
 *
 * Threads. Any function may be called from any thread. The file is read once, by K_Registry_Open; what it says later is seen by
 * the next K_Registry_Open.
 */
#ifndef KIV_REGISTRY_H
#define KIV_REGISTRY_H

#include <stdint.h>

#include "kiv/types.h"

#if !defined(_WIN32)
#define K_REGISTRY_EXPORT __attribute__((visibility("default")))
#elif defined(KIV_REGISTRY_BUILD)
#define K_REGISTRY_EXPORT __declspec(dllexport)
#else
#define K_REGISTRY_EXPORT __declspec(dllimport)
#endif

#ifdef __cplusplus
#define K_REGISTRY_API extern "C" K_REGISTRY_EXPORT
#else
#define K_REGISTRY_API extern K_REGISTRY_EXPORT
#endif

typedef struct K_REGISTRY* REGISTRY_HANDLE;         /* K_Registry_Open ... K_Registry_Close */
typedef struct K_ELEMENT_LIST* ELEMENT_LIST_HANDLE; /* K_Registry_OpenElementList ... K_ElementList_Close */

/** Kinds of element lists. */
enum {
    K_REGISTRY_LIST_PRODUCERS = 1 /**< the GenTL producers, in the order of the file */
};

/** Numbers of the data of a producer element. */
enum {
    K_REGISTRY_DATA_PATH = 1,    /**< the producer's file, see K_Registry_GetData */
    K_REGISTRY_DATA_KEY = 4,     /**< the text that names the producer, in camera identifiers among others */
    K_REGISTRY_DATA_ENABLED = 6, /**< "true" or "false"; a disabled producer is not used */
    K_REGISTRY_DATA_FLAG = 7     /**< "true" or "false"; handed on to whoever binds the producer */
};

/** Reads the registry file at `path`.
 *
 * K_ST_INVALID_PARAMETER: `path` or `phRegistry` is null. K_ST_IO: the file cannot be read or has more than 64 MiB. K_ST_ERROR:
 * the file is no registry file; K_Registry_GetLastError tells the line. *phRegistry is null unless the call succeeds. */
K_REGISTRY_API K_STATUS_CODES K_CALL K_Registry_Open(const char* path, REGISTRY_HANDLE* phRegistry);

K_REGISTRY_API K_STATUS_CODES K_CALL K_Registry_Close(REGISTRY_HANDLE hRegistry);

/** Opens the list of all elements of a kind, disabled ones included.
 *
 * K_ST_INVALID_PARAMETER: `phList` is null or there is no such kind. *phList is null unless the call succeeds. */
K_REGISTRY_API K_STATUS_CODES K_CALL K_Registry_OpenElementList(REGISTRY_HANDLE hRegistry, int32_t kind,
                                                                ELEMENT_LIST_HANDLE* phList);

K_REGISTRY_API K_STATUS_CODES K_CALL K_ElementList_Close(ELEMENT_LIST_HANDLE hList);

/** The number of elements, which may be 0. */
K_REGISTRY_API K_STATUS_CODES K_CALL K_ElementList_GetNumOfElements(ELEMENT_LIST_HANDLE hList, uint32_t* pCount);

/** The name by which K_Registry_GetData finds element `index`, counted from 0.
 *
 * It is unique in the registry: the element's key, and for an element whose key stood in the file before, the key followed by
 * "#2", "#3" and so on. K_ST_INVALID_PARAMETER: `pSize` is null or there is no such index. */
K_REGISTRY_API K_STATUS_CODES K_CALL K_ElementList_GetElementNameByIndex(ELEMENT_LIST_HANDLE hList, uint32_t index, char* buffer,
                                                                         uint32_t* pSize);

/** One datum (K_REGISTRY_DATA_...) of the element of that name, as text.
 *
 * In a path the references $(NAME) are replaced by the environment's values; those that the environment does not know stay as
 * they are. A relative path of a file that exists beside the registry file, or below its folder, comes back absolute. Any other
 * path comes back as it was written: a bare file name is meant to be searched by the caller, along GENICAM_GENTL64_PATH.
 *
 * K_ST_INVALID_PARAMETER: a null argument or an unknown `dataKey`. K_ST_INVALID_ID: no element has that name. */
K_REGISTRY_API K_STATUS_CODES K_CALL K_Registry_GetData(REGISTRY_HANDLE hRegistry, const char* elementName, int32_t dataKey,
                                                        char* buffer, uint32_t* pSize);

/** What went wrong in the calling thread's last failed call, in words; empty when none failed. */
K_REGISTRY_API K_STATUS_CODES K_CALL K_Registry_GetLastError(char* buffer, uint32_t* pSize);

#endif
