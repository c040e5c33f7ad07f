/// The chunks that a camera appends to its images: what there is, and how they stand in the payload.
///
///     image, id, length; data, id, length; ...      id and length big endian, 4 bytes each; the data little endian
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace kivsim {

/// Numbers as in ChunkSelector.
enum class ChunkKind : uint32_t {
    Image,
    OffsetX,
    OffsetY,
    Width,
    Height,
    PixelFormat,
    LinePitch,
    Timestamp,
    FrameID,
    ExposureTime,
    Gain,
    BlackLevel,
    LineStatusAll,
    CounterValue,
    Count
};
constexpr size_t kChunkKinds = static_cast<size_t>(ChunkKind::Count);

/// As in the ChunkID of its port.
constexpr uint32_t chunk_id(ChunkKind kind) { return 0x000C0000U + static_cast<uint32_t>(kind); }

struct ChunkSettings {
    bool active = false;
    bool payload_only = false;  ///< the image travels as one of the chunks, and nothing but them tells what it is
    uint32_t enabled = 1;       ///< a bit for each ChunkKind; the image is always there

    bool operator==(const ChunkSettings&) const = default;
    bool Has(ChunkKind kind) const { return active && (enabled >> static_cast<uint32_t>(kind) & 1) != 0; }
    /// Bytes behind the image: its own trailer, and the other chunks with theirs.
    size_t TailSize() const;
    /// The same for buffers whose chunks lie at the same places; 0 without chunks.
    uint64_t LayoutId(size_t image_size) const;
};

struct ChunkValues {
    uint32_t offset_x = 0, offset_y = 0, width = 0, height = 0, pixel_format = 0, line_pitch = 0, lines = 0;
    uint64_t timestamp_ns = 0, frame_id = 0;
    double exposure_us = 0, gain_db = 0, black_level = 0;
    std::array<uint32_t, 2> counters{};
};

/// What stands behind an image of that size.
std::vector<std::byte> chunk_tail(const ChunkSettings& settings, const ChunkValues& values, size_t image_size);

}  // namespace kivsim
