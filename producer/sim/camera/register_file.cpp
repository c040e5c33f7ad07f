#include "register_file.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstring>
#include <stdexcept>
#include <thread>

#include "kiv/platform/paths.h"

namespace kivsim {
namespace {

namespace platform = kiv::platform;

constexpr uint64_t kMagic = 0x314D415356494BU;  // "KIVSAM1"
constexpr size_t kHeaderSize = 256;

// one time base for all processes of the machine
int64_t machine_time_ns() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

uint64_t hash_of(const CameraConfig& config) {
    uint64_t hash = register_layout_hash();
    auto mix = [&](uint64_t value) { hash = (hash ^ value) * 0x100000001B3U; };
    for (char c : config.model + '\n' + config.serial) mix(static_cast<unsigned char>(c));
    for (uint64_t value : {uint64_t{config.sensor_width}, uint64_t{config.sensor_height}, uint64_t{config.color},
                           std::bit_cast<uint64_t>(config.max_frame_rate)})
        mix(value);
    return hash;
}

platform::FileLock lock_beside(const std::filesystem::path& path) {
    const std::string name = platform::utf8_from_path(path) + ".lock";
    for (int attempt = 0; attempt < 2000; ++attempt) {
        if (auto lock = platform::FileLock::TryAcquire(name)) return std::move(*lock);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    throw std::runtime_error("simulated camera: another process holds " + name);
}

platform::MappedFile open_file(const std::filesystem::path& path, size_t size) {
    if (path.empty()) throw std::runtime_error("simulated camera: no state file is named");
    if (path.has_parent_path()) platform::create_folders(platform::utf8_from_path(path.parent_path()));
    const auto lock = lock_beside(path);
    std::error_code ignored;
    const auto present = std::filesystem::file_size(path, ignored);
    // a file of another version of the camera: nothing in it can be used
    if (!ignored && present != 0 && present != size) std::filesystem::remove(path);
    return platform::MappedFile::OpenOrCreate(platform::utf8_from_path(path), size);
}

}  // namespace

struct RegisterFile::Header {
    uint64_t magic;
    uint64_t camera;      ///< hash of what the camera is
    int64_t switched_on;  ///< machine time
    int64_t clock_zero;   ///< machine time of device time 0
};

RegisterFile::RegisterFile(const CameraConfig& config)
    : config_(config),
      file_(open_file(config.state_file, kHeaderSize + size_t{1 + kUserSets} * register_store_size())),
      initial_(initial_registers(config)) {
    const auto lock = lock_beside(config.state_file);
    auto& head = Head();
    const bool known = head.magic == kMagic && head.camera == hash_of(config) && head.switched_on <= machine_time_ns();
    if (!known) {
        Forget();
        head.camera = hash_of(config);
        head.magic = kMagic;
    }
    WriteIdentity();
}

RegisterFile::Header& RegisterFile::Head() const { return *reinterpret_cast<Header*>(file_.Data()); }

std::span<std::byte> RegisterFile::Store(uint32_t copy) const {
    return {file_.Data() + kHeaderSize + size_t{copy} * register_store_size(), register_store_size()};
}

std::span<std::byte> RegisterFile::Bytes(Reg reg) const {
    const auto& row = row_of(reg);
    return Store(0).subspan(row.store, size_t{row.bytes} * row.count);
}

std::span<std::byte> RegisterFile::Element(Reg reg, uint32_t index) const {
    const auto& row = row_of(reg);
    return Bytes(reg).subspan(size_t{index} * row.bytes, row.bytes);
}

uint64_t RegisterFile::Uint(Reg reg, uint32_t index) const {
    uint64_t value = 0;
    const auto bytes = Element(reg, index);
    for (size_t i = 0; i < bytes.size(); ++i) value |= std::to_integer<uint64_t>(bytes[i]) << (8 * i);
    return value;
}

float RegisterFile::Float(Reg reg) const { return std::bit_cast<float>(static_cast<uint32_t>(Uint(reg))); }

std::string RegisterFile::Text(Reg reg) const {
    const auto bytes = Element(reg, 0);
    const auto* text = reinterpret_cast<const char*>(bytes.data());
    return {text, std::find(text, text + bytes.size(), '\0')};
}

void RegisterFile::SetUint(Reg reg, uint64_t value, uint32_t index) {
    const auto bytes = Element(reg, index);
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::byte>(value >> (8 * i));
}

void RegisterFile::SetFloat(Reg reg, float value) { SetUint(reg, std::bit_cast<uint32_t>(value)); }

void RegisterFile::SetText(Reg reg, std::string_view text, uint32_t index) {
    const auto bytes = Element(reg, index);
    std::ranges::fill(bytes, std::byte{0});
    std::memcpy(bytes.data(), text.data(), std::min(text.size(), bytes.size()));
}

void RegisterFile::Forget() {
    for (uint32_t copy = 0; copy <= kUserSets; ++copy) std::ranges::copy(initial_, Store(copy).begin());
    SwitchOn();
}

void RegisterFile::PowerCycle() {
    for (uint16_t i = 0; i < static_cast<uint16_t>(Reg::Count); ++i) {
        const auto& row = row_of(static_cast<Reg>(i));
        if (row.Has(kLasting) || row.Has(kIdentity)) continue;
        const auto size = size_t{row.bytes} * row.count;
        std::ranges::copy(std::span(initial_).subspan(row.store, size), Bytes(static_cast<Reg>(i)).begin());
    }
    LoadUserSet(static_cast<uint32_t>(Uint(Reg::UserSetDefault)));
    SwitchOn();
}

void RegisterFile::SwitchOn() {
    Head().switched_on = Head().clock_zero = machine_time_ns();
    SetUint(Reg::PowerCycles, Uint(Reg::PowerCycles) + 1);
}

void RegisterFile::CopyUserSet(std::span<const std::byte> from, std::span<std::byte> to) const {
    for (uint16_t i = 0; i < static_cast<uint16_t>(Reg::Count); ++i) {
        const auto& row = row_of(static_cast<Reg>(i));
        if (!row.Has(kUserSet)) continue;
        std::ranges::copy(from.subspan(row.store, size_t{row.bytes} * row.count), to.begin() + row.store);
    }
}

void RegisterFile::LoadUserSet(uint32_t set) {
    CopyUserSet(set == 0 || set > kUserSets ? std::span<const std::byte>(initial_) : Store(set), Store(0));
}

void RegisterFile::SaveUserSet(uint32_t set) { CopyUserSet(Store(0), Store(set)); }

void RegisterFile::WriteIdentity() {
    for (uint16_t i = 0; i < static_cast<uint16_t>(Reg::Count); ++i) {
        const auto& row = row_of(static_cast<Reg>(i));
        if (!row.Has(kIdentity)) continue;
        const auto size = size_t{row.bytes} * row.count;
        std::ranges::copy(std::span(initial_).subspan(row.store, size), Bytes(static_cast<Reg>(i)).begin());
    }
}

uint64_t RegisterFile::Now() const { return static_cast<uint64_t>(std::max<int64_t>(0, machine_time_ns() - Head().switched_on)); }

uint64_t RegisterFile::DeviceTime(uint64_t now) const {
    const auto zero = static_cast<uint64_t>(Head().clock_zero - Head().switched_on);
    return now > zero ? now - zero : 0;
}

void RegisterFile::ResetClock() { Head().clock_zero = machine_time_ns(); }

}  // namespace kivsim
