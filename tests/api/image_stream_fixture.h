/// An open camera whose image stream is driven frame by frame: the test delivers, the callback takes, the test looks.
#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include "support/scripted_factory.h"

namespace kiv_test {

using GenTL::BUFFER_INFO_CMD;
using scripted::image_frame;

constexpr std::uint32_t buffer_size = 64 * 48;

/// What the callback saw, for the test's thread.
class Images {
public:
    struct Seen {
        K_IMAGE_INFO info;
        std::string data;
        bool with_context;
    };

    void Take(const K_IMAGE_INFO& info, bool with_context) {
        std::lock_guard guard(lock_);
        auto* bytes = static_cast<const char*>(info.image_data);
        seen_.push_back({info, std::string(bytes, info.image_size), with_context});
        changed_.notify_all();
    }
    /// The next image, or a test failure after ten seconds.
    Seen Next() {
        std::unique_lock guard(lock_);
        if (!changed_.wait_for(guard, std::chrono::seconds(10), [&] { return !seen_.empty(); })) {
            ADD_FAILURE() << "no image came";
            return {};
        }
        auto first = seen_.front();
        seen_.pop_front();
        return first;
    }
    std::size_t Waiting() {
        std::lock_guard guard(lock_);
        return seen_.size();
    }
    void Forget() {
        std::lock_guard guard(lock_);
        seen_.clear();
    }

private:
    std::mutex lock_;
    std::condition_variable changed_;
    std::deque<Seen> seen_;
};

inline Images* no_context_images = nullptr;  // a callback without context knows nothing else
inline void on_image(K_IMAGE_INFO* image) { no_context_images->Take(*image, false); }
inline void on_image_with_context(void* context, K_IMAGE_INFO* image) { static_cast<Images*>(context)->Take(*image, true); }

using AnyFunction = void (*)();

class ImageStream : public ScriptedFactory {
protected:
    using ScriptedFactory::ScriptedFactory;

    void SetUp() override {
        no_context_images = &images;
        ASSERT_NO_FATAL_FAILURE(OpenCamera());
        producer->ForgetCalls();
    }
    void TearDown() override {
        CloseStream();
        ScriptedFactory::TearDown();
    }

    K_STATUS_CODES OpenStream(std::uint32_t size = buffer_size) {
        return K_Image_OpenStream(camera, 0, &images, reinterpret_cast<AnyFunction>(on_image_with_context), &stream, size, 0);
    }
    void CloseStream() {
        if (stream) {
            EXPECT_STATUS(K_ST_SUCCESS, K_Image_CloseStream(stream));
        }
        stream = nullptr;
    }
    void Deliver(const scripted::Frame& frame) { ASSERT_TRUE(producer->Deliver(producer->FirstStream(), frame)); }
    bool WaitForRequeue(std::size_t queued) { return producer->WaitForCalls("DSQueueBuffer", queued); }
    std::vector<std::uint64_t> Asked() {
        std::vector<std::uint64_t> commands;
        for (auto& call : producer->CallsOf("DSGetBufferInfo")) commands.push_back(call.numbers[2]);
        return commands;
    }

    Images images;
    THRD_HANDLE stream = nullptr;
};

class ImageStreamGigE : public ImageStream {
protected:
    ImageStreamGigE() : ImageStream(scripted_gev()) {}
};

}  // namespace kiv_test
