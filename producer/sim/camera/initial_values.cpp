/// What the registers of a camera hold when it leaves the factory: the table's own values, and those that hang on the model.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include "register_file.h"

namespace kivsim {
namespace {

/// Writes into a block of bytes that is laid out as the registers are.
class Block {
public:
    explicit Block(std::vector<std::byte>& bytes) : bytes_(bytes) {}

    void Uint(Reg reg, uint64_t value, uint32_t index = 0) {
        const auto& row = row_of(reg);
        for (uint32_t i = 0; i < row.bytes; ++i) At(row, index)[i] = static_cast<std::byte>(value >> (8 * i));
    }
    void BigEndian(Reg reg, uint64_t value) {
        const auto& row = row_of(reg);
        for (uint32_t i = 0; i < row.bytes; ++i) At(row, 0)[row.bytes - 1 - i] = static_cast<std::byte>(value >> (8 * i));
    }
    void Float(Reg reg, double value, uint32_t index = 0) {
        Uint(reg, std::bit_cast<uint32_t>(static_cast<float>(value)), index);
    }
    void Text(Reg reg, std::string_view text, uint32_t index = 0) {
        const auto& row = row_of(reg);
        std::memset(At(row, index), 0, row.bytes);
        if (!text.empty()) std::memcpy(At(row, index), text.data(), std::min<size_t>(text.size(), row.bytes));
    }
    void FromTable(Reg reg) {
        const auto& row = row_of(reg);
        for (uint32_t i = 0; i < row.count; ++i) {
            if (row.kind == Kind::Uint) Uint(reg, static_cast<uint64_t>(row.initial), i);
            if (row.kind == Kind::Int) Uint(reg, static_cast<uint64_t>(static_cast<int64_t>(row.initial)), i);
            if (row.kind == Kind::Float) Float(reg, row.initial, i);
        }
    }

private:
    std::byte* At(const RegisterRow& row, uint32_t index) { return bytes_.data() + row.store + size_t{index} * row.bytes; }
    std::vector<std::byte>& bytes_;
};

void write_names(Block& block, const CameraConfig& config) {
    block.Text(Reg::ManufacturerName, "Kiv");
    block.Text(Reg::ModelName, config.model);
    block.Text(Reg::FamilyName, "KivSim");
    block.Text(Reg::DeviceVersion, "1.2.0");
    block.Text(Reg::ManufacturerInfo, "simulated camera");
    block.Text(Reg::SerialNumber, config.serial);
    block.Text(Reg::UserDefinedName, config.user_id);
    block.Text(Reg::SoftwareInterface, "1.0.0");
    block.Text(Reg::FirmwareVersion, "1.2.0 build 417");
    block.Text(Reg::UserSetDescription, "factory settings", 0);
    block.Text(Reg::UserSetDescription, "user set 0", 1);
    block.Text(Reg::UserSetDescription, "user set 1", 2);
}

void write_sensor(Block& block, const CameraConfig& config) {
    block.Uint(Reg::SensorWidth, config.sensor_width);
    block.Uint(Reg::SensorHeight, config.sensor_height);
    block.Uint(Reg::SensorFeatures, (config.color ? 1U : 0U) | (config.gige ? 2U : 0U));
    block.Uint(Reg::SensorLineTime, static_cast<uint64_t>(std::llround(1e9 / (config.max_frame_rate * config.sensor_height))));
    block.Uint(Reg::ClockFrequency, 74'250'000, 0);
    block.Uint(Reg::ClockFrequency, 1'000'000'000, 1);
    block.Uint(Reg::Width, config.sensor_width);
    block.Uint(Reg::Height, config.sensor_height);
    block.Uint(Reg::PixelFormat, config.color ? 0x01080009 : 0x01080001);
    block.Float(Reg::FrameRate, std::min(row_of(Reg::FrameRate).initial, std::floor(config.max_frame_rate * 100) / 100));
    block.Uint(Reg::ChunkEnable, 1, 0);  // the image
    block.Uint(Reg::ExposureAutoLimits, 500, 0);
    block.Uint(Reg::ExposureAutoLimits, 300'000, 1);
    for (uint32_t table = 0, i = 0; table < 4; ++table)
        for (uint32_t value = 0; value < 4096; ++value, ++i) block.Uint(Reg::Lut, value, i);
    if (!config.color) return;
    // the colour filters pass red and blue less well than green; these ratios make grey grey again
    block.Uint(Reg::BalanceRatio, 1575, 0);
    block.Uint(Reg::BalanceRatio, 1365, 2);
}

void write_lines(Block& block) {
    constexpr uint32_t opto_coupled = 5, ttl = 2;
    for (uint32_t line = 0; line < 4; ++line) {
        block.Uint(Reg::LineMode, line < 2 ? 0 : 1, line);
        block.Uint(Reg::LineFormat, line < 2 ? opto_coupled : ttl, line);
    }
}

void write_module_chip(Block& block, const CameraConfig& config) {
    block.BigEndian(Reg::ModuleMagic, 0x4B4D4F44);
    block.BigEndian(Reg::ModulePixelPitch, 3450U << 16 | 3450U);          // width and height of a pixel in nanometres
    block.BigEndian(Reg::ModuleCalibrated, 2026U << 16 | 5U << 8 | 18U);  // year, month, day
    block.BigEndian(Reg::ModuleConversionGain, std::bit_cast<uint32_t>(0.4095F));
    block.Text(Reg::ModuleSensorName, config.color ? "KS-S345-C" : "KS-S345-M");
    block.BigEndian(Reg::ModuleFullWell, std::bit_cast<uint64_t>(10000.0));
}

}  // namespace

std::vector<std::byte> initial_registers(const CameraConfig& config) {
    std::vector<std::byte> bytes(register_store_size());
    Block block(bytes);
    for (uint16_t reg = 0; reg < static_cast<uint16_t>(Reg::Count); ++reg) block.FromTable(static_cast<Reg>(reg));
    write_names(block, config);
    write_sensor(block, config);
    write_lines(block);
    write_module_chip(block, config);
    return bytes;
}

}  // namespace kivsim
