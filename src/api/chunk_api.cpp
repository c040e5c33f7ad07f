// K_Camera_...ChunkData: which buffer the chunk features of a camera read from.
#include <kiv/chunk.h>

#include "api/checks.h"

using namespace kiv;
using namespace kiv::api;

static_assert(sizeof(K_SINGLE_CHUNK_DATA) == sizeof(GenApi::SingleChunkData_t));

// The remote device is shared: callbacks that run inside its node map may close the camera.
static auto remote_device(CAM_HANDLE hCamera) { return camera(hCamera).ShareRemoteDevice(); }

// Here the buffer and the list count as handles.
K_API K_STATUS_CODES K_CALL K_Camera_AttachChunkData(CAM_HANDLE hCamera, void* buffer, const K_SINGLE_CHUNK_DATA* chunks,
                                                     uint64_t count) {
    return guarded([&] {
        auto remote = remote_device(hCamera);
        handle(buffer);
        handle(chunks);
        auto* list = reinterpret_cast<const GenApi::SingleChunkData_t*>(chunks);
        return remote->Chunks().Attach(buffer, GenICam::Factory::CChunkPorts::unknown_length, list, count);
    });
}

K_API K_STATUS_CODES K_CALL K_Camera_UpdateChunkData(CAM_HANDLE hCamera, void* buffer) {
    return guarded([&] {
        auto remote = remote_device(hCamera);
        handle(buffer);
        return remote->Chunks().Update(buffer);
    });
}

K_API K_STATUS_CODES K_CALL K_Camera_DetachChunkData(CAM_HANDLE hCamera) {
    return guarded([&] { return remote_device(hCamera)->Chunks().Detach(); });
}
