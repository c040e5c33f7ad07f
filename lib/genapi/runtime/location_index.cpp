#include "runtime/location_index.h"

#include <algorithm>
#include <tuple>

namespace kiv::genapi {

void LocationIndex::Build(const std::vector<Location*>& locations) {
    for (auto* location : locations) {
        if (!location->IsFixed()) continue;
        const auto begin = location->Address(), length = location->Length();
        const int64_t end = begin > INT64_MAX - length ? INT64_MAX : begin + length;
        fixed_.push_back({&location->Port(), begin, end, end, location});
    }
    std::sort(fixed_.begin(), fixed_.end(),
              [](const Fixed& a, const Fixed& b) { return std::tie(a.port, a.begin) < std::tie(b.port, b.begin); });
    for (size_t i = 1; i < fixed_.size(); ++i)
        if (fixed_[i].port == fixed_[i - 1].port) fixed_[i].furthestEnd = std::max(fixed_[i].end, fixed_[i - 1].furthestEnd);
    for (size_t i = 0; i < fixed_.size(); ++i) {
        const bool isBehind = i == 0 || fixed_[i - 1].port != fixed_[i].port || fixed_[i - 1].furthestEnd <= fixed_[i].begin;
        const bool isBefore =
            i + 1 == fixed_.size() || fixed_[i + 1].port != fixed_[i].port || fixed_[i].end <= fixed_[i + 1].begin;
        fixed_[i].location->isAlone_ = isBehind && isBefore;
    }
}

void LocationIndex::Seen(Location& location, int64_t address, int64_t length) {
    if (location.IsFixed()) return;
    if (location.listed_ == Location::notListed) {
        location.listed_ = static_cast<uint32_t>(moving_.size());
        moving_.push_back({&location.Port(), address, length, &location});
    }
    moving_[location.listed_].begin = address;
    moving_[location.listed_].length = length;
}

size_t LocationIndex::FirstBehind(const PortNode* port, int64_t address) const {
    const auto it = std::partition_point(fixed_.begin(), fixed_.end(), [&](const Fixed& fixed) {
        return std::tie(fixed.port, fixed.begin) < std::tie(port, address);
    });
    return static_cast<size_t>(it - fixed_.begin());
}

}  // namespace kiv::genapi
