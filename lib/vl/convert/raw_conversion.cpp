#include "convert/raw_conversion.h"

#include <algorithm>

#include "convert/bayer_lines.h"
#include "convert/chroma.h"
#include "convert/colour_steps.h"
#include "convert/demosaic.h"

namespace kiv::vl {
namespace {

// What a strip may take of the cache, source and result together.
constexpr std::size_t strip_bytes = 256 * 1024;
// Where a strip needs many lines around it, fewer strips are better.
constexpr std::uint32_t wide_strip_lines = 128;

}  // namespace

template <class Component>
RawConversion<Component>::RawConversion(const RawView& raw, Image& image, const ConvertOptions& options,
                                        const Adjuster<Component>& adjuster)
    : raw_(raw), format_(raw.Format()), image_(image), options_(options), adjuster_(adjuster), reader_(raw) {}

template <class Component>
std::uint32_t RawConversion<Component>::StripLines() const {
    if (options_.strip_lines != 0) return options_.strip_lines;
    if (IsBayer() && options_.demosaic != VL_DEMOSAIC_BILINEAR) return wide_strip_lines;
    // OpenCV does all lines at once as fast as a few.
    if (!IsBayer() && reader_.IsDirect() && adjuster_.ChangesNothing()) return raw_.Height();
    const std::size_t line = (raw_.ComponentsPerLine() * format_.Planes() + std::size_t{4} * raw_.Width()) * sizeof(Component);
    return static_cast<std::uint32_t>(std::max<std::size_t>(strip_bytes / line, 8));
}

template <class Component>
void RawConversion<Component>::Strip(std::uint32_t first, std::uint32_t last) {
    cv::Mat target = lines_of(image_, first, last);
    if (format_.arrangement == Arrangement::Grey && !image_.IsColour() && !reader_.IsDirect()) {
        for (std::uint32_t line = first; line < last; ++line) reader_.Read(line, reinterpret_cast<Component*>(image_.Line(line)));
    } else if (IsBayer() && options_.demosaic == VL_DEMOSAIC_BILINEAR) {
        BilinearStrip(first, last);
    } else if (IsBayer()) {
        DemosaicStrip(first, last, target);
    } else if (format_.arrangement == Arrangement::Chroma) {
        place_pixels(ChromaPixels(first, last), "BGR", target);
    } else {
        place_pixels(Components(first, last), format_.order, target);
    }
    if (adjuster_.ChangesNothing()) return;
    for (std::uint32_t line = first; line < last; ++line)
        adjuster_.Apply(reinterpret_cast<Component*>(image_.Line(line)), image_.Width());
}

/// Lines of the buffer as components: the buffer's own memory where it will do.
template <class Component>
cv::Mat RawConversion<Component>::Components(std::uint32_t first, std::uint32_t last) {
    const bool chroma = format_.arrangement == Arrangement::Chroma;
    const bool together = format_.arrangement == Arrangement::Interleaved || format_.arrangement == Arrangement::Planar;
    const int rows = static_cast<int>(last - first);
    const int width = static_cast<int>(chroma ? raw_.ComponentsPerLine() : raw_.Width());
    const int type = mat_type<Component>(together ? static_cast<int>(format_.order.size()) : 1);
    // OpenCV has no read-only images; nothing below writes to this one.
    if (reader_.IsDirect()) return {rows, width, type, const_cast<std::uint8_t*>(raw_.Line(first)), raw_.Stride()};
    components_.create(rows, width, type);
    for (int row = 0; row < rows; ++row) reader_.Read(first + static_cast<std::uint32_t>(row), components_.ptr<Component>(row));
    return components_;
}

template <class Component>
cv::Mat RawConversion<Component>::ChromaPixels(std::uint32_t first, std::uint32_t last) {
    const cv::Mat components = Components(first, last);
    pixels_.create(components.rows, static_cast<int>(raw_.Width()), mat_type<Component>(3));
    for (int row = 0; row < components.rows; ++row)
        chroma_to_bgr(format_, components.ptr<Component>(row), raw_.Width(), pixels_.ptr<Component>(row));
    return pixels_;
}

/// Lines beyond the first and the last one are mirrored.
template <class Component>
const Component* RawConversion<Component>::FilterLine(std::int64_t line) {
    line = mirrored(static_cast<std::ptrdiff_t>(line), raw_.Height());
    if (reader_.IsDirect()) return reinterpret_cast<const Component*>(raw_.Line(static_cast<std::uint32_t>(line)));
    KeptLine& kept = kept_[line % 3];
    if (kept.number != line) {
        kept.values.resize(raw_.Width());
        reader_.Read(static_cast<std::uint32_t>(line), kept.values.data());
        kept.number = line;
    }
    return kept.values.data();
}

template <class Component>
void RawConversion<Component>::BilinearStrip(std::uint32_t first, std::uint32_t last) {
    const bool in_place = image_.Channels() == 3;
    if (!in_place) pixels_.create(1, static_cast<int>(raw_.Width()), mat_type<Component>(3));
    for (std::uint32_t line = first; line < last; ++line) {
        const std::int64_t number = line;
        auto* bgr = in_place ? reinterpret_cast<Component*>(image_.Line(line)) : pixels_.ptr<Component>();
        demosaic_line(FilterLine(number - 1), FilterLine(number), FilterLine(number + 1), raw_.Width(),
                      BayerLine::Of(format_.order, line), bgr);
        if (in_place) continue;
        cv::Mat target = lines_of(image_, line, line + 1);
        place_pixels(pixels_, "BGR", target);
    }
}

/// The strip with so many lines and columns around it, mirrored where the image ends.
template <class Component>
cv::Mat RawConversion<Component>::FilterLinesAround(std::uint32_t first, std::uint32_t last, int margin) {
    const int rows = static_cast<int>(last - first) + 2 * margin;
    const auto width = static_cast<int>(raw_.Width());
    components_.create(rows, width + 2 * margin, mat_type<Component>(1));
    for (int row = 0; row < rows; ++row) {
        const auto line = mirrored(static_cast<std::ptrdiff_t>(first) + row - margin, raw_.Height());
        auto* out = components_.ptr<Component>(row);
        reader_.Read(static_cast<std::uint32_t>(line), out + margin);
        for (int i = 1; i <= margin; ++i) {
            out[margin - i] = out[margin + mirrored(-i, width)];
            out[margin + width - 1 + i] = out[margin + mirrored(width - 1 + i, width)];
        }
    }
    return components_;
}

template <class Component>
void RawConversion<Component>::DemosaicStrip(std::uint32_t first, std::uint32_t last, cv::Mat& target) {
    // With an even margin the first column keeps its colours; so does the first line if the strip begins with an even one.
    const int around = demosaic_reach(options_.demosaic);
    const cv::Mat filter = FilterLinesAround(first, last, around);
    pixels_.create(filter.size(), mat_type<Component>(3));
    demosaic(filter, first % 2 == 0 ? format_.order : order_one_line_down(format_.order), options_.demosaic, pixels_);
    place_pixels(pixels_(cv::Rect(around, around, target.cols, target.rows)), "BGR", target);
}

template class RawConversion<std::uint8_t>;
template class RawConversion<std::uint16_t>;

}  // namespace kiv::vl
