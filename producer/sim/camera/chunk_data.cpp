#include "chunk_data.h"

#include <cstring>

namespace kivsim {
namespace {

constexpr size_t kTrailer = 8;

/// Little endian, as the machines are that this runs on.
template <typename T>
void append(std::vector<std::byte>& out, const T& value) {
    const auto* bytes = reinterpret_cast<const std::byte*>(&value);
    out.insert(out.end(), bytes, bytes + sizeof value);
}

using Writer = void (*)(const ChunkValues&, std::vector<std::byte>&);
struct Row {
    size_t size;
    Writer write;
};

/// By ChunkKind.
constexpr Row kRows[kChunkKinds] = {
    {0, nullptr},
    {4, [](const ChunkValues& values, auto& out) { append(out, values.offset_x); }},
    {4, [](const ChunkValues& values, auto& out) { append(out, values.offset_y); }},
    {4, [](const ChunkValues& values, auto& out) { append(out, values.width); }},
    {4, [](const ChunkValues& values, auto& out) { append(out, values.height); }},
    {4, [](const ChunkValues& values, auto& out) { append(out, values.pixel_format); }},
    {4, [](const ChunkValues& values, auto& out) { append(out, values.line_pitch); }},
    {8, [](const ChunkValues& values, auto& out) { append(out, values.timestamp_ns); }},
    {8, [](const ChunkValues& values, auto& out) { append(out, values.frame_id); }},
    {8, [](const ChunkValues& values, auto& out) { append(out, values.exposure_us); }},
    {8, [](const ChunkValues& values, auto& out) { append(out, values.gain_db); }},
    {8, [](const ChunkValues& values, auto& out) { append(out, values.black_level); }},
    {4, [](const ChunkValues& values, auto& out) { append(out, values.lines); }},
    {8, [](const ChunkValues& values, auto& out) { append(out, values.counters); }},
};

void append_trailer(std::vector<std::byte>& out, ChunkKind kind, size_t size) {
    const uint64_t trailer = uint64_t{chunk_id(kind)} << 32 | static_cast<uint32_t>(size);
    for (int place = 7; place >= 0; --place) out.push_back(static_cast<std::byte>(trailer >> (8 * place)));
}

}  // namespace

size_t ChunkSettings::TailSize() const {
    if (!active) return 0;
    size_t size = kTrailer;
    for (size_t i = 1; i < kChunkKinds; ++i)
        if (Has(static_cast<ChunkKind>(i))) size += kRows[i].size + kTrailer;
    return size;
}

uint64_t ChunkSettings::LayoutId(size_t image_size) const {
    if (!active) return 0;
    uint64_t hash = 0xCBF29CE484222325U;
    for (const uint64_t value : {uint64_t{image_size}, uint64_t{enabled}, uint64_t{payload_only}})
        hash = (hash ^ value) * 0x100000001B3U;
    return ((hash >> 32 ^ hash) & 0xFFFFFFFFU) | 1;
}

std::vector<std::byte> chunk_tail(const ChunkSettings& settings, const ChunkValues& values, size_t image_size) {
    std::vector<std::byte> tail;
    if (!settings.active) return tail;
    tail.reserve(settings.TailSize());
    append_trailer(tail, ChunkKind::Image, image_size);
    for (size_t i = 1; i < kChunkKinds; ++i) {
        const auto kind = static_cast<ChunkKind>(i);
        if (!settings.Has(kind)) continue;
        kRows[i].write(values, tail);
        append_trailer(tail, kind, kRows[i].size);
    }
    return tail;
}

}  // namespace kivsim
