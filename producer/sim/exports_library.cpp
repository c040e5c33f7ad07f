// The exported functions of the library and of the events. No decision is taken here.

#include "module.h"
#include "session.h"
#include "system.h"

namespace GenTL {

using namespace kivsim;

extern "C" {

GC_API GCInitLib(void) {
    return guarded(__func__, nullptr, [] { begin_session(); });
}

GC_API GCCloseLib(void) {
    return guarded(__func__, nullptr, [] { end_session(); });
}

GC_API GCGetInfo(TL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize) {
    return guarded(__func__, nullptr, [&] { write_info(system_info(*current_session(), iInfoCmd), piType, pBuffer, piSize); });
}

GC_API GCGetLastError(GC_ERROR* piErrorCode, char* sErrText, size_t* piSize) {
    try {
        current_session();
        const LastError error = last_error();
        GC_ERROR& code = mandatory(piErrorCode, "piErrorCode");
        write_text(error.text, sErrText, piSize);
        code = error.code;
        return GC_ERR_SUCCESS;
    } catch (...) {
        return status_of_current_exception();
    }
}

GC_API GCRegisterEvent(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE iEventID, EVENT_HANDLE* phEvent) {
    return guarded(__func__, hEventSrc, [&] {
        const Locked<Object> source(hEventSrc);
        EVENT_HANDLE& handle = mandatory(phEvent, "phEvent");
        handle = events_of(*source).Register(iEventID)->Handle();
    });
}

GC_API GCUnregisterEvent(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE iEventID) {
    return guarded(__func__, hEventSrc, [&] {
        const Locked<Object> source(hEventSrc);
        events_of(*source).Unregister(iEventID);
    });
}

GC_API EventGetData(EVENT_HANDLE hEvent, void* pBuffer, size_t* piSize, uint64_t iTimeout) {
    return guarded(__func__, hEvent, [&] { Found<EventQueue>(hEvent)->Get(pBuffer, piSize, iTimeout); });
}

GC_API EventGetDataInfo(EVENT_HANDLE hEvent, const void* pInBuffer, size_t iInSize, EVENT_DATA_INFO_CMD iInfoCmd,
                        INFO_DATATYPE* piType, void* pOutBuffer, size_t* piOutSize) {
    return guarded(__func__, hEvent, [&] {
        const Found<EventQueue> event(hEvent);
        write_info(event->GetDataInfo(pInBuffer, iInSize, iInfoCmd), piType, pOutBuffer, piOutSize);
    });
}

GC_API EventGetInfo(EVENT_HANDLE hEvent, EVENT_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize) {
    return guarded(__func__, hEvent, [&] { write_info(Found<EventQueue>(hEvent)->GetInfo(iInfoCmd), piType, pBuffer, piSize); });
}

GC_API EventFlush(EVENT_HANDLE hEvent) {
    return guarded(__func__, hEvent, [&] { Found<EventQueue>(hEvent)->Flush(); });
}

GC_API EventKill(EVENT_HANDLE hEvent) {
    return guarded(__func__, hEvent, [&] { Found<EventQueue>(hEvent)->Kill(); });
}

}  // extern "C"
}  // namespace GenTL
