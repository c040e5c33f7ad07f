/// Keys, buttons and modifiers of SDL as those of VL.h.
#pragma once

#include <cstdint>

namespace kiv::vl {

/// 0 for keys that have no number of ours.
std::int32_t key_of(std::int32_t sdl_key);
std::int32_t buttons_of(std::uint32_t sdl_mask);
std::int32_t modifiers_of(std::uint32_t sdl_modifiers);

}  // namespace kiv::vl
