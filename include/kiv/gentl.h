/* The GenTL module tree itself: transport layers (bound producers), interfaces, descriptions. */
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
/** Whether the producer's transport type is GigE Vision. */
K_API K_STATUS_CODES K_CALL K_Is_GigE_Transport_Layer(TRANSPORT_LAYER_HANDLE hTransportLayer, bool8_kiv* pIsGigE);

/**
 * The GenICam description (XML) of a module as a text.
 *
 * hModule: the transport layer itself, a camera (its remote device), or a producer's own module handle.
 * hOther:  must not be null; otherwise unused.
 * buffer:  null asks for the size, which then does NOT count the terminator; a copy needs one byte more and follows the rule of
 *          node texts (node.h). This off-by-one is kept: callers rely on it.
 */
K_API K_STATUS_CODES K_CALL K_GenTL_Module_GetXmlString(TRANSPORT_LAYER_HANDLE hTransportLayer, void* hModule, void* hOther,
                                                        char* buffer, uint32_t* pSize);

#endif
