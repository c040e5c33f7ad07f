#include "measure/pixels.h"

#include <algorithm>
#include <cstring>

#include "core/error.h"

namespace kiv::vl {
namespace {

void require_inside(std::uint32_t x, std::uint32_t y, std::uint32_t width, std::uint32_t height) {
    if (x >= width || y >= height)
        throw Error(VL_ST_INVALID_PARAMETER,
                    "pixel " + std::to_string(x) + ", " + std::to_string(y) + " of an image of " + size_text(width, height));
}

template <class Component>
constexpr unsigned unit = 65535 / ((1u << 8 * sizeof(Component)) - 1);

template <class Component>
std::uint16_t in_16(const std::uint8_t* pixel, unsigned channel) {
    Component value;
    std::memcpy(&value, pixel + channel * sizeof value, sizeof value);
    return static_cast<std::uint16_t>(value * unit<Component>);
}

template <class Component>
void put(std::uint8_t* pixel, unsigned channel, std::uint32_t value_16) {
    const auto value = static_cast<Component>(value_16 / (sizeof(Component) == 1 ? 256 : 1));
    std::memcpy(pixel + channel * sizeof value, &value, sizeof value);
}

std::uint16_t channel_at(const Image& image, const std::uint8_t* pixel, unsigned channel) {
    return image.IsDeep() ? in_16<std::uint16_t>(pixel, channel) : in_16<std::uint8_t>(pixel, channel);
}

std::size_t pixel_bytes(const Image& image) { return std::size_t{image.Channels()} * image.BytesPerChannel(); }

template <class Component>
std::array<std::uint64_t, 3> sums(const Image& image, const Rectangle& r) {
    const unsigned channels = image.Channels();
    std::array<std::uint64_t, 3> total{};
    for (std::uint32_t y = r.top; y < r.bottom; ++y) {
        const auto* pixel = reinterpret_cast<const Component*>(image.Line(y)) + std::size_t{r.left} * channels;
        for (std::uint32_t x = r.left; x < r.right; ++x, pixel += channels)
            for (unsigned c = 0; c < std::min(channels, 3u); ++c) total[c] += pixel[c];
    }
    for (auto& sum : total) sum *= unit<Component>;
    return total;
}

std::uint16_t luma(const Colour16& colour) {
    return static_cast<std::uint16_t>((299u * colour.red + 587u * colour.green + 114u * colour.blue + 500u) / 1000u);
}

}  // namespace

Colour16 pixel_at(const Image& image, std::uint32_t x, std::uint32_t y) {
    require_inside(x, y, image.Width(), image.Height());
    const std::uint8_t* pixel = image.Line(y) + x * pixel_bytes(image);
    const std::uint16_t first = channel_at(image, pixel, 0);
    if (!image.IsColour()) return {first, first, first};
    return {channel_at(image, pixel, 2), channel_at(image, pixel, 1), first};
}

void set_pixel(Image& image, std::uint32_t x, std::uint32_t y, const Colour16& colour) {
    require_inside(x, y, image.Width(), image.Height());
    std::uint8_t* pixel = image.Line(y) + x * pixel_bytes(image);
    const auto write = image.IsDeep() ? put<std::uint16_t> : put<std::uint8_t>;
    if (!image.IsColour()) return write(pixel, 0, luma(colour));
    write(pixel, 0, colour.blue);
    write(pixel, 1, colour.green);
    write(pixel, 2, colour.red);
}

Colour16 average(const Image& image, const Rectangle& r) {
    if (r.left >= r.right || r.top >= r.bottom || r.right > image.Width() || r.bottom > image.Height())
        throw Error(VL_ST_INVALID_PARAMETER, "a rectangle from " + std::to_string(r.left) + ", " + std::to_string(r.top) +
                                                 " to " + std::to_string(r.right) + ", " + std::to_string(r.bottom) +
                                                 " is empty or not within " + size_text(image.Width(), image.Height()));
    const auto total = image.IsDeep() ? sums<std::uint16_t>(image, r) : sums<std::uint8_t>(image, r);
    const std::uint64_t count = std::uint64_t{r.right - r.left} * (r.bottom - r.top);
    const auto mean = [&](unsigned c) { return static_cast<std::uint16_t>((total[c] + count / 2) / count); };
    if (!image.IsColour()) return {mean(0), mean(0), mean(0)};
    return {mean(2), mean(1), mean(0)};
}

std::vector<std::uint16_t> stored_pixel(const RawView& raw, std::uint32_t x, std::uint32_t y) {
    require_inside(x, y, raw.Width(), raw.Height());
    const PixelFormat& format = raw.Format();
    std::vector<std::uint16_t> line(raw.ComponentsPerLine());
    if (format.Planes() > 1) {
        std::vector<std::uint16_t> pixel;
        for (unsigned plane = 0; plane < format.Planes(); ++plane) {
            raw.ReadLine(y, plane, line.data());
            pixel.push_back(line[x]);
        }
        return pixel;
    }
    raw.ReadLine(y, 0, line.data());
    const std::size_t group = x / format.PixelsPerGroup() * format.ComponentsPerGroup();
    if (format.arrangement != Arrangement::Chroma)
        return {line.begin() + static_cast<std::ptrdiff_t>(group),
                line.begin() + static_cast<std::ptrdiff_t>(group + format.ComponentsPerGroup())};
    std::size_t luma_place = format.order.find('Y');
    for (std::size_t i = x % format.PixelsPerGroup(); i > 0; --i) luma_place = format.order.find('Y', luma_place + 1);
    return {line[group + luma_place], line[group + format.order.find('U')], line[group + format.order.find('V')]};
}

}  // namespace kiv::vl
