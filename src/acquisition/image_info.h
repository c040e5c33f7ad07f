/// From a delivered buffer to the record that callbacks receive.
#pragma once

#include <GenApi/i_node_map.h>
#include <kiv/image_info.h>

#include "acquisition/buffer_question.h"
#include "acquisition/buffer_ring.h"
#include "camera/camera.h"

namespace ImageLib {

/// Fills the record of one stream's images. Used on the stream thread only.
class ImageDescriber {
public:
    /// `map` is the camera's, or null.
    ImageDescriber(GenICam::Factory::CCameraClass& camera, GenApi::INodeMap* map, const BufferRing& ring, bool is_gige);

    /// Asks the producer about one buffer. Fields that it cannot tell keep what the record held before. False when base, size,
    /// width or height are not to be had, or lie outside the announced memory: such a buffer must not be looked at.
    bool Describe(BufferQuestion& question, K_IMAGE_INFO& info);
    /// How full the stream's queues are.
    void DescribeQueues(ProducerGate& gate, GenTL::DS_HANDLE stream, K_IMAGE_INFO& info);
    /// Completes a size of which the producer told nothing, or no height. The chunks of the buffer must be attached.
    void Complete(BufferQuestion& question, K_IMAGE_INFO& info);

    /// Whether the last Describe() learnt the image's frame id.
    bool HasFrameId() const { return has_frame_id_; }

private:
    struct Features {
        GenApi::INode* chunk_width = nullptr;
        GenApi::INode* chunk_height = nullptr;
        GenApi::INode* chunk_offset_x = nullptr;
        GenApi::INode* chunk_offset_y = nullptr;
        GenApi::INode* chunk_pixel_format = nullptr;
        GenApi::INode* height = nullptr;
    };

    void AskQueue(ProducerGate& gate, GenTL::DS_HANDLE stream, GenTL::STREAM_INFO_CMD command, std::uint32_t& field);
    void CompleteHeight(BufferQuestion& question, K_IMAGE_INFO& info) const;

    GenICam::Factory::CCameraClass& camera_;
    Features features_;
    const BufferRing& ring_;
    bool is_gige_;
    bool has_frame_id_ = false;
    std::size_t queue_count_size_ = 4;  // the form in which this producer tells the queue counts
};

}  // namespace ImageLib
