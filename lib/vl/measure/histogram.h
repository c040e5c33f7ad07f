/// How often each value occurs.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "core/handle_table.h"
#include "image/image.h"

namespace kiv::vl {

class Histogram {
public:
    /// 2^bits bins for each of three channels. Throws an Error for bits other than 1 to 16.
    explicit Histogram(std::uint32_t bits);

    void Clear();
    void Add(const Image& image);
    /// channel: VL_CHANNEL_...; Throws an Error for bins and channels that do not exist.
    std::uint64_t Count(std::int32_t channel, std::uint32_t bin) const;

private:
    std::uint32_t bits_;
    std::array<std::vector<std::uint64_t>, 3> counts_;
};

HandleTable<VL_HISTOGRAM_HANDLE, Histogram>& histograms();

}  // namespace kiv::vl
