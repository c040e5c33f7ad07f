/// A font of 5 x 7 dots, for what is printed on parts and into test patterns: digits, capitals and a few signs.
#pragma once

#include <cstdint>

namespace kivsim {

constexpr int kGlyphWidth = 5, kGlyphHeight = 7, kGlyphAdvance = 6;

/// The five dots of row `row` (0 at the top) of a character, the leftmost in bit 4. Unknown characters are blank.
uint8_t glyph_row(char c, int row);

}  // namespace kivsim
