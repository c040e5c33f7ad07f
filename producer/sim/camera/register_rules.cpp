#include "register_rules.h"

#include <algorithm>
#include <bit>

#include "frame_clock.h"
#include "settings.h"

namespace kivsim {
namespace {

constexpr uint32_t kWidthStep = 4, kHeightStep = 2;

uint64_t uint_of(std::span<const std::byte> bytes) {
    uint64_t value = 0;
    for (size_t i = 0; i < bytes.size(); ++i) value |= std::to_integer<uint64_t>(bytes[i]) << (8 * i);
    return value;
}

bool in_range(const RegisterRow& row, std::span<const std::byte> bytes) {
    if (row.kind == Kind::Text || row.kind == Kind::Bytes) return true;
    const auto value = row.kind == Kind::Float ? static_cast<double>(std::bit_cast<float>(static_cast<uint32_t>(uint_of(bytes))))
                                               : static_cast<double>(uint_of(bytes));
    return value >= row.min && value <= row.max;  // false for a NaN too
}

bool takes_width(const RegisterFile& registers, uint32_t, uint64_t value) {
    return value % kWidthStep == 0 && value + registers.Uint(Reg::OffsetX) <= width_max(registers);
}
bool takes_height(const RegisterFile& registers, uint32_t, uint64_t value) {
    return value % kHeightStep == 0 && value + registers.Uint(Reg::OffsetY) <= height_max(registers);
}
bool takes_offset_x(const RegisterFile& registers, uint32_t, uint64_t value) {
    return value % kWidthStep == 0 && value + registers.Uint(Reg::Width) <= width_max(registers);
}
bool takes_offset_y(const RegisterFile& registers, uint32_t, uint64_t value) {
    return value % kHeightStep == 0 && value + registers.Uint(Reg::Height) <= height_max(registers);
}
bool takes_pixel_format(const RegisterFile& registers, uint32_t, uint64_t value) {
    const auto* format = find_pixel_format(static_cast<uint32_t>(value));
    const bool color = (registers.Uint(Reg::SensorFeatures) & 1) != 0;
    return format && (color ? format->color_camera : format->mono_camera);
}
bool takes_trigger_source(const RegisterFile&, uint32_t, uint64_t value) {
    using enum TriggerSource;
    constexpr TriggerSource sources[] = {Software, Line0, Line1, SoftwareSignal0, SoftwareSignal1, Action0, Action1};
    return std::ranges::find(sources, static_cast<TriggerSource>(value)) != std::end(sources);
}
bool takes_line_source(const RegisterFile& registers, uint32_t index, uint64_t value) {
    return registers.Uint(Reg::LineMode, index) != 0 || value == 0;  // an input has none
}
bool takes_save(const RegisterFile& registers, uint32_t, uint64_t value) {
    return value == 0 || registers.Uint(Reg::UserSetSelector) != 0;  // factory settings stay what they are
}

bool takes_chunk_enable(const RegisterFile&, uint32_t index, uint64_t value) {
    return index != 0 || value != 0;  // there is no payload without the image
}

struct Rule {
    Reg reg;
    bool (*takes)(const RegisterFile&, uint32_t index, uint64_t value);
};
constexpr Rule kRules[] = {
    {Reg::Width, takes_width},
    {Reg::Height, takes_height},
    {Reg::OffsetX, takes_offset_x},
    {Reg::OffsetY, takes_offset_y},
    {Reg::PixelFormat, takes_pixel_format},
    {Reg::TriggerSource, takes_trigger_source},
    {Reg::LineSource, takes_line_source},
    {Reg::UserSetSave, takes_save},
    {Reg::ChunkEnable, takes_chunk_enable},
};

void fit(RegisterFile& registers, Reg size, Reg offset, uint32_t largest) {
    const auto fitted = std::min<uint64_t>(registers.Uint(size), largest);
    registers.SetUint(size, fitted);
    registers.SetUint(offset, std::min<uint64_t>(registers.Uint(offset), largest - fitted));
}

bool every_value(const RegisterFile& registers, bool (*good)(const RegisterFile&, Reg, uint32_t, std::span<const std::byte>)) {
    for (uint16_t i = 0; i < static_cast<uint16_t>(Reg::Count); ++i) {
        const auto reg = static_cast<Reg>(i);
        const auto& row = row_of(reg);
        if (row.access == Access::RO) continue;
        for (uint32_t element = 0; element < row.count; ++element)
            if (!good(registers, reg, element, registers.Element(reg, element))) return false;
    }
    return true;
}

}  // namespace

bool takes_value(const RegisterFile& registers, Reg reg, uint32_t index, std::span<const std::byte> bytes) {
    if (!in_range(row_of(reg), bytes)) return false;
    const auto* rule = std::ranges::find(kRules, reg, &Rule::reg);
    return rule == std::end(kRules) || rule->takes(registers, index, uint_of(bytes));
}

bool all_values_valid(const RegisterFile& registers) {
    // ranges first: the rules divide by some of these values
    auto ranged = [](const RegisterFile&, Reg reg, uint32_t, std::span<const std::byte> bytes) {
        return in_range(row_of(reg), bytes);
    };
    return every_value(registers, ranged) && every_value(registers, takes_value);
}

void fit_region(RegisterFile& registers) {
    fit(registers, Reg::Width, Reg::OffsetX, width_max(registers));
    fit(registers, Reg::Height, Reg::OffsetY, height_max(registers));
}

}  // namespace kivsim
