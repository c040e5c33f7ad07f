#include "acquisition/chunk_data.h"

#include <kiv/platform/debug_output.h>

#include <algorithm>

namespace ImageLib {

namespace {

constexpr auto no_layout_id =
    L"Error with K_DataStream_GetBufferInfo in ImageLib::CStreamThread::StreamProcess ==> "
    L"BUFFER_INFO_CHUNKLAYOUTID.\n";
constexpr auto no_list = L"Error with K_DataStream_GetBufferChunkData in ImageLib::CStreamThread::StreamProcess.\n";
constexpr auto not_attached = L"Error with K_Camera_AttachChunkData in ImageLib::CStreamThread::StreamProcess.\n";

constexpr std::size_t most_chunks = 65536;

static_assert(sizeof(GenTL::SINGLE_CHUNK_DATA) == sizeof(GenApi::SingleChunkData_t));

}  // namespace

void ChunkData::Follow(BufferQuestion& question, K_IMAGE_INFO& info) {
    std::uint64_t layout = 0;
    if (!question.Ask(GenTL::BUFFER_INFO_CHUNKLAYOUTID, layout)) return Failed(question, no_layout_id);
    info.chunk_layout_id = layout;
    const bool same = layout == last_layout_;
    last_layout_ = layout;
    // 0 is the id of buffers without chunks, and of all buffers of a producer that knows no layout ids: then each is a new one.
    if (same && layout == 0 && !HasChunks(question)) return Lose(question);
    if (same && layout != 0 && attached_) return FollowSameLayout(question, info);
    FollowNewLayout(question, info);
}

bool ChunkData::HasChunks(BufferQuestion& question) {
    if (!tells_presence_) return false;
    std::uint8_t present = 0;
    if (question.Ask(GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA, present)) return present != 0;
    if (question.Status() == GenTL::GC_ERR_NOT_IMPLEMENTED) tells_presence_ = false;
    return false;
}

void ChunkData::FollowSameLayout(BufferQuestion& question, const K_IMAGE_INFO& info) {
    if (extent_ > info.image_size) return Lose(question);
    question.InMap([&] { return ports_.Update(info.image_data); });
}

void ChunkData::FollowNewLayout(BufferQuestion& question, const K_IMAGE_INFO& info) {
    std::size_t count = 0;
    if (!FetchList(question, count)) return Failed(question, no_list);
    auto status = question.InMap([&] { return ports_.Attach(info.image_data, info.image_size, list_.data(), count); });
    attached_ = status == K_ST_SUCCESS;
    if (!attached_) return Failed(question, not_attached);
    extent_ = 0;
    for (std::size_t i = 0; i < count; ++i)
        extent_ = std::max(extent_, static_cast<std::uint64_t>(list_[i].ChunkOffset) + list_[i].ChunkLength);
}

bool ChunkData::FetchList(BufferQuestion& question, std::size_t& count) {
    if (question.Chunks(nullptr, count) != K_ST_SUCCESS || count > most_chunks) return false;
    // One entry is always there: an attach of nothing is to be told from one without a list.
    if (list_.size() != std::max<std::size_t>(count, 1)) list_.assign(std::max<std::size_t>(count, 1), {});
    if (count == 0) return true;
    std::size_t filled = count;
    if (question.Chunks(reinterpret_cast<GenTL::SINGLE_CHUNK_DATA*>(list_.data()), filled) != K_ST_SUCCESS) return false;
    // There are producers that tell the count only when they are asked for nothing else.
    if (filled > 0 && filled < count) count = filled;
    return true;
}

void ChunkData::Failed(BufferQuestion& question, const wchar_t* text) {
    kiv::platform::debug_print(std::wstring_view(question.TakeException() ? thrown_text : text));
    Lose(question);
}

void ChunkData::Lose(BufferQuestion& question) {
    if (attached_) question.InMap([&] { return ports_.Release(), K_ST_SUCCESS; });
    attached_ = false;
}

}  // namespace ImageLib
