#pragma once

#include <compare>
#include <cstdint>

namespace GenICam {

/// A version of three numbers. Two versions are compatible when the major numbers agree and the provided minor one is not older.
struct Version_t {
    uint16_t Major = 0;
    uint16_t Minor = 0;
    uint16_t SubMinor = 0;

    friend constexpr bool operator==(const Version_t&, const Version_t&) = default;
    friend constexpr auto operator<=>(const Version_t&, const Version_t&) = default;

    /// Whether something made for `required` works with this version.
    constexpr bool IsCompatible(const Version_t& required) const { return Major == required.Major && Minor >= required.Minor; }
};

}  // namespace GenICam
