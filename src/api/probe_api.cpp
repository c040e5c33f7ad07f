// K_Factory_Camera_Link_*
#include <kiv/camera_link.h>
#include <kiv/platform/debug_output.h>

#include <stdexcept>

#include "api/checks.h"
#include "transport/camera_link_probe.h"
#include "transport/cancel_event.h"

using namespace kiv;
using namespace kiv::api;

K_API K_STATUS_CODES K_CALL K_Factory_Camera_Link_Probe(char* ports, char* deviceIds, char* modelNames, char* currentRates,
                                                        char* supportedRates, uint64_t size, const char* cancelEventName) {
    return guarded([&]() -> K_STATUS_CODES {
        char* const buffers[] = {ports, deviceIds, modelNames, currentRates, supportedRates};
        for (const char* buffer : buffers) out(buffer);
        CameraLinkFindings findings;
        require_success(probe_camera_link(cancelEventName, findings));
        for (std::size_t i = 0; i < std::size(buffers); ++i) {
            const std::string& text = findings.texts[i];
            if (size != 0 && text.size() >= size)
                platform::debug_print("K_Factory_Camera_Link_Probe: a text is longer than said\n");
            // Whole, whatever the caller said: the room is the caller's promise.
            buffers[i][text.copy(buffers[i], text.size())] = '\0';
        }
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Factory_Camera_Link_CreateCancelEvent(const char* name, CANCEL_EVENT_HANDLE* phCancelEvent) {
    return guarded([&]() -> K_STATUS_CODES {
        auto& result = out(phCancelEvent);
        out(name);
        try {
            result = reinterpret_cast<CANCEL_EVENT_HANDLE>(std::make_unique<CancelEvent>(name).release());
        } catch (const std::invalid_argument&) {
            return K_ST_INVALID_PARAMETER;
        }
        return K_ST_SUCCESS;
    });
}

K_API K_STATUS_CODES K_CALL K_Factory_Camera_Link_Cancel(CANCEL_EVENT_HANDLE hCancelEvent) {
    if (!is_live(hCancelEvent, HandleKind::cancel_event)) return K_ST_INVALID_HANDLE;
    reinterpret_cast<CancelEvent*>(hCancelEvent)->Set();
    return K_ST_SUCCESS;
}

K_API K_STATUS_CODES K_CALL K_Factory_Camera_Link_CloseCancelEvent(CANCEL_EVENT_HANDLE hCancelEvent) {
    return guarded([&]() -> K_STATUS_CODES {
        if (!retire_handle(hCancelEvent, HandleKind::cancel_event)) return K_ST_INVALID_HANDLE;
        const std::unique_ptr<CancelEvent> closed(reinterpret_cast<CancelEvent*>(hCancelEvent));
        return K_ST_SUCCESS;
    });
}
