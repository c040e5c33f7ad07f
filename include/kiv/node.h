/* Nodes: everything that a feature knows about itself, and its value.
 *
 * A NODE_HANDLE is any GenApi interface pointer of a node (INode, IValue, IInteger ...): the functions find their way from there.
 *
 * Order of checks: null node K_ST_INVALID_HANDLE; null result K_ST_INVALID_PARAMETER; a handle that is no node, or a node that
 * lacks the interface that the call needs, K_ST_INVALID_PARAMETER; a GenICam error K_ST_GC_ERROR.
 *
 * Texts of nodes: a buffer that is too small receives the first *size - 1 bytes and a terminator, *size becomes the
 * size that is needed, and the call returns K_ST_INVALID_BUFFER_SIZE. With *size 0 nothing is written.
 *
 * Booleans are 0 or 1; enumerated properties carry GenApi's numbers (GenApi/Types.h).
 *
 * Threads. Any. A call on a value, an access mode or a cache holds the lock of its node map until it is done, register accesses
 * included: calls on one map come one after the other, calls on different maps do not wait for each other. Names, types, entries
 * and selector links never change and need no lock. Callbacks run inside the lock, on the thread that made the change,
 * when its call is done with the node. They may call back into the same map; they must not wait for another thread that uses it,
 * and must not close what the map belongs to.
 */
#ifndef KIV_NODE_API_H
#define KIV_NODE_API_H

#include <kiv/types.h>

/** What K_Node_GetType tells. */
typedef enum K_NODE_TYPE {
    K_NODE_TYPE_UNKNOWN = 1,
    K_NODE_TYPE_NODE = 100,
    K_NODE_TYPE_CATEGORY = 101,
    K_NODE_TYPE_INTEGER = 102,
    K_NODE_TYPE_ENUMERATION = 103,
    K_NODE_TYPE_ENUM_ENTRY = 104,
    K_NODE_TYPE_MASKED_INT_REG = 105,
    K_NODE_TYPE_REGISTER = 106,
    K_NODE_TYPE_INT_REG = 107,
    K_NODE_TYPE_FLOAT = 108,
    K_NODE_TYPE_FLOAT_REG = 109,
    K_NODE_TYPE_SWISS_KNIFE = 110,
    K_NODE_TYPE_INT_SWISS_KNIFE = 111,
    K_NODE_TYPE_INT_KEY = 112,
    K_NODE_TYPE_TEXT_DESC = 113,
    K_NODE_TYPE_PORT = 114,
    K_NODE_TYPE_CONF_ROM = 115,
    K_NODE_TYPE_ADV_FEATURE_LOCK = 116,
    K_NODE_TYPE_SMART_FEATURE = 117,
    K_NODE_TYPE_STRING_REG = 118, /* String nodes too */
    K_NODE_TYPE_BOOLEAN = 119,
    K_NODE_TYPE_COMMAND = 120,
    K_NODE_TYPE_CONVERTER = 121,
    K_NODE_TYPE_INT_CONVERTER = 122,
    K_NODE_TYPE_CHUNK_PORT = 123,
    K_NODE_TYPE_NODE_MAP = 124,
    K_NODE_TYPE_NODE_MAP_DYN = 125,
    K_NODE_TYPE_DEVICE_INFO = 126,
    K_NODE_TYPE_SELECTOR = 127,
    K_NODE_TYPE_PORT_CONSTRUCT = 128
} K_NODE_TYPE;

/* Identity and texts. */
K_API K_STATUS_CODES K_CALL K_Node_GetName(NODE_HANDLE hNode, char* buffer, uint32_t* pSize, int32_t fullQualified);
K_API K_STATUS_CODES K_CALL K_Node_GetNameSpace(NODE_HANDLE hNode, uint32_t* pNameSpace);
K_API K_STATUS_CODES K_CALL K_Node_GetToolTip(NODE_HANDLE hNode, char* buffer, uint32_t* pSize);
K_API K_STATUS_CODES K_CALL K_Node_GetDescription(NODE_HANDLE hNode, char* buffer, uint32_t* pSize);
K_API K_STATUS_CODES K_CALL K_Node_GetDisplayName(NODE_HANDLE hNode, char* buffer, uint32_t* pSize);
K_API K_STATUS_CODES K_CALL K_Node_GetEventID(NODE_HANDLE hNode, char* buffer, uint32_t* pSize);
K_API K_STATUS_CODES K_CALL K_Node_GetDocuURL(NODE_HANDLE hNode, char* buffer, uint32_t* pSize);
K_API K_STATUS_CODES K_CALL K_Node_GetType(NODE_HANDLE hNode, uint32_t* pType);

/* Access, visibility, caching. */
K_API K_STATUS_CODES K_CALL K_Node_GetAccessMode(NODE_HANDLE hNode, uint32_t* pMode);
K_API K_STATUS_CODES K_CALL K_Node_GetVisibility(NODE_HANDLE hNode, uint32_t* pVisibility);
K_API K_STATUS_CODES K_CALL K_Node_GetIsCachable(NODE_HANDLE hNode, uint32_t* pCachable);
K_API K_STATUS_CODES K_CALL K_Node_GetCachingMode(NODE_HANDLE hNode, uint32_t* pMode);
/** Milliseconds, -1 when the node is not polled. */
K_API K_STATUS_CODES K_CALL K_Node_GetPollingTime(NODE_HANDLE hNode, int64_t* pTime);
K_API K_STATUS_CODES K_CALL K_Node_GetIsStreamable(NODE_HANDLE hNode, uint32_t* pStreamable);
K_API K_STATUS_CODES K_CALL K_Node_GetIsDeprecated(NODE_HANDLE hNode, uint32_t* pDeprecated);
/** Narrows the access mode or the visibility; the number is GenApi's and is handed on as it is. */
K_API K_STATUS_CODES K_CALL K_Node_ImposeAccessMode(NODE_HANDLE hNode, uint32_t mode);
K_API K_STATUS_CODES K_CALL K_Node_ImposeVisibility(NODE_HANDLE hNode, uint32_t visibility);

/* Aliases. The alias node's handle, or null with success (GetAlias). The typed ones answer K_ST_INVALID_PARAMETER and null when
   there is none of that type. */
K_API K_STATUS_CODES K_CALL K_Node_GetAlias(NODE_HANDLE hNode, NODE_HANDLE* phAlias);
K_API K_STATUS_CODES K_CALL K_Node_GetIntAlias(NODE_HANDLE hNode, NODE_HANDLE* phAlias);
K_API K_STATUS_CODES K_CALL K_Node_GetEnumAlias(NODE_HANDLE hNode, NODE_HANDLE* phAlias);
K_API K_STATUS_CODES K_CALL K_Node_GetFloatAlias(NODE_HANDLE hNode, NODE_HANDLE* phAlias);

/* How a number wants to be shown. */
K_API K_STATUS_CODES K_CALL K_Node_GetUnit(NODE_HANDLE hNode, char* buffer, uint32_t* pSize);
K_API K_STATUS_CODES K_CALL K_Node_GetRepresentation(NODE_HANDLE hNode, uint32_t* pRepresentation);
K_API K_STATUS_CODES K_CALL K_Node_GetDisplayNotation(NODE_HANDLE hNode, uint32_t* pNotation);
K_API K_STATUS_CODES K_CALL K_Node_GetDisplayPrecision(NODE_HANDLE hNode, int64_t* pDigits);

/* Properties: the children of the node's element in the description. An unknown name gives two empty texts and success. */
K_API K_STATUS_CODES K_CALL K_Node_GetNumOfProperties(NODE_HANDLE hNode, uint32_t* pCount);
K_API K_STATUS_CODES K_CALL K_Node_GetPropertyNameByIndex(NODE_HANDLE hNode, uint32_t index, char* buffer, uint32_t* pSize);
K_API K_STATUS_CODES K_CALL K_Node_GetPropertyByName(NODE_HANDLE hNode, const char* name, char* value, uint32_t* pValueSize,
                                                     char* attribute, uint32_t* pAttributeSize);

/* Selectors. */
K_API K_STATUS_CODES K_CALL K_Node_GetIsSelector(NODE_HANDLE hNode, uint32_t* pIsSelector);
K_API K_STATUS_CODES K_CALL K_Node_GetNumOfSelectedFeatures(NODE_HANDLE hNode, uint32_t* pCount);
K_API K_STATUS_CODES K_CALL K_Node_GetSelectedFeatureByIndex(NODE_HANDLE hNode, uint32_t index, NODE_HANDLE* phFeature);
K_API K_STATUS_CODES K_CALL K_Node_GetNumOfSelectingFeatures(NODE_HANDLE hNode, uint32_t* pCount);
K_API K_STATUS_CODES K_CALL K_Node_GetSelectingFeatureByIndex(NODE_HANDLE hNode, uint32_t index, NODE_HANDLE* phFeature);

/* Values. Int64: integers, enumerations (their integer value), booleans. Double: floats only. String: every node with a value. */
K_API K_STATUS_CODES K_CALL K_Node_GetValueInt64(NODE_HANDLE hNode, bool8_kiv verify, int64_t* pValue);
K_API K_STATUS_CODES K_CALL K_Node_SetValueInt64(NODE_HANDLE hNode, bool8_kiv verify, int64_t value);
K_API K_STATUS_CODES K_CALL K_Node_GetValueDouble(NODE_HANDLE hNode, bool8_kiv verify, double* pValue);
K_API K_STATUS_CODES K_CALL K_Node_SetValueDouble(NODE_HANDLE hNode, bool8_kiv verify, double value);
K_API K_STATUS_CODES K_CALL K_Node_GetValueString(NODE_HANDLE hNode, bool8_kiv verify, char* buffer, uint32_t* pSize);
/** Enumerations: an entry's display name is tried first, then the symbolic names. Booleans: true, True, TRUE, 1, on, On and ON
 * are true, everything else is false. Others: the text form of the node. */
K_API K_STATUS_CODES K_CALL K_Node_SetValueString(NODE_HANDLE hNode, bool8_kiv verify, const char* text);

/* Limits. */
K_API K_STATUS_CODES K_CALL K_Node_GetMinInt64(NODE_HANDLE hNode, int64_t* pMin);
K_API K_STATUS_CODES K_CALL K_Node_GetMaxInt64(NODE_HANDLE hNode, int64_t* pMax);
K_API K_STATUS_CODES K_CALL K_Node_GetInc(NODE_HANDLE hNode, int64_t* pInc);
K_API K_STATUS_CODES K_CALL K_Node_GetMinDouble(NODE_HANDLE hNode, double* pMin);
K_API K_STATUS_CODES K_CALL K_Node_GetMaxDouble(NODE_HANDLE hNode, double* pMax);
K_API K_STATUS_CODES K_CALL K_Node_GetFloatHasInc(NODE_HANDLE hNode, uint32_t* pHasInc);
K_API K_STATUS_CODES K_CALL K_Node_GetFloatInc(NODE_HANDLE hNode, double* pInc);

/* Commands, cache. */
K_API K_STATUS_CODES K_CALL K_Node_ExecuteCommand(NODE_HANDLE hNode);
K_API K_STATUS_CODES K_CALL K_Node_GetCommandIsDone(NODE_HANDLE hNode, uint32_t* pIsDone);
K_API K_STATUS_CODES K_CALL K_Node_Invalidate(NODE_HANDLE hNode);

/* Enumeration entries: all of them, available or not, in the description's order. */
K_API K_STATUS_CODES K_CALL K_Node_GetNumOfEnumEntries(NODE_HANDLE hNode, uint32_t* pCount);
K_API K_STATUS_CODES K_CALL K_Node_GetEnumEntryByIndex(NODE_HANDLE hNode, uint32_t index, NODE_HANDLE* phEntry);
K_API K_STATUS_CODES K_CALL K_Node_GetEnumEntryValue(NODE_HANDLE hNode, int64_t* pValue);

/* Raw registers: bytes in device order. */
K_API K_STATUS_CODES K_CALL K_Node_GetValueRegister(NODE_HANDLE hNode, uint8_t* buffer, int64_t length);
K_API K_STATUS_CODES K_CALL K_Node_SetValueRegister(NODE_HANDLE hNode, const uint8_t* buffer, int64_t length);
K_API K_STATUS_CODES K_CALL K_Node_GetRegisterLength(NODE_HANDLE hNode, int64_t* pLength);
K_API K_STATUS_CODES K_CALL K_Node_GetRegisterAddress(NODE_HANDLE hNode, int64_t* pAddress);

/** Called after the node's value may have changed, inside the node map's lock, on the thread that changed it. */
typedef void(K_CALL* K_NODE_CALLBACK)(void* node);
/** Registers a callback for the life of the node map; registering twice calls twice. */
K_API K_STATUS_CODES K_CALL K_Node_RegisterCallback(NODE_HANDLE hNode, K_NODE_CALLBACK callback);

#endif
