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
 * the buffer, wherever on the sensor it came from. Bit 31 of a code (a format that was recognised by its name) is not looked at.
 *
 * Images belong to the library until vlFree. A handle is the address of a VL_IMAGE, which tells where the pixels are. An image
 * has one of five types, named by PFNC codes (VL_IMAGE_...). 16-bit images use the whole range: a 12-bit value v is stored as (v
 * << 4) | (v >> 8), so that white stays white and v is still there in the upper bits; 10 and 14 bits alike. Where a pixel's value
 * crosses this interface it is counted in the 16-bit scale whatever the image: 65535 is white, a value v of an 8-bit image is v *
 * 257.
 *
 * Status. Every function returns a VL_STATUS; 0 is success. vlGetLastErrorText tells what failed, on what, and why. A handle that
 * is null, freed or invented gives VL_ST_INVALID_HANDLE; a null where a result or a record is wanted VL_ST_INVALID_PARAMETER.
 * Results are written on success only.
 *
 * Gains are counted in 1/4096: 4096 leaves a channel as it is. Values beyond the range stop at white.
 *
 * File names and titles. "A" functions take the 8-bit encoding of the user's system (UTF-8 on POSIX systems unless the locale
 * says otherwise), "W" functions wide characters. A file is written completely or not at all: a failure leaves no new file and
 * leaves an old one as it was.
 *
 * Threads. Any function may be called from any thread. Two threads may read one image at once; nobody else may use an image while
 * a call changes or frees it. Look-up tables and histograms alike. Windows take care of themselves.
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
    VL_ST_NOT_AVAILABLE = -1014,       /* there is no display to open a window on */
    VL_ST_INVALID_DATA = -1019,        /* a file is not what it should be */
    VL_ST_OUT_OF_MEMORY = -1021
};

/** The types of images, by PFNC code. 16-bit values are in the byte order of the machine. */
enum {
    VL_IMAGE_MONO8 = 0x01080001,
    VL_IMAGE_MONO16 = 0x01100007,
    VL_IMAGE_BGR8 = 0x02180015,
    VL_IMAGE_BGR16 = 0x0230004B,
    VL_IMAGE_BGRA8 = 0x02200017 /* alpha is 255 unless the source has one */
};

/**
 * An image as its owner sees it. Pixels may be read and written at `data`; the record itself is for reading (what is written into
 * it changes nothing).
 */
typedef struct VL_IMAGE {
    uint64_t type;        /**< VL_IMAGE_... */
    uint32_t width;       /**< pixels */
    uint32_t height;      /**< lines */
    uint8_t* data;        /**< first pixel of the top line */
    int64_t stride;       /**< bytes from a line to the one below it; negative where the bottom line comes first */
    uint8_t* memory;      /**< first byte of everything: of a DIB its header, otherwise of the pixels */
    uint64_t memory_size; /**< bytes at memory */
    uint32_t is_dib;      /**< 1 for an image of vlMallocDIB */
    uint32_t reserved;
} VL_IMAGE;

typedef struct VL_IMAGE* VL_IMAGE_HANDLE;         /* vlMalloc..., vlImageFrom... ... vlFree */
typedef struct VL_LUT* VL_LUT_HANDLE;             /* vlMallocLUT, vlLoadLUT ... vlFreeLUT */
typedef struct VL_HISTOGRAM* VL_HISTOGRAM_HANDLE; /* vlMallocHistogram ... vlFreeHistogram */
typedef struct K_VIEW* VL_VIEW_HANDLE;            /* vlOpenViewWindow... ... vlCloseViewWindow */

/** A channel of a pixel, a look-up table or a histogram. Grey images have but one, number 0. */
enum { VL_CHANNEL_ALL = -1, VL_CHANNEL_RED = 0, VL_CHANNEL_GREEN = 1, VL_CHANNEL_BLUE = 2 };

/** A gain that changes nothing. */
#define VL_GAIN_ONE 4096u

/** How the missing colours of a colour filter image are found. */
typedef int32_t VL_DEMOSAIC;

enum {
    VL_DEMOSAIC_BILINEAR = 0,   /* mean of the neighbours: fast */
    VL_DEMOSAIC_EDGE_AWARE = 1, /* along edges, not across them: slower, less colour fringing */
    VL_DEMOSAIC_BEST = 2        /* edges and the differences between the colours: for pictures to keep */
};

typedef int32_t VL_FILE_FORMAT;

enum {
    VL_FILE_AUTO = 0, /* by the name's extension in any case: .png .tif .tiff .bmp .dib .jpg .jpeg */
    VL_FILE_PNG = 1, /* 8 or 16 bits a channel, grey, colour or with alpha; 10, 12 and 14 bit sources are marked as such (sBIT) */
    VL_FILE_TIFF = 2, /* 8 or 16 bits a channel, grey, colour or with alpha */
    VL_FILE_BMP = 3,  /* 8 bits a channel, grey or colour; deeper images are cut, alpha is left out */
    VL_FILE_JPEG = 4  /* the same, with losses */
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

/**
 * A pixel format's name in the PFNC (or GigE Vision's), and the code of a name, in any case of letters. *pName is a constant
 * text. VL_ST_NOT_IMPLEMENTED for one that the library does not know.
 */
VL_API VL_STATUS VL_CALL vlGetPixelFormatName(uint64_t pixelType, const char** pName);
VL_API VL_STATUS VL_CALL vlGetPixelFormatByName(const char* name, uint64_t* pPixelType);

/** Allocates an image of the record's width and height, of the type that vlGetImageType tells. Its data pointer is not read. */
VL_API VL_STATUS VL_CALL vlMalloc(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE* phImage);
/**
 * Makes an image of one of the VL_IMAGE_ types. Sides from 1 to 65,535, at most 2 GiB together.
 * buffer null: the library allocates, all pixels are 0. Otherwise the pixels are those at buffer, lines without gaps between
 * them; the memory stays the caller's and must outlive the image. bufferSize: bytes there; VL_ST_INVALID_BUFFER_SIZE when too
 * few.
 */
VL_API VL_STATUS VL_CALL vlMallocEx(uint32_t width, uint32_t height, uint64_t imageType, void* buffer, uint64_t bufferSize,
                                    VL_IMAGE_HANDLE* phImage);
/**
 * Allocates a device-independent bitmap of the record's width and height: VL_IMAGE_MONO8 with a grey palette for grey formats,
 * VL_IMAGE_BGR8 for all others. At `memory` stand a BITMAPINFOHEADER of 40 bytes, the palette where there is one (256 times 4
 * bytes), then the lines from the bottom one up, each filled to a multiple of 4 bytes. It can be used wherever an image can.
 */
VL_API VL_STATUS VL_CALL vlMallocDIB(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE* phImage);
VL_API VL_STATUS VL_CALL vlFree(VL_IMAGE_HANDLE hImage);

/**
 * Describes an image as a raw buffer: pixel_type is its VL_IMAGE_ type, image_data its first byte, padding_x the bytes between
 * lines. All other fields are 0. VL_ST_NOT_IMPLEMENTED for a DIB, whose lines stand in an order that a K_IMAGE_INFO cannot tell.
 */
VL_API VL_STATUS VL_CALL vlGetImageInfo(VL_IMAGE_HANDLE hImage, K_IMAGE_INFO* pInfo);

/** One pixel in the 16-bit scale. Of a grey image all three are alike. */
VL_API VL_STATUS VL_CALL vlGetPixel(VL_IMAGE_HANDLE hImage, uint32_t x, uint32_t y, uint16_t* pRed, uint16_t* pGreen,
                                    uint16_t* pBlue);
/**
 * One pixel of a raw buffer as the camera stored it, not scaled and not demosaiced: of a grey or colour filter format one value,
 * of others the components in the order of the format's name (of a subsampled one luma, then the colour differences of blue and
 * red that the pixel shares). values has room for 4; pCount tells how many were written.
 */
VL_API VL_STATUS VL_CALL vlGetPixelEx(const K_IMAGE_INFO* raw, uint32_t x, uint32_t y, uint16_t* values, uint32_t* pCount);
/** Sets one pixel, in the 16-bit scale. A grey image takes the luma of the three by BT.601; alpha stays as it is. */
VL_API VL_STATUS VL_CALL vlSetPixel(VL_IMAGE_HANDLE hImage, uint32_t x, uint32_t y, uint16_t red, uint16_t green, uint16_t blue);
/**
 * The mean colour of the pixels with left <= x < right and top <= y < bottom, rounded, in the 16-bit scale. The rectangle must
 * not be empty and lie within the image.
 */
VL_API VL_STATUS VL_CALL vlGetAverage(VL_IMAGE_HANDLE hImage, uint32_t left, uint32_t top, uint32_t right, uint32_t bottom,
                                      uint16_t* pRed, uint16_t* pGreen, uint16_t* pBlue);

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
/**
 * The same with a choice of demosaicing, an offset and a look-up table, for grey results too (which take the green gain).
 * offset: added before the gains in the 16-bit scale; a negative one takes off a camera's black level.
 * hLut:   applied last; null for none.
 */
VL_API VL_STATUS VL_CALL vlFromRAWtoImageEx(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE hImage, VL_DEMOSAIC demosaic,
                                            uint32_t gainRed, uint32_t gainGreen, uint32_t gainBlue, int32_t offset,
                                            VL_LUT_HANDLE hLut);
/** The same two into images of vlMallocDIB; VL_ST_INVALID_PARAMETER for others. */
VL_API VL_STATUS VL_CALL vlFromRAWtoDIB(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE hDib, uint32_t gainRed, uint32_t gainGreen,
                                        uint32_t gainBlue);
VL_API VL_STATUS VL_CALL vlFromRAWtoDIBEx(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE hDib, VL_DEMOSAIC demosaic, uint32_t gainRed,
                                          uint32_t gainGreen, uint32_t gainBlue, int32_t offset, VL_LUT_HANDLE hLut);

/** vlMalloc and vlFromRAWtoImage with gains of one. */
VL_API VL_STATUS VL_CALL vlImageFromRaw(const K_IMAGE_INFO* raw, VL_IMAGE_HANDLE* phImage);
/** The same for a buffer without a record. paddingX: bytes between lines; size: bytes at data. */
VL_API VL_STATUS VL_CALL vlImageFromBuffer(uint64_t pixelType, uint32_t width, uint32_t height, uint32_t paddingX,
                                           const void* data, uint64_t size, VL_IMAGE_HANDLE* phImage);

/** Converts between image types by the rules of vlFromRAWtoImage, DIBs included. Both images have the same width and height. */
VL_API VL_STATUS VL_CALL vlConvertImage(VL_IMAGE_HANDLE hSource, VL_IMAGE_HANDLE hTarget);

/* --- look-up tables -------------------------------------------------------------------------------------------------- */

/**
 * A table of 2^inputBits entries of outputBits bits each, for one channel (used for all of an image's) or three. Bits: 8 to 16.
 * At first every value gives itself. A table fits every image: values are brought to inputBits, what the table gives to the depth
 * of the result, both over the whole range.
 */
VL_API VL_STATUS VL_CALL vlMallocLUT(uint32_t inputBits, uint32_t outputBits, uint32_t channels, VL_LUT_HANDLE* phLut);
VL_API VL_STATUS VL_CALL vlFreeLUT(VL_LUT_HANDLE hLut);
VL_API VL_STATUS VL_CALL vlGetLUTInfo(VL_LUT_HANDLE hLut, uint32_t* pInputBits, uint32_t* pOutputBits, uint32_t* pChannels);
/** Fills the target with what the source gives, whatever their bits: entries between two are interpolated. Three channels to one:
 * their mean. */
VL_API VL_STATUS VL_CALL vlConvertLUT(VL_LUT_HANDLE hSource, VL_LUT_HANDLE hTarget);
/** Sends an image through a table. Same size, both grey or both colour; 8 and 16 bits may meet; source and target may be one. */
VL_API VL_STATUS VL_CALL vlLUT(VL_IMAGE_HANDLE hSource, VL_LUT_HANDLE hLut, VL_IMAGE_HANDLE hTarget);

/** out = in ^ gamma with black 0 and white 1, as cameras count it: below 1 brightens. gamma: above 0, at most 100. */
VL_API VL_STATUS VL_CALL vlCreateGammaLUT(VL_LUT_HANDLE hLut, double gamma);
/** Sends what the table gives through that curve as well. */
VL_API VL_STATUS VL_CALL vlApplyGammaToLUT(VL_LUT_HANDLE hLut, double gamma);
/** out = slope * in + offset, black 0 and white 1: (1, 0) changes nothing, (-1, 1) is the negative. */
VL_API VL_STATUS VL_CALL vlCreateLinearLUT(VL_LUT_HANDLE hLut, double slope, double offset);

typedef struct VL_KNEE_POINT {
    double in;  /**< 0 to 1 */
    double out; /**< 0 to 1 */
} VL_KNEE_POINT;
/**
 * Straight lines through the points, from (0, 0) to the first and from the last to (1, 1) unless there are points at 0 and 1.
 * Points ascend in `in`; 1 to 1024 of them.
 */
VL_API VL_STATUS VL_CALL vlCreateKneeLUT(VL_LUT_HANDLE hLut, const VL_KNEE_POINT* points, uint32_t count);

/** One entry: index below 2^inputBits, value below 2^outputBits. VL_CHANNEL_ALL sets every channel. */
VL_API VL_STATUS VL_CALL vlGetLUTValue(VL_LUT_HANDLE hLut, int32_t channel, uint32_t index, uint32_t* pValue);
VL_API VL_STATUS VL_CALL vlSetLUTValue(VL_LUT_HANDLE hLut, int32_t channel, uint32_t index, uint32_t value);

/**
 * A table as a text file: "VL-LUT 1" in the first line, then "bits <input> <output>" and "channels <n>", then a line for each
 * entry with its values (red, green, blue), decimal, divided by blanks. Empty lines and what follows a # are skipped.
 * Loading makes a new table; a file that is none gives VL_ST_INVALID_DATA and the line that is wrong.
 */
VL_API VL_STATUS VL_CALL vlSaveLUTA(VL_LUT_HANDLE hLut, const char* file);
VL_API VL_STATUS VL_CALL vlSaveLUTW(VL_LUT_HANDLE hLut, const wchar_t* file);
VL_API VL_STATUS VL_CALL vlLoadLUTA(const char* file, VL_LUT_HANDLE* phLut);
VL_API VL_STATUS VL_CALL vlLoadLUTW(const wchar_t* file, VL_LUT_HANDLE* phLut);

/* --- histograms ------------------------------------------------------------------------------------------------------ */

/** A histogram of 2^bits bins for each of three channels, all empty. Bits: 1 to 16. */
VL_API VL_STATUS VL_CALL vlMallocHistogram(uint32_t bits, VL_HISTOGRAM_HANDLE* phHistogram);
VL_API VL_STATUS VL_CALL vlFreeHistogram(VL_HISTOGRAM_HANDLE hHistogram);
VL_API VL_STATUS VL_CALL vlClearHistogram(VL_HISTOGRAM_HANDLE hHistogram);
/** Counts the pixels of an image, by the upper bits of their values, on top of what is there. A grey image counts in all channels
 * alike. */
VL_API VL_STATUS VL_CALL vlCreateHistogram(VL_HISTOGRAM_HANDLE hHistogram, VL_IMAGE_HANDLE hImage);
/** The pixels in a bin: bin below 2^bits; VL_CHANNEL_ALL gives the sum of the three channels. */
VL_API VL_STATUS VL_CALL vlGetHistogramValue(VL_HISTOGRAM_HANDLE hHistogram, int32_t channel, uint32_t bin, uint64_t* pCount);

/* --- geometry -------------------------------------------------------------------------------------------------------- */

typedef int32_t VL_FLIP;
enum {
    VL_FLIP_HORIZONTAL = 0, /* left becomes right */
    VL_FLIP_VERTICAL = 1,   /* top becomes bottom */
    VL_FLIP_BOTH = 2
};
/** Two images of the same size and type; they may be one. */
VL_API VL_STATUS VL_CALL vlFlip(VL_IMAGE_HANDLE hSource, VL_IMAGE_HANDLE hTarget, VL_FLIP flip);
/**
 * Turns an image clockwise by an angle in degrees. Two images of the same type, not one. Multiples of 90 degrees with a target of
 * the turned size move every pixel as it is. Otherwise the middle of the source comes to the middle of the target, pixels are
 * interpolated, and what no pixel covers is black.
 */
VL_API VL_STATUS VL_CALL vlRotate(VL_IMAGE_HANDLE hSource, VL_IMAGE_HANDLE hTarget, double degrees);
/** The size of the smallest target that holds all of the turned image. */
VL_API VL_STATUS VL_CALL vlGetRotatedSize(VL_IMAGE_HANDLE hSource, double degrees, uint32_t* pWidth, uint32_t* pHeight);

/* --- high dynamic range ---------------------------------------------------------------------------------------------- */

/** What vlHDRAnalyzeImages finds out about one image of a series of exposures. */
typedef struct VL_HDR_EXPOSURE {
    double exposure;   /**< how often the light of the first image; 0 where the two have too little in common to tell */
    double mean;       /**< brightness of all pixels, 0 to 1 */
    double too_dark;   /**< share of the pixels below 1/64 of white */
    double too_bright; /**< share of the pixels above 63/64 of white */
    int32_t shift_x;   /**< pixels that this image must be moved to lie on the first one */
    int32_t shift_y;
} VL_HDR_EXPOSURE;

typedef int32_t VL_HDR_METHOD;
enum {
    VL_HDR_FUSION = 0, /* the best exposed parts of all images, blended: to look at. Needs no exposures */
    VL_HDR_LINEAR = 1  /* the light itself, in proportion; the brightest thing that the series shows becomes white */
};

/**
 * Allocates an image for the result of a fusion: of the size of an exposure, grey or colour like it, 8 or 16 bits (bits).
 * vlFree as usual.
 */
VL_API VL_STATUS VL_CALL vlMallocHDR(VL_IMAGE_HANDLE hExposure, uint32_t bits, VL_IMAGE_HANDLE* phImage);
/** Looks at 2 to 16 images of the same size and type. results: one for each. */
VL_API VL_STATUS VL_CALL vlHDRAnalyzeImages(const VL_IMAGE_HANDLE* images, uint32_t count, VL_HDR_EXPOSURE* results);
/**
 * Makes one image out of 2 to 16 of the same size and type. exposures: exposure times or their ratios, for VL_HDR_LINEAR; null
 * takes those that vlHDRAnalyzeImages finds. Images are not moved.
 */
VL_API VL_STATUS VL_CALL vlCombineImagesHDR(const VL_IMAGE_HANDLE* images, uint32_t count, const double* exposures,
                                            VL_HDR_METHOD method, VL_IMAGE_HANDLE hTarget);

/* --- chains of operations -------------------------------------------------------------------------------------------- */

/**
 * Works through a chain of operations, "gamma 0.5; flip horizontal; rotate 90", from left to right. Words are divided by blanks
 * or commas, operations by ; or line ends; # begins a comment. Numbers have a decimal point whatever the locale.
 *
 *     mono | colour                grey, or blue, green and red          depth 8|16        bits a channel
 *     gain F [F F]                 factor, or one each for r, g, b       offset F          added, -1 to 1 (white)
 *     gamma F                      as vlCreateGammaLUT                   invert            the negative
 *     linear SLOPE OFFSET          as vlCreateLinearLUT                  knee IN OUT ...   as vlCreateKneeLUT
 *     stretch                      darkest to black, brightest to white  equalize          equal shares (8 bits)
 *     whitebalance                 mean of red and blue to that of green lut FILE          of vlSaveLUT; quotes around blanks
 *     flip horizontal|vertical|both                                      rotate DEGREES    clockwise, grows as needed
 *     crop X Y WIDTH HEIGHT                                              scale F | scale WIDTH HEIGHT
 *     blur RADIUS                  Gaussian, pixels                      median SIDE       3 or 5
 *     sharpen AMOUNT [RADIUS]      unsharp mask, 1 by default            threshold F       below black, else white
 *
 * The result must fit the target in size and type (after the last operation it is converted to the target's type).
 * A word that is not known gives VL_ST_INVALID_PARAMETER and names it; nothing is changed then. Source and target may be one.
 */
VL_API VL_STATUS VL_CALL vlImageProcessing(VL_IMAGE_HANDLE hSource, const char* operations, VL_IMAGE_HANDLE hTarget);
/**
 * The same from a raw buffer into a new image of whatever size and type comes out. "demosaic bilinear|edge|best" may be the
 * first operation.
 */
VL_API VL_STATUS VL_CALL vlImageProcessingEx(const K_IMAGE_INFO* raw, const char* operations, VL_IMAGE_HANDLE* phImage);

/** 1: large images are worked on by all processors (the default), 0: by the calling thread alone. For the whole process. */
VL_API VL_STATUS VL_CALL vlEnableParallelProcessing(int32_t enable);

/* --- windows --------------------------------------------------------------------------------------------------------- */

/* A view shows images: in a frame window of its own, in a part of another view, or in a window of the program's. A thread of the
 * library serves all windows; any thread may call. Where there is no display, opening gives VL_ST_NOT_AVAILABLE and everything
 * else works.
 *
 * The user may drag the image with the left button, zoom with the wheel, and close a frame window, which hides it
 * (VL_VIEW_VISIBLE) and ends nothing: the view is there until vlCloseViewWindow. */

/** Opens a frame window where the system likes; it takes its size from the first image. title: may be null. */
VL_API VL_STATUS VL_CALL vlOpenViewWindowAutoA(const char* title, VL_VIEW_HANDLE* phView);
VL_API VL_STATUS VL_CALL vlOpenViewWindowAutoW(const wchar_t* title, VL_VIEW_HANDLE* phView);
/**
 * Opens a view of a given size at a given place. Sides from 1 to 16,384.
 * hParent:      null: a frame window; x and y are on the desktop. A view: a child, inside that view and over its image; x and y
 *               count from its upper left corner. Children are closed with their parent.
 * nativeWindow: null, or the number (X11) or handle of a window of the program's own that the view fills; hParent is null then.
 *               Place and size are the window's. It must outlive the view.
 */
VL_API VL_STATUS VL_CALL vlOpenViewWindowA(const char* title, int32_t x, int32_t y, uint32_t width, uint32_t height,
                                           VL_VIEW_HANDLE hParent, void* nativeWindow, VL_VIEW_HANDLE* phView);
VL_API VL_STATUS VL_CALL vlOpenViewWindowW(const wchar_t* title, int32_t x, int32_t y, uint32_t width, uint32_t height,
                                           VL_VIEW_HANDLE hParent, void* nativeWindow, VL_VIEW_HANDLE* phView);
/** When it returns no callback of the view runs any more (unless this is called from inside one) and none will. */
VL_API VL_STATUS VL_CALL vlCloseViewWindow(VL_VIEW_HANDLE hView);

/**
 * Shows a raw buffer. It is converted before the call returns and drawn soon afterwards; of images that come faster than they can
 * be drawn the newest is shown.
 */
VL_API VL_STATUS VL_CALL vlShowImage(VL_VIEW_HANDLE hView, const K_IMAGE_INFO* raw, uint32_t gainRed, uint32_t gainGreen,
                                     uint32_t gainBlue);
/** The same for an image. */
VL_API VL_STATUS VL_CALL vlShowImageEx(VL_VIEW_HANDLE hView, VL_IMAGE_HANDLE hImage, uint32_t gainRed, uint32_t gainGreen,
                                       uint32_t gainBlue);

/** Which pixel of the image is at the view's upper left corner. Only as far as the image goes; without effect while the zoom is
 * fit. */
VL_API VL_STATUS VL_CALL vlSetImageOffset(VL_VIEW_HANDLE hView, int32_t x, int32_t y);
/** The same in fractions of pixels, and with a zoom in screen pixels per pixel (1/64 to 64), which makes it VL_ZOOM_FREE. */
VL_API VL_STATUS VL_CALL vlSetImageOffsetEx(VL_VIEW_HANDLE hView, double x, double y, double zoom);
/** Offset and zoom as they are, also when the zoom is fit. */
VL_API VL_STATUS VL_CALL vlGetImageOffsetEx(VL_VIEW_HANDLE hView, double* pX, double* pY, double* pZoom);

typedef int32_t VL_VIEW_OPTION;
enum {
    VL_VIEW_ZOOM = 0,       /* VL_ZOOM_... */
    VL_VIEW_SMOOTH = 1,     /* 1: interpolate when the image is enlarged, 0: show its pixels (default) */
    VL_VIEW_MOUSE = 2,      /* 1: the mouse drags and zooms (default), 0: it only reports to the callback */
    VL_VIEW_VISIBLE = 3,    /* 1 or 0 */
    VL_VIEW_DEMOSAIC = 4,   /* VL_DEMOSAIC_... of vlShowImage */
    VL_VIEW_BACKGROUND = 5, /* 0xRRGGBB around the image */
    VL_VIEW_ON_TOP = 6,     /* 1: a frame window stays above others; 0 by default */
    VL_VIEW_DRAWN = 7       /* how many images have been drawn; only to be read */
};
enum { VL_ZOOM_FIT = 0 /* all of the image, in its proportions (default) */, VL_ZOOM_ONE_TO_ONE = 1, VL_ZOOM_FREE = 2 };
VL_API VL_STATUS VL_CALL vlSetViewWindowOption(VL_VIEW_HANDLE hView, VL_VIEW_OPTION option, int32_t value);
VL_API VL_STATUS VL_CALL vlGetViewWindowOption(VL_VIEW_HANDLE hView, VL_VIEW_OPTION option, int32_t* pValue);

enum {
    VL_EVENT_MOUSE_MOVE = 1,
    VL_EVENT_MOUSE_DOWN = 2,
    VL_EVENT_MOUSE_UP = 3,
    VL_EVENT_WHEEL = 4,
    VL_EVENT_KEY_DOWN = 5,
    VL_EVENT_KEY_UP = 6,
    VL_EVENT_RESIZED = 7,
    VL_EVENT_CLOSED = 8 /* the user closed the frame window, which is hidden now */
};
enum { VL_BUTTON_LEFT = 1, VL_BUTTON_MIDDLE = 2, VL_BUTTON_RIGHT = 4 };
enum { VL_MODIFIER_SHIFT = 1, VL_MODIFIER_CONTROL = 2, VL_MODIFIER_ALT = 4 };
/** Keys are their Unicode character, letters small; others are these. */
enum {
    VL_KEY_RIGHT = 0x40000001,
    VL_KEY_LEFT = 0x40000002,
    VL_KEY_DOWN = 0x40000003,
    VL_KEY_UP = 0x40000004,
    VL_KEY_HOME = 0x40000005,
    VL_KEY_END = 0x40000006,
    VL_KEY_PAGE_UP = 0x40000007,
    VL_KEY_PAGE_DOWN = 0x40000008,
    VL_KEY_INSERT = 0x40000009,
    VL_KEY_DELETE = 0x4000000A,
    VL_KEY_F1 = 0x40000101 /* F2 to F24 follow */
};

typedef struct VL_VIEW_EVENT {
    int32_t type; /**< VL_EVENT_... */
    int32_t x;    /**< of the mouse in the view */
    int32_t y;
    double image_x; /**< the place in the image under the mouse; whole numbers are the upper left corners of pixels */
    double image_y;
    int32_t button;    /**< VL_BUTTON_... that went down or up */
    int32_t buttons;   /**< VL_BUTTON_... that are down */
    int32_t wheel;     /**< steps, positive away from the user */
    int32_t key;       /**< VL_KEY_... or a character */
    int32_t modifiers; /**< VL_MODIFIER_... */
    uint32_t width;    /**< of the view */
    uint32_t height;
} VL_VIEW_EVENT;

/**
 * Runs on the window thread, which serves nobody else meanwhile. It may call any function of this library, vlCloseViewWindow of
 * its own view included. It must not wait for a thread that is itself in a call on a window.
 */
typedef void(VL_CALL* VL_VIEW_CALLBACK)(void* context, VL_VIEW_HANDLE hView, const VL_VIEW_EVENT* event);
/** Null takes it away; when the call returns the old one runs no more (unless this is called from inside it). */
VL_API VL_STATUS VL_CALL vlSetViewWindowCallback(VL_VIEW_HANDLE hView, VL_VIEW_CALLBACK callback, void* context);

/** Moves and resizes a view with its window: x and y are where the inner part begins, on the desktop (a child: in its parent). */
VL_API VL_STATUS VL_CALL vlMoveViewWindow(VL_VIEW_HANDLE hView, int32_t x, int32_t y, uint32_t width, uint32_t height);
/** Resizes a view where it is: a child within its parent, a frame window around its image. */
VL_API VL_STATUS VL_CALL vlResizeChildWindow(VL_VIEW_HANDLE hView, uint32_t width, uint32_t height);
/** Where the view is on the desktop, and how large, without borders. */
VL_API VL_STATUS VL_CALL vlGetViewWindowRect(VL_VIEW_HANDLE hView, int32_t* pX, int32_t* pY, uint32_t* pWidth, uint32_t* pHeight);
/** The same of the frame window that the view is in, with the borders and the title that the system puts around it. */
VL_API VL_STATUS VL_CALL vlGetFrameWindowRect(VL_VIEW_HANDLE hView, int32_t* pX, int32_t* pY, uint32_t* pWidth,
                                              uint32_t* pHeight);
/** Of a child: kept, but shown nowhere. */
VL_API VL_STATUS VL_CALL vlSetViewWindowTitleA(VL_VIEW_HANDLE hView, const char* title);
VL_API VL_STATUS VL_CALL vlSetViewWindowTitleW(VL_VIEW_HANDLE hView, const wchar_t* title);

/** What the view shows at the moment, children included, as a new BGR8 image of the view's size. Draws first what waits to be
 * drawn. */
VL_API VL_STATUS VL_CALL vlCaptureViewWindow(VL_VIEW_HANDLE hView, VL_IMAGE_HANDLE* phImage);

/* --- files ---------------------------------------------------------------------------------------------------------- */

/** Stores an image with the format's fast settings. */
VL_API VL_STATUS VL_CALL vlStoreToFileA(VL_IMAGE_HANDLE hImage, const char* file, VL_FILE_FORMAT format);
VL_API VL_STATUS VL_CALL vlStoreToFileW(VL_IMAGE_HANDLE hImage, const wchar_t* file, VL_FILE_FORMAT format);
/**
 * The same with a setting of the format; -1 stands for the usual one.
 * PNG and TIFF: a compression from 0 (none) over 1 (fast) to 9 (small); nothing is lost by any of them. Usually 1 and 0.
 * JPEG: a quality from 1 to 100, usually 90. BMP has none.
 */
VL_API VL_STATUS VL_CALL vlStoreToFileExA(VL_IMAGE_HANDLE hImage, const char* file, VL_FILE_FORMAT format, int32_t setting);
VL_API VL_STATUS VL_CALL vlStoreToFileExW(VL_IMAGE_HANDLE hImage, const wchar_t* file, VL_FILE_FORMAT format, int32_t setting);

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
