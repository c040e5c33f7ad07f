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
/**
 * Stops, waits for the thread to leave its callback, and frees everything. From inside the callback it stops the stream at once;
 * only the image that the callback was given stays until it returns.
 *
 * A callback may keep the close waiting without limit, the producer may not: a call that it has not come back from within five
 * seconds is left to itself.
 */
K_API K_STATUS_CODES K_CALL K_Image_CloseStream(THRD_HANDLE hThread);
/** GenTL's STREAM_INFO_CMD on the stream. *pSize is copied back whatever the result. */
K_API K_STATUS_CODES K_CALL K_Image_GetStreamInfo(THRD_HANDLE hThread, int32_t infoCmd, void* buffer, uint32_t* pSize);
/** The producer's DS_HANDLE; null when the thread could not be started. */
K_API K_STATUS_CODES K_CALL K_Image_GetStreamHandle(THRD_HANDLE hThread, void** phStream);

/**
 * Starts and stops the acquisition of the stream in the producer, while the thread runs on: the producer's answer, with the
 * arguments as they are. Nothing is locked or unlocked, and the camera is not told. K_ST_INVALID_HANDLE for a handle without a
 * stream.
 */
K_API K_STATUS_CODES K_CALL K_Image_DSStartAcquisition(THRD_HANDLE hThread, int32_t flags, uint64_t count);
K_API K_STATUS_CODES K_CALL K_Image_DSStopAcquisition(THRD_HANDLE hThread, int32_t flags);

/**
 * A feature of the camera by name: executed, or read and written as an integer, with verification. The same as
 * K_Camera_ExecuteCommand, K_Camera_GetValueInt64 and K_Camera_SetValueInt64.
 */
K_API K_STATUS_CODES K_CALL K_Image_DSExecuteCommand(CAM_HANDLE hCamera, const char* featureName);
K_API K_STATUS_CODES K_CALL K_Image_DSGetValueInt64(CAM_HANDLE hCamera, const char* featureName, int64_t* pValue);
K_API K_STATUS_CODES K_CALL K_Image_DSSetValueInt64(CAM_HANDLE hCamera, const char* featureName, int64_t value);

/**
 * The factors by which the stream shows the colours of its images, in units of 1/4096 (4096 at first). They do not touch the
 * images that callbacks get. From any thread; an image that is being shown may use some of the new ones.
 */
K_API K_STATUS_CODES K_CALL K_Image_SetGain(THRD_HANDLE hThread, uint32_t red, uint32_t green, uint32_t blue);
K_API K_STATUS_CODES K_CALL K_Image_GetGain(THRD_HANDLE hThread, uint32_t* pRed, uint32_t* pGreen, uint32_t* pBlue);
/**
 * Asks for gains of red and blue with which the next image is white in its middle ninth. The stream thread sets them before it
 * shows that image, or calls a callback without a context; streams whose callback has a context do not heed it. An image without
 * any of the three colours leaves the gains as they are.
 */
K_API K_STATUS_CODES K_CALL K_Image_ExecuteWhiteBalance(THRD_HANDLE hThread);

/**
 * GenTL's BUFFER_INFO_CMD on the buffer that the callback is being given: whether the image is incomplete
 * (BUFFER_INFO_IS_INCOMPLETE), how many bytes came (BUFFER_INFO_SIZE_FILLED), and whatever else the record does not hold.
 * Only inside the callback, on its thread; K_ST_NOT_AVAILABLE elsewhere. *pSize is copied back whatever the result.
 */
K_API K_STATUS_CODES K_CALL K_Image_GetBufferInfo(THRD_HANDLE hThread, int32_t infoCmd, void* buffer, uint32_t* pSize);
/**
 * When the producer handed over the buffer that the callback is being given: the moment at which its new-buffer event reached the
 * stream thread, in nanoseconds of the system's steady clock (POSIX: CLOCK_MONOTONIC; C++: std::chrono::steady_clock). What the
 * clock shows at the start of the callback, less this, is the library's own part of the latency.
 * Only inside the callback, on its thread; K_ST_NOT_AVAILABLE elsewhere.
 */
K_API K_STATUS_CODES K_CALL K_Image_GetEventTime(THRD_HANDLE hThread, uint64_t* pNanoseconds);

/**
 * What became of a stream's buffers. Each buffer that the producer delivered is counted once, as delivered, skipped or discarded;
 * each image that never came, as lost or among the missing ids.
 */
typedef struct K_STREAM_STATISTICS {
    uint64_t delivered;        /**< images for which the callback was called (or would have been, had there been one) */
    uint64_t incomplete;       /**< of those: the producer says that a part is missing */
    uint64_t skipped;          /**< buffers without an address, a size, a width or a height, or outside the announced memory */
    uint64_t discarded;        /**< buffers that came while the stream was being closed */
    uint64_t requeue_failures; /**< times that the producer refused to take a buffer back; it is offered again later */
    uint64_t lost;             /**< images for which the producer had no buffer; 0 when it does not tell */
    uint64_t missing_ids;      /**< gaps in the sequence of frame ids that skipped buffers do not explain */
} K_STREAM_STATISTICS;

/** From any thread, also inside the callback. A handle without a stream has only zeros; after the camera is closed they stay. */
K_API K_STATUS_CODES K_CALL K_Image_GetStreamStatistics(THRD_HANDLE hThread, K_STREAM_STATISTICS* pStatistics);

#endif
