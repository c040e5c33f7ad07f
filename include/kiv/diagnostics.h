/* Diagnostics and the environment: debugger output, logging, "$(NAME)" expansion, installed versions. Any thread. */
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

/**
 * Switches the logging of the GenICam modules on.
 *
 * genApi, genTL, clProtocol:
 *            which categories to log: the node map engine with its register accesses, the calls of producers, the Camera
 *            Link protocol. With none of them no log is configured, and an earlier one stays.
 * producers: asks producers to log, too, by the environment of this process: KIV_GENTL_LOGGING and KIV_LIBUSB_LOGGING
 *            become "TRUE", KIV_LOG_LEVEL a number from 1 to 6 for `level`; false removes the three. Only producers that
 *            are loaded, or look, later see it.
 * fileName:  where to: a file ("$(NAME)" is expanded; lines are added at its end), or the debugger output for an empty
 *            name. Null: the file that GENICAM_LOG_CONFIG names, or else errors to the debugger output.
 * level:     "EMERG", "FATAL", "ALERT", "CRIT", "ERROR", "WARN", "NOTICE", "INFO", "DEBUG" or "NOTSET".
 * pattern:   a log4cpp pattern, such as "%d %p %c: %m%n".
 *
 * Level and pattern must not be null when a category is set and fileName is not null (K_ST_INVALID_PARAMETER).
 * Returns K_ST_IO when the log cannot be set up (a level that is none, a file that cannot be written); the environment is
 * left as it was then.
 */
K_API K_STATUS_CODES K_CALL K_EnableLogging(bool8_kiv genApi, bool8_kiv genTL, bool8_kiv clProtocol, bool8_kiv producers,
                                            const char* fileName, const char* level, const char* pattern);
/**
 * Configures the log from a log4j-style property file; "$(NAME)" in its name is expanded. Null does nothing and succeeds. K_ST_IO
 * when the file cannot be read or used. The environment is not touched.
 */
K_API K_STATUS_CODES K_CALL K_EnableLoggingFromFile(const char* propertyFile);
/** Closes the log and removes the three variables from the environment. Always succeeds. */
K_API K_STATUS_CODES K_CALL K_DisableLogging(void);

/**
 * Expands each "$(NAME)" in a text, where it stands, to the value of the environment variable NAME.
 * size: bytes at text. K_ST_INVALID_PARAMETER, and an unchanged text, when the result does not fit.
 */
K_API K_STATUS_CODES K_CALL K_ReplaceEnvironmentVariables(char* text, uint32_t size);

/** One package that may be installed. An array of these ends with a record whose platform is 0. */
typedef struct K_INSTALLER_ENTRY {
    const char* upgradeCode; /**< the installer's upgrade code of the package, packed as it is in its key names */
    int32_t platform;        /**< 32 or 64; 0 ends the array */
} K_INSTALLER_ENTRY;

/**
 * The version of the first package of the array that is installed, as "1.2.3.4 (x64)" or "1.2.3.4 (i32)". The four numbers are
 * the bytes of the installer's version number, highest first. size: bytes at version; K_ST_INVALID_PARAMETER when the text does
 * not fit. K_ST_NO_DATA when none is installed. A package without a version succeeds and leaves the buffer as it was.
 */
K_API K_STATUS_CODES K_CALL K_GetSdkInstallerVersion(const K_INSTALLER_ENTRY* entries, char* version, uint16_t size);

#endif
