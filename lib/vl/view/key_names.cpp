#include "view/key_names.h"

#include <SDL2/SDL.h>
#include <VL.h>

namespace kiv::vl {
namespace {

struct Row {
    std::int64_t theirs;
    std::int32_t ours;
};

constexpr Row keys[] = {
    {SDLK_RIGHT, VL_KEY_RIGHT},   {SDLK_LEFT, VL_KEY_LEFT},     {SDLK_DOWN, VL_KEY_DOWN},      {SDLK_UP, VL_KEY_UP},
    {SDLK_HOME, VL_KEY_HOME},     {SDLK_END, VL_KEY_END},       {SDLK_PAGEUP, VL_KEY_PAGE_UP}, {SDLK_PAGEDOWN, VL_KEY_PAGE_DOWN},
    {SDLK_INSERT, VL_KEY_INSERT}, {SDLK_DELETE, VL_KEY_DELETE},
};
constexpr Row buttons[] = {
    {SDL_BUTTON_LMASK, VL_BUTTON_LEFT}, {SDL_BUTTON_MMASK, VL_BUTTON_MIDDLE}, {SDL_BUTTON_RMASK, VL_BUTTON_RIGHT}};
constexpr Row modifiers[] = {{KMOD_SHIFT, VL_MODIFIER_SHIFT}, {KMOD_CTRL, VL_MODIFIER_CONTROL}, {KMOD_ALT, VL_MODIFIER_ALT}};

template <std::size_t count>
std::int32_t mask_of(const Row (&rows)[count], std::uint32_t theirs) {
    std::int32_t ours = 0;
    for (const auto& row : rows)
        if ((theirs & row.theirs) != 0) ours |= row.ours;
    return ours;
}

}  // namespace

std::int32_t key_of(std::int32_t key) {
    for (const auto& row : keys)
        if (row.theirs == key) return row.ours;
    if (key >= SDLK_F1 && key <= SDLK_F12) return VL_KEY_F1 + (key - SDLK_F1);
    if (key >= SDLK_F13 && key <= SDLK_F24) return VL_KEY_F1 + 12 + (key - SDLK_F13);
    return (key & SDLK_SCANCODE_MASK) == 0 ? key : 0;
}

std::int32_t buttons_of(std::uint32_t mask) { return mask_of(buttons, mask); }
std::int32_t modifiers_of(std::uint32_t mask) { return mask_of(modifiers, mask); }

}  // namespace kiv::vl
