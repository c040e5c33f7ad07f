/* Pixel formats: the catalogue of known ones, and how a camera's own formats translate to it.
 *
 * A remote code is the integer value of an entry of the camera's PixelFormat feature; a local code is one of the catalogue (PFNC;
 * bit 31 set when the format was recognised by the words of its name rather than by the exact name), or the remote code itself
 * when the catalogue knows no such format. Each camera has a table of its entries, built when it is first needed.
 *
 * Every function here returns K_ST_SUCCESS at once and does nothing while no factory is open. A handle that is no open camera is
 * K_ST_INVALID_HANDLE, a null result or name is K_ST_INVALID_PARAMETER. A code that the table does not hold is K_ST_NO_DATA, and
 * K_ST_INVALID_HANDLE when it is greater than every code in the table (or the table is empty). Results are untouched on failure.
 * Any thread.
 */
#ifndef KIV_PIXEL_FORMAT_H
#define KIV_PIXEL_FORMAT_H

#include <kiv/types.h>

/** Reads the camera's PixelFormat entries into its table again. K_ST_GC_ERROR when an entry cannot be read. */
K_API K_STATUS_CODES K_CALL K_Image_TranslatePixelFormats(CAM_HANDLE hCamera);

/** The local code for a remote one; a code that is local already comes back as it is. Anything else is K_ST_INVALID_HANDLE. */
K_API K_STATUS_CODES K_CALL K_Image_Get_PixelFormat(CAM_HANDLE hCamera, uint64_t remoteCode, uint64_t* pLocalCode);
/** The remote code for a local one; the smallest where several share it. */
K_API K_STATUS_CODES K_CALL K_Image_Get_Remote_PixelFormat(CAM_HANDLE hCamera, uint64_t localCode, uint64_t* pRemoteCode);
/**
 * The catalogue's name for a remote code; an empty text when the catalogue knows no such format.
 * size: bytes of the buffer; a longer name is cut and terminated.
 */
K_API K_STATUS_CODES K_CALL K_Image_Get_PixelFormatName(CAM_HANDLE hCamera, uint64_t remoteCode, char* name, uint32_t size);
/** The camera's own name for a remote code, or else for a local one; `size` as above. */
K_API K_STATUS_CODES K_CALL K_Image_Get_Remote_PixelFormatName(CAM_HANDLE hCamera, uint64_t code, char* name, uint32_t size);
/**
 * The plain catalogue code (bit 31 clear) to work with, for a remote or a local code. K_ST_NO_DATA when the catalogue knows no
 * such format; a code in neither table is K_ST_INVALID_HANDLE.
 */
K_API K_STATUS_CODES K_CALL K_Image_Get_Compatible_PixelFormat(CAM_HANDLE hCamera, uint64_t code, uint64_t* pCompatibleCode);
/** The local code of a name: of the catalogue, or recognised by its words. K_ST_NO_DATA when neither. */
K_API K_STATUS_CODES K_CALL K_Image_Get_PixelFormatFromName(CAM_HANDLE hCamera, const char* name, uint64_t* pLocalCode);
/** The remote code of one of the camera's entries, by its symbolic name. */
K_API K_STATUS_CODES K_CALL K_Image_Get_RemotePixelFormatFromName(CAM_HANDLE hCamera, const char* name, uint64_t* pRemoteCode);

#endif
