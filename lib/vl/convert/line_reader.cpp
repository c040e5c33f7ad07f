#include "convert/line_reader.h"

#include <bit>

#include "unpack/unpack.h"

namespace kiv::vl {
namespace {

// 16-bit components are unpacked where they are wanted and spread in place; 8-bit ones need a line of scratch.
std::uint16_t* place_to_unpack(std::uint16_t* out, std::vector<std::uint16_t>&) { return out; }
std::uint16_t* place_to_unpack(std::uint8_t*, std::vector<std::uint16_t>& scratch) { return scratch.data(); }

void bring_to_range(const std::uint16_t* values, std::size_t count, unsigned bits, std::uint8_t* out) {
    reduce_to_8(values, count, bits, out);
}

void bring_to_range(const std::uint16_t*, std::size_t count, unsigned bits, std::uint16_t* out) {
    spread_to_16(out, count, bits);
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
void LineReader<Component>::ReadPlane(std::uint32_t line, unsigned plane, Component* out) {
    std::uint16_t* values = place_to_unpack(out, scratch_);
    raw_.ReadLine(line, plane, values);
    bring_to_range(values, raw_.ComponentsPerLine(), raw_.Format().bits, out);
}

template <class Component>
void LineReader<Component>::Read(std::uint32_t line, Component* out) {
    const unsigned planes = raw_.Format().Planes();
    if (planes == 1) return ReadPlane(line, 0, out);
    plane_line_.resize(raw_.ComponentsPerLine());
    for (unsigned plane = 0; plane < planes; ++plane) {
        ReadPlane(line, plane, plane_line_.data());
        for (std::size_t i = 0; i < plane_line_.size(); ++i) out[i * planes + plane] = plane_line_[i];
    }
}

template class LineReader<std::uint8_t>;
template class LineReader<std::uint16_t>;

}  // namespace kiv::vl
