#include "acquisition/image_info.h"

#include <kiv/platform/debug_output.h>

#include <cstring>

namespace ImageLib {

namespace {

constexpr std::uint64_t mono8 = 0x01080001;
// What the house's GigE Vision producer tells about a buffer beyond the standard.
constexpr GenTL::BUFFER_INFO_CMD producer_specific_command = 1001;

class Question {
public:
    Question(const GenICam::Factory::CTLWrapper& producer, GenTL::DS_HANDLE stream, GenTL::BUFFER_HANDLE buffer)
        : producer_(producer), stream_(stream), buffer_(buffer) {}

    /// True when the producer answered; a smaller answer than asked for is widened with zeros.
    template <class Field>
    bool Ask(GenTL::BUFFER_INFO_CMD command, Field& field, std::size_t size = 8) const {
        std::uint64_t answer = 0;
        GenTL::INFO_DATATYPE type = 0;
        if (producer_.DSGetBufferInfo(stream_, buffer_, command, &type, &answer, &size) != GenTL::GC_ERR_SUCCESS) return false;
        if constexpr (std::is_pointer_v<Field>)
            field = reinterpret_cast<Field>(static_cast<std::uintptr_t>(answer));
        else
            field = static_cast<Field>(answer);
        return true;
    }

private:
    const GenICam::Factory::CTLWrapper& producer_;
    GenTL::DS_HANDLE stream_;
    GenTL::BUFFER_HANDLE buffer_;
};

void ask_stream(const GenICam::Factory::CTLWrapper& producer, GenTL::DS_HANDLE stream, GenTL::STREAM_INFO_CMD command,
                std::uint32_t& field) {
    std::uint64_t answer = 0;
    std::size_t size = 4;
    GenTL::INFO_DATATYPE type = 0;
    auto status = producer.DSGetInfo(stream, command, &type, &answer, &size);
    // The queue counts are 64-bit in the standard: a producer that keeps to it refuses a 4-byte answer and is asked again.
    if (status == GenTL::GC_ERR_BUFFER_TOO_SMALL || status == GenTL::GC_ERR_INVALID_BUFFER ||
        status == GenTL::GC_ERR_INVALID_PARAMETER) {
        size = 8;
        status = producer.DSGetInfo(stream, command, &type, &answer, &size);
    }
    if (status == GenTL::GC_ERR_SUCCESS) field = static_cast<std::uint32_t>(answer);
}

}  // namespace

bool describe_buffer(const GenICam::Factory::CTLWrapper& producer, GenTL::DS_HANDLE stream, GenTL::BUFFER_HANDLE buffer,
                     const BufferRing& ring, bool is_gige, K_IMAGE_INFO& info) {
    Question question(producer, stream, buffer);
    std::uint64_t size = 0;
    if (!question.Ask(GenTL::BUFFER_INFO_BASE, info.image_data)) return false;
    if (!question.Ask(GenTL::BUFFER_INFO_SIZE, size)) return false;
    if (!ring.Holds(info.image_data, size)) {
        kiv::platform::debug_print("CStreamThread: a buffer that is not within the announced memory was skipped.\n");
        return false;
    }
    info.image_size = static_cast<std::uint32_t>(size);
    if (!question.Ask(GenTL::BUFFER_INFO_PIXELFORMAT, info.pixel_type) && info.pixel_type == 0) info.pixel_type = mono8;
    if (!question.Ask(GenTL::BUFFER_INFO_WIDTH, info.width)) return false;
    if (!question.Ask(GenTL::BUFFER_INFO_HEIGHT, info.height)) return false;
    question.Ask(GenTL::BUFFER_INFO_TIMESTAMP, info.timestamp);
    if (is_gige) question.Ask(producer_specific_command, info.producer_specific, 4);
    question.Ask(GenTL::BUFFER_INFO_XOFFSET, info.offset_x);
    question.Ask(GenTL::BUFFER_INFO_YOFFSET, info.offset_y);
    question.Ask(GenTL::BUFFER_INFO_XPADDING, info.padding_x);
    question.Ask(GenTL::BUFFER_INFO_FRAMEID, info.frame_id);
    info.announced_buffers = static_cast<std::uint32_t>(ring.Count());
    ask_stream(producer, stream, GenTL::STREAM_INFO_NUM_QUEUED, info.queued_buffers);
    ask_stream(producer, stream, GenTL::STREAM_INFO_NUM_AWAIT_DELIVERY, info.await_delivery);
    return true;
}

}  // namespace ImageLib
