/// Finds the register locations that share bytes with a given range of addresses.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kiv::genapi {

class Location;
class PortNode;

/// Locations whose address never changes are kept sorted; of the others those that have been read are listed with the place that
/// their bytes are of.
class LocationIndex {
public:
    void Build(const std::vector<Location*>& locations);

    /// The bytes that `location` keeps are now those of [address, address + length).
    void Seen(Location& location, int64_t address, int64_t length);

    /// Calls `visit` for every location but `self` on the same port that has bytes of [address, address + length), which is where
    /// `self` stands now.
    template <class Visit>
    void ForEachOverlap(const Location& self, const PortNode* port, int64_t address, int64_t length, Visit visit) const;

private:
    struct Fixed {
        const PortNode* port;
        int64_t begin;
        int64_t end;
        int64_t furthestEnd;  // of this one and all before it on its port
        Location* location;
    };
    std::size_t FirstBehind(const PortNode* port, int64_t address) const;

    std::vector<Fixed> fixed_;  // by port, then by beginning
    struct Moving {
        const PortNode* port;
        int64_t begin;
        int64_t length;
        Location* location;
    };
    std::vector<Moving> moving_;
};

}  // namespace kiv::genapi

#include "runtime/location_index_inl.h"
