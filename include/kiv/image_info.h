/* One delivered image, as the stream thread hands it to callbacks and to the imaging library. */
#ifndef KIV_IMAGE_INFO_H
#define KIV_IMAGE_INFO_H

#include <stdint.h>

/**
 * Byte offsets are part of the contract: callers in other languages and the imaging library read the record by offset.
 * The data pointer is borrowed: it is valid while the callback runs, not longer.
 */
typedef struct K_IMAGE_INFO {
    uint64_t pixel_type;        /**< PFNC code of the image data */
    uint32_t width;             /**< pixels */
    uint32_t height;            /**< lines */
    uint32_t image_size;        /**< bytes of the announced buffer */
    uint32_t reserved;          /**< 0 */
    void* image_data;           /**< first byte of the image */
    uint64_t timestamp;         /**< device ticks */
    uint32_t producer_specific; /**< buffer information 1001, asked of GigE Vision producers only */
    uint32_t announced_buffers; /**< buffers of the stream thread's ring */
    uint32_t queued_buffers;    /**< buffers waiting for the producer to fill them */
    uint32_t offset_x;          /**< pixels */
    uint32_t offset_y;          /**< lines */
    uint32_t await_delivery;    /**< filled buffers that wait to be taken */
    uint64_t frame_id;          /**< the device's frame (block) id */
    uint32_t padding_x;         /**< bytes after each line */
    uint32_t pass_state;        /**< 1 while the record is being filled, 2 once it is complete */
    uint64_t chunk_layout_id;   /**< changes when the chunk layout changes; 0 when unknown */
} K_IMAGE_INFO;

#endif
