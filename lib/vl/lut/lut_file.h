/// Look-up tables as text files.
#pragma once

#include <string>
#include <string_view>

#include "lut/lut.h"

namespace kiv::vl {

std::string lut_text(const Lut& lut);
/// Throws an Error that names the file and the line that is wrong.
Lut parse_lut(std::string_view text, std::string_view file);

/// The two with the file around them; path is UTF-8.
void save_lut(const Lut& lut, std::string_view path);
Lut load_lut(std::string_view path);

}  // namespace kiv::vl
