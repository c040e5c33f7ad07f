/// Lines of a raw buffer as components of one depth, 8 or 16 bits over the whole range, whatever the buffer holds.
#pragma once

#include <cstdint>
#include <vector>

#include "format/raw_view.h"

namespace kiv::vl {

template <class Component>
class LineReader {
public:
    explicit LineReader(const RawView& raw) : raw_(raw) {}

    /// Whether the buffer's own lines are such components already, so that there is nothing to read.
    bool IsDirect() const;
    /// Writes the components of a line. A planar format gives the planes' components by turns, as if they were interleaved.
    void Read(std::uint32_t line, Component* out);

private:
    void ReadPlane(std::uint32_t line, unsigned plane, Component* out);

    const RawView& raw_;
    std::vector<Component> plane_line_;
};

extern template class LineReader<std::uint8_t>;
extern template class LineReader<std::uint16_t>;

}  // namespace kiv::vl
