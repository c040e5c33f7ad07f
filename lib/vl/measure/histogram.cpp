#include "measure/histogram.h"

#include <algorithm>
#include <string>

#include "core/error.h"
#include "core/scale.h"

namespace kiv::vl {
namespace {

template <class Component>
void count_lines(const Image& image, unsigned channel, std::vector<std::uint64_t>& values) {
    const unsigned channels = image.Channels();
    values.assign(std::size_t{1} << 8 * sizeof(Component), 0);
    for (std::uint32_t y = 0; y < image.Height(); ++y) {
        const auto* component = reinterpret_cast<const Component*>(image.Line(y)) + channel;
        for (std::uint32_t x = 0; x < image.Width(); ++x, component += channels) ++values[*component];
    }
}

}  // namespace

Histogram::Histogram(std::uint32_t bits) : bits_(bits) {
    if (bits < 1 || bits > 16)
        throw Error(VL_ST_INVALID_PARAMETER, "a histogram of " + std::to_string(bits) + " bits: 1 to 16 are possible");
    Clear();
}

void Histogram::Clear() {
    for (auto& channel : counts_) channel.assign(std::size_t{1} << bits_, 0);
}

void Histogram::Add(const Image& image) {
    const unsigned image_bits = 8 * image.BytesPerChannel();
    std::vector<std::uint64_t> values;
    for (unsigned c = 0; c < std::min(image.Channels(), 3u); ++c) {
        image.IsDeep() ? count_lines<std::uint16_t>(image, c, values) : count_lines<std::uint8_t>(image, c, values);
        for (std::uint32_t value = 0; value < values.size(); ++value) {
            const std::uint32_t bin = rescale(value, image_bits, bits_);
            if (image.IsColour()) {
                counts_[2 - c][bin] += values[value];
            } else {
                for (auto& channel : counts_) channel[bin] += values[value];
            }
        }
    }
}

std::uint64_t Histogram::Count(std::int32_t channel, std::uint32_t bin) const {
    if (bin >= counts_[0].size())
        throw Error(VL_ST_INVALID_PARAMETER,
                    "bin " + std::to_string(bin) + " of a histogram of " + std::to_string(counts_[0].size()));
    if (channel == VL_CHANNEL_ALL) return counts_[0][bin] + counts_[1][bin] + counts_[2][bin];
    if (channel < VL_CHANNEL_RED || channel > VL_CHANNEL_BLUE)
        throw Error(VL_ST_INVALID_PARAMETER, "there is no channel " + std::to_string(channel));
    return counts_[static_cast<std::size_t>(channel)][bin];
}

HandleTable<VL_HISTOGRAM_HANDLE, Histogram>& histograms() {
    static auto& table = make_table<VL_HISTOGRAM_HANDLE, Histogram>("histogram");
    return table;
}

}  // namespace kiv::vl
