// K_GenTL_*: events of bare modules, as the producer has them.
#include <kiv/gentl.h>

#include <algorithm>
#include <array>

#include "acquisition/event_registration.h"
#include "api/adaptors.h"
#include "api/checks.h"

using namespace kiv;
using namespace kiv::api;

// Our own objects stand for the producer's.
static GenTL::DS_HANDLE stream_behind(void* hStream) {
    handle(hStream);
    if (is_live(hStream, HandleKind::stream)) return data_stream(static_cast<STREAM_HANDLE>(hStream))->Handle();
    if (!is_live(hStream, HandleKind::thread)) return hStream;
    auto stream = image_stream(static_cast<THRD_HANDLE>(hStream))->Stream();
    handle(stream);
    return stream;
}

static GenTL::DEV_HANDLE device_behind(void* hDevice) {
    handle(hDevice);
    return is_live(hDevice, HandleKind::camera) ? camera(static_cast<CAM_HANDLE>(hDevice)).DeviceHandle() : hDevice;
}

K_API K_STATUS_CODES K_CALL K_GenTL_DataStream_RegisterEvent(TRANSPORT_LAYER_HANDLE hTransportLayer, void* hStream, uint32_t kind,
                                                             void** phEvent) {
    return guarded([&] {
        auto& producer = transport_layer(hTransportLayer);
        auto stream = stream_behind(hStream);
        auto register_event = entry(producer.GCRegisterEvent);
        require(kind < event_kind::none);
        auto& result = out(phEvent);
        GenTL::EVENT_HANDLE registered = nullptr;
        auto status = register_event(stream, static_cast<GenTL::EVENT_TYPE>(kind), &registered);
        if (status == K_ST_SUCCESS) result = registered;
        return status;
    });
}

K_API K_STATUS_CODES K_CALL K_GenTL_Event_GetData(TRANSPORT_LAYER_HANDLE hTransportLayer, void* hEvent, void* buffer,
                                                  uint32_t* pSize, uint64_t timeoutMs) {
    return guarded([&] {
        auto& producer = transport_layer(hTransportLayer);
        handle(hEvent);
        auto get = entry(producer.EventGetData);
        auto& size = out(pSize);
        return get(hEvent, buffer, WideSize(size), timeoutMs);
    });
}

K_API K_STATUS_CODES K_CALL K_GenTL_GigE_CreateEvents(TRANSPORT_LAYER_HANDLE hTransportLayer, void* hDevice, void* events[3]) {
    return guarded([&]() -> K_STATUS_CODES {
        auto& producer = transport_layer(hTransportLayer);
        auto device = device_behind(hDevice);
        auto register_event = entry(producer.GCRegisterEvent);
        out(events);
        if (!producer.IsGigE()) return K_ST_NOT_IMPLEMENTED;
        constexpr std::array kinds{event_kind::messages, event_kind::device_record, event_kind::device_value};
        std::array<void*, kinds.size()> registered{};
        K_STATUS_CODES first_refusal = K_ST_SUCCESS;
        bool any = false;
        for (std::size_t i = 0; i < kinds.size(); ++i) {
            auto status = register_event(device, static_cast<GenTL::EVENT_TYPE>(kinds[i]), &registered[i]);
            if (status == K_ST_SUCCESS)
                any = true;
            else
                registered[i] = nullptr;
            if (first_refusal == K_ST_SUCCESS) first_refusal = status;
        }
        if (!any) return first_refusal;
        std::ranges::copy(registered, events);
        return K_ST_SUCCESS;
    });
}
