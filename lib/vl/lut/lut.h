/// Look-up tables for the values of pixels.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "image/image.h"

namespace kiv::vl {

class Lut {
public:
    /// Every value gives itself. Throws an Error for bits other than 8 to 16 and channels other than 1 and 3.
    Lut(std::uint32_t input_bits, std::uint32_t output_bits, std::uint32_t channels);

    std::uint32_t InputBits() const { return input_bits_; }
    std::uint32_t OutputBits() const { return output_bits_; }
    std::uint32_t Channels() const { return channels_; }
    std::uint32_t Entries() const { return 1u << input_bits_; }
    std::uint32_t Top() const { return (1u << output_bits_) - 1; }

    /// channel: VL_CHANNEL_...; a table of one channel answers for all three. Indices and values are checked: Error.
    std::uint32_t Value(std::int32_t channel, std::uint32_t index) const;
    void Set(std::int32_t channel, std::uint32_t index, std::uint32_t value);

    /// All channels: out = curve(in), black 0 and white 1; what lies beyond stops there.
    void Fill(const std::function<double(double)>& curve);
    /// The same to what the table gives.
    void Follow(const std::function<double(double)>& curve);
    /// What `source` gives, whatever its bits.
    void FillFrom(const Lut& source);

    /// One channel for values over the whole range of From, results over the whole range of To.
    template <class From, class To>
    std::vector<To> Expanded(std::int32_t channel) const;

private:
    std::uint16_t* Row(std::uint32_t channel) { return values_.data() + std::size_t{channel} * Entries(); }
    const std::uint16_t* Row(std::uint32_t channel) const { return values_.data() + std::size_t{channel} * Entries(); }
    const std::uint16_t* RowOf(std::int32_t channel) const;
    std::uint16_t Rounded(double out) const;

    std::uint32_t input_bits_;
    std::uint32_t output_bits_;
    std::uint32_t channels_;
    std::vector<std::uint16_t> values_;
};

/// From gamma on: the curves that have a name. Each throws an Error for arguments that make no sense.
std::function<double(double)> gamma_curve(double gamma);
std::function<double(double)> linear_curve(double slope, double offset);
std::function<double(double)> knee_curve(std::span<const VL_KNEE_POINT> points);

/// A table made ready for lines of one depth: for each channel of a pixel in its order in memory.
template <class From, class To>
class LutLines {
public:
    LutLines(const Lut& lut, unsigned pixel_channels);
    void Apply(const From* from, std::size_t pixels, To* to) const;

private:
    unsigned channels_;
    std::vector<To> tables_[3];
};

/// Same size, both grey or both colour (alpha goes through as it is); they may be one image. Throws an Error otherwise.
void apply_lut(const Image& source, const Lut& lut, Image& target);

}  // namespace kiv::vl
