/* A camera's settings in a file: saving them, checking a file against a camera, loading it.
 *
 * The file is an XML script, UTF-8: a Script with a CommandList of Commands, each with a FeatureName and a FeatureValue, which
 * are written to the camera in that order. A selector stands before each run of the features that it selects, once for each of
 * its values. Scripts from elsewhere may have any encoding that the XML library reads, comments and entities; nothing outside the
 * file is loaded. At most 64 MiB.
 *
 * Checks, in order: a camera that is null or not open is K_ST_INVALID_HANDLE, a null file name K_ST_INVALID_PARAMETER, a camera
 * without a node map K_ST_NO_DATA. File names of 8 bits have the encoding of the user's system; the functions without a letter
 * are those with A.
 *
 * Threads: any. Whoever sets a selector of the camera meanwhile on another thread changes what is saved or loaded.
 */
#ifndef KIV_SETTINGS_H
#define KIV_SETTINGS_H

#include <kiv/types.h>
#include <wchar.h>

/** Which features are saved. Only those that can be read and written at that moment; any other number is STREAMABLE_ONLY. */
enum {
    K_SAVE_AUTO = 0,            /* STREAMABLE_ONLY if the camera marks any of its nodes as streamable, else ALL */
    K_SAVE_STREAMABLE_ONLY = 1, /* those that the camera marks as its settings */
    K_SAVE_ALL = 2
};

enum {
    K_LOAD_AUTO = 0,     /* validate; with errors write nothing, otherwise write until the first failure */
    K_VALIDATE_ONLY = 1, /* writes nothing but selectors */
    K_LOAD_ONLY = 2      /* write without validation, and go on after a failure; any other number stops at it */
};

/**
 * Saves the settings of the category "Root". Selectors are stepped through their values and get their former value back. The file
 * is written whole or not at all; a camera without settings gets none, which is a success.
 * K_ST_GC_ERROR when a feature cannot be read (the error record says which), K_ST_IO when the file cannot be written.
 */
K_API K_STATUS_CODES K_CALL K_Camera_SaveSettings(CAM_HANDLE hCamera, const char* fileName, uint32_t mode);
K_API K_STATUS_CODES K_CALL K_Camera_SaveSettingsA(CAM_HANDLE hCamera, const char* fileName, uint32_t mode);
K_API K_STATUS_CODES K_CALL K_Camera_SaveSettingsW(CAM_HANDLE hCamera, const wchar_t* fileName, uint32_t mode);

/**
 * Checks the settings of a file and writes them.
 * K_ST_SETTINGS_FILE_ERROR: the file is missing or no XML (the standard error stream says more). K_ST_VALIDATION_ERROR: an
 * unknown feature or enumeration value; nothing was written but selectors. K_ST_VALIDATION_WARNING: a value out of range, from
 * K_VALIDATE_ONLY alone. A setting that the camera refuses is told to the debugger output and does not change the result.
 */
K_API K_STATUS_CODES K_CALL K_Camera_LoadSettings(CAM_HANDLE hCamera, const char* fileName, uint32_t mode);
K_API K_STATUS_CODES K_CALL K_Camera_LoadSettingsA(CAM_HANDLE hCamera, const char* fileName, uint32_t mode);
K_API K_STATUS_CODES K_CALL K_Camera_LoadSettingsW(CAM_HANDLE hCamera, const wchar_t* fileName, uint32_t mode);

/**
 * The findings of the camera's last validation, a line each, at most 10,000 characters.
 * *pSize 0: only becomes the length of the text plus one. Otherwise at most *pSize characters are copied (a text that is cut has
 * no terminator, an empty one leaves buffer and *pSize as they are) and *pSize becomes the length plus one.
 */
K_API K_STATUS_CODES K_CALL K_Camera_GetSettingsValidationErrorInfo(CAM_HANDLE hCamera, char* buffer, uint32_t* pSize);

#endif
