#include "convert/convert.h"

#include <algorithm>
#include <cstring>

#include "convert/colour_steps.h"
#include "convert/raw_conversion.h"
#include "core/parallel.h"

namespace kiv::vl {
namespace {

template <class Component>
void convert_strips(const RawView& raw, Image& image, const ConvertOptions& options) {
    const Adjuster<Component> adjuster(options.adjustment, image.Channels());
    in_parallel(raw.Height(), std::uint64_t{raw.Width()} * raw.Height(), [&](std::uint32_t first, std::uint32_t last) {
        RawConversion<Component> conversion(raw, image, options, adjuster);
        const std::uint32_t lines = conversion.StripLines();
        for (; first < last; first += std::min(lines, last - first)) conversion.Strip(first, std::min(first + lines, last));
    });
}

void change_depth(const std::uint8_t* from, std::size_t count, std::uint8_t* to) { std::memcpy(to, from, count); }
void change_depth(const std::uint16_t* from, std::size_t count, std::uint16_t* to) { std::memcpy(to, from, 2 * count); }
void change_depth(const std::uint8_t* from, std::size_t count, std::uint16_t* to) {
    for (std::size_t i = 0; i < count; ++i) to[i] = static_cast<std::uint16_t>(from[i] * 257);
}
void change_depth(const std::uint16_t* from, std::size_t count, std::uint8_t* to) {
    for (std::size_t i = 0; i < count; ++i) to[i] = static_cast<std::uint8_t>(from[i] >> 8);
}

// A line alone has an order that OpenCV knows, whichever way the lines stand.
template <class From, class To>
void convert_line(const Image& source, std::uint32_t y, Image& target) {
    const char* order = source.HasAlpha() ? "BGRa" : source.IsColour() ? "BGR" : "Y";
    cv::Mat line(1, static_cast<int>(source.Width()), mat_type<To>(static_cast<int>(source.Channels())));
    change_depth(reinterpret_cast<const From*>(source.Line(y)), std::size_t{source.Width()} * source.Channels(), line.ptr<To>());
    cv::Mat out(1, line.cols, mat_type<To>(static_cast<int>(target.Channels())), target.Line(y));
    place_pixels(line, order, out);
}

}  // namespace

std::uint64_t image_type_of(const PixelFormat& format) {
    if (format.IsColour()) return format.IsDeep() ? VL_IMAGE_BGR16 : VL_IMAGE_BGR8;
    return format.IsDeep() ? VL_IMAGE_MONO16 : VL_IMAGE_MONO8;
}

void convert_raw(const RawView& raw, Image& image, const ConvertOptions& options) {
    require_same_size(raw.Width(), raw.Height(), image);
    fill_upright(image, [&](Image& target) {
        if (target.IsDeep()) {
            convert_strips<std::uint16_t>(raw, target, options);
        } else {
            convert_strips<std::uint8_t>(raw, target, options);
        }
    });
    image.SetSignificantBits(std::max<unsigned>(raw.Format().bits, 8));
}

void convert_image(const Image& source, Image& target) {
    if (&source == &target) return;
    require_same_size(source.Width(), source.Height(), target);
    for (std::uint32_t y = 0; y < source.Height(); ++y) {
        if (source.IsDeep()) {
            target.IsDeep() ? convert_line<std::uint16_t, std::uint16_t>(source, y, target)
                            : convert_line<std::uint16_t, std::uint8_t>(source, y, target);
        } else {
            target.IsDeep() ? convert_line<std::uint8_t, std::uint16_t>(source, y, target)
                            : convert_line<std::uint8_t, std::uint8_t>(source, y, target);
        }
    }
    target.SetSignificantBits(source.SignificantBits());
}

}  // namespace kiv::vl
