#include <VL.h>
#include <gmock/gmock.h>
#include <kiv/platform/paths.h>
#include <kiv/platform/text.h>
#include <png.h>
#include <tiffio.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>

// It needs <cstdio>.
#include <jpeglib.h>

#include "scratch.h"

namespace kiv::vl::test {
namespace {

using testing::HasSubstr;

/// A stored image as its own library reads it: red first, 16-bit values in the order of the machine.
struct Picture {
    std::uint32_t width = 0, height = 0, channels = 0, bits = 0, significant_bits = 0;
    Bytes pixels;
};

Picture read_png(const std::string& path) {
    Picture picture;
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
    EXPECT_NE(file, nullptr);
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    if (setjmp(png_jmpbuf(png)) != 0) {
        ADD_FAILURE() << path << " is no PNG file that libpng can read";
        png_destroy_read_struct(&png, &info, nullptr);
        return {};
    }
    png_init_io(png, file.get());
    png_read_png(png, info, PNG_TRANSFORM_SWAP_ENDIAN, nullptr);
    picture.width = png_get_image_width(png, info);
    picture.height = png_get_image_height(png, info);
    picture.channels = png_get_channels(png, info);
    picture.bits = png_get_bit_depth(png, info);
    png_color_8p significant = nullptr;
    if (png_get_sBIT(png, info, &significant) != 0)
        picture.significant_bits = picture.channels == 1 ? significant->gray : significant->green;
    png_bytepp rows = png_get_rows(png, info);
    for (std::uint32_t y = 0; y < picture.height; ++y)
        picture.pixels.insert(picture.pixels.end(), rows[y], rows[y] + png_get_rowbytes(png, info));
    png_destroy_read_struct(&png, &info, nullptr);
    return picture;
}

Picture read_tiff(const std::string& path) {
    Picture picture;
    const std::unique_ptr<TIFF, void (*)(TIFF*)> tiff(TIFFOpen(path.c_str(), "r"), TIFFClose);
    if (!tiff) {
        ADD_FAILURE() << path << " is no TIFF file that libtiff can read";
        return {};
    }
    std::uint16_t channels = 0, bits = 0;
    TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &picture.width);
    TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &picture.height);
    TIFFGetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, &channels);
    TIFFGetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, &bits);
    picture.channels = channels;
    picture.bits = bits;
    Bytes line(static_cast<std::size_t>(TIFFScanlineSize(tiff.get())));
    for (std::uint32_t y = 0; y < picture.height; ++y) {
        EXPECT_EQ(TIFFReadScanline(tiff.get(), line.data(), y), 1);
        picture.pixels.insert(picture.pixels.end(), line.begin(), line.end());
    }
    return picture;
}

Bytes noise(std::size_t size) {
    std::mt19937 random(5);
    Bytes bytes(size);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    return bytes;
}

Bytes red_first(Bytes bytes, std::size_t channels, std::size_t bytes_per_channel) {
    for (std::size_t pixel = 0; pixel < bytes.size(); pixel += channels * bytes_per_channel)
        for (std::size_t i = 0; i < bytes_per_channel; ++i) std::swap(bytes[pixel + i], bytes[pixel + 2 * bytes_per_channel + i]);
    return bytes;
}

/// The pixels of an uncompressed BMP file, top line first.
Picture read_bmp(const std::string& path) {
    const Bytes file = file_bytes(path);
    const auto number = [&](std::size_t at, std::size_t bytes) {
        std::uint32_t value = 0;
        for (std::size_t i = bytes; i-- > 0;) value = value << 8 | file.at(at + i);
        return value;
    };
    EXPECT_EQ(number(0, 2), 0x4D42u);
    EXPECT_EQ(number(2, 4), file.size());
    Picture picture;
    picture.width = number(18, 4);
    picture.height = number(22, 4);
    picture.channels = number(28, 2) / 8;
    const std::size_t line = (picture.width * picture.channels + 3) / 4 * 4;
    for (std::uint32_t y = picture.height; y-- > 0;) {
        const auto at = file.begin() + static_cast<std::ptrdiff_t>(number(10, 4) + y * line);
        picture.pixels.insert(picture.pixels.end(), at, at + static_cast<std::ptrdiff_t>(picture.width * picture.channels));
    }
    return picture;
}

Picture read_jpeg(const std::string& path) {
    const Bytes file = file_bytes(path);
    jpeg_decompress_struct jpeg{};
    jpeg_error_mgr errors{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&jpeg);
    jpeg_mem_src(&jpeg, file.data(), static_cast<unsigned long>(file.size()));
    jpeg_read_header(&jpeg, TRUE);
    if (jpeg.num_components == 3) jpeg.out_color_space = JCS_EXT_BGR;
    jpeg_start_decompress(&jpeg);
    Picture picture;
    picture.width = jpeg.output_width;
    picture.height = jpeg.output_height;
    picture.channels = static_cast<std::uint32_t>(jpeg.output_components);
    Bytes line(picture.width * picture.channels);
    for (std::uint32_t y = 0; y < picture.height; ++y) {
        JSAMPROW row = line.data();
        jpeg_read_scanlines(&jpeg, &row, 1);
        picture.pixels.insert(picture.pixels.end(), line.begin(), line.end());
    }
    jpeg_finish_decompress(&jpeg);
    jpeg_destroy_decompress(&jpeg);
    return picture;
}

// A slope that any encoder can follow; each type as 8 bits a channel is what these formats keep.
TEST(ImageFiles, AsBmpAndJpegKeepEightBits) {
    const ScratchFolder folder;
    for (std::uint64_t type : {VL_IMAGE_MONO8, VL_IMAGE_MONO16, VL_IMAGE_BGR8, VL_IMAGE_BGR16, VL_IMAGE_BGRA8}) {
        const OwnedImage image(61, 40, type);
        for (std::uint32_t y = 0; y < 40; ++y)
            for (std::uint32_t x = 0; x < 61; ++x)
                vlSetPixel(image, x, y, static_cast<std::uint16_t>(x * 1000), static_cast<std::uint16_t>(y * 1500), 20000);
        const bool grey = type == VL_IMAGE_MONO8 || type == VL_IMAGE_MONO16;
        OwnedImage eight(61, 40, grey ? VL_IMAGE_MONO8 : VL_IMAGE_BGR8);
        ASSERT_EQ(vlConvertImage(image, eight), VL_ST_SUCCESS);
        const std::string bmp = folder / "a.bmp";
        const std::string fine = folder / "a.JPG";
        const std::string coarse = folder / "b.jpeg";
        ASSERT_EQ(vlStoreToFileA(image, bmp.c_str(), VL_FILE_AUTO), VL_ST_SUCCESS) << vlGetLastErrorText();
        ASSERT_EQ(vlStoreToFileExA(image, fine.c_str(), VL_FILE_AUTO, 95), VL_ST_SUCCESS) << vlGetLastErrorText();
        ASSERT_EQ(vlStoreToFileExA(image, coarse.c_str(), VL_FILE_AUTO, 10), VL_ST_SUCCESS) << vlGetLastErrorText();
        EXPECT_TRUE(read_bmp(bmp).pixels == eight.Data()) << type;
        EXPECT_LT(file_bytes(coarse).size(), file_bytes(fine).size());
        const Picture picture = read_jpeg(fine);
        ASSERT_EQ(picture.pixels.size(), eight.Data().size());
        const Bytes wanted = eight.Data();
        for (std::size_t i = 0; i < wanted.size(); ++i) ASSERT_NEAR(picture.pixels[i], wanted[i], 8) << type << " at " << i;
        for (int bad : {0, 101}) EXPECT_EQ(vlStoreToFileExA(image, fine.c_str(), VL_FILE_JPEG, bad), VL_ST_INVALID_PARAMETER);
        EXPECT_EQ(vlStoreToFileExA(image, bmp.c_str(), VL_FILE_BMP, 1), VL_ST_INVALID_PARAMETER);
    }
}

// 211 x 150 makes several TIFF strips, the last one shorter.
TEST(ImageFiles, HoldEveryPixelAsItWas) {
    const ScratchFolder folder;
    const struct {
        std::uint64_t type;
        std::uint32_t channels, bits;
    } types[] = {
        {VL_IMAGE_MONO8, 1, 8}, {VL_IMAGE_MONO16, 1, 16}, {VL_IMAGE_BGR8, 3, 8}, {VL_IMAGE_BGR16, 3, 16}, {VL_IMAGE_BGRA8, 4, 8}};
    for (const auto& type : types) {
        OwnedImage image(211, 150, type.type);
        const Bytes pixels = noise(std::size_t{211} * 150 * type.channels * type.bits / 8);
        image.Fill(pixels);
        const Bytes wanted = type.channels > 1 ? red_first(pixels, type.channels, type.bits / 8) : pixels;
        for (int compression : {-1, 0, 1, 9}) {
            const std::string png = folder / "image.PNG";
            const std::string tiff = folder / "image.tif";
            ASSERT_EQ(vlStoreToFileExA(image, png.c_str(), VL_FILE_AUTO, compression), VL_ST_SUCCESS) << vlGetLastErrorText();
            ASSERT_EQ(vlStoreToFileExA(image, tiff.c_str(), VL_FILE_AUTO, compression), VL_ST_SUCCESS) << vlGetLastErrorText();
            for (const auto& picture : {read_png(png), read_tiff(tiff)}) {
                EXPECT_EQ(picture.width, 211u);
                EXPECT_EQ(picture.height, 150u);
                EXPECT_EQ(picture.channels, type.channels);
                EXPECT_EQ(picture.bits, type.bits);
                EXPECT_EQ(picture.significant_bits, 0u);
                EXPECT_TRUE(picture.pixels == wanted) << "type " << std::hex << type.type << " compression " << compression;
            }
        }
    }
    EXPECT_EQ(folder.Entries(), 2u);
}

TEST(ImageFiles, KeepTwelveBitsAndSaySo) {
    const ScratchFolder folder;
    Bytes packed = {0xBC, 0x3A, 0x12, 0xFF, 0xFF, 0xFF};  // Mono12p: 0xABC, 0x123, 0xFFF, 0xFFF
    const auto raw = record(0x010C0047, 2, 2, packed);
    OwnedImage image;
    ASSERT_EQ(vlImageFromRaw(&raw, image.Out()), VL_ST_SUCCESS);
    const std::string png = folder / "twelve.png";
    ASSERT_EQ(vlStoreToFileA(image, png.c_str(), VL_FILE_PNG), VL_ST_SUCCESS) << vlGetLastErrorText();
    const Picture picture = read_png(png);
    EXPECT_EQ(picture.bits, 16u);
    EXPECT_EQ(picture.significant_bits, 12u);
    EXPECT_EQ(picture.pixels, (Bytes{0xCA, 0xAB, 0x31, 0x12, 0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST(ImageFiles, TakeWideAndForeignNames) {
    const ScratchFolder folder;
    OwnedImage image(2, 2, VL_IMAGE_MONO8);
    image.Fill({1, 2, 3, 4});
    const std::string narrow = kiv::platform::local_from_utf8(folder / "Größe é.tiff");
    const std::wstring wide = std::filesystem::path(folder / "w").wstring() + L"\u00e9\u6e2c.png";
    ASSERT_EQ(vlStoreToFileA(image, narrow.c_str(), VL_FILE_AUTO), VL_ST_SUCCESS) << vlGetLastErrorText();
    ASSERT_EQ(vlStoreToFileW(image, wide.c_str(), VL_FILE_AUTO), VL_ST_SUCCESS) << vlGetLastErrorText();
    EXPECT_EQ(read_tiff(narrow).pixels, (Bytes{1, 2, 3, 4}));
    std::filesystem::copy_file(
        kiv::platform::path_from_utf8(folder / "wé測.png"),
        kiv::platform::path_from_utf8(folder / "plain.png"));  // what libpng reads has a name in the user's encoding
    EXPECT_EQ(read_png(folder / "plain.png").pixels, (Bytes{1, 2, 3, 4}));
}

TEST(ImageFiles, ThatCannotBeWrittenLeaveNothingBehind) {
    const ScratchFolder folder;
    OwnedImage image(2, 2, VL_IMAGE_MONO8);
    const std::string file = folder / "file.png";
    ASSERT_EQ(vlStoreToFileA(image, file.c_str(), VL_FILE_AUTO), VL_ST_SUCCESS) << vlGetLastErrorText();
    const Bytes before = file_bytes(file);
    std::filesystem::create_directory(folder / "folder.png");

    for (const auto& path : {folder / "missing/shot.png", folder / "file.png/shot.png", folder / "folder.png"}) {
        EXPECT_EQ(vlStoreToFileA(image, path.c_str(), VL_FILE_AUTO), VL_ST_IO) << path;
        EXPECT_THAT(vlGetLastErrorText(), HasSubstr(path)) << "the text names the file";
        Bytes data(4);
        const auto raw = record(VL_IMAGE_MONO8, 2, 2, data);
        EXPECT_EQ(vlStoreToFileRAWA(&raw, path.c_str()), VL_ST_IO) << path;
    }
    EXPECT_EQ(vlStoreToFileA(image, (folder / "shot.xyz").c_str(), VL_FILE_AUTO), VL_ST_INVALID_PARAMETER);
    EXPECT_EQ(vlStoreToFileA(image, (folder / "tiff").c_str(), VL_FILE_AUTO), VL_ST_INVALID_PARAMETER);
    EXPECT_EQ(vlStoreToFileA(image, (folder / "shot.png").c_str(), 99), VL_ST_INVALID_PARAMETER);
    EXPECT_EQ(vlStoreToFileExA(image, (folder / "shot.png").c_str(), VL_FILE_PNG, 10), VL_ST_INVALID_PARAMETER);
    EXPECT_EQ(vlStoreToFileExA(image, (folder / "shot.png").c_str(), VL_FILE_PNG, -2), VL_ST_INVALID_PARAMETER);
    EXPECT_EQ(folder.Entries(), 2u);
    EXPECT_EQ(file_bytes(file), before);
}

}  // namespace
}  // namespace kiv::vl::test
