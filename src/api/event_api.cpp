// K_Event_*, and the registering of events on cameras, streams and bare modules.
#include <kiv/event.h>

#include "acquisition/event_registration.h"
#include "api/adaptors.h"
#include "api/checks.h"

using namespace kiv;
using namespace kiv::api;

// ---- conditions ----

K_API K_STATUS_CODES K_CALL K_Event_CreateCondition(EVT_CONDITION_HANDLE* phCondition) {
    return guarded_as(K_ST_INVALID_ADDRESS, [&] {
        auto& result = out(phCondition);
        std::shared_ptr<Condition> made = std::make_unique<Condition>();
        result = open_handle<EVT_CONDITION_HANDLE>(std::move(made));
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Event_SignalCondition(EVT_CONDITION_HANDLE hCondition) {
    return guarded([&] { return condition(hCondition)->signal.Set(), K_ST_SUCCESS; });
}

K_API K_STATUS_CODES K_CALL K_Event_ExitCondition(EVT_CONDITION_HANDLE hCondition) {
    return guarded([&] { return condition(hCondition)->exit.Set(), K_ST_SUCCESS; });
}

K_API K_STATUS_CODES K_CALL K_Event_ResetCondition(EVT_CONDITION_HANDLE hCondition) {
    return guarded([&] { return condition(hCondition)->signal.Reset(), K_ST_SUCCESS; });
}

// What a wait raises, beyond its own failure, has a status of its own.
static constexpr K_STATUS_CODES raised = -1;

K_API K_STATUS_CODES K_CALL K_Event_WaitForCondition(EVT_CONDITION_HANDLE hCondition, uint32_t timeoutMs, uint32_t* pResult) {
    return guarded_as(raised, [&] {
        const std::shared_ptr<Condition> only[] = {condition(hCondition)};
        auto& result = out(pResult);
        result = wait_for_conditions(only, timeoutMs);
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Event_WaitForMultipleConditions(uint32_t count, const EVT_CONDITION_HANDLE* conditions,
                                                              uint32_t timeoutMs, uint32_t* pResult) {
    return guarded_as(raised, [&] {
        require(count >= 1 && count <= 10);
        handle(conditions);
        std::vector<std::shared_ptr<Condition>> waited_for;
        for (uint32_t i = 0; i < count; ++i) waited_for.push_back(condition(conditions[i]));
        auto& result = out(pResult);
        result = wait_for_conditions(waited_for, timeoutMs);
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Event_CloseCondition(EVT_CONDITION_HANDLE hCondition) {
    return guarded([&] {
        // Whoever still waits is let go: nobody could do it later.
        closed<Condition>(hCondition)->exit.Set();
        return K_ST_SUCCESS;
    });
}

// ---- for loops of the caller's own ----

static K_STATUS_CODES put_descriptor(const platform::Event& event, int32_t* pFd) {
    auto& result = out(pFd);
    auto descriptor = event.FileDescriptor();
    if (!descriptor) return K_ST_NOT_IMPLEMENTED;
    result = *descriptor;
    return K_ST_SUCCESS;
}

K_API K_STATUS_CODES K_CALL K_Event_GetConditionFd(EVT_CONDITION_HANDLE hCondition, int32_t* pFd) {
    return guarded([&] { return put_descriptor(condition(hCondition)->signal, pFd); });
}

K_API K_STATUS_CODES K_CALL K_Event_GetConditionExitFd(EVT_CONDITION_HANDLE hCondition, int32_t* pFd) {
    return guarded([&] { return put_descriptor(condition(hCondition)->exit, pFd); });
}

K_API K_STATUS_CODES K_CALL K_Event_CreatePlainEvent(bool8_kiv manualReset, void** phPlainEvent) {
    return guarded_as(K_ST_INVALID_ADDRESS, [&] {
        auto& result = out(phPlainEvent);
        auto mode = manualReset ? platform::ResetMode::manual : platform::ResetMode::automatic;
        std::shared_ptr<platform::Event> made = std::make_unique<platform::Event>(mode);
        result = open_handle<void*>(std::move(made));
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Event_GetPlainEventFd(void* hPlainEvent, int32_t* pFd) {
    return guarded([&] { return put_descriptor(*shared_of<platform::Event>(hPlainEvent), pFd); });
}

K_API K_STATUS_CODES K_CALL K_Event_ClosePlainEvent(void* hPlainEvent) {
    return guarded([&] { return closed<platform::Event>(hPlainEvent), K_ST_SUCCESS; });
}

// ---- registered events ----

// Here a missing target or result counts as a bad handle, too.
template <class Events>
static K_STATUS_CODES register_event(Events events_of, uint32_t kind, void* target, EVT_HANDLE* phEvent) {
    handle(target);
    handle(phEvent);
    require(kind < event_kind::none);
    auto what_to_set = EventTarget::At(target);
    std::shared_ptr<EventRegistration> registered;
    auto status = events_of()->Register(kind, what_to_set, registered);
    if (status == K_ST_SUCCESS) *phEvent = open_handle<EVT_HANDLE>(std::move(registered));
    return status;
}

K_API K_STATUS_CODES K_CALL K_Camera_RegisterEvent(CAM_HANDLE hCamera, uint32_t kind, void* target, EVT_HANDLE* phEvent) {
    return guarded([&] {
        auto& opened = camera(hCamera);
        return register_event([&] { return camera_events(opened); }, kind, target, phEvent);
    });
}

K_API K_STATUS_CODES K_CALL K_Camera_UnRegisterEvent(CAM_HANDLE hCamera, uint32_t kind) {
    return guarded([&] {
        auto& opened = camera(hCamera);
        require(kind < event_kind::none);
        return camera_events(opened)->Unregister(kind);
    });
}

K_API K_STATUS_CODES K_CALL K_DataStream_RegisterEvent(STREAM_HANDLE hStream, uint32_t kind, void* target, EVT_HANDLE* phEvent) {
    return guarded([&] {
        auto stream = data_stream(hStream);
        return register_event([&] { return &stream->Events(); }, kind, target, phEvent);
    });
}

K_API K_STATUS_CODES K_CALL K_DataStream_UnRegisterEvent(STREAM_HANDLE hStream, uint32_t kind) {
    return guarded([&] {
        auto stream = data_stream(hStream);
        require(kind < event_kind::none);
        return stream->Events().Unregister(kind);
    });
}

K_API K_STATUS_CODES K_CALL K_Event_GetData(EVT_HANDLE hEvent, void* buffer, uint32_t* pSize) {
    return guarded([&] {
        auto registered = event(hEvent);
        out(buffer);
        return registered->GetData(buffer, out(pSize));
    });
}

K_API K_STATUS_CODES K_CALL K_Event_GetInfo(EVT_HANDLE hEvent, int32_t infoCmd, void* buffer, uint32_t* pSize) {
    return guarded([&] {
        auto registered = event(hEvent);
        require(infoCmd >= 0);
        out(buffer);
        return registered->GetInfo(infoCmd, buffer, out(pSize));
    });
}

K_API K_STATUS_CODES K_CALL K_Event_Flush(EVT_HANDLE hEvent) {
    return guarded([&] { return event(hEvent)->Flush(); });
}

K_API K_STATUS_CODES K_CALL K_Event_Close(EVT_HANDLE hEvent) {
    return guarded([&] { return closed<EventRegistration>(hEvent), K_ST_SUCCESS; });
}
