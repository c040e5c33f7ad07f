/* Cameras on the serial lines of Camera Link, found without any GenTL producer. docs/camera-link.md tells which ports are looked
 * at and how to add one.
 */
#ifndef KIV_CAMERA_LINK_API_H
#define KIV_CAMERA_LINK_API_H

#include <kiv/types.h>

/** A buffer of so many bytes has room for each text of K_Factory_Camera_Link_Probe, whatever is found. */
#define K_CAMERA_LINK_TEXT_ROOM 262144

/**
 * Asks each Camera Link serial port in turn whether a camera with GenICam control is behind it.
 *
 * Each of the five texts has one line, ended by "\n", for each camera that was found; the n-th lines of all belong together. No
 * line holds a control character. Without a camera the texts are empty, which is a success.
 *
 *   ports           the port: manufacturer of the frame grabber, "#", name of the port
 *   deviceIds       the camera: DriverDirectory#DriverFileName#Manufacturer#Family#Model#Version#SerialNumber, its names spelt
 * with letters, digits and "_" modelNames      the camera's model name as it is; it may be empty currentRates    the rate at
 * which the camera works now, in bits per second: "9600" supportedRates  the rates that the port can do, "$" between them:
 * "9600$19200$115200"
 *
 * Each text is copied whole, in this order, however long it is: a caller who does not know better provides
 * K_CAMERA_LINK_TEXT_ROOM bytes for each. `size`, which callers set to the room of each buffer, bounds nothing; when a text is
 * longer the debugger output says so.
 *
 * cancelEventName: null, or the name of an event that the caller holds. Setting it ends the probe within a fraction of a second.
 * An event that does not exist when the call begins cannot cancel it.
 *
 * A port that is in use, silent, talks nonsense or dies is passed over; the debugger output tells why. A silent port that can do
 * all rates takes some seconds.
 *
 * Returns K_ST_NO_DATA (there is no port, or no driver to talk with), K_ST_ABORT (cancelled), K_ST_INVALID_PARAMETER (a buffer is
 * null). The texts are written on success only.
 */
K_API K_STATUS_CODES K_CALL K_Factory_Camera_Link_Probe(char* ports, char* deviceIds, char* modelNames, char* currentRates,
                                                        char* supportedRates, uint64_t size, const char* cancelEventName);

/* ---- cancelling, for programs that have no named events of the system's own ----

       CANCEL_EVENT_HANDLE cancel;
       K_Factory_Camera_Link_CreateCancelEvent("my-probe", &cancel);
       ... another thread calls K_Factory_Camera_Link_Probe(..., "my-probe") ...
       K_Factory_Camera_Link_Cancel(cancel);
       ... the probe has returned K_ST_ABORT ...
       K_Factory_Camera_Link_CloseCancelEvent(cancel);

   On Windows an event of CreateEvent does the same. */

typedef struct K_CANCEL_EVENT* CANCEL_EVENT_HANDLE;

/**
 * The named event that a probe, in this process or another one of the same user, is given to be cancelled by. It exists until it
 * is closed. K_ST_INVALID_PARAMETER: a name that is null, empty or longer than 180 bytes, or a null result.
 */
K_API K_STATUS_CODES K_CALL K_Factory_Camera_Link_CreateCancelEvent(const char* name, CANCEL_EVENT_HANDLE* phCancelEvent);
/** Cancels every probe of that name, running or yet to come. */
K_API K_STATUS_CODES K_CALL K_Factory_Camera_Link_Cancel(CANCEL_EVENT_HANDLE hCancelEvent);
K_API K_STATUS_CODES K_CALL K_Factory_Camera_Link_CloseCancelEvent(CANCEL_EVENT_HANDLE hCancelEvent);

#endif
