#include "format/pixel_format.h"

#include <algorithm>
#include <iterator>

#include "core/error.h"

namespace kiv::vl {
namespace {

using enum Arrangement;
using enum Packing;
using enum Matrix;

// clang-format off
constexpr PixelFormat formats[] = {
    {0x01010037, "Mono1p", Grey, "Y", 1, BitStream, None},
    {0x010100C5, "Confidence1p", Grey, "Y", 1, BitStream, None},
    {0x01020038, "Mono2p", Grey, "Y", 2, BitStream, None},
    {0x01040039, "Mono4p", Grey, "Y", 4, BitStream, None},
    {0x0104010D, "BayerGR4p", Bayer, "GR", 4, BitStream, None},
    {0x0104010E, "BayerRG4p", Bayer, "RG", 4, BitStream, None},
    {0x0104010F, "BayerGB4p", Bayer, "GB", 4, BitStream, None},
    {0x01040110, "BayerBG4p", Bayer, "BG", 4, BitStream, None},
    {0x01080001, "Mono8", Grey, "Y", 8, Bytes, None},
    {0x01080002, "Mono8s", Grey, "Y", 8, SignedBytes, None},
    {0x01080008, "BayerGR8", Bayer, "GR", 8, Bytes, None},
    {0x01080009, "BayerRG8", Bayer, "RG", 8, Bytes, None},
    {0x0108000A, "BayerGB8", Bayer, "GB", 8, Bytes, None},
    {0x0108000B, "BayerBG8", Bayer, "BG", 8, Bytes, None},
    {0x010800AF, "Coord3D_A8", Grey, "Y", 8, Bytes, None},
    {0x010800B0, "Coord3D_B8", Grey, "Y", 8, Bytes, None},
    {0x010800B1, "Coord3D_C8", Grey, "Y", 8, Bytes, None},
    {0x010800C6, "Confidence8", Grey, "Y", 8, Bytes, None},
    {0x010800C9, "R8", Grey, "Y", 8, Bytes, None},
    {0x010800CD, "G8", Grey, "Y", 8, Bytes, None},
    {0x010800D1, "B8", Grey, "Y", 8, Bytes, None},
    {0x01080116, "Data8", Grey, "Y", 8, Bytes, None},
    {0x01080117, "Data8s", Grey, "Y", 8, SignedBytes, None},
    {0x010A0046, "Mono10p", Grey, "Y", 10, BitStream, None},
    {0x010A0052, "BayerBG10p", Bayer, "BG", 10, BitStream, None},
    {0x010A0054, "BayerGB10p", Bayer, "GB", 10, BitStream, None},
    {0x010A0056, "BayerGR10p", Bayer, "GR", 10, BitStream, None},
    {0x010A0058, "BayerRG10p", Bayer, "RG", 10, BitStream, None},
    {0x010A00D5, "Coord3D_A10p", Grey, "Y", 10, BitStream, None},
    {0x010A00D6, "Coord3D_B10p", Grey, "Y", 10, BitStream, None},
    {0x010A00D7, "Coord3D_C10p", Grey, "Y", 10, BitStream, None},
    {0x010C0004, "Mono10Packed", Grey, "Y", 10, Packed10, None},
    {0x010C0006, "Mono12Packed", Grey, "Y", 12, Packed12, None},
    {0x010C0026, "BayerGR10Packed", Bayer, "GR", 10, Packed10, None},
    {0x010C0027, "BayerRG10Packed", Bayer, "RG", 10, Packed10, None},
    {0x010C0028, "BayerGB10Packed", Bayer, "GB", 10, Packed10, None},
    {0x010C0029, "BayerBG10Packed", Bayer, "BG", 10, Packed10, None},
    {0x010C002A, "BayerGR12Packed", Bayer, "GR", 12, Packed12, None},
    {0x010C002B, "BayerRG12Packed", Bayer, "RG", 12, Packed12, None},
    {0x010C002C, "BayerGB12Packed", Bayer, "GB", 12, Packed12, None},
    {0x010C002D, "BayerBG12Packed", Bayer, "BG", 12, Packed12, None},
    {0x010C0047, "Mono12p", Grey, "Y", 12, BitStream, None},
    {0x010C0053, "BayerBG12p", Bayer, "BG", 12, BitStream, None},
    {0x010C0055, "BayerGB12p", Bayer, "GB", 12, BitStream, None},
    {0x010C0057, "BayerGR12p", Bayer, "GR", 12, BitStream, None},
    {0x010C0059, "BayerRG12p", Bayer, "RG", 12, BitStream, None},
    {0x010C00D8, "Coord3D_A12p", Grey, "Y", 12, BitStream, None},
    {0x010C00D9, "Coord3D_B12p", Grey, "Y", 12, BitStream, None},
    {0x010C00DA, "Coord3D_C12p", Grey, "Y", 12, BitStream, None},
    {0x010E0104, "Mono14p", Grey, "Y", 14, BitStream, None},
    {0x010E0105, "BayerGR14p", Bayer, "GR", 14, BitStream, None},
    {0x010E0106, "BayerRG14p", Bayer, "RG", 14, BitStream, None},
    {0x010E0107, "BayerGB14p", Bayer, "GB", 14, BitStream, None},
    {0x010E0108, "BayerBG14p", Bayer, "BG", 14, BitStream, None},
    {0x01100003, "Mono10", Grey, "Y", 10, Words, None},
    {0x01100005, "Mono12", Grey, "Y", 12, Words, None},
    {0x01100007, "Mono16", Grey, "Y", 16, Words, None},
    {0x0110000C, "BayerGR10", Bayer, "GR", 10, Words, None},
    {0x0110000D, "BayerRG10", Bayer, "RG", 10, Words, None},
    {0x0110000E, "BayerGB10", Bayer, "GB", 10, Words, None},
    {0x0110000F, "BayerBG10", Bayer, "BG", 10, Words, None},
    {0x01100010, "BayerGR12", Bayer, "GR", 12, Words, None},
    {0x01100011, "BayerRG12", Bayer, "RG", 12, Words, None},
    {0x01100012, "BayerGB12", Bayer, "GB", 12, Words, None},
    {0x01100013, "BayerBG12", Bayer, "BG", 12, Words, None},
    {0x01100025, "Mono14", Grey, "Y", 14, Words, None},
    {0x0110002E, "BayerGR16", Bayer, "GR", 16, Words, None},
    {0x0110002F, "BayerRG16", Bayer, "RG", 16, Words, None},
    {0x01100030, "BayerGB16", Bayer, "GB", 16, Words, None},
    {0x01100031, "BayerBG16", Bayer, "BG", 16, Words, None},
    {0x011000B6, "Coord3D_A16", Grey, "Y", 16, Words, None},
    {0x011000B7, "Coord3D_B16", Grey, "Y", 16, Words, None},
    {0x011000B8, "Coord3D_C16", Grey, "Y", 16, Words, None},
    {0x011000C7, "Confidence16", Grey, "Y", 16, Words, None},
    {0x011000CC, "R16", Grey, "Y", 16, Words, None},
    {0x011000D0, "G16", Grey, "Y", 16, Words, None},
    {0x011000D4, "B16", Grey, "Y", 16, Words, None},
    {0x01100109, "BayerGR14", Bayer, "GR", 14, Words, None},
    {0x0110010A, "BayerRG14", Bayer, "RG", 14, Words, None},
    {0x0110010B, "BayerGB14", Bayer, "GB", 14, Words, None},
    {0x0110010C, "BayerBG14", Bayer, "BG", 14, Words, None},
    {0x01100118, "Data16", Grey, "Y", 16, Words, None},
    {0x01100120, "R10", Grey, "Y", 10, Words, None},
    {0x01100121, "R12", Grey, "Y", 12, Words, None},
    {0x01100122, "G10", Grey, "Y", 10, Words, None},
    {0x01100123, "G12", Grey, "Y", 12, Words, None},
    {0x01100124, "B10", Grey, "Y", 10, Words, None},
    {0x01100125, "B12", Grey, "Y", 12, Words, None},
    {0x020C001E, "YUV411_8_UYYVYY", Chroma, "UYYVYY", 8, Bytes, Full601},
    {0x020C003C, "YCbCr411_8_CbYYCrYY", Chroma, "UYYVYY", 8, Bytes, Full601},
    {0x020C003F, "YCbCr601_411_8_CbYYCrYY", Chroma, "UYYVYY", 8, Bytes, Limited601},
    {0x020C0040, "YUV420PNV12Packed", Chroma, "YUYV", 8, SemiPlanar, Full601},
    {0x020C0042, "YCbCr709_411_8_CbYYCrYY", Chroma, "UYYVYY", 8, Bytes, Limited709},
    {0x020C005A, "YCbCr411_8", Chroma, "YYUYYV", 8, Bytes, Full601},
    {0x020C00F9, "YCbCr2020_411_8_CbYYCrYY", Chroma, "UYYVYY", 8, Bytes, Limited2020},
    {0x020C0112, "YCbCr420_8_YY_CbCr_Semiplanar", Chroma, "YUYV", 8, SemiPlanar, Full601},
    {0x020C0114, "YCbCr420_8_YY_CrCb_Semiplanar", Chroma, "YVYU", 8, SemiPlanar, Full601},
    {0x0210001F, "YUV422_8_UYVY", Chroma, "UYVY", 8, Bytes, Full601},
    {0x02100032, "YUV422_8", Chroma, "YUYV", 8, Bytes, Full601},
    {0x02100035, "RGB565p", Interleaved, "RGB", 8, P565, None},
    {0x02100036, "BGR565p", Interleaved, "BGR", 8, P565, None},
    {0x0210003B, "YCbCr422_8", Chroma, "YUYV", 8, Bytes, Full601},
    {0x0210003E, "YCbCr601_422_8", Chroma, "YUYV", 8, Bytes, Limited601},
    {0x02100041, "YCbCr709_422_8", Chroma, "YUYV", 8, Bytes, Limited709},
    {0x02100043, "YCbCr422_8_CbYCrY", Chroma, "UYVY", 8, Bytes, Full601},
    {0x02100044, "YCbCr601_422_8_CbYCrY", Chroma, "UYVY", 8, Bytes, Limited601},
    {0x02100045, "YCbCr709_422_8_CbYCrY", Chroma, "UYVY", 8, Bytes, Limited709},
    {0x021000FA, "YCbCr2020_422_8", Chroma, "YUYV", 8, Bytes, Limited2020},
    {0x021000FB, "YCbCr2020_422_8_CbYCrY", Chroma, "UYVY", 8, Bytes, Limited2020},
    {0x02100113, "YCbCr422_8_YY_CbCr_Semiplanar", Chroma, "YUYV", 8, SemiPlanar, Full601},
    {0x02100115, "YCbCr422_8_YY_CrCb_Semiplanar", Chroma, "YVYU", 8, SemiPlanar, Full601},
    {0x02140087, "YCbCr422_10p", Chroma, "YUYV", 10, BitStream, Full601},
    {0x0214008E, "YCbCr601_422_10p", Chroma, "YUYV", 10, BitStream, Limited601},
    {0x02140096, "YCbCr709_422_10p", Chroma, "YUYV", 10, BitStream, Limited709},
    {0x0214009A, "YCbCr422_10p_CbYCrY", Chroma, "UYVY", 10, BitStream, Full601},
    {0x0214009E, "YCbCr601_422_10p_CbYCrY", Chroma, "UYVY", 10, BitStream, Limited601},
    {0x021400A2, "YCbCr709_422_10p_CbYCrY", Chroma, "UYVY", 10, BitStream, Limited709},
    {0x021400FE, "YCbCr2020_422_10p", Chroma, "YUYV", 10, BitStream, Limited2020},
    {0x021400FF, "YCbCr2020_422_10p_CbYCrY", Chroma, "UYVY", 10, BitStream, Limited2020},
    {0x02180014, "RGB8", Interleaved, "RGB", 8, Bytes, None},
    {0x02180015, "BGR8", Interleaved, "BGR", 8, Bytes, None},
    {0x02180020, "YUV8_UYV", Chroma, "UYV", 8, Bytes, Full601},
    {0x02180021, "RGB8_Planar", Planar, "RGB", 8, Bytes, None},
    {0x0218003A, "YCbCr8_CbYCr", Chroma, "UYV", 8, Bytes, Full601},
    {0x0218003D, "YCbCr601_8_CbYCr", Chroma, "UYV", 8, Bytes, Limited601},
    {0x02180040, "YCbCr709_8_CbYCr", Chroma, "UYV", 8, Bytes, Limited709},
    {0x0218005B, "YCbCr8", Chroma, "YUV", 8, Bytes, Full601},
    {0x02180088, "YCbCr422_12p", Chroma, "YUYV", 12, BitStream, Full601},
    {0x02180090, "YCbCr601_422_12p", Chroma, "YUYV", 12, BitStream, Limited601},
    {0x02180098, "YCbCr709_422_12p", Chroma, "YUYV", 12, BitStream, Limited709},
    {0x0218009C, "YCbCr422_12p_CbYCrY", Chroma, "UYVY", 12, BitStream, Full601},
    {0x021800A0, "YCbCr601_422_12p_CbYCrY", Chroma, "UYVY", 12, BitStream, Limited601},
    {0x021800A4, "YCbCr709_422_12p_CbYCrY", Chroma, "UYVY", 12, BitStream, Limited709},
    {0x021800F4, "YCbCr2020_8_CbYCr", Chroma, "UYV", 8, Bytes, Limited2020},
    {0x02180102, "YCbCr2020_422_12p", Chroma, "YUYV", 12, BitStream, Limited2020},
    {0x02180103, "YCbCr2020_422_12p_CbYCrY", Chroma, "UYVY", 12, BitStream, Limited2020},
    {0x021E0048, "BGR10p", Interleaved, "BGR", 10, BitStream, None},
    {0x021E005C, "RGB10p", Interleaved, "RGB", 10, BitStream, None},
    {0x021E0084, "YCbCr10p_CbYCr", Chroma, "UYV", 10, BitStream, Full601},
    {0x021E008A, "YCbCr601_10p_CbYCr", Chroma, "UYV", 10, BitStream, Limited601},
    {0x021E0092, "YCbCr709_10p_CbYCr", Chroma, "UYV", 10, BitStream, Limited709},
    {0x021E00F6, "YCbCr2020_10p_CbYCr", Chroma, "UYV", 10, BitStream, Limited2020},
    {0x02200016, "RGBa8", Interleaved, "RGBa", 8, Bytes, None},
    {0x02200017, "BGRa8", Interleaved, "BGRa", 8, Bytes, None},
    {0x0220001C, "RGB10V1Packed", Interleaved, "RGB", 10, Rgb10V1, None},
    {0x0220001D, "RGB10p32", Interleaved, "RGB", 10, Rgb10p32, None},
    {0x02200065, "YCbCr422_10", Chroma, "YUYV", 10, Words, Full601},
    {0x02200066, "YCbCr422_12", Chroma, "YUYV", 12, Words, Full601},
    {0x0220008D, "YCbCr601_422_10", Chroma, "YUYV", 10, Words, Limited601},
    {0x0220008F, "YCbCr601_422_12", Chroma, "YUYV", 12, Words, Limited601},
    {0x02200095, "YCbCr709_422_10", Chroma, "YUYV", 10, Words, Limited709},
    {0x02200097, "YCbCr709_422_12", Chroma, "YUYV", 12, Words, Limited709},
    {0x02200099, "YCbCr422_10_CbYCrY", Chroma, "UYVY", 10, Words, Full601},
    {0x0220009B, "YCbCr422_12_CbYCrY", Chroma, "UYVY", 12, Words, Full601},
    {0x0220009D, "YCbCr601_422_10_CbYCrY", Chroma, "UYVY", 10, Words, Limited601},
    {0x0220009F, "YCbCr601_422_12_CbYCrY", Chroma, "UYVY", 12, Words, Limited601},
    {0x022000A1, "YCbCr709_422_10_CbYCrY", Chroma, "UYVY", 10, Words, Limited709},
    {0x022000A3, "YCbCr709_422_12_CbYCrY", Chroma, "UYVY", 12, Words, Limited709},
    {0x022000FC, "YCbCr2020_422_10", Chroma, "YUYV", 10, Words, Limited2020},
    {0x022000FD, "YCbCr2020_422_10_CbYCrY", Chroma, "UYVY", 10, Words, Limited2020},
    {0x02200100, "YCbCr2020_422_12", Chroma, "YUYV", 12, Words, Limited2020},
    {0x02200101, "YCbCr2020_422_12_CbYCrY", Chroma, "UYVY", 12, Words, Limited2020},
    {0x0220012D, "RGB8a32", Interleaved, "RGB-", 8, Bytes, None},
    {0x0220012E, "BGR8a32", Interleaved, "BGR-", 8, Bytes, None},
    {0x02240034, "RGB12V1Packed", Interleaved, "RGB", 12, Packed12, None},
    {0x02240049, "BGR12p", Interleaved, "BGR", 12, BitStream, None},
    {0x0224005D, "RGB12p", Interleaved, "RGB", 12, BitStream, None},
    {0x02240086, "YCbCr12p_CbYCr", Chroma, "UYV", 12, BitStream, Full601},
    {0x0224008C, "YCbCr601_12p_CbYCr", Chroma, "UYV", 12, BitStream, Limited601},
    {0x02240094, "YCbCr709_12p_CbYCr", Chroma, "UYV", 12, BitStream, Limited709},
    {0x022400F8, "YCbCr2020_12p_CbYCr", Chroma, "UYV", 12, BitStream, Limited2020},
    {0x0228004D, "BGRa10p", Interleaved, "BGRa", 10, BitStream, None},
    {0x02280060, "RGBa10p", Interleaved, "RGBa", 10, BitStream, None},
    {0x02300018, "RGB10", Interleaved, "RGB", 10, Words, None},
    {0x02300019, "BGR10", Interleaved, "BGR", 10, Words, None},
    {0x0230001A, "RGB12", Interleaved, "RGB", 12, Words, None},
    {0x0230001B, "BGR12", Interleaved, "BGR", 12, Words, None},
    {0x02300022, "RGB10_Planar", Planar, "RGB", 10, Words, None},
    {0x02300023, "RGB12_Planar", Planar, "RGB", 12, Words, None},
    {0x02300024, "RGB16_Planar", Planar, "RGB", 16, Words, None},
    {0x02300033, "RGB16", Interleaved, "RGB", 16, Words, None},
    {0x0230004A, "BGR14", Interleaved, "BGR", 14, Words, None},
    {0x0230004B, "BGR16", Interleaved, "BGR", 16, Words, None},
    {0x0230004F, "BGRa12p", Interleaved, "BGRa", 12, BitStream, None},
    {0x0230005E, "RGB14", Interleaved, "RGB", 14, Words, None},
    {0x02300062, "RGBa12p", Interleaved, "RGBa", 12, BitStream, None},
    {0x02300083, "YCbCr10_CbYCr", Chroma, "UYV", 10, Words, Full601},
    {0x02300085, "YCbCr12_CbYCr", Chroma, "UYV", 12, Words, Full601},
    {0x02300089, "YCbCr601_10_CbYCr", Chroma, "UYV", 10, Words, Limited601},
    {0x0230008B, "YCbCr601_12_CbYCr", Chroma, "UYV", 12, Words, Limited601},
    {0x02300091, "YCbCr709_10_CbYCr", Chroma, "UYV", 10, Words, Limited709},
    {0x02300093, "YCbCr709_12_CbYCr", Chroma, "UYV", 12, Words, Limited709},
    {0x023000F5, "YCbCr2020_10_CbYCr", Chroma, "UYV", 10, Words, Limited2020},
    {0x023000F7, "YCbCr2020_12_CbYCr", Chroma, "UYV", 12, Words, Limited2020},
    {0x0240004C, "BGRa10", Interleaved, "BGRa", 10, Words, None},
    {0x0240004E, "BGRa12", Interleaved, "BGRa", 12, Words, None},
    {0x02400050, "BGRa14", Interleaved, "BGRa", 14, Words, None},
    {0x02400051, "BGRa16", Interleaved, "BGRa", 16, Words, None},
    {0x0240005F, "RGBa10", Interleaved, "RGBa", 10, Words, None},
    {0x02400061, "RGBa12", Interleaved, "RGBa", 12, Words, None},
    {0x02400063, "RGBa14", Interleaved, "RGBa", 14, Words, None},
    {0x02400064, "RGBa16", Interleaved, "RGBa", 16, Words, None},
};
// clang-format on

static_assert(
    [] {
        for (std::size_t i = 1; i < std::size(formats); ++i)
            if (formats[i - 1].code >= formats[i].code) return false;
        return true;
    }(),
    "formats is searched by bisection: keep it sorted by code");

constexpr unsigned stored_bits(const PixelFormat& format) {
    switch (format.packing) {
        case Packing::Bytes:
        case Packing::SignedBytes:
            return 8;
        case Packing::Words:
            return 16;
        case Packing::BitStream:
            return format.bits;
        case Packing::Packed10:
        case Packing::Packed12:
            return 12;
        default:
            return 0;  // packed by the pixel
    }
}

static_assert(std::all_of(std::begin(formats), std::end(formats),
                          [](const PixelFormat& format) {
                              const auto bits = stored_bits(format) * format.ComponentsPerGroup() * format.Planes();
                              return bits == 0 || bits == format.BitsPerPixel() * format.PixelsPerGroup();
                          }),
              "the code of a format counts the bits that its packing takes");

}  // namespace

const PixelFormat* find_pixel_format(std::uint64_t code) noexcept {
    constexpr std::uint64_t recognised_by_name = 0x80000000;
    code &= ~recognised_by_name;
    const auto found = std::lower_bound(std::begin(formats), std::end(formats), code,
                                        [](const PixelFormat& format, std::uint64_t wanted) { return format.code < wanted; });
    return found != std::end(formats) && found->code == code ? &*found : nullptr;
}

const PixelFormat& pixel_format(std::uint64_t code) {
    if (const auto* format = find_pixel_format(code)) return *format;
    throw Error(VL_ST_NOT_IMPLEMENTED, "pixel format " + code_text(code) + " is not known");
}

const PixelFormat& pixel_format(std::string_view name) {
    const auto same_letter = [](char a, char b) { return (a | 0x20) == (b | 0x20); };
    const auto found = std::find_if(std::begin(formats), std::end(formats), [&](const PixelFormat& format) {
        return std::ranges::equal(std::string_view(format.name), name, same_letter);
    });
    if (found != std::end(formats)) return *found;
    throw Error(VL_ST_NOT_IMPLEMENTED, "there is no pixel format \"" + std::string(name) + "\" that is known");
}

}  // namespace kiv::vl
