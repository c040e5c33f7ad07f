/// Keeps the camera's chunk features on the buffer that the stream thread is handing out.
#pragma once

#include <GenApi/chunk_adapter.h>
#include <kiv/image_info.h>

#include <vector>

#include "acquisition/buffer_question.h"
#include "camera/chunk_ports.h"

namespace ImageLib {

/// Used on the stream thread only. Attaches where the chunk layout is new, and only follows where it is the same.
class ChunkData {
public:
    explicit ChunkData(GenICam::Factory::CChunkPorts& ports) : ports_(ports) {}

    /// Lays the chunks of the described buffer under the camera's features, and keeps the layout's id in the record. A buffer
    /// whose chunks cannot be had leaves the features not available: better none than those of another image. At most one text
    /// to the debugger output.
    void Follow(BufferQuestion& question, K_IMAGE_INFO& info);

private:
    bool HasChunks(BufferQuestion& question);
    void FollowSameLayout(BufferQuestion& question, const K_IMAGE_INFO& info);
    void FollowNewLayout(BufferQuestion& question, const K_IMAGE_INFO& info);
    void Failed(BufferQuestion& question, const wchar_t* text);
    bool FetchList(BufferQuestion& question, std::size_t& count);
    void Lose(BufferQuestion& question);

    GenICam::Factory::CChunkPorts& ports_;
    std::uint64_t last_layout_ = 0;
    bool attached_ = false;
    bool tells_presence_ = true;  // until the producer says that it does not
    std::uint64_t extent_ = 0;    // bytes of a buffer that the attached chunks need
    std::vector<GenApi::SingleChunkData_t> list_;
};

}  // namespace ImageLib
