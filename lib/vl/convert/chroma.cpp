#include "convert/chroma.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace kiv::vl {
namespace {

// Weights of red and blue in luma; the rest of each conversion follows from them.
struct Weights {
    Matrix matrix;
    float red;
    float blue;
    bool limited;
};

constexpr Weights weights[] = {
    {Matrix::Full601, 0.299F, 0.114F, false},
    {Matrix::Limited601, 0.299F, 0.114F, true},
    {Matrix::Limited709, 0.2126F, 0.0722F, true},
    {Matrix::Limited2020, 0.2627F, 0.0593F, true},
};

struct Coefficients {
    float luma_offset;
    float luma;
    float chroma_offset;
    float red_of_v;
    float green_of_u;
    float green_of_v;
    float blue_of_u;
};

// `bits` of the source and `top` of the components: a limited range is counted in the source's values (16 to 235 with 8 bits,
// 64 to 940 with 10), which have been spread to 0 ... top.
Coefficients coefficients(Matrix matrix, unsigned bits, float top) {
    const auto* row =
        std::find_if(std::begin(weights), std::end(weights), [matrix](const Weights& w) { return w.matrix == matrix; });
    const float unit = top / static_cast<float>((1u << bits) - 1);
    const float scale = static_cast<float>(1u << (bits - 8)) * unit;
    const float luma = row->limited ? top / (219.0F * scale) : 1.0F;
    const float chroma = row->limited ? top / (224.0F * scale) : 1.0F;
    const float green = 1.0F - row->red - row->blue;
    return {row->limited ? 16.0F * scale : 0.0F,
            luma,
            128.0F * scale,
            2.0F * (1.0F - row->red) * chroma,
            -2.0F * row->blue * (1.0F - row->blue) / green * chroma,
            -2.0F * row->red * (1.0F - row->red) / green * chroma,
            2.0F * (1.0F - row->blue) * chroma};
}

template <class Component>
Component clamp_to(float value) {
    constexpr float top = std::numeric_limits<Component>::max();
    return static_cast<Component>(std::clamp(value + 0.5F, 0.0F, top));
}

}  // namespace

template <class Component>
void chroma_to_bgr(const PixelFormat& format, const Component* components, std::size_t pixels, Component* out) {
    // Values of more than 8 bits in 8-bit components have been cut to the upper 8, so they count as 8.
    const unsigned bits = sizeof(Component) == 1 ? 8u : format.bits;
    const Coefficients c = coefficients(format.matrix, bits, std::numeric_limits<Component>::max());
    const std::size_t u_place = format.order.find('U');
    const std::size_t v_place = format.order.find('V');
    const std::size_t groups = pixels / format.PixelsPerGroup();

    for (std::size_t group = 0; group < groups; ++group, components += format.order.size()) {
        const float u = static_cast<float>(components[u_place]) - c.chroma_offset;
        const float v = static_cast<float>(components[v_place]) - c.chroma_offset;
        const float blue = c.blue_of_u * u;
        const float green = c.green_of_u * u + c.green_of_v * v;
        const float red = c.red_of_v * v;
        for (std::size_t i = 0; i < format.order.size(); ++i) {
            if (i == u_place || i == v_place) continue;
            const float y = (static_cast<float>(components[i]) - c.luma_offset) * c.luma;
            *out++ = clamp_to<Component>(y + blue);
            *out++ = clamp_to<Component>(y + green);
            *out++ = clamp_to<Component>(y + red);
        }
    }
}

template void chroma_to_bgr(const PixelFormat&, const std::uint8_t*, std::size_t, std::uint8_t*);
template void chroma_to_bgr(const PixelFormat&, const std::uint16_t*, std::size_t, std::uint16_t*);

}  // namespace kiv::vl
