#include "stub_session.h"

#include <kiv/platform/dynamic_library.h>
#include <time.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace kiv::bench {

void check(const char* call, K_STATUS_CODES status) {
    if (status == K_ST_SUCCESS) return;
    K_GC_ERROR_INFO info{};
    K_Factory_GetGenICamErrorInfo(&info);
    throw std::runtime_error(std::string(call) + " failed with " + std::to_string(status) + " " + info.sDescription);
}

double thread_cpu_time() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double wall_time() { return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(); }

static constexpr const char* camera_id = "TL=>STUB , INT=>IF0 , DEV=>CAM0";

struct StubSession::Module {
    platform::DynamicLibrary library{KIV_STUB_PRODUCER};
};

StubSession::StubSession() : module_(std::make_unique<Module>()) {
    control_ = module_->library.Function<StubControl*()>("Stub_Control")();
    auto registry = std::filesystem::temp_directory_path() / ("kiv_stub_" + std::to_string(wall_time()) + ".xml");
    std::ofstream(registry) << "<?xml version=\"1.0\" encoding=\"UTF-8\"?><KivRegistry version=\"1\"><Producers>"
                               "<Producer key=\"STUB\" path=\""
                            << KIV_STUB_PRODUCER << "\" enabled=\"true\" flag=\"false\"/></Producers></KivRegistry>";
    CHECK(K_Factory_Open(registry.c_str(), &factory_));
    bool changed = false;
    CHECK(K_Factory_UpdateCameraList(factory_, &changed));
    std::filesystem::remove(registry);
    CHECK(K_Camera_Open_Proxy(factory_, camera_id, &camera_));
}

void StubSession::Describe(const std::string& nodes) {
    K_Camera_Close(camera_);
    camera_ = nullptr;
    control_->describe(nodes.c_str());
    CHECK(K_Camera_Open_Proxy(factory_, camera_id, &camera_));
}

StubSession::~StubSession() {
    K_Camera_Close(camera_);
    K_Factory_Close(factory_);
}

static void K_CALL call_back(void* context, K_IMAGE_INFO* image) { (*static_cast<OpenStream::Callback*>(context))(*image); }

OpenStream::OpenStream(CAM_HANDLE camera, std::uint32_t buffer_size, Callback callback) : callback_(std::move(callback)) {
    CHECK(K_Image_OpenStream(camera, 0, &callback_, reinterpret_cast<void (*)(void)>(call_back), &thread_, buffer_size, 0));
}

K_STREAM_STATISTICS OpenStream::Statistics() const {
    K_STREAM_STATISTICS statistics{};
    CHECK(K_Image_GetStreamStatistics(thread_, &statistics));
    return statistics;
}

}  // namespace kiv::bench
