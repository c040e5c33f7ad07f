#include "lut/lut.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "core/error.h"
#include "core/scale.h"

namespace kiv::vl {
namespace {

void require_bits(const char* what, std::uint32_t bits) {
    if (bits < 8 || bits > 16)
        throw Error(VL_ST_INVALID_PARAMETER, std::to_string(bits) + " " + what + " bits: a table has 8 to 16");
}

void require_finite(double value, const char* what) {
    if (!std::isfinite(value)) throw Error(VL_ST_INVALID_PARAMETER, std::string(what) + " is no number");
}

}  // namespace

Lut::Lut(std::uint32_t input_bits, std::uint32_t output_bits, std::uint32_t channels)
    : input_bits_(input_bits), output_bits_(output_bits), channels_(channels) {
    require_bits("input", input_bits);
    require_bits("output", output_bits);
    if (channels != 1 && channels != 3)
        throw Error(VL_ST_INVALID_PARAMETER, "a table of " + std::to_string(channels) + " channels: 1 or 3 are possible");
    values_.resize(std::size_t{channels} * Entries());
    Fill([](double in) { return in; });
}

const std::uint16_t* Lut::RowOf(std::int32_t channel) const {
    if (channel < VL_CHANNEL_RED || channel > VL_CHANNEL_BLUE)
        throw Error(VL_ST_INVALID_PARAMETER, "there is no channel " + std::to_string(channel));
    return Row(channels_ == 1 ? 0 : static_cast<std::uint32_t>(channel));
}

std::uint32_t Lut::Value(std::int32_t channel, std::uint32_t index) const {
    const auto* row = RowOf(channel);
    if (index >= Entries())
        throw Error(VL_ST_INVALID_PARAMETER, "entry " + std::to_string(index) + " of a table of " + std::to_string(Entries()));
    return row[index];
}

void Lut::Set(std::int32_t channel, std::uint32_t index, std::uint32_t value) {
    if (value > Top())
        throw Error(VL_ST_INVALID_PARAMETER,
                    "a value of " + std::to_string(value) + " does not fit into " + std::to_string(output_bits_) + " bits");
    if (channel == VL_CHANNEL_ALL) {
        for (std::uint32_t c = 0; c < channels_; ++c) Set(static_cast<std::int32_t>(c), index, value);
        return;
    }
    Value(channel, index);
    Row(channels_ == 1 ? 0 : static_cast<std::uint32_t>(channel))[index] = static_cast<std::uint16_t>(value);
}

std::uint16_t Lut::Rounded(double out) const {
    return static_cast<std::uint16_t>(std::lround(std::clamp(out, 0.0, 1.0) * Top()));
}

void Lut::Fill(const std::function<double(double)>& curve) {
    const double last = Entries() - 1;
    for (std::uint32_t i = 0; i < Entries(); ++i) {
        const auto value = Rounded(curve(i / last));
        for (std::uint32_t c = 0; c < channels_; ++c) Row(c)[i] = value;
    }
}

void Lut::Follow(const std::function<double(double)>& curve) {
    for (auto& value : values_) value = Rounded(curve(value / static_cast<double>(Top())));
}

void Lut::FillFrom(const Lut& source) {
    if (&source == this) return;
    for (std::uint32_t c = 0; c < channels_; ++c)
        for (std::uint32_t i = 0; i < Entries(); ++i) {
            const double place = static_cast<double>(i) / (Entries() - 1) * (source.Entries() - 1);
            const auto below = static_cast<std::uint32_t>(place);
            const auto above = std::min(below + 1, source.Entries() - 1);
            const double part = place - below;
            double sum = 0;
            const std::uint32_t first = channels_ == 1 ? 0 : std::min(c, source.channels_ - 1);
            const std::uint32_t last = channels_ == 1 ? source.channels_ - 1 : first;
            for (std::uint32_t from = first; from <= last; ++from)
                sum += source.Row(from)[below] * (1 - part) + source.Row(from)[above] * part;
            Row(c)[i] = Rounded(sum / (last - first + 1) / source.Top());
        }
}

template <class From, class To>
std::vector<To> Lut::Expanded(std::int32_t channel) const {
    const auto* row = RowOf(channel);
    constexpr unsigned from_bits = 8 * sizeof(From);
    std::vector<To> table(std::size_t{1} << from_bits);
    for (std::uint32_t v = 0; v < table.size(); ++v)
        table[v] = static_cast<To>(rescale(row[rescale(v, from_bits, input_bits_)], output_bits_, 8 * sizeof(To)));
    return table;
}

std::function<double(double)> gamma_curve(double gamma) {
    if (!(gamma > 0 && gamma <= 100))
        throw Error(VL_ST_INVALID_PARAMETER, "a gamma of " + std::to_string(gamma) + ": it is above 0 and at most 100");
    return [gamma](double in) { return std::pow(in, gamma); };
}

std::function<double(double)> linear_curve(double slope, double offset) {
    require_finite(slope, "the slope");
    require_finite(offset, "the offset");
    return [slope, offset](double in) { return slope * in + offset; };
}

std::function<double(double)> knee_curve(std::span<const VL_KNEE_POINT> points) {
    if (points.empty() || points.size() > 1024)
        throw Error(VL_ST_INVALID_PARAMETER, std::to_string(points.size()) + " knee points: 1 to 1024 are possible");
    std::vector<VL_KNEE_POINT> knees;
    if (points.front().in > 0) knees.push_back({0, 0});
    for (const auto& point : points) {
        if (!(point.in >= 0 && point.in <= 1 && point.out >= 0 && point.out <= 1))
            throw Error(VL_ST_INVALID_PARAMETER, "a knee point lies outside of 0 to 1");
        if (!knees.empty() && point.in <= knees.back().in && &point != points.data())
            throw Error(VL_ST_INVALID_PARAMETER, "knee points must ascend");
        knees.push_back(point);
    }
    if (knees.back().in < 1) knees.push_back({1, 1});
    return [knees](double in) {
        std::size_t right = 1;
        while (right + 1 < knees.size() && knees[right].in < in) ++right;
        const auto& a = knees[right - 1];
        const auto& b = knees[right];
        return a.out + (in - a.in) / (b.in - a.in) * (b.out - a.out);
    };
}

template <class From, class To>
LutLines<From, To>::LutLines(const Lut& lut, unsigned pixel_channels) : channels_(pixel_channels) {
    for (unsigned c = 0; c < std::min(pixel_channels, 3u); ++c) {
        const std::int32_t channel = pixel_channels == 1 ? std::int32_t{VL_CHANNEL_GREEN} : static_cast<std::int32_t>(2 - c);
        tables_[c] = lut.Expanded<From, To>(channel);
    }
}

template <class From, class To>
void LutLines<From, To>::Apply(const From* from, std::size_t pixels, To* to) const {
    if (channels_ == 1) {
        for (std::size_t i = 0; i < pixels; ++i) to[i] = tables_[0][from[i]];
        return;
    }
    for (std::size_t i = 0; i < pixels; ++i, from += channels_, to += channels_) {
        for (std::size_t c = 0; c < 3; ++c) to[c] = tables_[c][from[c]];
        if (channels_ == 4) to[3] = static_cast<To>(from[3]);
    }
}

template class LutLines<std::uint8_t, std::uint8_t>;
template class LutLines<std::uint8_t, std::uint16_t>;
template class LutLines<std::uint16_t, std::uint8_t>;
template class LutLines<std::uint16_t, std::uint16_t>;

namespace {

template <class From, class To>
void apply(const Image& source, const Lut& lut, Image& target) {
    const LutLines<From, To> lines(lut, source.Channels());
    for (std::uint32_t y = 0; y < source.Height(); ++y)
        lines.Apply(reinterpret_cast<const From*>(source.Line(y)), source.Width(), reinterpret_cast<To*>(target.Line(y)));
}

}  // namespace

void apply_lut(const Image& source, const Lut& lut, Image& target) {
    require_same_size(source.Width(), source.Height(), target);
    if (source.Channels() != target.Channels())
        throw Error(VL_ST_INVALID_PARAMETER, "source and target have not the same channels");
    if (source.IsDeep()) {
        target.IsDeep() ? apply<std::uint16_t, std::uint16_t>(source, lut, target)
                        : apply<std::uint16_t, std::uint8_t>(source, lut, target);
    } else {
        target.IsDeep() ? apply<std::uint8_t, std::uint16_t>(source, lut, target)
                        : apply<std::uint8_t, std::uint8_t>(source, lut, target);
    }
}

}  // namespace kiv::vl
