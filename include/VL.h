/* VL: images of machine-vision cameras, from the raw buffer to something that a person can look at or a program can store.
 *
 *     VL_IMAGE_HANDLE image;
 *     if (vlImageFromRaw(record, &image) == VL_ST_SUCCESS) {
 *         vlStoreToFileA(image, "shot.png", VL_FILE_AUTO);
 *         vlFree(image);
 *     } else {
 *         fprintf(stderr, "%s\n", vlGetLastErrorText());
 *     }
 *
 * Raw buffers are described by a K_IMAGE_INFO: pixel_type is the code of the GenICam Pixel Format Naming Convention (PFNC) or of
 * GigE Vision, width and height count pixels and lines, padding_x counts the bytes between the end of a line and the next one,
 * image_size is the size of the buffer at image_data. Nothing outside that buffer is ever read. All other fields are only kept
 * (file headers). A line begins at a whole byte. Where the pixels of a line do not fill whole bytes and the buffer is too
 * small for that, it is read as one run of bits without gaps. A colour filter's name tells the colours of the first line of
 * the buffer, wherever on the sensor it came from.
 *
 * Images belong to the library and are reached through handles. An image has one of four types, named by PFNC codes
 * (VL_IMAGE_...). 16-bit images use the whole range: a 12-bit value v is stored as (v << 4) | (v >> 8), so that white stays
 * white and v is still there in the upper bits; 10 and 14 bits alike.
 *
 * Status. Every function returns a VL_STATUS; 0 is success. vlGetLastErrorText tells what failed, on what, and why. A handle that
 * is null, freed or invented gives VL_ST_INVALID_HANDLE; a null where a result or a record is wanted VL_ST_INVALID_PARAMETER.
 * Results are written on success only.
 *
 * Gains are counted in 1/4096: 4096 leaves a channel as it is. Values beyond the range stop at white.
 *
 * File names. "A" functions take the 8-bit encoding of the user's system (UTF-8 on POSIX systems unless the locale says
 * otherwise), "W" functions wide characters. A file is written completely or not at all: a failure leaves no new file
 * and leaves an old one as it was.
 *
 * Threads. Any function may be called from any thread. Two threads may read one image at once; nobody else may use an image while
 * a call changes or frees it.
 */
#ifndef VL_H
#define VL_H

#include <kiv/image_info.h>
#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#define VL_CALL __stdcall
#if defined(VL_BUILD)
#define VL_EXPORT __declspec(dllexport)
#else
#define VL_EXPORT __declspec(dllimport)
#endif
#else
#define VL_CALL
#define VL_EXPORT __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
#define VL_API extern "C" VL_EXPORT
#else
#define VL_API extern VL_EXPORT
#endif

/** Numbered like the statuses of GenTL and of Kiv_Factory, so that a caller of both can hand them on as they are. */
typedef int32_t VL_STATUS;

enum {
    VL_ST_SUCCESS = 0,
    VL_ST_ERROR = -1001,           /* unspecified failure */
    VL_ST_NOT_IMPLEMENTED = -1003, /* a pixel format or a combination that the library does not know */
    VL_ST_INVALID_HANDLE = -1006,
    VL_ST_INVALID_PARAMETER = -1009,
    VL_ST_IO = -1010,                  /* a file cannot be read or written */
    VL_ST_INVALID_BUFFER_SIZE = -1013, /* a buffer is smaller than what it is said to hold */
    VL_ST_INVALID_DATA = -1019,        /* a file is not what it should be */
    VL_ST_OUT_OF_MEMORY = -1021
};

/** An image of the library: vlMalloc, vlMallocEx, vlImageFromRaw ... vlFree. */
typedef struct VL_IMAGE* VL_IMAGE_HANDLE;

/** The types of images, by PFNC code. 16-bit values are in the byte order of the machine. */
enum { VL_IMAGE_MONO8 = 0x01080001, VL_IMAGE_MONO16 = 0x01100007, VL_IMAGE_BGR8 = 0x02180015, VL_IMAGE_BGR16 = 0x0230004B };

/** A gain that changes nothing. */
#define VL_GAIN_ONE 4096u

/** How the missing colours of a colour filter image are found. */
typedef int32_t VL_DEMOSAIC;

enum {
    VL_DEMOSAIC_BILINEAR = 0,  /* mean of the neighbours: fast */
    VL_DEMOSAIC_EDGE_AWARE = 1 /* along edges, not across them: slower, less colour fringing */
};

typedef int32_t VL_FILE_FORMAT;

enum {
    VL_FILE_AUTO = 0, /* by the name's extension: .png, .tif, .tiff, in any case */
    VL_FILE_PNG = 1,  /* 8 or 16 bits a channel, grey or colour; 10, 12 and 14 bit sources are marked as such (sBIT) */
    VL_FILE_TIFF = 2  /* 8 or 16 bits a channel, grey or colour */
};

/* --- failures ------------------------------------------------------------------------------------------------------- */

/**
 * What the last failed call of this thread complained about; an empty text when none has failed. UTF-8, never null, valid until
 * the thread's next failing call.
 */
VL_API const char* VL_CALL vlGetLastErrorText(void);

/* --- images --------------------------------------------------------------------------------------------------------- */

/**
 * The type of image that shows a pixel format without loss: 8 or 16 bits by the depth of its components, grey or colour.
 * VL_ST_NOT_IMPLEMENTED for a format that the library cannot read.
 */
VL_API VL_STATUS VL_CALL vlGetImageType(uint64_t pixelType, uint64_t* pImageType);

/** Allocates an image of the record's width and height, of the type that vlGetImageType tells. Its data pointer is not read. */
VL_API VL_STATUS VL_CALL vlMalloc(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE* phImage);
/** Allocates an image of one of the VL_IMAGE_ types. All pixels are 0. Sides from 1 to 65,535, at most 2 GiB together. */
VL_API VL_STATUS VL_CALL vlMallocEx(uint32_t width, uint32_t height, uint64_t imageType, VL_IMAGE_HANDLE* phImage);
VL_API VL_STATUS VL_CALL vlFree(VL_IMAGE_HANDLE hImage);

/**
 * Describes an image: pixel_type is its VL_IMAGE_ type, image_data its first byte, padding_x the bytes between lines (so that a
 * line begins width * bytes per pixel + padding_x after the previous one). All other fields are 0. The data stays where it is
 * until vlFree and may be written.
 */
VL_API VL_STATUS VL_CALL vlGetImageInfo(VL_IMAGE_HANDLE hImage, K_IMAGE_INFO* pInfo);

/* --- from raw buffers ----------------------------------------------------------------------------------------------- */

/**
 * The bytes that the record's image takes in its buffer: every line with its padding, the last one without.
 * VL_ST_INVALID_BUFFER_SIZE when the buffer is smaller.
 */
VL_API VL_STATUS VL_CALL vlGetRawSize(const K_IMAGE_INFO* raw, uint64_t* pBytes);

/**
 * Converts a raw buffer into an image of the same width and height and of any type: colour becomes grey by the weights of
 * BT.601, grey becomes colour with three equal channels, deeper values are cut to 8 bits, 8-bit values are spread to 16.
 * Colour filter images are demosaiced. The gains are applied to colour results only.
 */
VL_API VL_STATUS VL_CALL vlFromRAWtoImage(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE hImage, uint32_t gainRed, uint32_t gainGreen,
                                          uint32_t gainBlue);
/** The same with a choice of demosaicing. */
VL_API VL_STATUS VL_CALL vlFromRAWtoImageEx(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE hImage, VL_DEMOSAIC demosaic,
                                            uint32_t gainRed, uint32_t gainGreen, uint32_t gainBlue);

/** vlMalloc and vlFromRAWtoImage with gains of one. */
VL_API VL_STATUS VL_CALL vlImageFromRaw(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE* phImage);
/** The same for a buffer without a record. paddingX: bytes between lines; size: bytes at data. */
VL_API VL_STATUS VL_CALL vlImageFromBuffer(uint64_t pixelType, uint32_t width, uint32_t height, uint32_t paddingX,
                                           const void* data, uint64_t size, VL_IMAGE_HANDLE* phImage);

/** Converts between image types by the rules of vlFromRAWtoImage. Both images have the same width and height. */
VL_API VL_STATUS VL_CALL vlConvertImage(VL_IMAGE_HANDLE hSource, VL_IMAGE_HANDLE hTarget);

/* --- files ---------------------------------------------------------------------------------------------------------- */

/** Stores an image with the format's fast settings. */
VL_API VL_STATUS VL_CALL vlStoreToFileA(VL_IMAGE_HANDLE hImage, const char* file, VL_FILE_FORMAT format);
VL_API VL_STATUS VL_CALL vlStoreToFileW(VL_IMAGE_HANDLE hImage, const wchar_t* file, VL_FILE_FORMAT format);
/**
 * The same with a compression from 0 (none) over 1 (fast) to 9 (small); nothing is lost by any of them.
 * -1: 1 for PNG, 0 for TIFF.
 */
VL_API VL_STATUS VL_CALL vlStoreToFileExA(VL_IMAGE_HANDLE hImage, const char* file, VL_FILE_FORMAT format, int32_t compression);
VL_API VL_STATUS VL_CALL vlStoreToFileExW(VL_IMAGE_HANDLE hImage, const wchar_t* file, VL_FILE_FORMAT format,
                                          int32_t compression);

/**
 * Stores a raw buffer as it is, with its description. The file is a header of 80 bytes, then the data; all numbers are unsigned
 * and little-endian:
 *
 *      0  8 bytes  89 4B 49 56 52 0D 0A 1A  (so that a transfer as text is noticed)
 *      8  32 bit   version, 1
 *     12  32 bit   size of the header; data begins here. Readers skip what they do not know
 *     16  64 bit   pixel_type
 *     24  32 bit   width            28  32 bit  height
 *     32  32 bit   padding_x        36  32 bit  reserved, 0
 *     40  32 bit   offset_x         44  32 bit  offset_y
 *     48  64 bit   size of the data in bytes
 *     56  64 bit   frame_id
 *     64  64 bit   timestamp
 *     72  64 bit   reserved, 0
 *
 * For a format that the library knows the data is exactly the image (vlGetRawSize), for others the whole buffer.
 */
VL_API VL_STATUS VL_CALL vlStoreToFileRAWA(const K_IMAGE_INFO* raw, const char* file);
VL_API VL_STATUS VL_CALL vlStoreToFileRAWW(const K_IMAGE_INFO* raw, const wchar_t* file);

/**
 * Loads what vlStoreToFileRAW stored. On entry image_data is the caller's buffer and image_size its size. With a null buffer only
 * the record is filled (image_size is then the size that is needed, image_data stays null); with one that is too small
 * the call fails with VL_ST_INVALID_BUFFER_SIZE and changes nothing.
 */
VL_API VL_STATUS VL_CALL vlLoadFromFileRAWA(const char* file, K_IMAGE_INFO* pRaw);
VL_API VL_STATUS VL_CALL vlLoadFromFileRAWW(const wchar_t* file, K_IMAGE_INFO* pRaw);

#endif
