#include "convert/convert.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "convert/chroma.h"
#include "convert/colour_steps.h"
#include "convert/line_reader.h"
#include "core/error.h"

namespace kiv::vl {
namespace {

// What a strip may take of the cache, source and result together. Smaller ones were slower: each strip costs a call into OpenCV
// and two lines that are read twice.
constexpr std::size_t strip_bytes = 1024 * 1024;

void require_same_size(std::uint32_t width, std::uint32_t height, const Image& image) {
    if (image.Width() != width || image.Height() != height)
        throw Error(VL_ST_INVALID_PARAMETER, "the source has " + size_text(width, height) + " pixels, the target image " +
                                                 size_text(image.Width(), image.Height()));
}

/// One conversion of a buffer into an image whose channels are Components.
template <class Component>
class RawConversion {
public:
    RawConversion(const RawView& raw, Image& image, const ConvertOptions& options)
        : raw_(raw), format_(raw.Format()), image_(image), options_(options), reader_(raw) {}

    void Run() {
        const std::uint32_t height = raw_.Height();
        const std::uint32_t lines = std::max<std::uint32_t>(StripLines(), 2);
        for (std::uint32_t first = 0, last = 0; first < height; first = last) {
            last = std::min(first + lines, height);
            // Demosaicing needs three lines, and a last strip of one line would have but one neighbour.
            if (last + 1 == height) last = height;
            Strip(first, last);
        }
    }

private:
    bool IsBayer() const { return format_.arrangement == Arrangement::Bayer; }
    int SourceChannels() const {
        const bool interleaved = format_.arrangement == Arrangement::Interleaved || format_.arrangement == Arrangement::Planar;
        return interleaved ? static_cast<int>(format_.order.size()) : 1;
    }

    std::uint32_t StripLines() const {
        if (options_.strip_lines != 0) return options_.strip_lines;
        const bool one_step = reader_.IsDirect() && image_.IsColour() && options_.gains.AreOne();
        // A colour filter of one or two lines has no neighbours that a strip could borrow.
        if (one_step || raw_.Height() < 3) return raw_.Height();
        const std::size_t line =
            raw_.ComponentsPerLine() * format_.Planes() * sizeof(Component) + std::size_t{3} * raw_.Width() * sizeof(Component);
        return static_cast<std::uint32_t>(std::max<std::size_t>(strip_bytes / line, 8));
    }

    void Strip(std::uint32_t first, std::uint32_t last) {
        cv::Mat target = lines_of(image_, first, last);
        if (format_.arrangement == Arrangement::Grey && !image_.IsColour() && !reader_.IsDirect()) {
            for (std::uint32_t line = first; line < last; ++line)
                reader_.Read(line, reinterpret_cast<Component*>(image_.Line(line)));
        } else if (IsBayer()) {
            DemosaicStrip(first, last, target);
        } else if (format_.arrangement == Arrangement::Chroma) {
            place_pixels(ChromaPixels(first, last), "BGR", target);
        } else {
            place_pixels(Components(first, last), format_.order, target);
        }
        if (image_.IsColour()) apply_gains(target, options_.gains);
    }

    /// Lines of the buffer as components: the buffer's own memory where it will do.
    cv::Mat Components(std::uint32_t first, std::uint32_t last) {
        const int rows = static_cast<int>(last - first);
        const int width = format_.arrangement == Arrangement::Chroma ? static_cast<int>(raw_.ComponentsPerLine())
                                                                     : static_cast<int>(raw_.Width());
        const int type = mat_type<Component>(SourceChannels());
        // OpenCV has no read-only images; nothing below writes to this one.
        if (reader_.IsDirect()) return {rows, width, type, const_cast<std::uint8_t*>(raw_.Line(first)), raw_.Stride()};
        components_.create(rows, width, type);
        for (int row = 0; row < rows; ++row)
            reader_.Read(first + static_cast<std::uint32_t>(row), components_.ptr<Component>(row));
        return components_;
    }

    cv::Mat ChromaPixels(std::uint32_t first, std::uint32_t last) {
        const cv::Mat components = Components(first, last);
        pixels_.create(components.rows, static_cast<int>(raw_.Width()), mat_type<Component>(3));
        for (int row = 0; row < components.rows; ++row)
            chroma_to_bgr(format_, components.ptr<Component>(row), raw_.Width(), pixels_.ptr<Component>(row));
        return pixels_;
    }

    /// Demosaics with one line more on each side, where there is one: the outermost lines of a result are only copies.
    void DemosaicStrip(std::uint32_t first, std::uint32_t last, cv::Mat& target) {
        const std::uint32_t from = first - (first > 0 ? 1 : 0);
        const std::uint32_t to = last + (last < raw_.Height() ? 1 : 0);
        const std::string_view order = from % 2 == 0 ? format_.order : order_one_line_down(format_.order);
        const cv::Mat components = Components(from, to);
        if (target.channels() == 3) {
            KeepLine keep(image_, first, from != first);
            cv::Mat wider = lines_of(image_, from, to);
            demosaic(components, order, options_.demosaic, wider);
            return;
        }
        pixels_.create(components.rows, components.cols, mat_type<Component>(3));
        demosaic(components, order, options_.demosaic, pixels_);
        place_pixels(pixels_.rowRange(static_cast<int>(first - from), static_cast<int>(last - from)), "BGR", target);
    }

    /// Puts the line above a strip back: it was complete, and demosaicing the strip in place writes over it. (The line below is
    /// still to come.)
    class KeepLine {
    public:
        KeepLine(Image& image, std::uint32_t first, bool needed) : line_(needed ? image.Line(first - 1) : nullptr) {
            if (needed) saved_.assign(line_, line_ + image.LineBytes());
        }
        ~KeepLine() {
            if (line_ != nullptr) std::memcpy(line_, saved_.data(), saved_.size());
        }
        KeepLine(const KeepLine&) = delete;
        KeepLine& operator=(const KeepLine&) = delete;

    private:
        std::uint8_t* line_;
        std::vector<std::uint8_t> saved_;
    };

    const RawView& raw_;
    const PixelFormat& format_;
    Image& image_;
    const ConvertOptions& options_;
    LineReader<Component> reader_;
    cv::Mat components_;
    cv::Mat pixels_;
};

void change_depth(const std::uint8_t* from, std::size_t count, std::uint8_t* to) { std::memcpy(to, from, count); }
void change_depth(const std::uint16_t* from, std::size_t count, std::uint16_t* to) { std::memcpy(to, from, 2 * count); }
void change_depth(const std::uint8_t* from, std::size_t count, std::uint16_t* to) {
    for (std::size_t i = 0; i < count; ++i) to[i] = static_cast<std::uint16_t>(from[i] * 257);
}
void change_depth(const std::uint16_t* from, std::size_t count, std::uint8_t* to) {
    for (std::size_t i = 0; i < count; ++i) to[i] = static_cast<std::uint8_t>(from[i] >> 8);
}

template <class From, class To>
void convert_lines(const Image& source, Image& target) {
    cv::Mat line(1, static_cast<int>(source.Width()), mat_type<To>(static_cast<int>(source.Channels())));
    for (std::uint32_t y = 0; y < source.Height(); ++y) {
        change_depth(reinterpret_cast<const From*>(source.Line(y)), std::size_t{source.Width()} * source.Channels(),
                     line.ptr<To>());
        cv::Mat out = lines_of(target, y, y + 1);
        place_pixels(line, source.IsColour() ? "BGR" : "Y", out);
    }
}

}  // namespace

std::uint64_t image_type_of(const PixelFormat& format) {
    if (format.IsColour()) return format.IsDeep() ? VL_IMAGE_BGR16 : VL_IMAGE_BGR8;
    return format.IsDeep() ? VL_IMAGE_MONO16 : VL_IMAGE_MONO8;
}

void convert_raw(const RawView& raw, Image& image, const ConvertOptions& options) {
    require_same_size(raw.Width(), raw.Height(), image);
    if (image.IsDeep()) {
        RawConversion<std::uint16_t>(raw, image, options).Run();
    } else {
        RawConversion<std::uint8_t>(raw, image, options).Run();
    }
    image.SetSignificantBits(std::max<unsigned>(raw.Format().bits, 8));
}

void convert_image(const Image& source, Image& target) {
    if (&source == &target) return;
    require_same_size(source.Width(), source.Height(), target);
    if (source.IsDeep()) {
        target.IsDeep() ? convert_lines<std::uint16_t, std::uint16_t>(source, target)
                        : convert_lines<std::uint16_t, std::uint8_t>(source, target);
    } else {
        target.IsDeep() ? convert_lines<std::uint8_t, std::uint16_t>(source, target)
                        : convert_lines<std::uint8_t, std::uint8_t>(source, target);
    }
    target.SetSignificantBits(source.SignificantBits());
}

}  // namespace kiv::vl
