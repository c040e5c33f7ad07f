// The stub producer's camera, opened through the C interface, and what the measurements of its stream share.
#pragma once

#include <Kiv_Factory.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "stub_producer.h"

namespace kiv::bench {

/// Throws std::runtime_error with the call's text when the status is no success.
void check(const char* call, K_STATUS_CODES status);
#define CHECK(call) kiv::bench::check(#call, call)

/// Seconds.
double thread_cpu_time();
double wall_time();

class StubSession {
public:
    StubSession();
    ~StubSession();
    StubSession(const StubSession&) = delete;
    StubSession& operator=(const StubSession&) = delete;

    StubControl& Control() { return *control_; }
    CAM_HANDLE Camera() const { return camera_; }
    /// Opens the camera anew, with other nodes in its description.
    void Describe(const std::string& nodes);

private:
    struct Module;
    std::unique_ptr<Module> module_;
    StubControl* control_ = nullptr;
    FACTORY_HANDLE factory_ = nullptr;
    CAM_HANDLE camera_ = nullptr;
};

/// An open image stream whose callback is any function.
class OpenStream {
public:
    using Callback = std::function<void(const K_IMAGE_INFO&)>;
    OpenStream(CAM_HANDLE camera, std::uint32_t buffer_size, Callback callback);
    ~OpenStream() { K_Image_CloseStream(thread_); }
    OpenStream(const OpenStream&) = delete;
    OpenStream& operator=(const OpenStream&) = delete;

    K_STREAM_STATISTICS Statistics() const;

private:
    Callback callback_;
    THRD_HANDLE thread_ = nullptr;
};

/// Frames until all counters of the stream and of the script agree, with faults at random. Answers the exit code.
int soak(std::uint64_t frames);

}  // namespace kiv::bench
