#include "frame_writer.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "feature.h"
#include "files.h"

namespace {

std::string file_name(uint64_t number, const char* extension) {
    std::array<char, 64> name{};
    std::snprintf(name.data(), name.size(), "frame_%06llu%s", static_cast<unsigned long long>(number), extension);
    return name.data();
}

}  // namespace

FrameWriter::FrameWriter(FrameQueue& queue, std::filesystem::path folder, const FileStyle& style, unsigned threads)
    : queue_(queue), folder_(std::move(folder)), style_(style) {
    for (unsigned i = 0; i < std::max(1U, threads); ++i) threads_.emplace_back([this] { Run(); });
}

FrameWriter::~FrameWriter() {
    queue_.Abandon();
    Finish();
}

void FrameWriter::Finish() {
    queue_.Close();
    for (std::thread& thread : threads_)
        if (thread.joinable()) thread.join();
}

std::string FrameWriter::Failure() const {
    const std::lock_guard lock(mutex_);
    return failure_;
}

uint64_t FrameWriter::Failed() const {
    const std::lock_guard lock(mutex_);
    return failed_;
}

std::vector<WrittenFrame> FrameWriter::Written() const {
    const std::lock_guard lock(mutex_);
    std::vector<WrittenFrame> frames = written_;
    std::sort(frames.begin(), frames.end(), [](const WrittenFrame& a, const WrittenFrame& b) { return a.number < b.number; });
    return frames;
}

void FrameWriter::Run() noexcept {
    while (std::optional<Frame> frame = queue_.Pop()) {
        try {
            WriteOne(*frame);
        } catch (const std::exception& failure) {
            Fail(failure.what());
        }
    }
}

void FrameWriter::WriteOne(Frame& frame) {
    WrittenFrame written{file_name(frame.number, file_extension(style_.kind)), frame.number, frame.info, frame.incomplete, {}};
    write_image_file(frame.info, (folder_ / written.file).string(), style_);
    written.info.image_data = nullptr;
    if (!frame.chunks.is_null()) WriteChunks(frame, written);
    queue_.GiveBack(std::move(frame.data));
    const std::lock_guard lock(mutex_);
    written_.push_back(std::move(written));
}

void FrameWriter::WriteChunks(const Frame& frame, WrittenFrame& written) const {
    written.chunk_file = file_name(frame.number, ".json");
    const nlohmann::json json{
        {"file", written.file}, {"frame_id", frame.info.frame_id}, {"timestamp", frame.info.timestamp}, {"chunks", frame.chunks}};
    write_text_file(folder_ / written.chunk_file, json_text(json));
}

void FrameWriter::Fail(const std::string& reason) {
    queue_.Close();
    const std::lock_guard lock(mutex_);
    ++failed_;
    if (failure_.empty()) failure_ = reason;
}
