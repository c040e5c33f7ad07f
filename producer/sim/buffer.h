/// One announced buffer of a stream: its memory, where it is in its life cycle, and what the engine wrote into it.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "camera/camera.h"
#include "camera/frame_faults.h"
#include "handles.h"
#include "info.h"

namespace kivsim {

class Buffer : public Object {
public:
    /// Nowhere: in the consumer's hands, or announced and never queued.
    enum class Place { Nowhere, Input, Filling, Output };

    /// What the engine says about a fill.
    struct Content {
        FrameInfo frame;
        size_t filled = 0;  ///< bytes that were written
        bool new_data = false;
        bool incomplete = false;
        bool too_large = false;  ///< the image did not fit
        uint32_t missing_packets = 0;
        WrongSize wrong_size;
    };

    /// Over the consumer's memory, or (null) over memory of its own.
    Buffer(void* memory, size_t size, void* user_pointer);

    void* Memory() const noexcept { return memory_; }
    std::span<std::byte> Bytes() const noexcept { return {static_cast<std::byte*>(memory_), size_}; }
    void* UserPointer() const noexcept { return user_pointer_; }
    bool OwnsMemory() const noexcept { return own_ != nullptr; }

    /// Changed under the stream's lock, but for Output -> Nowhere, which belongs to the lock of the output queue.
    Place GetPlace() const noexcept { return place_; }
    void SetPlace(Place place) noexcept { place_ = place; }

    /// Under the stream's lock.
    void SetContent(const Content& content) { content_ = content; }
    Info GetInfo(GenTL::BUFFER_INFO_CMD command, const std::string& tl_type) const;
    /// Where the chunks lie, found from the end of what was filled. Throws NO_DATA without chunks, PARSING_CHUNK_DATA when the
    /// bytes are none.
    std::vector<GenTL::SINGLE_CHUNK_DATA> Chunks() const;

private:
    /// A size as it is, or as the camera was asked to misstate it.
    Info ReportedSize(SizeKind kind, size_t size) const;
    Info GetFrameInfo(GenTL::BUFFER_INFO_CMD command) const;

    std::unique_ptr<std::byte[]> own_;
    void* memory_;
    size_t size_;
    void* user_pointer_;
    std::atomic<Place> place_{Place::Nowhere};
    Content content_;
};

}  // namespace kivsim
