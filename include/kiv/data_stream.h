/* Data streams: acquisition into buffers of the caller's own.
 *
 *     create -> announce and queue buffers -> start -> (events, event.h) -> stop -> flush and revoke -> close
 *
 * The library keeps none of this state: the order is the caller's, the rules are the producer's. Buffers stay the caller's memory
 * throughout; a BUF_HANDLE is the producer's own. Every function hands its arguments to the producer's function of that role and
 * returns the producer's status; results are written on success only, sizes and counts that go in and out are written back
 * whatever the result. A ready-made acquisition loop is K_Image_OpenStream (image.h).
 *
 * A stream ends with its camera: then K_ST_INVALID_HANDLE is what every function answers, and K_DataStream_Close frees it.
 * Any function may be called while another thread is inside one on the same stream, K_DataStream_Close included.
 */
#ifndef KIV_DATA_STREAM_API_H
#define KIV_DATA_STREAM_API_H

#include <kiv/chunk.h>
#include <kiv/types.h>

K_API K_STATUS_CODES K_CALL K_Camera_GetNumOfDataStreams(CAM_HANDLE hCamera, uint32_t* pCount);
/**
 * Opens stream `index` of a camera.
 *
 * K_ST_NOT_AVAILABLE: the device has no stream. K_ST_INVALID_ID: it does not tell the stream's identifier. K_ST_INVALID_HANDLE:
 * the camera is not open, the stream cannot be opened, or its own description cannot be read; after the last of these the
 * producer keeps the stream open until the camera is closed.
 */
K_API K_STATUS_CODES K_CALL K_Camera_CreateDataStream(CAM_HANDLE hCamera, uint32_t index, STREAM_HANDLE* phStream);
/**
 * Opens it through the producer's multicast extension, with a mode that is the producer's to understand, after writing 0 to the
 * camera's TLParamsLocked. Whatever fails, the missing extension included, is K_ST_INVALID_HANDLE.
 */
K_API K_STATUS_CODES K_CALL K_Camera_CreateDataStreamMc(CAM_HANDLE hCamera, uint32_t index, STREAM_HANDLE* phStream,
                                                        uint32_t mode);
/**
 * Closes the stream in the producer, whose answer is not looked at, and frees it. Events are to be unregistered before: those
 * that are not end with the stream, and closing waits up to five seconds for each of their threads.
 */
K_API K_STATUS_CODES K_CALL K_DataStream_Close(STREAM_HANDLE hStream);

/** Announces `size` bytes of the caller's memory; `context` comes back with each event of the buffer. */
K_API K_STATUS_CODES K_CALL K_DataStream_AnnounceBuffer(STREAM_HANDLE hStream, void* buffer, uint32_t size, void* context,
                                                        BUF_HANDLE* phBuffer);
/** Gives the memory back. pContext may be null. */
K_API K_STATUS_CODES K_CALL K_DataStream_RevokeBuffer(STREAM_HANDLE hStream, BUF_HANDLE hBuffer, void** pBuffer, void** pContext);
K_API K_STATUS_CODES K_CALL K_DataStream_QueueBuffer(STREAM_HANDLE hStream, BUF_HANDLE hBuffer);
/** GenTL's ACQ_QUEUE_TYPE; a negative one is K_ST_INVALID_PARAMETER. */
K_API K_STATUS_CODES K_CALL K_DataStream_FlushQueue(STREAM_HANDLE hStream, int32_t operation);
K_API K_STATUS_CODES K_CALL K_DataStream_GetBufferID(STREAM_HANDLE hStream, uint32_t index, BUF_HANDLE* phBuffer);

/**
 * Writes 1 to the camera's TLParamsLocked, where it has that feature (whatever comes of it), and starts the acquisition in the
 * producer; the camera itself is started by its AcquisitionStart.
 *
 * flags: for GigE Vision producers only; others are given 0. A producer that does not know flag 1 is asked again with 0.
 * count: buffers to acquire; 0 is 4294967295, which stands for no end.
 */
K_API K_STATUS_CODES K_CALL K_DataStream_StartAcquisition(STREAM_HANDLE hStream, uint32_t flags, uint64_t count);
/** Stops, then writes 0 to TLParamsLocked. With that feature the status is that of the write, else the producer's. */
K_API K_STATUS_CODES K_CALL K_DataStream_StopAcquisition(STREAM_HANDLE hStream);

/** GenTL's STREAM_INFO_CMD. A null buffer is K_ST_INVALID_PARAMETER: there is no size query. */
K_API K_STATUS_CODES K_CALL K_DataStream_GetStreamInfo(STREAM_HANDLE hStream, int32_t infoCmd, void* buffer, uint32_t* pSize);
/** GenTL's BUFFER_INFO_CMD, as above. */
K_API K_STATUS_CODES K_CALL K_DataStream_GetBufferInfo(STREAM_HANDLE hStream, BUF_HANDLE hBuffer, int32_t infoCmd, void* buffer,
                                                       uint32_t* pSize);
/**
 * The chunks in a buffer, for K_Camera_AttachChunkData. *pCount is the room in the array; a null array asks for the count alone.
 * Not both may be null.
 */
K_API K_STATUS_CODES K_CALL K_DataStream_GetBufferChunkData(STREAM_HANDLE hStream, BUF_HANDLE hBuffer,
                                                            K_SINGLE_CHUNK_DATA* chunks, uint64_t* pCount);

/** A parameter of the transport, by a number that is the producer's; an extension. Negative numbers are K_ST_INVALID_PARAMETER.
 */
K_API K_STATUS_CODES K_CALL K_DataStream_GetParam(STREAM_HANDLE hStream, int32_t parameter, void* buffer, uint32_t* pSize);
K_API K_STATUS_CODES K_CALL K_DataStream_SetParam(STREAM_HANDLE hStream, int32_t parameter, void* buffer, uint32_t* pSize);

#endif
