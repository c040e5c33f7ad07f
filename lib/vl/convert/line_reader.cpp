#include "convert/line_reader.h"

#include <bit>

#include "unpack/unpack.h"

namespace kiv::vl {
namespace {

void bring_to_range(std::uint8_t*, std::size_t, unsigned) {}
void bring_to_range(std::uint16_t* values, std::size_t count, unsigned bits) { spread_to_16(values, count, bits); }

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
    raw_.ReadLine(line, plane, out);
    bring_to_range(out, raw_.ComponentsPerLine(), raw_.Format().bits);
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
