#pragma once

#include "sources/location.h"

namespace kiv::genapi {

template <class Visit>
void LocationIndex::ForEachOverlap(const Location& self, const PortNode* port, int64_t address, int64_t length,
                                   Visit visit) const {
    const int64_t end = address > INT64_MAX - length ? INT64_MAX : address + length;
    for (std::size_t i = self.isAlone_ ? 0 : FirstBehind(port, end); i-- > 0;) {
        const auto& fixed = fixed_[i];
        if (fixed.port != port || fixed.furthestEnd <= address) break;
        if (fixed.end > address && fixed.location != &self) visit(*fixed.location);
    }
    for (const auto& moving : moving_) {
        if (moving.port != port || moving.begin >= end || moving.location == &self) continue;
        const auto before = static_cast<uint64_t>(address) - static_cast<uint64_t>(moving.begin);
        const bool reaches = moving.begin >= address ? moving.length > 0 : before < static_cast<uint64_t>(moving.length);
        if (reaches) visit(*moving.location);
    }
}

}  // namespace kiv::genapi
