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
#include "counters.h"
#include "description.h"
#include "frame_clock.h"
#include "kiv/platform/paths.h"
#include "register_rules.h"
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
    if (!(config.max_frame_rate > 0 && config.max_frame_rate <= 1000))
        throw std::runtime_error("simulated camera " + config.model + ": the frame rate must be more than 0 and at most 1000 Hz");
}

}  // namespace

struct Camera::Impl {
    explicit Impl(const CameraConfig& camera) : config((check_config(camera), camera)), registers(config), renderer(config) {
        OfferDescription();
        power_cycles = registers.Uint(Reg::PowerCycles);
    }

    void OfferDescription();
    bool Readable(uint64_t address, size_t size, int32_t& status) const;
    int32_t WriteElements(uint64_t address, const std::byte* in, size_t size);
    void Refresh(const RegisterRow& row);
    void Effect(Reg reg, uint32_t index, uint64_t value);
    void Fire(Trigger trigger, TriggerSource source, bool counts_as_missed);
    void Signal(TriggerSource source);
    uint64_t Lines() const;
    void PowerCycle();
    void NoticeForeignReset();

    // what a write does, and what a read finds out
    void LatchTime(Reg into) { registers.SetUint(into, registers.DeviceTime(registers.Now())); }
    void StartAcquisition();
    void StopAcquisition();

    const CameraConfig config;
    std::vector<std::byte> description;  ///< as the register space shows it; empty when it is a file
    std::string url;

    mutable std::mutex lock;  ///< of all below but the renderer
    std::condition_variable changed;
    RegisterFile registers;
    FrameClock clock;
    Counters counters;
    bool woken = false;
    uint64_t missed = 0, rendered = 0, skipped = 0;
    uint64_t power_cycles = 0;

    std::mutex rendering;  ///< of the renderer: a frame takes long, and registers must not wait for it
    Renderer renderer;
};

void Camera::Impl::OfferDescription() {
    const std::string name = plain_name(config.model), text = camera_description(config);
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

bool Camera::Impl::Readable(uint64_t address, size_t size, int32_t& status) const {
    for (uint64_t at = address; at < address + size;) {
        const auto* row = register_at(at);
        status = !row ? GenTL::GC_ERR_INVALID_ADDRESS : row->access == Access::WO ? GenTL::GC_ERR_ACCESS_DENIED : 0;
        if (status != 0) return false;
        at = row->End();
    }
    return true;
}

// each register keeps its old content until all of them have taken their new one
int32_t Camera::Impl::WriteElements(uint64_t address, const std::byte* in, size_t size) {
    struct Done {
        Reg reg;
        uint32_t index;
        std::vector<std::byte> before;
        uint64_t value;
    };
    std::vector<Done> done;
    int32_t status = GenTL::GC_ERR_SUCCESS;
    for (uint64_t at = address; status == 0 && at < address + size;) {
        const auto* row = register_at(at);
        if (!row)
            status = GenTL::GC_ERR_INVALID_ADDRESS;
        else if (row->access == Access::RO || (row->Has(kFormat) && clock.Acquiring()))
            status = GenTL::GC_ERR_ACCESS_DENIED;
        if (status != 0) break;
        const Reg reg = reg_of(*row);
        const auto index = static_cast<uint32_t>((at - row->address) / row->bytes);
        const uint64_t begin = row->address + uint64_t{index} * row->bytes, end = std::min(begin + row->bytes, address + size);
        const auto element = registers.Element(reg, index);
        std::vector<std::byte> wanted(element.begin(), element.end());
        std::memcpy(wanted.data() + (at - begin), in + (at - address), end - at);
        if (!takes_value(registers, reg, index, wanted)) {
            status = GenTL::GC_ERR_INVALID_VALUE;
            break;
        }
        done.push_back({reg, index, {element.begin(), element.end()}, 0});
        std::ranges::copy(wanted, element.begin());
        if (row->bytes <= 8) done.back().value = registers.Uint(reg, index);
        at = end;
    }
    for (auto i = done.rbegin(); i != done.rend(); ++i)
        if (status != 0 || row_of(i->reg).Has(kCommand))
            std::ranges::copy(i->before, registers.Element(i->reg, i->index).begin());
    if (status != 0) return status;
    for (const auto& item : done) Effect(item.reg, item.index, item.value);
    return status;
}

void Camera::Impl::Effect(Reg reg, uint32_t index, uint64_t value) {
    using Action = void (*)(Impl&, uint32_t index);
    struct Row {
        Reg reg;
        Action action;
    };
    static constexpr Row rows[] = {
        {Reg::AcquisitionStart, [](Impl& camera, uint32_t) { camera.StartAcquisition(); }},
        {Reg::AcquisitionStop, [](Impl& camera, uint32_t) { camera.StopAcquisition(); }},
        {Reg::AcquisitionAbort, [](Impl& camera, uint32_t) { camera.StopAcquisition(); }},
        {Reg::TriggerSoftware,
         [](Impl& camera, uint32_t i) { camera.Fire(static_cast<Trigger>(i), TriggerSource::Software, true); }},
        {Reg::SoftwareSignalPulse,
         [](Impl& camera, uint32_t i) {
             camera.Signal(i == 0 ? TriggerSource::SoftwareSignal0 : TriggerSource::SoftwareSignal1);
         }},
        {Reg::BootTimestampLatch, [](Impl& camera, uint32_t) { camera.LatchTime(Reg::BootTimestamp); }},
        {Reg::TimestampLatch, [](Impl& camera, uint32_t) { camera.LatchTime(Reg::TimestampLatchValue); }},
        {Reg::TimestampReset, [](Impl& camera, uint32_t) { camera.registers.ResetClock(); }},
        {Reg::DeviceReset, [](Impl& camera, uint32_t) { camera.PowerCycle(); }},
        {Reg::CounterReset, [](Impl& camera, uint32_t i) { camera.counters.ResetCounter(i, camera.registers); }},
        {Reg::TimerReset, [](Impl& camera, uint32_t i) { camera.counters.StartTimer(i, camera.registers.Now()); }},
        {Reg::UserSetLoad,
         [](Impl& camera, uint32_t) {
             camera.registers.LoadUserSet(static_cast<uint32_t>(camera.registers.Uint(Reg::UserSetSelector)));
         }},
        {Reg::UserSetSave,
         [](Impl& camera, uint32_t) {
             camera.registers.SaveUserSet(static_cast<uint32_t>(camera.registers.Uint(Reg::UserSetSelector)));
         }},
        {Reg::BinningHorizontal, [](Impl& camera, uint32_t) { fit_region(camera.registers); }},
        {Reg::BinningVertical, [](Impl& camera, uint32_t) { fit_region(camera.registers); }},
    };
    const auto* row = std::ranges::find(rows, reg, &Row::reg);
    if (row == std::end(rows) || (row_of(reg).Has(kCommand) && value == 0)) return;
    row->action(*this, index);
}

void Camera::Impl::StartAcquisition() {
    missed = 0;
    clock.Start(registers.Now(), read_timing(registers));
    counters.Happened(Event::AcquisitionStart, registers, registers.Now());
}

void Camera::Impl::StopAcquisition() {
    if (clock.Acquiring()) counters.Happened(Event::AcquisitionEnd, registers, registers.Now());
    clock.Stop();
}

void Camera::Impl::Fire(Trigger trigger, TriggerSource source, bool counts_as_missed) {
    const auto now = registers.Now();
    const bool taken = clock.Fire(trigger, source, now, read_timing(registers));
    if (!taken && !counts_as_missed) return;
    if (!taken) ++missed;
    counters.Happened(taken ? Event::FrameTrigger : Event::FrameTriggerMissed, registers, now);
}

void Camera::Impl::Signal(TriggerSource source) {
    for (uint32_t i = 0; i < 2; ++i) {
        const bool listens =
            registers.Uint(Reg::TriggerMode, i) != 0 && registers.Uint(Reg::TriggerSource, i) == static_cast<uint64_t>(source);
        Fire(static_cast<Trigger>(i), source, listens);
    }
}

uint64_t Camera::Impl::Lines() const {
    const auto now = registers.Now();
    const auto timing = read_timing(registers);
    auto copy = clock;
    const auto due = copy.NextDue(timing);
    const bool exposing = due && now < *due && now + timing.exposure_ns >= *due;
    const auto outputs = registers.Uint(Reg::UserOutputs);
    const bool sources[] = {false,
                            exposing,
                            clock.Acquiring(),
                            copy.WaitsForTrigger(timing),
                            (outputs & 1) != 0,
                            (outputs & 2) != 0,
                            counters.TimerActive(0, registers, now),
                            counters.TimerActive(1, registers, now),
                            false};
    uint64_t lines = 0;
    for (uint32_t i = 0; i < 4; ++i) {
        const bool barrier = i == 0 && timing.part_ns != 0 && now % timing.part_ns < timing.part_ns / 2;
        const bool high = i < 2 ? barrier : sources[registers.Uint(Reg::LineSource, i)];
        lines |= uint64_t{high != (registers.Uint(Reg::LineInverter, i) != 0)} << i;
    }
    return lines;
}

// the values that are worked out when somebody asks
void Camera::Impl::Refresh(const RegisterRow& row) {
    using Source = void (*)(Impl&);
    struct Row {
        Reg reg;
        Source source;
    };
    static constexpr Row rows[] = {
        {Reg::DeviceTemperature,
         [](Impl& camera) {
             // warms up within some minutes, and by another few degrees while it works
             const auto minutes = static_cast<double>(camera.registers.Now()) / 60e9;
             const double warm = minutes / (minutes + 4) * 14 + (camera.clock.Acquiring() ? 3.5 : 0);
             const double places[] = {31.0 + warm, 27.5 + 0.7 * warm, 29.0 + 0.8 * warm};
             for (uint32_t i = 0; i < 3; ++i)
                 camera.registers.SetUint(Reg::DeviceTemperature, static_cast<uint64_t>(places[i] * 10), i);
         }},
        {Reg::Timestamp, [](Impl& camera) { camera.LatchTime(Reg::Timestamp); }},
        {Reg::UptimeSeconds,
         [](Impl& camera) { camera.registers.SetUint(Reg::UptimeSeconds, camera.registers.Now() / 1'000'000'000); }},
        {Reg::PayloadSize,
         [](Impl& camera) { camera.registers.SetUint(Reg::PayloadSize, read_image_settings(camera.registers).PayloadSize()); }},
        {Reg::LinePitch,
         [](Impl& camera) {
             const auto settings = read_image_settings(camera.registers);
             camera.registers.SetUint(Reg::LinePitch, settings.format->LinePitch(settings.width));
         }},
        {Reg::ResultingFrameRate,
         [](Impl& camera) {
             const auto period = static_cast<double>(read_timing(camera.registers).period_ns);
             camera.registers.SetFloat(Reg::ResultingFrameRate, static_cast<float>(1e9 / period));
         }},
        {Reg::AcquisitionStatus,
         [](Impl& camera) {
             const auto timing = read_timing(camera.registers);
             const auto due = camera.clock.NextDue(timing);
             const auto now = camera.registers.Now();
             const bool exposing = due && now < *due && now + timing.exposure_ns >= *due;
             const uint64_t bits =
                 (camera.clock.Acquiring() ? 1 : 0) | (camera.clock.WaitsForTrigger(timing) ? 2 : 0) | (exposing ? 4 : 0);
             camera.registers.SetUint(Reg::AcquisitionStatus, bits);
         }},
        {Reg::TriggersMissed, [](Impl& camera) { camera.registers.SetUint(Reg::TriggersMissed, camera.missed); }},
        {Reg::LineStatusAll, [](Impl& camera) { camera.registers.SetUint(Reg::LineStatusAll, camera.Lines()); }},
        {Reg::CounterStatus, [](Impl& camera) { camera.counters.Show(camera.registers, camera.registers.Now()); }},
        {Reg::TimerValue, [](Impl& camera) { camera.counters.Show(camera.registers, camera.registers.Now()); }},
        {Reg::TimerStatus, [](Impl& camera) { camera.counters.Show(camera.registers, camera.registers.Now()); }},
        {Reg::FramesRendered, [](Impl& camera) { camera.registers.SetUint(Reg::FramesRendered, camera.rendered); }},
        {Reg::FramesSkipped, [](Impl& camera) { camera.registers.SetUint(Reg::FramesSkipped, camera.skipped); }},
    };
    if (!row.Has(kComputed)) return;
    const auto* found = std::ranges::find(rows, reg_of(row), &Row::reg);
    if (found != std::end(rows)) found->source(*this);
}

void Camera::Impl::PowerCycle() {
    clock.Stop();
    counters.Clear();
    missed = rendered = skipped = 0;
    registers.PowerCycle();
    power_cycles = registers.Uint(Reg::PowerCycles);
}

// another process may have switched the camera off and on: what ran here has ended with it
void Camera::Impl::NoticeForeignReset() {
    if (registers.Uint(Reg::PowerCycles) == power_cycles) return;
    power_cycles = registers.Uint(Reg::PowerCycles);
    clock.Stop();
    counters.Clear();
}

Camera::Camera(const CameraConfig& config) : impl_(std::make_unique<Impl>(config)) {}
Camera::~Camera() = default;

int32_t Camera::Read(uint64_t address, void* out, size_t size) {
    if (size == 0) return GenTL::GC_ERR_SUCCESS;
    if (!out) return GenTL::GC_ERR_INVALID_PARAMETER;
    if (address > std::numeric_limits<uint64_t>::max() - size) return GenTL::GC_ERR_INVALID_ADDRESS;
    auto* to = static_cast<std::byte*>(out);
    const auto& text = impl_->description;
    if (address >= kDescriptionAddress && address + size <= kDescriptionAddress + text.size()) {
        std::memcpy(to, text.data() + (address - kDescriptionAddress), size);
        return GenTL::GC_ERR_SUCCESS;
    }
    const std::lock_guard guard(impl_->lock);
    int32_t status = GenTL::GC_ERR_SUCCESS;
    if (!impl_->Readable(address, size, status)) return status;
    for (uint64_t at = address; at < address + size;) {
        const auto& row = *register_at(at);
        impl_->Refresh(row);
        const uint64_t end = std::min(row.End(), address + size);
        std::memcpy(to + (at - address), impl_->registers.Bytes(reg_of(row)).data() + (at - row.address), end - at);
        at = end;
    }
    return GenTL::GC_ERR_SUCCESS;
}

int32_t Camera::Write(uint64_t address, const void* in, size_t size) {
    if (size == 0) return GenTL::GC_ERR_SUCCESS;
    if (!in) return GenTL::GC_ERR_INVALID_PARAMETER;
    if (address > std::numeric_limits<uint64_t>::max() - size) return GenTL::GC_ERR_INVALID_ADDRESS;
    if (address >= kDescriptionAddress && address + size <= kDescriptionAddress + impl_->description.size())
        return GenTL::GC_ERR_ACCESS_DENIED;
    const std::lock_guard guard(impl_->lock);
    const int32_t status = impl_->WriteElements(address, static_cast<const std::byte*>(in), size);
    impl_->changed.notify_all();
    return status;
}

std::string Camera::Url() const { return impl_->url; }

size_t Camera::PayloadSize() const {
    const std::lock_guard guard(impl_->lock);
    return read_image_settings(impl_->registers).PayloadSize();
}

Camera::Wait Camera::WaitForFrame(std::chrono::milliseconds timeout) {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds longest = std::chrono::hours(24 * 365);
    const auto deadline = Clock::now() + std::min(timeout, longest);
    std::unique_lock guard(impl_->lock);
    for (;;) {
        if (std::exchange(impl_->woken, false)) return Wait::Woken;
        impl_->NoticeForeignReset();
        const auto due = impl_->clock.NextDue(read_timing(impl_->registers));
        const auto now = impl_->registers.Now();
        if (due && *due <= now) return Wait::Frame;
        const auto reached = Clock::now();
        if (reached >= deadline) return Wait::Timeout;
        auto until = deadline;
        if (due) until = std::min(until, reached + std::chrono::nanoseconds(*due - now));
        impl_->changed.wait_until(guard, until);
    }
}

void Camera::Wake() {
    const std::lock_guard guard(impl_->lock);
    impl_->woken = true;
    impl_->changed.notify_all();
}

FrameInfo Camera::NextFrame(std::span<std::byte> buffer) {
    std::unique_lock guard(impl_->lock);
    const auto settings = read_image_settings(impl_->registers);
    const auto now = impl_->registers.Now();
    const bool acquiring = impl_->clock.Acquiring();
    const auto frame = impl_->clock.Take(now, read_timing(impl_->registers));
    impl_->counters.Happened(Event::FrameStart, impl_->registers, frame.start_ns);
    if (acquiring && !impl_->clock.Acquiring()) impl_->counters.Happened(Event::AcquisitionEnd, impl_->registers, now);
    FrameInfo info;
    info.frame_id = frame.id;
    info.timestamp_ns = impl_->registers.DeviceTime(frame.start_ns);
    info.width = settings.width;
    info.height = settings.height;
    info.offset_x = settings.offset_x;
    info.offset_y = settings.offset_y;
    info.pixel_format = settings.format->code;
    info.size = settings.PayloadSize();
    ++(buffer.empty() ? impl_->skipped : impl_->rendered);
    if (buffer.empty()) return info;
    guard.unlock();

    const std::lock_guard one_at_a_time(impl_->rendering);
    const auto seen =
        impl_->renderer.Render(settings, frame.id, frame.start_ns, buffer.first(std::min(buffer.size(), info.size)));
    guard.lock();
    adjust_automatic(impl_->registers, seen, settings);
    return info;
}

void Camera::Action(uint32_t device_key, uint32_t group_key, uint32_t group_mask) {
    const std::lock_guard guard(impl_->lock);
    auto& registers = impl_->registers;
    if (registers.Uint(Reg::ActionDeviceKey) != device_key) return;
    for (uint32_t i = 0; i < 2; ++i) {
        const bool meant =
            registers.Uint(Reg::ActionGroupKey, i) == group_key && (registers.Uint(Reg::ActionGroupMask, i) & group_mask) != 0;
        if (meant) impl_->Signal(i == 0 ? TriggerSource::Action0 : TriggerSource::Action1);
    }
    impl_->changed.notify_all();
}

void Camera::PowerCycle() {
    const std::lock_guard guard(impl_->lock);
    impl_->PowerCycle();
    impl_->changed.notify_all();
}

}  // namespace kivsim
