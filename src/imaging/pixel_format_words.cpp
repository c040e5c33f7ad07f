#include "imaging/pixel_format_words.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>

namespace kiv {

namespace {

enum class Colour { mono, bayer, yuv, rgb };

using Words = std::uint32_t;
constexpr Words PACKED = 1 << 0, PLANAR = 1 << 1, SIGNED = 1 << 2, NV12 = 1 << 3, YUYV = 1 << 4, P32 = 1 << 5, P = 1 << 6,
                V1 = 1 << 7, V2 = 1 << 8, UYVY = 1 << 9, UYYVYY = 1 << 10, UYV = 1 << 11;

struct Word {
    std::string_view text;
    Words bit;
};

// A word that begins like another stands before it.
constexpr Word layout_words[] = {{"PACKED", PACKED}, {"PLANAR", PLANAR}, {"SIGNED", SIGNED}, {"UYYVYY", UYYVYY}, {"UYVY", UYVY},
                                 {"YUYV", YUYV},     {"NV12", NV12},     {"UYV", UYV},       {"P32", P32},       {"V1", V1},
                                 {"V2", V2},         {"P", P},           {"S", SIGNED}};

struct ColourWord {
    std::string_view text;
    Colour colour;
};

// In the order in which they are looked for: the first that occurs anywhere in the name decides.
constexpr ColourWord colour_words[] = {{"MONO", Colour::mono}, {"BAYER", Colour::bayer}, {"BAY", Colour::bayer},
                                       {"YUV", Colour::yuv},   {"RGBA", Colour::rgb},    {"BGRA", Colour::rgb},
                                       {"RGB", Colour::rgb},   {"BGR", Colour::rgb}};

struct Analysis {
    Colour colour{};
    std::string_view order;  // of Bayer cells ("GR") and of components ("BGRA"); for YUV the sampling ("422")
    std::string_view depth;
    Words words = 0;
};

bool is_digit(char c) { return c >= '0' && c <= '9'; }

std::string_view take(std::string_view& text, std::size_t length) {
    auto taken = text.substr(0, length);
    text.remove_prefix(length);
    return taken;
}

std::string_view take_digits(std::string_view& text) {
    auto end = std::ranges::find_if_not(text, is_digit);
    return take(text, static_cast<std::size_t>(end - text.begin()));
}

template <std::size_t count>
std::string_view take_one_of(std::string_view& text, const std::array<std::string_view, count>& choices) {
    for (auto choice : choices)
        if (text.starts_with(choice)) return take(text, choice.size());
    return {};
}

/// What stands behind colour, order and depth. False when a part of it is not understood where the layout depends on it.
bool take_layout(std::string_view rest, Analysis& found) {
    bool apart = false;  // from what came before, by an underscore
    while (!rest.empty()) {
        if (rest.front() == '_') {
            rest.remove_prefix(1);
            apart = true;
            continue;
        }
        if (apart && found.depth.empty() && is_digit(rest.front())) {
            found.depth = take_digits(rest);
            continue;
        }
        auto word = std::ranges::find_if(layout_words, [&](const Word& each) { return rest.starts_with(each.text); });
        if (word != std::end(layout_words)) {
            found.words |= word->bit;
            rest.remove_prefix(word->text.size());
            continue;
        }
        // A maker's word of its own behind a monochrome format says nothing about the layout; elsewhere it may.
        if (!apart || found.colour != Colour::mono) return false;
        rest.remove_prefix(std::min(rest.find('_'), rest.size()));
    }
    return true;
}

std::optional<Analysis> analyse(std::string_view name) {
    static constexpr std::array<std::string_view, 4> samplings{"411", "422", "444", "420"};
    static constexpr std::array<std::string_view, 4> cell_orders{"GR", "RG", "GB", "BG"};
    for (auto& word : colour_words) {
        auto at = name.find(word.text);
        if (at == std::string_view::npos) continue;
        auto rest = name.substr(at + word.text.size());
        Analysis found{word.colour, word.text, {}, 0};
        if (word.colour == Colour::yuv) found.order = take_one_of(rest, samplings);
        if (word.colour == Colour::bayer) found.order = take_one_of(rest, cell_orders);
        if (word.colour == Colour::bayer && found.order.empty()) return std::nullopt;
        found.depth = take_digits(rest);
        if (!take_layout(rest, found)) return std::nullopt;
        return found;
    }
    return std::nullopt;
}

struct MonoRow {
    std::string_view depth;
    Words present;  // 0: whatever the words are
    std::uint32_t code;
};

// The first row that fits. "14" and "16" ask for no word: a 14-bit packed format is taken for the unpacked one.
constexpr MonoRow mono_rows[] = {
    {"8", SIGNED, 0x81080002},  {"8", 0, 0x81080001},  {"10", PACKED, 0x810C0004}, {"10", P, 0x010A0046}, {"10", 0, 0x81100003},
    {"12", PACKED, 0x810C0006}, {"12", P, 0x010C0047}, {"12", 0, 0x81100005},      {"14", 0, 0x81100025}, {"16", 0, 0x81100007}};

struct Row {
    std::string_view order;
    std::string_view depth;
    Words words;  // exactly these
    std::uint32_t code;
};

constexpr Row bayer_rows[] = {
    {"GR", "8", 0, 0x81080008},       {"RG", "8", 0, 0x81080009},       {"GB", "8", 0, 0x8108000A},
    {"BG", "8", 0, 0x8108000B},       {"GR", "10", 0, 0x8110000C},      {"RG", "10", 0, 0x8110000D},
    {"GB", "10", 0, 0x8110000E},      {"BG", "10", 0, 0x8110000F},      {"GR", "12", 0, 0x81100010},
    {"RG", "12", 0, 0x81100011},      {"GB", "12", 0, 0x81100012},      {"BG", "12", 0, 0x81100013},
    {"GR", "16", 0, 0x8110002E},      {"RG", "16", 0, 0x8110002F},      {"GB", "16", 0, 0x81100030},
    {"BG", "16", 0, 0x81100031},      {"GR", "10", PACKED, 0x810C0026}, {"RG", "10", PACKED, 0x810C0027},
    {"GB", "10", PACKED, 0x810C0028}, {"BG", "10", PACKED, 0x810C0029}, {"GR", "12", PACKED, 0x810C002A},
    {"RG", "12", PACKED, 0x810C002B}, {"GB", "12", PACKED, 0x810C002C}, {"BG", "12", PACKED, 0x810C002D},
};

// "Packed" of the older RGB names means that the components lie together, not that bits are packed.
constexpr Row rgb_rows[] = {
    {"RGB", "8", 0, 0x82180014},
    {"RGB", "8", PACKED, 0x82180014},
    {"BGR", "8", 0, 0x82180015},
    {"BGR", "8", PACKED, 0x82180015},
    {"RGBA", "8", 0, 0x82200016},
    {"RGBA", "8", PACKED, 0x82200016},
    {"BGRA", "8", 0, 0x82200017},
    {"BGRA", "8", PACKED, 0x82200017},
    {"RGB", "10", 0, 0x82300018},
    {"RGB", "10", PACKED, 0x82300018},
    {"BGR", "10", 0, 0x82300019},
    {"BGR", "10", PACKED, 0x82300019},
    {"RGB", "12", 0, 0x8230001A},
    {"RGB", "12", PACKED, 0x8230001A},
    {"BGR", "12", 0, 0x8230001B},
    {"BGR", "12", PACKED, 0x8230001B},
    {"RGB", "16", 0, 0x82300033},
    {"RGB", "16", PACKED, 0x82300033},
    {"RGB", "8", PLANAR, 0x82180021},
    {"RGB", "10", PLANAR, 0x82300022},
    {"RGB", "12", PLANAR, 0x82300023},
    {"RGB", "16", PLANAR, 0x82300024},
    {"RGB", "10", V1 | PACKED, 0x8220001C},
    {"BGR", "10", V1 | PACKED, 0x8220001C},
    {"RGB", "10", P32, 0x8220001D},
    {"RGB", "10", V2 | PACKED, 0x8220001D},
    {"BGR", "10", V2 | PACKED, 0x8220001D},
    {"RGB", "12", V1 | PACKED, 0x82240034},
};

constexpr Row yuv_rows[] = {
    {"411", "", PACKED, 0x820C001E},        {"411", "8", UYYVYY, 0x820C001E}, {"422", "", PACKED, 0x8210001F},
    {"422", "8", UYVY, 0x8210001F},         {"422", "8", 0, 0x82100032},      {"422", "", YUYV | PACKED, 0x82100032},
    {"444", "", PACKED, 0x82180020},        {"", "8", UYV, 0x82180020},       {"420", "", P | NV12 | PACKED, 0x820C0040},
    {"420", "", NV12 | PACKED, 0x820C0040},
};

std::optional<std::uint32_t> choose_mono(const Analysis& name) {
    for (auto& row : mono_rows)
        if (row.depth == name.depth && (name.words & row.present) == row.present) return row.code;
    return std::nullopt;
}

template <std::size_t count>
std::optional<std::uint32_t> choose(const Row (&rows)[count], const Analysis& name) {
    for (auto& row : rows)
        if (row.order == name.order && row.depth == name.depth && row.words == name.words) return row.code;
    return std::nullopt;
}

}  // namespace

std::optional<std::uint32_t> code_by_words(std::string_view name) {
    std::string upper(name);
    std::ranges::transform(upper, upper.begin(),
                           [](char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); });
    auto found = analyse(upper);
    if (!found) return std::nullopt;
    switch (found->colour) {
        case Colour::mono:
            return choose_mono(*found);
        case Colour::bayer:
            return choose(bayer_rows, *found);
        case Colour::rgb:
            return choose(rgb_rows, *found);
        case Colour::yuv:
            return choose(yuv_rows, *found);
    }
    return std::nullopt;
}

}  // namespace kiv
