/// One conversion of a buffer into an image, by one thread: its buffers are used from strip to strip.
#pragma once

#include <opencv2/core/mat.hpp>
#include <vector>

#include "convert/convert.h"
#include "convert/line_reader.h"

namespace kiv::vl {

/// Component: what the image's channels are. The image's top line comes first in memory.
template <class Component>
class RawConversion {
public:
    RawConversion(const RawView& raw, Image& image, const ConvertOptions& options, const Adjuster<Component>& adjuster);

    /// How many lines are best done at once.
    std::uint32_t StripLines() const;
    /// Fills the image's lines from `first` to before `last`.
    void Strip(std::uint32_t first, std::uint32_t last);

private:
    bool IsBayer() const { return format_.arrangement == Arrangement::Bayer; }
    cv::Mat Components(std::uint32_t first, std::uint32_t last);
    cv::Mat ChromaPixels(std::uint32_t first, std::uint32_t last);
    void BilinearStrip(std::uint32_t first, std::uint32_t last);
    const Component* FilterLine(std::int64_t line);
    void DemosaicStrip(std::uint32_t first, std::uint32_t last, cv::Mat& target);
    cv::Mat FilterLinesAround(std::uint32_t first, std::uint32_t last, int margin);

    const RawView& raw_;
    const PixelFormat& format_;
    Image& image_;
    const ConvertOptions& options_;
    const Adjuster<Component>& adjuster_;
    LineReader<Component> reader_;
    cv::Mat components_;
    cv::Mat pixels_;

    struct KeptLine {
        std::int64_t number = -1;
        std::vector<Component> values;
    };
    KeptLine kept_[3];  ///< lines of a filter, each read once although three lines of pixels need it
};

extern template class RawConversion<std::uint8_t>;
extern template class RawConversion<std::uint16_t>;

}  // namespace kiv::vl
