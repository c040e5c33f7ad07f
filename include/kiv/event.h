/* Events: conditions that threads wait on, and events of cameras and streams that set them.
 *
 *     EVT_CONDITION_HANDLE condition;
 *     EVT_HANDLE event;
 *     uint32_t result;
 *     K_Event_CreateCondition(&condition);
 *     K_DataStream_RegisterEvent(stream, 1, condition, &event);
 *     while (K_Event_WaitForCondition(condition, 1000, &result) == K_ST_SUCCESS && result == 1) {
 *         uint8_t data[16];  // the BUF_HANDLE, then the pointer that it was announced with
 *         uint32_t size = sizeof data;
 *         K_Event_GetData(event, data, &size);
 *         ...
 *     }
 *     K_DataStream_UnRegisterEvent(stream, 1);
 *     K_Event_Close(event);
 *     K_Event_CloseCondition(condition);
 *
 * Any of these functions may be called while another thread is inside one, on the same handle, too; closing a handle included.
 */
#ifndef KIV_EVENT_API_H
#define KIV_EVENT_API_H

#include <kiv/types.h>

/* ---- conditions ----

   A condition is a pair of events: the signal tells that what was waited for happened, and is used up by the one wait that it
   ends; the exit tells waiters to stop, and stays set until the condition is closed. */

/** K_ST_INVALID_ADDRESS when the system has no event left to give. */
K_API K_STATUS_CODES K_CALL K_Event_CreateCondition(EVT_CONDITION_HANDLE* phCondition);
/** Sets the signal: one wait ends with result 1. Signalling twice before anybody waits is signalling once. */
K_API K_STATUS_CODES K_CALL K_Event_SignalCondition(EVT_CONDITION_HANDLE hCondition);
/** Sets the exit: every wait, now and later, ends with result 2, unless the signal is set as well, which comes first. */
K_API K_STATUS_CODES K_CALL K_Event_ExitCondition(EVT_CONDITION_HANDLE hCondition);
/** Takes the signal back, not the exit. */
K_API K_STATUS_CODES K_CALL K_Event_ResetCondition(EVT_CONDITION_HANDLE hCondition);
/**
 * Waits for the signal or the exit.
 *
 * timeoutMs: milliseconds; 0 waits without limit (it does not poll).
 * pResult:   1 signal, 2 exit, 0 the time ran out, 0xFFFFFFFF the wait itself failed. The status is K_ST_SUCCESS in all four
 * cases (and -1, with the result untouched, if something unforeseen was raised).
 */
K_API K_STATUS_CODES K_CALL K_Event_WaitForCondition(EVT_CONDITION_HANDLE hCondition, uint32_t timeoutMs, uint32_t* pResult);
/**
 * Waits for any of 1 to 10 conditions. *pResult is 2i + 1 when the signal of condition i (counted from 0) ended the wait, 2i + 2
 * when its exit did; of several that are set the lowest number wins and is the only one used up. 0 and 0xFFFFFFFF as above.
 * The count is checked first: K_ST_INVALID_PARAMETER. A null array, or a handle in it that is no open condition:
 * K_ST_INVALID_HANDLE.
 */
K_API K_STATUS_CODES K_CALL K_Event_WaitForMultipleConditions(uint32_t count, const EVT_CONDITION_HANDLE* conditions,
                                                              uint32_t timeoutMs, uint32_t* pResult);
/** Closes it. Waits that are under way end with result 2. A registration that has it as its target goes on and sets nothing. */
K_API K_STATUS_CODES K_CALL K_Event_CloseCondition(EVT_CONDITION_HANDLE hCondition);

/**
 * For programs with a poll or epoll loop: the file descriptor that is readable while the signal is set. Reading 8 bytes from it
 * takes the signal, as a wait does. It belongs to the condition: never close it, and take it out of the loop before the condition
 * is closed. K_ST_NOT_IMPLEMENTED where events are no files (Windows: wait with the functions above).
 */
K_API K_STATUS_CODES K_CALL K_Event_GetConditionFd(EVT_CONDITION_HANDLE hCondition, int32_t* pFd);
/** The same for the exit. It must not be read from: the exit stays set. */
K_API K_STATUS_CODES K_CALL K_Event_GetConditionExitFd(EVT_CONDITION_HANDLE hCondition, int32_t* pFd);

/* ---- plain events ----

   A program that has a wait of its own can have a plain event set instead of a condition. On Windows that is any event handle of
   the system's; everywhere it can be one made here. */

/** An event that is unset by the wait (or the read from its descriptor) that it ends, or, with manualReset, stays set. */
K_API K_STATUS_CODES K_CALL K_Event_CreatePlainEvent(bool8_kiv manualReset, void** phPlainEvent);
/** Its file descriptor, as K_Event_GetConditionFd. Reading 8 bytes unsets it, also with manualReset. */
K_API K_STATUS_CODES K_CALL K_Event_GetPlainEventFd(void* hPlainEvent, int32_t* pFd);
K_API K_STATUS_CODES K_CALL K_Event_ClosePlainEvent(void* hPlainEvent);

/* ---- registered events ----

   kind:   GenTL's EVENT_TYPE, or a producer's own number from 1000; 1005 and above are K_ST_INVALID_PARAMETER.
   target: what is set when the event happens: a condition (its signal), or a plain event. A pointer that is an open condition is
           taken for that; any other is asked of the system whether it is an event of its own. Neither: K_ST_INVALID_HANDLE. It is
           never looked into, and setting one that is gone does nothing.
   A null target or result is K_ST_INVALID_HANDLE.

   Some events are served by a thread of the library, which pulls their data from the producer, sets the target, and waits until
   K_Event_GetData has collected them, for up to one second: a caller who never collects gets one event a second. On streams that
   is every kind, on cameras the kinds 1001 and 1004. The data of all others stay in the producer until K_Event_GetData fetches
   them, and nobody sets the target. */

/** Registers an event of the camera's device (not of the remote camera: GenTL events belong to the producer's modules). */
K_API K_STATUS_CODES K_CALL K_Camera_RegisterEvent(CAM_HANDLE hCamera, uint32_t kind, void* target, EVT_HANDLE* phEvent);
/** Unregisters it in the producer and ends its thread, waiting for that up to five seconds. K_Event_Close is still to be called.
 */
K_API K_STATUS_CODES K_CALL K_Camera_UnRegisterEvent(CAM_HANDLE hCamera, uint32_t kind);
/**
 * Registers an event of a stream; kind 1 is GenTL's new buffer. The thread of a kind other than 1 takes up to 16 bytes of each
 * event itself, so that K_Event_GetData finds what came since: such a registration tells when, not what.
 */
K_API K_STATUS_CODES K_CALL K_DataStream_RegisterEvent(STREAM_HANDLE hStream, uint32_t kind, void* target, EVT_HANDLE* phEvent);
/** Ends the thread of that kind, waiting for that up to five seconds, then unregisters it in the producer. */
K_API K_STATUS_CODES K_CALL K_DataStream_UnRegisterEvent(STREAM_HANDLE hStream, uint32_t kind);

/**
 * The data of the last event.
 *
 * Kind 1 (streams): 16 bytes, the BUF_HANDLE and the pointer that it was announced with, whatever *pSize says; it is not changed.
 * Kind 1001 (cameras): *pSize must be at least 556 and hold the record, which a producer may make longer (K_ST_GC_ERROR, "Invalid
 *     Buffer Size"). It is not changed.
 * Kind 1004 (cameras): *pSize must be at least 4; one 32-bit value. It is not changed.
 *     All three: zeros before the first event; K_ST_INVALID_PARAMETER on the other kind of module, and for 1 and 1004 once the
 *     event is unregistered.
 * Any other kind: the producer's data, for which it is given 10 ms; *pSize is the producer's, whatever the result.
 */
K_API K_STATUS_CODES K_CALL K_Event_GetData(EVT_HANDLE hEvent, void* buffer, uint32_t* pSize);
/**
 * GenTL's EVENT_INFO_CMD. *pSize is copied back whatever the result. EVENT_NUM_IN_QUEUE may be asked with 4 bytes, although the
 * standard's number has 8: more than 4 bytes can tell is 0xFFFFFFFF.
 */
K_API K_STATUS_CODES K_CALL K_Event_GetInfo(EVT_HANDLE hEvent, int32_t infoCmd, void* buffer, uint32_t* pSize);
/** Throws away what waits in the producer. */
K_API K_STATUS_CODES K_CALL K_Event_Flush(EVT_HANDLE hEvent);
/** Frees the registration. It neither unregisters the event nor ends its thread: unregister first. */
K_API K_STATUS_CODES K_CALL K_Event_Close(EVT_HANDLE hEvent);

#endif
