/// Writes queued frames to files, on threads of its own, so that compression does not hold up the stream.
#pragma once

#include <filesystem>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "frame_queue.h"
#include "image_file.h"

/// What was written of one frame. `info.image_data` is null.
struct WrittenFrame {
    std::string file;
    uint64_t number = 0;
    K_IMAGE_INFO info{};
    bool incomplete = false;
    std::string chunk_file;  ///< empty when there is none
};

class FrameWriter {
public:
    /// Starts the threads. The queue must outlive the writer.
    FrameWriter(FrameQueue& queue, std::filesystem::path folder, const FileStyle& style, unsigned threads);
    /// Abandons what is not written yet.
    ~FrameWriter();
    FrameWriter(const FrameWriter&) = delete;
    FrameWriter& operator=(const FrameWriter&) = delete;

    /// Writes what is in the queue and ends. Closes the queue.
    void Finish();
    /// Why a frame could not be written; empty when all could. The first failure closes the queue.
    std::string Failure() const;
    /// Frames that were taken from the queue and could not be written.
    uint64_t Failed() const;
    /// In the order of their numbers. Complete after Finish.
    std::vector<WrittenFrame> Written() const;

private:
    void Run() noexcept;
    void WriteOne(Frame& frame);
    void WriteChunks(const Frame& frame, WrittenFrame& written) const;
    void Fail(const std::string& reason);

    FrameQueue& queue_;
    const std::filesystem::path folder_;
    const FileStyle style_;
    mutable std::mutex mutex_;
    std::string failure_;
    uint64_t failed_ = 0;
    std::vector<WrittenFrame> written_;
    std::vector<std::thread> threads_;
};
