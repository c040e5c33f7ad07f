/// Pixel formats by the words in their names, for cameras that spell a known format in their own way ("GVSP_PIX_MONO10_PACKED").
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace kiv {

/// The code that the words of a name add up to, with the bit recognised_by_words (except for the two monochrome "p" formats,
/// which are told as they are). Nothing when the words say no layout of the catalogue, or another one: a suffix that is not
/// understood
/// ("pmsb", "a32") rules a name out rather than being passed over.
std::optional<std::uint32_t> code_by_words(std::string_view name);

}  // namespace kiv
