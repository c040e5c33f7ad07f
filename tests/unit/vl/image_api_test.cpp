#include <VL.h>
#include <gmock/gmock.h>

#include <thread>

#include "scratch.h"

namespace kiv::vl::test {
namespace {

using testing::HasSubstr;

constexpr std::uint64_t mono12p = 0x010C0047;
constexpr std::uint64_t bayer_rg8 = 0x01080009;

TEST(ImageHandles, AreRefusedWhenNullFreedOrInvented) {
    VL_IMAGE_HANDLE freed = nullptr;
    ASSERT_EQ(vlMallocEx(2, 2, VL_IMAGE_MONO8, nullptr, 0, &freed), VL_ST_SUCCESS);
    ASSERT_EQ(vlFree(freed), VL_ST_SUCCESS);
    int something = 0;
    const OwnedImage good(2, 2, VL_IMAGE_MONO8);
    Bytes data(4);
    const auto raw = record(VL_IMAGE_MONO8, 2, 2, data);
    for (auto handle : {static_cast<VL_IMAGE_HANDLE>(nullptr), freed, reinterpret_cast<VL_IMAGE_HANDLE>(&something)}) {
        K_IMAGE_INFO info;
        EXPECT_EQ(vlFree(handle), VL_ST_INVALID_HANDLE);
        EXPECT_EQ(vlGetImageInfo(handle, &info), VL_ST_INVALID_HANDLE);
        EXPECT_EQ(vlFromRAWtoImage(&raw, handle, VL_GAIN_ONE, VL_GAIN_ONE, VL_GAIN_ONE), VL_ST_INVALID_HANDLE);
        EXPECT_EQ(vlConvertImage(good, handle), VL_ST_INVALID_HANDLE);
        EXPECT_EQ(vlConvertImage(handle, good), VL_ST_INVALID_HANDLE);
        EXPECT_EQ(vlStoreToFileA(handle, "x.png", VL_FILE_PNG), VL_ST_INVALID_HANDLE);
    }
}

TEST(Arguments, NullsAreRefusedAndNamed) {
    const OwnedImage image(2, 2, VL_IMAGE_MONO8);
    Bytes data(4);
    auto raw = record(VL_IMAGE_MONO8, 2, 2, data);
    auto no_data = raw;
    no_data.image_data = nullptr;
    VL_IMAGE_HANDLE out = nullptr;
    const VL_STATUS statuses[] = {
        vlGetImageType(VL_IMAGE_MONO8, nullptr),
        vlGetPixelFormatName(VL_IMAGE_MONO8, nullptr),
        vlGetPixelFormatByName("Mono8", nullptr),
        vlGetPixelFormatByName(nullptr, &raw.pixel_type),
        vlMalloc(nullptr, &out),
        vlMalloc(&raw, nullptr),
        vlMallocEx(2, 2, VL_IMAGE_MONO8, nullptr, 0, nullptr),
        vlGetImageInfo(image, nullptr),
        vlGetRawSize(nullptr, nullptr),
        vlGetRawSize(&raw, nullptr),
        vlFromRAWtoImage(nullptr, image, 1, 1, 1),
        vlFromRAWtoImage(&no_data, image, 1, 1, 1),
        vlImageFromRaw(nullptr, &out),
        vlImageFromRaw(&no_data, &out),
        vlImageFromRaw(&raw, nullptr),
        vlImageFromBuffer(VL_IMAGE_MONO8, 2, 2, 0, nullptr, 4, &out),
        vlImageFromBuffer(VL_IMAGE_MONO8, 2, 2, 0, data.data(), 4, nullptr),
        vlStoreToFileA(image, nullptr, VL_FILE_PNG),
        vlStoreToFileW(image, nullptr, VL_FILE_PNG),
        vlStoreToFileA(image, "", VL_FILE_PNG),
        vlStoreToFileRAWA(nullptr, "x"),
        vlStoreToFileRAWA(&no_data, "x"),
        vlStoreToFileRAWA(&raw, nullptr),
        vlLoadFromFileRAWA(nullptr, &raw),
        vlLoadFromFileRAWA("x", nullptr),
    };
    for (std::size_t i = 0; i < std::size(statuses); ++i) EXPECT_EQ(statuses[i], VL_ST_INVALID_PARAMETER) << "case " << i;
    EXPECT_EQ(out, nullptr);
    vlMallocEx(2, 2, VL_IMAGE_MONO8, nullptr, 0, nullptr);
    EXPECT_STREQ(vlGetLastErrorText(), "vlMallocEx: phImage is null");
}

TEST(Images, HostileSizesAreRefused) {
    VL_IMAGE_HANDLE out = nullptr;
    EXPECT_EQ(vlMallocEx(0, 1, VL_IMAGE_MONO8, nullptr, 0, &out), VL_ST_INVALID_PARAMETER);
    EXPECT_EQ(vlMallocEx(1, 0, VL_IMAGE_MONO8, nullptr, 0, &out), VL_ST_INVALID_PARAMETER);
    EXPECT_EQ(vlMallocEx(65536, 1, VL_IMAGE_MONO8, nullptr, 0, &out), VL_ST_INVALID_PARAMETER);
    EXPECT_EQ(vlMallocEx(0xFFFFFFFF, 0xFFFFFFFF, VL_IMAGE_BGR16, nullptr, 0, &out), VL_ST_INVALID_PARAMETER);
    EXPECT_EQ(vlMallocEx(65535, 65535, VL_IMAGE_MONO8, nullptr, 0, &out), VL_ST_INVALID_PARAMETER);
    EXPECT_EQ(vlMallocEx(2, 2, mono12p, nullptr, 0, &out), VL_ST_NOT_IMPLEMENTED);
    EXPECT_EQ(out, nullptr);
    Bytes data(100);
    auto raw = record(mono12p, 10, 7, data);
    EXPECT_EQ(vlImageFromRaw(&raw, &out), VL_ST_INVALID_BUFFER_SIZE);
    EXPECT_THAT(vlGetLastErrorText(), HasSubstr("10 x 7 Mono12p with 0 bytes between lines needs 105 bytes, the buffer has 100"));
    raw.pixel_type = 0x81080F01;
    EXPECT_EQ(vlImageFromRaw(&raw, &out), VL_ST_NOT_IMPLEMENTED);
    EXPECT_THAT(vlGetLastErrorText(), HasSubstr("0x81080F01"));
    EXPECT_EQ(out, nullptr);
}

TEST(Images, TakeTheTypeThatShowsTheFormatWithoutLoss) {
    const struct {
        std::uint64_t format, type;
    } cases[] = {
        {0x01080001, VL_IMAGE_MONO8}, {mono12p, VL_IMAGE_MONO16},   {bayer_rg8, VL_IMAGE_BGR8},  {0x010C0059, VL_IMAGE_BGR16},
        {0x02180014, VL_IMAGE_BGR8},  {0x021E005C, VL_IMAGE_BGR16}, {0x02100032, VL_IMAGE_BGR8}, {0x01010037, VL_IMAGE_MONO8},
    };
    for (const auto& c : cases) {
        std::uint64_t type = 0;
        EXPECT_EQ(vlGetImageType(c.format, &type), VL_ST_SUCCESS);
        EXPECT_EQ(type, c.type) << std::hex << c.format;
        const char* name = "";
        std::uint64_t code = 0;
        EXPECT_EQ(vlGetPixelFormatName(c.format, &name), VL_ST_SUCCESS);
        EXPECT_EQ(vlGetPixelFormatByName(name, &code), VL_ST_SUCCESS);
        EXPECT_EQ(code, c.format) << name;
    }
    std::uint64_t code = 0;
    EXPECT_EQ(vlGetPixelFormatByName("bAYERrg12P", &code), VL_ST_SUCCESS);
    EXPECT_EQ(code, 0x010C0059u);
    EXPECT_EQ(vlGetPixelFormatByName("BayerRG13p", &code), VL_ST_NOT_IMPLEMENTED);
    EXPECT_THAT(vlGetLastErrorText(), HasSubstr("BayerRG13p"));
    Bytes none;
    const auto raw = record(mono12p, 5, 3, none);
    OwnedImage image;
    ASSERT_EQ(vlMalloc(&raw, image.Out()), VL_ST_SUCCESS);
    const auto info = image.Info();
    EXPECT_EQ(info.pixel_type, VL_IMAGE_MONO16);
    EXPECT_EQ(info.width, 5u);
    EXPECT_EQ(info.height, 3u);
    EXPECT_EQ(info.padding_x, 0u);
    EXPECT_EQ(image.Data(), Bytes(30));
}

TEST(Images, ComeFromARecordAndFromABufferWithPaddingAlike) {
    Bytes data = {1, 2, 3, 0xEE, 4, 5, 6, 0xEE, 7, 8, 9};
    auto raw = record(VL_IMAGE_MONO8, 3, 3, data);
    raw.padding_x = 1;
    std::uint64_t size = 0;
    EXPECT_EQ(vlGetRawSize(&raw, &size), VL_ST_SUCCESS);
    EXPECT_EQ(size, 11u);
    OwnedImage from_record, from_buffer;
    ASSERT_EQ(vlImageFromRaw(&raw, from_record.Out()), VL_ST_SUCCESS);
    ASSERT_EQ(vlImageFromBuffer(VL_IMAGE_MONO8, 3, 3, 1, data.data(), data.size(), from_buffer.Out()), VL_ST_SUCCESS);
    EXPECT_EQ(from_record.Data(), (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(from_buffer.Data(), from_record.Data());
    const OwnedImage other(3, 2, VL_IMAGE_MONO8);
    EXPECT_EQ(vlFromRAWtoImage(&raw, other, VL_GAIN_ONE, VL_GAIN_ONE, VL_GAIN_ONE), VL_ST_INVALID_PARAMETER);
    EXPECT_EQ(vlFromRAWtoImageEx(&raw, from_record, 7, 1, 1, 1, 0, nullptr), VL_ST_INVALID_PARAMETER);
}

TEST(Images, ConvertBetweenAllTypes) {
    OwnedImage bgr(2, 1, VL_IMAGE_BGR8);
    bgr.Fill({0, 0, 255, 10, 20, 30});
    OwnedImage bgr16(2, 1, VL_IMAGE_BGR16), grey(2, 1, VL_IMAGE_MONO8), grey16(2, 1, VL_IMAGE_MONO16), back(2, 1, VL_IMAGE_BGR8);
    ASSERT_EQ(vlConvertImage(bgr, bgr16), VL_ST_SUCCESS);
    EXPECT_EQ(bgr16.Data(), (Bytes{0, 0, 0, 0, 255, 255, 10, 10, 20, 20, 30, 30}));
    ASSERT_EQ(vlConvertImage(bgr16, back), VL_ST_SUCCESS);
    EXPECT_EQ(back.Data(), bgr.Data());
    ASSERT_EQ(vlConvertImage(bgr, grey), VL_ST_SUCCESS);
    EXPECT_EQ(grey.Data(), (Bytes{76, 22}));
    ASSERT_EQ(vlConvertImage(grey, grey16), VL_ST_SUCCESS);
    EXPECT_EQ(grey16.Data(), (Bytes{76, 76, 22, 22}));
    ASSERT_EQ(vlConvertImage(grey16, back), VL_ST_SUCCESS);
    EXPECT_EQ(back.Data(), (Bytes{76, 76, 76, 22, 22, 22}));
    ASSERT_EQ(vlConvertImage(back, back), VL_ST_SUCCESS);
    EXPECT_EQ(back.Data(), (Bytes{76, 76, 76, 22, 22, 22}));
    const OwnedImage other(1, 2, VL_IMAGE_BGR8);
    EXPECT_EQ(vlConvertImage(bgr, other), VL_ST_INVALID_PARAMETER);
    EXPECT_STREQ(vlGetLastErrorText(), "vlConvertImage: the source has 2 x 1 pixels, the target image 1 x 2");
}

TEST(Images, LieInTheCallersMemoryWhereWanted) {
    Bytes memory(24, 0xEE);
    VL_IMAGE_HANDLE image = nullptr;
    EXPECT_EQ(vlMallocEx(2, 2, VL_IMAGE_BGR16, memory.data(), 23, &image), VL_ST_INVALID_BUFFER_SIZE);
    EXPECT_EQ(vlMallocEx(2, 2, VL_IMAGE_MONO16, memory.data() + 1, 8, &image), VL_ST_INVALID_PARAMETER);
    ASSERT_EQ(vlMallocEx(2, 2, VL_IMAGE_BGR8, memory.data(), 12, &image), VL_ST_SUCCESS);
    EXPECT_EQ(image->data, memory.data());
    EXPECT_EQ(image->stride, 6);
    Bytes data = {1, 2, 3, 4};
    const auto raw = record(VL_IMAGE_MONO8, 2, 2, data);
    ASSERT_EQ(vlFromRAWtoImage(&raw, image, VL_GAIN_ONE, VL_GAIN_ONE, VL_GAIN_ONE), VL_ST_SUCCESS);
    image->data = nullptr;  // what is written into the record changes nothing
    ASSERT_EQ(vlSetPixel(image, 0, 0, 0, 0, 0x0900), VL_ST_SUCCESS);
    ASSERT_EQ(vlFree(image), VL_ST_SUCCESS);
    EXPECT_EQ(Bytes(memory.begin(), memory.begin() + 13), (Bytes{9, 0, 0, 2, 2, 2, 3, 3, 3, 4, 4, 4, 0xEE}));
}

TEST(Images, AsBitmapsStandUpsideDownBehindTheirHeader) {
    Bytes data = {1, 2, 3, 4, 5, 6};
    const auto raw = record(VL_IMAGE_MONO8, 3, 2, data);
    OwnedImage grey, colour, plain(3, 2, VL_IMAGE_MONO8);
    ASSERT_EQ(vlMallocDIB(&raw, grey.Out()), VL_ST_SUCCESS);
    ASSERT_EQ(vlFromRAWtoDIB(&raw, grey, VL_GAIN_ONE, VL_GAIN_ONE, VL_GAIN_ONE), VL_ST_SUCCESS);
    const VL_IMAGE& record_of = *static_cast<VL_IMAGE_HANDLE>(grey);
    EXPECT_EQ(record_of.is_dib, 1u);
    EXPECT_EQ(record_of.stride, -4);
    ASSERT_EQ(record_of.memory_size, 40 + 1024 + 8u);
    EXPECT_EQ(record_of.data, record_of.memory + 40 + 1024 + 4);
    const std::uint8_t* m = record_of.memory;
    EXPECT_EQ(Bytes(m, m + 16), (Bytes{40, 0, 0, 0, 3, 0, 0, 0, 2, 0, 0, 0, 1, 0, 8, 0}));
    EXPECT_EQ(Bytes(m + 40 + 4 * 200, m + 44 + 4 * 200), (Bytes{200, 200, 200, 0}));
    EXPECT_EQ(Bytes(m + 1064, m + 1072), (Bytes{4, 5, 6, 0, 1, 2, 3, 0}));

    auto bayer = raw;
    bayer.pixel_type = bayer_rg8;
    ASSERT_EQ(vlMallocDIB(&bayer, colour.Out()), VL_ST_SUCCESS);
    EXPECT_EQ(static_cast<VL_IMAGE_HANDLE>(colour)->memory_size, 40 + 24u);
    ASSERT_EQ(vlFromRAWtoDIBEx(&bayer, colour, VL_DEMOSAIC_BEST, VL_GAIN_ONE, VL_GAIN_ONE, VL_GAIN_ONE, 0, nullptr),
              VL_ST_SUCCESS);
    // It is an image like any other.
    ASSERT_EQ(vlConvertImage(grey, plain), VL_ST_SUCCESS);
    EXPECT_EQ(plain.Data(), data);
    ASSERT_EQ(vlFlip(plain, grey, VL_FLIP_VERTICAL), VL_ST_SUCCESS);
    EXPECT_EQ(Bytes(m + 1064, m + 1072), (Bytes{1, 2, 3, 0, 4, 5, 6, 0}));
    ASSERT_EQ(vlImageProcessing(grey, "invert", grey), VL_ST_SUCCESS) << vlGetLastErrorText();
    EXPECT_EQ(m[1064], 254);
    K_IMAGE_INFO info{};
    EXPECT_EQ(vlGetImageInfo(grey, &info), VL_ST_NOT_IMPLEMENTED);
    EXPECT_EQ(vlFromRAWtoDIB(&raw, plain, 1, 1, 1), VL_ST_INVALID_PARAMETER);
}

TEST(Images, TakeOffsetGainsAndTableInThisOrder) {
    Bytes data = {20, 100, 200};
    const auto raw = record(VL_IMAGE_MONO8, 3, 1, data);
    VL_LUT_HANDLE negative = nullptr;
    ASSERT_EQ(vlMallocLUT(8, 8, 1, &negative), VL_ST_SUCCESS);
    ASSERT_EQ(vlCreateLinearLUT(negative, -1, 1), VL_ST_SUCCESS);
    OwnedImage grey(3, 1, VL_IMAGE_MONO8), deep(3, 1, VL_IMAGE_MONO16), bgra(3, 1, VL_IMAGE_BGRA8);
    ASSERT_EQ(vlFromRAWtoImageEx(&raw, grey, 0, 1, 8192, 1, -30 * 257, nullptr), VL_ST_SUCCESS);
    EXPECT_EQ(grey.Data(), (Bytes{0, 140, 255}));
    ASSERT_EQ(vlFromRAWtoImageEx(&raw, deep, 0, 1, 8192, 1, -30 * 257, negative), VL_ST_SUCCESS);
    EXPECT_EQ(deep.Data(), (Bytes{255, 255, 115, 115, 0, 0}));
    ASSERT_EQ(vlFromRAWtoImageEx(&raw, bgra, 0, 4096, 8192, 2048, 257, negative), VL_ST_SUCCESS);
    EXPECT_EQ(bgra.Data(), (Bytes{244, 213, 234, 255, 204, 53, 154, 255, 154, 0, 54, 255}));
    ASSERT_EQ(vlFromRAWtoImageEx(&raw, deep, 0, 1, 0xFFFFFFFF, 1, -20 * 257, nullptr), VL_ST_SUCCESS);
    EXPECT_EQ(deep.Data(), (Bytes{0, 0, 255, 255, 255, 255}));
    EXPECT_EQ(vlFreeLUT(negative), VL_ST_SUCCESS);
    EXPECT_EQ(vlFromRAWtoImageEx(&raw, grey, 0, 1, 1, 1, 0, negative), VL_ST_INVALID_HANDLE);
}

TEST(LastError, BelongsToItsThread) {
    EXPECT_EQ(vlFree(nullptr), VL_ST_INVALID_HANDLE);
    std::thread([] {
        EXPECT_STREQ(vlGetLastErrorText(), "");
        vlMallocEx(0, 0, VL_IMAGE_MONO8, nullptr, 0, nullptr);
        EXPECT_THAT(vlGetLastErrorText(), HasSubstr("vlMallocEx"));
    }).join();
    EXPECT_STREQ(vlGetLastErrorText(), "vlFree: the image handle is null");
}

TEST(Threads, EachWithImagesOfItsOwn) {
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([] {
            Bytes data(64 * 48, 100);
            const auto raw = record(bayer_rg8, 64, 48, data);
            for (int i = 0; i < 50; ++i) {
                OwnedImage image;
                ASSERT_EQ(vlImageFromRaw(&raw, image.Out()), VL_ST_SUCCESS);
                ASSERT_EQ(image.Data(), Bytes(3 * data.size(), 100));
            }
        });
    for (auto& thread : threads) thread.join();
}

}  // namespace
}  // namespace kiv::vl::test
