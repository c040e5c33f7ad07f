/* The image stream: a ring of buffers, a thread that acquires into it, and a callback for each image. */
#ifndef KIV_IMAGE_API_H
#define KIV_IMAGE_API_H

#include <kiv/image_info.h>
#include <kiv/types.h>

/**
 * Called on the stream thread for each image; the next image waits meanwhile (the producer goes on filling the ring).
 * With a context it is called as K_IMAGE_CONTEXT_CALLBACK, without one as K_IMAGE_CALLBACK. The image belongs to the stream
 * again when the callback returns.
 */
typedef void(K_CALL* K_IMAGE_CALLBACK)(K_IMAGE_INFO* image);
typedef void(K_CALL* K_IMAGE_CONTEXT_CALLBACK)(void* context, K_IMAGE_INFO* image);

/**
 * Opens a stream of a camera, announces a ring of at most 10 buffers of bufferSize bytes (aligned to 16), starts the
 * acquisition in the producer and runs the stream thread. The camera itself is started by its AcquisitionStart command, after
 * this call.
 *
 * streamIndex: which stream, for producers with the multicast extension; others open their first one.
 * context:     first argument of the callback, or null.
 * callback:    a K_IMAGE_CONTEXT_CALLBACK (with a context) or a K_IMAGE_CALLBACK (without), cast to void (*)(void); or null.
 * phThread:    also filled when the thread could not be started: such a handle has no stream (its K_Image_GetStreamHandle gives
 *              null) and is closed like any other.
 * Returns K_ST_INVALID_HANDLE for a camera that is not open, and when the stream's own node map cannot be built.
 */
K_API K_STATUS_CODES K_CALL K_Image_OpenStream(CAM_HANDLE hCamera, uint32_t streamIndex, void* context, void (*callback)(void),
                                               THRD_HANDLE* phThread, uint32_t bufferSize, uint32_t multicast);
/** The same without a callback (display only), with buffers of the camera's PayloadSize. */
K_API K_STATUS_CODES K_CALL K_Image_OpenStreamLight(CAM_HANDLE hCamera, uint32_t streamIndex, THRD_HANDLE* phThread);
/** Stops, waits for the thread to leave its callback, and frees everything. Not from inside the callback. */
K_API K_STATUS_CODES K_CALL K_Image_CloseStream(THRD_HANDLE hThread);
/** GenTL's STREAM_INFO_CMD on the stream. *pSize is copied back whatever the result. */
K_API K_STATUS_CODES K_CALL K_Image_GetStreamInfo(THRD_HANDLE hThread, int32_t infoCmd, void* buffer, uint32_t* pSize);
/** The producer's DS_HANDLE; null when the thread could not be started. */
K_API K_STATUS_CODES K_CALL K_Image_GetStreamHandle(THRD_HANDLE hThread, void** phStream);

#endif
