/* Chunk data: values that the camera appends to its images.
 *
 * A chunk feature of a camera ("ChunkTimestamp") reads from the buffer that was attached last; without one it is not available.
 * The image stream does all of this by itself, for the image that its callback is being given. Whoever acquires with buffers of
 * their own attaches each buffer: the first one, and each one whose chunk layout id (BUFFER_INFO_CHUNKLAYOUTID) differs from
 * that of the buffer before, by K_Camera_AttachChunkData, all others by K_Camera_UpdateChunkData.
 *
 * Threads. Nobody may read chunk features while another thread attaches, updates or detaches. The buffer is borrowed: it stays
 * the caller's and must live until the next one takes its place or K_Camera_DetachChunkData.
 */
#ifndef KIV_CHUNK_H
#define KIV_CHUNK_H

#include <kiv/types.h>

/** Where one chunk lies in its buffer: what K_DataStream_GetBufferChunkData reports, and the form of GenTL. */
typedef struct K_SINGLE_CHUNK_DATA {
    uint64_t chunk_id; /**< as the description knows it */
    int64_t offset;    /**< bytes, from the start of the buffer to the first byte of data */
    uint64_t length;   /**< bytes of data */
} K_SINGLE_CHUNK_DATA;

/**
 * Lays the chunks of a buffer under the camera's chunk features. The offsets are believed: they must lie within the buffer.
 *
 * Returns K_ST_INVALID_HANDLE for a camera, a buffer or a list that is null, K_ST_INVALID_PARAMETER for a camera without
 * features, K_ST_NOT_INITIALIZED for a count of 0 (from then on K_Camera_UpdateChunkData succeeds all the same), and K_ST_ERROR
 * when the list cannot be true.
 */
K_API K_STATUS_CODES K_CALL K_Camera_AttachChunkData(CAM_HANDLE hCamera, void* buffer, const K_SINGLE_CHUNK_DATA* chunks,
                                                     uint64_t count);
/**
 * The same chunk layout in another buffer.
 *
 * Returns K_ST_INVALID_HANDLE for a camera or a buffer that is null, K_ST_INVALID_PARAMETER before the first
 * K_Camera_AttachChunkData, K_ST_ERROR when the buffer cannot be used.
 */
K_API K_STATUS_CODES K_CALL K_Camera_UpdateChunkData(CAM_HANDLE hCamera, void* buffer);
/** Ends it: chunk features are not available any more. A success also when nothing was attached. */
K_API K_STATUS_CODES K_CALL K_Camera_DetachChunkData(CAM_HANDLE hCamera);

#endif
