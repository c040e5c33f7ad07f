#include "convert/convert.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "core/error.h"

namespace kiv::vl {
namespace {

using Bytes = std::vector<std::uint8_t>;

struct Colour {
    int blue, green, red;
};

int channel(const Image& image, std::uint32_t x, std::uint32_t y, unsigned c) {
    const std::uint8_t* at = image.Line(y) + (std::size_t{x} * image.Channels() + c) * image.BytesPerChannel();
    if (!image.IsDeep()) return *at;
    std::uint16_t value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

Image convert(std::uint32_t code, std::uint32_t width, std::uint32_t height, const Bytes& bytes, std::uint64_t type,
              const ConvertOptions& options = {}) {
    const auto data = std::make_unique<std::uint8_t[]>(bytes.size());  // exactly as long as the data, for the address sanitizer
    std::copy(bytes.begin(), bytes.end(), data.get());
    Image image(width, height, type);
    convert_raw(RawView(pixel_format(code), width, height, 0, data.get(), bytes.size()), image, options);
    return image;
}

Bytes all_bytes(const Image& image) { return {image.Line(0), image.Line(0) + image.Bytes()}; }

Bytes noise(std::size_t size) {
    std::mt19937 random(3);
    Bytes bytes(size);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    return bytes;
}

constexpr struct {
    std::uint32_t bytes_code, words_code, p12_code;
    const char* order;
} filters[] = {
    {0x01080008, 0x0110002E, 0x010C0057, "GRBG"},
    {0x01080009, 0x0110002F, 0x010C0059, "RGGB"},
    {0x0108000A, 0x01100030, 0x010C0055, "GBRG"},
    {0x0108000B, 0x01100031, 0x010C0053, "BGGR"},
};

char filter_colour(const char* order, std::uint32_t x, std::uint32_t y) { return order[y % 2 * 2 + x % 2]; }
std::uint8_t filtered(const char* order, std::uint32_t x, std::uint32_t y) {
    const char colour = filter_colour(order, x, y);
    return colour == 'R' ? 0xC8 : colour == 'G' ? 0x64 : 0x32;
}

void expect_one_colour(const Image& image, Colour wanted, const char* what) {
    for (std::uint32_t y = 0; y < image.Height(); ++y)
        for (std::uint32_t x = 0; x < image.Width(); ++x) {
            ASSERT_EQ(channel(image, x, y, 0), wanted.blue) << what << " blue at " << x << "," << y;
            ASSERT_EQ(channel(image, x, y, 1), wanted.green) << what << " green at " << x << "," << y;
            ASSERT_EQ(channel(image, x, y, 2), wanted.red) << what << " red at " << x << "," << y;
        }
}

// A scene of one colour seen through the filter must come out in that colour everywhere: a wrong phase mixes the channels up.
TEST(Demosaic, FindsTheColoursOfEachFilterOrder) {
    for (const auto& filter : filters)
        for (auto quality : {VL_DEMOSAIC_BILINEAR, VL_DEMOSAIC_EDGE_AWARE, VL_DEMOSAIC_BEST})
            for (const auto& [width, height] : {std::pair{8u, 6u}, {7u, 5u}, {3u, 3u}, {2u, 2u}, {2u, 9u}, {9u, 2u}}) {
                Bytes mosaic;
                for (std::uint32_t y = 0; y < height; ++y)
                    for (std::uint32_t x = 0; x < width; ++x) mosaic.push_back(filtered(filter.order, x, y));
                for (std::uint32_t strip : {0u, 2u, 3u}) {
                    const Image image = convert(filter.bytes_code, width, height, mosaic, VL_IMAGE_BGR8, {quality, {}, strip});
                    expect_one_colour(image, {0x32, 0x64, 0xC8}, filter.order);
                }
            }
}

TEST(Demosaic, KeepsTwelveBits) {
    for (const auto& filter : filters) {
        Bytes packed;
        for (std::uint32_t y = 0; y < 6; ++y)
            for (std::uint32_t x = 0; x < 8; x += 2) {
                const unsigned first = filtered(filter.order, x, y) * 16u + 7;
                const unsigned second = filtered(filter.order, x + 1, y) * 16u + 7;
                packed.push_back(static_cast<std::uint8_t>(first));
                packed.push_back(static_cast<std::uint8_t>(first >> 8 | (second & 15) << 4));
                packed.push_back(static_cast<std::uint8_t>(second >> 4));
            }
        const Image image = convert(filter.p12_code, 8, 6, packed, VL_IMAGE_BGR16);
        expect_one_colour(image, {0x3273, 0x6476, 0xC87C}, filter.order);
        EXPECT_EQ(image.SignificantBits(), 12u);
    }
}

// The strips must not show: lines at their ends are demosaiced with the same neighbours as in one piece.
TEST(Demosaic, GivesTheSameWhereverTheStripsAreCut) {
    constexpr std::uint32_t width = 37;
    constexpr std::uint32_t height = 29;
    for (const auto& filter : filters)
        for (auto quality : {VL_DEMOSAIC_BILINEAR, VL_DEMOSAIC_EDGE_AWARE, VL_DEMOSAIC_BEST})
            for (std::uint64_t type : {VL_IMAGE_BGR8, VL_IMAGE_BGR16, VL_IMAGE_MONO8, VL_IMAGE_MONO16, VL_IMAGE_BGRA8})
                for (bool one : {true, false}) {
                    const Gains gains = one ? Gains{} : Gains{6000, 4096, 3000};
                    const bool deep = type == VL_IMAGE_BGR16 || type == VL_IMAGE_MONO16;
                    const std::uint32_t code = deep ? filter.words_code : filter.bytes_code;
                    const Bytes mosaic = noise(width * height * (deep ? 2 : 1));
                    const Image whole = convert(code, width, height, mosaic, type, {quality, {gains}, height});
                    for (std::uint32_t strip : {1u, 2u, 3u, 7u, 14u, 28u})
                        ASSERT_EQ(all_bytes(convert(code, width, height, mosaic, type, {quality, {gains}, strip})),
                                  all_bytes(whole))
                            << filter.order << " strips of " << strip << " type " << type << " quality " << quality;
                }
}

// A mean over a smooth scene: each interior pixel of a plane keeps the plane's value, since neighbours are symmetric.
TEST(Demosaic, InterpolatesBetweenNeighbours) {
    constexpr std::uint32_t side = 12;
    Bytes mosaic;
    for (std::uint32_t y = 0; y < side; ++y)
        for (std::uint32_t x = 0; x < side; ++x) mosaic.push_back(static_cast<std::uint8_t>(20 + 8 * x + 4 * y));
    const Image image = convert(0x01080009, side, side, mosaic, VL_IMAGE_BGR8);
    for (std::uint32_t y = 1; y + 1 < side; ++y)
        for (std::uint32_t x = 1; x + 1 < side; ++x)
            for (unsigned c = 0; c < 3; ++c)
                ASSERT_EQ(channel(image, x, y, c), static_cast<int>(20 + 8 * x + 4 * y)) << x << "," << y;
}

// A plain version of the rule, wide enough that the vector one has something to do.
TEST(Demosaic, BilinearIsTheMeanOfTheNeighbours) {
    constexpr std::uint32_t width = 101;
    constexpr std::uint32_t height = 6;
    const Bytes mosaic = noise(width * height);
    const auto at = [&](int x, int y) {
        const int w = width, h = height;
        x = x < 0 ? -x : x >= w ? 2 * w - 2 - x : x;
        y = y < 0 ? -y : y >= h ? 2 * h - 2 - y : y;
        return unsigned{mosaic[static_cast<std::size_t>(y * w + x)]};
    };
    for (const auto& filter : filters) {
        const Image image = convert(filter.bytes_code, width, height, mosaic, VL_IMAGE_BGR8);
        for (int y = 0; y < static_cast<int>(height); ++y)
            for (int x = 0; x < static_cast<int>(width); ++x)
                for (unsigned c = 0; c < 3; ++c) {
                    // The mean of those of the 3 x 3 pixels around that have the colour; the pixel itself where it has it.
                    unsigned sum = 0, count = 0;
                    const char wanted = "BGR"[c];
                    for (int dy = -1; dy <= 1; ++dy)
                        for (int dx = -1; dx <= 1; ++dx) {
                            const bool own = dx == 0 && dy == 0;
                            const char here = filter_colour(filter.order, static_cast<std::uint32_t>(x + dx + 2),
                                                            static_cast<std::uint32_t>(y + dy + 2));
                            const bool corner_of_green = wanted == 'G' && dx != 0 && dy != 0;
                            if (here != wanted || corner_of_green) continue;
                            if (own) sum = count = 0;
                            sum += at(x + dx, y + dy);
                            ++count;
                            if (own) dx = dy = 2;
                        }
                    ASSERT_EQ(channel(image, static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y), c),
                              static_cast<int>((sum + count / 2) / count))
                        << filter.order << " " << x << "," << y << " " << wanted;
                }
    }
}

TEST(Convert, FindsTheChannelsOfEachArrangement) {
    const struct {
        std::uint32_t code;
        Bytes pixel_pair;
        std::uint64_t type;
        Colour colour;
    } cases[] = {
        {0x02180014, {3, 2, 1, 3, 2, 1}, VL_IMAGE_BGR8, {1, 2, 3}},                                                // RGB8
        {0x02180015, {1, 2, 3, 1, 2, 3}, VL_IMAGE_BGR8, {1, 2, 3}},                                                // BGR8
        {0x02200016, {3, 2, 1, 99, 3, 2, 1, 98}, VL_IMAGE_BGR8, {1, 2, 3}},                                        // RGBa8
        {0x02200017, {1, 2, 3, 99, 1, 2, 3, 98}, VL_IMAGE_BGR8, {1, 2, 3}},                                        // BGRa8
        {0x0220012D, {3, 2, 1, 0, 3, 2, 1, 0}, VL_IMAGE_BGR8, {1, 2, 3}},                                          // RGB8a32
        {0x02180021, {3, 3, 2, 2, 1, 1}, VL_IMAGE_BGR8, {1, 2, 3}},                                                // RGB8_Planar
        {0x02100035, {0x1F, 0xF8, 0x1F, 0xF8}, VL_IMAGE_BGR8, {255, 0, 255}},                                      // RGB565p
        {0x02100036, {0x1F, 0x00, 0x1F, 0x00}, VL_IMAGE_BGR8, {255, 0, 0}},                                        // BGR565p
        {0x02300033, {3, 0, 2, 0, 1, 0, 3, 0, 2, 0, 1, 0}, VL_IMAGE_BGR16, {1, 2, 3}},                             // RGB16
        {0x0224005D, {0x03, 0x20, 0x00, 0x01, 0x30, 0x00, 0x02, 0x10, 0x00}, VL_IMAGE_BGR16, {0x10, 0x20, 0x30}},  // RGB12p
        {0x02240049, {0x03, 0x20, 0x00, 0x01, 0x30, 0x00, 0x02, 0x10, 0x00}, VL_IMAGE_BGR16, {0x30, 0x20, 0x10}},  // BGR12p
        {0x0220001D, {0x03, 0x08, 0x10, 0x00, 0x03, 0x08, 0x10, 0x00}, VL_IMAGE_BGR16, {0x40, 0x80, 0xC0}},        // RGB10p32
        {0x01080001, {7, 7}, VL_IMAGE_BGR8, {7, 7, 7}},                                                            // Mono8
        {0x01100005, {0x80, 0x0F, 0x80, 0x0F}, VL_IMAGE_BGR8, {0xF8, 0xF8, 0xF8}},  // Mono12, cut to 8 bits
    };
    for (const auto& c : cases)
        expect_one_colour(convert(c.code, 2, 1, c.pixel_pair, c.type), c.colour, pixel_format(c.code).name);
}

// Colours whose luma and differences are known, in every order of the components.
TEST(Convert, TurnsLumaAndColourDifferencesIntoColours) {
    const struct {
        std::uint32_t code;
        std::uint32_t width;
        Bytes bytes;
        Colour colour;
    } cases[] = {
        {0x0210001F, 2, {85, 76, 255, 76}, {0, 0, 254}},          // YUV422_8_UYVY: red
        {0x02100032, 2, {76, 85, 76, 255}, {0, 0, 254}},          // YUV422_8
        {0x020C001E, 4, {85, 76, 76, 255, 76, 76}, {0, 0, 254}},  // YUV411_8_UYYVYY
        {0x020C005A, 4, {76, 76, 85, 76, 76, 255}, {0, 0, 254}},  // YCbCr411_8
        {0x02180020, 1, {85, 76, 255}, {0, 0, 254}},              // YUV8_UYV
        {0x0218005B, 1, {76, 85, 255}, {0, 0, 254}},              // YCbCr8
        {0x0210003B, 2, {29, 255, 29, 107}, {255, 0, 0}},         // YCbCr422_8: blue
        {0x0210003E, 2, {235, 128, 235, 128}, {255, 255, 255}},   // YCbCr601_422_8: white and black of its range
        {0x0210003E, 2, {16, 128, 16, 128}, {0, 0, 0}},
        {0x0210003E, 2, {81, 90, 81, 240}, {0, 0, 255}},  // red of 601 and of 709
        {0x02100041, 2, {63, 102, 63, 240}, {0, 0, 255}},
        {0x020C0040, 2, {76, 76, 85, 255}, {0, 0, 254}},  // YUV420PNV12Packed
        {0x020C0114, 2, {76, 76, 255, 85}, {0, 0, 254}},  // YCbCr420_8_YY_CrCb_Semiplanar
        {0x02100113, 2, {76, 76, 85, 255}, {0, 0, 254}},  // YCbCr422_8_YY_CbCr_Semiplanar
    };
    for (const auto& c : cases) {
        const Image image = convert(c.code, c.width, 1, c.bytes, VL_IMAGE_BGR8);
        const int wanted[] = {c.colour.blue, c.colour.green, c.colour.red};
        for (std::uint32_t x = 0; x < c.width; ++x)
            for (unsigned k = 0; k < 3; ++k)
                EXPECT_NEAR(channel(image, x, 0, k), wanted[k], 2) << pixel_format(c.code).name << " channel " << k;
    }
    // Two lines share the differences of a third: red above blue by luma alone cannot be, so black above white here.
    const Image shared = convert(0x020C0112, 2, 3, {0, 0, 255, 255, 76, 76, 128, 128, 85, 255}, VL_IMAGE_BGR8);
    expect_one_colour(convert(0x020C0112, 2, 1, {255, 255, 128, 128}, VL_IMAGE_BGR8), {255, 255, 255}, "white");
    EXPECT_EQ(channel(shared, 0, 0, 2), 0);
    EXPECT_EQ(channel(shared, 1, 1, 2), 255);
    EXPECT_NEAR(channel(shared, 0, 2, 2), 254, 2);
    EXPECT_NEAR(channel(shared, 0, 2, 0), 0, 2);
    // 10 bits, YCbCr709_422_10: 64 is black and 940 white.
    const Image deep = convert(0x02200095, 2, 1, {64, 0, 0, 2, 0xAC, 0x03, 0, 2}, VL_IMAGE_BGR16);
    for (unsigned k = 0; k < 3; ++k) {
        EXPECT_NEAR(channel(deep, 0, 0, k), 0, 80);
        EXPECT_NEAR(channel(deep, 1, 0, k), 65535, 80);
    }
}

TEST(Convert, SpreadsGreyOverTheRangeOfTheImage) {
    const Bytes words = {0x00, 0x00, 0xBC, 0x0A, 0xFF, 0x0F};  // Mono12: 0, 0xABC, 0xFFF
    const Image deep = convert(0x01100005, 3, 1, words, VL_IMAGE_MONO16);
    EXPECT_EQ(channel(deep, 0, 0, 0), 0);
    EXPECT_EQ(channel(deep, 1, 0, 0), 0xABCA);
    EXPECT_EQ(channel(deep, 2, 0, 0), 0xFFFF);
    EXPECT_EQ(channel(convert(0x01100005, 3, 1, words, VL_IMAGE_MONO8), 1, 0, 0), 0xAB);
    EXPECT_EQ(channel(convert(0x01080001, 1, 1, {0x12}, VL_IMAGE_MONO16), 0, 0, 0), 0x1212);
    EXPECT_EQ(channel(convert(0x01010037, 8, 1, {0x02}, VL_IMAGE_MONO16), 1, 0, 0), 0xFFFF);
    // RGB8 red, green, blue and white to grey by the weights of BT.601.
    const Image grey = convert(0x02180014, 4, 1, {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255}, VL_IMAGE_MONO8);
    EXPECT_EQ(channel(grey, 0, 0, 0), 76);
    EXPECT_EQ(channel(grey, 1, 0, 0), 150);
    EXPECT_EQ(channel(grey, 2, 0, 0), 29);
    EXPECT_EQ(channel(grey, 3, 0, 0), 255);
}

TEST(Convert, AppliesGainsToColourAndStopsAtWhite) {
    const Gains gains = {8192, 4096, 2048};
    expect_one_colour(convert(0x02180014, 1, 1, {100, 100, 100}, VL_IMAGE_BGR8, {VL_DEMOSAIC_BILINEAR, {gains}, 0}),
                      {50, 100, 200}, "RGB8");
    expect_one_colour(convert(0x02180014, 1, 1, {200, 200, 200}, VL_IMAGE_BGR8, {VL_DEMOSAIC_BILINEAR, {~0u, 0, 4096}, 0}),
                      {200, 0, 255}, "limits");
    expect_one_colour(
        convert(0x02300033, 1, 1, {0x00, 0x90, 0x00, 0x90, 0x00, 0x90}, VL_IMAGE_BGR16, {VL_DEMOSAIC_BILINEAR, {gains}, 0}),
        {0x4800, 0x9000, 0xFFFF}, "RGB16");
    EXPECT_EQ(channel(convert(0x01080001, 1, 1, {100}, VL_IMAGE_MONO8, {VL_DEMOSAIC_BILINEAR, {gains}, 0}), 0, 0, 0), 100);
}

// Every known format, with noise and a buffer of exactly its size: nothing is read outside, nothing is left out.
TEST(Convert, ReadsEveryKnownFormatWithinItsBuffer) {
    int formats = 0;
    for (std::uint32_t id = 1; id < 0x140; ++id)
        for (std::uint32_t class_bits : {0x01000000u, 0x02000000u})
            for (std::uint32_t bits = 1; bits <= 64; ++bits) {
                const auto* format = find_pixel_format(class_bits | bits << 16 | id);
                if (format == nullptr) continue;
                ++formats;
                const Bytes bytes = noise((std::size_t{36} * 6 * bits + 7) / 8);
                const Image image = convert(format->code, 36, 6, bytes, image_type_of(*format));
                const Bytes result = all_bytes(image);
                EXPECT_NE(std::count(result.begin(), result.end(), 0), static_cast<std::ptrdiff_t>(result.size()))
                    << format->name;
                EXPECT_THROW(convert(format->code, 36, 6, Bytes(bytes.begin(), bytes.end() - 1), image_type_of(*format)), Error)
                    << format->name;
            }
    EXPECT_EQ(formats, 202);
}

}  // namespace
}  // namespace kiv::vl
