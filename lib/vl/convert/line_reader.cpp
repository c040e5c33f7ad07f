#include "convert/line_reader.h"

#include <bit>
#include <cstring>

#include "unpack/unpack.h"

namespace kiv::vl {
namespace {

void bring_to_range(std::uint16_t* values, std::size_t count, unsigned bits, std::uint8_t* out) {
    reduce_to_8(values, count, bits, out);
}

void bring_to_range(std::uint16_t* values, std::size_t count, unsigned bits, std::uint16_t* out) {
    if (bits >= 8) {
        spread_to_16(values, count, bits);
        std::memcpy(out, values, count * sizeof *out);
        return;
    }
    const unsigned step = 65535 / ((1u << bits) - 1);
    for (std::size_t i = 0; i < count; ++i) out[i] = static_cast<std::uint16_t>(values[i] * step);
}

}  // namespace

template <class Component>
bool LineReader<Component>::IsDirect() const {
    const auto& format = raw_.Format();
    if (format.Planes() != 1) return false;
    if constexpr (sizeof(Component) == 1) return format.packing == Packing::Bytes;
    const bool even = reinterpret_cast<std::uintptr_t>(raw_.Line(0)) % 2 == 0 && raw_.Stride() % 2 == 0;
    return std::endian::native == std::endian::little && format.packing == Packing::Words && format.bits == 16 && even;
}

template <class Component>
void LineReader<Component>::Read(std::uint32_t line, Component* out) {
    const auto& format = raw_.Format();
    const unsigned planes = format.Planes();
    if (planes == 1) {
        raw_.ReadLine(line, 0, scratch_.data());
        bring_to_range(scratch_.data(), scratch_.size(), format.bits, out);
        return;
    }
    std::vector<Component> plane_line(scratch_.size());
    for (unsigned plane = 0; plane < planes; ++plane) {
        raw_.ReadLine(line, plane, scratch_.data());
        bring_to_range(scratch_.data(), scratch_.size(), format.bits, plane_line.data());
        for (std::size_t i = 0; i < plane_line.size(); ++i) out[i * planes + plane] = plane_line[i];
    }
}

template class LineReader<std::uint8_t>;
template class LineReader<std::uint16_t>;

}  // namespace kiv::vl
