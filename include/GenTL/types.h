/* Handles, numbers, constants and records of the GenTL 1.5 C interface.
 *
 * Everything below include/GenTL describes the binary interface between a consumer (this library) and a producer (a .cti file).
 * Values, sizes and offsets are fixed by the standard; nothing may be renumbered. In C++ all names live in the namespace GenTL.
 *
 * Types of enumerations are int32_t, with the values in an enum ..._LIST beside them: producers add values of their own from
 * ..._CUSTOM_ID upward, which a C enum could not hold portably.
 */
#ifndef GENTL_TYPES_H
#define GENTL_TYPES_H

#include <stddef.h>
#include <stdint.h>

#define GenTLMajorVersion 1
#define GenTLMinorVersion 5
#define GenTLSubMinorVersion 0
#define GenTL_version_code(major, minor, subminor) (((major) << 24) + ((minor) << 16) + (subminor))
#define GenTLVersionCode GenTL_version_code(GenTLMajorVersion, GenTLMinorVersion, GenTLSubMinorVersion)

#if defined(_WIN32)
#define GC_CALLTYPE __stdcall
#if defined(GENTL_PRODUCER)
#define GC_IMPORT_EXPORT __declspec(dllexport)
#else
#define GC_IMPORT_EXPORT __declspec(dllimport)
#endif
#else
#if defined(__i386__)
#define GC_CALLTYPE __attribute__((stdcall))
#else
#define GC_CALLTYPE
#endif
#define GC_IMPORT_EXPORT __attribute__((visibility("default")))
#endif

/* For the definitions in a producer: GC_API GCInitLib(void) { ... } */
#define GC_API GC_IMPORT_EXPORT GC_ERROR GC_CALLTYPE

/* Transport type texts, as TL_INFO_TLTYPE and its relatives answer. */
#define TLTypeMixedName "Mixed"
#define TLTypeCustomName "Custom"
#define TLTypeGEVName "GEV"
#define TLTypeCLName "CL"
#define TLTypeIIDCName "IIDC"
#define TLTypeUVCName "UVC"
#define TLTypeCXPName "CXP"
#define TLTypeCLHSName "CLHS"
#define TLTypeU3VName "U3V"
#define TLTypeETHERNETName "Ethernet"
#define TLTypePCIName "PCI"

#ifdef __cplusplus
namespace GenTL {
extern "C" {
#endif

#ifdef __cplusplus
typedef bool bool8_t;
#else
typedef uint8_t bool8_t;
#endif

/* A handle is the producer's business: a consumer stores it and hands it back, and never looks inside. PORT_HANDLE takes any
 * module handle or the one from DevGetPort; EVENTSRC_HANDLE takes any module handle, but not the one from DevGetPort. */
typedef void* TL_HANDLE;
typedef void* IF_HANDLE;
typedef void* DEV_HANDLE;
typedef void* DS_HANDLE;
typedef void* BUFFER_HANDLE;
typedef void* EVENT_HANDLE;
typedef void* PORT_HANDLE;
typedef void* EVENTSRC_HANDLE;

#define GENTL_INVALID_HANDLE NULL
#define GENTL_INFINITE 0xFFFFFFFFFFFFFFFFULL /* no time limit; no limit of images */

#pragma pack(push, 1)

/* What EventGetData writes for an EVENT_NEW_BUFFER. */
typedef struct S_EVENT_NEW_BUFFER {
    BUFFER_HANDLE BufferHandle; /* the delivered buffer; the consumer's until it is queued again */
    void* pUserPointer;         /* the private pointer given when the buffer was announced */
} EVENT_NEW_BUFFER_DATA;

/* One transfer of GCReadPortStacked or GCWritePortStacked. */
typedef struct S_PORT_REGISTER_STACK_ENTRY {
    uint64_t Address;
    void* pBuffer;
    size_t Size; /* bytes */
} PORT_REGISTER_STACK_ENTRY;

/* Where the data of one chunk lies inside its buffer. */
typedef struct S_SINGLE_CHUNK_DATA {
    uint64_t ChunkID;
    ptrdiff_t ChunkOffset; /* bytes from the buffer's base */
    size_t ChunkLength;    /* bytes, without the trailer */
} SINGLE_CHUNK_DATA;

#pragma pack(pop)

#ifdef __cplusplus
static_assert(sizeof(bool8_t) == 1, "written through pointers to one byte");
static_assert(sizeof(EVENT_NEW_BUFFER_DATA) == 2 * sizeof(void*), "layout fixed by the standard");
static_assert(offsetof(EVENT_NEW_BUFFER_DATA, pUserPointer) == sizeof(void*), "layout fixed by the standard");
static_assert(sizeof(PORT_REGISTER_STACK_ENTRY) == 8 + 2 * sizeof(void*), "layout fixed by the standard");
static_assert(offsetof(PORT_REGISTER_STACK_ENTRY, pBuffer) == 8, "layout fixed by the standard");
static_assert(offsetof(PORT_REGISTER_STACK_ENTRY, Size) == 8 + sizeof(void*), "layout fixed by the standard");
static_assert(sizeof(SINGLE_CHUNK_DATA) == 8 + 2 * sizeof(void*), "layout fixed by the standard");
static_assert(offsetof(SINGLE_CHUNK_DATA, ChunkOffset) == 8, "layout fixed by the standard");
static_assert(offsetof(SINGLE_CHUNK_DATA, ChunkLength) == 8 + sizeof(void*), "layout fixed by the standard");

}  // extern "C"
}  // namespace GenTL
#endif

#endif
