#include "camera.h"

#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <limits>
#include <mutex>
#include <stdexcept>
#include <utility>

#include "GenTL/GenTL.h"
#include "automatic.h"
#include "camera_core.h"
#include "description.h"
#include "frame_cache.h"
#include "kiv/platform/paths.h"
#include "renderer.h"

namespace kivsim {
namespace {

constexpr uint64_t kDescriptionAddress = 0x100000;

void check_config(const CameraConfig& config) {
    auto side_is_good = [](uint32_t side) { return side >= 64 && side <= 8192 && side % 8 == 0; };
    if (!side_is_good(config.sensor_width) || !side_is_good(config.sensor_height))
        throw std::runtime_error("simulated camera " + config.model + ": a sensor of " + std::to_string(config.sensor_width) +
                                 " x " + std::to_string(config.sensor_height) +
                                 " pixels is not possible: 64 to 8192, multiples of 8");
    if (!(config.max_frame_rate > 0 && config.max_frame_rate <= 10000))
        throw std::runtime_error("simulated camera " + config.model +
                                 ": the frame rate must be more than 0 and at most 10000 Hz");
}

}  // namespace

struct Camera::Impl {
    explicit Impl(const CameraConfig& camera) : config((check_config(camera), camera)), core(config), renderer(config) {
        OfferDescription();
    }
    void OfferDescription();
    int32_t Read(uint64_t address, void* out, size_t size, bool from_outside);
    int32_t Write(uint64_t address, const void* in, size_t size, bool from_outside);
    /// With the lock: how long nothing will happen; `due`: when the next frame is.
    std::chrono::nanoseconds UntilNextMoment(uint64_t now, std::optional<uint64_t> due);
    /// Whether all of the range is in the text of the description.
    bool InDescription(uint64_t address, size_t size) const {
        return address >= kDescriptionAddress && address + size <= kDescriptionAddress + description.size();
    }

    const CameraConfig config;
    std::vector<std::byte> description;  ///< as the register space shows it; empty when it is a file
    std::string url;

    mutable std::mutex lock;
    std::condition_variable changed;
    CameraCore core;              ///< under the lock
    bool woken = false;           ///< under the lock, as the next ones
    bool events_woken = false;    ///< the same for RunEvents
    bool frames_fetched = false;  ///< by a stream

    std::mutex rendering;  ///< of the renderer: a frame takes long, and registers must not wait for it
    Renderer renderer;
    FrameCache frames;
};

void Camera::Impl::OfferDescription() {
    const std::string name = plain_name(config.model), text = camera_description(config);
    auto& registers = core.Registers();
    constexpr uint64_t file_version = 1U << 24 | 2U << 16, schema = 1U << 24 | 1U << 16, zipped = 1U << 10;
    if (config.url == CameraConfig::Url::File) {
        auto file = config.state_file;
        file += ".xml";
        kiv::platform::write_file_atomically(kiv::platform::utf8_from_path(file), text);
        url = file_url(file);
    } else {
        const bool zip = config.url == CameraConfig::Url::Zip;
        const auto* bytes = reinterpret_cast<const std::byte*>(text.data());
        description = zip ? zip_of(name + ".xml", text) : std::vector<std::byte>(bytes, bytes + text.size());
        char place[64];
        std::snprintf(place, sizeof place, "%s;%llX;%zX", zip ? ".zip" : ".xml",
                      static_cast<unsigned long long>(kDescriptionAddress), description.size());
        url = "local:" + name + place;
        registers.SetUint(Reg::ManifestCount, 1);
        registers.SetUint(Reg::ManifestFileVersion, file_version);
        registers.SetUint(Reg::ManifestSchema, schema | (zip ? zipped : 0));
        registers.SetUint(Reg::ManifestAddress, kDescriptionAddress);
        registers.SetUint(Reg::ManifestSize, description.size());
    }
    registers.SetText(Reg::DescriptionUrl, url);
}

Camera::Camera(const CameraConfig& config) : impl_(std::make_unique<Impl>(config)) {}
Camera::~Camera() = default;

int32_t Camera::Impl::Read(uint64_t address, void* out, size_t size, bool from_outside) {
    if (size == 0) return GenTL::GC_ERR_SUCCESS;
    if (!out) return GenTL::GC_ERR_INVALID_PARAMETER;
    if (address > std::numeric_limits<uint64_t>::max() - size) return GenTL::GC_ERR_INVALID_ADDRESS;
    auto* to = static_cast<std::byte*>(out);
    const std::lock_guard guard(lock);
    if (from_outside && core.FaultDue(address, size)) return kFaultDue;
    if (!InDescription(address, size)) return core.Read(address, to, size);
    std::memcpy(to, description.data() + (address - kDescriptionAddress), size);
    return GenTL::GC_ERR_SUCCESS;
}

int32_t Camera::Impl::Write(uint64_t address, const void* in, size_t size, bool from_outside) {
    if (size == 0) return GenTL::GC_ERR_SUCCESS;
    if (!in) return GenTL::GC_ERR_INVALID_PARAMETER;
    if (address > std::numeric_limits<uint64_t>::max() - size) return GenTL::GC_ERR_INVALID_ADDRESS;
    const std::lock_guard guard(lock);
    if (from_outside && core.FaultDue(address, size)) return kFaultDue;
    if (InDescription(address, size)) return GenTL::GC_ERR_ACCESS_DENIED;
    const int32_t status = core.Write(address, static_cast<const std::byte*>(in), size);
    changed.notify_all();
    return status;
}

int32_t Camera::Read(uint64_t address, void* out, size_t size) { return impl_->Read(address, out, size, false); }
int32_t Camera::Write(uint64_t address, const void* in, size_t size) { return impl_->Write(address, in, size, false); }
int32_t Camera::ReadFromOutside(uint64_t address, void* out, size_t size) { return impl_->Read(address, out, size, true); }
int32_t Camera::WriteFromOutside(uint64_t address, const void* in, size_t size) { return impl_->Write(address, in, size, true); }

std::string Camera::Url() const { return impl_->url; }

size_t Camera::PayloadSize() const {
    const std::lock_guard guard(impl_->lock);
    return read_image_settings(impl_->core.Registers()).PayloadSize();
}

Camera::Wait Camera::WaitForFrame(std::chrono::milliseconds timeout) {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds longest = std::chrono::hours(24 * 365);
    const auto deadline = Clock::now() + std::min(timeout, longest);
    std::unique_lock guard(impl_->lock);
    for (;;) {
        if (std::exchange(impl_->woken, false)) return Wait::Woken;
        const auto now = impl_->core.Registers().Now();
        impl_->core.TellWhatHappened(now);
        const auto due = impl_->core.NextDue();
        if (due && *due <= now) return Wait::Frame;
        const auto reached = Clock::now();
        if (reached >= deadline) return Wait::Timeout;
        impl_->changed.wait_until(guard, std::min(deadline, reached + impl_->UntilNextMoment(now, due)));
    }
}

std::chrono::nanoseconds Camera::Impl::UntilNextMoment(uint64_t now, std::optional<uint64_t> due) {
    constexpr uint64_t longest = 3'600'000'000'000;
    const uint64_t next = std::min({due.value_or(now + longest), core.NextEvent(now).value_or(now + longest), now + longest});
    return std::chrono::nanoseconds(next - std::min(next, now));
}

void Camera::RunEvents(std::chrono::milliseconds time) {
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + time;
    std::unique_lock guard(impl_->lock);
    while (!std::exchange(impl_->events_woken, false)) {
        const auto now = impl_->core.Registers().Now();
        impl_->core.TellWhatHappened(now);
        std::optional<uint64_t> due;
        if (!impl_->frames_fetched && impl_->core.TellsOfFrames()) due = impl_->core.NextDue();
        if (due && *due <= now) {
            impl_->core.TakeFrame(true);
            continue;
        }
        const auto reached = Clock::now();
        if (reached >= deadline) return;
        impl_->changed.wait_until(guard, std::min(deadline, reached + impl_->UntilNextMoment(now, due)));
    }
}

FrameFaults Camera::Faults() const {
    const std::lock_guard guard(impl_->lock);
    const auto& registers = impl_->core.Registers();
    const auto number = [&](Reg reg) { return static_cast<uint32_t>(registers.Uint(reg)); };
    FrameFaults faults;
    faults.next_frame = impl_->core.LastFrame() + 1;
    faults.drop_every = number(Reg::FaultDropEvery);
    faults.repeat_every = number(Reg::FaultRepeatEvery);
    faults.tear_every = number(Reg::FaultTearEvery);
    faults.incomplete_every = number(Reg::FaultIncompleteEvery);
    faults.incomplete_percent = number(Reg::FaultIncompletePercent);
    faults.size = {static_cast<WrongSize::How>(number(Reg::FaultSize)), static_cast<SizeKind>(number(Reg::FaultSizeOf))};
    faults.announce_limit = number(Reg::FaultAnnounceLimit);
    faults.unplug_at_frame = number(Reg::FaultUnplugAtFrame);
    faults.return_after_ms = number(Reg::FaultReturnAfter);
    return faults;
}

void Camera::SetEventSink(EventSink sink) {
    const std::lock_guard guard(impl_->lock);
    impl_->core.SetEventSink(std::move(sink));
}

void Camera::SetFramesFetched(bool fetched) {
    const std::lock_guard guard(impl_->lock);
    impl_->frames_fetched = fetched;
    impl_->changed.notify_all();
}

void Camera::Wake() {
    const std::lock_guard guard(impl_->lock);
    impl_->woken = impl_->events_woken = true;
    impl_->changed.notify_all();
}

FrameInfo Camera::NextFrame(std::span<std::byte> buffer) {
    std::unique_lock guard(impl_->lock);
    auto& registers = impl_->core.Registers();
    const auto settings = read_image_settings(registers);
    const auto frame = impl_->core.TakeFrame(buffer.empty());
    FrameInfo info;
    impl_->frames.Keep(registers.Uint(Reg::FrameCache));
    info.frame_id = frame.id;
    info.timestamp_ns = registers.DeviceTime(frame.start_ns);
    info.width = settings.width;
    info.height = settings.height;
    info.offset_x = settings.offset_x;
    info.offset_y = settings.offset_y;
    info.pixel_format = settings.format->code;
    info.size = settings.PayloadSize();
    info.image_size = settings.ImageSize();
    info.chunk_layout = settings.chunks.LayoutId(info.image_size);
    info.chunks_only = settings.chunks.payload_only;
    if (buffer.empty()) return info;
    const auto tail = chunk_tail(settings.chunks, impl_->core.Chunks(settings, frame), info.image_size);
    guard.unlock();

    const auto image = buffer.first(std::min(buffer.size(), info.image_size));
    Brightness seen;
    {
        const std::lock_guard one_at_a_time(impl_->rendering);
        seen = impl_->frames.Get(settings, frame.id, image, [&](std::span<std::byte> out) {
            return impl_->renderer.Render(settings, frame.id, frame.start_ns, out);
        });
    }
    const auto behind = buffer.subspan(image.size());
    if (image.size() == info.image_size) std::copy_n(tail.begin(), std::min(tail.size(), behind.size()), behind.begin());
    guard.lock();
    adjust_automatic(registers, seen, settings);
    return info;
}

void Camera::Action(uint32_t device_key, uint32_t group_key, uint32_t group_mask) {
    const std::lock_guard guard(impl_->lock);
    const auto& registers = impl_->core.Registers();
    if (registers.Uint(Reg::ActionDeviceKey) != device_key) return;
    for (uint32_t i = 0; i < 2; ++i) {
        const bool meant =
            registers.Uint(Reg::ActionGroupKey, i) == group_key && (registers.Uint(Reg::ActionGroupMask, i) & group_mask) != 0;
        if (meant) impl_->core.Signal(i == 0 ? TriggerSource::Action0 : TriggerSource::Action1);
    }
    impl_->changed.notify_all();
}

void Camera::PowerCycle() {
    const std::lock_guard guard(impl_->lock);
    impl_->core.PowerCycle();
    impl_->changed.notify_all();
}

}  // namespace kivsim
