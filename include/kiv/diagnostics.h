/* Diagnostics that are not returned: the debugger output. */
#ifndef KIV_DIAGNOSTICS_API_H
#define KIV_DIAGNOSTICS_API_H

#include <kiv/types.h>

/** Receives one diagnostic text (UTF-8, usually with its own line end), on whatever thread it arises. It must not block. */
typedef void(K_CALL* K_DEBUG_OUTPUT_CALLBACK)(void* context, const char* text);

/**
 * Sends the debugger output of this library to a callback instead; null gives the system's own back. The system's own is
 * OutputDebugString on Windows; elsewhere it is silent unless KIV_DEBUG_OUTPUT=1 sends it to the standard error stream.
 */
K_API K_STATUS_CODES K_CALL K_SetDebugOutput(K_DEBUG_OUTPUT_CALLBACK callback, void* context);

#endif
