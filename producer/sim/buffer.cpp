#include "buffer.h"

#include <algorithm>

#include "flavour.h"

namespace kivsim {

Buffer::Buffer(void* memory, size_t size, void* user_pointer)
    : own_(memory ? nullptr : std::make_unique<std::byte[]>(size)),
      memory_(memory ? memory : own_.get()),
      size_(size),
      user_pointer_(user_pointer) {}

Info Buffer::GetInfo(GenTL::BUFFER_INFO_CMD command, const std::string& tl_type) const {
    using enum Place;
    const Place place = GetPlace();
    switch (command) {
        case GenTL::BUFFER_INFO_BASE:
            return Info::Pointer(memory_);
        case GenTL::BUFFER_INFO_SIZE:
            return ReportedSize(SizeKind::Buffer, size_);
        case GenTL::BUFFER_INFO_USER_PTR:
            return Info::Pointer(user_pointer_);
        case GenTL::BUFFER_INFO_NEW_DATA:
            return Info::Bool(content_.new_data);
        case GenTL::BUFFER_INFO_IS_QUEUED:
            return Info::Bool(place != Nowhere);
        case GenTL::BUFFER_INFO_IS_ACQUIRING:
            return Info::Bool(place == Filling);
        case GenTL::BUFFER_INFO_IS_INCOMPLETE:
            return Info::Bool(content_.incomplete);
        case GenTL::BUFFER_INFO_TLTYPE:
            return Info::Text(tl_type);
        case GenTL::BUFFER_INFO_SIZE_FILLED:
            return ReportedSize(SizeKind::Filled, content_.filled);
        case GenTL::BUFFER_INFO_DATA_SIZE:
            return Info::Size(content_.frame.size);
        case GenTL::BUFFER_INFO_DATA_LARGER_THAN_BUFFER:
            return Info::Bool(content_.too_large);
        case GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA:
            return Info::Bool(content_.frame.chunk_layout != 0);
        case GenTL::BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE:
            return Info::Size(content_.frame.chunk_layout != 0 ? content_.filled : 0);
        case GenTL::BUFFER_INFO_CHUNKLAYOUTID:
            return Info::Uint64(content_.frame.chunk_layout);
        case GenTL::BUFFER_INFO_IMAGEPRESENT:
            return Info::Bool(content_.new_data && !content_.frame.chunks_only);
        case GenTL::BUFFER_INFO_PAYLOADTYPE:
            return Info::Size(!content_.new_data           ? GenTL::PAYLOAD_TYPE_UNKNOWN
                              : content_.frame.chunks_only ? GenTL::PAYLOAD_TYPE_CHUNK_ONLY
                                                           : GenTL::PAYLOAD_TYPE_IMAGE);
        case GenTL::BUFFER_INFO_FRAMEID:
            return Info::Uint64(content_.frame.frame_id);
        default:
            return GetFrameInfo(command);
    }
}

Info Buffer::ReportedSize(SizeKind kind, size_t size) const { return Info::Size(content_.wrong_size.Of(kind, size)); }

std::vector<GenTL::SINGLE_CHUNK_DATA> Buffer::Chunks() const {
    if (!content_.new_data || content_.frame.chunk_layout == 0) fail(GenTL::GC_ERR_NO_DATA, "There are no chunks in this buffer");
    constexpr size_t trailer_size = 8;
    const auto* bytes = static_cast<const unsigned char*>(memory_);
    const auto number = [&](size_t at) {
        return uint32_t{bytes[at]} << 24 | uint32_t{bytes[at + 1]} << 16 | uint32_t{bytes[at + 2]} << 8 | bytes[at + 3];
    };
    std::vector<GenTL::SINGLE_CHUNK_DATA> chunks;
    for (size_t end = content_.incomplete ? 1 : content_.filled; end != 0;) {
        const size_t length = end < trailer_size ? end : number(end - 4);
        if (end < trailer_size || length > end - trailer_size)
            fail(GenTL::GC_ERR_PARSING_CHUNK_DATA, "The chunks of this buffer are not whole");
        const size_t offset = end - trailer_size - length;
        chunks.push_back({number(end - trailer_size), static_cast<ptrdiff_t>(offset), length});
        end = offset;
    }
    std::reverse(chunks.begin(), chunks.end());
    return chunks;
}

Info Buffer::GetFrameInfo(GenTL::BUFFER_INFO_CMD command) const {
    constexpr GenTL::BUFFER_INFO_CMD missing_packets = 1001;
    if (flavour.gige && command == missing_packets) return Info::Uint32(content_.missing_packets);
    if (command < GenTL::BUFFER_INFO_BASE || command > GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA)
        fail_unknown_command("DSGetBufferInfo", command);
    if (!content_.new_data) fail(GenTL::GC_ERR_NOT_AVAILABLE, "There is no image in this buffer");
    const FrameInfo& frame = content_.frame;
    const bool only_chunks = frame.chunks_only;
    switch (command) {
        case GenTL::BUFFER_INFO_TIMESTAMP:
        case GenTL::BUFFER_INFO_TIMESTAMP_NS:
            return Info::Uint64(frame.timestamp_ns);  // one tick is a nanosecond
        case GenTL::BUFFER_INFO_WIDTH:
            return ReportedSize(SizeKind::Image, only_chunks ? 0 : frame.width);
        case GenTL::BUFFER_INFO_HEIGHT:
            return ReportedSize(SizeKind::Image, only_chunks ? 0 : frame.height);
        case GenTL::BUFFER_INFO_DELIVERED_IMAGEHEIGHT:
            return Info::Size(only_chunks || frame.image_size == 0
                                  ? 0
                                  : frame.height * std::min(content_.filled, frame.image_size) / frame.image_size);
        case GenTL::BUFFER_INFO_XOFFSET:
            return Info::Size(only_chunks ? 0 : frame.offset_x);
        case GenTL::BUFFER_INFO_YOFFSET:
            return Info::Size(only_chunks ? 0 : frame.offset_y);
        case GenTL::BUFFER_INFO_XPADDING:
        case GenTL::BUFFER_INFO_YPADDING:
        case GenTL::BUFFER_INFO_IMAGEOFFSET:
            return Info::Size(0);
        case GenTL::BUFFER_INFO_PIXELFORMAT:
            if (only_chunks) fail(GenTL::GC_ERR_NOT_AVAILABLE, "Only a chunk tells the pixel format of this buffer");
            return Info::Uint64(frame.pixel_format);
        case GenTL::BUFFER_INFO_PIXELFORMAT_NAMESPACE:
            return Info::Uint64(GenTL::PIXELFORMAT_NAMESPACE_PFNC_32BIT);
        case GenTL::BUFFER_INFO_PIXEL_ENDIANNESS:
            return Info::Int32(GenTL::PIXELENDIANNESS_LITTLE);
        default:
            fail(GenTL::GC_ERR_NOT_AVAILABLE, "An image has no file name");
    }
}

}  // namespace kivsim
