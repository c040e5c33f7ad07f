#include "acquisition/image_info.h"

#include <GenICam/exceptions.h>
#include <kiv/platform/debug_output.h>

#include <algorithm>
#include <limits>

#include "features/node_value.h"
#include "features/pixel_formats.h"

namespace ImageLib {

namespace {

constexpr std::uint64_t mono8 = 0x01080001;
// What the house's GigE Vision producer tells about a buffer beyond the standard.
constexpr GenTL::BUFFER_INFO_CMD producer_specific_command = 1001;

/// True when the feature is there, can be read, and its value fits.
template <class Field>
bool read(GenApi::INode* feature, Field& field) {
    if (!feature || !GenApi::IsReadable(feature)) return false;
    try {
        std::int64_t value = 0;
        if (!kiv::get_int64(*feature, false, value)) return false;
        if (value < 0 || static_cast<std::uint64_t>(value) > std::numeric_limits<Field>::max()) return false;
        field = static_cast<Field>(value);
        return true;
    } catch (const GenICam::GenericException&) {
        return false;
    }
}

/// Bytes from one line to the next; 0 when the pixel type does not say how many bits a pixel has.
std::uint64_t line_length(const K_IMAGE_INFO& info) {
    const std::uint64_t bits = info.pixel_type >> 16 & 0xFF;
    return bits == 0 ? 0 : (info.width * bits + 7) / 8 + info.padding_x;
}

}  // namespace

ImageDescriber::ImageDescriber(GenICam::Factory::CCameraClass& camera, GenApi::INodeMap* map, const BufferRing& ring,
                               bool is_gige)
    : camera_(camera), ring_(ring), is_gige_(is_gige) {
    if (!map) return;
    features_ = {map->GetNode("ChunkWidth"),   map->GetNode("ChunkHeight"),      map->GetNode("ChunkOffsetX"),
                 map->GetNode("ChunkOffsetY"), map->GetNode("ChunkPixelFormat"), map->GetNode("Height")};
}

bool ImageDescriber::Describe(BufferQuestion& question, K_IMAGE_INFO& info) {
    has_frame_id_ = false;
    void* base = nullptr;
    std::uint64_t size = 0;
    if (!question.Ask(GenTL::BUFFER_INFO_BASE, base)) return false;
    if (!question.Ask(GenTL::BUFFER_INFO_SIZE, size)) return false;
    if (!ring_.Holds(base, size)) {
        kiv::platform::debug_print("CStreamThread: a buffer that is not within the announced memory was skipped.\n");
        return false;
    }
    info.image_data = base;
    info.image_size = static_cast<std::uint32_t>(size);
    if (std::uint64_t reported = 0; question.Ask(GenTL::BUFFER_INFO_PIXELFORMAT, reported))
        info.pixel_type = kiv::local_pixel_type(camera_, reported);
    else if (info.pixel_type == 0)
        info.pixel_type = mono8;
    if (!question.Ask(GenTL::BUFFER_INFO_WIDTH, info.width)) return false;
    if (!question.Ask(GenTL::BUFFER_INFO_HEIGHT, info.height)) return false;
    question.Ask(GenTL::BUFFER_INFO_TIMESTAMP, info.timestamp);
    if (is_gige_) question.Ask(producer_specific_command, info.producer_specific, 4);
    question.Ask(GenTL::BUFFER_INFO_XOFFSET, info.offset_x);
    question.Ask(GenTL::BUFFER_INFO_YOFFSET, info.offset_y);
    question.Ask(GenTL::BUFFER_INFO_XPADDING, info.padding_x);
    has_frame_id_ = question.Ask(GenTL::BUFFER_INFO_FRAMEID, info.frame_id);
    info.announced_buffers = static_cast<std::uint32_t>(ring_.Count());
    return true;
}

void ImageDescriber::DescribeQueues(ProducerGate& gate, GenTL::DS_HANDLE stream, K_IMAGE_INFO& info) {
    AskQueue(gate, stream, GenTL::STREAM_INFO_NUM_QUEUED, info.queued_buffers);
    AskQueue(gate, stream, GenTL::STREAM_INFO_NUM_AWAIT_DELIVERY, info.await_delivery);
}

void ImageDescriber::AskQueue(ProducerGate& gate, GenTL::DS_HANDLE stream, GenTL::STREAM_INFO_CMD command, std::uint32_t& field) {
    std::uint64_t answer = 0;
    auto ask = [&](std::size_t size) {
        GenTL::INFO_DATATYPE type = 0;
        return gate.Through([&] { return camera_.Producer().DSGetInfo(stream, command, &type, &answer, &size); });
    };
    auto status = ask(queue_count_size_);
    // The queue counts are 64-bit in the standard: a producer that keeps to it refuses a 4-byte answer and is asked again, and
    // from then on in its own form at once.
    if (queue_count_size_ == 4 && (status == GenTL::GC_ERR_BUFFER_TOO_SMALL || status == GenTL::GC_ERR_INVALID_BUFFER ||
                                   status == GenTL::GC_ERR_INVALID_PARAMETER)) {
        status = ask(8);
        if (status == GenTL::GC_ERR_SUCCESS) queue_count_size_ = 8;
    }
    if (status == GenTL::GC_ERR_SUCCESS) field = static_cast<std::uint32_t>(answer);
}

void ImageDescriber::Complete(BufferQuestion& question, K_IMAGE_INFO& info) {
    if (info.width == 0 && info.height == 0) {
        // Nothing but chunks: the image is one of them, and its size another.
        question.InMap([&] {
            read(features_.chunk_width, info.width);
            read(features_.chunk_height, info.height);
            read(features_.chunk_offset_x, info.offset_x);
            read(features_.chunk_offset_y, info.offset_y);
            read(features_.chunk_pixel_format, info.pixel_type);
            return K_ST_SUCCESS;
        });
    }
    if (info.width != 0 && info.height == 0) CompleteHeight(question, info);
}

void ImageDescriber::CompleteHeight(BufferQuestion& question, K_IMAGE_INFO& info) const {
    // There are cameras that never say how many lines they have sent: the producer counted them, or the camera's setting tells,
    // or the bytes do.
    const auto line = line_length(info);
    auto tells = [&](GenApi::INode* feature, std::uint32_t& lines) {
        return question.InMap([&] { return read(feature, lines) ? K_ST_SUCCESS : K_ST_NO_DATA; }) == K_ST_SUCCESS;
    };
    auto fits = [&](std::uint64_t lines) { return lines > 0 && (line == 0 || lines <= info.image_size / line); };
    std::uint32_t lines = 0;
    if (question.Ask(GenTL::BUFFER_INFO_DELIVERED_IMAGEHEIGHT, lines) && fits(lines))
        info.height = lines;
    else if (tells(features_.chunk_height, lines) && fits(lines))
        info.height = lines;
    else if (tells(features_.height, lines) && fits(lines))
        info.height = lines;
    else if (std::uint64_t bytes = 0; line > 0 && question.Ask(GenTL::BUFFER_INFO_SIZE_FILLED, bytes))
        info.height = static_cast<std::uint32_t>(std::min<std::uint64_t>(bytes, info.image_size) / line);
}

}  // namespace ImageLib
