/// The pixel formats that this library knows by name, with their PFNC codes (bits 31-24: one or several components, bits 23-16:
/// bits per pixel, bits 15-0: the format).
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace kiv {

struct PixelFormatName {
    std::string_view name;
    std::uint32_t code;
};

/// A format that was recognised by the words of its name carries this bit (PFNC's mark of a custom format), so that it stays
/// distinguishable from one that was named exactly.
inline constexpr std::uint32_t recognised_by_words = 0x80000000;

/// Every row, aliases included, in the order of the catalogue.
std::span<const PixelFormatName> pixel_format_catalogue() noexcept;
/// The code of a name, exact in every letter.
std::optional<std::uint32_t> catalogue_code(std::string_view name) noexcept;
/// The first name of a code; empty when the catalogue has none.
std::string_view catalogue_name(std::uint64_t code) noexcept;

}  // namespace kiv
