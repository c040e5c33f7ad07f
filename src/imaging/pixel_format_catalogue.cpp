#include "imaging/pixel_format_catalogue.h"

#include <algorithm>
#include <array>

namespace kiv {

namespace {

// Names of the Pixel Format Naming Convention and their older GigE Vision spellings. Two names of one code are aliases; the first
// of them is the one that a code is told by.
constexpr auto rows = std::to_array<PixelFormatName>({
    // clang-format off
    // Monochrome
    {"Mono8", 0x01080001},
    {"Mono8Signed", 0x01080002},
    {"Mono8s", 0x01080002},
    {"Mono10", 0x01100003},
    {"Mono10Packed", 0x010C0004},
    {"Mono10p", 0x010A0046},
    {"Mono12", 0x01100005},
    {"Mono12Packed", 0x010C0006},
    {"Mono12p", 0x010C0047},
    {"Mono14", 0x01100025},
    {"Mono16", 0x01100007},
    // Bayer 8 bit
    {"BayerGR8", 0x01080008},
    {"BayerRG8", 0x01080009},
    {"BayerGB8", 0x0108000A},
    {"BayerBG8", 0x0108000B},
    // Bayer 10/12/16 bit unpacked
    {"BayerGR10", 0x0110000C},
    {"BayerRG10", 0x0110000D},
    {"BayerGB10", 0x0110000E},
    {"BayerBG10", 0x0110000F},
    {"BayerGR12", 0x01100010},
    {"BayerRG12", 0x01100011},
    {"BayerGB12", 0x01100012},
    {"BayerBG12", 0x01100013},
    {"BayerGR16", 0x0110002E},
    {"BayerRG16", 0x0110002F},
    {"BayerGB16", 0x01100030},
    {"BayerBG16", 0x01100031},
    // Bayer packed (GigE Vision)
    {"BayerGR10Packed", 0x010C0026},
    {"BayerRG10Packed", 0x010C0027},
    {"BayerGB10Packed", 0x010C0028},
    {"BayerBG10Packed", 0x010C0029},
    {"BayerGR12Packed", 0x010C002A},
    {"BayerRG12Packed", 0x010C002B},
    {"BayerGB12Packed", 0x010C002C},
    {"BayerBG12Packed", 0x010C002D},
    // Bayer packed (PFNC "p")
    {"BayerGR10p", 0x010A0056},
    {"BayerRG10p", 0x010A0058},
    {"BayerGB10p", 0x010A0054},
    {"BayerBG10p", 0x010A0052},
    {"BayerGR12p", 0x010C0057},
    {"BayerRG12p", 0x010C0059},
    {"BayerGB12p", 0x010C0055},
    {"BayerBG12p", 0x010C0053},
    // RGB/BGR
    {"RGB8Packed", 0x02180014},
    {"RGB8", 0x02180014},
    {"BGR8Packed", 0x02180015},
    {"BGR8", 0x02180015},
    {"RGB10Packed", 0x02300018},
    {"RGB10", 0x02300018},
    {"BGR10Packed", 0x02300019},
    {"BGR10", 0x02300019},
    {"RGB12Packed", 0x0230001A},
    {"RGB12", 0x0230001A},
    {"BGR12Packed", 0x0230001B},
    {"BGR12", 0x0230001B},
    {"RGB16Packed", 0x02300033},
    {"RGB16", 0x02300033},
    {"RGB10p", 0x021E005C},
    {"BGR10p", 0x021E0048},
    {"RGB12p", 0x0224005D},
    {"BGR12p", 0x02240049},
    {"RGB10V1Packed", 0x0220001C},
    {"RGB10V2Packed", 0x0220001D},
    {"RGB10p32", 0x0220001D},
    {"RGB12V1Packed", 0x02240034},
    // YUV
    {"YUV411Packed", 0x020C001E},
    {"YUV411_8_UYYVYY", 0x020C001E},
    {"YUV422Packed", 0x0210001F},
    {"YUV422_8_UYVY", 0x0210001F},
    {"YUV422YUYVPacked", 0x02100032},
    {"YUYVPacked", 0x02100032},
    {"YUV422_8", 0x02100032},
    {"YUV444Packed", 0x02180020},
    {"YUV8_UYV", 0x02180020},
    {"YUV420PNV12Packed", 0x020C0040},
    // Planar
    {"RGB8Planar", 0x02180021},
    {"RGB8_Planar", 0x02180021},
    {"RGB10Planar", 0x02300022},
    {"RGB10_Planar", 0x02300022},
    {"RGB12Planar", 0x02300023},
    {"RGB12_Planar", 0x02300023},
    {"RGB16Planar", 0x02300024},
    {"RGB16_Planar", 0x02300024},
    // With alpha
    {"RGBa8", 0x02200016},
    {"BGRa8", 0x02200017},
    {"BGRa10", 0x0240004C},
    {"BGRa10p", 0x0228004D},
    {"BGRa12", 0x0240004E},
    {"BGRa12p", 0x0230004F},
    {"BGRa14", 0x02400050},
    {"BGRa16", 0x02400051},
    {"RGBa10", 0x0240005F},
    {"RGBa10p", 0x02280060},
    {"RGBa12", 0x02400061},
    {"RGBa12p", 0x02300062},
    {"RGBa14", 0x02400063},
    {"RGBa16", 0x02400064},
    // clang-format on
});

constexpr auto by_name = [] {
    auto sorted = rows;
    std::ranges::sort(sorted, {}, &PixelFormatName::name);
    return sorted;
}();

}  // namespace

std::span<const PixelFormatName> pixel_format_catalogue() noexcept { return rows; }

std::optional<std::uint32_t> catalogue_code(std::string_view name) noexcept {
    auto found = std::ranges::lower_bound(by_name, name, {}, &PixelFormatName::name);
    if (found == by_name.end() || found->name != name) return std::nullopt;
    return found->code;
}

std::string_view catalogue_name(std::uint64_t code) noexcept {
    auto found = std::ranges::find(rows, code, &PixelFormatName::code);
    return found == rows.end() ? std::string_view() : found->name;
}

}  // namespace kiv
